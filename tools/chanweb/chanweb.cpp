// chanweb: a live console of the channel manager in the browser. Serves one
// page (the files of www/, no build step) on 127.0.0.1, pushes the channel
// status and the manager's events to it as Server-Sent Events, and turns its
// buttons into the manager's commands.
#include <limits.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "ChannelConsole.h"
#include "ChanwebArgs.h"
#include "ConsoleFeed.h"
#include "ConsoleRoutes.h"
#include "GuardedServer.h"
#include "QuietDebugLog.h"
#include "ToolSocket.h"
#include "datacom/DataCommunicator.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

// chanweb's own sockets take the buttons' answers and the manager's events:
// never writable by other users. When the manager's socket is shared with a
// group this user is in, chanweb's are shared with that group too (a manager
// running as another user of the group can then answer); otherwise they are
// this user's alone.
bool sharedWithMyGroup(const std::string& managerSocket, gid_t& group) {
    struct stat info {};
    if (stat(sysmgtPath(managerSocket).c_str(), &info) != 0 || (info.st_mode & S_IWOTH) != 0 ||
        (info.st_mode & S_IWGRP) == 0)
        return false;
    std::vector<gid_t> mine(static_cast<size_t>(std::max(getgroups(0, nullptr), 0)) + 1);
    const int count = getgroups(static_cast<int>(mine.size()), mine.data());
    mine.resize(static_cast<size_t>(std::max(count, 0)));
    mine.push_back(getegid());
    group = info.st_gid;
    return std::find(mine.begin(), mine.end(), info.st_gid) != mine.end();
}

mode_t ownSocketMode(const std::string& managerSocket) {
    gid_t group;
    return sharedWithMyGroup(managerSocket, group) ? 0660 : 0600;
}

gid_t ownSocketGroup(const std::string& managerSocket) {
    gid_t group;
    return sharedWithMyGroup(managerSocket, group) ? group : static_cast<gid_t>(-1);
}

bool isFile(const std::string& path) {
    return access(path.c_str(), R_OK) == 0;
}

// The page's files: share/chanweb beside an installed program, else the source tree's.
std::string defaultWww() {
    char self[PATH_MAX] = {};
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length > 0) {
        std::string dir(self, static_cast<size_t>(length));
        dir = dir.substr(0, dir.rfind('/'));
        std::string installed = dir.substr(0, dir.rfind('/')) + "/share/chanweb";
        if (isFile(installed + "/index.html"))
            return installed;
    }
    return CHANWEB_SOURCE_WWW;
}

// Returns on SIGINT, SIGTERM or HUP, or once `timeoutSec` passed (0: no
// limit). The signals are blocked in every thread and taken here.
void waitForEnd(const sigset_t& signals, unsigned timeoutSec) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSec);
    for (;;) {
        timespec slice{0, 200L * 1000 * 1000};
        if (sigtimedwait(&signals, nullptr, &slice) > 0)
            return;
        if (timeoutSec != 0 && std::chrono::steady_clock::now() >= deadline)
            return;
    }
}

}  // namespace

int main(int argc, char** argv) {
    ChanwebOptions options;
    const std::string refused = parseChanwebArgs(std::vector<std::string>(argv + 1, argv + argc), options);
    if (!refused.empty()) {
        std::fprintf(stderr, "chanweb: %s\n(chanweb --help tells how to use it)\n", refused.c_str());
        return 2;
    }
    if (options.help) {
        std::fputs(chanwebUsage(), stdout);
        return 0;
    }
    const std::string www = options.www.empty() ? defaultWww() : options.www;
    if (!isFile(www + "/index.html")) {
        std::fprintf(stderr, "chanweb: no index.html in %s\n", www.c_str());
        return 1;
    }
    const std::string tmp = sysmgtPath("/tmp");
    if (access(tmp.c_str(), W_OK | X_OK) != 0) {
        std::fprintf(stderr, "chanweb: cannot make its sockets in %s: %s\n", tmp.c_str(),
                     std::generic_category().message(errno).c_str());
        return 1;
    }

    sigset_t signals;
    sigemptyset(&signals);
    for (int signo : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signo);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // before any thread starts
    signal(SIGPIPE, SIG_IGN);                       // a browser that went away
    openDebugLogQuietly();

    ConsoleFeed feed;
    ChannelConsole console(feed, options.socket);
    GuardedServer server(allowedHosts(options));
    server.set_mount_point("/", www);
    addConsoleRoutes(server, feed, console);

    const int port = options.port == 0 ? server.bind_to_any_port(options.bind)
                                       : (server.bind_to_port(options.bind, options.port) ? options.port : -1);
    if (port < 0) {
        std::fprintf(stderr, "chanweb: cannot listen on %s port %d\n", options.bind.c_str(), options.port);
        return 1;
    }
    // One name per user and port: a restarted console takes back its
    // subscription at the manager instead of leaving a dead one.
    const std::string socketName = stableSocketName("chanweb", std::to_string(port));
    DataCommunicator::setSocketAccess(ownSocketMode(options.socket), ownSocketGroup(options.socket));
    console.start(socketName);
    std::thread serving([&] { server.listen_after_bind(); });
    // stop() ends only a server that runs: wait (bounded) until it does.
    for (int i = 0; i < 500 && !server.is_running(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const bool v6 = options.bind.find(':') != std::string::npos;
    std::printf("chanweb: serving http://%s%s%s:%d/ (channel manager %s)\n", v6 ? "[" : "", options.bind.c_str(),
                v6 ? "]" : "", port, options.socket.c_str());
    std::fflush(stdout);

    waitForEnd(signals, options.timeoutSec);
    feed.close();
    server.stop();
    serving.join();
    console.stop();  // removes its sockets too
    return 0;
}
