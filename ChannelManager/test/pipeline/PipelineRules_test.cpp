// configChannel's handling of what goes wrong (unknown texts, refused
// writes, components outside the assembly), the channel summary, and the
// rules the appliance chose where the configuration leaves values open.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "support/ChannelPipelineSupport.h"
#include "pipeline/PipelineRun.h"
#include "LogCapture.h"
#include "SimVocabulary.h"
#include "TarnevelWire.h"
#include "channel/VideoFormatTables.h"

using namespace vocab;

namespace {

using RowSetup = std::function<void(PipelineBench&)>;

bool anyWrite(const std::vector<std::string>& writes, const std::string& prefix) {
    for (const std::string& w : writes)
        if (w.compare(0, prefix.size(), prefix) == 0)
            return true;
    return false;
}

#if defined(__SANITIZE_THREAD__)
constexpr bool kLogChecked = false;  // LogCapture swaps the log's descriptor unsynchronised
#else
constexpr bool kLogChecked = true;
#endif

// Error lines only, so the pipe of the capture holds a whole run. The
// simulator's threads log too, so the capture is left out of the
// ThreadSanitizer build, where its descriptor swap is a race by design;
// the other builds check the lines.
class ErrorLog {
public:
    ErrorLog() : saved(gDbgLevel.load()) {
        gDbgLevel = DBG_ERROR;
        if (kLogChecked)
            capture = std::make_unique<LogCapture>();
    }
    ~ErrorLog() { gDbgLevel = saved; }
    // True when `line` was logged (always true where lines are not captured).
    bool logged(const std::string& line) {
        if (!capture)
            return true;
        text += capture->take();
        return text.find(line) != std::string::npos;
    }

private:
    int32_t saved;
    std::unique_ptr<LogCapture> capture;
    std::string text;
};

}  // namespace

TEST(ChannelPipelineRules, UnknownTextsAreLoggedAndTheirParameterLeftAlone) {
    struct Row {
        const char* rowId;
        RowSetup setup;
        const char* line;       // the " Unknown ...=" line logged
        const char* untouched;  // the write that must not happen
    };
    const std::vector<Row> rows = {
        {row::H264, [](PipelineBench& b) { b.text(tbl::SOURCE, prop::SOURCE, row::H264, "SVGA"); },
         "configChannel: rowId=H.264 Unknown source=SVGA", "VIDEO_MIXER_CH0/Input="},
        {row::H264, [](PipelineBench& b) { b.text(tbl::H264_ENCODER, prop::ASPECT_RATIO, "", "7:5"); },
         " Unknown Aspect Ratio or Aspect Ratio =7:5", "Video Encoder CH0/Aspect Ratio="},
        {row::H264, [](PipelineBench& b) { b.text(tbl::H264_ENCODER, prop::LEVEL, "", "7.0"); },
         " Unknown Level or Level=7.0", "Video Encoder CH0/Level="},
        {row::H264, [](PipelineBench& b) { b.text(tbl::H264_ENCODER, prop::VLC_MODE, "", "Huffman"); },
         " Unknown VLC Mode=Huffman", "Video Encoder CH0/Entropy Coding="},
        {row::H264,
         [](PipelineBench& b) { b.text(tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, "H.264 Audio1", "44.1 KHz"); },
         " Unknown Audio Sampling=44.1 KHz", "Audio Capture Str0 CH0/Audio Sample Rate="},
        {row::H264,
         [](PipelineBench& b) { b.text(tbl::TARGET, prop::NETWORK_INTERFACE, "H.264 Target1", "Ethernet 3"); },
         " Unknown Network Interface=Ethernet 3", "UDP Sender CH0/Multicast Interface="},
        {row::H264, [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::ENCODING_FORMAT, row::H264, "1366x768q"); },
         " Unknown Encoding Format=1366x768q", "GS4911B_CH0/"},
        {row::H264,
         [](PipelineBench& b) {
             b.flag(tbl::PROCESSING, prop::ENCRYPTION, row::H264, true)
                 .text(tbl::TRANSPORT_STREAM, prop::AES_MODE, row::H264, "512-bit");
         },
         " Unknown AES Mode=512-bit", "AES Encrypt CH0/"},
        {row::HEVC,
         [](PipelineBench& b) {
             b.text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, "HEVC Audio1", "MPEG-1 Layer 2");
         },
         " Unknown Audio Encoding Format=MPEG-1 Layer 2", "Audio Encoder Str0 CH1/Object Type="},
        {row::HEVC, [](PipelineBench& b) { b.text(tbl::HEVC_ENCODER, prop::GOP_STRUCTURE, "", "IBBBBBP"); },
         " Unknown GOP Structure=IBBBBBP", "Video Encoder CH1/GOP Structure="},
        {row::HEVC, [](PipelineBench& b) { b.text(tbl::HEVC_ENCODER, prop::ERROR_RESILIENCE, "", "High"); },
         " Unknown Error Resilience=High", "Video Encoder CH1/Error Resilience="},
    };
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.line;
        PipelineBench b(h);
        r.setup(b);
        ASSERT_TRUE(b.ok) << r.line;
        ErrorLog log;
        b.configure(r.rowId);
        EXPECT_TRUE(log.logged(r.line)) << r.line;
        EXPECT_FALSE(anyWrite(b.writes(), r.untouched)) << r.line;
        EXPECT_TRUE(anyWrite(b.writes(), med::TS_MULTIPLEXER[channelIndex(r.rowId)])) << r.line << ": the run went on";
    }
}

