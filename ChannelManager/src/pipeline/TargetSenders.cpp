#include <cstdint>

#include "pipeline/PipelineSections.h"
#include "pipeline/TargetSenders.h"
#include "pipeline/TextTables.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// Section 26: the sender of each enabled target. A channel's first target
// uses the senders without suffix, its second those with " 2".
//
// HTB shaping ("Traffic Shaping" other than "None"): the bandwidth is the
// channel's ceiling, the larger of "Total Bitrate" and "Max Bitrate"; the
// overhead is what the network adds to it (htbOverheadPercent).
// Zixi: dynamic bitrate control moves between the configured percentages of
// the total, kept within the absolute limits; adaptive FEC goes with it. The
// FEC block and the packets the feeder may hold back are short in "Ultra Low
// Latency - LAN" (20 ms, 10 packets) and long otherwise (100 ms, 100).
// SRT: the stream's encryption is the channel's when "Encryption" names an
// SRT mode, otherwise the target's own "SRT Settings".

namespace {
// Where the RTSP servers write the SDP files of the RTP targets.
constexpr const char* SDP_DIR = "/srv/http/webui/sdp/";
constexpr int kIpUdpHeaders = 28;
constexpr int kRtpHeader = 12;
constexpr int kZixiFecPercent = 15;

int ceilPercent(int64_t part, int64_t whole) {
    return whole > 0 ? static_cast<int>((part * 100 + whole - 1) / whole) : 0;
}

}  // namespace

int pipeline::htbOverheadPercent(const std::string& protocol, int packetSize, const std::string& fecMode, int columns,
                                 int rows) {
    if (packetSize <= 0)
        return 0;
    const int headers = kIpUdpHeaders + (protocol == value::UDP_TS ? 0 : kRtpHeader);
    int percent = ceilPercent(headers, packetSize);
    if (protocol == value::PRO_MPEG && columns > 0 && (fecMode == value::FEC_1D || fecMode == value::FEC_2D))
        percent += ceilPercent(1, columns);
    if (protocol == value::PRO_MPEG && rows > 0 && fecMode == value::FEC_2D)
        percent += ceilPercent(1, rows);
    return percent;
}

void pipeline::zixiBitrateLimits(int totalBitrate, int minPercent, int maxPercent, int minBitrate, int maxBitrate,
                                 int& low, int& high) {
    const int64_t lo = static_cast<int64_t>(totalBitrate) * minPercent / 100;
    const int64_t hi = static_cast<int64_t>(totalBitrate) * maxPercent / 100;
    low = static_cast<int>(lo < minBitrate ? minBitrate : lo);
    high = static_cast<int>(hi > maxBitrate ? maxBitrate : hi);
    if (low > high)
        low = high;
}

std::string pipeline::srtPacketFilter(bool fec, int columns, int rows) {
    if (!fec)
        return "";
    return "fec,cols:" + std::to_string(columns) + ",rows:" + std::to_string(rows) + ",arq:onreq";
}

std::string pipeline::liveUris(bool audio1, bool audio2) {
    return std::string("1") + (audio1 ? ",2" : "") + (audio2 ? ",3" : "");
}

