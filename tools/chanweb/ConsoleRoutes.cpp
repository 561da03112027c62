#include "ConsoleRoutes.h"

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>

#include <json/json.h>

namespace {

constexpr auto KEEPALIVE = std::chrono::milliseconds(15000);
constexpr auto STREAM_SLICE = std::chrono::milliseconds(500);
constexpr int RETRY_AFTER_SEC = 5;

}  // namespace

void addConsoleRoutes(GuardedServer& server, ConsoleFeed& feed, ChannelConsole& console) {
    server.Get("/api/status", [&feed, &console](const httplib::Request&, httplib::Response& res) {
        Json::Value status;
        Json::Reader().parse(feed.status().empty() ? "{}" : feed.status(), status);
        status["daemon"] = console.answering() ? "answering" : "not answering";
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        res.set_content(Json::writeString(builder, status) + "\n", "application/json");
    });
    server.Get("/api/events", [&server, &feed](const httplib::Request& req, httplib::Response& res) {
        if (!server.takeStream()) {
            res.status = 503;
            res.set_header("Retry-After", std::to_string(RETRY_AFTER_SEC));
            res.set_header("Connection", "close");  // its worker is free at once
            res.set_content("{\"error\":\"too many event streams\"}\n", "application/json");
            return;
        }
        res.set_header("Cache-Control", "no-cache");
        // A reconnecting page names the last message it saw and gets only the later ones.
        auto cursor =
            std::make_shared<uint64_t>(std::strtoull(req.get_header_value("Last-Event-ID").c_str(), nullptr, 10));
        auto first = std::make_shared<bool>(true);
        auto idle = std::make_shared<std::chrono::milliseconds>(0);
        // Waits in short slices, so that a client that went away gives up its
        // place within one, and writes a comment after KEEPALIVE of silence.
        res.set_chunked_content_provider(
            "text/event-stream",
            [&feed, cursor, first, idle, socket = GuardedServer::currentSocket()](size_t, httplib::DataSink& sink) {
                if (feed.closed() || GuardedServer::peerGone(socket))
                    return false;
                std::string chunk = *first ? "retry: 2000\n\n" : "";
                *first = false;
                chunk += feed.next(*cursor, STREAM_SLICE);
                *idle = chunk.empty() ? *idle + STREAM_SLICE : std::chrono::milliseconds(0);
                if (*idle >= KEEPALIVE) {
                    chunk = ": keep-alive\n\n";
                    *idle = std::chrono::milliseconds(0);
                }
                return !feed.closed() && (chunk.empty() || sink.write(chunk.data(), chunk.size()));
            },
            [&server](bool) { server.releaseStream(); });
    });
    // A button. The header a page of another origin cannot send without asking
    // first (and chanweb answers no such question) keeps other sites' pages
    // from pressing buttons through the visitor's browser.
    server.Post("/api/press", [&console](const httplib::Request& req, httplib::Response& res) {
        if (req.get_header_value("X-Chanweb") != "1") {
            res.status = 403;
            res.set_content("{\"error\":\"X-Chanweb header missing\"}\n", "application/json");
            return;
        }
        std::string answer;
        switch (console.press(req.get_param_value("action"), req.get_param_value("row"), answer)) {
            case ChannelConsole::Press::Unknown:
                res.status = 400;
                res.set_content("{\"error\":\"unknown action or row\"}\n", "application/json");
                return;
            case ChannelConsole::Press::Busy:
                res.status = 409;
                res.set_content("{\"error\":\"another press is still waiting for the channel manager\"}\n",
                                "application/json");
                return;
            case ChannelConsole::Press::NotAnswering:
                res.status = 503;
                res.set_content(answer, "application/json");
                return;
            case ChannelConsole::Press::Done:
                res.set_content(answer, "application/json");
                return;
        }
    });
}