// A refused write is logged with its value, parameter and component, and
// every other write still reaches the mediator.
TEST(ChannelPipelineRules, ARefusedWriteDoesNotStopTheRest) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    b.configure(row::H264);
    const std::vector<std::string> all = b.writes();

    MessageCommand fail;
    fail.setId(sim::CMD_SIM_FAIL);
    fail.addParam(sim::PARAM_COMMAND, tarnevel::CMD_PUT_PARAM);
    fail.addParam(sim::PARAM_FCODE, "0x10008");
    std::string text, reply;
    fail.toString(text);
    ASSERT_EQ(FC_OK, h.holder->requestCommand(wire::SOCK_MEDIATOR, text, reply, 2, 1) | FC_OK);
    ErrorLog log;
    const Fcodes code = b.configure(row::H264);
    EXPECT_EQ(FC_NO_SUCH_NAME, code & FC_NO_SUCH_NAME);
    EXPECT_TRUE(
        log.logged("configChannel: rowId=H.264 Error: val=Input Full param=Frame Rate Ratio "
                   "comp=Video Encoder CH0 fcode=0x10008"));
    std::vector<std::string> expected = all;
    expected.erase(std::find(expected.begin(), expected.end(), "Video Encoder CH0/Frame Rate Ratio=Input Full"));
    EXPECT_EQ(expected, b.writes());
}

// Components that not every assembly holds are written only when the
// assembly names them; a refusal of such a write shows the assembly.
TEST(ChannelPipelineRules, AssemblyCheckedComponentsFollowTheAssembly) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    std::string assembly = h.mediator.model().assembly();
    assembly.erase(assembly.find("GS4911B_CH0\n"), std::string("GS4911B_CH0\n").size());
    assembly += "Rtmp Server CH1\n";  // named, but the mediator has no such component
    MessageCommand put;
    put.setId(tarnevel::CMD_PUT_ASSEMBLY);
    put.addParam(tarnevel::PARAM_ASSEMBLY, assembly);
    MessageCommand answer;
    std::vector<MessageEvent> events;
    ASSERT_EQ(FC_OK, h.mediator.model().serve(put, answer, events));

    EXPECT_TRUE(noWriteFailed(b.configure(row::H264)));
    EXPECT_FALSE(anyWrite(b.writes(), "GS4911B_CH0/"));
    EXPECT_TRUE(anyWrite(b.writes(), "Video Encoder CH0/")) << "unchecked components are written";

    b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, "HEVC Target1", "RTMP");
    ErrorLog log;
    EXPECT_EQ(FC_NO_SUCH_NAME, b.configure(row::HEVC) & FC_NO_SUCH_NAME);
    EXPECT_TRUE(log.logged("Error: val=1 param=Enable comp=Rtmp Server CH1 assembly=AAC Encoder Str0 CH1 Low Delay\n"));
}

