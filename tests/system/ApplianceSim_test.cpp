// appliance_sim as a real process in a root of each test's own, talked to
// over its sockets by an engine in the test: the failure modes, every field
// of an emitted event, and the process's end.
#include <gtest/gtest.h>

#include "DaemonProcess.h"
#include "datacom/WireConstants.h"

using namespace datacom;

namespace {

const char* const MEDIATOR = wire::SOCK_MEDIATOR;
const char* const DEV = wire::SOCK_DEV;
const char* const SAP = wire::SOCK_SAP;

}  // namespace

TEST(ApplianceSim, InjectedFailuresAnswerWithACodeANackOrNothing) {
    TestRoot root;
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    PeerClient client("/tmp/sockSimTest");
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Fail",
                                    {{"Command", "Tarnevel Start Branch"}, {"Count", "2"}, {"Fcode", "0x10100"}}));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Fail", {{"Command", "Tarnevel Start Branch"}, {"Mode", "NACK"}}));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Fail", {{"Command", "Tarnevel Start Branch"}, {"Mode", "Silent"}}));
    EXPECT_EQ(FC_BODY_ERROR, client.command(MEDIATOR, "Sim Fail", {{"Command", "X"}, {"Mode", "Loud"}}));
    const MessageParams::ParamMap branch = {{"Branch", "SRT CH1"}};
    EXPECT_EQ(FC_UNAVAILABLE, client.command(MEDIATOR, "Tarnevel Start Branch", branch));
    EXPECT_EQ(FC_UNAVAILABLE, client.command(MEDIATOR, "Tarnevel Start Branch", branch));
    EXPECT_EQ(FC_UNAVAILABLE, client.command(MEDIATOR, "Tarnevel Start Branch", branch));
    EXPECT_EQ("NACK", client.lastReplyType);
    EXPECT_EQ(FC_COMM_ERROR, client.command(MEDIATOR, "Tarnevel Start Branch", branch, 1)) << "no answer";
    EXPECT_TRUE(simulator.waitTraffic("mediator leaves #"));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Tarnevel Start Branch", branch)) << "the rules are used up";
    EXPECT_EQ("ACK", client.lastReplyType);

    EXPECT_EQ(FC_OK, client.command(DEV, "Sim Fail", {{"Command", "GET"}, {"Fcode", "0x10008"}, {"Mode", "NACK"}}));
    std::string value = "unchanged";
    EXPECT_NE(FC_OK, client.engine.requestGetParam(DEV, "DeviceDataSet", "DateTimeTable", "TZ", value,
                                                   ParamAccess::Read, "", 5, 1));
    EXPECT_EQ("unchanged", value);
    EXPECT_TRUE(simulator.waitTraffic("OUT device NACK #"));
}

TEST(ApplianceSim, EmittedEventsReachTheSubscribersOfThatSocket) {
    TestRoot root;
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    PeerClient client("/tmp/sockSimTest");
    ASSERT_EQ(FC_OK, client.engine.requestSubscribe(DEV));
    EXPECT_EQ(FC_OK, client.command(DEV, "Sim Emit Event", {{"Event", "Date&Time Updated"}, {"TZ", "UTC"}}));
    MessageEvent event;
    ASSERT_TRUE(client.waitEvent("Date&Time Updated", event));
    std::string tz;
    EXPECT_EQ(1, event.getParam("TZ", tz));
    EXPECT_EQ("UTC", tz);

    ASSERT_EQ(FC_OK, client.engine.requestSubscribe(MEDIATOR));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Emit Event",
                                    {{"Event", "Data Stream"},
                                     {"Source", "HEVC"},
                                     {"Status", "Alarm"},
                                     {"Description", "Zixi Feeder CH1"},
                                     {"Fcode", "0x20004"}}));
    ASSERT_TRUE(client.waitEvent("Data Stream", event));
    EXPECT_EQ("HEVC", event.source);
    EXPECT_EQ("Alarm", event.status);
    EXPECT_EQ("Zixi Feeder CH1", event.description);
    EXPECT_EQ(0x20004u, static_cast<uint32_t>(event.fcode));
    EXPECT_TRUE(event.params.empty());
    EXPECT_EQ(FC_BODY_ERROR, client.command(MEDIATOR, "Sim Emit Event", {{"Source", "HEVC"}}));

    // Events sent to the simulator: its worker destroys each after handling
    // it, so under the leak checker a leak would end it with a failing status.
    constexpr int kEvents = 300;
    for (int i = 0; i < kEvents; ++i) {
        event.id = "Incoming " + std::to_string(i);
        ASSERT_EQ(FC_OK, client.engine.requestEvent(MEDIATOR, event, 1, 3)) << event.id;
    }
    EXPECT_TRUE(simulator.waitTraffic("Incoming " + std::to_string(kEvents - 1)));
    EXPECT_EQ(0, simulator.stop());
}

TEST(ApplianceSim, EndsByItselfAfterItsTimeOutAndRemovesItsSockets) {
    TestRoot root;
    SimProcess simulator(2);
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    EXPECT_TRUE(fileExists(MEDIATOR));
    EXPECT_TRUE(simulator.waitTraffic("appliance_sim ends", 20));
    EXPECT_EQ(0, simulator.stop());
    for (const char* sock : {MEDIATOR, DEV, SAP, "/tmp/sockSendDev"})
        EXPECT_FALSE(fileExists(sock)) << sock;
}
