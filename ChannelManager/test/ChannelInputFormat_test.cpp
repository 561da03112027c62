#include <gtest/gtest.h>

#include <string>

#include "ChannelHarness.h"
#include "VideoFormatTables.h"

using namespace vocab;

namespace {

// The format matrix keeps its size and the rows the appliance relies on,
// including the ones that look like slips but are deliberate.
TEST(VideoFormatTables, KeepTheApplianceMatrix) {
    EXPECT_EQ(38u, videoformat::inputResMaxOutputFrameratesRows);
    EXPECT_EQ(5u, videoformat::encHevcResMaxOutputFrameratesRows);
    EXPECT_EQ(9u, videoformat::encH264ResMaxOutputFrameratesRows);
    EXPECT_EQ(39u, videoformat::outputFromInputRows);
    EXPECT_EQ(31u, videoformat::encFormatToDefGenlockRows);

    struct RateRow {
        bool (*lookup)(const std::string&, int&);
        const char* format;
        int expected;  // -1: no row
    } rates[] = {
        {videoformat::maxInputFrameRate, "1920x1080p @ 60", 60},
        {videoformat::maxInputFrameRate, "1920x1080p @ 59.94", 60},
        {videoformat::maxInputFrameRate, "1280x720p @ 30", 60},  // deliberate
        {videoformat::maxInputFrameRate, "1280x720p @ 29.97", 30},
        {videoformat::maxInputFrameRate, "1600x1200p @ 85", 60},
        {videoformat::maxInputFrameRate, "720x480p @ 59.94", 60},
        {videoformat::maxInputFrameRate, "1600x1200p @ 60", -1},
        {videoformat::maxInputFrameRate, "800x600p @ 60", -1},
        {videoformat::maxHevcFrameRate, "1600x1200p", 30},
        {videoformat::maxHevcFrameRate, "1280x1024p", 30},
        {videoformat::maxHevcFrameRate, "1920x1080p", -1},
        {videoformat::maxH264FrameRate, "1920x1080i", 30},
        {videoformat::maxH264FrameRate, "1280x1024p", 30},
        {videoformat::maxH264FrameRate, "1280x720p", -1},
    };
    for (const RateRow& row : rates) {
        int max = -1;
        row.lookup(row.format, max);
        EXPECT_EQ(row.expected, max) << row.format;
    }

    struct InputRow {
        const char* encoding;
        const char* input;
        bool allowed;
    } inputs[] = {
        {"720x480p", "1600x1200p @ 60", true},  // deliberate
        {"352x480p", "1600x1200p @ 60", true},  // deliberate
        {"352x240", "1600x1200p @ 60", true},   // deliberate
        {"704x480p", "1600x1200p @ 60", false},
        {"720x480p", "1920x1080p @ 50", false},
        {"1280x720p", "1280x800p @ 50", true},
        {"1280x720i", "1280x720p @ 60", false},
        {"800x600p", "800x600p @ 60", true},
        {"800x600p", "800x600p @ 50", false},
        {"720x576p", "720x576p @ 50", true},
        {"704x576p", "720x576p @ 50", false},
        // A plain substring search: a fragment of a listed format matches.
        {"1920x1080p", "1920x1080p @ 5", true},
        {"640x480p", "640x480p @ 60", false},  // no row
    };
    for (const InputRow& row : inputs)
        EXPECT_EQ(row.allowed, videoformat::inputAllowed(row.encoding, row.input)) << row.encoding << " / " << row.input;

    struct GenlockRow {
        const char* encoding;
        const char* genlock;
    } genlocks[] = {
        {"1920x1080p", "1920x1080p @ 60"}, {"1280x720i", "1280x720p @ 60"}, {"352x240", "720x480i @ 29.97"},
        {"352x288", "720x576i @ 25"},      {"704x480p", "720x480p @ 59.94"}, {"1600x1200p", ""},
    };
    for (const GenlockRow& row : genlocks) {
        std::string genlock;
        videoformat::defaultGenlock(row.encoding, genlock);
        EXPECT_EQ(row.genlock, genlock) << row.encoding;
    }
}

// validateInputFormat over the edges of the matrix, the encoder limits and
// their exemptions, and the HEVC 1080p GOP rule. Each row sets the channel's
// source input, encoding, frame sampling, profile and GOP on the factory data.
TEST(ChannelInputFormat, ValidatesTheDetectedInputAgainstTheEncoding) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    struct Row {
        const char* channel;
        const char* input;  // "Input Detected" of the channel's factory source
        const char* encoding;
        int frameSampling;
        const char* profile;
        const char* gop;
        Fcodes expected;
    } rows[] = {
        {row::H264, "1920x1080i @ 25", "1920x1080i", 25, value::PROFILE_BROADCAST, "IBBP", FC_OK},
        {row::H264, "1920x1080i @ 25", "1920x1080i", 30, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::H264, "1920x1080p @ 50", "1920x1080p", 50, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::H264, "1920x1080p @ 50", "1920x1080p", 50, value::PROFILE_ULL, "IBBP", FC_OK},
        {row::H264, "1920x1080p @ 50", "1920x1080p", 60, value::PROFILE_ULL, "IBBP", FC_UNAVAILABLE},
        {row::H264, "1920x1080p @ 50", "1920x1080p", 30, value::PROFILE_ISR, "I", FC_OK},
        {row::H264, "1280x720p @ 30", "1280x720p", 60, value::PROFILE_BROADCAST, "IBBP", FC_OK},
        {row::H264, "1280x720p @ 29.97", "1280x720p", 60, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::H264, "1600x1200p @ 60", "720x480p", 30, value::PROFILE_BROADCAST, "IBBP", FC_OK},
        {row::H264, "1600x1200p @ 60", "704x480p", 30, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::H264, "1920x1080i @ 25", "800x480p", 25, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::H264, "None", "800x480p", 60, value::PROFILE_BROADCAST, "IBBP", FC_OK},
        {row::HEVC, "1280x720p @ 50", "1280x720p", 50, value::PROFILE_BROADCAST, "IBBP", FC_OK},
        {row::HEVC, "1600x1200p @ 50", "1600x1200p", 50, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::HEVC, "1600x1200p @ 50", "1600x1200p", 50, value::PROFILE_BROADCAST, "I", FC_OK},
        {row::HEVC, "1600x1200p @ 50", "1600x1200p", 50, value::PROFILE_BROADCAST, "IP", FC_OK},
        {row::HEVC, "1600x1200p @ 50", "1600x1200p", 50, value::PROFILE_ULL, "IBBP", FC_OK},
        {row::HEVC, "1600x1200p @ 85", "1600x1200p", 85, value::PROFILE_ULL, "I", FC_UNAVAILABLE},
        {row::HEVC, "1920x1080p @ 30", "1920x1080p", 30, value::PROFILE_BROADCAST, "IBBP", FC_OK},
        // The 1080p rule: allowed by the matrix, refused for any GOP but "IP".
        {row::HEVC, "1920x1080p @ 50", "1920x1080p", 50, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::HEVC, "1920x1080p @ 59.94", "1920x1080p", 60, value::PROFILE_ULL, "I", FC_UNAVAILABLE},
        {row::HEVC, "1920x1080p @ 60", "1920x1080p", 60, value::PROFILE_BROADCAST, "IP", FC_OK},
        // ... and when the matrix refuses as well.
        {row::HEVC, "1920x1080p @ 50", "1280x720i", 50, value::PROFILE_BROADCAST, "IBBP", FC_UNAVAILABLE},
        {row::HEVC, "None", "1920x1080p", 60, value::PROFILE_BROADCAST, "IBBP", FC_OK},
    };
    for (const Row& r : rows) {
        const char* encoder = std::string(r.channel) == row::HEVC ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
        std::string source;
        ASSERT_EQ(FC_OK, h.holder->getTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, source, r.channel));
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, r.input,
                                                 source));
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, r.encoding,
                                                 r.channel));
        ASSERT_EQ(FC_OK, h.holder->initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, r.frameSampling,
                                                r.channel));
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE, r.profile,
                                                 r.channel));
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, encoder, prop::GOP_STRUCTURE, r.gop, ""));
        EXPECT_EQ(r.expected, h.channel().validateInputFormat(r.channel))
            << r.channel << " input=" << r.input << " enc=" << r.encoding << " fr=" << r.frameSampling
            << " profile=" << r.profile << " gop=" << r.gop;
    }
}

// A source without a row in the video sources skips the matrix and reports
// the failed read; it is not a format failure.
TEST(ChannelInputFormat, FailedReadsSkipTheMatrix) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, "SD-SDI", row::H264));
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, "800x480p",
                                             row::H264));
    EXPECT_EQ(FC_OK | FC_NO_SUCH_NAME, h.channel().validateInputFormat(row::H264));
}

}  // namespace