TEST(ChannelPipelineRules, TheSummaryDescribesTheConfiguredChannel) {
    struct Row {
        const char* name;
        const char* rowId;
        RowSetup setup;
        const char* address;
        const char* fec;
        const char* secondAddress;
        const char* fec2;
        const char* resolution;
        bool klv;
    };
    const std::string h1 = "H.264 Target1", v1 = "HEVC Target1", v2 = "HEVC Target2";
    const std::vector<Row> rows = {
        {"factory H.264", row::H264, [](PipelineBench&) {}, "239.1.1.1 : 5000", "None", "", "None", "1920x1080i @ 25",
         false},
        {"SRT caller with 2-D FEC", row::H264,
         [&](PipelineBench& b) {
             b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, h1, "SRT").flag(tbl::SRT_SETTINGS, prop::SRT_FEC, h1, true);
         },
         "Caller 239.1.1.1 : 5000", "2-D", "", "None", "1920x1080i @ 25", false},
        {"SRT listener with 1-D FEC", row::H264,
         [&](PipelineBench& b) {
             b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, h1, "SRT")
                 .text(tbl::SRT_SETTINGS, prop::MODE, h1, "Listener")
                 .flag(tbl::SRT_SETTINGS, prop::SRT_FEC, h1, true)
                 .integer(tbl::SRT_SETTINGS, prop::ROWS, h1, 1);
         },
         "Listener : 5000", "1-D", "", "None", "1920x1080i @ 25", false},
        {"RTMP with KLV over IP", row::H264,
         [&](PipelineBench& b) {
             b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, h1, "RTMP")
                 .text(tbl::PROCESSING, prop::INGEST_KLV2, row::H264, "IP");
         },
         "rtmp://127.0.0.1/live", "None", "", "None", "1920x1080i @ 25", true},
        {"HEVC Pro-MPEG 1-D and a second SRT target", row::HEVC,
         [&](PipelineBench& b) {
             b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, v1, "Pro-MPEG")
                 .text(tbl::FEC_SETTINGS, prop::MODE, v1, "1-D")
                 .flag(tbl::TARGET, prop::ENABLED, v2, true);
         },
         "239.1.2.1 : 5100", "1-D", "Caller 239.1.2.2 : 5110", "None", "1280x720p @ 50", false},
    };
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.name;
        PipelineBench b(h);
        r.setup(b);
        b.configure(r.rowId);
        EXPECT_EQ(r.address, b.summary(prop::TARGET_ADDRESS, r.rowId)) << r.name;
        EXPECT_EQ(r.fec, b.summary(prop::FEC, r.rowId)) << r.name;
        EXPECT_EQ(r.secondAddress, b.summary(prop::SECOND_TARGET_ADDRESS, r.rowId)) << r.name;
        EXPECT_EQ(r.fec2, b.summary(prop::FEC2, r.rowId)) << r.name;
        EXPECT_EQ(r.resolution, b.summary(prop::RESOLUTION, r.rowId)) << r.name;
        EXPECT_EQ(r.klv, b.summaryFlag(prop::KLV, r.rowId)) << r.name;
        EXPECT_EQ("AAC-LC", b.summary(prop::AUDIO, r.rowId)) << r.name;
        EXPECT_EQ(state::STOPPED, b.summary(prop::STATE, r.rowId)) << r.name;
    }
}

