#include <gtest/gtest.h>

#include <string>

#include "ConsoleFeed.h"

namespace {

// The id of the first message in an SSE text; 0 when it has none.
uint64_t firstId(const std::string& text) {
    const size_t at = text.find("id: ");
    return at == std::string::npos ? 0 : std::stoull(text.substr(at + 4));
}

size_t count(const std::string& text, const std::string& part) {
    size_t found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

}  // namespace

// A reconnecting reader is told of a gap exactly when a log message after the
// id it saw was dropped from the ring, or when its id is of an earlier run.
TEST(ConsoleFeed, GapRuleAtItsEdges) {
    ConsoleFeed feed;
    feed.publish("status", "{}");  // id 1: the status is kept whatever the log does
    for (size_t i = 0; i < ConsoleFeed::LOG_LIMIT + 2; ++i)
        feed.publish("log", "{}");  // ids 2 to 203: 2 and 3 are dropped
    const struct {
        uint64_t cursor;
        const char* gap;  // the reason told first, or null
        uint64_t firstId;
        size_t logs;
    } rows[] = {
        {0, nullptr, 1, 200},        // a new reader: all that is kept
        {2, "dropped", 4, 200},      // older than the newest dropped id
        {3, nullptr, 4, 200},        // the newest dropped id itself: nothing after it is missing
        {4, nullptr, 5, 199},        // a kept one
        {203, nullptr, 0, 0},        // the newest: nothing new, nothing lost
        {204, "restarted", 1, 200},  // beyond the newest: an earlier run's id
    };
    for (const auto& row : rows) {
        uint64_t cursor = row.cursor;
        const std::string out = feed.next(cursor, std::chrono::milliseconds(0));
        const std::string told = "event: gap\ndata: {\"reason\":\"";
        const bool gap = out.rfind(told, 0) == 0;
        EXPECT_EQ(gap ? out.substr(told.size(), out.find('"', told.size()) - told.size()) : "", row.gap ? row.gap : "")
            << "cursor " << row.cursor;
        EXPECT_EQ(firstId(out), row.firstId) << "cursor " << row.cursor;
        EXPECT_EQ(cursor, 203u) << "cursor " << row.cursor;
        EXPECT_EQ(count(out, "event: log"), row.logs) << "cursor " << row.cursor;
    }
}
