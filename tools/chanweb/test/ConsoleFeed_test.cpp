#include <gtest/gtest.h>

#include "ConsoleFeed.h"

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
    } rows[] = {
        {0, "", "id: 1\n"},            // a new reader: all that is kept
        {2, "dropped", "id: 4\n"},     // older than the newest dropped id
        {3, "", "id: 4\n"},            // the newest dropped id itself: nothing after it is missing
        {4, "", "id: 5\n"},            // a kept one
        {203, "", ""},                 // the newest: nothing new, nothing lost
        {204, "restarted", "id: 1\n"}  // beyond the newest: an earlier run's id
    };
    for (const auto& row : rows) {
        uint64_t cursor = row.cursor;
        const std::string out = feed.next(cursor, std::chrono::milliseconds(0));
        const std::string head =
            (row.gap.empty() ? "" : "event: gap\ndata: {\"reason\":\"" + row.gap + "\"}\n\n") + row.first;
        EXPECT_EQ(out.substr(0, head.size()), head) << "cursor " << row.cursor;
        EXPECT_EQ(out.find("event: gap") != std::string::npos, !row.gap.empty()) << "cursor " << row.cursor;
        EXPECT_EQ(out.find("id: 203\n") != std::string::npos, row.cursor != 203) << "cursor " << row.cursor;
        EXPECT_EQ(cursor, 203u) << "cursor " << row.cursor;
    }
}
