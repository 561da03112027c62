#include "GuardedServer.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

// When the request the calling worker reads must be in (max(): no limit).
thread_local std::chrono::steady_clock::time_point tDeadline = std::chrono::steady_clock::time_point::max();
// The socket of the connection the calling worker serves (its last read).
thread_local int tSocket = -1;

namespace {

constexpr int KEEPALIVE_REQUESTS = 20;
constexpr int KEEPALIVE_IDLE_SEC = 3;
constexpr int IO_TIMEOUT_SEC = 5;

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
        // No body: the library would serve the ranges asked for out of it.
        if (req.get_header_value("Range").find(',') != std::string::npos) {
            res.status = 416;
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

// A request without a Host (or with an empty one) names no site: refused like a foreign one.
bool GuardedServer::hostAllowed(const std::string& host) const {
    return !host.empty() && std::find(hosts.begin(), hosts.end(), host) != hosts.end();
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

namespace {

const timespec kNoWait{0, 0};

// Milliseconds the calling worker may still wait for its request; -1: no limit.
int64_t msLeft() {
    const auto deadline = tDeadline;
    if (deadline == std::chrono::steady_clock::time_point::max())
        return -1;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return std::max<int64_t>(left.count(), 0);
}

int waitFor(pollfd* fds, nfds_t count, int timeoutMs) {
    if (timeoutMs < 0)
        return ppoll(fds, count, nullptr, nullptr);
    const timespec limit{timeoutMs / 1000, (timeoutMs % 1000) * 1000000L};
    return ppoll(fds, count, &limit, nullptr);
}

}  // namespace

// The HTTP library waits for a connection's next request with poll() and
// reads it with recv() on a socket with a per-read time-out. On a worker
// whose request deadline is set, both waits end when it passes (poll as a
// time-out, recv as a failed read), which closes the connection however
// slowly the client trickles its bytes. Every other wait is as asked.
// Once the deadline passed the connection is shut down: the library would
// answer the torn request and wait for another on the same connection.
extern "C" int poll(pollfd* fds, nfds_t nfds, int timeout) {
    const int64_t left = msLeft();
    const bool clamped = left >= 0 && (timeout < 0 || left < timeout);
    const int ready = waitFor(fds, nfds, clamped ? static_cast<int>(left) : timeout);
    if (ready == 0 && clamped)
        for (nfds_t i = 0; i < nfds; ++i)
            shutdown(fds[i].fd, SHUT_RDWR);
    return ready;
}

extern "C" ssize_t recv(int fd, void* buf, size_t n, int flags) {
    const int64_t left = msLeft();
    if (left >= 0) {
        pollfd readable{fd, POLLIN, 0};
        if (waitFor(&readable, 1, static_cast<int>(left)) <= 0) {
            shutdown(fd, SHUT_RDWR);
            errno = ETIMEDOUT;
            return -1;
        }
    }
    tSocket = fd;
    return recvfrom(fd, buf, n, flags, nullptr, nullptr);
}

int GuardedServer::currentSocket() {
    return tSocket;
}

bool GuardedServer::peerGone(int fd) {
    pollfd hangup{fd, POLLRDHUP, 0};
    return fd >= 0 && ppoll(&hangup, 1, &kNoWait, nullptr) > 0 &&
           (hangup.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}
