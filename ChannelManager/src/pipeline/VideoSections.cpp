#include <cmath>
#include <cstdio>

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
#include "settings/IChannelEvents.h"
#include "settings/VideoFormatTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The video sections of configChannel: input, shared input, frame rate
// ratio, mixer, genlock, pre-processing, crop and video switch; and the
// picture adjustments of configAVSettings.

// Section 2.
void PipelineConfigurator::configInputFormat(PipelineRun& run) {
    run.source = run.text(tbl::SOURCE, prop::SOURCE, run.rowId);
    run.inputDetected = state::INPUT_NONE;
    run.result |= ctx.holder.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, run.inputDetected,
                                          run.source);
    if (run.inputDetected != state::INPUT_NONE && run.inputDetected != state::NO_SIGNAL) {
        run.inputParsed = std::sscanf(run.inputDetected.c_str(), "%dx%d%c @ %f", &run.inputWidth, &run.inputHeight,
                                      &run.inputScan, &run.inputRate) == 4;
        DBG(DBG_INFO) << "configChannel: rowId=" << run.rowId << " src=" << run.source
                      << " inputDetected=" << run.inputDetected << " w=" << run.inputWidth << " h=" << run.inputHeight
                      << " fr=" << run.inputRate;
    }
    run.text(tbl::SOURCE, prop::INPUT_DETECTION, run.rowId);
    // The summary shows the input resolution the source table holds.
    run.initText(tbl::CHANNELS, prop::INPUT_RESOLUTION, run.rowId,
                 run.text(tbl::SOURCE, prop::INPUT_RESOLUTION, run.rowId, state::INPUT_NONE));
}

// Section 3. Both channels may encode the one SDI input. When they do, the
// embedded audio of that input is configured once, on the HEVC rows, and
// mirrored into the H.264 rows whose source is the same embedded audio, so
// the two channels never ask different things of one de-embedder. A playing
// other channel is told that its configuration changed.
void PipelineConfigurator::configSharedInput(PipelineRun& run) {
    const std::string other = row::otherChannel(run.channel);
    const std::string otherSource = run.text(tbl::SOURCE, prop::SOURCE, other);
    for (const char* r : {row::H264, row::HEVC}) {
        run.flag(tbl::SOURCE, prop::FORCE_COLOR_BAR, r);
        run.flag(tbl::PROCESSING, prop::VIDEO_FILTER_ENABLED, r);
        run.integer(tbl::PROCESSING, prop::VIDEO_FILTER_STRENGTH, r);
        run.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, r);
    }
    run.frameRateRatio = run.text(tbl::PROCESSING, prop::FRAME_RATE_RATIO, run.rowId);
    const bool shared = run.source == value::SRC_HD_SDI && otherSource == value::SRC_HD_SDI;
    if (!shared)
        return;
    for (const char* n : {"1", "2"}) {
        const std::string from = std::string(row::HEVC) + " Audio" + n;
        const std::string to = std::string(row::H264) + " Audio" + n;
        if (run.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, from) != value::AUDIO_SDI_EMBEDDED ||
            run.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, to) != value::AUDIO_SDI_EMBEDDED)
            continue;
        run.initBool(tbl::AUDIO_SOURCE, prop::ENABLED, to, run.flag(tbl::AUDIO_SOURCE, prop::ENABLED, from));
        for (const char* p : {prop::AUDIO_SOURCE, prop::AUDIO_INPUT_FORMAT, prop::AUDIO_TRACK, prop::AUDIO_SAMPLING})
            run.initText(tbl::AUDIO_SOURCE, p, to, run.text(tbl::AUDIO_SOURCE, p, from));
        run.initInt(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, to, run.integer(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, from));
        run.initText(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, to,
                     run.text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, from));
    }
    const std::string otherState = run.text(tbl::CHANNELS, prop::STATE, other);
    if (otherState == state::PLAYING || otherState == state::PLAYED)
        ctx.events.sendEvent(ev::CHANNEL_CONFIGURED, other, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
}

// Section 4, for both channels: the encoders of a shared input must agree
// with their rows. "Input Full" / "Input 1/2" makes the encoder code every
// picture of its input, or every second one; "to match" means the channel's
// rows then say that rate, the one the bitrate model (its per-frame term)
// and the summary ("Resolution") assume: with a detected input, "Frame
// Sampling" becomes the input's rate, halved for "Half of Input" (rounded,
// within what the input can feed). With "Format as Detected" set, section 8
// chooses the format and this same ratio together (the encoder's own limit
// may lower the rate there), so "Format as Detected" keeps the operator's
// choice and is applied with the ratio rather than rewritten.
void PipelineConfigurator::configFrameRateRatio(PipelineRun& run) {
    for (const char* r : {row::H264, row::HEVC}) {
        const bool half = run.text(tbl::PROCESSING, prop::FRAME_RATE_RATIO, r) == "Half of Input";
        run.put(med::VIDEO_ENCODER[channelIndex(r)], prop::FRAME_RATE_RATIO, half ? "Input 1/2" : "Input Full");
    }
    if (!run.inputParsed || run.inputRate <= 0 || run.flag(tbl::PROCESSING, prop::FORMAT_AS_DETECTED, run.rowId))
        return;
    const bool half = run.frameRateRatio == "Half of Input";
    int sampling = static_cast<int>(std::lround(half ? run.inputRate / 2 : run.inputRate));
    int limit = 60;
    videoformat::maxInputFrameRate(run.inputDetected, limit);
    if (sampling > limit)
        sampling = limit;
    if (sampling != run.integer(tbl::PROCESSING, prop::FRAME_SAMPLING, run.rowId))
        run.initInt(tbl::PROCESSING, prop::FRAME_SAMPLING, run.rowId, sampling);
}

