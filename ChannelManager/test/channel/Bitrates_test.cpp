#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChannelHarness.h"

using namespace vocab;

namespace {

// What calcBitrates reads, set on one channel of the factory data: the first
// target's protocol ("" = the channel has no target), the first audio row
// (bitrate 0 = not encoded), the KLV inputs (their bitrates come from the
// simulated device manager: Serial 115200, IP 64000, SDI 32000) and the
// processing settings.
struct BitrateInputs {
    const char *channel, *protocol, *encodingFormat, *rateControl;
    int overheadPercent, audioBitrate;
    const char *audioFormat, *audioSampling, *klv1, *klv2;
    bool encodeVideo;
};

void apply(ChannelHarness& h, const BitrateInputs& in) {
    const std::string channel = in.channel, target1 = channel + " Target1", audio = channel + " Audio1";
    const std::string owner = *in.protocol ? channel : "Spare";
    DataHolder& d = *h.holder;
    for (const std::string& target : {target1, channel + " Target2"})
        ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, owner, target));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, in.protocol, target1));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, in.encodingFormat, channel));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::RATE_CONTROL, in.rateControl, channel));
    ASSERT_EQ(FC_OK, d.initIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT,
                                    in.overheadPercent, channel));
    ASSERT_EQ(FC_OK, d.initBoolParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, in.audioBitrate, audio));
    ASSERT_EQ(FC_OK, d.initIntParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_BITRATE, in.audioBitrate, audio));
    ASSERT_EQ(FC_OK,
              d.initTextParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, in.audioFormat, audio));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, in.audioSampling, audio));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, in.klv1, channel));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, in.klv2, channel));
    ASSERT_EQ(FC_OK, d.initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODE_VIDEO, in.encodeVideo, channel));
}

// The total from a video bitrate and back, with every term of the model. The
// figures are exact: the same table runs on the 32-bit target.
TEST(ChannelBitrates, CalcBitratesModelsTheTransportStream) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    const char *H = row::H264, *V = row::HEVC, *I = "1920x1080i", *AAC = "AAC-LC", *K48 = "48 KHz", *N = "None";
    struct Row {
        const char* name;
        BitrateInputs in;
        int total, video;
        float frameRate;
        bool pcrOnVideoPid;
        int expectTotal, expectVideo, expectAudio, expectKlv;
    } rows[] = {
        {"H.264 UDP 4 Mbit/s", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, true}, 0, 4000000, 25, false,
         4183836, 4000000, 0, 0},
        {"interlaced HEVC", {V, "UDP TS", "1920x1080i @ 25", "CBR", 0, 0, AAC, K48, N, N, true}, 0, 4000000, 25,
         false, 4206518, 4000000, 0, 0},
        {"AAC-LC 128k: 3 packets", {H, "UDP TS", I, "CBR", 0, 128000, AAC, K48, N, N, true}, 0, 4000000, 25, false,
         4395336, 4000000, 211500, 0},
        {"56k: 2 packets", {H, "UDP TS", I, "CBR", 0, 56000, AAC, K48, N, N, true}, 0, 4000000, 25, false, 4324836,
         4000000, 141000, 0},
        {"Layer 2 32 kHz 192k: 4 packets of 1152", {H, "UDP TS", I, "CBR", 0, 192000, "MPEG-1 Layer 2", "32 KHz", N,
         N, true}, 0, 4000000, 25, false, 4350947, 4000000, 167111, 0},
        {"HE AAC-v2 320k: 5 packets", {H, "UDP TS", I, "CBR", 0, 320000, "HE AAC-v2", K48, N, N, true}, 0, 4000000,
         25, false, 4536336, 4000000, 352500, 0},
        {"unknown format: its bitrate", {H, "UDP TS", I, "CBR", 0, 96000, "AAC-ELD", K48, N, N, true}, 0, 4000000,
         25, false, 4279836, 4000000, 96000, 0},
        {"KLV over IP and SDI", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, "IP", "SDI", true}, 0, 4000000, 25, false,
         4279836, 4000000, 0, 96000},
        {"serial and SDI-Sync KLV, SRT", {H, "SRT", I, "CBR", 0, 0, AAC, K48, "Serial", "SDI-Sync", true}, 0, 4000000,
         25, false, 4331036, 4000000, 0, 147200},
        {"PCR on the video PID", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, true}, 0, 4000000, 25, true, 4133703,
         4000000, 0, 0},
        {"CBR overhead 10 %, Zixi", {H, "Zixi", I, "CBR", 10, 0, AAC, K48, N, N, true}, 0, 4000000, 25, false, 4594799,
         4000000, 0, 0},
        {"overhead only with CBR", {H, "Pro-MPEG", I, "Capped VBR", 10, 0, AAC, K48, N, N, true}, 0, 4000000, 25,
         false, 4183836, 4000000, 0, 0},
        {"video from the total", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, true}, 4183836, 0, 25, false, 4183836,
         3999999, 0, 0},
        {"every term, 29.97 fps as 29", {V, "RTP TS", I, "CBR", 10, 128000, AAC, K48, "IP", N, true}, 5000000, 0,
         29.97f, false, 5000000, 4086096, 211500, 64000},
        {"no video encoded", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, false}, 5000000, 123, 25, false, 5000000, 0,
         0, 0},
        {"RTMP: no overhead", {H, "RTMP", I, "CBR", 10, 0, AAC, K48, N, N, true}, 0, 4000000, 25, false, 4000000,
         4000000, 0, 0},
        {"RTP ES from the total", {H, "RTP ES", I, "CBR", 10, 128000, AAC, K48, "IP", N, true}, 5000000, 0, 25, false,
         5000000, 4724500, 211500, 64000},
        {"no target", {H, "", I, "CBR", 0, 0, AAC, K48, N, N, true}, 0, 4000000, 25, false, 4000000, 4000000, 0, 0},
        // The packetisation is 64-bit: no wrap above 11.4 Mbit/s, and the inverse gives the video back.
        {"12 Mbit/s", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, true}, 0, 12000000, 25, false, 12357749,
         12000000, 0, 0},
        {"12 Mbit/s from the total", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, true}, 12357749, 0, 25, false,
         12357749, 11999999, 0, 0},
        // Stored nonsense is clamped: an overhead of -100 % would divide by zero, 300 % is capped at 200 %,
        // and a frame rate beyond 240 counts as 240.
        {"overhead -100 %", {H, "UDP TS", I, "CBR", -100, 0, AAC, K48, N, N, true}, 4183836, 0, 25, false, 4183836,
         3999999, 0, 0},
        {"overhead 300 %", {H, "UDP TS", I, "CBR", 300, 0, AAC, K48, N, N, true}, 0, 4000000, 25, false, 12403114,
         4000000, 0, 0},
        {"frame rate 1e9", {H, "UDP TS", I, "CBR", 0, 0, AAC, K48, N, N, true}, 0, 4000000, 1e9f, false, 4378906,
         4000000, 0, 0},
    };
    for (const Row& r : rows) {
        apply(h, r.in);
        int total = r.total, video = r.video, audio = -1, klv = -1;
        const Fcodes code =
            h.channel().calcBitrates(r.in.channel, total, video, r.frameRate, audio, klv, r.pcrOnVideoPid);
        EXPECT_EQ(*r.in.protocol ? FC_OK : FC_OK | FC_UNAVAILABLE, code) << r.name;
        EXPECT_EQ(r.expectTotal, total) << r.name;
        EXPECT_EQ(r.expectVideo, video) << r.name;
        EXPECT_EQ(r.expectAudio, audio) << r.name;
        EXPECT_EQ(r.expectKlv, klv) << r.name;
    }
}

