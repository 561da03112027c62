#include "pipeline/OnTheFlyBitrate.h"

#include <string>

#include "model/BitrateModel.h"
#include "pipeline/PipelineConfigurator.h"
#include "ports/IChannelEvents.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

void bitrateChange(const ChannelSnapshot& s, int totalBitrate, int maxBitrate, PipelineOutput& out) {
    const char* op = "changeBitrateOnTheFly";
    const std::string encoder = med::VIDEO_ENCODER[s.channel];
    const bool pcrOnVideoPid = s.pcrOnVideoPid();
    const float frameRate = static_cast<float>(s.frameSampling);

    int audio = 0, klv = 0, video = 0;
    bitrate::calcBitrates(s, totalBitrate, video, frameRate, audio, klv, pcrOnVideoPid);
    if (s.encodeVideo) {
        bool totalRaised = false, maxRaised = false;
        bitrate::applyBitrateFloors(op, s, frameRate, pcrOnVideoPid, video, totalBitrate, maxBitrate, totalRaised,
                                    maxRaised);
        if (totalRaised)
            out.store(tbl::PROCESSING, prop::TOTAL_BITRATE, s.rowId, totalBitrate);
        if (maxRaised)
            out.store(tbl::PROCESSING, prop::MAX_BITRATE, s.rowId, maxBitrate);
    }
    out.store(tbl::PROCESSING, prop::VIDEO_BITRATE, s.rowId, video);
    out.put(encoder, med::PARAM_BITRATE, video);

    const int margin = bitrate::encoderMargin(op, s, video, maxBitrate, frameRate, pcrOnVideoPid);
    if (s.encodeVideo && video != 0 && s.rateControl != value::CBR) {
        const int overheadPercent = s.rateControl == value::CAPPED_VBR ? margin : s.overheadPercent;
        out.store(tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, s.rowId, overheadPercent);
    }
    out.put(encoder, med::PARAM_BITRATE_MARGIN, margin);
    if (s.channel == 1)
        out.put(encoder, med::PARAM_APPLY_ON_THE_FLY, 1);

    out.store(tbl::PROCESSING, prop::TOTAL_BITRATE, s.rowId, totalBitrate);
    out.store(tbl::PROCESSING, prop::MAX_BITRATE, s.rowId, maxBitrate);
    out.bitrates.video = video;
    out.bitrates.total = totalBitrate;
    out.bitrates.max = maxBitrate;
}

// The settings are read once and the change applied; a refused encoder
// write is logged and the change goes on, so it does not count as a
// failure of the change.
Fcodes PipelineConfigurator::changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate) {
    if (channelIndex(rowId) < 0)
        return FC_OK;
    ChannelSnapshot snapshot;
    Fcodes result = FC_OK | readChannelSnapshot(ctx.store, rowId, snapshot);
    PipelineOutput out(rowId, "changeBitrateOnTheFly", "", false);
    bitrateChange(snapshot, totalBitrate, maxBitrate, out);
    result |= apply(out, false);
    result |= updateChannel(rowId);
    ctx.events.sendEvent(
        ev::BITRATE_RECALCULATED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO,
        "prev: " + std::to_string(snapshot.totalBitrate) + " new: " + std::to_string(out.bitrates.total));
    return result;
}
