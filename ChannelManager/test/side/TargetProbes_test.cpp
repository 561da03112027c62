#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>

#include "side/BoundedCommand.h"
#include "side/ProbeRegistry.h"
#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

// Stand-in "ping" and "traceroute" first on PATH for the life of the object:
// the probe's own command lines run, answer as the test says (ping's exit
// status, traceroute's output) and record their arguments. Made before the
// harness, while no other thread runs.
class FakeTools {
public:
    FakeTools() {
        char pattern[] = "/tmp/fake_probe_tools_XXXXXX";
        dir = mkdtemp(pattern) ? pattern : "";
        write("ping", "#!/bin/sh\necho \"$@\" >> \"$0.args\"\nexit $(cat \"$0.rc\")\n", 0755);
        write("traceroute", "#!/bin/sh\necho \"$@\" >> \"$0.args\"\ncat \"$0.out\"\n", 0755);
        answer(0, "");
        previousPath = getenv("PATH") ? getenv("PATH") : "/usr/bin:/bin";
        setenv("PATH", (dir + ":" + previousPath).c_str(), 1);
    }
    ~FakeTools() {
        setenv("PATH", previousPath.c_str(), 1);
        for (const char* file : {"ping", "traceroute", "ping.rc", "traceroute.out", "ping.args", "traceroute.args"})
            unlink((dir + "/" + file).c_str());
        rmdir(dir.c_str());
    }
    void answer(int pingStatus, const std::string& route) {
        write("ping.rc", std::to_string(pingStatus), 0644);
        write("traceroute.out", route, 0644);
    }
    std::string args(const std::string& tool) const {
        std::ifstream in(dir + "/" + tool + ".args");
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::string dir;

private:
    void write(const std::string& name, const std::string& text, mode_t mode) {
        std::ofstream(dir + "/" + name) << text;
        chmod((dir + "/" + name).c_str(), mode);
    }
    std::string previousPath;
};

void setAddress(ChannelHarness& h, const char* target, const char* address) {
    h.holder->initTextParam(ds::CHANNEL, tbl::TARGET, prop::TARGET_ADDRESS, address, target);
}

bool probesEnded() {
    return ProbeRegistry::instance().waitIdle(std::chrono::seconds(20));
}

}  // namespace

TEST(TargetProbes, AddressesThatAreNotProbed) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    setAddress(h, "H.264 Target2", "not an address");  // disabled: never looked at
    struct Row {
        const char* address;
        Fcodes expected;
    } rows[] = {{"239.1.1.9", FC_OK},        {"224.0.0.1", FC_OK},  // multicast: skipped silently
                {"300.1.1.1", FC_BAD_VALUE}, {"127.0.0.1; true", FC_BAD_VALUE},
                {"", FC_BAD_VALUE},          {"::1", FC_BAD_VALUE}};  // another family
    for (const Row& row : rows) {
        setAddress(h, "H.264 Target1", row.address);
        EXPECT_EQ(h.channel().testConnectionToTarget(row::H264), row.expected) << "\"" << row.address << "\"";
        EXPECT_EQ(ProbeRegistry::instance().running(), 0) << "\"" << row.address << "\"";
    }
    h.channel().traceroute(row::H264, "127.0.0.1; true");  // refused before any shell line
    EXPECT_TRUE(h.recorder.events().empty());
}

TEST(TargetProbes, ProbeReportsWhatPingAndTracerouteSay) {
    FakeTools tools;
    ASSERT_FALSE(tools.dir.empty());
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    setAddress(h, "HEVC Target1", "127.0.0.1");
    struct Row {
        int pingStatus;
        const char* route;
        const char* event;  // nullptr: none
        unsigned long fcode;
        const char* description;
        const char* traceArgs;
    } rows[] = {
        {0, "", "Target Connection OK", 0x20000, "ping 127.0.0.1 OK", ""},
        {1, " 1  localhost (127.0.0.1)  0.031 ms\n", "Target Connection Failed", 0x10100,
         " 1  localhost (127.0.0.1)  0.031 ms\n", "-I 127.0.0.1\n"},
        {2, "", nullptr, 0, "", "-I 127.0.0.1\n-I 127.0.0.1\n"},  // traceroute prints nothing
    };
    for (const Row& row : rows) {
        tools.answer(row.pingStatus, row.route);
        h.recorder.clear();
        ASSERT_EQ(h.channel().testConnectionToTarget(row::HEVC), FC_OK) << row.pingStatus;
        setAddress(h, "HEVC Target1", "239.1.1.1");  // the probe copied the address
        ASSERT_TRUE(probesEnded());
        setAddress(h, "HEVC Target1", "127.0.0.1");
        const std::vector<RecordedEvent> events = h.recorder.events();
        ASSERT_EQ(events.size(), row.event ? 1u : 0u) << row.pingStatus;
        if (row.event) {
            EXPECT_EQ(events[0].id + " " + events[0].rowId + " " + events[0].status,
                      std::string(row.event) + " HEVC None");
            EXPECT_EQ(events[0].fcode, row.fcode);
            EXPECT_EQ(events[0].description, row.description);
        }
        EXPECT_EQ(tools.args("traceroute"), row.traceArgs) << row.pingStatus;
    }
    EXPECT_EQ(tools.args("ping"), "-c 1 127.0.0.1\n-c 1 127.0.0.1\n-c 1 127.0.0.1\n");
}

TEST(TargetProbes, ManyProbesAtOnceWhileTheRowsChange) {
    FakeTools tools;
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    for (const char* target : {"H.264 Target1", "H.264 Target2", "HEVC Target1", "HEVC Target2"}) {
        setAddress(h, target, "127.0.0.1");
        h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, true, target);
    }
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(h.channel().testConnectionToTarget(row::H264), FC_OK);
        EXPECT_EQ(h.channel().testConnectionToTarget(row::HEVC), FC_OK);
        setAddress(h, "H.264 Target1", round == 0 ? "239.1.1.1" : "127.0.0.1");
        h.channel().updateStreamAndErrorLeds();
    }
    ASSERT_TRUE(probesEnded());
    EXPECT_EQ(h.recorder.events().size(), 11u);  // the second H.264 round had a multicast target
}

TEST(TargetProbes, RealPingOfLoopback) {
    const BoundedRun check = runBounded("ping -c 1 127.0.0.1", 3000, 0);
    if (!check.started || check.status != 0)
        GTEST_SKIP() << "this host cannot ping 127.0.0.1";
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    setAddress(h, "H.264 Target1", "127.0.0.1");
    ASSERT_EQ(h.channel().testConnectionToTarget(row::H264), FC_OK);
    ASSERT_TRUE(probesEnded());
    EXPECT_EQ(h.recorder.names(), std::vector<std::string>{"Target Connection OK H.264"});
}
