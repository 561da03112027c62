#include "settings/ChannelSettings.h"

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/WireConstants.h"
#include "settings/ChannelRows.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// The device manager's KLV inputs and the property that holds the bitrate of each.
constexpr const char* COM_PORTS_TABLE = "ComPortsTable";
constexpr const char* BAUD_RATE = "Baud Rate";
constexpr const char* KLV_OVER_SDI_TABLE = "KLV over SDI";
constexpr const char* KLV_OVER_SDI_BITRATE = "Bitrate";

// The KLV bitrate of one ingest setting, read from the device manager; a
// failed read leaves `bitrate` as it was.
Fcodes readKlvBitrate(DataHolder& holder, const std::string& ingest, int& bitrate) {
    const char* component = nullptr;
    const char* property = nullptr;
    if (ingest == value::KLV_SERIAL) {
        component = COM_PORTS_TABLE;
        property = BAUD_RATE;
    } else if (ingest == value::KLV_IP) {
        component = tbl::KLV_OVER_IP;
        property = prop::KLV_BITRATE;
    } else if (ingest == value::KLV_SDI || ingest == value::KLV_SDI_SYNC) {
        component = KLV_OVER_SDI_TABLE;
        property = KLV_OVER_SDI_BITRATE;
    } else {
        return FC_OK;
    }
    return holder.requestGetIntParam(wire::SOCK_DEV, ds::DEVICE, component, property, bitrate, "");
}

}  // namespace

Fcodes readChannelSettings(DataHolder& holder, const std::string& rowId, ChannelSettings& s) {
    s = ChannelSettings();
    s.rowId = rowId;
    const char* processing = tbl::PROCESSING;
    const char* ts = tbl::TRANSPORT_STREAM;
    Fcodes result = FC_OK;
    result |= holder.getBoolParam(ds::CHANNEL, processing, prop::ENCODE_VIDEO, s.encodeVideo, rowId);
    result |= holder.getIntParam(ds::CHANNEL, processing, prop::FRAME_SAMPLING, s.frameSampling, rowId);
    result |= holder.getIntParam(ds::CHANNEL, processing, prop::TOTAL_BITRATE, s.totalBitrate, rowId);
    result |= holder.getIntParam(ds::CHANNEL, processing, prop::MAX_BITRATE, s.maxBitrate, rowId);
    result |= holder.getTextParam(ds::CHANNEL, processing, prop::RATE_CONTROL, s.rateControl, rowId);
    result |= holder.getTextParam(ds::CHANNEL, processing, prop::INGEST_KLV, s.ingestKlv, rowId);
    result |= holder.getTextParam(ds::CHANNEL, processing, prop::INGEST_KLV2, s.ingestKlv2, rowId);
    result |= holder.getTextParam(ds::CHANNEL, processing, prop::ENCODING_FORMAT, s.encodingFormat, rowId);
    result |= holder.getIntParam(ds::CHANNEL, ts, prop::MUXRATE_OVERHEAD_PERCENT, s.overheadPercent, rowId);
    result |= holder.getIntParam(ds::CHANNEL, ts, prop::VIDEO_PID, s.videoPid, rowId);
    result |= holder.getIntParam(ds::CHANNEL, ts, prop::PCR_PID, s.pcrPid, rowId);

    ChannelRows rows(holder);
    std::vector<std::string> targets;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, targets);
    s.hasTarget = !targets.empty();
    if (s.hasTarget)
        result |= holder.getTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, s.protocol, targets.front());

    std::vector<std::string> audioRows;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::CHANNEL_ID, rowId, audioRows);
    for (const std::string& audioRow : audioRows) {
        ChannelSettings::AudioStream a;
        result |= holder.getBoolParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, a.encode, audioRow);
        result |= holder.getIntParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_BITRATE, a.bitrate, audioRow);
        if (a.encode && a.bitrate != 0) {
            result |= holder.getTextParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, a.format,
                                          audioRow);
            result |= holder.getTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, a.sampling, audioRow);
        }
        s.audio.push_back(a);
    }
    return result | finishChannelSettings(holder, s);
}

Fcodes finishChannelSettings(DataHolder& holder, ChannelSettings& s) {
    Fcodes result = FC_OK;
    if (!s.hasTarget) {
        DBG(DBG_ERROR) << "calcBitrates: Couldn't find targetId in table=" << tbl::TARGET
                       << " for chan rowId=" << s.rowId;
        result |= FC_UNAVAILABLE;
    }
    result |= readKlvBitrate(holder, s.ingestKlv, s.klvBitrate1);
    result |= readKlvBitrate(holder, s.ingestKlv2, s.klvBitrate2);
    return result;
}
