#include <gtest/gtest.h>

#include <thread>

#include "FixedClock.h"
#include "LogCapture.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/WireConstants.h"
#include "engine/EngineTestSupport.h"

using namespace datacom;

namespace {

// A COMMAND datagram as a peer writes it.
std::string commandDatagram(int id, const std::string& command) {
    const std::string body = "<BODY>\n\t" + command + "\n</BODY>\n";
    return wireHeader(id, "COMMAND", FC_OK, static_cast<int>(body.size())) + body;
}

// The ID of the event a datagram carries, or the whole datagram when it holds none.
std::string eventIdOf(const std::string& datagram) {
    const std::string tag = "<Event ID=\"";
    const size_t at = datagram.find(tag);
    if (at == std::string::npos)
        return datagram;
    const size_t from = at + tag.size();
    return datagram.substr(from, datagram.find('"', from) - from);
}

// Waits (bounded) until `done` holds.
template <typename Condition>
bool eventually(Condition done) {
    for (int i = 0; i < 300 && !done(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return done();
}

TEST(DataCommunicatorServer, CommandRoundTripCarriesIdFcodeAndPayload) {
    EnginePair engines;
    engines.holder.setExecuteAnswer("<Result>ok</Result>", FC_OK);
    const std::string command = "<Command ID=\"Play\" >\n\t<Parameter Name=\"RowID\" Value=\"HEVC\" />\n</Command>";
    std::string replyBody;
    EXPECT_EQ(engines.client.requestCommand(EnginePair::SERVER, command, replyBody, 2, 1), FC_OK);
    EXPECT_EQ(replyBody, "<BODY><Result>ok</Result></BODY>");
    ASSERT_EQ(engines.holder.calls().size(), 1u);
    EXPECT_EQ(engines.holder.calls()[0], "execute " + command);  // the whole Command segment

    // Byte for byte: the ACK's Size is the payload's length without BODY tags.
    RawPeer peer("/tmp/sockPeer");
    ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, commandDatagram(77, command)));
    std::string reply;
    ASSERT_TRUE(peer.receive(reply));
    EXPECT_EQ(reply,
              "<HEADER ID=\"77\" Type=\"ACK\" Fcode=\"10000\" Size=\"19\" >\n</HEADER>\n"
              "<BODY><Result>ok</Result></BODY>");
}

TEST(DataCommunicatorServer, RefusalsAreNacksWithTheCodeAndNoBody) {
    EnginePair engines;
    engines.holder.setExecuteAnswer("", FC_NO_SUCH_NAME);
    RawPeer peer("/tmp/sockPeer");
    const struct {
        const char* name;
        std::string datagram;
        const char* fcode;
    } cases[] = {
        {"unknown type", wireHeader(5, "PING", FC_OK, 0), "10001"},
        {"no Command", commandDatagram(5, "<Other />"), "10002"},
        {"Command without ID", commandDatagram(5, "<Command Name=\"x\" >\n</Command>"), "10002"},
        {"SUBSCRIBE without SockName",
         commandDatagram(5, "<Command ID=\"SUBSCRIBE\" >\n\t<Parameter Name=\"Sock\" Value=\"/tmp/x\" />\n</Command>"),
         "10002"},
        {"Add Row without Table", commandDatagram(5, "<Command ID=\"Add Row\" >\n</Command>"), "10002"},
        {"holder refuses", commandDatagram(5, "<Command ID=\"Nope\" >\n</Command>"), "10008"},
    };
    for (const auto& row : cases) {
        ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, row.datagram)) << row.name;
        std::string reply;
        ASSERT_TRUE(peer.receive(reply)) << row.name;
        EXPECT_EQ(reply,
                  std::string("<HEADER ID=\"5\" Type=\"NACK\" Fcode=\"") + row.fcode + "\" Size=\"0\" >\n</HEADER>\n")
            << row.name;
    }
}

