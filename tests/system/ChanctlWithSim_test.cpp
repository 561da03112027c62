// chanctl and appliance_sim together as real processes in the test's root:
// what a person does from the shell, checked line by line.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <memory>

#include "SimProcess.h"

namespace {

// A chanctl run: its standard output and error together, and exit status.
struct ToolRun {
    std::string output;
    int status = -1;
};

// Starts chanctl with `args` (already quoted for the shell); read it with finish().
FILE* startChanctl(const std::string& args) {
    return popen((toolCommand("chanctl") + " " + args + " 2>&1").c_str(), "r");
}

ToolRun finish(FILE* pipe) {
    ToolRun run;
    if (pipe == nullptr)
        return run;
    char buffer[512];
    while (fgets(buffer, sizeof buffer, pipe) != nullptr)
        run.output += buffer;
    int raw = pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return run;
}

ToolRun chanctl(const std::string& args) {
    return finish(startChanctl("--timeout 5 " + args));
}

const std::string MEDIATOR = "--socket /tmp/sockTarnevelMediator ";
const std::string DEV = "--socket /tmp/sockDev ";
const std::string SAP = "--socket /tmp/sockSap ";

}  // namespace

TEST(ChanctlWithSim, MediatorCommandsParametersAndBranchEvents) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();

    // The listener subscribes first; the start it then sees comes from another chanctl.
    FILE* listener = startChanctl(MEDIATOR + "listen --count 1 --timeout 20");
    ASSERT_NE(nullptr, listener);
    ASSERT_TRUE(simulator.waitTraffic("\"SUBSCRIBE\" SockName=\"/tmp/", 20)) << simulator.traffic();
    ToolRun started = chanctl(MEDIATOR + "command 'Tarnevel Start Branch' 'Branch=UDP CH0' Sync=true 'Timeout sec=30'");
    EXPECT_EQ(0, started.status) << started.output;
    ToolRun listened = finish(listener);
    EXPECT_EQ(0, listened.status) << listened.output;
    EXPECT_NE(std::string::npos, listened.output.find("\"Tarnevel Branch Started\" fcode=0x10000 source=\"UDP CH0\""))
        << listened.output;

    ToolRun state = chanctl(MEDIATOR + "command 'Tarnevel Get Branch State' 'Branch=UDP CH0'");
    EXPECT_EQ(0, state.status);
    EXPECT_EQ("Branch=UDP CH0\nBranch State=RUN\n", state.output);

    ToolRun read =
        chanctl(MEDIATOR + "command 'Tarnevel Get Param' Component=SDI_RECEIVER 'Parameter=Video Format' TextValue=");
    EXPECT_EQ(0, read.status);
    EXPECT_NE(std::string::npos, read.output.find("TextValue=1920x1080i @ 25\n")) << read.output;
    EXPECT_EQ(0,
              chanctl(MEDIATOR + "command 'Tarnevel Put Param' Component=Device 'Parameter=Streaming LED' IntValue=1")
                  .status);
    ToolRun report = chanctl(MEDIATOR + "command 'Sim Report'");
    EXPECT_NE(std::string::npos, report.output.find("write Device/Streaming LED=1")) << report.output;
    EXPECT_TRUE(simulator.waitTraffic("IN  mediator COMMAND #")) << simulator.traffic();
}

TEST(ChanctlWithSim, DeviceGetAndSetAndSapStreams) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    ToolRun tz = chanctl(DEV + "get DeviceDataSet DateTimeTable TZ");
    EXPECT_EQ(0, tz.status);
    EXPECT_EQ("UTC\n", tz.output);
    ToolRun set = chanctl(DEV + "set DeviceDataSet DateTimeTable TZ EST5EDT");
    EXPECT_EQ(0, set.status) << set.output;
    EXPECT_EQ("EST5EDT\n", chanctl(DEV + "get DeviceDataSet DateTimeTable TZ").output);
    ToolRun address = chanctl(DEV + "get DeviceDataSet NetworkInterfacesTable 'IP Address' 'Ethernet 1'");
    EXPECT_EQ("127.0.0.1\n", address.output);
    ToolRun missing = chanctl(DEV + "get DeviceDataSet NoSuchTable TZ");
    EXPECT_NE(0, missing.status);
    EXPECT_EQ(0, chanctl(DEV + "command 'Reset KLVoIP Statistics'").status);

    EXPECT_EQ(0, chanctl(SAP + "command START_SAP ChannelName=c0 DestinationIp=239.1.1.1 DestinationPort=5000").status);
    EXPECT_EQ("Report=announced c0 239.1.1.1:5000\n\n", chanctl(SAP + "command 'Sim Report'").output);
    EXPECT_EQ(0, chanctl(SAP + "command STOP_SAP ChannelName=c0 DestinationIp=239.1.1.1 DestinationPort=5000").status);
    EXPECT_EQ(0, chanctl(SAP + "command 'STOP ALL SAP'").status);
}

TEST(ChanctlWithSim, InjectedFailureGivesNonZeroStatusAndListenSeesEmittedEvent) {
    SimProcess simulator;
    ASSERT_TRUE(simulator.waitReady()) << simulator.traffic();
    EXPECT_EQ(0, chanctl(MEDIATOR + "command 'Sim Fail' 'Command=Tarnevel Start Branch' Fcode=0x10008").status);
    ToolRun failed = chanctl(MEDIATOR + "command 'Tarnevel Start Branch' Branch=x");
    EXPECT_EQ(1, failed.status);
    EXPECT_NE(std::string::npos, failed.output.find("No Such Name")) << failed.output;
    EXPECT_EQ(0, chanctl(MEDIATOR + "command 'Tarnevel Start Branch' Branch=x").status) << "used up";

    EXPECT_EQ(0, chanctl(DEV + "command 'Sim Fail' Command=GET Mode=Silent").status);
    ToolRun silent = finish(startChanctl("--timeout 1 " + DEV + "get DeviceDataSet DateTimeTable TZ"));
    EXPECT_NE(0, silent.status) << silent.output;

    FILE* listener = startChanctl(DEV + "listen --count 1 --timeout 20");
    ASSERT_NE(nullptr, listener);
    ASSERT_TRUE(simulator.waitTraffic("\"SUBSCRIBE\" SockName=\"/tmp/", 20)) << simulator.traffic();
    EXPECT_EQ(0, chanctl(DEV + "command 'Sim Emit Event' 'Event=KLVoIP Updated' Source=device").status);
    ToolRun listened = finish(listener);
    EXPECT_EQ(0, listened.status) << listened.output;
    EXPECT_NE(std::string::npos, listened.output.find("\"KLVoIP Updated\" fcode=0x10000 source=\"device\""))
        << listened.output;
}