static void configUdpSender(const ChannelSnapshot& s, PipelineOutput& out, size_t target) {
    const ChannelSnapshot::Target& t = s.targets[target];
    const std::string snd = (target == 0 ? med::UDP_SENDER : med::UDP_SENDER_2)[s.channel];
    out.enable(snd);
    out.put(snd, med::PARAM_STREAM_FORMAT, pipeline::lookup(pipeline::UDP_STREAM_FORMAT, t.protocol));
    const std::string fecMode = t.fecMode;
    const int columns = t.fecColumns;
    const int rows = t.fecRows;
    if (t.protocol == value::PRO_MPEG) {
        if (fecMode == value::FEC_1D || fecMode == value::FEC_2D) {
            out.put(snd, med::PARAM_FEC_MODE, fecMode);
            out.put(snd, med::PARAM_FEC_D, rows);
            out.put(snd, med::PARAM_FEC_L, columns);
            out.put(snd, med::PARAM_UDP_PORT_FEC_A, t.fecPort1d);
            if (fecMode == value::FEC_2D)
                out.put(snd, med::PARAM_UDP_PORT_FEC_B, t.fecPort2d);
        } else {
            out.unknown("FEC Mode", fecMode);
        }
    }
    out.put(snd, med::PARAM_IP_ADDRESS, t.address);
    out.put(snd, med::PARAM_UDP_PORT, t.port);
    out.put(snd, med::PARAM_MAX_PAYLOAD_SIZE, t.packetSize);
    out.put(snd, prop::TTL, t.ttl);
    out.put(snd, med::PARAM_REFRESH_INTERFACES, true);
    if (const char* itf = pipeline::lookup(pipeline::MULTICAST_INTERFACE, t.interface))
        out.put(snd, med::PARAM_MULTICAST_INTERFACE, itf);
    else
        out.unknown("Network Interface", t.interface);
    const char* shaping = pipeline::lookup(pipeline::TRAFFIC_SHAPING, t.shaping);
    if (!shaping) {
        out.unknown("Traffic Shaping", t.shaping);
    } else {
        out.put(snd, med::PARAM_TRAFFIC_SHAPING, shaping);
        if (t.shaping != "None") {
            out.put(snd, med::PARAM_TRAFFIC_SHAPING_HTB_MAX_BANDWIDTH,
                    out.bitrates.max > out.bitrates.total ? out.bitrates.max : out.bitrates.total);
            out.put(snd, med::PARAM_TRAFFIC_SHAPING_BITRATE_OVERHEAD_HTB_ONLY,
                    pipeline::htbOverheadPercent(t.protocol, t.packetSize, fecMode, columns, rows));
        }
    }
    out.put(snd, med::PARAM_SYNC_PROCESSING, s.ultraLowLatency());
}

static void configRtspServer(const ChannelSnapshot& s, PipelineOutput& out, size_t target) {
    const ChannelSnapshot::Target& t = s.targets[target];
    const std::string snd = med::RTSP_SERVER[s.channel];
    out.makeDirectory(SDP_DIR);
    out.enable(snd);
    out.put(snd, med::PARAM_RTSP_PORT, s.rtspPort);
    out.put(snd, med::PARAM_SDP_DIRECTORY, SDP_DIR);
    out.put(snd, med::PARAM_LIVE_URIS, pipeline::liveUris(s.audioEncoded(0), s.audioEncoded(1)));
    out.put(snd, med::PARAM_RTP_PACKET_SIZE, t.packetSize);
    if (const char* itf = pipeline::lookup(pipeline::MULTICAST_INTERFACE, t.interface))
        out.put(snd, med::PARAM_RTSP_MULTICAST_INTERFACE, itf);
    else
        out.unknown("Network Interface", t.interface);
}

static void configZixiFeeder(const ChannelSnapshot& s, PipelineOutput& out, size_t target) {
    const ChannelSnapshot::Target& t = s.targets[target];
    const std::string snd = (target == 0 ? med::ZIXI_FEEDER : med::ZIXI_FEEDER_2)[s.channel];
    const bool dynamic = t.zixiDynamic;
    int low = 0, high = 0;
    pipeline::zixiBitrateLimits(out.bitrates.total, t.zixiMinPercent, t.zixiMaxPercent, t.zixiMinBitrate,
                                t.zixiMaxBitrate, low, high);
    const bool ull = s.ultraLowLatency();
    out.enable(snd);
    out.put(snd, med::PARAM_BROADCASTER_IP, t.address);
    out.put(snd, med::PARAM_BROADCASTER_PORT, t.port);
    out.put(snd, med::PARAM_MAX_PACKET_SIZE, t.packetSize);
    out.put(snd, prop::STREAM_ID, t.zixiStreamId);
    out.put(snd, med::PARAM_SESSION_OR_PWD, t.zixiPassword);
    out.put(snd, prop::LATENCY, t.zixiLatency);
    out.put(snd, med::PARAM_FEC_OVERHEAD_PERCENT, kZixiFecPercent);
    out.put(snd, med::PARAM_FEC_BLOCK_MS, ull ? 20 : 100);
    out.put(snd, med::PARAM_MAX_DELAY_PACKETS, ull ? 10 : 100);
    out.put(snd, med::PARAM_MAX_DATA_RATE,
            dynamic ? high : (out.bitrates.max > out.bitrates.total ? out.bitrates.max : out.bitrates.total));
    out.put(snd, med::PARAM_ADJUSTABLE_BITRATE, dynamic);
    out.put(snd, med::PARAM_ADJUSTABLE_BITRATE_MIN, low);
    out.put(snd, med::PARAM_ADJUSTABLE_BITRATE_MAX, high);
    out.put(snd, med::PARAM_ADAPTIVE_MODE, dynamic ? "Fec" : "None");
    out.put(snd, prop::ENABLE_FAILOVER, t.zixiFailover);
    out.put(snd, med::PARAM_FAILOVER_BROADCASTER_IP, t.zixiFailoverAddress);
    out.put(snd, med::PARAM_FAILOVER_BROADCASTER_PORT, t.zixiFailoverPort);
}