TEST(DataCommunicatorServer, BadDatagramsAreNotAnsweredAndServingGoesOn) {
    EnginePair engines;
    RawPeer peer("/tmp/sockPeer");
    // Too large, a positive Size without a body, and a reply: none is answered.
    ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, std::string(wire::MAX_DATAGRAM, 'x')));
    ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, wireHeader(6, "COMMAND", FC_OK, 3)));
    ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, wireHeader(4242, "ACK", FC_BAD_VALUE, 0)));
    ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, commandDatagram(8, "<Command ID=\"StopDbgPrint\" >\n</Command>")));
    std::string reply;
    ASSERT_TRUE(peer.receive(reply));
    EXPECT_EQ(reply, "<HEADER ID=\"8\" Type=\"ACK\" Fcode=\"10000\" Size=\"0\" >\n</HEADER>\n");
    EXPECT_FALSE(peer.receive(reply, 200)) << "unexpected answer: " << reply;

    // The reply was filed in the history with its sender.
    std::string header, body, sender;
    EXPECT_TRUE(engines.server.getResponse(4242, header, body, sender));
    EXPECT_EQ(header, wireHeader(4242, "ACK", FC_BAD_VALUE, 0));
    EXPECT_EQ(sender, peer.hostPath());
    EXPECT_EQ(gDbgLevel.load(), wire::DBG_LEVEL_SILENT);
    ASSERT_TRUE(peer.sendTo(EnginePair::SERVER, commandDatagram(9, "<Command ID=\"StartDbgPrint\" >\n</Command>")));
    ASSERT_TRUE(peer.receive(reply));
    EXPECT_EQ(gDbgLevel.load(), wire::DBG_LEVEL_VERBOSE);
}

TEST(DataCommunicatorServer, RowCommandsCallTheHolderAndReplyWithTheCodeOnly) {
    EnginePair engines;
    const struct {
        std::string command;
        const char* call;
    } cases[] = {
        {"<Command ID=\"Add Row\" >\n\t<Parameter Name=\"Table\" Value=\"T\" />\n</Command>", "appendNewRow T"},
        {"<Command ID=\"Add Row\" >\n\t<Parameter Name=\"Row\" Value=\"5\" />\n\t<Parameter Name=\"Table\" "
         "Value=\"T\" />\n</Command>",
         "newRow T 5"},
        {"<Command ID=\"Get Next Row\" >\n\t<Parameter Name=\"Table\" Value=\"T\" />\n</Command>",
         "getFirstRowIndex T"},
        {"<Command ID=\"Get Next Row\" >\n\t<Parameter Name=\"Row\" Value=\"2\" />\n\t<Parameter Name=\"Table\" "
         "Value=\"T\" />\n</Command>",
         "getNextRowIndex T 2"},
    };
    for (const auto& row : cases) {
        std::string replyBody = "untouched";
        EXPECT_EQ(engines.client.requestCommand(EnginePair::SERVER, row.command, replyBody, 2, 1), FC_OK) << row.call;
        EXPECT_EQ(replyBody, "untouched") << row.call << ": no body in the ACK";
        ASSERT_FALSE(engines.holder.calls().empty());
        EXPECT_EQ(engines.holder.calls().back(), row.call);
    }
}

