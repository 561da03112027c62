#include <algorithm>
#include <iterator>

#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineConfigurator.h"
#include "ports/ChannelStore.h"
#include "ports/Mediator.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The read-back of what the encoder and the multiplexer actually use into
// the channel's settings and its summary row, so that a value left to the
// encoder ("Auto" level, default QP range) shows its effective value.

namespace {

const char* const kHevcProfiles[] = {"Main", "Main 10", "Main 4:2:2 10"};
const char* const kHevcTiers[] = {"Main", "High"};
const char* const kHevcLevels[] = {"1.0", "1.1", "1.2", "1.3", "2.0", "2.1", "2.2", "3.0", "3.1", "3.2",
                                   "4.0", "4.1", "4.2", "5.0", "5.1", "5.2", "6.0", "6.1", "6.2"};

template <std::size_t N>
bool isOneOf(const std::string& text, const char* const (&allowed)[N]) {
    return std::any_of(std::begin(allowed), std::end(allowed), [&](const char* word) { return text == word; });
}

// Reads a text parameter of the encoder and keeps it in `value` only when it
// is one the settings can hold.
template <std::size_t N>
void readAllowed(Mediator& mediator, const std::string& encoder, const char* parameter, const char* const (&allowed)[N],
                 std::string& value) {
    std::string reported;
    if (isOk(mediator.getTextParam(encoder, parameter, reported)) && isOneOf(reported, allowed))
        value = reported;
}

}  // namespace

// The encoder reports "4.2" where the settings offer "4.1"; mapped
// deliberately, as the appliance always has. A mediator read that fails
// leaves the configured value, so it is written back unchanged and does not
// count as a failure: the encoder simply did not tell.
Fcodes PipelineConfigurator::writeBackEncoderSettings(const std::string& rowId) {
    const int channel = channelIndex(rowId);
    // Only a channel's row has an encoder (and a multiplexer) to read back.
    if (channel < 0)
        return FC_BAD_VALUE;
    const std::string multiplexer = med::TS_MULTIPLEXER[channel];
    Fcodes result = FC_OK;
    if (channel == 0) {
        int qpBase = 0, qpMin = 0, qpMax = 0, initialDelay = 0, maxDelay = 0;
        result |= ctx.store.getIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::QP_BASE, qpBase, "");
        result |= ctx.store.getIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::QP_RANGE_MIN, qpMin, "");
        result |= ctx.store.getIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::QP_MAX, qpMax, "");
        result |= ctx.store.getIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::INITIAL_DELAY, initialDelay, "");
        result |= ctx.store.getIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::MAXIMUM_DELAY, maxDelay, "");
        const std::string encoder = med::VIDEO_ENCODER[channel];
        ctx.mediator.getIntParam(encoder, prop::QP_BASE, qpBase);
        ctx.mediator.getIntParam(encoder, prop::QP_RANGE_MIN, qpMin);
        ctx.mediator.getIntParam(encoder, prop::QP_RANGE_MAX, qpMax);
        ctx.mediator.getIntParam(multiplexer, prop::INITIAL_DELAY, initialDelay);
        ctx.mediator.getIntParam(multiplexer, prop::MAX_DELAY, maxDelay);
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::QP_BASE, qpBase, "");
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::QP_RANGE_MIN, qpMin, "");
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::QP_MAX, qpMax, "");
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::INITIAL_DELAY, initialDelay, "");
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::H264_ENCODER, prop::MAXIMUM_DELAY, maxDelay, "");
    } else {
        std::string profile, tier, level;
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::PROFILE, profile, "");
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::TIER, tier, "");
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::LEVEL, level, "");
        const std::string encoder = med::VIDEO_ENCODER[channel];
        readAllowed(ctx.mediator, encoder, prop::PROFILE, kHevcProfiles, profile);
        readAllowed(ctx.mediator, encoder, prop::TIER, kHevcTiers, tier);
        readAllowed(ctx.mediator, encoder, prop::LEVEL, kHevcLevels, level);
        if (level == "4.2")
            level = "4.1";
        // The HEVC settings hold no delays; they are asked for all the same,
        // as the multiplexer of either channel is.
        int initialDelay = 0, maxDelay = 0;
        ctx.mediator.getIntParam(multiplexer, prop::INITIAL_DELAY, initialDelay);
        ctx.mediator.getIntParam(multiplexer, prop::MAX_DELAY, maxDelay);
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::LEVEL, level, "");
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::PROFILE, profile, "");
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::HEVC_ENCODER, prop::TIER, tier, "");
    }
    return result;
}

Fcodes PipelineConfigurator::updateChannel(const std::string& rowId) {
    if (!isChannelRow(rowId)) {
        DBG(DBG_ERROR) << "updateChannel: Unexpected rowId=" << rowId;
        return FC_BAD_VALUE;
    }
    Fcodes result = FC_OK;
    std::string source, inputResolution, encodingFormat, ingestKlv, ingestKlv2;
    int totalBitrate = 0, frameSampling = 0;
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, source, rowId);
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, inputResolution, rowId);
    result |= ctx.store.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, totalBitrate, rowId);
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, encodingFormat, rowId);
    result |= ctx.store.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, frameSampling, rowId);
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, ingestKlv, rowId);
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, ingestKlv2, rowId);

    result |= writeBackEncoderSettings(rowId);

    const bool klv = !(ingestKlv == value::KLV_NONE && ingestKlv2 == value::KLV_NONE);
    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::SOURCE, source, rowId);
    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::INPUT_RESOLUTION, inputResolution, rowId);
    result |= ctx.store.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::TOTAL_BIT_RATE, totalBitrate, rowId);
    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::RESOLUTION,
                                      encodingFormat + " @ " + std::to_string(frameSampling), rowId);
    result |= ctx.store.initBoolParam(ds::CHANNEL, tbl::CHANNELS, prop::KLV, klv, rowId);
    return result;
}

Fcodes PipelineConfigurator::updateAutomaticParams(const std::string& rowId) {
    if (!isChannelRow(rowId)) {
        DBG(DBG_ERROR) << "updateAutomaticParams: Unexpected rowId=" << rowId;
        return FC_BAD_VALUE;
    }
    return writeBackEncoderSettings(rowId);
}
