#include <gtest/gtest.h>

#include "ConsoleFeed.h"

static size_t count(const std::string& text, const std::string& part) {
    size_t found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

// A reconnecting reader is told of a gap exactly when a log message after the
// id it saw was dropped from the ring, or when its id is of an earlier run.
TEST(ConsoleFeed, GapRuleAtItsEdges) {
    ConsoleFeed feed;
    feed.publish("status", "{}");  // id 1: the status is kept whatever the log does
    for (size_t i = 0; i < ConsoleFeed::LOG_LIMIT + 2; ++i)
        feed.publish("log", "{}");  // ids 2 to 203: 2 and 3 are dropped
    const struct {
        uint64_t cursor;
        std::string gap;  // the reason told first
        std::string first;
        size_t logs;
    } rows[] = {
        {0, "", "id: 1\n", 200},            // a new reader: all that is kept
        {2, "dropped", "id: 4\n", 200},     // older than the newest dropped id
        {3, "", "id: 4\n", 200},            // the newest dropped id itself: nothing after it is missing
        {4, "", "id: 5\n", 199},            // a kept one
        {203, "", "", 0},                   // the newest: nothing new, nothing lost
        {204, "restarted", "id: 1\n", 200}  // beyond the newest: an earlier run's id
    };
    for (const auto& row : rows) {
        uint64_t cursor = row.cursor;
        const std::string out = feed.next(cursor, std::chrono::milliseconds(0));
        const std::string head =
            (row.gap.empty() ? "" : "event: gap\ndata: {\"reason\":\"" + row.gap + "\"}\n\n") + row.first;
        EXPECT_EQ(out.substr(0, head.size()), head) << "cursor " << row.cursor;
        EXPECT_EQ(count(out, "event: gap"), row.gap.empty() ? 0u : 1u) << "cursor " << row.cursor;
        EXPECT_EQ(count(out, "event: log"), row.logs) << "cursor " << row.cursor;
        EXPECT_EQ(cursor, 203u) << "cursor " << row.cursor;
    }
}
