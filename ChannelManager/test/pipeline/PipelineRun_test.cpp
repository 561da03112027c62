// configChannel against the simulated mediator: the writes each streaming
// protocol and codec causes, unknown texts, refused writes and the summary.
#include <gtest/gtest.h>

#include <functional>

#include "support/ChannelPipelineSupport.h"
#include "LogCapture.h"
#include "SimVocabulary.h"
#include "TarnevelWire.h"

using namespace vocab;

namespace {

using RowSetup = std::function<void(PipelineBench&)>;

std::string join(const std::vector<std::string>& lines) {
    std::string out;
    for (const std::string& line : lines)
        out += line + "\n";
    return out;
}

// Target 1 of a channel set to a protocol; the other fields stay factory.
RowSetup protocol(const std::string& target, const char* name) {
    return [target, name](PipelineBench& b) { b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, target, name); };
}

}  // namespace

// The whole set of writes of the factory H.264 channel: every section that
// writes something for it, once.
TEST(ChannelPipeline, FactoryH264ChannelReachesTheMediatorComplete) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    const Fcodes code = b.configure(row::H264);
    EXPECT_TRUE(noWriteFailed(code)) << fcodeText(code);
    std::vector<std::string> got;
    for (const std::string& w : b.writes())  // bitrates are pinned by the bitrate tests
        if (w.rfind("Video Encoder CH0/Bitrate", 0) != 0)
            got.push_back(w);
    const std::vector<std::string> expected = {"AES Encrypt CH0/Encryption Mode=Pass Through",
                                               "AFW_CH0/Left Enable=Automatic",
                                               "AFW_CH0/Left Mode=Silence",
                                               "AFW_CH0/Right Enable=Automatic",
                                               "AFW_CH0/Right Mode=Silence",
                                               "AUDIO_MUX_STR0_CH0/Input=SDI_IN_ITF Port 1",
                                               "Audio Capture Str0 CH0/Audio Sample Rate=48 kHz",
                                               "Audio Capture Str0 CH0/Enable=1",
                                               "Audio Capture Str1 CH0/Enable=0",
                                               "Audio Encoder Str0 CH0/Audio Codec=AAC",
                                               "Audio Encoder Str0 CH0/Bitrate=128000",
                                               "Audio Encoder Str0 CH0/Channel Mode=Stereo",
                                               "Audio Encoder Str0 CH0/Object Type=MPEG-4 LC",
                                               "Audio Switch Str0 CH0/Input=Audio Encoder Str0 CH0",
                                               "GS4911B_CH0/Default Video Format=1920x1080i @ 30",
                                               "KLV Switch CH0/Enable=0",
                                               "KLV Switch_2 CH0/Enable=0",
                                               "KlvoSDI Drop CH0/Enable=1",
                                               "TIMESTAMP_GENERATOR_0/MISB Timestamps=0",
                                               "TS Multiplexer CH0/Audio PID=261",
                                               "TS Multiplexer CH0/Delay Mode=Normal",
                                               "TS Multiplexer CH0/Initial Delay=500",
                                               "TS Multiplexer CH0/Margin overhead percent=0",
                                               "TS Multiplexer CH0/Max Delay=1000",
                                               "TS Multiplexer CH0/Output Granularity=7",
                                               "TS Multiplexer CH0/PCR PID=258",
                                               "TS Multiplexer CH0/PMT PID=256",
                                               "TS Multiplexer CH0/Rate Control Mode=CBR",
                                               "TS Multiplexer CH0/Round Muxrate=1",
                                               "TS Multiplexer CH0/Selected PIDs=256,257,258,261",
                                               "TS Multiplexer CH0/Video PID=257",
                                               "UDP Sender CH0/Enable=1",
                                               "UDP Sender CH0/IP Address=239.1.1.1",
                                               "UDP Sender CH0/Max Payload Size=1316",
                                               "UDP Sender CH0/Multicast Interface=eth0",
                                               "UDP Sender CH0/Refresh Interfaces=1",
                                               "UDP Sender CH0/Stream Format=UDP",
                                               "UDP Sender CH0/Sync processing=0",
                                               "UDP Sender CH0/TTL=16",
                                               "UDP Sender CH0/Traffic Shaping=None",
                                               "UDP Sender CH0/UDP Port=5000",
                                               "VFW_CH0/State=Automatic",
                                               "VFW_CH0/Type=Color Bar",
                                               "VIDEO_FILTER_CH0/Bypass=1",
                                               "VIDEO_FILTER_CH0/Strength=0",
                                               "VIDEO_MIXER_CH0/Brightness=50",
                                               "VIDEO_MIXER_CH0/Contrast=50",
                                               "VIDEO_MIXER_CH0/Hue=0",
                                               "VIDEO_MIXER_CH0/Input=SDI_RECEIVER",
                                               "VIDEO_MIXER_CH0/Saturation=50",
                                               "Video Encoder CH0/Aspect Ratio=Same As Input",
                                               "Video Encoder CH0/Closed Caption=CEA-708",
                                               "Video Encoder CH0/Closed GOP=1",
                                               "Video Encoder CH0/Encoding Height=1080",
                                               "Video Encoder CH0/Encoding Resolution=Custom",
                                               "Video Encoder CH0/Encoding Width=1920",
                                               "Video Encoder CH0/Entropy Coding=CABAC",
                                               "Video Encoder CH0/Frame Rate Ratio=Input Full",
                                               "Video Encoder CH0/Frame Sampling=25",
                                               "Video Encoder CH0/GOP Size=25",
                                               "Video Encoder CH0/GOP Structure=IBBP",
                                               "Video Encoder CH0/Initial Delay=500",
                                               "Video Encoder CH0/Insert AU Delimiters=1",
                                               "Video Encoder CH0/Interlaced/Progressive=Interlaced",
                                               "Video Encoder CH0/Level=Auto",
                                               "Video Encoder CH0/Maximum Delay=1000",
                                               "Video Encoder CH0/Picture Coding=Frame Only",
                                               "Video Encoder CH0/QP Base=26",
                                               "Video Encoder CH0/QP Mode=Manual",
                                               "Video Encoder CH0/QP Range Max=51",
                                               "Video Encoder CH0/QP Range Min=10",
                                               "Video Encoder CH0/Rate Control Mode=CBR",
                                               "Video Encoder CH0/SEI Picture Timing=0",
                                               "Video Encoder CH0/SEI User Data Unregistred=0",
                                               "Video Encoder CH0/SPS per Picture=0",
                                               "Video Encoder CH0/SPS/PPS per IDR=1",
                                               "Video Encoder CH0/Video Codec Profile=High",
                                               "Video Encoder CH1/Frame Rate Ratio=Input Full",
                                               "Video Full Capture CH0/Crop Enable=0",
                                               "Video Full Capture CH0/Crop Height=1080",
                                               "Video Full Capture CH0/Crop Width=1920",
                                               "Video Full Capture CH0/Crop X=0",
                                               "Video Full Capture CH0/Crop Y=0",
                                               "Video Switch CH0/Enable=1"};
    EXPECT_EQ(join(expected), join(got));
}