int processingInt(ChannelHarness& h, const char* channel, const char* property) {
    int value = -1;
    h.holder->getIntParam(ds::CHANNEL, tbl::PROCESSING, property, value, channel);
    return value;
}

// The encoder writes of one change, without the component prefix of the channel's encoder.
std::vector<std::string> encoderWrites(ChannelHarness& h, const std::string& encoder) {
    std::vector<std::string> out;
    for (const std::string& write : h.mediator.model().writes())
        if (write.compare(0, encoder.size() + 1, encoder + "/") == 0)
            out.push_back(write.substr(encoder.size() + 1));
    return out;
}

// Factory HEVC: 1280x720p @ 50 over UDP, CBR, AAC-LC 128 kbit/s (211500 in
// the stream). A total whose video share is 23899 is raised to the 23900
// floor, the total recomputed from it and the maximum lifted to what 26290
// needs; 23900 itself is kept.
TEST(ChannelBitrates, OnTheFlyKeepsTheHevcMinimum) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::HEVC, 355481, 300000));
    EXPECT_EQ(23900, processingInt(h, row::HEVC, prop::VIDEO_BITRATE));
    EXPECT_EQ(355481, processingInt(h, row::HEVC, prop::TOTAL_BITRATE));
    EXPECT_EQ(357923, processingInt(h, row::HEVC, prop::MAX_BITRATE));
    EXPECT_EQ((std::vector<std::string>{"Bitrate=23900", "Bitrate Margin=0", "Apply On The Fly Bitrate=1"}),
              encoderWrites(h, "Video Encoder CH1"));
    auto events = h.recorder.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(ev::BITRATE_RECALCULATED, events[0].id);
    EXPECT_EQ(row::HEVC, events[0].rowId);
    EXPECT_EQ("prev: 5000000 new: 355481", events[0].description);
    int summary = 0;
    h.holder->getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::TOTAL_BIT_RATE, summary, row::HEVC);
    EXPECT_EQ(355481, summary) << "updateChannel refreshes the summary";

    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::HEVC, 355482, 300000));
    EXPECT_EQ(23900, processingInt(h, row::HEVC, prop::VIDEO_BITRATE));
    EXPECT_EQ(355482, processingInt(h, row::HEVC, prop::TOTAL_BITRATE));
    EXPECT_EQ(300000, processingInt(h, row::HEVC, prop::MAX_BITRATE)) << "no floor above the minimum";
}

