#include "pipeline/RunAdjustments.h"

#include <cmath>
#include <cstdio>

#include "datacom/DbgPrintClient.h"
#include "model/VideoFormatTables.h"
#include "pipeline/FormatFollowsInput.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

RunAdjustments::RunAdjustments(ChannelContext& ctx, const std::string& rowId)
    : ctx(ctx), reads{ctx.store}, rowId(rowId), channel(channelIndex(rowId) == 1 ? 1 : 0) {}

Fcodes RunAdjustments::apply() {
    source = reads.text(tbl::SOURCE, prop::SOURCE, rowId);
    inputDetected = state::INPUT_NONE;
    result |= ctx.store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, inputDetected, source);
    int width = 0, height = 0;
    char scan = 'x';
    if (inputDetected != state::INPUT_NONE && inputDetected != state::NO_SIGNAL)
        inputParsed = std::sscanf(inputDetected.c_str(), "%dx%d%c @ %f", &width, &height, &scan, &inputRate) == 4;
    shareInput();
    matchFrameSampling();
    followInputFormat();
    return result | reads.result;
}

// Both channels may encode the one SDI input. When they do, the embedded
// audio of that input is configured once, on the HEVC rows, and mirrored
// into the H.264 rows whose source is the same embedded audio, so the two
// channels never ask different things of one de-embedder. A playing other
// channel is told that its configuration changed.
void RunAdjustments::shareInput() {
    const std::string other = row::otherChannel(channel);
    const std::string otherSource = reads.text(tbl::SOURCE, prop::SOURCE, other);
    const bool shared = source == value::SRC_HD_SDI && otherSource == value::SRC_HD_SDI;
    if (!shared)
        return;
    for (const char* n : {"1", "2"}) {
        const std::string from = std::string(row::HEVC) + " Audio" + n;
        const std::string to = std::string(row::H264) + " Audio" + n;
        if (reads.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, from) != value::AUDIO_SDI_EMBEDDED ||
            reads.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, to) != value::AUDIO_SDI_EMBEDDED)
            continue;
        result |= ctx.store.initBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED,
                                          reads.flag(tbl::AUDIO_SOURCE, prop::ENABLED, from), to);
        for (const char* p : {prop::AUDIO_SOURCE, prop::AUDIO_INPUT_FORMAT, prop::AUDIO_TRACK, prop::AUDIO_SAMPLING})
            result |=
                ctx.store.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, p, reads.text(tbl::AUDIO_SOURCE, p, from), to);
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_GAIN,
                                         reads.integer(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, from), to);
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT,
                                          reads.text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, from), to);
    }
    const std::string otherState = reads.text(tbl::CHANNELS, prop::STATE, other);
    if (otherState == state::PLAYING || otherState == state::PLAYED)
        ctx.events.sendEvent(ev::CHANNEL_CONFIGURED, other, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
}

// "to match" means the channel's rows say the rate the encoder codes, the
// one the bitrate model (its per-frame term) and the summary ("Resolution")
// assume: with a detected input, "Frame Sampling" becomes the input's rate,
// halved for "Half of Input" (rounded, within what the input can feed). With
// "Format as Detected" set, followInputFormat chooses the format and this
// same ratio together (the encoder's own limit may lower the rate there), so
// it keeps the operator's choice and is applied with the ratio rather than
// rewritten.
void RunAdjustments::matchFrameSampling() {
    if (!inputParsed || inputRate <= 0 || reads.flag(tbl::PROCESSING, prop::FORMAT_AS_DETECTED, rowId))
        return;
    const bool half = reads.text(tbl::PROCESSING, prop::FRAME_RATE_RATIO, rowId) == value::HALF_OF_INPUT;
    int sampling = static_cast<int>(std::lround(half ? inputRate / 2 : inputRate));
    int limit = 60;
    videoformat::maxInputFrameRate(inputDetected, limit);
    if (sampling > limit)
        sampling = limit;
    if (sampling != reads.integer(tbl::PROCESSING, prop::FRAME_SAMPLING, rowId))
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, sampling, rowId);
}

// The format that follows the input (FormatFollowsInput.h), written into the
// rows it changes; the receiver's own report of the format is logged.
void RunAdjustments::followInputFormat() {
    if (!inputParsed || !reads.flag(tbl::PROCESSING, prop::FORMAT_AS_DETECTED, rowId))
        return;
    const char* encoder = channel == 1 ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
    const std::string encodingFormat = reads.text(tbl::PROCESSING, prop::ENCODING_FORMAT, rowId);
    const int frameSampling = reads.integer(tbl::PROCESSING, prop::FRAME_SAMPLING, rowId);
    std::string profile = reads.text(tbl::PROCESSING, prop::VIDEO_CODEC_PROFILE, rowId);
    const std::string gopStructure = reads.text(encoder, prop::GOP_STRUCTURE, "");
    pipeline::FormatChoice choice;
    if (!pipeline::chooseEncoding(channel, inputDetected, reads.text(tbl::PROCESSING, prop::STREAM_PROFILE, rowId),
                                  reads.text(tbl::PROCESSING, prop::FRAME_RATE_RATIO, rowId) == value::HALF_OF_INPUT,
                                  gopStructure, profile, choice)) {
        DBG(DBG_ERROR) << "configChannel: rowId=" << rowId << " src=" << source << " inputDetected=" << inputDetected
                       << " no valid encoding format, kept encodingFormat=" << encodingFormat;
        return;
    }
    DBG(DBG_INFO) << "configChannel: rowId=" << rowId << " src=" << source << " inputDetected=" << inputDetected
                  << " matched to enc res=" << choice.encodingFormat << " fr=" << choice.frameSampling;
    changed = choice.encodingFormat != encodingFormat || choice.frameSampling != frameSampling;
    if (choice.h264MainProfile)
        profile = "H.264 Main Profile";
    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_CODEC_PROFILE, profile, rowId);
    result |=
        ctx.store.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, choice.encodingFormat, rowId);
    result |= ctx.store.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, choice.frameSampling, rowId);
    std::string gop = gopStructure;
    if (channel == 1 && choice.gopStructure != gopStructure) {
        gop = choice.gopStructure;
        result |= ctx.store.initTextParam(ds::CHANNEL, encoder, prop::GOP_STRUCTURE, gop, "");
    }
    if (changed) {
        const int gopSize = pipeline::gopSizeRough(choice.frameSampling, gop);
        DBG(DBG_INFO) << "configChannel: format changed: gopSizeRough=" << gopSize;
        result |= ctx.store.initIntParam(ds::CHANNEL, encoder, prop::GOP_SIZE, gopSize, "");
    }
    if (const char* receiver = med::receiverOf(source)) {
        std::string format;
        result |= ctx.mediator.getTextParam(receiver, med::VIDEO_FORMAT, format);
        DBG(DBG_INFO) << "configChannel: rowId=" << rowId << " src=" << source << " Got val=" << format;
    }
}
