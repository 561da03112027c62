// configChannel against the simulated mediator: the writes of the factory
// channel and of each selectable configuration text (expected writes in
// pipeline/data), unknown texts, refused writes and assembly-checked components.
#include <gtest/gtest.h>

#include <algorithm>

#include "SimVocabulary.h"
#include "support/ChannelPipelineSupport.h"
#include "tarnevel/TarnevelWire.h"

using namespace datacom;

using namespace vocab;

// Every section that writes something for the factory H.264 channel, once.
TEST(PipelineRun, FactoryH264ChannelReachesTheMediatorComplete) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    const Fcodes code = b.configure(row::H264);
    EXPECT_TRUE(noWriteFailed(code)) << fcodeText(code);
    EXPECT_EQ(expectedWrites("factory_h264.txt"), b.writes());
    // The sections run in their order: the ratio, the mixer, the audio input, the encoder, the multiplexer.
    const std::vector<std::string> order =
        h.writes({"Video Encoder CH1/Frame Rate Ratio", "VIDEO_MIXER_CH0/Input", "AUDIO_MUX_STR0_CH0/Input",
                  "Video Encoder CH0/Bitrate=", "TS Multiplexer CH0/Video PID"});
    ASSERT_EQ(5u, order.size());
    EXPECT_EQ(0u, order[0].find("Video Encoder CH1/Frame Rate Ratio"));
    EXPECT_EQ(0u, order[1].find("VIDEO_MIXER_CH0/Input"));
    EXPECT_EQ(0u, order[2].find("AUDIO_MUX_STR0_CH0/Input"));
    EXPECT_EQ(0u, order[3].find("Video Encoder CH0/Bitrate="));
    EXPECT_EQ(0u, order[4].find("TS Multiplexer CH0/Video PID"));

    // A disabled stream is not encoded, whatever its "Encode Audio" says.
    ASSERT_TRUE(h.set({{tbl::AUDIO_SOURCE, prop::ENABLED, "H.264 Audio1", false}}));
    b.configure(row::H264);
    EXPECT_FALSE(b.wrote("Audio Encoder Str0 CH0"));
    EXPECT_FALSE(b.wrote("TS Multiplexer CH0/Audio PID")) << b.writes({"TS Multiplexer CH0/"});
}

