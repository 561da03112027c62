#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <httplib.h>

// The console's HTTP server, made to hold against a client on this machine
// and against a page of another site in the operator's browser:
// - a fixed pool of workers, of which event streams may take MAX_STREAMS
//   (beyond it 503 with Retry-After), so status and buttons always find one;
// - a connection must deliver each whole request within REQUEST_SEC (a slow
//   sender is cut; the deadline rides on the library's own waits, see
//   poll() and recv() in GuardedServer.cpp), then reads and writes have
//   their own time-outs;
//   keep-alive is bounded in requests and idle time;
// - request bodies over MAX_BODY are refused (413) without being kept, and a
//   request for several byte ranges is refused (416);
// - a Host that is not one of `hosts`, or none, is refused (421): a foreign
//   name that a DNS trick points at this machine reaches nothing;
// - every reply forbids framing, other origins' content, type sniffing and
//   referrers.
class GuardedServer : public httplib::Server {
public:
    static constexpr int MAX_STREAMS = 16;
    static constexpr int WORKERS = MAX_STREAMS + 24;
    static constexpr int REQUEST_SEC = 5;
    static constexpr size_t MAX_BODY = size_t{64} * 1024;

    // `allowed`: the names a request's Host may carry (without port).
    explicit GuardedServer(std::vector<std::string> allowed);

    // Takes one of the MAX_STREAMS stream places; false when all are taken.
    bool takeStream();
    void releaseStream();
    // In a handler: the socket of the connection it answers. peerGone: true
    // once that client closed its side (a stream then gives up its place).
    static int currentSocket();
    static bool peerGone(int fd);

private:
    // The pool; each connection's request deadline rides on its worker.
    class Workers : public httplib::TaskQueue {
    public:
        void enqueue(std::function<void()> work) override;
        void shutdown() override;

    private:
        httplib::ThreadPool pool{WORKERS};
    };
    bool hostAllowed(const std::string& host) const;
    // The request the calling worker reads next must be in whole within
    // REQUEST_SEC (on), or it is writing a reply (off: no deadline).
    static void arm(bool on);

    const std::vector<std::string> hosts;
    std::atomic<int> streams{0};
};