TEST(ChannelPipelineRules, TheEncodingFormatFollowsTheInput) {
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

TEST(ChannelPipelineRules, TransportValuesFollowTheTargets) {
    struct Granularity {
        int packetSize;
        bool ull;
        int packets;
    } granularities[] = {{1316, false, 7}, {1316, true, 1}, {376, false, 2}, {100, false, 1}, {1500, false, 7}};
    for (const Granularity& g : granularities)
        EXPECT_EQ(g.packets, pipeline::outputGranularity(g.packetSize, g.ull)) << g.packetSize << " " << g.ull;
    struct Htb {
        const char* protocol;
        const char* fecMode;
        int columns, rows, percent;
    } htbs[] = {{"UDP TS", "None", 10, 10, 3},
                {"RTP TS", "None", 10, 10, 4},
                {"Pro-MPEG", "1-D", 10, 10, 14},
                {"Pro-MPEG", "2-D", 10, 5, 34}};
    for (const Htb& t : htbs)
        EXPECT_EQ(t.percent, pipeline::htbOverheadPercent(t.protocol, 1316, t.fecMode, t.columns, t.rows))
            << t.protocol << " " << t.fecMode;
    struct Zixi {
        int total, minPct, maxPct, minBr, maxBr, low, high;
    } zixis[] = {{5000000, 50, 120, 1000000, 8000000, 2500000, 6000000},
                 {1000000, 50, 120, 1000000, 8000000, 1000000, 1200000},
                 {10000000, 50, 120, 1000000, 8000000, 5000000, 8000000},
                 {1000000, 50, 80, 2000000, 8000000, 800000, 800000}};
    for (const Zixi& z : zixis) {
        int low = 0, high = 0;
        pipeline::zixiBitrateLimits(z.total, z.minPct, z.maxPct, z.minBr, z.maxBr, low, high);
        EXPECT_EQ(z.low, low) << z.total << " " << z.minBr;
        EXPECT_EQ(z.high, high) << z.total << " " << z.maxBr;
    }
    EXPECT_EQ("fec,cols:2,rows:2,arq:onreq", pipeline::srtPacketFilter(true, 2, 2));
    EXPECT_EQ("", pipeline::srtPacketFilter(false, 2, 2));
    EXPECT_EQ("1", pipeline::liveUris(false, false));
    EXPECT_EQ("1,2", pipeline::liveUris(true, false));
    EXPECT_EQ("1,3", pipeline::liveUris(false, true));
    EXPECT_EQ("1,2,3", pipeline::liveUris(true, true));
}

// The crop factors of the KLV filter and the SDI output's audio, through a
// whole run.
TEST(ChannelPipelineRules, CropFactorsAndSdiOutputAudio) {
    struct Row {
        const char* name;
        RowSetup setup;
        std::vector<std::string> components;
        std::vector<std::string> expected;
    };
    const std::vector<Row> rows = {
        {"a quarter of the picture, KLV over IP in TS",
         [](PipelineBench& b) {
             b.flag(tbl::PROCESSING, prop::CROP_ENABLE, row::H264, true)
                 .integer(tbl::H264_ENCODER, prop::CROP_WIDTH, "", 960)
                 .integer(tbl::H264_ENCODER, prop::CROP_HEIGHT, "", 270)
                 .text(tbl::PROCESSING, prop::INGEST_KLV, row::H264, "IP");
         },
         {"TS KLV Filter", "KLV Switch CH0"},
         {"KLV Switch CH0/Enable=1", "KLV Switch CH0/Input=TS KLV Filter", "TS KLV Filter/Enable=1",
          "TS KLV Filter/H Crop Factor (x1000)=500", "TS KLV Filter/Parsing=UAS LDS", "TS KLV Filter/Update LDS Keys=1",
          "TS KLV Filter/V Crop Factor (x1000)=250"}},
        {"no crop, serial KLV",
         [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::INGEST_KLV2, row::H264, "Serial"); },
         {"RAW KLV RS232 Filter", "KLV Switch_2 CH0"},
         {"KLV Switch_2 CH0/Enable=1", "KLV Switch_2 CH0/Input=RAW KLV RS232 Filter", "RAW KLV RS232 Filter/Enable=1",
          "RAW KLV RS232 Filter/H Crop Factor (x1000)=1000", "RAW KLV RS232 Filter/Parsing=Simple",
          "RAW KLV RS232 Filter/Update LDS Keys=0", "RAW KLV RS232 Filter/V Crop Factor (x1000)=1000"}},
        {"SDI preview, mono left on pair 3, second stream off",
         [](PipelineBench& b) {
             b.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, row::H264, true)
                 .text(tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, "H.264 Audio1", "Pair 3")
                 .text(tbl::AUDIO_PROCESSING, prop::CHANNEL_MODE, "H.264 Audio1", "Mono Left");
         },
         {"SDI_", "VIDEO_MIXER_SDI_TX"},
         {"SDI_TRANSMITTER/Audio Embedder=1", "SDI_TRANSMITTER/Enable=1", "SDI_TRANSMITTER/Frame Buffer=0",
          "SDI_TRANSMITTER/Video Source=VIDEO_MIXER_SDI_TX", "SDI_TX_AUDIO_MUX_0/Input=SDI Pair 3",
          "SDI_TX_AUDIO_MUX_0/Mute Channel 0 Left=0", "SDI_TX_AUDIO_MUX_0/Mute Channel 0 Right=1",
          "SDI_TX_AUDIO_MUX_1/Mute Channel 1 Left=1", "SDI_TX_AUDIO_MUX_1/Mute Channel 1 Right=1",
          "VIDEO_MIXER_SDI_TX/Input=SDI_RECEIVER"}},
    };
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.name;
        PipelineBench b(h);
        r.setup(b);
        ASSERT_TRUE(b.ok) << r.name;
        EXPECT_TRUE(noWriteFailed(b.configure(row::H264))) << r.name;
        std::string got, expected;
        for (const std::string& w : b.writes(r.components))
            got += w + "\n";
        for (const std::string& w : r.expected)
            expected += w + "\n";
        EXPECT_EQ(expected, got) << r.name;
    }
}

