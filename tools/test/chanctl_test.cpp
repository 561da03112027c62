#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

#include "ChanctlArgs.h"
#include "ChanctlFormat.h"
#include "EngineTestSupport.h"
#include "MessageEvent.h"
#include "SysmgtRoot.h"
#include "ToolCommand.h"

namespace {

TEST(ChanctlArgs, ReadsActionsWordsParametersAndOptions) {
    const struct {
        std::vector<std::string> args;
        ChanctlAction action;
        std::vector<std::string> words;
        std::vector<std::pair<std::string, std::string>> params;
    } accepted[] = {
        {{"command", "Play", "RowID=HEVC", "File=a=b"},
         ChanctlAction::Command,
         {"Play"},
         {{"RowID", "HEVC"}, {"File", "a=b"}}},
        {{"command", "A=B"}, ChanctlAction::Command, {"A=B"}, {}},
        {{"get", "DS", "Comp", "Prop"}, ChanctlAction::Get, {"DS", "Comp", "Prop"}, {}},
        {{"--socket", "/tmp/sockDev", "get", "DS", "C", "P", "Ethernet 1"},
         ChanctlAction::Get,
         {"DS", "C", "P", "Ethernet 1"},
         {}},
        {{"set", "DS", "C", "P", "x=y", "HEVC"}, ChanctlAction::Set, {"DS", "C", "P", "x=y", "HEVC"}, {}},
        {{"listen", "--count=2"}, ChanctlAction::Listen, {}, {}},
        {{"event", "Data Stream", "--source", "HEVC", "K=V"}, ChanctlAction::Event, {"Data Stream"}, {{"K", "V"}}},
        {{"status", "--timeout", "3"}, ChanctlAction::Status, {}, {}},
        {{"status", "--help"}, ChanctlAction::Help, {}, {}},
    };
    for (const auto& row : accepted) {
        ChanctlOptions options;
        const std::string name = row.args[0] + " " + (row.args.size() > 1 ? row.args[1] : "");
        EXPECT_EQ(parseChanctlArgs(row.args, options), "") << name;
        EXPECT_EQ(options.action, row.action) << name;
        EXPECT_EQ(options.words, row.words) << name;
        EXPECT_EQ(options.params, row.params) << name;
    }

    ChanctlOptions options;
    ASSERT_EQ(parseChanctlArgs({"event", "E", "--socket=/tmp/x", "--timeout", "7", "--status", "ON", "--fcode",
                                "0x20008", "--description", "Zixi Feeder CH1"},
                               options),
              "");
    EXPECT_EQ(options.socket, "/tmp/x");
    EXPECT_EQ(options.timeoutSec, 7u);
    EXPECT_TRUE(options.timeoutGiven);
    EXPECT_EQ(options.status, "ON");
    EXPECT_EQ(options.fcode, static_cast<Fcodes>(0x20008));
    EXPECT_EQ(options.description, "Zixi Feeder CH1");
    ChanctlOptions defaults;
    EXPECT_EQ(defaults.socket, "/tmp/sockChan");
    EXPECT_EQ(defaults.timeoutSec, 10u);

    const struct {
        std::vector<std::string> args;
        const char* reason;
    } refused[] = {
        {{}, "no action given"},
        {{"play"}, "unknown action 'play'"},
        {{"get", "DS", "C"}, "wrong number of arguments for 'get'"},
        {{"set", "DS", "C", "P", "V", "I", "extra"}, "wrong number of arguments for 'set'"},
        {{"status", "--timeout", "0"}, "--timeout needs whole seconds from 1 to 86400, not '0'"},
        {{"status", "--timeout", "5s"}, "--timeout needs whole seconds from 1 to 86400, not '5s'"},
        {{"listen", "--count"}, "--count needs a value"},
        {{"listen", "--loud", "1"}, "unknown option --loud"},
        {{"set", "DS", "C", "P", "say \"hi\""}, "'say \"hi\"' holds a double quote, which the wire cannot carry"},
        {{"command", "X", "N=\"v\""}, "'N=\"v\"' holds a double quote, which the wire cannot carry"},
        {{"event", "E", "--description", "a\"b"}, "'a\"b' holds a double quote, which the wire cannot carry"},
    };
    for (const auto& row : refused) {
        ChanctlOptions ignored;
        EXPECT_EQ(parseChanctlArgs(row.args, ignored), row.reason) << row.reason;
    }
}

TEST(ChanctlFormat, EventLinesFcodeMeaningsRepliesAndTheStatusTable) {
    MessageEvent event;
    event.id = "Channel Played";
    event.fcode = static_cast<Fcodes>(0x20000);
    event.source = "HEVC";
    event.severity = "Info";
    event.description = "two\nlines";
    event.time = "2026-11-22  03:00:00";
    event.addParam("RowID", "HEVC");
    EXPECT_EQ(eventLine(event),
              "\"Channel Played\" fcode=0x20000 source=\"HEVC\" status=\"None\" severity=\"Info\" "
              "description=\"two lines\" time=\"2026-11-22  03:00:00\" \"RowID\"=\"HEVC\"\n");

    const std::pair<uint32_t, const char*> meanings[] = {
        {0x10000, "OK"},
        {0x10008, "No Such Name"},
        {0x20000, "informational"},
        {0x20002, "channel error: video input lost"},
        {0x20004, "data stream: Zixi connection failed"},
        {0x20008, "data stream lost"},
        {0x20010, "stopped: input format changed"},
        {0x20020, "stopped by a user command"},
        {0x20028, "data stream lost, stopped by a user command"},
        {0x20040, "unknown condition"},
    };
    for (const auto& row : meanings)
        EXPECT_EQ(channelFcodeMeaning(row.first), row.second) << std::hex << row.first;

    EXPECT_EQ(replyText("<BODY><Command ID=\"A\" >\n\t<Parameter Name=\"Row\" Value=\"3\" />\n"
                        "\t<Parameter Name=\"B\" Value=\"x y\" />\n</Command>\n</BODY>"),
              "B=x y\nRow=3\n");
    EXPECT_EQ(replyText("<BODY>\n  done \n</BODY>"), "done\n");
    EXPECT_EQ(replyText(""), "");

    const StatusRow& fcodeRow = statusRows()[2];
    EXPECT_EQ(statusCell(fcodeRow, "131104"), "0x20020 (stopped by a user command)");
    EXPECT_EQ(statusCell(fcodeRow, "n/a"), "n/a");
    EXPECT_EQ(statusCell(statusRows()[0], "131104"), "131104");
    std::vector<ChannelSummary> channels = {
        {"H.264", "H.264 (CH0)", {"Playing", "OK", "0x10000 (OK)", "SDI 1", "1080i50", "1920x1080 @ 1", "8000"}},
        {"HEVC", "HEVC (CH1)", {"Stopped", "OK", "? (No Such Name)", "HDMI", "-", "-", "0"}},
    };
    EXPECT_EQ(statusTable(channels),
              "                H.264 (CH0)    HEVC (CH1)\n"
              "State           Playing        Stopped\n"
              "Status          OK             OK\n"
              "Fcode           0x10000 (OK)   ? (No Such Name)\n"
              "Source          SDI 1          HDMI\n"
              "Input           1080i50        -\n"
              "Resolution      1920x1080 @ 1  -\n"
              "Total Bit Rate  8000           0\n");
}

// --- chanctl as a real process against an in-test service ---

constexpr const char* PEER = "/tmp/sockPeer";

// A served engine on PEER with the recording fake holder.
struct Service {
    Service() {
        engine.init(&holder, PEER, "/tmp/sockPeerSend", "tPeer");
        engine.start();
    }
    FakeDataHolder holder;
    DataCommunicator engine;
};

struct ToolRun {
    int status = -1;
    std::string out, err;
};

// Runs chanctl with `args` against PEER; each run is bounded by its --timeout.
ToolRun chanctl(const std::string& args) {
    const std::string errFile = sysmgtPath("/tmp/chanctl-test.err");
    FILE* pipe =
        popen((toolCommand("chanctl") + " --socket " + PEER + " --timeout 3 " + args + " 2>" + errFile).c_str(), "r");
    ToolRun run;
    if (pipe == nullptr)
        return run;
    char buffer[4096];
    size_t got;
    while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        run.out.append(buffer, got);
    int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ifstream err(errFile);
    std::stringstream text;
    text << err.rdbuf();
    run.err = text.str();
    return run;
}

// The chanctl socket files left in the root's /tmp.
std::vector<std::string> chanctlSockets() {
    std::vector<std::string> names;
    if (DIR* dir = opendir(sysmgtPath("/tmp").c_str())) {
        while (dirent* entry = readdir(dir))
            if (std::string(entry->d_name).rfind("chanctl-", 0) == 0 &&
                std::string(entry->d_name).find(".err") == std::string::npos)
                names.push_back(entry->d_name);
        closedir(dir);
    }
    return names;
}

// Waits (bounded) until chanctl subscribed to the service; its receive socket path, or "".
std::string awaitSubscriber(const Service& service) {
    for (int i = 0; i < 1000; ++i) {
        auto observers = service.engine.getObservers();
        if (!observers.empty())
            return observers[0];
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return "";
}

TEST(Chanctl, CommandGetSetAndStatusAgainstAService) {
    Service service;
    service.holder.setExecuteAnswer("<Command ID=\"Answer\" >\n\t<Parameter Name=\"Row\" Value=\"7\" />\n</Command>\n",
                                    FC_OK);
    ToolRun run = chanctl("command Play RowID=HEVC");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Row=7\n");
    auto calls = service.holder.calls();
    ASSERT_FALSE(calls.empty());
    EXPECT_NE(calls.back().find("<Command ID=\"Play\" >\n\t<Parameter Name=\"RowID\" Value=\"HEVC\" />\n</Command>"),
              std::string::npos)
        << calls.back();

    const char* fields[][2] = {{"State", "Playing"},
                               {"Status", "OK"},
                               {"Fcode", "65536"},
                               {"Source", "SDI 1"},
                               {"Input Resolution", "1080p30"},
                               {"Resolution", "H.264 @ 1"},
                               {"Total Bit Rate", "8000"}};
    for (const auto& field : fields) {
        service.holder.setJson("ChannelDataSet", "ChannelsTable", "H.264", field[0], field[1]);
        service.holder.setJson("ChannelDataSet", "ChannelsTable", "HEVC", field[0], field[1]);
    }
    service.holder.setJson("ChannelDataSet", "ChannelsTable", "HEVC", "Fcode", "131088");

    run = chanctl("get ChannelDataSet ChannelsTable State HEVC");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Playing\n");

    run = chanctl("set ChannelDataSet ChannelsTable State 'Stopped now' HEVC");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Stopped now\n");
    std::string pending;
    EXPECT_EQ(service.holder.getNewTextParam("ChannelDataSet", "ChannelsTable", "State", pending, "HEVC"), FC_OK);
    EXPECT_EQ(pending, "Stopped now");

    run = chanctl("status");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "                H.264 (CH0)   HEVC (CH1)\n"
              "State           Playing       Playing\n"
              "Status          OK            OK\n"
              "Fcode           0x10000 (OK)  0x20010 (stopped: input format changed)\n"
              "Source          SDI 1         SDI 1\n"
              "Input           1080p30       1080p30\n"
              "Resolution      H.264 @ 1     H.264 @ 1\n"
              "Total Bit Rate  8000          8000\n");
    EXPECT_TRUE(chanctlSockets().empty());
}

TEST(Chanctl, RefusalsExitNonZeroWithTheirTextOnStderr) {
    Service service;
    ToolRun run = chanctl("get ChannelDataSet ChannelsTable Nope HEVC");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "chanctl: No Such Name\n");

