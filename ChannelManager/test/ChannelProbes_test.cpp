#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>

#include "BoundedCommand.h"
#include "ProbeRegistry.h"
#include "SideActionTestSupport.h"

using namespace vocab;

namespace {

// A directory of stand-in "ping" and "traceroute" scripts put first on PATH
// for the life of the object: the probe's own commands run, but answer as
// the test sets them (ping's exit status, traceroute's output) and record
// their arguments. Make it before the harness (PATH changes while no other
// thread runs) and let it go after.
class FakeTools {
public:
    FakeTools() {
        char pattern[] = "/tmp/fake_probe_tools_XXXXXX";
        dir = mkdtemp(pattern) ? pattern : "";
        write("ping", "#!/bin/sh\nd=$(dirname \"$0\")\necho \"$@\" >> \"$d/ping.args\"\nexit $(cat \"$d/ping.rc\")\n");
        write("traceroute", "#!/bin/sh\nd=$(dirname \"$0\")\necho \"$@\" >> \"$d/traceroute.args\"\n"
                            "cat \"$d/traceroute.out\"\n");
        chmod((dir + "/ping").c_str(), 0755);
        chmod((dir + "/traceroute").c_str(), 0755);
        setPing(0, "");
        const char* path = std::getenv("PATH");
        previousPath = path ? path : "/usr/bin:/bin";
        setenv("PATH", (dir + ":" + previousPath).c_str(), 1);
    }
    ~FakeTools() {
        setenv("PATH", previousPath.c_str(), 1);
        for (const char* file : {"ping", "traceroute", "ping.rc", "traceroute.out", "ping.args", "traceroute.args"})
            unlink((dir + "/" + file).c_str());
        rmdir(dir.c_str());
    }
    bool ok() const { return !dir.empty(); }
    void setPing(int status, const std::string& tracerouteOutput) {
        write("ping.rc", std::to_string(status) + "\n");
        write("traceroute.out", tracerouteOutput);
    }
    std::string args(const char* tool) const {
        std::ifstream in(dir + "/" + tool + ".args");
        std::string all, line;
        while (std::getline(in, line)) all += line + ";";
        return all;
    }

private:
    void write(const char* name, const std::string& text) { std::ofstream(dir + "/" + name) << text; }
    std::string dir;
    std::string previousPath;
};

void setTargetAddress(ChannelHarness& h, const char* target, const char* address) {
    ASSERT_EQ(h.holder->initTextParam(ds::CHANNEL, tbl::TARGET, prop::TARGET_ADDRESS, address, target), FC_OK);
}

bool probesEnded() {
    return ProbeRegistry::instance().waitIdle(std::chrono::seconds(20));
}

}  // namespace

TEST(BoundedCommand, OutputStatusAndTheBound) {
    BoundedRun run = runBounded("echo hello; exit 3", 5000, 1023);
    EXPECT_TRUE(run.started);
    EXPECT_FALSE(run.timedOut);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "hello\n");

    // Output beyond the limit is drained and dropped; the command ends normally.
    run = runBounded("i=0; while [ $i -lt 300 ]; do echo 0123456789; i=$((i+1)); done", 5000, 1023);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output.size(), 1023u);

    // A command that outlives its bound is killed with its children; what it printed is kept.
    const auto start = std::chrono::steady_clock::now();
    run = runBounded("echo partial; sleep 30 & wait", 300, 1023);
    EXPECT_TRUE(run.timedOut);
    EXPECT_EQ(run.output, "partial\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));

    run = runBounded("exit 0", 5000, 0);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.output.empty());
}

TEST(ChannelProbes, AddressesThatAreNotProbed) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    // Target2 is disabled: its address is never looked at.
    setTargetAddress(h, "H.264 Target2", "not an address");
    struct Row {
        const char* address;
        Fcodes expected;
    };
    const Row rows[] = {
        {"239.1.1.9", FC_OK},  // multicast: skipped silently
        {"224.0.0.1", FC_OK},
        {"300.1.1.1", FC_BAD_VALUE},
        {"127.0.0.1; true", FC_BAD_VALUE},
        {"", FC_BAD_VALUE},
        {"::1", FC_BAD_VALUE},  // another family
    };
    for (const Row& row : rows) {
        setTargetAddress(h, "H.264 Target1", row.address);
        EXPECT_EQ(h.channel().testConnectionToTarget(row::H264), row.expected) << "\"" << row.address << "\"";
        EXPECT_EQ(ProbeRegistry::instance().running(), 0) << "\"" << row.address << "\"";
    }
    EXPECT_TRUE(h.recorder.events().empty());
    // traceroute itself refuses anything but an IPv4 address, so nothing else reaches the shell.
    h.channel().traceroute(row::H264, "127.0.0.1; true");
    EXPECT_TRUE(h.recorder.events().empty());
}

