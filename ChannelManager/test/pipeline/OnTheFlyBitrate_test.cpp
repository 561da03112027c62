#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

using OnTheFlyBitrate = ChannelTest;

// Factory HEVC: 1280x720p @ 50 over UDP, CBR, AAC-LC 128 kbit/s (211500 in
// the stream). A total whose video share is 23899 is raised to the 23900
// floor, the total recomputed from it and the maximum lifted to what 26290
// needs; 23900 itself is kept.
TEST_F(OnTheFlyBitrate, OnTheFlyKeepsTheHevcMinimum) {
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::HEVC, 355481, 300000));
    EXPECT_EQ(23900, h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::HEVC));
    EXPECT_EQ(355481, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::HEVC));
    EXPECT_EQ(357923, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, row::HEVC));
    EXPECT_EQ((std::vector<std::string>{"Video Encoder CH1/Bitrate=23900", "Video Encoder CH1/Bitrate Margin=0",
                                        "Video Encoder CH1/Apply On The Fly Bitrate=1"}),
              h.writes({"Video Encoder CH1/"}));
    ASSERT_EQ(std::vector<std::string>{"Bitrate Recalculated HEVC"}, h.recorder.names());
    EXPECT_EQ("prev: 5000000 new: 355481", h.recorder.events()[0].description);
    EXPECT_EQ(355481, h.number(ds::CHANNEL, tbl::CHANNELS, prop::TOTAL_BIT_RATE, row::HEVC))
        << "updateChannel refreshes the summary";

    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::HEVC, 355482, 300000));
    EXPECT_EQ(23900, h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::HEVC));
    EXPECT_EQ(355482, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::HEVC));
    EXPECT_EQ(300000, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, row::HEVC))
        << "no floor above the minimum";
}

// Factory H.264: 1920x1080i @ 25, the same audio. Its floor is 100000 (max
// floor for 110000); with CBR the margin is 25, with Capped VBR it follows
// the maximum and replaces the overhead percentage. A refused encoder write
// is logged and the change goes on.
TEST_F(OnTheFlyBitrate, OnTheFlyH264MinimumAndMargins) {
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 410553, 400000));
    EXPECT_EQ(100000, h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::H264));
    EXPECT_EQ(410553, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::H264));
    EXPECT_EQ(420770, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, row::H264));
    EXPECT_EQ((std::vector<std::string>{"Video Encoder CH0/Bitrate=100000", "Video Encoder CH0/Bitrate Margin=25"}),
              h.writes({"Video Encoder CH0/"}));

    ASSERT_EQ(FC_OK,
              h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::RATE_CONTROL, value::CAPPED_VBR, row::H264));
    ASSERT_EQ(FC_OK, h.failNext("Tarnevel Put Param", {{"Count", "1"}}));
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 5000000, 6000000));
    EXPECT_EQ(4591798, h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::H264));
    EXPECT_EQ(5000000, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::H264));
    EXPECT_EQ(6000000, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, row::H264));
    EXPECT_EQ(21, h.number(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, row::H264))
        << "5570522 * 100 / 4591798 - 100";
    // The second change's "Bitrate" write was refused; its margin still went out.
    EXPECT_EQ((std::vector<std::string>{"Video Encoder CH0/Bitrate=100000", "Video Encoder CH0/Bitrate Margin=25",
                                        "Video Encoder CH0/Bitrate Margin=21"}),
              h.writes({"Video Encoder CH0/"}));

    // A "Max Bitrate" of 0 would make the margin -100 and store it as the overhead: both stay at 0.
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 5000000, 0));
    EXPECT_EQ(0, h.number(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, row::H264));
    EXPECT_EQ("Video Encoder CH0/Bitrate Margin=0", h.writes({"Video Encoder CH0/"}).back());

    // Plain VBR sends the margin but keeps its own overhead: only Capped VBR stores the margin as the overhead.
    ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::RATE_CONTROL, row::H264, "VBR"},
                       {tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, row::H264, 7}}));
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 5000000, 6000000));
    EXPECT_EQ("Video Encoder CH0/Bitrate Margin=21", h.writes({"Video Encoder CH0/"}).back());
    EXPECT_EQ(7, h.number(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, row::H264));

    h.recorder.clear();
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::ALL, 5000000, 6000000));
    EXPECT_TRUE(h.recorder.events().empty());
}

}  // namespace
