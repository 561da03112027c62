#include <string>

#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
#include "vocab/PeerNames.h"

using namespace datacom;

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

void PipelineConfigurator::configMultiplexer(PipelineRun& run) {
    const std::string mux = med::TS_MULTIPLEXER[run.channel];
    const bool klv1 = run.ingestKlv != value::KLV_NONE;
    const bool klv2 = run.ingestKlv2 != value::KLV_NONE;
    std::string pids = std::to_string(run.pmtPid);
    const auto select = [&pids](bool on, int pid) {
        if (on)
            pids += "," + std::to_string(pid);
    };
    select(run.encodeVideo, run.videoPid);
    select(run.pcrPid != run.videoPid || !run.encodeVideo, run.pcrPid);
    select(run.audioEncoded(0), run.audioEncoded(0) ? run.audio[0].pid : 0);
    select(run.audioEncoded(1), run.audioEncoded(1) ? run.audio[1].pid : 0);
    select(klv1, run.klvPid);
    select(klv2, run.klv2Pid);
    run.put(mux, "Selected PIDs", pids);
    run.put(mux, prop::VIDEO_PID, run.videoPid);
    if (run.audioEncoded(0))
        run.put(mux, prop::AUDIO_PID, run.audio[0].pid);
    if (run.audioEncoded(1))
        run.put(mux, "Audio2 PID", run.audio[1].pid);
    run.put(mux, prop::PCR_PID, run.pcrPid);
    run.put(mux, prop::PMT_PID, run.pmtPid);
    if (klv1)
        run.put(mux, prop::KLV_PID, run.klvPid);
    if (klv2)
        run.put(mux, prop::KLV2_PID, run.klv2Pid);
    run.put(mux, "Margin overhead percent", run.muxOverheadPercent);
    const char* mode = pipeline::lookup(pipeline::MUX_RATE_CONTROL, run.rateControl);
    if (mode) {
        run.put(mux, "Rate Control Mode", mode);
        run.put(mux, "Round Muxrate", std::string(mode) == value::CBR);
    } else {
        run.unknown("Rate Control", run.rateControl);
    }
    int packetSize = 0;
    for (const PipelineRun::Target& t : run.targets)
        if (t.enabled && packetSize == 0)
            packetSize = t.packetSize;
    run.put(mux, "Output Granularity", pipeline::outputGranularity(packetSize, run.ultraLowLatency()));
    run.put(mux, prop::INITIAL_DELAY, run.initialDelay);
    run.put(mux, prop::MAX_DELAY, run.maximumDelay);
    run.put(mux, "Delay Mode", run.ultraLowLatency() ? "No Wait" : "Normal");
}
