#include <gtest/gtest.h>

#include <string>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

using InputFormatValidationTest = ChannelTest;

// The matrix edges, the encoder limits with their exemptions (low latency;
// HEVC GOP "I"/"IP") and the HEVC 1080p GOP rule, on the factory sources.
TEST_F(InputFormatValidationTest, ValidatesTheDetectedInputAgainstTheEncoding) {
    const char *H = row::H264, *V = row::HEVC, *B = value::PROFILE_BROADCAST, *L = value::PROFILE_ULL;
    const Fcodes OK = FC_OK, NO = FC_UNAVAILABLE;
    struct Row {
        const char *channel, *input, *encoding;
        int frameSampling;
        const char *profile, *gop;
        Fcodes expected;
    } rows[] = {
        {H, "1920x1080i @ 25", "1920x1080i", 25, B, "IBBP", OK},
        {H, "1920x1080i @ 25", "1920x1080i", 30, B, "IBBP", NO},
        {H, "1920x1080p @ 50", "1920x1080p", 50, B, "IBBP", NO},
        {H, "1920x1080p @ 50", "1920x1080p", 50, L, "IBBP", OK},
        {H, "1920x1080p @ 50", "1920x1080p", 60, L, "IBBP", NO},
        {H, "1280x720p @ 30", "1280x720p", 60, B, "IBBP", OK},
        {H, "1600x1200p @ 60", "720x480p", 30, B, "IBBP", OK},
        {H, "1600x1200p @ 60", "704x480p", 30, B, "IBBP", NO},
        {H, "1920x1080i @ 25", "800x480p", 25, B, "IBBP", NO},
        {H, "None", "800x480p", 60, B, "IBBP", OK},
        {V, "1600x1200p @ 50", "1600x1200p", 50, B, "IBBP", NO},
        {V, "1280x1024p @ 60", "1280x1024p", 30, B, "IBBP", OK},  // at the encoder's limit
        {V, "1600x1200p @ 50", "1600x1200p", 50, B, "I", OK},
        {V, "1600x1200p @ 50", "1600x1200p", 50, B, "IP", OK},
        {V, "1600x1200p @ 50", "1600x1200p", 50, L, "IBBP", OK},
        {V, "1600x1200p @ 85", "1600x1200p", 85, L, "I", NO},
        {V, "1920x1080p @ 30", "1920x1080p", 30, B, "IBBP", OK},
        {V, "1920x1080p @ 50", "1920x1080p", 50, B, "IBBP", NO},
        {V, "1920x1080p @ 59.94", "1920x1080p", 60, L, "I", NO},
        {V, "1920x1080p @ 60", "1920x1080p", 60, B, "IP", OK},
        {V, "None", "1920x1080p", 60, B, "IBBP", OK},
    };
    for (const Row& r : rows) {
        const char* encoder = std::string(r.channel) == V ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
        const std::string source = h.text(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, r.channel);
        ASSERT_TRUE(h.set({{tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, source, r.input}}, ds::VIDEO_SOURCE));
        ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::ENCODING_FORMAT, r.channel, r.encoding},
                           {tbl::PROCESSING, prop::FRAME_SAMPLING, r.channel, r.frameSampling},
                           {tbl::PROCESSING, prop::STREAM_PROFILE, r.channel, r.profile},
                           {encoder, prop::GOP_STRUCTURE, "", r.gop}}));
        EXPECT_EQ(r.expected, h.channel().validateInputFormat(r.channel))
            << r.channel << " " << r.input << " -> " << r.encoding << " @ " << r.frameSampling << " " << r.profile
            << " GOP " << r.gop;
    }
    // A source without a row skips the matrix and reports the failed read.
    ASSERT_EQ(OK, h.holder->initTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, "SD-SDI", H));
    EXPECT_EQ(OK | FC_NO_SUCH_NAME, h.channel().validateInputFormat(H));
}

}  // namespace
