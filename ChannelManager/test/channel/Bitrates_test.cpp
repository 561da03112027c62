#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChannelHarness.h"

using namespace datacom;

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
    ASSERT_TRUE(h.set({{tbl::TARGET, prop::CHANNEL_ID, target1, owner},
                       {tbl::TARGET, prop::CHANNEL_ID, channel + " Target2", owner},
                       {tbl::TARGET, prop::STREAMING_PROTOCOL, target1, in.protocol},
                       {tbl::PROCESSING, prop::ENCODING_FORMAT, channel, in.encodingFormat},
                       {tbl::PROCESSING, prop::RATE_CONTROL, channel, in.rateControl},
                       {tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, channel, in.overheadPercent},
                       {tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, audio, in.audioBitrate != 0},
                       {tbl::AUDIO_PROCESSING, prop::AUDIO_BITRATE, audio, in.audioBitrate},
                       {tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, audio, in.audioFormat},
                       {tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, audio, in.audioSampling},
                       {tbl::PROCESSING, prop::INGEST_KLV, channel, in.klv1},
                       {tbl::PROCESSING, prop::INGEST_KLV2, channel, in.klv2},
                       {tbl::PROCESSING, prop::ENCODE_VIDEO, channel, in.encodeVideo}}));
}

using Bitrates = ChannelTest;

// The total from a video bitrate and back, with every term of the model. The
// figures are exact: the same table runs on the 32-bit target.
TEST_F(Bitrates, CalcBitratesModelsTheTransportStream) {
    const char *H = row::H264, *V = row::HEVC, *I = "1920x1080i", *AAC = "AAC-LC", *K48 = "48 KHz", *N = "None";
    struct Row {
        const char* name;
        BitrateInputs in;
        int total, video;
        float frameRate;
        bool pcrOnVideoPid;
        int expectTotal, expectVideo, expectAudio, expectKlv;
        // clang-format off
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
    // clang-format on
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

// Factory HEVC: 1280x720p @ 50 over UDP, CBR, AAC-LC 128 kbit/s (211500 in
// the stream). A total whose video share is 23899 is raised to the 23900
// floor, the total recomputed from it and the maximum lifted to what 26290
// needs; 23900 itself is kept.
TEST_F(Bitrates, OnTheFlyKeepsTheHevcMinimum) {
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::HEVC, 355481, 300000));
    EXPECT_EQ(23900, h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::HEVC));
    EXPECT_EQ(355481, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::HEVC));
    EXPECT_EQ(357923, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, row::HEVC));
    EXPECT_EQ((std::vector<std::string>{"Video Encoder CH1/Bitrate=23900", "Video Encoder CH1/Bitrate Margin=0",
                                        "Video Encoder CH1/Apply On The Fly Bitrate=1"}),
              h.writes({"Video Encoder CH1/"}));
    auto events = h.recorder.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(ev::BITRATE_RECALCULATED, events[0].id);
    EXPECT_EQ(row::HEVC, events[0].rowId);
    EXPECT_EQ("prev: 5000000 new: 355481", events[0].description);
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
TEST_F(Bitrates, OnTheFlyH264MinimumAndMargins) {
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

    h.recorder.clear();
    EXPECT_EQ(FC_OK, h.channel().changeBitrateOnTheFly(row::ALL, 5000000, 6000000));
    EXPECT_TRUE(h.recorder.events().empty());
}

}  // namespace
