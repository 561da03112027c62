// Client requests against a peer that misbehaves in each way a peer can: every
// request ends within its time-out with the code its caller can act on, stray
// answers are parked in the history and never taken for the request's own,
// and the engine then serves the next request normally. Each row's measured
// wall time is in its failure messages.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/EngineTestSupport.h"

using namespace datacom;

namespace {

constexpr const char* CLIENT_SEND = "/tmp/sockCliSend";
constexpr const char* SERVER = "/tmp/sockSrv";
constexpr unsigned TIMEOUT = 1;  // seconds, every request of the table
const std::string COMMAND = "<Command ID=\"X\" >\n</Command>";

class FaultPeer;
// How the peer answers a request it received (`id` is the request's ID).
using Answer = std::function<void(FaultPeer& peer, int id)>;

// A bare socket at PEER with a thread that receives every request, notes its
// ID and answers it as told.
class FaultPeer {
public:
    explicit FaultPeer(Answer answer) : answer(std::move(answer)), serving([this] { serve(); }) {}
    ~FaultPeer() {
        stopping = true;
        serving.join();
    }
    void send(const std::string& datagram) { socket.sendTo(CLIENT_SEND, datagram); }
    std::vector<int> ids() {
        std::lock_guard<std::mutex> guard(idsMutex);
        return seen;
    }
    std::string hostPath() const { return socket.hostPath(); }

private:
    void serve() {
        std::string request;
        while (!stopping) {
            if (!socket.receive(request, 50))
                continue;
            const int id = wireId(request);
            {
                std::lock_guard<std::mutex> guard(idsMutex);
                seen.push_back(id);
            }
            if (answer)
                answer(*this, id);
        }
    }

