#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
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

// Creates the directory and its parents under the root; true when it exists.
bool makeDirectories(const std::string& logical) {
    const std::string path = sysmgtPath(logical);
    for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        mkdir(path.substr(0, at).c_str(), 0755);
    return mkdir(path.c_str(), 0755) == 0 || errno == EEXIST;
}
}  // namespace

int pipeline::htbOverheadPercent(const std::string& protocol, int packetSize, const std::string& fecMode, int columns,
                                 int rows) {
    if (packetSize <= 0)
        return 0;
    const int headers = kIpUdpHeaders + (protocol == value::UDP_TS ? 0 : kRtpHeader);
    int percent = ceilPercent(headers, packetSize);
    if (protocol == value::PRO_MPEG && columns > 0 && (fecMode == "1-D" || fecMode == "2-D"))
        percent += ceilPercent(1, columns);
    if (protocol == value::PRO_MPEG && rows > 0 && fecMode == "2-D")
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

void PipelineConfigurator::configTargets(PipelineRun& run) {
    for (size_t i = 0; i < run.targets.size() && i < 2; ++i) {
        const PipelineRun::Target& t = run.targets[i];
        if (!t.enabled)
            continue;
        if (pipeline::lookup(pipeline::UDP_STREAM_FORMAT, t.protocol))
            configUdpSender(run, i);
        else if (t.protocol == value::RTP_ES)
            configRtspServer(run, i);
        else if (t.protocol == value::ZIXI)
            configZixiFeeder(run, i);
        else if (t.protocol == value::SRT)
            configSrtSender(run, i);
        else if (t.protocol == value::RTMP)
            configRtmpServer(run, i);
        else
            run.unknown("Streaming Protocol", t.protocol);
    }
}

void PipelineConfigurator::configUdpSender(PipelineRun& run, size_t target) {
    const PipelineRun::Target& t = run.targets[target];
    const std::string s = (target == 0 ? med::UDP_SENDER : med::UDP_SENDER_2)[run.channel];
    run.enable(s);
    run.put(s, "Stream Format", pipeline::lookup(pipeline::UDP_STREAM_FORMAT, t.protocol));
    const std::string fecMode = run.text(tbl::FEC_SETTINGS, prop::MODE, t.id);
    const int columns = run.integer(tbl::FEC_SETTINGS, prop::COLUMNS, t.id);
    const int rows = run.integer(tbl::FEC_SETTINGS, prop::ROWS, t.id);
    if (t.protocol == value::PRO_MPEG) {
        if (fecMode == "1-D" || fecMode == "2-D") {
            run.put(s, "FEC Mode", fecMode);
            run.put(s, "FEC D", rows);
            run.put(s, "FEC L", columns);
            run.put(s, "UDP Port FEC A", run.integer(tbl::FEC_SETTINGS, prop::PORT_1D, t.id));
            if (fecMode == "2-D")
                run.put(s, "UDP Port FEC B", run.integer(tbl::FEC_SETTINGS, prop::PORT_2D, t.id));
        } else {
            run.unknown("FEC Mode", fecMode);
        }
    }
    run.put(s, "IP Address", t.address);
    run.put(s, "UDP Port", t.port);
    run.put(s, "Max Payload Size", t.packetSize);
    run.put(s, prop::TTL, t.ttl);
    run.put(s, "Refresh Interfaces", true);
    if (const char* itf = pipeline::lookup(pipeline::MULTICAST_INTERFACE, t.interface))
        run.put(s, "Multicast Interface", itf);
    else
        run.unknown("Network Interface", t.interface);
    const char* shaping = pipeline::lookup(pipeline::TRAFFIC_SHAPING, t.shaping);
    if (!shaping) {
        run.unknown("Traffic Shaping", t.shaping);
    } else {
        run.put(s, "Traffic Shaping", shaping);
        if (t.shaping != "None") {
            run.put(s, "Traffic Shaping HTB Max Bandwidth",
                    run.maxBitrate > run.totalBitrate ? run.maxBitrate : run.totalBitrate);
            run.put(s, "Traffic Shaping Bitrate OverHead (HTB only)",
                    pipeline::htbOverheadPercent(t.protocol, t.packetSize, fecMode, columns, rows));
        }
    }
    run.put(s, "Sync processing", run.ultraLowLatency());
}

void PipelineConfigurator::configRtspServer(PipelineRun& run, size_t target) {
    const PipelineRun::Target& t = run.targets[target];
    const std::string s = med::RTSP_SERVER[run.channel];
    if (!makeDirectories(SDP_DIR))
        DBG(DBG_ERROR) << "configChannel: rowId=" << run.rowId << " Error: cannot create dir=" << SDP_DIR;
    run.enable(s);
    run.put(s, "RTSP port", run.rtspPort);
    run.put(s, med::PARAM_SDP_DIRECTORY, SDP_DIR);
    run.put(s, "Live URIs", pipeline::liveUris(run.audioEncoded(0), run.audioEncoded(1)));
    run.put(s, "RTP packet size", t.packetSize);
    if (const char* itf = pipeline::lookup(pipeline::MULTICAST_INTERFACE, t.interface))
        run.put(s, "Multicast interface", itf);
    else
        run.unknown("Network Interface", t.interface);
}

void PipelineConfigurator::configZixiFeeder(PipelineRun& run, size_t target) {
    const PipelineRun::Target& t = run.targets[target];
    const std::string s = (target == 0 ? med::ZIXI_FEEDER : med::ZIXI_FEEDER_2)[run.channel];
    const char* z = tbl::ZIXI_FEEDER;
    const bool dynamic = run.flag(z, prop::ENABLE_DYNAMIC_BITRATE, t.id);
    int low = 0, high = 0;
    pipeline::zixiBitrateLimits(run.totalBitrate, run.integer(z, prop::MIN_BITRATE_PERCENTS, t.id),
                                run.integer(z, prop::MAX_BITRATE_PERCENTS, t.id),
                                run.integer(z, prop::MIN_BITRATE, t.id), run.integer(z, prop::MAX_BITRATE_ZIXI, t.id),
                                low, high);
    const bool ull = run.ultraLowLatency();
    run.enable(s);
    run.put(s, "Broadcaster IP", t.address);
    run.put(s, "Broadcaster Port", t.port);
    run.put(s, "Max Packet Size", t.packetSize);
    run.put(s, prop::STREAM_ID, run.text(z, prop::STREAM_ID, t.id));
    run.put(s, "Session or Pwd", run.text(z, prop::PASSWORD, t.id));
    run.put(s, prop::LATENCY, run.integer(z, prop::LATENCY, t.id));
    run.put(s, "FEC overhead (percent)", kZixiFecPercent);
    run.put(s, "FEC block ms", ull ? 20 : 100);
    run.put(s, "Max Delay Packets", ull ? 10 : 100);
    run.put(s, "Max Data Rate",
            dynamic ? high : (run.maxBitrate > run.totalBitrate ? run.maxBitrate : run.totalBitrate));
    run.put(s, "Adjustable bitrate", dynamic);
    run.put(s, "Adjustable bitrate min", low);
    run.put(s, "Adjustable bitrate max", high);
    run.put(s, "Adaptive Mode", dynamic ? "Fec" : "None");
    run.put(s, prop::ENABLE_FAILOVER, run.flag(z, prop::ENABLE_FAILOVER, t.id));
    run.put(s, "Failover Broadcaster IP", run.text(z, prop::FAILOVER_ADDRESS, t.id));
    run.put(s, "Failover Broadcaster Port", run.integer(z, prop::FAILOVER_PORT, t.id));
}

void PipelineConfigurator::configSrtSender(PipelineRun& run, size_t target) {
    const PipelineRun::Target& t = run.targets[target];
    const std::string s = (target == 0 ? med::SRT_SENDER : med::SRT_SENDER_2)[run.channel];
    const char* st = tbl::SRT_SETTINGS;
    run.enable(s);
    run.put(s, "Network interface", "Any (Use route table)");
    const std::string mode = run.text(st, prop::MODE, t.id);
    if (const char* receiver = pipeline::lookup(pipeline::SRT_RECEIVER_MODE, mode))
        run.put(s, "Receiver Mode", receiver);
    else
        run.unknown("SRT Mode", mode);
    run.put(s, "Server IP", t.address);
    run.put(s, "Port", t.port);
    run.put(s, "Latency (ms)", run.integer(st, prop::LATENCY, t.id));
    run.put(s, prop::TTL, t.ttl);
    run.put(s, "Max Payload Size", t.packetSize);
    const bool channelAes = run.encryption && (run.aesMode == "128-bit (SRT)" || run.aesMode == "256-bit (SRT)");
    const std::string aesMode = channelAes ? run.aesMode : run.text(st, prop::AES_MODE, t.id);
    const std::string aesKey = channelAes ? run.aesKey : run.text(st, prop::AES_KEY, t.id);
    const char* aes = pipeline::lookup(pipeline::SRT_AES_MODE, aesMode);
    if (!aes) {
        run.unknown("AES Mode", aesMode);
    } else {
        run.put(s, "AES Mode", aes);
        if (aesMode != "Disabled")
            run.put(s, prop::AES_KEY, aesKey);
    }
    run.put(s, prop::STREAM_ID, run.text(st, prop::STREAM_ID, t.id));
    run.put(s, "Packet Filter",
            pipeline::srtPacketFilter(run.flag(st, prop::SRT_FEC, t.id), run.integer(st, prop::COLUMNS, t.id),
                                      run.integer(st, prop::ROWS, t.id)));
}

// Only channel 0's assembly has an RTMP server; on a build without one the
// writes are skipped by the assembly check.
void PipelineConfigurator::configRtmpServer(PipelineRun& run, size_t target) {
    const PipelineRun::Target& t = run.targets[target];
    const std::string s = run.comp("Rtmp Server ");
    const char* r = tbl::RTMP_SETTINGS;
    run.enable(s);
    run.put(s, prop::RTMP_SERVER_URL, run.text(r, prop::RTMP_SERVER_URL, t.id));
    run.put(s, "Name of published stream", run.text(r, prop::STREAM_NAME, t.id));
    run.put(s, prop::USERNAME, run.text(r, prop::USERNAME, t.id));
    run.put(s, prop::PASSWORD, run.text(r, prop::PASSWORD, t.id));
}
