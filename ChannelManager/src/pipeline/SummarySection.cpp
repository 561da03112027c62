#include <cstdint>
#include <string>

#include "pipeline/PipelineSections.h"
#include "pipeline/SummarySection.h"
#include "pipeline/TextTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

// Section 27: the channel summary of "ChannelsTable" (the configurator then
// applies the picture adjustments and the audio gains and reads back the
// effective values).
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
    if (protocol == value::PRO_MPEG && (fecMode == value::FEC_1D || fecMode == value::FEC_2D))
        return fecMode;
    if (protocol == value::SRT && srtFec)
        return srtRows > 1 ? value::FEC_2D : value::FEC_1D;
    return "None";
}

void configSummary(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string& r = s.rowId;
    std::string audio;
    for (const ChannelSnapshot::Audio& a : s.audio)
        if (a.encode)
            audio += (audio.empty() ? "" : ", ") + a.format;
    out.store(tbl::CHANNELS, prop::AUDIO, r, audio.empty() ? "None" : audio);

    const char* fecProps[] = {prop::FEC, prop::FEC2};
    const char* nameProps[] = {prop::CHANNEL_NAME, prop::SECOND_CHANNEL_NAME};
    const char* addressProps[] = {prop::TARGET_ADDRESS, prop::SECOND_TARGET_ADDRESS};
    for (size_t i = 0; i < 2; ++i) {
        std::string fec = "None", name, address;
        if (i < s.targets.size() && s.targets[i].enabled) {
            const ChannelSnapshot::Target& t = s.targets[i];
            name = t.name;
            const bool srt = t.protocol == value::SRT;
            const bool rtmp = t.protocol == value::RTMP;
            address =
                pipeline::targetAddressText(t.protocol, t.address, t.port, srt ? t.srtMode : "", rtmp ? t.rtmpUrl : "");
            fec = pipeline::fecText(t.protocol, t.fecMode, srt && t.srtFec, srt ? t.srtRows : 0);
        }
        out.store(tbl::CHANNELS, fecProps[i], r, fec);
        out.store(tbl::CHANNELS, nameProps[i], r, name);
        out.store(tbl::CHANNELS, addressProps[i], r, address);
    }
    out.store(tbl::CHANNELS, prop::SOURCE, r, s.source);
    out.store(tbl::CHANNELS, prop::TOTAL_BIT_RATE, r, out.bitrates.total);
    out.store(tbl::CHANNELS, prop::RESOLUTION, r, s.encodingFormat + " @ " + std::to_string(s.frameSampling));
    // "Stopped" unless the channel plays, or the system stopped it for a
    // condition: such a channel stays "Stopping" (as stopChannel leaves it),
    // so that a reconfiguration after a format stop does not turn it into a
    // user's stop and the input coming back still resumes it.
    const std::string& channelState = s.state;
    const uint32_t fcode = static_cast<uint32_t>(s.fcode);
    bool heldStopping = false;
    for (uint32_t condition : {cond::ZIXI_CONNECTION, cond::DATA_STREAM, cond::FORMAT_CHANGED})
        heldStopping |= channelState == state::STOPPING && (fcode & condition) == condition;
    if (channelState != state::PLAYING && channelState != state::PLAYED && !heldStopping)
        out.store(tbl::CHANNELS, prop::STATE, r, state::STOPPED);
    out.storeFlag(tbl::CHANNELS, prop::KLV, r, s.ingestKlv != value::KLV_NONE || s.ingestKlv2 != value::KLV_NONE);
    out.store(tbl::CHANNELS, prop::STATUS, r, s.status);
    if (s.formatChanged)
        out.storeFlag(tbl::SOURCE, prop::FORMAT_CHANGED, r, true);
}
