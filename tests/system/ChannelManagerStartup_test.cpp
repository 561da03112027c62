// channel_manager's start-up as a real process: its options, the pid and
// start files, the order of its first requests to its peers, and that it
// serves as soon as the start file is there.
#include <gtest/gtest.h>

#include <libgen.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>

#include "DaemonProcess.h"

using namespace datacom;

namespace {

// Positions of `texts` in `haystack`, each searched after the previous one;
// "" when all are there in order, otherwise the first one missing.
std::string missingInOrder(const std::string& haystack, const std::vector<std::string>& texts) {
    size_t at = 0;
    for (const std::string& text : texts) {
        at = haystack.find(text, at);
        if (at == std::string::npos)
            return text;
        at += text.size();
    }
    return "";
}

}  // namespace

TEST(ChannelManagerStartup, BadOptionsPrintTheUsageAndExit1) {
    TestRoot root;
    ASSERT_TRUE(installFactoryData());
    const std::string program = std::string(SYSMGT_BIN_DIR) + "/channel_manager";
    // The documented line letter for letter, then the options gained since.
    const std::string usage =
        "Usage: " + program + " [-v verboseLevel] [-d] [-p pidfile] [-s startfile]\n" + "       [-g socketgroup]\n";
    for (const char* options :
         {"-x", "-s /tmp/cm.start -v", "-p", "-s /tmp/cm.start -d -q -p /tmp/cm.pid", "-g", "-g no-such-group"}) {
        ChildProcess daemon(toolCommand("channel_manager") + " " + options + " 2> " + sysmgtPath("/tmp/usage.err"));
        EXPECT_EQ(1, daemon.wait(30)) << options;
        const std::string output = readText("/tmp/usage.err");
        if (std::string(options) == "-g no-such-group")
            EXPECT_EQ(program + ": no group no-such-group\n", output);
        else
            EXPECT_EQ(usage, output) << options;
        EXPECT_FALSE(fileExists("/tmp/cm.start")) << options;
        EXPECT_FALSE(fileExists("/tmp/cm.pid")) << options;
    }
}

TEST(ChannelManagerStartup, DetachedDaemonWritesPidThenStartFileThenServes) {
    DaemonSession session("-v 3 -d -p /tmp/cm.pid");
    // The detached daemon is not the process that was started: end it by the pid it wrote.
    const pid_t detached = static_cast<pid_t>(std::atoi(readText("/tmp/cm.pid").c_str()));
    struct EndDetached {
        pid_t pid;
        ~EndDetached() {
            if (pid > 0)
                kill(pid, SIGTERM);
        }
    } endDetached{detached};
    ASSERT_TRUE(session.ready()) << session.everything();
    EXPECT_EQ(0, session.daemon.wait(30)) << "the foreground process ends once detached";
    ASSERT_GT(detached, 0);
    EXPECT_NE(session.daemon.id(), detached);
    EXPECT_EQ(std::to_string(detached) + "\n", readText("/tmp/cm.pid"));
    EXPECT_EQ("0:" + std::to_string(detached) + ":0\n", readText(DaemonSession::START_FILE));

    // Serving at once: the start file is written only after start-up is complete.
    ToolRun dvi = chanctl("command 'Set DVI mode' DVI_mode=1");
    EXPECT_EQ(0, dvi.status) << dvi.output;

    // Its first requests, in order: the mediator's events, the time zone, the device manager's events.
    EXPECT_EQ("", missingInOrder(session.simulator.traffic(),
                                 {"IN  mediator COMMAND", "\"SUBSCRIBE\" SockName=\"/tmp/sockChan\"", "IN  device GET",
                                  "DateTimeTable", "IN  device COMMAND", "\"SUBSCRIBE\" SockName=\"/tmp/sockChan\""}))
        << session.simulator.traffic();
    // At level 3 only FATAL and SYS lines are written.
    ASSERT_TRUE(session.waitLog("init: setenv TZ=UTC")) << session.everything();
    EXPECT_EQ(std::string::npos, session.log().find("init: init Channels done.")) << session.log();

    // SIGTERM ends it: the daemon installs no handler of its own.
    ASSERT_EQ(0, kill(detached, SIGTERM));
    EXPECT_TRUE(waitFor([&] { return kill(detached, 0) != 0; }, 20));
    endDetached.pid = -1;
}