TEST(DataCommunicatorServer, SubscriptionsAndNotifyUnderBursts) {
    EnginePair engines;
    DataCommunicator other;
    other.init(nullptr, "/tmp/sockOther", "/tmp/sockOtherSend", "tOther");
    ASSERT_EQ(engines.client.requestSubscribe(EnginePair::SERVER), FC_OK);
    ASSERT_EQ(other.requestSubscribe(EnginePair::SERVER), FC_OK);
    ASSERT_EQ(engines.client.requestSubscribe(EnginePair::SERVER), FC_OK);
    EXPECT_EQ(engines.server.getObservers(), (std::vector<std::string>{"/tmp/sockOther", EnginePair::CLIENT}));

    // A live subscriber gets the event stamped with the local time (here a
    // moment past 2038, when a 32-bit time_t has wrapped); a vanished one adds
    // no delay.
    engines.server.subscribe("/tmp/sockGone");
    FixedClock clock;
    MessageEvent event;
    event.id = "Channel Played";
    auto start = std::chrono::steady_clock::now();
    engines.server.notify(event);
    EXPECT_LT(secondsSince(start), 0.5) << "a vanished subscriber delayed the event";
    MessageHeader header;
    std::string body;
    LocalAddress from;
    ASSERT_EQ(other.readMsg(other.getReceiveSocket(), header, body, from.get(), &from.length(), 2), FC_OK);
    EXPECT_EQ(header.Type, "EVENT");
    EXPECT_NE(body.find("<Event ID=\"Channel Played\""), std::string::npos) << body;
    EXPECT_EQ(event.time, "29-Feb-40  12:34:56");
    EXPECT_NE(body.find("Time=\"29-Feb-40  12:34:56\""), std::string::npos) << body;

    EXPECT_EQ(engines.server.getObservers().size(), 3u) << "failed subscribers stay";

    // A vanished subscriber is warned about once, not once per event; back
    // under its name it receives again, and a second loss is warned again.
    auto warningsFor = [](const std::string& log, const std::string& path) {
        size_t count = 0;
        for (size_t at = log.find("lost for observer=" + path); at != std::string::npos;
             at = log.find("lost for observer=" + path, at + 1))
            ++count;
        return count;
    };
    {
        LogCapture log;
        for (int i = 0; i < 3; ++i)
            engines.server.notify(event);
        std::string lines = log.take();
        EXPECT_EQ(warningsFor(lines, "/tmp/sockGone"), 0u) << "already warned at the first event:\n" << lines;
        {
            RawPeer back("/tmp/sockGone");
            engines.server.notify(event);
            std::string datagram;
            EXPECT_TRUE(back.receive(datagram, 2000));
        }
        engines.server.notify(event);
        engines.server.notify(event);
        lines = log.take();
        EXPECT_NE(lines.find("observer=/tmp/sockGone receives events again"), std::string::npos) << lines;
        EXPECT_EQ(warningsFor(lines, "/tmp/sockGone"), 1u) << lines;
        EXPECT_EQ(warningsFor(lines, EnginePair::CLIENT), 0u) << lines;
    }

    // A burst of 200 to a subscriber that reads slowly (behind a vanished
    // one): all arrive, in order.
    constexpr int kBurst = 200;
    DataCommunicator notifier;
    notifier.init(nullptr, "/tmp/sockNotifier", "/tmp/sockNotifierSend", "tNotifier");
    notifier.subscribe("/tmp/sockGone");
    RawPeer slow("/tmp/sockSlow");
    notifier.subscribe("/tmp/sockSlow");
    std::vector<std::string> arrived;
    std::thread reader([&] {
        std::string datagram;
        while (arrived.size() < static_cast<size_t>(kBurst) && slow.receive(datagram, 3000)) {
            arrived.push_back(eventIdOf(datagram));
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    });
    for (int i = 0; i < kBurst; ++i) {
        event.id = "Burst " + std::to_string(i);
        notifier.notify(event);
    }
    reader.join();
    ASSERT_EQ(arrived.size(), static_cast<size_t>(kBurst));
    for (int i = 0; i < kBurst; ++i)
        ASSERT_EQ(arrived[i], "Burst " + std::to_string(i)) << "event " << i;

    // A subscriber that never reads, ahead of a live one: once its queue is
    // full it holds each event about a second, and the live one still gets it.
    RawPeer deaf("/tmp/sockDeaf");
    notifier.subscribe("/tmp/sockDeaf");
    notifier.subscribe("/tmp/sockSlow");
    std::string datagram;
    bool held = false;
    for (int i = 0; i < 30 && !held; ++i) {
        event.id = "Deaf " + std::to_string(i);
        start = std::chrono::steady_clock::now();
        notifier.notify(event);
        const double seconds = secondsSince(start);
        EXPECT_LT(seconds, 1.8) << event.id;
        ASSERT_TRUE(slow.receive(datagram, 3000)) << event.id;
        EXPECT_EQ(eventIdOf(datagram), event.id);
        held = seconds >= 0.9;  // the deaf queue is full: the send waited its time-out
    }
    EXPECT_TRUE(held) << "the deaf subscriber never held an event";
    EXPECT_EQ(notifier.getObservers().size(), 3u);
}

TEST(DataCommunicatorServer, EventsGoToTheHolderWithTheHeaderFcode) {
    EnginePair engines;
    MessageEvent event;
    event.id = "Branch Started";
    event.fcode = static_cast<Fcodes>(0x20002);
    ASSERT_EQ(engines.client.requestEvent(EnginePair::SERVER, event, 1, 1), FC_OK);
    ASSERT_TRUE(eventually([&] { return !engines.holder.calls().empty(); }));
    EXPECT_EQ(engines.holder.calls()[0], "handle Branch Started " + std::to_string(0x20002));
}

TEST(DataCommunicatorServer, HistoryKeepsTenAndEvictsById) {
    DataCommunicator engine;
    std::string header, body, sender;
    for (int id = 1; id <= 11; ++id)
        engine.storeResponse(id, "h" + std::to_string(id), "b", "s");
    EXPECT_FALSE(engine.getResponse(1, header, body, sender));
    for (int id = 2; id <= 11; ++id)
        EXPECT_TRUE(engine.getResponse(id, header, body, sender)) << id;
    EXPECT_EQ(header, "h11");

    // An ID that recurs within the window: evicting its old occurrence
    // erases the entry just stored too.
    engine.storeResponse(2, "again", "b", "s");
    EXPECT_FALSE(engine.getResponse(2, header, body, sender));
    EXPECT_TRUE(engine.getResponse(3, header, body, sender));
}

}  // namespace
