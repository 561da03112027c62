#include <netinet/in.h>
#include <poll.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "ChanwebArgs.h"
#include "ConsoleRoutes.h"
#include "engine/EngineTestSupport.h"

using namespace std::chrono_literals;

constexpr const char* MANAGER = "/tmp/sockFakeChan";

// A channel manager whose commands wait until the test lets them go, and
// its reads too once the first command went.
struct HeldManager : FakeDataHolder {
    datacom::Fcodes execute(const std::string& command, std::string& result) override {
        entered.set_value();
        released.wait_for(5s);
        return FakeDataHolder::execute(command, result);
    }
    using FakeDataHolder::getTextParam;
    datacom::Fcodes getTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& v,
                                 const std::string& key) override {
        if (released.wait_for(0s) == std::future_status::ready)
            readsReleased.wait_for(5s);
        return FakeDataHolder::getTextParam(d, c, p, v, key);
    }
    std::promise<void> entered, release, releaseReads;
    std::shared_future<void> released = release.get_future().share(), readsReleased = releaseReads.get_future().share();
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

// The console's routes on the real server, on a free port of 127.0.0.1, as
// chanweb runs them by default (its console started only where a test needs it).
class ConsoleServer : public testing::Test {
protected:
    void SetUp() override {
        addConsoleRoutes(server, feed, console);
        ASSERT_GT(port = server.bind_to_any_port("127.0.0.1"), 0);
        serving = std::thread([this] { server.listen_after_bind(); });
        for (auto until = std::chrono::steady_clock::now() + 5s; !server.is_running();
             std::this_thread::sleep_for(10ms))
            ASSERT_LT(std::chrono::steady_clock::now(), until) << "the server did not start";
    }
    void TearDown() override {
        for (int fd : open)
            close(fd);
        feed.close();
        server.stop();
        if (serving.joinable())
            serving.join();
    }
    // A new connection, closed at the end of the test.
    int connection() {
        open.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in to{AF_INET, htons(static_cast<uint16_t>(port)), {htonl(INADDR_LOOPBACK)}, {}};
        return connect(open.back(), reinterpret_cast<sockaddr*>(&to), sizeof to) == 0 ? open.back() : -1;
    }
    // Sends `request` on a new connection and returns what came back until
    // `until` was in it, the connection closed, or a second passed.
    std::string send(const std::string& request, const std::string& until = "\r\n\r\n") {
        const int fd = connection();
        std::string reply;
        char buffer[4096];
        pollfd readable{fd, POLLIN, 0};
        for (ssize_t got = write(fd, request.data(), request.size());
             got > 0 && reply.find(until) == std::string::npos && poll(&readable, 1, 1000) == 1 &&
             (got = read(fd, buffer, sizeof buffer)) > 0;)
            reply.append(buffer, static_cast<size_t>(got));
        return reply;
    }
    static int status(const std::string& reply) { return reply.rfind("HTTP/1.1 ", 0) ? 0 : std::stoi(reply.substr(9)); }

    ConsoleFeed feed;
    ChannelConsole console{feed, MANAGER};
    GuardedServer server{allowedHosts(ChanwebOptions())};
    std::thread serving;
    int port = 0;
    std::vector<int> open;
};

const std::string STREAM = "GET /api/events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";

// Only 127.0.0.1 is bound, not elsewhere without --allow-remote; only it and
// localhost pass as Host (none, an empty one or a foreign one is refused);
// every reply forbids framing, sniffing and referrers; a body over 64 KiB is
// refused, and so are several byte ranges.
TEST_F(ConsoleServer, RefusesWhatAHostileClientTries) {
    ChanwebOptions options;
    EXPECT_NE(parseChanwebArgs({"--bind", "0.0.0.0"}, options).find("no authentication"), std::string::npos);
    EXPECT_EQ(parseChanwebArgs({"--bind", "0.0.0.0", "--allow-remote"}, options), "");
    auto withHost = [&](const std::string& line) {
        return status(send("GET /api/status HTTP/1.1\r\n" + line + "\r\n"));
    };
    EXPECT_EQ(withHost("Host: 127.0.0.1:" + std::to_string(port) + "\r\n"), 200);
    EXPECT_EQ(withHost("Host: localhost\r\n"), 200);
    for (const char* line : {"", "Host: \r\n", "Host: :8080\r\n", "Host: rebound.example\r\n"})
        EXPECT_EQ(withHost(line), 421) << line;
    const std::string reply = send("GET /api/status HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    for (const char* header : {"X-Frame-Options: DENY", "frame-ancestors 'none'", "X-Content-Type-Options: nosniff",
                               "Referrer-Policy: no-referrer"})
        EXPECT_NE(reply.find(header), std::string::npos) << header << " missing in\n" << reply;
    for (const size_t size : {GuardedServer::MAX_BODY, GuardedServer::MAX_BODY + 1})
        EXPECT_EQ(status(send("POST /api/press HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: " + std::to_string(size) +
                              "\r\n\r\n" + std::string(size, 'a'))),
                  size == size_t{64} * 1024 ? 403 : 413)  // 403: read, then refused for want of X-Chanweb
            << size;
    EXPECT_EQ(status(send("GET /api/status HTTP/1.1\r\nHost: 127.0.0.1\r\nRange: bytes=0-1,2-3\r\n\r\n")), 416);
}

