// The init script as a boot sequence uses it: its exit status must say what
// the daemon did. Run in a root of its own, with the built daemon.
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include "DaemonProcess.h"

namespace {

struct ScriptRun {
    int status = -1;
    std::string output;
};

ScriptRun initScript(const std::string& action) {
    FILE* pipe = popen(
        ("_SYSTEMCTL_SKIP_REDIRECT=1 sh " + std::string(testpaths::INIT_SCRIPT) + " " + action + " 2>&1").c_str(), "r");
    ToolRun run = finishTool(pipe);
    return {run.status, run.output};
}

// The test reaps the daemons the script starts where it can be their
// subreaper (qemu-arm cannot: there the system's init reaps them).
bool subreaper = false;

// True when `pid` has ended by now: gone, or a zombie (its last threads may
// still be on their way out).
bool ended(pid_t pid) {
    std::string stat;
    std::getline(std::ifstream("/proc/" + std::to_string(pid) + "/stat"), stat);
    const bool gone = stat.size() < 3 || stat.rfind(") Z") == stat.rfind(')');
    if (subreaper)
        waitFor([pid] { return waitpid(pid, nullptr, WNOHANG) == pid; }, 5);
    return gone;
}

}  // namespace

TEST(InitScript, TwentyStartsAndStopsTellTheTruthAndAFailedStartSaysWhy) {
    subreaper = prctl(PR_SET_CHILD_SUBREAPER, 1) == 0;
    DaemonSession session("", 600, "");
    ASSERT_TRUE(session.ready()) << session.everything();
    // The built daemon (through the emulator in the cross build), run as the current user.
    mkdir(datacom::sysmgtPath("/etc/default").c_str(), 0755);
    writeText("/etc/channel_manager", "#!/bin/sh\nexec " + toolCommand("channel_manager") + " \"$@\"\n");
    chmod(datacom::sysmgtPath("/etc/channel_manager").c_str(), 0755);
    writeText("/etc/default/channel_manager", "DAEMON=" + datacom::sysmgtPath("/etc/channel_manager") +
                                                  "\nDAEMON_USER=\nDAEMON_OPTS=\"-g " + ownGroupName() +
                                                  "\"\nSTART_LIMIT=60\n");

    for (int round = 1; round <= 20; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const ScriptRun start = initScript("start");
        const pid_t pid = std::atoi(readText("/run/channel_manager/channel_manager.pid").c_str());
        ASSERT_EQ(0, start.status) << start.output << session.everything();
        EXPECT_EQ("channel_manager started (pid " + std::to_string(pid) + ")\n", start.output);
        ASSERT_EQ(0, kill(pid, 0)) << "started, but no process";
        EXPECT_EQ("0:" + std::to_string(pid) + ":0\n", readText("/run/channel_manager/channel_manager.start"));
        EXPECT_EQ(0, initScript("status").status);
        const ScriptRun again = initScript("start");
        EXPECT_EQ(0, again.status);
        EXPECT_EQ("channel_manager is already running (pid " + std::to_string(pid) + ")\n", again.output);

        const ScriptRun stop = initScript("stop");
        ASSERT_EQ(0, stop.status) << stop.output;
        EXPECT_EQ("channel_manager stopped\n", stop.output);
        ASSERT_TRUE(ended(pid)) << "stopped, but the process lives";
        EXPECT_FALSE(fileExists("/run/channel_manager/channel_manager.pid"));
        EXPECT_EQ(3, initScript("status").status);
    }
    const ScriptRun idle = initScript("stop");
    EXPECT_EQ(0, idle.status);
    EXPECT_EQ("channel_manager is not running\n", idle.output);

    // A daemon that ends at once (a wrong option): non-zero with the reason.
    writeText("/etc/default/channel_manager",
              "DAEMON=" + datacom::sysmgtPath("/etc/channel_manager") + "\nDAEMON_USER=\nDAEMON_OPTS=-x\n");
    const ScriptRun failed = initScript("start");
    EXPECT_EQ(1, failed.status);
    EXPECT_EQ("channel_manager ended during start-up (exit status 1)\n", failed.output);
    writeText("/etc/default/channel_manager", "DAEMON=/nonexistent/channel_manager\n");
    const ScriptRun missing = initScript("start");
    EXPECT_EQ(5, missing.status);
    EXPECT_EQ("channel_manager: /nonexistent/channel_manager is not installed\n", missing.output);
}