static void configSrtSender(const ChannelSnapshot& s, PipelineOutput& out, size_t target) {
    const ChannelSnapshot::Target& t = s.targets[target];
    const std::string snd = (target == 0 ? med::SRT_SENDER : med::SRT_SENDER_2)[s.channel];
    out.enable(snd);
    out.put(snd, med::PARAM_NETWORK_INTERFACE, "Any (Use route table)");
    const std::string mode = t.srtMode;
    if (const char* receiver = pipeline::lookup(pipeline::SRT_RECEIVER_MODE, mode))
        out.put(snd, med::PARAM_RECEIVER_MODE, receiver);
    else
        out.unknown("SRT Mode", mode);
    out.put(snd, med::PARAM_SERVER_IP, t.address);
    out.put(snd, med::PARAM_PORT, t.port);
    out.put(snd, med::PARAM_LATENCY_MS, t.srtLatency);
    out.put(snd, prop::TTL, t.ttl);
    out.put(snd, med::PARAM_MAX_PAYLOAD_SIZE, t.packetSize);
    const bool channelAes = s.encryption && (s.aesMode == value::AES_128_SRT || s.aesMode == value::AES_256_SRT);
    const std::string aesMode = channelAes ? s.aesMode : t.srtAesMode;
    const std::string aesKey = channelAes ? s.aesKey : t.srtAesKey;
    const char* aes = pipeline::lookup(pipeline::SRT_AES_MODE, aesMode);
    if (!aes) {
        out.unknown("AES Mode", aesMode);
    } else {
        out.put(snd, med::PARAM_AES_MODE, aes);
        if (aesMode != "Disabled")
            out.put(snd, prop::AES_KEY, aesKey);
    }
    out.put(snd, prop::STREAM_ID, t.srtStreamId);
    out.put(snd, med::PARAM_PACKET_FILTER, pipeline::srtPacketFilter(t.srtFec, t.srtColumns, t.srtRows));
}

// Only channel 0's assembly has an RTMP server; on a build without one the
// writes are skipped by the assembly check.
static void configRtmpServer(const ChannelSnapshot& s, PipelineOutput& out, size_t target) {
    const ChannelSnapshot::Target& t = s.targets[target];
    const std::string snd = out.comp(med::RTMP_SERVER);
    out.enable(snd);
    out.put(snd, prop::RTMP_SERVER_URL, t.rtmpUrl);
    out.put(snd, med::PARAM_NAME_OF_PUBLISHED_STREAM, t.rtmpStreamName);
    out.put(snd, prop::USERNAME, t.rtmpUsername);
    out.put(snd, prop::PASSWORD, t.rtmpPassword);
}

void configTargets(const ChannelSnapshot& s, PipelineOutput& out) {
    for (size_t i = 0; i < s.targets.size() && i < 2; ++i) {
        const ChannelSnapshot::Target& t = s.targets[i];
        if (!t.enabled)
            continue;
        if (pipeline::lookup(pipeline::UDP_STREAM_FORMAT, t.protocol))
            configUdpSender(s, out, i);
        else if (t.protocol == value::RTP_ES)
            configRtspServer(s, out, i);
        else if (t.protocol == value::ZIXI)
            configZixiFeeder(s, out, i);
        else if (t.protocol == value::SRT)
            configSrtSender(s, out, i);
        else if (t.protocol == value::RTMP)
            configRtmpServer(s, out, i);
        else
            out.unknown("Streaming Protocol", t.protocol);
    }
}
