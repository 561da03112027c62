// appliance_sim as a real process in the test's root, talked to over its
// sockets by an engine in the test.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "SimClient.h"
#include "SimProcess.h"
#include "WireConstants.h"

namespace {

const char* const MEDIATOR = wire::SOCK_MEDIATOR;
const char* const DEV = wire::SOCK_DEV;
const char* const SAP = wire::SOCK_SAP;

bool exists(const std::string& logicalPath) {
    struct stat info {};
    return stat(sysmgtPath(logicalPath).c_str(), &info) == 0;
}

}  // namespace

TEST(ApplianceSim, MediatorBranchesRaiseEventsAndParametersAreReadAndWritten) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    SimClient client;
    ASSERT_EQ(FC_OK, client.engine.requestSubscribe(MEDIATOR));

    Fcodes code = FC_COMM_ERROR;
    EXPECT_EQ("STOP", client.ask(MEDIATOR, "Tarnevel Get Branch State", {{"Branch", "UDP CH0"}}, "Branch State", code));
    EXPECT_EQ(FC_OK, code);
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Tarnevel Start Branch",
                                    {{"Branch", "UDP CH0"}, {"Sync", "true"}, {"Timeout sec", "30"}}));
    MessageEvent event;
    ASSERT_TRUE(client.waitEvent("Tarnevel Branch Started", event));
    EXPECT_EQ("UDP CH0", event.source);
    EXPECT_EQ("RUN", client.ask(MEDIATOR, "Tarnevel Get Branch State", {{"Branch", "UDP CH0"}}, "Branch State", code));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Tarnevel Stop Branch", {{"Branch", "UDP CH0"}}));
    ASSERT_TRUE(client.waitEvent("Tarnevel Branch Stopped", event));
    EXPECT_EQ("UDP CH0", event.source);

    EXPECT_EQ("1920x1080p @ 60",
              client.ask(MEDIATOR, "Tarnevel Get Param",
                         {{"Component", "SDI_RECEIVER"}, {"Parameter", "Video Format"}, {"TextValue", ""}}, "TextValue",
                         code));
    EXPECT_EQ(FC_OK, code);
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Tarnevel Put Param",
                                    {{"Component", "Device"}, {"Parameter", "Error LED"}, {"IntValue", "1"}}));
    EXPECT_EQ("1",
              client.ask(MEDIATOR, "Tarnevel Get Param",
                         {{"Component", "Device"}, {"Parameter", "Error LED"}, {"IntValue", ""}}, "IntValue", code));
    EXPECT_EQ(FC_OK,
              client.command(MEDIATOR, "Sim Set Param",
                             {{"Component", "SDI_RECEIVER"}, {"Parameter", "Video Format"}, {"Value", "No signal"}}));
    EXPECT_EQ("No signal", client.ask(MEDIATOR, "Tarnevel Get Param",
                                      {{"Component", "SDI_RECEIVER"}, {"Parameter", "Video Format"}, {"TextValue", ""}},
                                      "TextValue", code));
    EXPECT_EQ(FC_NO_SUCH_NAME, client.command(MEDIATOR, "Tarnevel Get Param",
                                              {{"Component", "Nothing"}, {"Parameter", "x"}, {"TextValue", ""}}));
    const std::string assembly = client.ask(MEDIATOR, "Tarnevel Get Assembly", {}, "Assembly", code);
    EXPECT_NE(std::string::npos, assembly.find("Video Encoder CH1\n")) << assembly;
    EXPECT_NE(std::string::npos,
              client.ask(MEDIATOR, "Sim Report", {}, "Report", code).find("write Device/Error LED=1\n"));

    EXPECT_TRUE(simulator.waitTraffic("IN  mediator COMMAND #"));
    EXPECT_TRUE(simulator.waitTraffic(
        "OUT mediator EVENT #0 \"Tarnevel Branch Started\" Source=\"UDP CH0\" Status=\"None\" Fcode=0x10000 (OK)"))
        << simulator.traffic();
    EXPECT_EQ(0, simulator.stop()) << "SIGTERM ends the simulator normally";
}

TEST(ApplianceSim, DeviceManagerServesItsDataSetAndCommands) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    SimClient client;
    DataCommunicator& engine = client.engine;
    std::string value;
    EXPECT_EQ(FC_OK,
              engine.requestGetParam(DEV, "DeviceDataSet", "DateTimeTable", "TZ", value, ParamAccess::Read, "", 5, 1));
    EXPECT_EQ("UTC", value);
    value = "CET-1CEST";
    EXPECT_EQ(FC_OK,
              engine.requestGetParam(DEV, "DeviceDataSet", "DateTimeTable", "TZ", value, ParamAccess::Write, "", 5, 1));
    value.clear();
    EXPECT_EQ(FC_OK,
              engine.requestGetParam(DEV, "DeviceDataSet", "DateTimeTable", "TZ", value, ParamAccess::Read, "", 5, 1));
    EXPECT_EQ("CET-1CEST", value) << "a SET takes effect at once";
    for (const char* interface : {"Ethernet 1", "Ethernet 2"}) {
        value.clear();
        EXPECT_EQ(FC_OK, engine.requestGetParam(DEV, "DeviceDataSet", "NetworkInterfacesTable", "IP Address", value,
                                                ParamAccess::Read, interface, 5, 1));
        EXPECT_EQ("127.0.0.1", value) << interface;
    }
    value = "unchanged";
    // Refused with a NACK, which the requester reports as a header error.
    EXPECT_EQ(FC_HEADER_ERROR,
              engine.requestGetParam(DEV, "DeviceDataSet", "NoTable", "TZ", value, ParamAccess::Read, "", 5, 1));
    EXPECT_EQ("unchanged", value);
    EXPECT_TRUE(simulator.waitTraffic("Fcode=0x10008 (" + fcodeText(FC_NO_SUCH_NAME) + ")")) << simulator.traffic();

    EXPECT_EQ(FC_OK, client.command(DEV, "Toggle KLVoSDI Input", {{"KLV Source", "true"}, {"ChannelID", "0"}}));
    EXPECT_EQ(FC_OK, client.command(DEV, "Reset KLV Statistics", {}));
    EXPECT_EQ(FC_NO_SUCH_NAME, client.command(DEV, "Reset Everything", {}));
    Fcodes code = FC_COMM_ERROR;
    EXPECT_EQ("command Toggle KLVoSDI Input ChannelID=0 KLV Source=true\ncommand Reset KLV Statistics\n",
              client.ask(DEV, "Sim Report", {}, "Report", code));
}

