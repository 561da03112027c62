#include <gtest/gtest.h>

#include <future>

#include "ChannelConsole.h"
#include "engine/EngineTestSupport.h"

using namespace std::chrono_literals;

// A channel manager whose commands wait until the test lets them go.
struct HeldManager : FakeDataHolder {
    datacom::Fcodes execute(const std::string& command, std::string& result) override {
        entered.set_value();
        released.wait_for(5s);
        return FakeDataHolder::execute(command, result);
    }
    std::promise<void> entered, release;
    std::shared_future<void> released = release.get_future().share();
};

// Waits up to `limit` for a message of the feed that holds `text`.
static bool feedShows(ConsoleFeed& feed, uint64_t& cursor, const std::string& text, std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    for (auto now = until - limit; now < until; now = std::chrono::steady_clock::now())
        if (feed.next(cursor, std::chrono::duration_cast<std::chrono::milliseconds>(until - now)).find(text) !=
            std::string::npos)
            return true;
    return false;
}

// A manager that does not answer (bound, never reading) is known as such; a
// press is then answered at once and not sent. Once a manager answers again,
// the next press reaches it, and a second press meanwhile is refused.
TEST(ChannelConsole, StoppedManagerAnsweredAtOnceAndUsedAgainWhenItAnswers) {
    const char* manager = "/tmp/sockFakeChan";
    auto stopped = std::make_unique<RawPeer>(manager);
    ConsoleFeed feed;
    ChannelConsole console(feed, manager);
    console.start("/tmp/chanweb-test");
    uint64_t cursor = 0;
    ASSERT_TRUE(feedShows(feed, cursor, "{\"daemon\":\"not answering\"}", 5000ms));
    std::string answer;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(console.press("stop", "HEVC", answer), ChannelConsole::Press::NotAnswering);
    EXPECT_LT(secondsSince(start), 2.0);
    EXPECT_NE(answer.find("\"daemon\":\"not answering\""), std::string::npos) << answer;
    for (std::string datagram; stopped->receive(datagram, 0);)
        EXPECT_EQ(datagram.find("\"Stop\""), std::string::npos) << "sent while not answering:\n" << datagram;

    stopped.reset();
    HeldManager holder;
    datacom::DataCommunicator server;
    server.init(&holder, manager, "/tmp/sockFakeChanSend", "tFakeChan");
    server.start();
    ASSERT_TRUE(feedShows(feed, cursor, "{\"daemon\":\"answering\"}", 5000ms));
    holder.setExecuteAnswer("", datacom::FC_COMM_ERROR);  // the mediator's silence, told by an answering manager
    auto played = std::async(std::launch::async, [&] {
        std::string reply;
        return console.press("play", "HEVC", reply) == ChannelConsole::Press::Done ? reply : "not done";
    });
    ASSERT_EQ(holder.entered.get_future().wait_for(3s), std::future_status::ready);
    EXPECT_EQ(console.press("stop", "H.264", answer), ChannelConsole::Press::Busy);
    holder.release.set_value();
    EXPECT_NE(played.get().find("\"result\":\"Communication Error\""), std::string::npos);
    EXPECT_TRUE(console.answering());
    console.stop();
    server.stop();
}