TEST(ChannelProbes, ProbeReportsWhatPingAndTracerouteSay) {
    FakeTools tools;
    ASSERT_TRUE(tools.ok());
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    setTargetAddress(h, "HEVC Target1", "127.0.0.1");

    // Ping answers: "Target Connection OK", no traceroute.
    ASSERT_EQ(h.channel().testConnectionToTarget(row::HEVC), FC_OK);
    ASSERT_TRUE(probesEnded());
    std::vector<RecordedEvent> events = h.recorder.events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].id, "Target Connection OK");
    EXPECT_EQ(events[0].rowId, "HEVC");
    EXPECT_EQ(events[0].fcode, 0x20000u);
    EXPECT_EQ(events[0].status, "None");
    EXPECT_EQ(events[0].description, "ping 127.0.0.1 OK");
    EXPECT_EQ(tools.args("ping"), "-c 1 127.0.0.1;");
    EXPECT_EQ(tools.args("traceroute"), "");

    // Ping fails: the route goes into "Target Connection Failed". The probe
    // copied the address: a change after the start does not reach it.
    tools.setPing(1, " 1  localhost (127.0.0.1)  0.031 ms\n");
    h.recorder.clear();
    ASSERT_EQ(h.channel().testConnectionToTarget(row::HEVC), FC_OK);
    setTargetAddress(h, "HEVC Target1", "239.1.1.1");
    ASSERT_TRUE(probesEnded());
    events = h.recorder.events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].id, "Target Connection Failed");
    EXPECT_EQ(events[0].description, " 1  localhost (127.0.0.1)  0.031 ms\n");
    EXPECT_EQ(tools.args("traceroute"), "-I 127.0.0.1;");

    // Traceroute prints nothing: no event.
    tools.setPing(1, "");
    h.recorder.clear();
    setTargetAddress(h, "HEVC Target1", "127.0.0.1");
    ASSERT_EQ(h.channel().testConnectionToTarget(row::HEVC), FC_OK);
    ASSERT_TRUE(probesEnded());
    EXPECT_TRUE(h.recorder.events().empty());
}

TEST(ChannelProbes, ManyProbesAtOnceAllEndAndReport) {
    FakeTools tools;
    ASSERT_TRUE(tools.ok());
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    for (const char* target : {"H.264 Target1", "H.264 Target2", "HEVC Target1", "HEVC Target2"}) {
        setTargetAddress(h, target, "127.0.0.1");
        h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, true, target);
    }
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(h.channel().testConnectionToTarget(row::H264), FC_OK);
        EXPECT_EQ(h.channel().testConnectionToTarget(row::HEVC), FC_OK);
        // The channel's rows change while the probes run; they never read them.
        setTargetAddress(h, "H.264 Target1", round % 2 ? "127.0.0.1" : "239.1.1.1");
        h.channel().updateStreamAndErrorLeds();
    }
    ASSERT_TRUE(probesEnded());
    EXPECT_EQ(h.recorder.events().size(), 11u);  // the second H.264 round had one multicast target
}

TEST(ChannelProbes, RealPingOfLoopback) {
    const BoundedRun check = runBounded("ping -c 1 127.0.0.1", 3000, 0);
    if (!check.started || check.status != 0) GTEST_SKIP() << "this host cannot ping 127.0.0.1";
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    setTargetAddress(h, "H.264 Target1", "127.0.0.1");
    ASSERT_EQ(h.channel().testConnectionToTarget(row::H264), FC_OK);
    ASSERT_TRUE(probesEnded());
    EXPECT_EQ(h.recorder.names(), std::vector<std::string>{"Target Connection OK H.264"});
}
