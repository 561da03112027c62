#include "daemon/DaemonFiles.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "datacom/SysmgtRoot.h"

using namespace datacom;

bool writePidFile(const std::string& path) {
    FILE* file = std::fopen(sysmgtPath(path).c_str(), "w");
    if (file == nullptr)
        return false;
    std::fprintf(file, "%u\n", static_cast<unsigned>(getpid()));
    return std::fclose(file) == 0;
}

bool writeStartFile(const std::string& path) {
    const std::string hostPath = sysmgtPath(path);
    FILE* file = nullptr;
    do {
        file = std::fopen(hostPath.c_str(), "w");
    } while (file == nullptr && errno == EINTR);
    if (file == nullptr) {
        std::perror(path.c_str());
        return false;
    }
    std::fprintf(file, "%u:%u:%u\n", 0U, static_cast<unsigned>(getpid()), 0U);
    return std::fclose(file) == 0;
}

bool notifyServiceManager() {
    // Copied under the environment lock: the engine's threads are running by now.
    std::string socketName;
    lockEnvironment();
    const char* variable = std::getenv("NOTIFY_SOCKET");  // NOLINT(concurrency-mt-unsafe): under the environment lock
    if (variable != nullptr)
        socketName = variable;
    unlockEnvironment();
    const char* target = socketName.c_str();
    if (*target == '\0')
        return false;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const size_t length = std::strlen(target);
    if (length >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, target, length);
    if (target[0] == '@')
        address.sun_path[0] = '\0';  // the abstract namespace
    const socklen_t addressLength = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
    const int sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (sock < 0)
        return false;
    static const char READY[] = "READY=1";
    const ssize_t sent = sendto(sock, READY, sizeof READY - 1, 0, reinterpret_cast<sockaddr*>(&address), addressLength);
    close(sock);
    return sent == static_cast<ssize_t>(sizeof READY - 1);
}
