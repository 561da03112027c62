#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

// What the page's event stream carries, as Server-Sent Events: the latest
// channel status and the last LOG_LIMIT daemon events, each message with an
// increasing id. A new reader gets the latest status and the kept events
// first, then each message as it is published; a reader that comes back with
// the id of the last message it saw gets only the messages after it, and a
// "gap" message first when some of those were already dropped (or the id is
// of an earlier run of chanweb). Thread-safe: published from the engine's and the
// refresher's threads, read from the HTTP server's.
class ConsoleFeed {
public:
    static constexpr size_t LOG_LIMIT = 200;

    // `kind` "status" replaces the status kept; any other is kept as a log
    // entry. `json` is one line. Wakes every waiting reader.
    void publish(const std::string& kind, const std::string& json);
    // The messages after `cursor` (0: everything kept) in SSE form, moving the
    // cursor; waits up to `limit` for one. "" when none came or the feed closed.
    // Starts with a "gap" message when messages after `cursor` were dropped.
    std::string next(uint64_t& cursor, std::chrono::milliseconds limit);
    // The latest status line; "" before the first.
    std::string status() const;
    // Wakes every reader for good; next() returns "" from now on.
    void close();
    bool closed() const;

private:
    struct Entry {
        uint64_t seq;
        std::string kind, json;
    };
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::deque<Entry> entries;  // the status (at most one) and the log, by seq
    uint64_t lastSeq = 0;
    uint64_t droppedSeq = 0;  // the newest log message dropped from the ring
    bool isClosed = false;
};
