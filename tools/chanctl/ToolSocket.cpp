#include "ToolSocket.h"

#include <pwd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "datacom/SysmgtRoot.h"

namespace {

// True when a process has a socket bound at `path`: connecting a datagram
// socket sends nothing, and fails for a file nobody is bound to.
bool heldByRunningProcess(const std::string& path) {
    const std::string hostPath = datacom::sysmgtPath(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (hostPath.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, hostPath.c_str(), hostPath.size() + 1);
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    const bool held = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return held;
}

std::string userName() {
    passwd entry{};
    passwd* found = nullptr;
    char buffer[1024];
    if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr)
        return found->pw_name;
    return std::to_string(getuid());
}

}  // namespace

std::string stableSocketName(const std::string& tool, const std::string& instance) {
    std::string base = "/tmp/" + tool + "-" + userName();
    if (!instance.empty())
        base += "-" + instance;
    for (int copy = 1; copy < 100; ++copy) {
        std::string name = copy == 1 ? base : base + "-" + std::to_string(copy);
        if (!heldByRunningProcess(name))
            return name;
    }
    return base + "-" + std::to_string(getpid());  // a hundred at once: give up on reuse
}
