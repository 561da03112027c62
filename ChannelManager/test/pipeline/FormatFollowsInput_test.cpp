// Section 8: the encoding format, frame sampling and GOP chosen from the
// detected input, alone and through a whole run.
#include <gtest/gtest.h>

#include <algorithm>

#include "model/VideoFormatTables.h"
#include "pipeline/FormatFollowsInput.h"
#include "support/ChannelPipelineSupport.h"

using namespace datacom;

using namespace vocab;

TEST(FormatFollowsInput, TheEncodingFormatFollowsTheInput) {
    struct Row {
        int channel;
        const char* input;
        const char* profile;
        bool half;
        const char* gop;
        const char* h264Profile;
        const char* format;
        int sampling;
        const char* gopAfter;
        bool mainProfile;
    } rows[] = {
        {0, "1920x1080p @ 59.94", value::PROFILE_BROADCAST, false, "IBBP", "H.264 High Profile", "1920x1080p", 30,
         "IBBP", false},
        {0, "1920x1080p @ 50", value::PROFILE_ISR, false, "IBBP", "H.264 High Profile", "1280x720p", 50, "IBBP", false},
        {0, "1920x1080p @ 60", value::PROFILE_ULL, false, "IBBP", "H.264 High Profile", "1920x1080p", 60, "IBBP",
         false},
        {0, "720x480i @ 29.97", value::PROFILE_BROADCAST, false, "IP", "H.264 Baseline Profile", "720x480i", 30, "IP",
         true},
        {0, "1920x1080i @ 25", value::PROFILE_BROADCAST, true, "IBBP", "H.264 Main Profile", "1920x1080i", 13, "IBBP",
         false},
        {1, "1920x1080p @ 50", value::PROFILE_BROADCAST, false, "IBBP", "", "1920x1080p", 50, "IP", false},
        {1, "1280x720p @ 59.94", value::PROFILE_ULL, false, "IBBP", "", "1280x720p", 60, "I", false},
        {1, "1600x1200p @ 85", value::PROFILE_BROADCAST, false, "IBBP", "", "1600x1200p", 30, "IBBP", false},
        {1, "1600x1200p @ 85", value::PROFILE_BROADCAST, false, "IP", "", "1600x1200p", 60, "IP", false},
    };
    for (const Row& r : rows) {
        pipeline::FormatChoice c;
        const std::string name = std::string(r.input) + " " + r.profile + " " + r.gop;
        ASSERT_TRUE(pipeline::chooseEncoding(r.channel, r.input, r.profile, r.half, r.gop, r.h264Profile, c)) << name;
        EXPECT_EQ(r.format, c.encodingFormat) << name;
        EXPECT_EQ(r.sampling, c.frameSampling) << name;
        EXPECT_EQ(r.gopAfter, c.gopStructure) << name;
        EXPECT_EQ(r.mainProfile, c.h264MainProfile) << name;
    }
    pipeline::FormatChoice c;
    EXPECT_FALSE(pipeline::chooseEncoding(0, "None", value::PROFILE_BROADCAST, false, "IBBP", "", c));
    // Every detected input of the format matrix, for every profile and codec,
    // gives a format that the input may feed at the chosen rate.
    for (size_t i = 0; i < videoformat::inputResMaxOutputFrameratesRows; ++i) {
        const std::string input = videoformat::inputResMaxOutputFrameratesMatch[i].format;
        for (const char* profile : {value::PROFILE_ISR, value::PROFILE_BROADCAST, value::PROFILE_ULL})
            for (int channel : {0, 1}) {
                const std::string name = input + " " + profile + " " + std::to_string(channel);
                ASSERT_TRUE(pipeline::chooseEncoding(channel, input, profile, false, "IBBP", "", c)) << name;
                EXPECT_TRUE(videoformat::inputAllowed(c.encodingFormat, input)) << name;
                EXPECT_LE(c.frameSampling, videoformat::inputResMaxOutputFrameratesMatch[i].maxFrameRate) << name;
                int limit = 1000;
                const bool exempt =
                    std::string(profile) == value::PROFILE_ULL || (channel == 1 && c.gopStructure == "IP");
                if (!exempt && (channel == 0 ? videoformat::maxH264FrameRate(c.encodingFormat, limit)
                                             : videoformat::maxHevcFrameRate(c.encodingFormat, limit))) {
                    EXPECT_LE(c.frameSampling, limit) << name;
                }
            }
    }
    struct Gop {
        int sampling;
        const char* gop;
        int size;
    } gops[] = {{25, "IBBP", 24}, {50, "IP", 50}, {30, "I", 1}, {60, "I(7B)P", 56}, {2, "I(15B)P", 16}};
    for (const Gop& g : gops)
        EXPECT_EQ(g.size, pipeline::gopSizeRough(g.sampling, g.gop)) << g.sampling << " " << g.gop;
}

