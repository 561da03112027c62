#include "daemon/DaemonFiles.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "datacom/AtomicFile.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

// Both files are written as a whole into a fresh temporary file beside the
// target (mkstemp) and renamed over it: an operator may put them in the
// shared /tmp, where a name opened for writing could be a neighbour's link
// aimed at one of the daemon's own files; the rename replaces such a link
// instead of following it. A reader also never sees half a line.
namespace {
std::string idLine(const char* format) {
    char line[64];
    std::snprintf(line, sizeof line, format, static_cast<unsigned>(getpid()));
    return line;
}
}  // namespace

bool writePidFile(const std::string& path) {
    return writeFileAtomically(path, idLine("%u\n")) == 0;
}

bool writeStartFile(const std::string& path) {
    int error = 0;
    do {
        error = writeFileAtomically(path, idLine("0:%u:0\n"));
    } while (error == EINTR);
    if (error != 0) {
        errno = error;
        std::perror(path.c_str());
        return false;
    }
    return true;
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
