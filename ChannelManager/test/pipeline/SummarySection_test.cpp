// The channel summary of a configured channel, and the picture and
// analogue-gain settings that a summary run and an accepted change apply.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/ChannelPipelineSupport.h"

using namespace datacom;

using namespace vocab;

TEST(SummarySection, TheSummaryDescribesTheConfiguredChannel) {
    struct Row {
        const char* name;
        const char* rowId;
        std::vector<Set> sets;
        const char* address;
        const char* fec;
        const char* secondAddress;
        const char* fec2;
        const char* resolution;
        bool klv;
    };
    const std::string h1 = "H.264 Target1", v1 = "HEVC Target1", v2 = "HEVC Target2";
    const char *TARGET = tbl::TARGET, *PROTOCOL = prop::STREAMING_PROTOCOL, *SRT = tbl::SRT_SETTINGS;
    // clang-format off
    const std::vector<Row> rows = {
        {"factory H.264", row::H264, {}, "239.1.1.1 : 5000", "None", "", "None", "1920x1080i @ 25", false},
        {"SRT caller with 2-D FEC", row::H264, {{TARGET, PROTOCOL, h1, "SRT"}, {SRT, prop::SRT_FEC, h1, true}},
         "Caller 239.1.1.1 : 5000", "2-D", "", "None", "1920x1080i @ 25", false},
        {"SRT listener with 1-D FEC", row::H264,
         {{TARGET, PROTOCOL, h1, "SRT"}, {SRT, prop::MODE, h1, "Listener"}, {SRT, prop::SRT_FEC, h1, true},
          {SRT, prop::ROWS, h1, 1}},
         "Listener : 5000", "1-D", "", "None", "1920x1080i @ 25", false},
        {"RTMP with KLV over IP", row::H264,
         {{TARGET, PROTOCOL, h1, "RTMP"}, {tbl::PROCESSING, prop::INGEST_KLV2, row::H264, "IP"}},
         "rtmp://127.0.0.1/live", "None", "", "None", "1920x1080i @ 25", true},
        {"HEVC Pro-MPEG 1-D and a second SRT target", row::HEVC,
         {{TARGET, PROTOCOL, v1, "Pro-MPEG"}, {tbl::FEC_SETTINGS, prop::MODE, v1, "1-D"}, {TARGET, prop::ENABLED, v2, true}},
         "239.1.2.1 : 5100", "1-D", "Caller 239.1.2.2 : 5110", "None", "1280x720p @ 50", false},
    };
    // clang-format on
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.name;
        PipelineBench b(h);
        ASSERT_TRUE(h.set(r.sets)) << r.name;
        b.configure(r.rowId);
        const auto summary = [&](const char* p) { return h.text(ds::CHANNEL, tbl::CHANNELS, p, r.rowId); };
        EXPECT_EQ(r.address, summary(prop::TARGET_ADDRESS)) << r.name;
        EXPECT_EQ(r.fec, summary(prop::FEC)) << r.name;
        EXPECT_EQ(r.secondAddress, summary(prop::SECOND_TARGET_ADDRESS)) << r.name;
        EXPECT_EQ(r.fec2, summary(prop::FEC2)) << r.name;
        EXPECT_EQ(r.resolution, summary(prop::RESOLUTION)) << r.name;
        EXPECT_EQ(r.klv, h.flag(ds::CHANNEL, tbl::CHANNELS, prop::KLV, r.rowId)) << r.name;
        EXPECT_EQ("AAC-LC", summary(prop::AUDIO)) << r.name;
        EXPECT_EQ(state::STOPPED, summary(prop::STATE)) << r.name;
    }
}

TEST(SummarySection, PictureAdjustmentsAndAnalogueGain) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    const char* a2 = "H.264 Audio2";
    ASSERT_TRUE(h.set({{tbl::AV_SETTINGS, prop::BRIGHTNESS, row::HEVC, 60},
                       {tbl::AUDIO_SOURCE, prop::ENABLED, a2, true},
                       {tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, a2, "Unbalanced analog"},
                       {tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, a2, -6}}));
    h.mediator.model().clearRecords();
    EXPECT_EQ(FC_OK, h.channel().configAVSettings(row::HEVC));
    EXPECT_EQ(FC_OK, h.channel().configAudioGain("H.264 Audio1")) << "embedded audio has no gain to set";
    EXPECT_EQ(
        "VIDEO_MIXER_CH1/Brightness=60\nVIDEO_MIXER_CH1/Contrast=50\nVIDEO_MIXER_CH1/Hue=0\n"
        "VIDEO_MIXER_CH1/Saturation=50\n",
        b.writes());
    // A run applies the gains of the channel's streams.
    b.configure(row::H264);
    EXPECT_EQ("UNBALANCED_AMPLIFIER/Gain Str1=-6\n", b.writes({"UNBALANCED_AMPLIFIER"}));
    // An RTP ES target's server writes its SDP files into a directory the run makes.
    ASSERT_TRUE(h.set({{tbl::TARGET, prop::STREAMING_PROTOCOL, "HEVC Target1", "RTP ES"}}));
    b.configure(row::HEVC);
    struct stat made {};
    EXPECT_EQ(0, stat(h.root.host("/srv/http/webui/sdp").c_str(), &made));
    EXPECT_EQ(FC_BAD_VALUE, h.channel().configAVSettings("H.265"));
}