// Section 8 through a whole run: the rows follow the input, the encoder and
// the summary follow the rows, and the receiver's format is read back once.
TEST(FormatFollowsInput, FormatAsDetectedFollowsTheInput) {
    struct Row {
        const char* rowId;
        const char* source;
        const char* input;
        const char* format;
        int sampling;
        const char* gop;
        int gopSize;
        std::vector<std::string> writes;  // among the encoder's and the genlock's
    } rows[] = {
        {row::H264,
         "HD-SDI",
         "1920x1080p @ 59.94",
         "1920x1080p",
         30,
         "IBBP",
         30,
         {"GS4911B_CH0/Default Video Format=1920x1080p @ 60", "Video Encoder CH0/Frame Sampling=30",
          "Video Encoder CH0/GOP Size=30", "Video Encoder CH0/Interlaced/Progressive=Progressive"}},
        {row::HEVC,
         "HDMI",
         "1920x1080p @ 50",
         "1920x1080p",
         50,
         "IP",
         50,
         {"GS4911B_CH1/Default Video Format=1920x1080p @ 60", "Video Encoder CH1/Frame Sampling=50",
          "Video Encoder CH1/GOP Size=50", "Video Encoder CH1/GOP Structure=IP",
          "Video Encoder CH1/Interlaced/Progressive=Progressive"}},
    };
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.input;
        PipelineBench b(h);
        ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::FORMAT_AS_DETECTED, r.rowId, true}}));
        ASSERT_TRUE(h.set({{tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, r.source, r.input}}, ds::VIDEO_SOURCE));
        EXPECT_TRUE(noWriteFailed(b.configure(r.rowId))) << r.input;
        const char* encoder = channelIndex(r.rowId) == 1 ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
        EXPECT_EQ(r.format, h.text(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, r.rowId)) << r.input;
        EXPECT_EQ(r.sampling, h.number(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, r.rowId)) << r.input;
        EXPECT_EQ(r.gop, h.text(ds::CHANNEL, encoder, prop::GOP_STRUCTURE, "")) << r.input;
        EXPECT_EQ(r.gopSize, h.number(ds::CHANNEL, encoder, prop::GOP_SIZE, "")) << r.input;
        EXPECT_EQ(std::string(r.format) + " @ " + std::to_string(r.sampling),
                  h.text(ds::CHANNEL, tbl::CHANNELS, prop::RESOLUTION, r.rowId));
        for (const std::string& w : r.writes)
            EXPECT_TRUE(b.wrote(w)) << r.input << ": " << w;
        const std::string receiver = std::string(r.source) == "HDMI" ? "HDMI_RECEIVER" : "SDI_RECEIVER";
        std::vector<std::string> reads = h.mediator.model().reads();
        EXPECT_EQ(1, std::count(reads.begin(), reads.end(), receiver + "/Video Format")) << r.input;
        std::sort(reads.begin(), reads.end());
        EXPECT_EQ(reads.end(), std::adjacent_find(reads.begin(), reads.end())) << r.input << ": a parameter read twice";
        EXPECT_EQ(FC_OK, h.channel().validateInputFormat(r.rowId)) << r.input << ": the chosen format is valid";
        EXPECT_TRUE(h.flag(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, r.rowId)) << r.input;
    }
}