// One row per selectable text: the writes to the components that differ
// between the choices (row_writes.txt, a section per row). The second target
// of a channel uses the senders with " 2".
TEST(PipelineRun, EachSelectableTextConfiguresItsComponents) {
    const std::string h1 = "H.264 Target1", h2 = "H.264 Target2", v1 = "HEVC Target1", a1 = "H.264 Audio1";
    const char *H = row::H264, *V = row::HEVC, *TARGET = tbl::TARGET, *PROTOCOL = prop::STREAMING_PROTOCOL;
    const auto audioInput = [&](const char* source, const char* track) {
        return std::vector<Set>{{tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, a1, source},
                                {tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, a1, track}};
    };
    struct Row {
        const char* name;  // its section in row_writes.txt
        const char* rowId;
        std::vector<Set> sets;
        std::vector<std::string> components;
    };
    // clang-format off
    const std::vector<Row> rows = {
        {"Pro-MPEG 1-D, HTB on H.264", H,
         {{TARGET, PROTOCOL, h1, "Pro-MPEG"}, {tbl::FEC_SETTINGS, prop::MODE, h1, "1-D"},
          {TARGET, prop::TRAFFIC_SHAPING, h1, "LINUX HTB"}},
         {"UDP Sender CH0"}},
        {"Pro-MPEG 2-D on HEVC", V,
         {{TARGET, PROTOCOL, v1, "Pro-MPEG"}, {tbl::FEC_SETTINGS, prop::MODE, v1, "2-D"},
          {TARGET, prop::NETWORK_INTERFACE, v1, "Ethernet 2"}},
         {"UDP Sender CH1"}},
        {"RTP TS on the second H.264 target", H,
         {{TARGET, PROTOCOL, h2, "RTP TS"}, {TARGET, prop::ENABLED, h2, true}, {TARGET, prop::ENABLED, h1, false}},
         {"UDP Sender CH0"}},
        {"RTP ES on HEVC with both audio streams", V,
         {{TARGET, PROTOCOL, v1, "RTP ES"}, {tbl::AUDIO_SOURCE, prop::ENABLED, "HEVC Audio2", true},
          {tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, "HEVC Audio2", true}},
         {"Rtsp Server", "UDP Sender"}},
        {"RTMP on H.264", H,
         {{TARGET, PROTOCOL, h1, "RTMP"}, {tbl::RTMP_SETTINGS, prop::STREAM_NAME, h1, "live1"},
          {tbl::RTMP_SETTINGS, prop::USERNAME, h1, "u"}},
         {"Rtmp Server", "UDP Sender"}},
        {"RTMP on HEVC: no RTMP server in the assembly", V, {{TARGET, PROTOCOL, v1, "RTMP"}},
         {"Rtmp Server", "UDP Sender"}},
        {"SRT caller with FEC and AES on H.264", H,
         {{TARGET, PROTOCOL, h1, "SRT"}, {tbl::SRT_SETTINGS, prop::SRT_FEC, h1, true},
          {tbl::SRT_SETTINGS, prop::COLUMNS, h1, 4}, {tbl::SRT_SETTINGS, prop::ROWS, h1, 2},
          {tbl::SRT_SETTINGS, prop::AES_MODE, h1, "256-bit (SRT)"},
          {tbl::SRT_SETTINGS, prop::AES_KEY, h1, "0123456789abcdef"}, {tbl::SRT_SETTINGS, prop::STREAM_ID, h1, "cam1"}},
         {"Srt Sender", "UDP Sender"}},
        {"Zixi with failover and dynamic bitrate on HEVC", V,
         {{TARGET, PROTOCOL, v1, "Zixi"}, {tbl::ZIXI_FEEDER, prop::ENABLE_FAILOVER, v1, true},
          {tbl::ZIXI_FEEDER, prop::ENABLE_DYNAMIC_BITRATE, v1, true}, {tbl::ZIXI_FEEDER, prop::PASSWORD, v1, "pw"}},
         {"Zixi Feeder", "UDP Sender"}},
        {"Ultra Low Latency - LAN on HEVC with AAC-ELD", V,
         {{tbl::PROCESSING, prop::STREAM_PROFILE, V, value::PROFILE_ULL},
          {tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, "HEVC Audio1", "AAC-ELD"}},
         {"FB_MUX", "SYNCGEN", "UDP Sender CH1/Sync", "TS Multiplexer CH1/Delay", "TS Multiplexer CH1/Output",
          "Audio Capture", "AAC Encoder", "PCM Converter", "Audio Switch"}},
        {"a quarter of the picture, KLV over IP in TS", H,
         {{tbl::PROCESSING, prop::CROP_ENABLE, H, true}, {tbl::H264_ENCODER, prop::CROP_WIDTH, "", 960},
          {tbl::H264_ENCODER, prop::CROP_HEIGHT, "", 270}, {tbl::PROCESSING, prop::INGEST_KLV, H, "IP"}},
         {"TS KLV Filter", "KLV Switch CH0"}},
        {"no crop, serial KLV", H, {{tbl::PROCESSING, prop::INGEST_KLV2, H, "Serial"}},
         {"RAW KLV RS232 Filter", "KLV Switch_2 CH0"}},
        {"SDI preview, mono left on pair 3, second stream off", H,
         {{tbl::SOURCE, prop::SDI_OUT_PREVIEW, H, true}, {tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, a1, "Pair 3"},
          {tbl::AUDIO_PROCESSING, prop::CHANNEL_MODE, a1, "Mono Left"}},
         {"SDI_", "VIDEO_MIXER_SDI_TX"}},
        {"audio from Unbalanced digital 1", H, audioInput("Unbalanced digital 1", "Pair 1"), {"AUDIO_MUX"}},
        {"audio from Unbalanced digital 2", H, audioInput("Unbalanced digital 2", "Pair 1"), {"AUDIO_MUX"}},
        {"audio from Unbalanced analog", H, audioInput("Unbalanced analog", "Pair 1"), {"AUDIO_MUX"}},
        {"audio from Balanced analog", H, audioInput("Balanced analog", "Pair 1"), {"AUDIO_MUX"}},
        {"audio from HDMI Embedded pair 2", H, audioInput("HDMI Embedded", "Pair 2"), {"AUDIO_MUX"}},
        {"audio only, PCR on the video PID", H,
         {{tbl::PROCESSING, prop::ENCODE_VIDEO, H, false}, {tbl::TRANSPORT_STREAM, prop::PCR_PID, H, 257}},
         {"TS Multiplexer CH0/Selected PIDs", "TS Multiplexer CH0/PCR PID"}},
    };
    // clang-format on
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.name;
        PipelineBench b(h);
        ASSERT_TRUE(h.set(r.sets)) << r.name;
        EXPECT_TRUE(noWriteFailed(b.configure(r.rowId))) << r.name;
        EXPECT_EQ(expectedWrites("row_writes.txt", r.name), b.writes(r.components)) << r.name;
    }
}

