#include <gtest/gtest.h>

#include <string>

#include "support/ChannelHarness.h"
#include "channel/VideoFormatTables.h"

using namespace vocab;

namespace {

// The format matrix keeps its size and the rows the appliance relies on,
// including the ones that look like slips but are deliberate.
TEST(VideoFormatTables, KeepTheApplianceMatrix) {
    using namespace videoformat;
    EXPECT_EQ(38u, inputResMaxOutputFrameratesRows);
    EXPECT_EQ(5u, encHevcResMaxOutputFrameratesRows);
    EXPECT_EQ(9u, encH264ResMaxOutputFrameratesRows);
    EXPECT_EQ(39u, outputFromInputRows);
    EXPECT_EQ(31u, encFormatToDefGenlockRows);
    struct {
        bool (*lookup)(const std::string&, int&);
        const char* format;
        int expected;  // -1: no row
    } rates[] = {
        {maxInputFrameRate, "1920x1080p @ 59.94", 60}, {maxInputFrameRate, "1280x720p @ 30", 60},  // deliberate
        {maxInputFrameRate, "1280x720p @ 29.97", 30},  {maxInputFrameRate, "1600x1200p @ 85", 60},
        {maxInputFrameRate, "1600x1200p @ 60", -1},    {maxHevcFrameRate, "1280x1024p", 30},
        {maxHevcFrameRate, "1920x1080p", -1},          {maxH264FrameRate, "1920x1080i", 30},
        {maxH264FrameRate, "1280x720p", -1},
    };
    for (const auto& row : rates) {
        int max = -1;
        row.lookup(row.format, max);
        EXPECT_EQ(row.expected, max) << row.format;
    }
    struct {
        const char* encoding;
        const char* input;
        bool allowed;
    } inputs[] = {
        {"720x480p", "1600x1200p @ 60", true}, {"352x480p", "1600x1200p @ 60", true},  // deliberate
        {"352x240", "1600x1200p @ 60", true},  {"704x480p", "1600x1200p @ 60", false},
        {"1280x720i", "1280x720p @ 60", false}, {"800x600p", "800x600p @ 60", true},
        {"704x576p", "720x576p @ 50", false},   {"640x480p", "640x480p @ 60", false},
        {"1920x1080p", "1920x1080p @ 5", true},  // a plain substring search
    };
    for (const auto& row : inputs)
        EXPECT_EQ(row.allowed, inputAllowed(row.encoding, row.input)) << row.encoding << " / " << row.input;
    std::string genlock;
    EXPECT_TRUE(defaultGenlock("352x240", genlock));
    EXPECT_EQ("720x480i @ 29.97", genlock);
    EXPECT_TRUE(defaultGenlock("1280x720i", genlock));
    EXPECT_EQ("1280x720p @ 60", genlock);
    EXPECT_FALSE(defaultGenlock("1600x1200p", genlock));
}

// The matrix edges, the encoder limits with their exemptions (low latency;
// HEVC GOP "I"/"IP") and the HEVC 1080p GOP rule, on the factory sources.
TEST(ChannelInputFormat, ValidatesTheDetectedInputAgainstTheEncoding) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
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
        std::string source;
        DataHolder& d = *h.holder;
        ASSERT_EQ(OK, d.getTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, source, r.channel));
        ASSERT_EQ(OK, d.initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, r.input, source));
        ASSERT_EQ(OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, r.encoding, r.channel));
        ASSERT_EQ(OK, d.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, r.frameSampling, r.channel));
        ASSERT_EQ(OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE, r.profile, r.channel));
        ASSERT_EQ(OK, d.initTextParam(ds::CHANNEL, encoder, prop::GOP_STRUCTURE, r.gop, ""));
        EXPECT_EQ(r.expected, h.channel().validateInputFormat(r.channel))
            << r.channel << " " << r.input << " -> " << r.encoding << " @ " << r.frameSampling << " " << r.profile
            << " GOP " << r.gop;
    }
    // A source without a row skips the matrix and reports the failed read.
    ASSERT_EQ(OK, h.holder->initTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, "SD-SDI", H));
    EXPECT_EQ(OK | FC_NO_SUCH_NAME, h.channel().validateInputFormat(H));
}

}  // namespace
