#include "GuardedServer.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>

// When the request the calling worker reads must be in (max(): no limit).
thread_local std::chrono::steady_clock::time_point tDeadline = std::chrono::steady_clock::time_point::max();

namespace {

constexpr int KEEPALIVE_REQUESTS = 20;
constexpr int KEEPALIVE_IDLE_SEC = 3;
constexpr int IO_TIMEOUT_SEC = 5;
constexpr int RETRY_AFTER_SEC = 5;


// "name", "name:port", "[v6]" or "[v6]:port" without the port and brackets.
std::string hostName(const std::string& header) {
    if (!header.empty() && header[0] == '[') {
        const size_t close = header.find(']');
        return close == std::string::npos ? header : header.substr(1, close - 1);
    }
    return header.substr(0, header.find(':'));
}

}  // namespace

GuardedServer::GuardedServer(std::vector<std::string> allowed) : hosts(std::move(allowed)) {
    new_task_queue = [] { return new Workers(); };
    set_read_timeout(IO_TIMEOUT_SEC, 0);
    set_write_timeout(IO_TIMEOUT_SEC, 0);
    set_keep_alive_max_count(KEEPALIVE_REQUESTS);
    set_keep_alive_timeout(KEEPALIVE_IDLE_SEC);
    set_payload_max_length(MAX_BODY);

    set_pre_routing_handler([this](const httplib::Request& req, httplib::Response& res) {
        if (!hostAllowed(hostName(req.get_header_value("Host")))) {
            res.status = 421;
            res.set_content("{\"error\":\"unknown Host\"}\n", "application/json");
            return httplib::Server::HandlerResponse::Handled;
        }
        if (req.get_header_value("Range").find(',') != std::string::npos) {
            res.status = 416;
            res.set_content("{\"error\":\"one byte range at most\"}\n", "application/json");
            return httplib::Server::HandlerResponse::Handled;
        }
        return httplib::Server::HandlerResponse::Unhandled;
    });
    // Just before each reply is written: the request is in, the deadline off.
    set_post_routing_handler([](const httplib::Request&, httplib::Response& res) {
        arm(false);
        res.set_header("X-Frame-Options", "DENY");
        res.set_header("Content-Security-Policy",
                       "default-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'");
        res.set_header("X-Content-Type-Options", "nosniff");
        res.set_header("Referrer-Policy", "no-referrer");
    });
    // After each reply: the next request on this connection is timed anew.
    set_logger([](const httplib::Request&, const httplib::Response&) { arm(true); });
}

bool GuardedServer::takeStream() {
    if (++streams <= MAX_STREAMS)
        return true;
    --streams;
    return false;
}

void GuardedServer::releaseStream() {
    --streams;
}

bool GuardedServer::hostAllowed(const std::string& host) const {
    return std::find(hosts.begin(), hosts.end(), host) != hosts.end();
}

void GuardedServer::arm(bool on) {
    tDeadline = on ? std::chrono::steady_clock::now() + std::chrono::seconds(REQUEST_SEC)
                   : std::chrono::steady_clock::time_point::max();
}

// Each connection runs on one worker from its accept to its close; the
// deadline starts with it.
void GuardedServer::Workers::enqueue(std::function<void()> work) {
    pool.enqueue([work = std::move(work)] {
        arm(true);
        work();
        tDeadline = std::chrono::steady_clock::time_point::max();
    });
}

void GuardedServer::Workers::shutdown() {
    pool.shutdown();
}

// The HTTP library waits for every read and write of a connection with
// poll(); on a worker this wait ends (as a time-out, which closes the
// connection) when the worker's request deadline passes, however the client
// trickles its bytes. Other threads wait as they asked.
extern "C" int poll(pollfd* fds, nfds_t count, int timeoutMs) {
    const auto deadline = tDeadline;
    if (deadline != std::chrono::steady_clock::time_point::max()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline -
                                                                                std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return 0;
        if (timeoutMs < 0 || left.count() < timeoutMs)
            timeoutMs = static_cast<int>(left.count());
    }
    if (timeoutMs < 0)
        return ppoll(fds, count, nullptr, nullptr);
    const timespec limit{timeoutMs / 1000, (timeoutMs % 1000) * 1000000L};
    return ppoll(fds, count, &limit, nullptr);
}
