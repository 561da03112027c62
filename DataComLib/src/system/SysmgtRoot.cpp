#include "datacom/SysmgtRoot.h"

#include <cstdlib>
#include <ctime>
#include <mutex>

namespace datacom {

namespace {
// Serialising setenv and getenv is the smallest change that makes the "TZ"
// update safe: SYSMGT_ROOT is still read at every call (tests move the root
// within one process), so reading it once at start-up would not do.
std::mutex& environmentMutex() {
    static std::mutex mutex;
    return mutex;
}
}  // namespace

void lockEnvironment() {
    environmentMutex().lock();
}

void unlockEnvironment() {
    environmentMutex().unlock();
}

void setTimeZone(const std::string& zone) {
    std::lock_guard<std::mutex> hold(environmentMutex());
    setenv("TZ", zone.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): under the environment lock
    tzset();
}

std::string sysmgtPath(const std::string& logicalPath) {
    if (logicalPath.empty() || logicalPath[0] != '/')
        return logicalPath;
    std::string mapped;
    {
        std::lock_guard<std::mutex> hold(environmentMutex());
        const char* root = std::getenv("SYSMGT_ROOT");  // NOLINT(concurrency-mt-unsafe): under the environment lock
        if (root == nullptr || *root == '\0')
            return logicalPath;
        mapped = root;
    }
    while (mapped.size() > 1 && mapped.back() == '/')
        mapped.pop_back();
    if (mapped == "/")
        return logicalPath;
    return mapped + logicalPath;
}

}  // namespace datacom
