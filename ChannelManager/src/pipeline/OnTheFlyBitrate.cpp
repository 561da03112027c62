#include <cstdint>
#include <string>

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineConfigurator.h"
#include "settings/BitrateModel.h"
#include "settings/ChannelSnapshot.h"
#include "settings/IChannelEvents.h"
#include "tarnevel/ITarnevelClient.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;

// A new total and maximum for a running encoder: the settings are read once,
// the bitrate model computes from them, and the results go to the encoder and
// back into "ChannelProcessingTable".

// Sets one encoder parameter; a refusal is logged and the change goes on.
void PipelineConfigurator::setEncoderOnTheFly(const std::string& rowId, const std::string& component,
                                              const std::string& parameter, int value) {
    const Fcodes set = ITarnevelClient::setTarnevelIntParam(&ctx.holder, component, parameter, value);
    if (!isOk(set))
        DBG(DBG_ERROR) << "changeBitrateOnTheFly: rowId=" << rowId << " Error: val=" << value << " param=" << parameter
                       << " comp=" << component << " fcode=0x" << std::hex << static_cast<uint32_t>(set);
}

Fcodes PipelineConfigurator::changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate) {
    const int channel = channelIndex(rowId);
    if (channel < 0)
        return FC_OK;
    const std::string encoder = med::VIDEO_ENCODER[channel];

    ChannelSnapshot settings;
    Fcodes result = FC_OK | readChannelSnapshot(ctx.holder, rowId, settings);
    const bool encodeVideo = settings.encodeVideo;
    const bool pcrOnVideoPid = settings.pcrOnVideoPid();
    const float frameRate = static_cast<float>(settings.frameSampling);

    int audio = 0, klv = 0, video = 0;
    bitrate::calcBitrates(settings, totalBitrate, video, frameRate, audio, klv, pcrOnVideoPid);

    if (encodeVideo) {
        bool totalRaised = false, maxRaised = false;
        bitrate::applyBitrateFloors("changeBitrateOnTheFly", settings, frameRate, pcrOnVideoPid, video, totalBitrate,
                                    maxBitrate, totalRaised, maxRaised);
        if (totalRaised)
            result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, totalBitrate, rowId);
        if (maxRaised)
            result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, maxBitrate, rowId);
    }

    result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, video, rowId);
    setEncoderOnTheFly(rowId, encoder, med::PARAM_BITRATE, video);

    const int margin =
        bitrate::encoderMargin("changeBitrateOnTheFly", settings, video, maxBitrate, frameRate, pcrOnVideoPid);
    if (encodeVideo && video != 0 && settings.rateControl != value::CBR) {
        const int overheadPercent = settings.rateControl == value::CAPPED_VBR ? margin : settings.overheadPercent;
        result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT,
                                          overheadPercent, rowId);
    }
    setEncoderOnTheFly(rowId, encoder, med::PARAM_BITRATE_MARGIN, margin);
    if (channel == 1)
        setEncoderOnTheFly(rowId, encoder, med::PARAM_APPLY_ON_THE_FLY, 1);

    result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, totalBitrate, rowId);
    result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, maxBitrate, rowId);
    result |= updateChannel(rowId);
    ctx.events.sendEvent(ev::BITRATE_RECALCULATED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO,
                         "prev: " + std::to_string(settings.totalBitrate) + " new: " + std::to_string(totalBitrate));
    return result;
}