// Section 5.
void PipelineConfigurator::configVideoInput(PipelineRun& run) {
    const char* receiver = med::receiverOf(run.source);
    if (!receiver) {
        run.unknown("source", run.source);
        return;
    }
    run.put(run.comp("VIDEO_MIXER_"), "Input", receiver);
}

// Section 9. Without a signal the genlock keeps its default.
void PipelineConfigurator::configGenlock(PipelineRun& run) {
    if (!run.inputParsed)
        return;
    std::string genlock;
    if (!videoformat::defaultGenlock(run.encodingFormat, genlock)) {
        run.unknown("Encoding Format", run.encodingFormat);
        return;
    }
    run.put(run.comp("GS4911B_"), "Default Video Format", genlock);
}

// Section 13. Closed captions travel in line 21 (CEA-608) of NTSC standard
// definition and as CEA-708 in the ancillary data of digital SDI; the
// computer inputs carry none.
void PipelineConfigurator::configVideoProcessing(PipelineRun& run) {
    const bool filter = run.flag(tbl::PROCESSING, prop::VIDEO_FILTER_ENABLED, run.rowId);
    const int strength = run.integer(tbl::PROCESSING, prop::VIDEO_FILTER_STRENGTH, run.rowId);
    const std::string encoder = med::VIDEO_ENCODER[run.channel];
    if (run.channel == 0) {
        run.put("VIDEO_FILTER_CH0", "Bypass", !filter);
        run.put("VIDEO_FILTER_CH0", "Strength", strength);
    } else {
        const bool ull = run.ultraLowLatency();
        run.put("FB_MUX_CH1", "Input", ull ? "LOW_LATENCY_VIDEO_BUFFER_CH1" : "FRAMEBUFFER_CH1");
        run.put("SYNCGEN_CH1", "External Sync", ull);
        run.put(encoder, "Enable Filter", filter);
        run.put(encoder, "Filter Force", strength);
    }
    const bool ntscSd = run.inputDetected == "720x480i @ 29.97";
    std::string caption = "Off";
    if (run.source == value::SRC_COMPOSITE)
        caption = ntscSd ? "CEA-608" : "Off";
    else if (run.source == value::SRC_HD_SDI)
        caption = ntscSd ? "CEA-608" : "CEA-708";
    if (run.channel == 1 && !run.closedCaption)
        caption = "Off";
    run.put(encoder, "Closed Caption", caption);
}

// Section 18: the capture crops channel 0 only.
void PipelineConfigurator::configCrop(PipelineRun& run) {
    if (run.channel != 0)
        return;
    const char* capture = "Video Full Capture CH0";
    run.put(capture, prop::CROP_ENABLE, run.cropEnable);
    run.put(capture, prop::CROP_X, run.cropX);
    run.put(capture, prop::CROP_Y, run.cropY);
    run.put(capture, prop::CROP_WIDTH, run.cropWidth);
    run.put(capture, prop::CROP_HEIGHT, run.cropHeight);
}

// Section 21.
void PipelineConfigurator::configVideoSwitch(PipelineRun& run) {
    run.put(run.comp("Video Switch "), "Enable", run.encodeVideo);
}

// The picture adjustments of the channel, applied by its own video mixer so
// that two channels on one input keep their own settings. Called by
// configChannel and, with the values being accepted, when the settings are
// accepted (before the commit).
Fcodes PipelineConfigurator::configAVSettings(const std::string& rowId, bool pending) {
    if (!isChannelRow(rowId))
        return FC_BAD_VALUE;
    PipelineRun run(ctx.holder, rowId, "configAVSettings");
    for (const char* p : {prop::BRIGHTNESS, prop::CONTRAST, prop::SATURATION, prop::HUE}) {
        int value = 0;
        const Fcodes read = pending ? ctx.holder.getNewIntParam(ds::CHANNEL, tbl::AV_SETTINGS, p, value, rowId)
                                    : ctx.holder.getIntParam(ds::CHANNEL, tbl::AV_SETTINGS, p, value, rowId);
        run.result |= read;
        if (isOk(read))
            run.put(run.comp("VIDEO_MIXER_"), p, value);
    }
    return run.result;
}