// 16 event streams are served and the 17th refused, while status still
// answers; a stream that closes gives its place to the next.
TEST_F(ConsoleServer, SixteenEventStreamsAtOnce) {
    for (int i = 1; i <= 16; ++i)
        ASSERT_EQ(status(send(STREAM)), 200) << "stream " << i;
    const std::string refused = send(STREAM);
    EXPECT_EQ(status(refused), 503);
    EXPECT_NE(refused.find("Retry-After: 5\r\n"), std::string::npos) << refused;
    EXPECT_EQ(status(send("GET /api/status HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n")), 200);
    close(open.front());
    open.erase(open.begin());
    int again = 0;
    for (auto until = std::chrono::steady_clock::now() + 3s; again != 200 && std::chrono::steady_clock::now() < until;)
        if ((again = status(send(STREAM))) != 200)
            std::this_thread::sleep_for(100ms);  // the stream notices its client left within a slice
    EXPECT_EQ(again, 200);
}

// A page that comes back with Last-Event-ID gets the later messages only.
TEST_F(ConsoleServer, ReconnectGetsOnlyLaterMessages) {
    for (const char* json : {"{\"n\":1}", "{\"n\":2}", "{\"n\":3}"})
        feed.publish("log", json);
    const std::string reply =
        send("GET /api/events HTTP/1.1\r\nHost: 127.0.0.1\r\nLast-Event-ID: 2\r\n\r\n", "\"n\":3");
    EXPECT_NE(reply.find("id: 3\nevent: log\ndata: {\"n\":3}"), std::string::npos) << reply;
    EXPECT_EQ(reply.find("\"n\":2"), std::string::npos) << reply;
}

// A client that trickles its request, a byte every 300 ms, is cut once
// REQUEST_SEC (5 s) passed since it connected, not later and not sooner.
TEST_F(ConsoleServer, TricklingClientIsCutAfterFiveSeconds) {
    const int fd = connection();
    const std::string text = "GET /api/status HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: " + std::string(100, 'a');
    const auto start = std::chrono::steady_clock::now();
    pollfd closed{fd, POLLIN, 0};
    for (size_t at = 0; at < text.size() && write(fd, &text[at], 1) == 1 && poll(&closed, 1, 300) == 0; ++at) {
    }
    EXPECT_GT(secondsSince(start), 4.5);
    EXPECT_LT(secondsSince(start), 6.5);
}

// A manager that does not answer (bound, never reading) is known as such:
// status says so and a press is answered at once, not sent. Once a manager
// answers again the next press reaches it, and a second press meanwhile is
// refused; its verdict "Communication Error" (the mediator's) is an answer.
// A manager that goes away is asked again until it answers.
TEST_F(ConsoleServer, StoppedManagerAnsweredAtOnceAndUsedAgainWhenItAnswers) {
    auto stopped = std::make_unique<RawPeer>(MANAGER);
    console.start("/tmp/chanweb-test");
    uint64_t cursor = 0;
    ASSERT_TRUE(feedShows(feed, cursor, "{\"daemon\":\"not answering\"}", 5000ms));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NE(send("GET /api/status HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n", "}\n").find("\"daemon\":\"not answering\"}"),
              std::string::npos);
    const std::string answer = send(
        "POST /api/press?action=stop&row=HEVC HTTP/1.1\r\nHost: 127.0.0.1\r\n"
        "X-Chanweb: 1\r\nContent-Length: 0\r\n\r\n",
        "}\n");
    EXPECT_LT(secondsSince(start), 2.0);
    EXPECT_EQ(status(answer), 503);
    EXPECT_NE(answer.find("\"daemon\":\"not answering\""), std::string::npos) << answer;
    for (std::string datagram; stopped->receive(datagram, 0);)
        EXPECT_EQ(datagram.find("\"Stop\""), std::string::npos) << "sent while not answering:\n" << datagram;

    stopped.reset();
    HeldManager holder;
    auto manager = std::make_unique<datacom::DataCommunicator>();
    manager->init(&holder, MANAGER, "/tmp/sockFakeChanSend", "tFakeChan");
    manager->start();
    ASSERT_TRUE(feedShows(feed, cursor, "{\"daemon\":\"answering\"}", 5000ms));
    holder.setExecuteAnswer("", datacom::FC_COMM_ERROR);
    auto played = std::async(std::launch::async, [&] {
        std::string reply;
        return console.press("play", "HEVC", reply) == ChannelConsole::Press::Done ? reply : "not done";
    });
    ASSERT_EQ(holder.entered.get_future().wait_for(3s), std::future_status::ready);
    std::string busy;
    EXPECT_EQ(console.press("stop", "H.264", busy), ChannelConsole::Press::Busy);
    holder.release.set_value();
    EXPECT_NE(played.get().find("\"result\":\"Communication Error\""), std::string::npos);
    EXPECT_TRUE(console.answering());  // while the status read after the press waits
    holder.releaseReads.set_value();

    // Gone (its socket closed), then back: asked again within RETRY_MS, not at the next REFRESH_MS.
    manager.reset();
    console.press("stop", "HEVC", busy);  // finds it gone, if the refresher did not
    ASSERT_TRUE(feedShows(feed, cursor, "{\"daemon\":\"not answering\"}", 3000ms));
    manager = std::make_unique<datacom::DataCommunicator>();
    manager->init(&holder, MANAGER, "/tmp/sockFakeChanSend", "tFakeChan");
    manager->start();
    for (auto until = std::chrono::steady_clock::now() + 1s; !console.answering(); std::this_thread::sleep_for(20ms))
        ASSERT_LT(std::chrono::steady_clock::now(), until) << "not asked again at once";
    console.stop();
}
