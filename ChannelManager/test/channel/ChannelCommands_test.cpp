#include <gtest/gtest.h>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

// "Change on-the-fly" needs both bitrates, reads them with base detection
// and skips only a request equal to both settings (factory H.264: total
// 5000000, maximum 6000000).
TEST(ChannelCommands, ChangeOnTheFlyCommand) {
    struct Row {
        const char *total, *max;  // nullptr: not in the request
        int totalAfter, maxAfter;
        const char* event;  // the description of "Bitrate Recalculated", nullptr: no change
    } rows[] = {
        {"4000000", nullptr, 5000000, 6000000, nullptr},
        {"0x4C4B40", "6000000", 5000000, 6000000, nullptr},
        {"0x3D0900", "027000000", 4000000, 6029312, "prev: 5000000 new: 4000000"},  // octal maximum
        {"5000000", "7000000", 5000000, 7000000, "prev: 5000000 new: 5000000"},     // the maximum alone
    };
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready());
        Params params = {{cmd::PARAM_ROW_ID, row::H264}, {cmd::PARAM_TOTAL_BITRATE, r.total}};
        if (r.max)
            params.push_back({cmd::PARAM_MAX_BITRATE, r.max});
        EXPECT_EQ(FC_OK, h.channelCommand(cmd::CHANGE_ON_THE_FLY, params)) << r.total;
        EXPECT_EQ(r.totalAfter, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::H264)) << r.total;
        EXPECT_EQ(r.maxAfter, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, row::H264)) << r.total;
        EXPECT_EQ(r.event == nullptr, h.writes().empty()) << r.total;
        const std::vector<RecordedEvent> events = h.recorder.events();
        ASSERT_EQ(r.event ? 1u : 0u, events.size()) << r.total;
        if (r.event) {
            EXPECT_EQ(r.event, events[0].description) << r.total;
        }
    }
}
