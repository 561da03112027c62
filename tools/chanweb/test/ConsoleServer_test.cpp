#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "ChanwebArgs.h"
#include "ConsoleRoutes.h"

using namespace std::chrono_literals;

namespace {

// The console's routes on the real server, on a free port of 127.0.0.1, as
// chanweb runs them by default (its console is not started: no manager).
class ConsoleServer : public testing::Test {
protected:
    void SetUp() override {
        addConsoleRoutes(server, feed, console);
        port = server.bind_to_any_port("127.0.0.1");
        ASSERT_GT(port, 0);
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
    // Sends `request` on a new connection (left open) and returns what came
    // back until `until` was in it, the connection closed, or a second passed.
    std::string send(const std::string& request, const std::string& until = "\r\n\r\n") {
        const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        open.push_back(fd);
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(static_cast<uint16_t>(port));
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        std::string reply;
        if (connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to) != 0 ||
            write(fd, request.data(), request.size()) != static_cast<ssize_t>(request.size()))
            return reply;
        char buffer[4096];
        pollfd readable{fd, POLLIN, 0};
        ssize_t got = 0;
        while (reply.find(until) == std::string::npos && poll(&readable, 1, 1000) == 1 &&
               (got = read(fd, buffer, sizeof buffer)) > 0)
            reply.append(buffer, static_cast<size_t>(got));
        return reply;
    }
    static int status(const std::string& reply) {
        return reply.rfind("HTTP/1.1 ", 0) == 0 ? std::stoi(reply.substr(9)) : 0;
    }

    ConsoleFeed feed;
    ChannelConsole console{feed, "/tmp/sockNobody"};
    GuardedServer server{allowedHosts(ChanwebOptions())};
    std::thread serving;
    int port = 0;
    std::vector<int> open;
};

const std::string STREAM = "GET /api/events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";

}  // namespace

// Only the bind address and localhost pass; no Host, an empty one or a foreign one is refused.
TEST_F(ConsoleServer, HostIsTheBindAddressOrLocalhost) {
    const struct {
        std::string hostLine;
        int status;
    } rows[] = {
        {"Host: 127.0.0.1:" + std::to_string(port) + "\r\n", 200},
        {"Host: localhost\r\n", 200},
        {"", 421},
        {"Host: \r\n", 421},
        {"Host: :" + std::to_string(port) + "\r\n", 421},
        {"Host: rebound.example\r\n", 421},
    };
    for (const auto& row : rows)
        EXPECT_EQ(status(send("GET /api/status HTTP/1.1\r\n" + row.hostLine + "Connection: close\r\n\r\n")), row.status)
            << row.hostLine;
}

// 16 event streams are served and the 17th refused, while status still
// answers; a stream that closes gives its place to the next.
TEST_F(ConsoleServer, SixteenEventStreamsAtOnce) {
    for (int i = 1; i <= 16; ++i)
        ASSERT_EQ(status(send(STREAM)), 200) << "stream " << i;
    const std::string refused = send(STREAM);
    EXPECT_EQ(status(refused), 503);
    EXPECT_NE(refused.find("Retry-After: 5\r\n"), std::string::npos) << refused;
    EXPECT_EQ(status(send("GET /api/status HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n")), 200);
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
    EXPECT_EQ(reply.find("event: gap"), std::string::npos) << reply;
}