// One row per protocol and codec: the writes to the components that differ
// between them. The second target of a channel uses the senders with " 2".
TEST(ChannelPipeline, EachStreamingProtocolConfiguresItsSender) {
    const std::string h1 = "H.264 Target1", h2 = "H.264 Target2", v1 = "HEVC Target1";
    struct Row {
        const char* name;
        const char* rowId;
        RowSetup setup;
        std::vector<std::string> components;
        std::vector<std::string> expected;
    };
    const std::vector<Row> rows = {
        {"Pro-MPEG 1-D, HTB on H.264",
         row::H264,
         [&](PipelineBench& b) {
             protocol(h1, "Pro-MPEG")(b);
             b.text(tbl::FEC_SETTINGS, prop::MODE, h1, "1-D").text(tbl::TARGET, prop::TRAFFIC_SHAPING, h1, "LINUX HTB");
         },
         {"UDP Sender CH0"},
         {"UDP Sender CH0/Enable=1", "UDP Sender CH0/FEC D=10", "UDP Sender CH0/FEC L=10",
          "UDP Sender CH0/FEC Mode=1-D", "UDP Sender CH0/IP Address=239.1.1.1", "UDP Sender CH0/Max Payload Size=1316",
          "UDP Sender CH0/Multicast Interface=eth0", "UDP Sender CH0/Refresh Interfaces=1",
          "UDP Sender CH0/Stream Format=RTP + FEC", "UDP Sender CH0/Sync processing=0", "UDP Sender CH0/TTL=16",
          "UDP Sender CH0/Traffic Shaping Bitrate OverHead (HTB only)=14",
          "UDP Sender CH0/Traffic Shaping HTB Max Bandwidth=6000000", "UDP Sender CH0/Traffic Shaping=LINUX HTB",
          "UDP Sender CH0/UDP Port FEC A=5002", "UDP Sender CH0/UDP Port=5000"}},
        {"Pro-MPEG 2-D on HEVC",
         row::HEVC,
         [&](PipelineBench& b) {
             protocol(v1, "Pro-MPEG")(b);
             b.text(tbl::FEC_SETTINGS, prop::MODE, v1, "2-D")
                 .text(tbl::TARGET, prop::NETWORK_INTERFACE, v1, "Ethernet 2");
         },
         {"UDP Sender CH1"},
         {"UDP Sender CH1/Enable=1", "UDP Sender CH1/FEC D=10", "UDP Sender CH1/FEC L=10",
          "UDP Sender CH1/FEC Mode=2-D", "UDP Sender CH1/IP Address=239.1.2.1", "UDP Sender CH1/Max Payload Size=1316",
          "UDP Sender CH1/Multicast Interface=eth1", "UDP Sender CH1/Refresh Interfaces=1",
          "UDP Sender CH1/Stream Format=RTP + FEC", "UDP Sender CH1/Sync processing=0", "UDP Sender CH1/TTL=16",
          "UDP Sender CH1/Traffic Shaping=None", "UDP Sender CH1/UDP Port FEC A=5002",
          "UDP Sender CH1/UDP Port FEC B=5004", "UDP Sender CH1/UDP Port=5100"}},
        {"RTP TS on the second H.264 target",
         row::H264,
         [&](PipelineBench& b) {
             protocol(h2, "RTP TS")(b);
             b.flag(tbl::TARGET, prop::ENABLED, h2, true).flag(tbl::TARGET, prop::ENABLED, h1, false);
         },
         {"UDP Sender CH0"},
         {"UDP Sender CH0 2/Enable=1", "UDP Sender CH0 2/IP Address=239.1.1.2",
          "UDP Sender CH0 2/Max Payload Size=1316", "UDP Sender CH0 2/Multicast Interface=eth0",
          "UDP Sender CH0 2/Refresh Interfaces=1", "UDP Sender CH0 2/Stream Format=RTP",
          "UDP Sender CH0 2/Sync processing=0", "UDP Sender CH0 2/TTL=16", "UDP Sender CH0 2/Traffic Shaping=None",
          "UDP Sender CH0 2/UDP Port=5010"}},
        {"RTP ES on HEVC with both audio streams",
         row::HEVC,
         [&](PipelineBench& b) {
             protocol(v1, "RTP ES")(b);
             b.flag(tbl::AUDIO_SOURCE, prop::ENABLED, "HEVC Audio2", true)
                 .flag(tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, "HEVC Audio2", true);
         },
         {"Rtsp Server", "UDP Sender"},
         {"Rtsp Server CH1/Enable=1", "Rtsp Server CH1/Live URIs=1,2,3", "Rtsp Server CH1/Multicast interface=eth0",
          "Rtsp Server CH1/RTP packet size=1316", "Rtsp Server CH1/RTSP port=554",
          "Rtsp Server CH1/SDP directory=/srv/http/webui/sdp/"}},
        {"RTMP on H.264",
         row::H264,
         [&](PipelineBench& b) {
             protocol(h1, "RTMP")(b);
             b.text(tbl::RTMP_SETTINGS, prop::STREAM_NAME, h1, "live1")
                 .text(tbl::RTMP_SETTINGS, prop::USERNAME, h1, "u");
         },
         {"Rtmp Server", "UDP Sender"},
         {"Rtmp Server CH0/Enable=1", "Rtmp Server CH0/Name of published stream=live1", "Rtmp Server CH0/Password=",
          "Rtmp Server CH0/RTMP Server URL=rtmp://127.0.0.1/live", "Rtmp Server CH0/Username=u"}},
        {"RTMP on HEVC: no RTMP server in the assembly",
         row::HEVC,
         protocol(v1, "RTMP"),
         {"Rtmp Server", "UDP Sender"},
         {}},
        {"SRT caller with FEC and AES on H.264",
         row::H264,
         [&](PipelineBench& b) {
             protocol(h1, "SRT")(b);
             b.flag(tbl::SRT_SETTINGS, prop::SRT_FEC, h1, true)
                 .integer(tbl::SRT_SETTINGS, prop::COLUMNS, h1, 4)
                 .integer(tbl::SRT_SETTINGS, prop::ROWS, h1, 2)
                 .text(tbl::SRT_SETTINGS, prop::AES_MODE, h1, "256-bit (SRT)")
                 .text(tbl::SRT_SETTINGS, prop::AES_KEY, h1, "0123456789abcdef")
                 .text(tbl::SRT_SETTINGS, prop::STREAM_ID, h1, "cam1");
         },
         {"Srt Sender", "UDP Sender"},
         {"Srt Sender CH0/AES Key=0123456789abcdef", "Srt Sender CH0/AES Mode=AES-256", "Srt Sender CH0/Enable=1",
          "Srt Sender CH0/Latency (ms)=120", "Srt Sender CH0/Max Payload Size=1316",
          "Srt Sender CH0/Network interface=Any (Use route table)",
          "Srt Sender CH0/Packet Filter=fec,cols:4,rows:2,arq:onreq", "Srt Sender CH0/Port=5000",
          "Srt Sender CH0/Receiver Mode=SRT Caller", "Srt Sender CH0/Server IP=239.1.1.1",
          "Srt Sender CH0/Stream ID=cam1", "Srt Sender CH0/TTL=16"}},
        {"Zixi with failover and dynamic bitrate on HEVC",
         row::HEVC,
         [&](PipelineBench& b) {
             protocol(v1, "Zixi")(b);
             b.flag(tbl::ZIXI_FEEDER, prop::ENABLE_FAILOVER, v1, true)
                 .flag(tbl::ZIXI_FEEDER, prop::ENABLE_DYNAMIC_BITRATE, v1, true)
                 .text(tbl::ZIXI_FEEDER, prop::PASSWORD, v1, "pw");
         },
         {"Zixi Feeder", "UDP Sender"},
         {"Zixi Feeder CH1/Adaptive Mode=Fec", "Zixi Feeder CH1/Adjustable bitrate max=6000000",
          "Zixi Feeder CH1/Adjustable bitrate min=2500000", "Zixi Feeder CH1/Adjustable bitrate=1",
          "Zixi Feeder CH1/Broadcaster IP=239.1.2.1", "Zixi Feeder CH1/Broadcaster Port=5100",
          "Zixi Feeder CH1/Enable Failover=1", "Zixi Feeder CH1/Enable=1", "Zixi Feeder CH1/FEC block ms=100",
          "Zixi Feeder CH1/FEC overhead (percent)=15", "Zixi Feeder CH1/Failover Broadcaster IP=239.1.9.9",
          "Zixi Feeder CH1/Failover Broadcaster Port=2088", "Zixi Feeder CH1/Latency=500",
          "Zixi Feeder CH1/Max Data Rate=6000000", "Zixi Feeder CH1/Max Delay Packets=100",
          "Zixi Feeder CH1/Max Packet Size=1316", "Zixi Feeder CH1/Session or Pwd=pw", "Zixi Feeder CH1/Stream ID="}},
        {"Ultra Low Latency - LAN on HEVC with AAC-ELD",
         row::HEVC,
         [&](PipelineBench& b) {
             b.text(tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, value::PROFILE_ULL)
                 .text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, "HEVC Audio1", "AAC-ELD");
         },
         {"FB_MUX", "SYNCGEN", "UDP Sender CH1/Sync", "TS Multiplexer CH1/Delay", "TS Multiplexer CH1/Output",
          "Audio Capture", "AAC Encoder", "PCM Converter", "Audio Switch"},
         {"AAC Encoder Str0 CH1 Low Delay/Bitrate=128000", "AAC Encoder Str0 CH1 Low Delay/Enable=1",
          "Audio Capture Buffer Str0 CH1/Samples per Frame=480", "Audio Capture Str0 CH1 Low Delay/Enable=1",
          "Audio Capture Str0 CH1/Audio Sample Rate=48 kHz", "Audio Capture Str0 CH1/Enable=0",
          "Audio Capture Str1 CH1/Enable=0", "Audio Switch Str0 CH1/Input=AAC Encoder Str0 CH1 Low Delay",
          "FB_MUX_CH1/Input=LOW_LATENCY_VIDEO_BUFFER_CH1",
          "SYNCGEN_CH1/External Sync=1", "TS Multiplexer CH1/Delay Mode=No Wait",
          "TS Multiplexer CH1/Output Granularity=1", "UDP Sender CH1/Sync processing=1"}},
    };
    for (const Row& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.name;
        PipelineBench b(h);
        r.setup(b);
        ASSERT_TRUE(b.ok) << r.name;
        EXPECT_TRUE(noWriteFailed(b.configure(r.rowId))) << r.name;
        EXPECT_EQ(join(r.expected), join(b.writes(r.components))) << r.name;
    }
}
