#include "TestRoot.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    return ::remove(path);
}

}  // namespace

TestRoot::TestRoot() {
    if (const char* old = std::getenv("SYSMGT_ROOT")) {
        previous = old;
        hadPrevious = true;
    }
    char pattern[] = "/tmp/sysmgt-test-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        throw std::runtime_error("TestRoot: mkdtemp failed");
    root = pattern;
    for (const char* dir : {"/tmp", "/run", "/run/channel_manager", "/etc", "/etc/sysmgt", "/data", "/data/settings"})
        mkdir((root + dir).c_str(), 0777);
    setenv("SYSMGT_ROOT", root.c_str(), 1);
}

TestRoot::~TestRoot() {
    nftw(root.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    if (hadPrevious)
        setenv("SYSMGT_ROOT", previous.c_str(), 1);
    else
        unsetenv("SYSMGT_ROOT");
}
