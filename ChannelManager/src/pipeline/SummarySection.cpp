#include <cstdint>
#include <string>

#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

// Section 27: the channel summary of "ChannelsTable", then the picture
// adjustments, the audio gains and the read-back of the effective values.
//
// "Target Address": "address : port"; SRT shows its mode first ("Caller
// 239.1.2.2 : 5110"), a listener only its port ("Listener : 5110"); RTMP
// shows the server URL. "FEC": the Pro-MPEG mode ("1-D", "2-D"), for SRT
// with FEC "2-D" when it has rows, else "1-D"; "None" otherwise. A missing
// or disabled target shows "None" and empty texts. "Audio": the encoding
// formats of the encoded streams, ", " between, "None" without.

std::string pipeline::targetAddressText(const std::string& protocol, const std::string& address, int port,
                                        const std::string& srtMode, const std::string& rtmpUrl) {
    std::string hostPort = address + " : " + std::to_string(port);
    if (protocol == value::RTMP)
        return rtmpUrl;
    if (protocol == value::SRT)
        return srtMode == "Listener" ? "Listener : " + std::to_string(port) : srtMode + " " + hostPort;
    return hostPort;
}

std::string pipeline::fecText(const std::string& protocol, const std::string& fecMode, bool srtFec, int srtRows) {
    if (protocol == value::PRO_MPEG && (fecMode == "1-D" || fecMode == "2-D"))
        return fecMode;
    if (protocol == value::SRT && srtFec)
        return srtRows > 1 ? "2-D" : "1-D";
    return "None";
}

void PipelineConfigurator::configSummary(PipelineRun& run) {
    const std::string& r = run.rowId;
    std::string audio;
    for (const PipelineRun::Audio& a : run.audio)
        if (a.encode)
            audio += (audio.empty() ? "" : ", ") + a.format;
    run.initText(tbl::CHANNELS, prop::AUDIO, r, audio.empty() ? "None" : audio);

    const char* fecProps[] = {prop::FEC, prop::FEC2};
    const char* nameProps[] = {prop::CHANNEL_NAME, prop::SECOND_CHANNEL_NAME};
    const char* addressProps[] = {prop::TARGET_ADDRESS, prop::SECOND_TARGET_ADDRESS};
    for (size_t i = 0; i < 2; ++i) {
        std::string fec = "None", name, address;
        if (i < run.targets.size() && run.targets[i].enabled) {
            const PipelineRun::Target& t = run.targets[i];
            name = t.name;
            const bool srt = t.protocol == value::SRT;
            const bool rtmp = t.protocol == value::RTMP;
            address = pipeline::targetAddressText(
                t.protocol, t.address, t.port, srt ? run.text(tbl::SRT_SETTINGS, prop::MODE, t.id) : "",
                rtmp ? run.text(tbl::RTMP_SETTINGS, prop::RTMP_SERVER_URL, t.id) : "");
            fec = pipeline::fecText(t.protocol, run.text(tbl::FEC_SETTINGS, prop::MODE, t.id),
                                    srt && run.flag(tbl::SRT_SETTINGS, prop::SRT_FEC, t.id),
                                    srt ? run.integer(tbl::SRT_SETTINGS, prop::ROWS, t.id) : 0);
        }
        run.initText(tbl::CHANNELS, fecProps[i], r, fec);
        run.initText(tbl::CHANNELS, nameProps[i], r, name);
        run.initText(tbl::CHANNELS, addressProps[i], r, address);
    }
    run.initText(tbl::CHANNELS, prop::SOURCE, r, run.source);
    run.initInt(tbl::CHANNELS, prop::TOTAL_BIT_RATE, r, run.totalBitrate);
    run.initText(tbl::CHANNELS, prop::RESOLUTION, r, run.encodingFormat + " @ " + std::to_string(run.frameSampling));
    // "Stopped" unless the channel plays, or the system stopped it for a
    // condition: such a channel stays "Stopping" (as stopChannel leaves it),
    // so that a reconfiguration after a format stop does not turn it into a
    // user's stop and the input coming back still resumes it.
    const std::string channelState = run.text(tbl::CHANNELS, prop::STATE, r);
    const uint32_t fcode = static_cast<uint32_t>(run.integer(tbl::CHANNELS, prop::FCODE, r));
    bool heldStopping = false;
    for (uint32_t condition : {cond::ZIXI_CONNECTION, cond::DATA_STREAM, cond::FORMAT_CHANGED})
        heldStopping |= channelState == state::STOPPING && (fcode & condition) == condition;
    if (channelState != state::PLAYING && channelState != state::PLAYED && !heldStopping)
        run.initText(tbl::CHANNELS, prop::STATE, r, state::STOPPED);
    run.initBool(tbl::CHANNELS, prop::KLV, r, run.ingestKlv != value::KLV_NONE || run.ingestKlv2 != value::KLV_NONE);
    run.initText(tbl::CHANNELS, prop::STATUS, r, run.status);
    if (run.formatChanged)
        run.initBool(tbl::SOURCE, prop::FORMAT_CHANGED, r, true);

    run.result |= configAVSettings(r);
    for (const PipelineRun::Audio& a : run.audio)
        run.result |= configAudioGain(a.id);
    run.result |= updateChannel(r);
}