    RawPeer socket{PEER};
    Answer answer;
    std::mutex idsMutex;
    std::vector<int> seen;
    std::atomic<bool> stopping{false};
    std::thread serving;
};

std::string ack(int id, Fcodes code) {
    return wireHeader(id, "ACK", code, 0);
}

// The reply to `id` kept in the history, with its sender; "" when none.
std::string parked(DataCommunicator& client, int id, std::string* sender = nullptr) {
    std::string header, body, from;
    if (!client.getResponse(id, header, body, from))
        return "";
    if (sender)
        *sender = from;
    return header;
}

enum class Setup { Peer, NoSocketFile, NeverReads };

struct Fault {
    const char* name;
    Setup setup;
    Answer answer;
    unsigned tries;
    std::vector<Fcodes> expected;  // one request each, in turn
    double boundSec;               // for the whole row
    // Further checks after the requests: "" when all hold, else what failed.
    std::function<std::string(DataCommunicator& client, FaultPeer* peer)> check;
    double minSec = 0;  // the row waits at least this long (its time-outs)
};

TEST(PeerFaults, EveryFaultEndsInItsTimeOutWithItsCodeAndTheEngineGoesOn) {
    DataCommunicator client;
    client.init(nullptr, "/tmp/sockCli", CLIENT_SEND, "tCli");
    FakeDataHolder holder;
    DataCommunicator server;
    server.init(&holder, SERVER, "/tmp/sockSrvSend", "tSrv");
    server.start();
    RawPeer stranger("/tmp/sockStranger");

    const std::string truncatedHeader = "<HEADER ID=\"1\" Type=\"ACK\" Fcode=\"10000\" Si";
    const std::string truncatedBody = wireHeader(1, "ACK", FC_OK, 40) + "<BODY><Command ID=\"X\" >";
    const std::string oversized = wireHeader(1, "ACK", FC_OK, 75000) + "<BODY>" + std::string(75000, 'x') + "</BODY>";
    auto withId = [](std::string datagram, int id) {
        return datagram.replace(datagram.find("ID=\"1\""), 6, "ID=\"" + std::to_string(id) + "\"");
    };
    auto noDuplicateIds = [](DataCommunicator&, FaultPeer* peer) -> std::string {
        const std::vector<int> ids = peer->ids();
        if (ids.size() != 2 || ids[1] != ids[0] + 1)
            return "expected two tries with consecutive fresh IDs, the peer saw " + std::to_string(ids.size());
        return "";
    };

    // clang-format off
    const Fault faults[] = {
        {"no socket file", Setup::NoSocketFile, nullptr, 2, {FC_COMM_ERROR}, 0.5, nullptr},
        {"peer never reads (queue full)", Setup::NeverReads, nullptr, 2, {FC_COMM_ERROR},
         2 * (1.0 + TIMEOUT) + 1.0, nullptr},
        {"NACK", Setup::Peer, [](FaultPeer& p, int id) { p.send(wireHeader(id, "NACK", FC_NO_SUCH_NAME, 0)); }, 2,
         {FC_HEADER_ERROR}, 1.0, nullptr},
        {"no reply", Setup::Peer, nullptr, 2, {FC_COMM_ERROR}, 2.0 * TIMEOUT + 1.0, noDuplicateIds, 1.9 * TIMEOUT},
        {"reply after the time-out", Setup::Peer,
         [](FaultPeer& p, int id) {
             static std::atomic<int> calls{0};
             if (calls++ == 0) {
                 std::this_thread::sleep_for(std::chrono::milliseconds(1500));  // the requester gave up
                 p.send(ack(id, FC_BAD_VALUE));
                 return;
             }
             p.send(ack(id, FC_OK));
         },
         1, {FC_COMM_ERROR, FC_OK}, 2.0 * TIMEOUT + 1.5,
         [](DataCommunicator& client, FaultPeer* peer) -> std::string {
             const std::vector<int> ids = peer->ids();
             std::string sender;
             if (ids.empty() || parked(client, ids[0], &sender) != ack(ids[0], FC_BAD_VALUE))
                 return "the late reply is not parked under its ID";
             if (sender != peer->hostPath())
                 return "the late reply is parked with sender " + sender;
             return "";
         }},
        {"reply with a wrong ID", Setup::Peer, [](FaultPeer& p, int id) { p.send(ack(id + 1000, FC_OK)); }, 2,
         {FC_COMM_ERROR}, 2.0 * TIMEOUT + 1.0,
         [](DataCommunicator& client, FaultPeer* peer) -> std::string {
             for (int id : peer->ids())
                 if (parked(client, id + 1000).empty())
                     return "the reply with ID " + std::to_string(id + 1000) + " is not parked";
             return "";
         }},
        {"right ID from another peer's socket", Setup::Peer,
         [&stranger](FaultPeer&, int id) { stranger.sendTo(CLIENT_SEND, ack(id, FC_OK)); }, 2, {FC_COMM_ERROR},
         2.0 * TIMEOUT + 1.0,
         [&stranger](DataCommunicator& client, FaultPeer* peer) -> std::string {
             for (int id : peer->ids()) {
                 std::string sender;
                 if (parked(client, id, &sender).empty() || sender != stranger.hostPath())
                     return "the stranger's reply to " + std::to_string(id) + " is not parked as the stranger's";
             }
             return "";
         }},
        {"truncated header", Setup::Peer, [&](FaultPeer& p, int id) { p.send(withId(truncatedHeader, id)); }, 2,
         {FC_COMM_ERROR}, 1.0, noDuplicateIds},
        {"truncated body", Setup::Peer, [&](FaultPeer& p, int id) { p.send(withId(truncatedBody, id)); }, 2,
         {FC_COMM_ERROR}, 1.0, noDuplicateIds},
        {"oversized datagram", Setup::Peer, [&](FaultPeer& p, int id) { p.send(withId(oversized, id)); }, 2,
         {FC_COMM_ERROR}, 1.0, noDuplicateIds},
    };
    // clang-format on

    for (const Fault& fault : faults) {
        std::unique_ptr<FaultPeer> peer;
        std::unique_ptr<RawPeer> stuck, filler;
        if (fault.setup == Setup::Peer) {
            peer.reset(new FaultPeer(fault.answer));
        } else if (fault.setup == Setup::NeverReads) {
            stuck.reset(new RawPeer(PEER));
            filler.reset(new RawPeer("/tmp/sockFiller"));
            while (filler->sendTo(PEER, "x")) {
            }
        }
        const std::string peerPath = fault.setup == Setup::NoSocketFile ? "/tmp/sockNobody" : PEER;

        const auto start = std::chrono::steady_clock::now();
        std::vector<Fcodes> codes;
        for (size_t request = 0; request < fault.expected.size(); ++request) {
            std::string replyBody;
            codes.push_back(client.requestCommand(peerPath, COMMAND, replyBody, TIMEOUT, fault.tries));
        }
        const double took = secondsSince(start);
        const std::string row = std::string(fault.name) + " (took " + std::to_string(took) + " s)";
        for (size_t request = 0; request < codes.size(); ++request)
            EXPECT_EQ(codes[request], fault.expected[request]) << row << ", request " << request;
        EXPECT_LT(took, fault.boundSec) << row;
        EXPECT_GE(took, fault.minSec) << row;
        if (fault.check) {
            const std::string failed = fault.check(client, peer.get());
            EXPECT_EQ(failed, "") << row;
        }
        peer.reset();

        // The engine goes on: the next request, to a served engine, is answered at once.
        const auto nextStart = std::chrono::steady_clock::now();
        std::string replyBody;
        const Fcodes next = client.requestCommand(
            SERVER, "<Command ID=\"Get Next Row\" >\n\t<Parameter Name=\"Table\" Value=\"T\" />\n</Command>", replyBody,
            TIMEOUT, 1);
        const double nextTook = secondsSince(nextStart);
        EXPECT_EQ(next, FC_OK) << row << ": the next request took " << nextTook << " s";
        EXPECT_LT(nextTook, 0.9) << row << ": the next request took " << nextTook << " s";
    }
}

}  // namespace
