#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <future>

#include "EngineTestSupport.h"
#include "ITarnevelClient.h"
#include "LogCapture.h"
#include "WireConstants.h"

namespace {

// A holder whose requestCommand goes out through a real engine, recording the
// peer, time-out and tries it was asked for. The wait actually used is capped
// so that a failing test cannot hang for the two minutes of a branch start.
class ForwardingHolder : public NullDataHolder {
public:
    ForwardingHolder() { engine.init(nullptr, "/tmp/sockChanTest", "/tmp/sockChanTestSend", "tCli"); }
    Fcodes requestCommand(const std::string& socketPath, const std::string& command, std::string& result,
                          unsigned timeoutSec, unsigned tries) override {
        asked = socketPath + " " + std::to_string(timeoutSec) + "s x" + std::to_string(tries);
        return engine.requestCommand(socketPath, command, result, std::min(timeoutSec, 2u), 1);
    }
    DataCommunicator engine;
    std::string asked;
};

// The mediator: sees the exact datagram and answers with `reply(id)`.
struct MediatorSide {
    Fcodes exchange(const std::function<Fcodes()>& request, std::string& received,
                    const std::function<std::string(int)>& reply) {
        auto result = std::async(std::launch::async, request);
        received.clear();
        if (mediator.receive(received))
            mediator.sendTo("/tmp/sockChanTestSend", reply(wireId(received)));
        return result.get();
    }
    ForwardingHolder holder;
    RawPeer mediator{wire::SOCK_MEDIATOR};
};

std::string message(int id, const char* type, Fcodes fcode, const std::string& body) {
    return wireHeader(id, type, fcode, static_cast<int>(body.size())) + body;
}

std::string commandBody(const std::string& id, const std::string& params) {
    return "<BODY>\n\t<Command ID=\"" + id + "\" >\n" + params + "</Command>\n\n</BODY>\n";
}

std::string param(const std::string& name, const std::string& value) {
    return "\t<Parameter Name=\"" + name + "\" Value=\"" + value + "\" />\n";
}

// An ACK whose body answers with every parameter a get may look for.
std::string fullAnswer(int id) {
    return message(id, "ACK", FC_OK,
                   commandBody("Answer", param("Assembly", "asm-1") + param("Branch State", "RUN") +
                                             param("IntValue", "42") + param("TextValue", "1080i50")));
}

TEST(TarnevelClient, EachOperationSendsItsExactCommandAndWaitsItsTime) {
    MediatorSide side;
    IDataHolder* h = &side.holder;
    std::string text = "-", assembly = "-", state = "-";
    int number = -1;
    const struct {
        const char* name;
        std::function<Fcodes()> call;
        std::string body;
        const char* asked;
    } rows[] = {
        {"getTarnevelTextParam",
         [&] { return ITarnevelClient::getTarnevelTextParam(h, "Video Encoder CH0", "Format", text); },
         commandBody("Tarnevel Get Param",
                     param("Component", "Video Encoder CH0") + param("Parameter", "Format") + param("TextValue", "")),
         "10s x3"},
        {"getTarnevelIntParam", [&] { return ITarnevelClient::getTarnevelIntParam(h, "C", "P", &number); },
         commandBody("Tarnevel Get Param", param("Component", "C") + param("IntValue", "") + param("Parameter", "P")),
         "10s x3"},
        {"setTarnevelTextParam", [&] { return ITarnevelClient::setTarnevelTextParam(h, "C", "P", "v w"); },
         commandBody("Tarnevel Put Param",
                     param("Component", "C") + param("Parameter", "P") + param("TextValue", "v w")),
         "10s x3"},
        {"setTarnevelIntParam", [&] { return ITarnevelClient::setTarnevelIntParam(h, "C", "P", -7); },
         commandBody("Tarnevel Put Param", param("Component", "C") + param("IntValue", "-7") + param("Parameter", "P")),
         "10s x3"},
        {"getTarnevelAssembly", [&] { return ITarnevelClient::getTarnevelAssembly(h, assembly); },
         commandBody("Tarnevel Get Assembly", ""), "10s x3"},
        {"setTarnevelAssembly", [&] { return ITarnevelClient::setTarnevelAssembly(h, "a b"); },
         commandBody("Tarnevel Put Assembly", param("Assembly", "a b")), "200s x1"},
        {"getTarnevelBranchState", [&] { return ITarnevelClient::getTarnevelBranchState(h, "SRT CH0", state); },
         commandBody("Tarnevel Get Branch State", param("Branch", "SRT CH0")), "10s x3"},
        {"storeTarnevelState", [&] { return ITarnevelClient::storeTarnevelState(h); },
         commandBody("Tarnevel Store State", ""), "10s x3"},
        {"stop sync", [&] { return ITarnevelClient::stopTarnevelBranch(h, "b", true, 30); },
         commandBody("Tarnevel Stop Branch", param("Branch", "b") + param("Sync", "true") + param("Timeout sec", "30")),
         "30s x1"},
        {"stop async", [&] { return ITarnevelClient::stopTarnevelBranch(h, "b", false, 30); },
         commandBody("Tarnevel Stop Branch", param("Branch", "b")), "30s x1"},
        {"start sync", [&] { return ITarnevelClient::startTarnevelBranch(h, "b", true, 30); },
         commandBody("Tarnevel Start Branch",
                     param("Branch", "b") + param("Sync", "true") + param("Timeout sec", "30")),
         "120s x1"},
        {"start async", [&] { return ITarnevelClient::startTarnevelBranch(h, "b", false, 5); },
         commandBody("Tarnevel Start Branch", param("Branch", "b")), "120s x1"},
    };
    for (const auto& row : rows) {
        std::string received;
        EXPECT_EQ(side.exchange(row.call, received, fullAnswer), FC_OK) << row.name;
        EXPECT_EQ(received, message(wireId(received), "COMMAND", FC_OK, row.body)) << row.name;
        EXPECT_EQ(side.holder.asked, std::string("/tmp/sockTarnevelMediator ") + row.asked) << row.name;
    }
    EXPECT_EQ(text, "1080i50");
    EXPECT_EQ(number, 42);
    EXPECT_EQ(assembly, "asm-1");
    EXPECT_EQ(state, "RUN");
}

TEST(TarnevelClient, GetsRefuseAnswersWithoutTheirParameterAndKeepTheOutput) {
    MediatorSide side;
    IDataHolder* h = &side.holder;
    std::string text = "-", assembly = "-", state = "-";
    int number = -1;
    const struct {
        const char* op;
        const char* answer;
        std::function<Fcodes()> call;
    } gets[] = {
        {"getTarnevelTextParam", "TextValue", [&] { return ITarnevelClient::getTarnevelTextParam(h, "C", "P", text); }},
        {"getTarnevelIntParam", "IntValue", [&] { return ITarnevelClient::getTarnevelIntParam(h, "C", "P", &number); }},
        {"getTarnevelAssembly", "Assembly", [&] { return ITarnevelClient::getTarnevelAssembly(h, assembly); }},
        {"getTarnevelBranchState", "Branch State",
         [&] { return ITarnevelClient::getTarnevelBranchState(h, "b", state); }},
    };
    const struct {
        const char* name;
        std::string body;
        std::string logged;
    } replies[] = {
        {"no Command element", "<BODY>\n\t<Event ID=\"x\" />\n</BODY>\n", ": Not Found tag Command in response:\n"},
        {"Command without ID", "<BODY>\n<Command >\n" + param("TextValue", "x") + "</Command>\n</BODY>\n",
         ": Error in command:\n"},
        {"answer missing", commandBody("A", param("Other", "1")), ": Not found param="},
    };
    LogCapture log;
    for (const auto& reply : replies)
        for (const auto& get : gets) {
            std::string received;
            auto answer = [&](int id) { return message(id, "ACK", FC_OK, reply.body); };
            log.take();
            EXPECT_EQ(side.exchange(get.call, received, answer), FC_BODY_ERROR) << get.op << ", " << reply.name;
            std::string expected = std::string(get.op) + reply.logged;
            if (reply.logged == ": Not found param=")
                expected += std::string(get.answer) + " in response:\n";
            EXPECT_NE(log.take().find(expected), std::string::npos) << get.op << ", " << reply.name;
        }

    // The mediator's own verdict comes back unchanged, from every operation.
    const std::function<Fcodes()> all[] = {
        gets[0].call,
        gets[1].call,
        gets[2].call,
        gets[3].call,
        [&] { return ITarnevelClient::setTarnevelTextParam(h, "C", "P", "v"); },
        [&] { return ITarnevelClient::setTarnevelIntParam(h, "C", "P", 1); },
        [&] { return ITarnevelClient::setTarnevelAssembly(h, "a"); },
        [&] { return ITarnevelClient::storeTarnevelState(h); },
        [&] { return ITarnevelClient::stopTarnevelBranch(h, "b", true, 1); },
        [&] { return ITarnevelClient::startTarnevelBranch(h, "b", true, 1); },
    };
    auto refused = [](int id) { return message(id, "ACK", FC_NO_SUCH_NAME, "<BODY>\n</BODY>\n"); };
    for (size_t i = 0; i < sizeof all / sizeof all[0]; ++i) {
        std::string received;
        EXPECT_EQ(side.exchange(all[i], received, refused), FC_NO_SUCH_NAME) << "operation " << i;
    }
    EXPECT_EQ(text, "-");
    EXPECT_EQ(number, -1);
    EXPECT_EQ(assembly, "-");
    EXPECT_EQ(state, "-");
}

TEST(TarnevelClient, IntAnswersReadAsLeadingDecimalAndNoReplyIsACommunicationError) {
    MediatorSide side;
    const struct {
        const char* answer;
        int expected;
    } rows[] = {{"12abc", 12}, {"abc", 0}, {"-3", -3}, {"", 0}};
    for (const auto& row : rows) {
        int number = 99;
        std::string received;
        auto answer = [&](int id) {
            return message(id, "ACK", FC_OK, commandBody("A", param("IntValue", row.answer)));
        };
        EXPECT_EQ(side.exchange([&] { return ITarnevelClient::getTarnevelIntParam(&side.holder, "C", "P", &number); },
                                received, answer),
                  FC_OK)
            << row.answer;
        EXPECT_EQ(number, row.expected) << row.answer;
    }

    // A silent mediator: the engine's failure, the output untouched.
    std::string state = "-";
    EXPECT_EQ(ITarnevelClient::getTarnevelBranchState(&side.holder, "b", state), FC_COMM_ERROR);
    EXPECT_EQ(state, "-");
}

}  // namespace