    service.holder.setExecuteAnswer("", FC_BAD_VALUE);
    run = chanctl("command Play RowID=2");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "chanctl: Bad Value\n");

    run = chanctl("set DS C P 'a\"b'");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("holds a double quote"), std::string::npos) << run.err;

    service.engine.stop();  // nobody reads the socket any more: no answer in time
    run = chanctl("command Play");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "chanctl: Communication Error\n");
    EXPECT_TRUE(chanctlSockets().empty());
}

TEST(Chanctl, ListenPrintsEventsAndEventSendsOne) {
    Service service;
    FILE* listener =
        popen((toolCommand("chanctl") + " --socket " + PEER + " --timeout 10 --count 1 listen").c_str(), "r");
    ASSERT_NE(listener, nullptr);
    ASSERT_NE(awaitSubscriber(service), "");
    MessageEvent event;
    event.id = "Channel Played";
    event.fcode = static_cast<Fcodes>(0x20000);
    event.addParam("RowID", "HEVC");
    service.engine.notify(event);
    char line[1024] = {};
    ASSERT_NE(fgets(line, sizeof line, listener), nullptr);
    EXPECT_EQ(std::string(line).substr(0, 31), "\"Channel Played\" fcode=0x20000 ");
    EXPECT_NE(std::string(line).find(" \"RowID\"=\"HEVC\"\n"), std::string::npos) << line;
    EXPECT_EQ(pclose(listener), 0);

    ToolRun run = chanctl("event 'Data Stream' --source HEVC --status ON --fcode 0x20008 Extra=1");
    EXPECT_EQ(run.status, 0) << run.err;
    std::vector<std::string> calls;
    for (int i = 0; i < 500 && (calls = service.holder.calls()).empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0], "handle Data Stream " + std::to_string(0x20008));
    EXPECT_TRUE(chanctlSockets().empty());
}

TEST(Chanctl, AnInterruptedListenRemovesItsSockets) {
    Service service;
    FILE* listener = popen((toolCommand("chanctl") + " --socket " + PEER + " --timeout 20 listen").c_str(), "r");
    ASSERT_NE(listener, nullptr);
    const std::string subscriber = awaitSubscriber(service);
    ASSERT_EQ(subscriber.rfind("/tmp/chanctl-", 0), 0u) << subscriber;
    EXPECT_EQ(chanctlSockets().size(), 2u);
    const pid_t pid = static_cast<pid_t>(std::stol(subscriber.substr(13)));
    ASSERT_EQ(kill(pid, SIGTERM), 0);
    const int status = pclose(listener);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGTERM) << status;
    EXPECT_TRUE(chanctlSockets().empty());
}

}  // namespace
