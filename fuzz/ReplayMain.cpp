// Runs every file of the given corpus directories (or single files) through the
// target once, in name order, as an ordinary test: no libFuzzer needed, so
// every build leg replays the corpus. A crash or a sanitizer report ends the
// process with a failure; so does a corpus with no file at all, which would
// prove nothing.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "FuzzSupport.h"

namespace {

std::vector<std::string> inputsUnder(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return {};
    if (!S_ISDIR(info.st_mode))
        return {path};
    std::vector<std::string> files;
    if (DIR* dir = opendir(path.c_str())) {
        while (dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            struct stat child {};
            if (stat((path + "/" + name).c_str(), &child) == 0 && S_ISREG(child.st_mode))
                files.push_back(path + "/" + name);
        }
        closedir(dir);
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    size_t replayed = 0;
    for (int arg = 1; arg < argc; ++arg) {
        const std::vector<std::string> files = inputsUnder(argv[arg]);
        if (files.empty())
            std::fprintf(stderr, "replay: no input under %s\n", argv[arg]);
        for (const std::string& file : files) {
            std::ifstream in(file, std::ios::binary);
            const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            std::fprintf(stderr, "replay: %s (%zu bytes)\n", file.c_str(), bytes.size());
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++replayed;
        }
    }
    std::fprintf(stderr, "replay: %zu inputs, no failure\n", replayed);
    return replayed == 0 ? 1 : 0;
}