TEST(PipelineRun, UnknownTextsAreLoggedAndTheirParameterLeftAlone) {
    struct Row {
        const char *rowId, *component, *property, *instance, *value;
        const char* line;       // the " Unknown ...=" line logged
        const char* untouched;  // the write that must not happen
    };
    const char *H = row::H264, *V = row::HEVC;
    // clang-format off
    const std::vector<Row> rows = {
        {H, tbl::SOURCE, prop::SOURCE, H, "SVGA", "configChannel: rowId=H.264 Unknown source=SVGA",
         "VIDEO_MIXER_CH0/Input="},
        {H, tbl::H264_ENCODER, prop::ASPECT_RATIO, "", "7:5", " Unknown Aspect Ratio or Aspect Ratio =7:5",
         "Video Encoder CH0/Aspect Ratio="},
        {H, tbl::H264_ENCODER, prop::LEVEL, "", "7.0", " Unknown Level or Level=7.0", "Video Encoder CH0/Level="},
        {H, tbl::H264_ENCODER, prop::VLC_MODE, "", "Huffman", " Unknown VLC Mode=Huffman",
         "Video Encoder CH0/Entropy Coding="},
        {H, tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, "H.264 Audio1", "44.1 KHz", " Unknown Audio Sampling=44.1 KHz",
         "Audio Capture Str0 CH0/Audio Sample Rate="},
        {H, tbl::TARGET, prop::NETWORK_INTERFACE, "H.264 Target1", "Ethernet 3", " Unknown Network Interface=Ethernet 3",
         "UDP Sender CH0/Multicast Interface="},
        {H, tbl::PROCESSING, prop::ENCODING_FORMAT, H, "1366x768q", " Unknown Encoding Format=1366x768q",
         "GS4911B_CH0/"},
        {H, tbl::TRANSPORT_STREAM, prop::AES_MODE, H, "512-bit", " Unknown AES Mode=512-bit", "AES Encrypt CH0/"},
        {V, tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, "HEVC Audio1", "MPEG-1 Layer 2",
         " Unknown Audio Encoding Format=MPEG-1 Layer 2", "Audio Encoder Str0 CH1/Object Type="},
        {V, tbl::HEVC_ENCODER, prop::GOP_STRUCTURE, "", "IBBBBBP", " Unknown GOP Structure=IBBBBBP",
         "Video Encoder CH1/GOP Structure="},
        {V, tbl::HEVC_ENCODER, prop::ERROR_RESILIENCE, "", "High", " Unknown Error Resilience=High",
         "Video Encoder CH1/Error Resilience="},
    };
    // clang-format on
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.line;
        PipelineBench b(h);
        ASSERT_TRUE(
            h.set({{r.component, r.property, r.instance, r.value}, {tbl::PROCESSING, prop::ENCRYPTION, H, true}}))
            << r.line;
        h.logLevel(DBG_ERROR);
        b.configure(r.rowId);
        EXPECT_TRUE(h.waitLog(r.line, 0)) << r.line;
        EXPECT_FALSE(b.wrote(r.untouched)) << r.line;
        EXPECT_TRUE(b.wrote(med::TS_MULTIPLEXER[channelIndex(r.rowId)])) << r.line << ": the run went on";
    }
}

// A refused write is logged with its value, parameter and component, and
// every other write still reaches the mediator.
TEST(PipelineRun, ARefusedWriteDoesNotStopTheRest) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    b.configure(row::H264);
    std::string expected = b.writes();
    const std::string refused = "Video Encoder CH0/Frame Rate Ratio=Input Full\n";
    expected.erase(expected.find(refused), refused.size());

    ASSERT_EQ(FC_OK, h.failNext(tarnevel::CMD_PUT_PARAM, {{sim::PARAM_FCODE, "0x10008"}}));
    h.logLevel(DBG_ERROR);
    EXPECT_EQ(FC_NO_SUCH_NAME, b.configure(row::H264) & FC_NO_SUCH_NAME);
    EXPECT_TRUE(
        h.waitLog("configChannel: rowId=H.264 Error: val=Input Full param=Frame Rate Ratio "
                  "comp=Video Encoder CH0 fcode=0x10008",
                  0));
    EXPECT_EQ(expected, b.writes());
}

// Components that not every assembly holds are written only when the
// assembly names them; a refusal of such a write shows the assembly.
TEST(PipelineRun, AssemblyCheckedComponentsFollowTheAssembly) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    std::string assembly = h.mediator.model().assembly();
    assembly.erase(assembly.find("GS4911B_CH0\n"), std::string("GS4911B_CH0\n").size());
    assembly += "Rtmp Server CH1\n";  // named, but the mediator has no such component
    std::string reply;
    ASSERT_EQ(FC_OK, h.mediator.execute(commandText(tarnevel::CMD_PUT_ASSEMBLY, {{tarnevel::PARAM_ASSEMBLY, assembly}}),
                                        reply));

    EXPECT_TRUE(noWriteFailed(b.configure(row::H264)));
    EXPECT_FALSE(b.wrote("GS4911B_CH0/"));
    EXPECT_TRUE(b.wrote("Video Encoder CH0/")) << "unchecked components are written";

    ASSERT_TRUE(h.set({{tbl::TARGET, prop::STREAMING_PROTOCOL, "HEVC Target1", "RTMP"}}));
    h.logLevel(DBG_ERROR);
    EXPECT_EQ(FC_NO_SUCH_NAME, b.configure(row::HEVC) & FC_NO_SUCH_NAME);
    EXPECT_TRUE(
        h.waitLog("Error: val=1 param=Enable comp=Rtmp Server CH1 assembly=AAC Encoder Str0 CH1 Low Delay\n", 0));
}