TEST(ApplianceSim, SapAnnouncerKeepsTheAnnouncedStreams) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    SimClient client;
    const MessageParams::ParamMap stream = {
        {"ChannelName", "Channel 0"}, {"DestinationIp", "239.1.1.1"}, {"DestinationPort", "5000"}, {"TTL", "1"}};
    EXPECT_EQ(FC_OK, client.command(SAP, "START_SAP", stream));
    Fcodes code = FC_COMM_ERROR;
    EXPECT_EQ("announced Channel 0 239.1.1.1:5000\n", client.ask(SAP, "Sim Report", {}, "Report", code));
    EXPECT_EQ(FC_OK, client.command(SAP, "STOP_SAP", stream));
    EXPECT_EQ("", client.ask(SAP, "Sim Report", {}, "Report", code));
    EXPECT_EQ(FC_OK, client.command(SAP, "START_SAP", stream));
    EXPECT_EQ(FC_OK, client.command(SAP, "STOP ALL SAP", {}));
    EXPECT_EQ("", client.ask(SAP, "Sim Report", {}, "Report", code));
    EXPECT_EQ(FC_BODY_ERROR, client.command(SAP, "START_SAP", {{"ChannelName", "x"}}));
    EXPECT_TRUE(simulator.waitTraffic("OUT sap ACK #")) << simulator.traffic();
}

TEST(ApplianceSim, InjectedFailuresAnswerWithACodeANackOrNothing) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    SimClient client;
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Fail",
                                    {{"Command", "Tarnevel Start Branch"}, {"Count", "2"}, {"Fcode", "0x10100"}}));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Fail", {{"Command", "Tarnevel Start Branch"}, {"Mode", "NACK"}}));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Sim Fail", {{"Command", "Tarnevel Start Branch"}, {"Mode", "Silent"}}));
    EXPECT_EQ(FC_BODY_ERROR, client.command(MEDIATOR, "Sim Fail", {{"Command", "X"}, {"Mode", "Loud"}}));
    const MessageParams::ParamMap branch = {{"Branch", "SRT CH1"}};
    EXPECT_EQ(FC_UNAVAILABLE, client.command(MEDIATOR, "Tarnevel Start Branch", branch));
    EXPECT_EQ(FC_UNAVAILABLE, client.command(MEDIATOR, "Tarnevel Start Branch", branch));
    EXPECT_EQ(FC_HEADER_ERROR, client.command(MEDIATOR, "Tarnevel Start Branch", branch)) << "a NACK";
    EXPECT_EQ(FC_COMM_ERROR, client.command(MEDIATOR, "Tarnevel Start Branch", branch, nullptr, 1)) << "no answer";
    EXPECT_TRUE(simulator.waitTraffic("mediator leaves #"));
    EXPECT_EQ(FC_OK, client.command(MEDIATOR, "Tarnevel Start Branch", branch)) << "the rules are used up";

    EXPECT_EQ(FC_OK, client.command(DEV, "Sim Fail", {{"Command", "GET"}, {"Fcode", "0x10008"}, {"Mode", "NACK"}}));
    std::string value = "unchanged";
    EXPECT_NE(FC_OK, client.engine.requestGetParam(DEV, "DeviceDataSet", "DateTimeTable", "TZ", value,
                                                   ParamAccess::Read, "", 5, 1));
    EXPECT_EQ("unchanged", value);
    EXPECT_TRUE(simulator.waitTraffic("OUT device NACK #"));
}

TEST(ApplianceSim, EmittedEventsReachTheSubscribersOfThatSocket) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    SimClient client;
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
}

TEST(ApplianceSim, EndsByItselfAfterItsTimeOutAndRemovesItsSockets) {
    SimProcess simulator(2);
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    EXPECT_TRUE(exists(MEDIATOR));
    EXPECT_TRUE(simulator.waitTraffic("appliance_sim ends", 20));
    EXPECT_EQ(0, simulator.stop());
    for (const char* sock : {MEDIATOR, DEV, SAP, "/tmp/sockSendDev"})
        EXPECT_FALSE(exists(sock)) << sock;
}
