#include <gtest/gtest.h>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

using EncoderReadback = ChannelTest;

// The encoder's own choices come back into the settings; "4.2" is stored as
// "4.1", and a profile the settings cannot hold leaves the configured one.
TEST_F(EncoderReadback, AutomaticParamsReadBackTheEncoder) {
    h.mediator.model().setParam("Video Encoder CH1", "Level", "4.2");
    h.mediator.model().setParam("Video Encoder CH1", "Profile", "Main 4:4:4");
    h.mediator.model().setParam("Video Encoder CH1", "Tier", "High");
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::PROFILE, "Main 10", ""));
    EXPECT_EQ(FC_OK, h.channel().updateAutomaticParams(row::HEVC));
    EXPECT_EQ("4.1", h.text(ds::CHANNEL, tbl::HEVC_ENCODER, prop::LEVEL, ""));
    EXPECT_EQ("Main 10", h.text(ds::CHANNEL, tbl::HEVC_ENCODER, prop::PROFILE, ""));
    EXPECT_EQ("High", h.text(ds::CHANNEL, tbl::HEVC_ENCODER, prop::TIER, ""));

    h.mediator.model().setParam("Video Encoder CH0", "QP Base", "30");
    h.mediator.model().setParam("Video Encoder CH0", "QP Range Max", "45");
    h.mediator.model().setParam("TS Multiplexer CH0", "Max Delay", "1200");
    EXPECT_EQ(FC_OK, h.channel().updateAutomaticParams(row::H264));
    struct {
        const char* property;
        int expected;
    } h264[] = {{prop::QP_BASE, 30},
                {prop::QP_RANGE_MIN, 10},
                {prop::QP_MAX, 45},
                {prop::INITIAL_DELAY, 500},
                {prop::MAXIMUM_DELAY, 1200}};
    for (const auto& row : h264)
        EXPECT_EQ(row.expected, h.number(ds::CHANNEL, tbl::H264_ENCODER, row.property, "")) << row.property;
}
