// chanctl and appliance_sim together as real processes in a root of each test's own:
// what a person does from the shell, checked line by line.
#include <gtest/gtest.h>

#include "DaemonProcess.h"

using namespace datacom;

TEST(ChanctlWithSim, MediatorCommandsParametersAndBranchEvents) {
    TestRoot root;
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();

    // The listener subscribes first; the start it then sees comes from another chanctl.
    FILE* listener = startChanctl(AT_MEDIATOR + "listen --count 1 --timeout 20");
    ASSERT_NE(nullptr, listener);
    ASSERT_TRUE(simulator.waitTraffic("\"SUBSCRIBE\" SockName=\"/tmp/", 20)) << simulator.traffic();
    ToolRun started =
        chanctl(AT_MEDIATOR + "command 'Tarnevel Start Branch' 'Branch=UDP CH0' Sync=true 'Timeout sec=30'");
    EXPECT_EQ(0, started.status) << started.output;
    ToolRun listened = finishTool(listener);
    EXPECT_EQ(0, listened.status) << listened.output;
    EXPECT_NE(std::string::npos, listened.output.find("\"Tarnevel Branch Started\" fcode=0x10000 source=\"UDP CH0\""))
        << listened.output;

    ToolRun state = chanctl(AT_MEDIATOR + "command 'Tarnevel Get Branch State' 'Branch=UDP CH0'");
    EXPECT_EQ(0, state.status);
    EXPECT_EQ("Branch=UDP CH0\nBranch State=RUN\n", state.output);

    ToolRun read = chanctl(AT_MEDIATOR +
                           "command 'Tarnevel Get Param' Component=SDI_RECEIVER 'Parameter=Video Format' TextValue=");
    EXPECT_EQ(0, read.status);
    EXPECT_NE(std::string::npos, read.output.find("TextValue=1920x1080i @ 25\n")) << read.output;
    EXPECT_EQ(
        0, chanctl(AT_MEDIATOR + "command 'Tarnevel Put Param' Component=Device 'Parameter=Streaming LED' IntValue=1")
               .status);
    ToolRun report = chanctl(AT_MEDIATOR + "command 'Sim Report'");
    EXPECT_NE(std::string::npos, report.output.find("write Device/Streaming LED=1")) << report.output;
    EXPECT_TRUE(simulator.waitTraffic("IN  mediator COMMAND #")) << simulator.traffic();
}

TEST(ChanctlWithSim, DeviceGetAndSetAndSapStreams) {
    TestRoot root;
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    ToolRun tz = chanctl(AT_DEV + "get DeviceDataSet DateTimeTable TZ");
    EXPECT_EQ(0, tz.status);
    EXPECT_EQ("UTC\n", tz.output);
    ToolRun set = chanctl(AT_DEV + "set DeviceDataSet DateTimeTable TZ EST5EDT");
    EXPECT_EQ(0, set.status) << set.output;
    EXPECT_EQ("EST5EDT\n", chanctl(AT_DEV + "get DeviceDataSet DateTimeTable TZ").output);
    ToolRun address = chanctl(AT_DEV + "get DeviceDataSet NetworkInterfacesTable 'IP Address' 'Ethernet 1'");
    EXPECT_EQ("127.0.0.1\n", address.output);
    ToolRun missing = chanctl(AT_DEV + "get DeviceDataSet NoSuchTable TZ");
    EXPECT_NE(0, missing.status);
    EXPECT_EQ(0, chanctl(AT_DEV + "command 'Reset KLVoIP Statistics'").status);

    EXPECT_EQ(0,
              chanctl(AT_SAP + "command START_SAP ChannelName=c0 DestinationIp=239.1.1.1 DestinationPort=5000").status);
    EXPECT_EQ("Report=announced c0 239.1.1.1:5000\n\n", chanctl(AT_SAP + "command 'Sim Report'").output);
    EXPECT_EQ(0,
              chanctl(AT_SAP + "command STOP_SAP ChannelName=c0 DestinationIp=239.1.1.1 DestinationPort=5000").status);
    EXPECT_EQ(0, chanctl(AT_SAP + "command 'STOP ALL SAP'").status);
}