// Section 8 through a whole run: the rows follow the input, the encoder and
// the summary follow the rows, and the receiver's format is read back once.
TEST(ChannelPipelineRules, FormatAsDetectedFollowsTheInput) {
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
        b.flag(tbl::PROCESSING, prop::FORMAT_AS_DETECTED, r.rowId, true);
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, r.input,
                                                 r.source));
        EXPECT_TRUE(noWriteFailed(b.configure(r.rowId))) << r.input;
        std::string format, gop;
        int sampling = 0, gopSize = 0;
        const char* encoder = channelIndex(r.rowId) == 1 ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
        h.holder->getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, format, r.rowId);
        h.holder->getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, sampling, r.rowId);
        h.holder->getTextParam(ds::CHANNEL, encoder, prop::GOP_STRUCTURE, gop, "");
        h.holder->getIntParam(ds::CHANNEL, encoder, prop::GOP_SIZE, gopSize, "");
        EXPECT_EQ(r.format, format) << r.input;
        EXPECT_EQ(r.sampling, sampling) << r.input;
        EXPECT_EQ(r.gop, gop) << r.input;
        EXPECT_EQ(r.gopSize, gopSize) << r.input;
        EXPECT_EQ(std::string(r.format) + " @ " + std::to_string(r.sampling), b.summary(prop::RESOLUTION, r.rowId));
        for (const std::string& w : r.writes)
            EXPECT_TRUE(anyWrite(b.writes(), w)) << r.input << ": " << w;
        const std::string receiver = std::string(r.source) == "HDMI" ? "HDMI_RECEIVER" : "SDI_RECEIVER";
        std::vector<std::string> reads = h.mediator.model().reads();
        EXPECT_EQ(1, std::count(reads.begin(), reads.end(), receiver + "/Video Format")) << r.input;
        std::sort(reads.begin(), reads.end());
        EXPECT_EQ(reads.end(), std::adjacent_find(reads.begin(), reads.end())) << r.input << ": a parameter read twice";
        EXPECT_EQ(FC_OK, h.channel().validateInputFormat(r.rowId)) << r.input << ": the chosen format is valid";
        bool changed = false;
        h.holder->getBoolParam(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, changed, r.rowId);
        EXPECT_TRUE(changed) << r.input;
    }
}

TEST(ChannelPipelineRules, PictureAdjustmentsAndAnalogueGain) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    b.integer(tbl::AV_SETTINGS, prop::BRIGHTNESS, row::HEVC, 60)
        .flag(tbl::AUDIO_SOURCE, prop::ENABLED, "H.264 Audio2", true)
        .text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, "H.264 Audio2", "Unbalanced analog")
        .integer(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, "H.264 Audio2", -6);
    ASSERT_TRUE(b.ok);
    h.mediator.model().clearRecords();
    EXPECT_EQ(FC_OK, h.channel().configAVSettings(row::HEVC));
    EXPECT_EQ(FC_OK, h.channel().configAudioGain("H.264 Audio1")) << "embedded audio has no gain to set";
    EXPECT_EQ(FC_OK, h.channel().configAudioGain("H.264 Audio2"));
    EXPECT_EQ((std::vector<std::string>{"UNBALANCED_AMPLIFIER/Gain Str1=-6", "VIDEO_MIXER_CH1/Brightness=60",
                                        "VIDEO_MIXER_CH1/Contrast=50", "VIDEO_MIXER_CH1/Hue=0",
                                        "VIDEO_MIXER_CH1/Saturation=50"}),
              b.writes());
    EXPECT_EQ(FC_BAD_VALUE, h.channel().configAVSettings("H.265"));
}
