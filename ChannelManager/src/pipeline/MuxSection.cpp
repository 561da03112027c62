#include <string>

#include "pipeline/MuxSection.h"
#include "pipeline/PipelineSections.h"
#include "pipeline/TextTables.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace vocab;

// Section 25: the transport-stream multiplexer of the channel.
//
// "Round Muxrate": a constant-rate multiplex is rounded up to a whole number
// of TS packets per second (1); a variable-rate one follows its content (0).
// "Output Granularity": the TS packets written per datagram, as many as the
// first enabled target's "UDP Packet Size" holds (7 for 1316 bytes), one in
// "Ultra Low Latency - LAN" so that no packet waits for the next ones.
// "Delay Mode": "No Wait" in "Ultra Low Latency - LAN", else "Normal".

namespace {
constexpr int kTsPacket = 188;
constexpr int kMaxPacketsPerDatagram = 7;
}  // namespace

int pipeline::outputGranularity(int udpPacketSize, bool ultraLowLatency) {
    if (ultraLowLatency)
        return 1;
    const int packets = udpPacketSize / kTsPacket;
    if (packets < 1)
        return 1;
    return packets > kMaxPacketsPerDatagram ? kMaxPacketsPerDatagram : packets;
}

void configMultiplexer(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string mux = med::TS_MULTIPLEXER[s.channel];
    const bool klv1 = s.ingestKlv != value::KLV_NONE;
    const bool klv2 = s.ingestKlv2 != value::KLV_NONE;
    std::string pids = std::to_string(s.pmtPid);
    const auto select = [&pids](bool on, int pid) {
        if (on)
            pids += "," + std::to_string(pid);
    };
    select(s.encodeVideo, s.videoPid);
    select(s.pcrPid != s.videoPid || !s.encodeVideo, s.pcrPid);
    select(s.audioEncoded(0), s.audioEncoded(0) ? s.audio[0].pid : 0);
    select(s.audioEncoded(1), s.audioEncoded(1) ? s.audio[1].pid : 0);
    select(klv1, s.klvPid);
    select(klv2, s.klv2Pid);
    out.put(mux, med::PARAM_SELECTED_PIDS, pids);
    out.put(mux, prop::VIDEO_PID, s.videoPid);
    if (s.audioEncoded(0))
        out.put(mux, prop::AUDIO_PID, s.audio[0].pid);
    if (s.audioEncoded(1))
        out.put(mux, med::PARAM_AUDIO2_PID, s.audio[1].pid);
    out.put(mux, prop::PCR_PID, s.pcrPid);
    out.put(mux, prop::PMT_PID, s.pmtPid);
    if (klv1)
        out.put(mux, prop::KLV_PID, s.klvPid);
    if (klv2)
        out.put(mux, prop::KLV2_PID, s.klv2Pid);
    out.put(mux, med::PARAM_MARGIN_OVERHEAD_PERCENT, out.bitrates.overheadPercent);
    const char* mode = pipeline::lookup(pipeline::MUX_RATE_CONTROL, s.rateControl);
    if (mode) {
        out.put(mux, med::PARAM_RATE_CONTROL_MODE, mode);
        out.put(mux, med::PARAM_ROUND_MUXRATE, std::string(mode) == value::CBR);
    } else {
        out.unknown("Rate Control", s.rateControl);
    }
    int packetSize = 0;
    for (const ChannelSnapshot::Target& t : s.targets)
        if (t.enabled && packetSize == 0)
            packetSize = t.packetSize;
    out.put(mux, med::PARAM_OUTPUT_GRANULARITY, pipeline::outputGranularity(packetSize, s.ultraLowLatency()));
    out.put(mux, prop::INITIAL_DELAY, s.initialDelay);
    out.put(mux, prop::MAX_DELAY, s.maximumDelay);
    out.put(mux, med::PARAM_DELAY_MODE, s.ultraLowLatency() ? "No Wait" : "Normal");
}
