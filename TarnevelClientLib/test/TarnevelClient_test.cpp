#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "LogCapture.h"
#include "datacom/WireConstants.h"
#include "engine/EngineTestSupport.h"
#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using namespace tarnevel;

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

// The mediator: sees the exact datagram and answers with `reply(id)` (nothing when empty).
struct MediatorSide {
    Fcodes exchange(const std::function<Fcodes()>& request, std::string& received,
                    const std::function<std::string(int)>& reply) {
        return ::exchange(mediator, "/tmp/sockChanTestSend", request, received, reply);
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

// The ten operations, each with the exact body it must send and the wait and
// tries it must ask of the holder; the gets write into the outputs.
struct Operations {
    struct Row {
        const char* name;
        std::function<Fcodes()> call;
        std::string body;
        const char* asked;
        const char* answer;  // the answer parameter of a get, else nullptr
    };
    explicit Operations(IDataHolder* h) {
        using C = ITarnevelClient;
        rows = {
            {"getTarnevelTextParam", [=] { return C::getTarnevelTextParam(h, "Video Encoder CH0", "Format", text); },
             commandBody("Tarnevel Get Param", param("Component", "Video Encoder CH0") + param("Parameter", "Format") +
                                                   param("TextValue", "")),
             "10s x3", "TextValue"},
            {"getTarnevelIntParam", [=] { return C::getTarnevelIntParam(h, "C", "P", &number); },
             commandBody("Tarnevel Get Param",
                         param("Component", "C") + param("IntValue", "") + param("Parameter", "P")),
             "10s x3", "IntValue"},
            {"getTarnevelAssembly", [=] { return C::getTarnevelAssembly(h, assembly); },
             commandBody("Tarnevel Get Assembly", ""), "10s x3", "Assembly"},
            {"getTarnevelBranchState", [=] { return C::getTarnevelBranchState(h, "SRT CH0", state); },
             commandBody("Tarnevel Get Branch State", param("Branch", "SRT CH0")), "10s x3", "Branch State"},
            {"setTarnevelTextParam", [=] { return C::setTarnevelTextParam(h, "C", "P", "v w"); },
             commandBody("Tarnevel Put Param",
                         param("Component", "C") + param("Parameter", "P") + param("TextValue", "v w")),
             "10s x3", nullptr},
            {"setTarnevelIntParam", [=] { return C::setTarnevelIntParam(h, "C", "P", -7); },
             commandBody("Tarnevel Put Param",
                         param("Component", "C") + param("IntValue", "-7") + param("Parameter", "P")),
             "10s x3", nullptr},
            {"setTarnevelAssembly", [=] { return C::setTarnevelAssembly(h, "a b"); },
             commandBody("Tarnevel Put Assembly", param("Assembly", "a b")), "200s x1", nullptr},
            {"storeTarnevelState", [=] { return C::storeTarnevelState(h); }, commandBody("Tarnevel Store State", ""),
             "10s x3", nullptr},
            {"stop sync", [=] { return C::stopTarnevelBranch(h, "b", true, 30); },
             commandBody("Tarnevel Stop Branch",
                         param("Branch", "b") + param("Sync", "true") + param("Timeout sec", "30")),
             "30s x1", nullptr},
            {"stop async", [=] { return C::stopTarnevelBranch(h, "b", false, 30); },
             commandBody("Tarnevel Stop Branch", param("Branch", "b")), "30s x1", nullptr},
            {"start sync", [=] { return C::startTarnevelBranch(h, "b", true, 30); },
             commandBody("Tarnevel Start Branch",
                         param("Branch", "b") + param("Sync", "true") + param("Timeout sec", "30")),
             "120s x1", nullptr},
            {"start async", [=] { return C::startTarnevelBranch(h, "b", false, 5); },
             commandBody("Tarnevel Start Branch", param("Branch", "b")), "120s x1", nullptr},
        };
    }
    std::string& text = outputs[0];
    std::string& assembly = outputs[1];
    std::string& state = outputs[2];
    std::string outputs[3] = {"-", "-", "-"};
    int number = -1;
    std::vector<Row> rows;
};

TEST(TarnevelClient, EachOperationSendsItsExactCommandAndWaitsItsTime) {
    MediatorSide side;
    Operations ops(&side.holder);
    for (const auto& row : ops.rows) {
        std::string received;
        EXPECT_EQ(side.exchange(row.call, received, fullAnswer), FC_OK) << row.name;
        EXPECT_EQ(received, message(wireId(received), "COMMAND", FC_OK, row.body)) << row.name;
        EXPECT_EQ(side.holder.asked, std::string("/tmp/sockTarnevelMediator ") + row.asked) << row.name;
    }
    EXPECT_EQ(ops.text, "1080i50");
    EXPECT_EQ(ops.number, 42);
    EXPECT_EQ(ops.assembly, "asm-1");
    EXPECT_EQ(ops.state, "RUN");
}

TEST(TarnevelClient, FailuresReturnTheirCodeAndKeepTheOutputs) {
    MediatorSide side;
    Operations ops(&side.holder);
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
        for (const auto& get : ops.rows) {
            if (get.answer == nullptr)
                continue;
            std::string received;
            auto answer = [&](int id) { return message(id, "ACK", FC_OK, reply.body); };
            log.take();
            EXPECT_EQ(side.exchange(get.call, received, answer), FC_BODY_ERROR) << get.name << ", " << reply.name;
            std::string expected = get.name + reply.logged;
            if (reply.logged == ": Not found param=")
                expected += std::string(get.answer) + " in response:\n";
            EXPECT_NE(log.take().find(expected), std::string::npos) << get.name << ", " << reply.name;
        }

    // The mediator's own verdict comes back unchanged, from every operation.
    auto refused = [](int id) { return message(id, "ACK", FC_NO_SUCH_NAME, "<BODY>\n</BODY>\n"); };
    for (const auto& row : ops.rows) {
        std::string received;
        EXPECT_EQ(side.exchange(row.call, received, refused), FC_NO_SUCH_NAME) << row.name;
    }
    // A silent mediator: the engine's failure.
    std::string received;
    EXPECT_EQ(side.exchange(ops.rows[3].call, received, [](int) { return std::string(); }), FC_COMM_ERROR);
    EXPECT_EQ(ops.text + ops.assembly + ops.state, "---");
    EXPECT_EQ(ops.number, -1);

    // An integer answer is read as a leading decimal number.
    for (const auto& row : std::vector<std::pair<const char*, int>>{{"12abc", 12}, {"abc", 0}, {"-3", -3}}) {
        auto answer = [&](int id) { return message(id, "ACK", FC_OK, commandBody("A", param("IntValue", row.first))); };
        EXPECT_EQ(side.exchange(ops.rows[1].call, received, answer), FC_OK) << row.first;
        EXPECT_EQ(ops.number, row.second) << row.first;
    }
}

}  // namespace
