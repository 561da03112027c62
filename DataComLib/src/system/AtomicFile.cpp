#include "datacom/AtomicFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <mutex>

#include "datacom/SysmgtRoot.h"

namespace datacom {

int (*gAtomicFileBeforeRename)(const std::string& tempPath) = nullptr;

namespace {

int writeAll(int fd, const std::string& content) {
    size_t done = 0;
    while (done < content.size()) {
        ssize_t wrote = write(fd, content.data() + done, content.size() - done);
        if (wrote < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        done += static_cast<size_t>(wrote);
    }
    return 0;
}

std::string directoryOf(const std::string& path) {
    size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The temporary files of stores that a power cut or a kill ended before their
// rename: "<name>.tmp" and six characters, in the target's directory. Only
// this process writes its files, and it stores one file at a time, so every
// such file is a leftover once a store of that name has succeeded.
void removeLeftovers(const std::string& target) {
    const std::string directory = directoryOf(target);
    const size_t slash = target.rfind('/');
    const std::string prefix = (slash == std::string::npos ? target : target.substr(slash + 1)) + ".tmp";
    DIR* dir = opendir(directory.c_str());
    if (dir == nullptr)
        return;
    while (dirent* entry = readdir(dir)) {  // NOLINT(concurrency-mt-unsafe): the stream is this call's own
        const std::string name = entry->d_name;
        if (name.size() == prefix.size() + 6 && name.compare(0, prefix.size(), prefix) == 0)
            unlink((directory + "/" + name).c_str());
    }
    closedir(dir);
}

// One store at a time in this process, so that removeLeftovers never takes
// the temporary file of a store still under way.
std::mutex storeMutex;

}  // namespace

int writeFileAtomically(const std::string& logicalPath, const std::string& content) {
    const std::string target = sysmgtPath(logicalPath);
    std::lock_guard<std::mutex> guard(storeMutex);
    std::string temp = target + ".tmpXXXXXX";
    int fd = mkstemp(temp.data());
    if (fd < 0)
        return errno;
    fchmod(fd, 0644);

    int error = writeAll(fd, content);
    if (error == 0 && fsync(fd) != 0)
        error = errno;
    if (close(fd) != 0 && error == 0)
        error = errno;
    if (error == 0 && gAtomicFileBeforeRename != nullptr)
        error = gAtomicFileBeforeRename(temp);
    if (error == 0 && rename(temp.c_str(), target.c_str()) != 0)
        error = errno;
    if (error != 0) {
        unlink(temp.c_str());
        return error;
    }

    int dirFd = open(directoryOf(target).c_str(), O_RDONLY | O_DIRECTORY);
    if (dirFd >= 0) {
        fsync(dirFd);  // the rename is durable once the directory is
        close(dirFd);
    }
    removeLeftovers(target);
    return 0;
}

}  // namespace datacom