// Factory H.264: 1920x1080i @ 25, the same audio. Its floor is 100000 (max
// floor for 110000); with CBR the margin is 25, with Capped VBR it follows
// the maximum and replaces the overhead percentage. A refused encoder write
// is logged and the change goes on.
TEST(ChannelBitrates, OnTheFlyH264MinimumAndMargins) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 410553, 400000));
    EXPECT_EQ(100000, processingInt(h, row::H264, prop::VIDEO_BITRATE));
    EXPECT_EQ(410553, processingInt(h, row::H264, prop::TOTAL_BITRATE));
    EXPECT_EQ(420770, processingInt(h, row::H264, prop::MAX_BITRATE));
    EXPECT_EQ((std::vector<std::string>{"Bitrate=100000", "Bitrate Margin=25"}), encoderWrites(h, "Video Encoder CH0"));

    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::RATE_CONTROL, value::CAPPED_VBR,
                                             row::H264));
    std::string failed;
    ASSERT_EQ(FC_OK, h.mediator.execute("<Command ID=\"Sim Fail\" >\n<Parameter Name=\"Command\" "
                                        "Value=\"Tarnevel Put Param\" />\n<Parameter Name=\"Count\" Value=\"1\" />\n"
                                        "</Command>\n",
                                        failed));
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 5000000, 6000000));
    EXPECT_EQ(4591798, processingInt(h, row::H264, prop::VIDEO_BITRATE));
    EXPECT_EQ(5000000, processingInt(h, row::H264, prop::TOTAL_BITRATE));
    EXPECT_EQ(6000000, processingInt(h, row::H264, prop::MAX_BITRATE));
    int overhead = 0;
    h.holder->getIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, overhead, row::H264);
    EXPECT_EQ(21, overhead) << "5570522 * 100 / 4591798 - 100";
    // The second change's "Bitrate" write was refused; its margin still went out.
    EXPECT_EQ((std::vector<std::string>{"Bitrate=100000", "Bitrate Margin=25", "Bitrate Margin=21"}),
              encoderWrites(h, "Video Encoder CH0"));

    // A "Max Bitrate" of 0 would make the margin -100 and store it as the overhead: both stay at 0.
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::H264, 5000000, 0));
    h.holder->getIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, overhead, row::H264);
    EXPECT_EQ(0, overhead);
    EXPECT_EQ("Bitrate Margin=0", encoderWrites(h, "Video Encoder CH0").back());

    h.recorder.clear();
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::ALL, 5000000, 6000000));
    EXPECT_TRUE(h.recorder.events().empty());
}

// The encoder's own choices come back into the settings; "4.2" is stored as
// "4.1", and a profile the settings cannot hold leaves the configured one.
TEST(ChannelBitrates, AutomaticParamsReadBackTheEncoder) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    h.mediator.model().setParam("Video Encoder CH1", "Level", "4.2");
    h.mediator.model().setParam("Video Encoder CH1", "Profile", "Main 4:4:4");
    h.mediator.model().setParam("Video Encoder CH1", "Tier", "High");
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::PROFILE, "Main 10", ""));
    EXPECT_EQ(FC_OK, h.channel().updateAutomaticParams(row::HEVC));
    std::string level, profile, tier;
    h.holder->getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::LEVEL, level, "");
    h.holder->getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::PROFILE, profile, "");
    h.holder->getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::TIER, tier, "");
    EXPECT_EQ("4.1", level);
    EXPECT_EQ("Main 10", profile);
    EXPECT_EQ("High", tier);

    h.mediator.model().setParam("Video Encoder CH0", "QP Base", "30");
    h.mediator.model().setParam("Video Encoder CH0", "QP Range Max", "45");
    h.mediator.model().setParam("TS Multiplexer CH0", "Max Delay", "1200");
    EXPECT_EQ(FC_OK, h.channel().updateAutomaticParams(row::H264));
    struct {
        const char* property;
        int expected;
    } h264[] = {{prop::QP_BASE, 30}, {prop::QP_RANGE_MIN, 10}, {prop::QP_MAX, 45},
                {prop::INITIAL_DELAY, 500}, {prop::MAXIMUM_DELAY, 1200}};
    for (const auto& row : h264) {
        int value = -1;
        h.holder->getIntParam(ds::CHANNEL, tbl::H264_ENCODER, row.property, value, "");
        EXPECT_EQ(row.expected, value) << row.property;
    }
}

}  // namespace
