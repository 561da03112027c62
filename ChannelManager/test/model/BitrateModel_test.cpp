#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/BitrateModel.h"
#include "model/ChannelSnapshot.h"
#include "ports/HolderStore.h"
#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

// The settings of one row, compactly: the first target's protocol ("" = the
// channel has no target), the first audio stream (bitrate 0 = not encoded),
// the KLV inputs and the processing settings.
struct BitrateInputs {
    const char *channel, *protocol, *encodingFormat, *rateControl;
    int overheadPercent, audioBitrate;
    const char *audioFormat, *audioSampling, *klv1, *klv2;
    bool encodeVideo;
};

// The KLV bitrates the device manager of the simulator reports.
int klvBitrate(const std::string& in) {
    return in == "Serial" ? 115200 : in == "IP" ? 64000 : in == "SDI" || in == "SDI-Sync" ? 32000 : 0;
}

ChannelSnapshot settingsOf(const BitrateInputs& in) {
    ChannelSnapshot s;
    s.rowId = in.channel;
    if (*in.protocol != 0)
        s.targets.push_back({});
    if (*in.protocol != 0)
        s.targets.back().protocol = in.protocol;
    s.encodingFormat = in.encodingFormat;
    s.rateControl = in.rateControl;
    s.overheadPercent = in.overheadPercent;
    s.audio.emplace_back();
    s.audio.back().encodeSetting = in.audioBitrate != 0;
    s.audio.back().bitrate = in.audioBitrate;
    s.audio.back().format = in.audioFormat;
    s.audio.back().sampling = in.audioSampling;
    s.ingestKlv = in.klv1;
    s.ingestKlv2 = in.klv2;
    s.klvBitrate1 = klvBitrate(in.klv1);
    s.klvBitrate2 = klvBitrate(in.klv2);
    s.encodeVideo = in.encodeVideo;
    return s;
}

// The total from a video bitrate and back, with every term of the model. The
// figures are exact: the same table runs on the 32-bit target.
TEST(BitrateModel, CalcBitratesModelsTheTransportStream) {
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
        {"RTMP total from the video counts the KLV", {H, "RTMP", I, "CBR", 0, 128000, AAC, K48, "IP", "SDI", true}, 0,
         4000000, 25, false, 4307500, 4000000, 211500, 96000},
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
        int total = r.total, video = r.video, audio = -1, klv = -1;
        bitrate::calcBitrates(settingsOf(r.in), total, video, r.frameRate, audio, klv, r.pcrOnVideoPid);
        EXPECT_EQ(r.expectTotal, total) << r.name;
        EXPECT_EQ(r.expectVideo, video) << r.name;
        EXPECT_EQ(r.expectAudio, audio) << r.name;
        EXPECT_EQ(r.expectKlv, klv) << r.name;
    }
}

// The reading behind the model: the KLV bitrates come from the device
// manager, and a channel without a target is "Unavailable". (The on-the-fly
// tests read the factory channels: their figures hold the audio rows.)
TEST(BitrateModel, ReadChannelSnapshotOnce) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    const std::string V = row::HEVC;
    ASSERT_TRUE(h.set({{tbl::TARGET, prop::CHANNEL_ID, V + " Target1", "Spare"},
                       {tbl::TARGET, prop::CHANNEL_ID, V + " Target2", "Spare"},
                       {tbl::PROCESSING, prop::INGEST_KLV, V, "IP"},
                       {tbl::PROCESSING, prop::INGEST_KLV2, V, "Serial"}}));
    ChannelSnapshot s;
    HolderStore store(*h.holder);
    EXPECT_EQ(FC_OK | FC_UNAVAILABLE, readChannelSnapshot(store, row::HEVC, s));
    EXPECT_EQ("", s.protocol());
    EXPECT_EQ(klvBitrate("IP"), s.klvBitrate1);
    EXPECT_EQ(klvBitrate("Serial"), s.klvBitrate2);
}

}  // namespace