TEST(ChannelManagerStartup, WithoutOptionsItStaysInTheForegroundAndLogsEverything) {
    DaemonSession session;
    ASSERT_TRUE(session.ready()) << session.everything();
    EXPECT_TRUE(session.daemon.running());
    EXPECT_FALSE(fileExists("/tmp/cm.pid"));
    ASSERT_TRUE(session.waitLog("init: dataCommunicator started")) << session.everything();
    const std::string log = session.log();
    EXPECT_EQ("", missingInOrder(log, {"init: init Channels done.", "init: init Sources done.", "init: setenv TZ=UTC",
                                       "init: dataCommunicator started"}))
        << log;
    EXPECT_NE(std::string::npos, log.find("tChanInit")) << log;
    // The log's task name does not rename the process: pidof and pkill still find it
    // by the name of the program it runs (under qemu-arm the emulator's).
    const std::string proc = "/proc/" + std::to_string(session.daemon.id());  // a host path, never under the root
    std::string comm;
    std::getline(std::ifstream(proc + "/comm"), comm);
    char exe[PATH_MAX] = {};
    ASSERT_LT(0, readlink((proc + "/exe").c_str(), exe, sizeof exe - 1));
    EXPECT_EQ(std::string(basename(exe)).substr(0, 15), comm);
    EXPECT_EQ(0u, session.daemonOutput().find("Clock ret=0 res=")) << session.daemonOutput();
    EXPECT_EQ(std::string::npos, log.find("FATAL")) << log;
    EXPECT_EQ(std::string::npos, session.daemonOutput().find("FATAL"));
}

// As the systemd unit starts it: the unit's own options and NOTIFY_SOCKET set
// (a socket in the abstract namespace stands in for the service manager).
// READY=1 must mean start-up is complete: the start file is there when it arrives.
TEST(ChannelManagerStartup, UnderItsServiceUnitReadinessFollowsTheStartFile) {
    std::ifstream unit(testpaths::SERVICE_UNIT);
    std::string line, options;
    while (std::getline(unit, line))
        if (line.rfind("ExecStart=", 0) == 0 && line.find("/channel_manager ") != std::string::npos)
            options = line.substr(line.find("/channel_manager ") + 17);
    ASSERT_NE(std::string::npos, options.find("-s /run/channel_manager/channel_manager.start")) << options;
    const size_t group = options.find("-g sysmgt ");
    ASSERT_NE(std::string::npos, group) << "the sockets 0660 in the daemon group: " << options;
    options.replace(group, 10, "-g " + ownGroupName() + " ");
    EXPECT_EQ(std::string::npos, options.find("-d")) << "a notify service stays in the foreground";

    const std::string name = "@channel-manager-ready-" + std::to_string(getpid());
    const int sock = socket(AF_UNIX, SOCK_DGRAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, name.c_str() + 1, name.size() - 1);
    ASSERT_EQ(0, bind(sock, reinterpret_cast<sockaddr*>(&address),
                      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size())));
    timeval limit{90, 0};
    setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    std::string ready, startFileAtReady;
    std::thread manager([&] {
        char buffer[64];
        const ssize_t got = recv(sock, buffer, sizeof buffer, 0);
        startFileAtReady = readText("/run/channel_manager/channel_manager.start");
        ready.assign(buffer, got > 0 ? static_cast<size_t>(got) : 0);
    });
    setenv("NOTIFY_SOCKET", name.c_str(), 1);
    DaemonSession session(options, 120, "/run/channel_manager/channel_manager.start");
    unsetenv("NOTIFY_SOCKET");
    manager.join();
    close(sock);
    ASSERT_TRUE(session.ready()) << session.everything();
    const std::string pid = std::to_string(session.daemon.id());
    EXPECT_EQ("READY=1", ready);
    EXPECT_EQ("0:" + pid + ":0\n", startFileAtReady);
    EXPECT_EQ(pid + "\n", readText("/run/channel_manager/channel_manager.pid"));
}
