#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>
#include <tuple>

#include "ChanctlArgs.h"
#include "ChanctlFormat.h"
#include "ToolCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/SysmgtRoot.h"
#include "engine/EngineTestSupport.h"

using namespace datacom;

namespace {

TEST(ChanctlArgs, ReadsActionsWordsParametersAndOptionsAndRefusesQuotes) {
    using Params = std::vector<std::pair<std::string, std::string>>;
    const struct {
        std::vector<std::string> args;
        ChanctlAction action;
        std::vector<std::string> words;
        Params params;
    } accepted[] = {
        {{"command", "Play", "RowID=HEVC", "File=a=b"},
         ChanctlAction::Command,
         {"Play"},
         {{"RowID", "HEVC"}, {"File", "a=b"}}},
        {{"command", "A=B"}, ChanctlAction::Command, {"A=B"}, {}},
        {{"--socket", "/tmp/sockDev", "get", "DS", "C", "P", "Ethernet 1"},
         ChanctlAction::Get,
         {"DS", "C", "P", "Ethernet 1"},
         {}},
        {{"set", "DS", "C", "P", "x=y"}, ChanctlAction::Set, {"DS", "C", "P", "x=y"}, {}},
        {{"listen", "--count=2"}, ChanctlAction::Listen, {}, {}},
        {{"status", "--help"}, ChanctlAction::Help, {}, {}},
    };
    for (const auto& row : accepted) {
        ChanctlOptions options;
        EXPECT_EQ(parseChanctlArgs(row.args, options), "") << row.args[0];
        EXPECT_EQ(options.action, row.action) << row.args[0];
        EXPECT_EQ(options.words, row.words) << row.args[0];
        EXPECT_EQ(options.params, row.params) << row.args[0];
    }
    ChanctlOptions options;
    ASSERT_EQ(parseChanctlArgs({"event", "E", "--socket=/tmp/x", "--timeout", "7", "--status", "ON", "--fcode",
                                "0x20008", "--description", "Zixi Feeder CH1", "--source", "HEVC"},
                               options),
              "");
    EXPECT_EQ(options.socket + " " + options.status + " " + options.description + " " + options.source,
              "/tmp/x ON Zixi Feeder CH1 HEVC");
    EXPECT_EQ(options.timeoutSec, 7u);
    EXPECT_EQ(options.fcode, static_cast<Fcodes>(0x20008));

    const struct {
        std::vector<std::string> args;
        const char* reason;
    } refused[] = {
        {{}, "no action given"},
        {{"play"}, "unknown action 'play'"},
        {{"set", "DS", "C", "P", "V", "I", "extra"}, "wrong number of arguments for 'set'"},
        {{"status", "--timeout", "5s"}, "--timeout needs whole seconds from 1 to 86400, not '5s'"},
        {{"listen", "--count"}, "--count needs a value"},
        {{"set", "DS", "C", "P", "say \"hi\""}, "'say \"hi\"' holds a double quote, which the wire cannot carry"},
        {{"command", "X", "N=\"v\""}, "'N=\"v\"' holds a double quote, which the wire cannot carry"},
        {{"event", "E", "--description", "a\"b"}, "'a\"b' holds a double quote, which the wire cannot carry"},
    };
    for (const auto& row : refused) {
        ChanctlOptions ignored;
        EXPECT_EQ(parseChanctlArgs(row.args, ignored), row.reason) << row.reason;
    }
}

TEST(ChanctlFormat, EventLinesFcodeMeaningsAndReplies) {
    MessageEvent event;
    event.id = "Channel Played";
    event.fcode = static_cast<Fcodes>(0x20000);
    event.description = "two\nlines";
    event.time = "2026-11-22  03:00:00";
    event.addParam("RowID", "HEVC");
    EXPECT_EQ(eventLine(event),
              "\"Channel Played\" fcode=0x20000 source=\"Source\" status=\"None\" severity=\"None\" "
              "description=\"two lines\" time=\"2026-11-22  03:00:00\" \"RowID\"=\"HEVC\"\n");

    // Named from the daemon's condition table, never as result codes: 0x30008
    // is "OK" with the data-stream condition, not "No Such Name".
    const std::pair<uint32_t, const char*> meanings[] = {
        {0x10000, "none"},
        {0x20000, "none"},
        {0x30008, "data stream condition"},
        {0x20002, "input lost"},
        {0x20004, "Zixi connection failed"},
        {0x20028, "data stream condition, stopped by user"},
        {0x30012, "input lost, input format changed"},
        {0x20050, "input format changed, unknown 0x40"},
        {0x10008, "unknown 0x8"},
    };
    for (const auto& row : meanings)
        EXPECT_EQ(channelFcodeMeaning(row.first), row.second) << std::hex << row.first;
    EXPECT_EQ(statusCell(statusRows()[2], "131104"), "0x20020 (stopped by user)");
    EXPECT_EQ(statusCell(statusRows()[0], "131104"), "131104");

    EXPECT_EQ(replyText("<BODY><Command ID=\"A\" >\n\t<Parameter Name=\"Row\" Value=\"3\" />\n"
                        "\t<Parameter Name=\"B\" Value=\"x y\" />\n</Command>\n</BODY>"),
              "B=x y\nRow=3\n");
    EXPECT_EQ(replyText("<BODY>\n  done \n</BODY>"), "done\n");
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

// Starts chanctl against PEER, its stderr into /tmp/chanctl.err; bounded by its --timeout.
FILE* startChanctl(const std::string& args) {
    return popen(
        (toolCommand("chanctl") + " --socket " + PEER + " " + args + " 2>" + sysmgtPath("/tmp/chanctl.err")).c_str(),
        "r");
}

// Runs chanctl to its end: exit status, stdout, stderr.
std::tuple<int, std::string, std::string> chanctl(const std::string& args) {
    FILE* pipe = startChanctl("--timeout 3 " + args);
    std::string out, err;
    char buffer[4096];
    for (size_t got; pipe != nullptr && (got = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        out.append(buffer, got);
    int status = pipe != nullptr ? pclose(pipe) : -1;
    std::ifstream errFile(sysmgtPath("/tmp/chanctl.err"));
    std::getline(errFile, err, '\0');
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out, err};
}

// How many of the two sockets of the chanctl whose receive socket is `path`
// exist. (Looked up by name: readdir fails for large inode numbers on 32-bit.)
int socketsOf(const std::string& path) {
    return (access(sysmgtPath(path).c_str(), F_OK) == 0) + (access(sysmgtPath(path + "-send").c_str(), F_OK) == 0);
}

// The pid of the running "chanctl ... listen" of this test (its name no longer
// carries one), or -1.
pid_t listenerPid() {
    DIR* proc = opendir("/proc");
    pid_t found = -1;
    for (dirent* entry; proc != nullptr && found < 0 && (entry = readdir(proc)) != nullptr;) {
        std::ifstream file(std::string("/proc/") + entry->d_name + "/cmdline");
        std::string words((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        std::ifstream environ(std::string("/proc/") + entry->d_name + "/environ");
        std::string variables((std::istreambuf_iterator<char>(environ)), std::istreambuf_iterator<char>());
        if (words.find("chanctl") != std::string::npos && words.find(std::string("listen\0", 7)) != std::string::npos &&
            variables.find("SYSMGT_ROOT=" + std::string(std::getenv("SYSMGT_ROOT")) + '\0') != std::string::npos)
            found = static_cast<pid_t>(std::atoi(entry->d_name));
    }
    if (proc != nullptr)
        closedir(proc);
    return found;
}

// Waits (bounded) until a chanctl subscribed to the service after `known`
// others; its receive socket path, or "".
std::string awaitSubscriber(const Service& service, size_t known = 0) {
    for (int i = 0; i < 1000 && service.engine.getObservers().size() <= known; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    auto observers = service.engine.getObservers();
    return observers.size() > known ? observers.back() : "";
}

TEST(Chanctl, CommandGetSetStatusAndRefusalsAgainstAService) {
    Service service;
    service.holder.setExecuteAnswer("<Command ID=\"A\" >\n\t<Parameter Name=\"Row\" Value=\"7\" />\n</Command>\n",
                                    FC_OK);
    EXPECT_EQ(chanctl("command Play RowID=HEVC"), std::make_tuple(0, std::string("Row=7\n"), std::string()));
    ASSERT_FALSE(service.holder.calls().empty());
    EXPECT_NE(
        service.holder.calls().back().find("<Command ID=\"Play\" >\n\t<Parameter Name=\"RowID\" Value=\"HEVC\" />"),
        std::string::npos);

    // Before any channel data: one line that says how to load it, and exit 0.
    EXPECT_EQ(chanctl("status"), std::make_tuple(0, std::string(NOT_LOADED_LINE), std::string()));

    const char* fields[][2] = {{"State", "Playing"},
                               {"Status", "OK"},
                               {"Fcode", "65536"},
                               {"Source", "SDI 1"},
                               {"Input Resolution", "1080p30"},
                               {"Resolution", "H.264 @ 1"},
                               {"Total Bit Rate", "8000"}};
    for (const auto& field : fields)
        for (const char* row : {"H.264", "HEVC"})
            service.holder.setJson("ChannelDataSet", "ChannelsTable", row, field[0], field[1]);
    service.holder.setJson("ChannelDataSet", "ChannelsTable", "HEVC", "Fcode", "131088");
    EXPECT_EQ(std::get<1>(chanctl("get ChannelDataSet ChannelsTable State HEVC")), "Playing\n");
    EXPECT_EQ(chanctl("set ChannelDataSet ChannelsTable State 'Stopped now' HEVC"),
              std::make_tuple(0, std::string("Stopped now\n"), std::string()));
    std::string pending;
    EXPECT_EQ(service.holder.getNewTextParam("ChannelDataSet", "ChannelsTable", "State", pending, "HEVC"), FC_OK);
    EXPECT_EQ(pending, "Stopped now");
    EXPECT_EQ(std::get<1>(chanctl("status")),
              "                H.264 (CH0)     HEVC (CH1)\n"
              "State           Playing         Playing\n"
              "Status          OK              OK\n"
              "Fcode           0x10000 (none)  0x20010 (input format changed)\n"
              "Source          SDI 1           SDI 1\n"
              "Input           1080p30         1080p30\n"
              "Resolution      H.264 @ 1       H.264 @ 1\n"
              "Total Bit Rate  8000            8000\n");

    // Refusals: non-zero exit, the service's reason on stderr.
    EXPECT_EQ(chanctl("get ChannelDataSet ChannelsTable Nope HEVC"),
              std::make_tuple(1, std::string(), std::string("chanctl: No Such Name\n")));
    service.holder.setExecuteAnswer("", FC_BAD_VALUE);
    EXPECT_EQ(std::get<2>(chanctl("command Play RowID=2")), "chanctl: Bad Value\n");
    service.engine.stop();  // nobody reads the socket any more: no answer in time
    EXPECT_EQ(chanctl("command Play"),
              std::make_tuple(1, std::string(),
                              std::string("chanctl: Communication Error: no answer from /tmp/sockPeer within 3 s; "
                                          "the service may not be running\n")));
    EXPECT_EQ(chanctl("--socket /tmp/sockNobody command Play"),
              std::make_tuple(1, std::string(),
                              "chanctl: Communication Error: there is no socket /tmp/sockNobody (" +
                                  sysmgtPath("/tmp/sockNobody") + "); the service is not running\n"));
}

TEST(Chanctl, ListenPrintsEventsEventSendsOneAndAnInterruptedListenCleansUp) {
    Service service;
    FILE* listener = startChanctl("--timeout 10 --count 1 listen");
    ASSERT_NE(listener, nullptr);
    const std::string first = awaitSubscriber(service);
    ASSERT_EQ(first.rfind("/tmp/chanctl-listen-", 0), 0u) << first;
    EXPECT_EQ(socketsOf(first), 2);
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
    EXPECT_EQ(socketsOf(first), 0);

    EXPECT_EQ(std::get<0>(chanctl("event 'Data Stream' --source HEVC --status ON --fcode 0x20008")), 0);
    std::vector<std::string> calls;
    for (int i = 0; i < 500 && (calls = service.holder.calls()).empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(calls, std::vector<std::string>{"handle Data Stream " + std::to_string(0x20008)});

    // A listen without end, terminated: its sockets go with it. Started again,
    // a listener takes back the same name: the service keeps one entry.
    listener = startChanctl("--timeout 20 listen");
    ASSERT_NE(listener, nullptr);
    for (int i = 0; i < 500 && socketsOf(first) < 2; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_EQ(socketsOf(first), 2);
    const pid_t pid = listenerPid();
    auto subscribed = [] {
        std::ifstream file(sysmgtPath("/tmp/chanctl.err"));
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>())
                   .find("listening to") != std::string::npos;
    };
    for (int i = 0; i < 500 && !subscribed(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(service.engine.getObservers(), std::vector<std::string>{first});
    ASSERT_GT(pid, 0);
    ASSERT_EQ(kill(pid, SIGTERM), 0);
    const int status = pclose(listener);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGTERM) << status;
    EXPECT_EQ(socketsOf(first), 0);
}

}  // namespace
