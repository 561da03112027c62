
#include "datacom/DbgPrintClient.h"
#include "model/VideoFormatTables.h"
#include "pipeline/PipelineSections.h"
#include "pipeline/TextTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The video sections of a pipeline run: input, frame rate ratio, mixer,
// genlock, pre-processing, crop and video switch.

// Section 2: the input the run found, in the log and in the summary.
void configInputFormat(const ChannelSnapshot& s, PipelineOutput& out) {
    if (s.inputDetected != state::INPUT_NONE && s.inputDetected != state::NO_SIGNAL)
        DBG(DBG_INFO) << "configChannel: rowId=" << s.rowId << " src=" << s.source
                      << " inputDetected=" << s.inputDetected << " w=" << s.inputWidth << " h=" << s.inputHeight
                      << " fr=" << s.inputRate;
    // The summary shows the input resolution the source table holds.
    out.store(tbl::CHANNELS, prop::INPUT_RESOLUTION, s.rowId, s.inputResolution);
}

// Section 4, for both channels: the encoders of a shared input must agree
// with their rows. "Input Full" / "Input 1/2" makes the encoder code every
// picture of its input, or every second one. The rows' "Frame Sampling" was
// made to match before the snapshot (RunAdjustments).
void configFrameRateRatio(const ChannelSnapshot& s, PipelineOutput& out) {
    for (int channel : {0, 1})
        out.put(med::VIDEO_ENCODER[channel], prop::FRAME_RATE_RATIO,
                s.halfRate[channel] ? med::RATIO_HALF : med::RATIO_FULL);
}

// Section 5.
void configVideoInput(const ChannelSnapshot& s, PipelineOutput& out) {
    const char* receiver = med::receiverOf(s.source);
    if (!receiver) {
        out.unknown("source", s.source);
        return;
    }
    out.put(out.comp(med::VIDEO_MIXER), med::PARAM_INPUT, receiver);
}

// Section 9. Without a signal the genlock keeps its default.
void configGenlock(const ChannelSnapshot& s, PipelineOutput& out) {
    if (!s.inputParsed)
        return;
    std::string genlock;
    if (!videoformat::defaultGenlock(s.encodingFormat, genlock)) {
        out.unknown("Encoding Format", s.encodingFormat);
        return;
    }
    out.put(out.comp(med::GS4911B), med::PARAM_DEFAULT_VIDEO_FORMAT, genlock);
}

// Section 13. Closed captions travel in line 21 (CEA-608) of NTSC standard
// definition and as CEA-708 in the ancillary data of digital SDI; the
// computer inputs carry none.
void configVideoProcessing(const ChannelSnapshot& s, PipelineOutput& out) {
    const bool filter = s.videoFilter;
    const int strength = s.videoFilterStrength;
    const std::string encoder = med::VIDEO_ENCODER[s.channel];
    if (s.channel == 0) {
        out.put(med::VIDEO_FILTER_CH0, med::PARAM_BYPASS, !filter);
        out.put(med::VIDEO_FILTER_CH0, med::PARAM_STRENGTH, strength);
    } else {
        const bool ull = s.ultraLowLatency();
        out.put(med::FB_MUX_CH1, med::PARAM_INPUT, ull ? med::LOW_LATENCY_VIDEO_BUFFER_CH1 : med::FRAMEBUFFER_CH1);
        out.put(med::SYNCGEN_CH1, med::PARAM_EXTERNAL_SYNC, ull);
        out.put(encoder, med::PARAM_ENABLE_FILTER, filter);
        out.put(encoder, med::PARAM_FILTER_FORCE, strength);
    }
    const bool ntscSd = s.inputDetected == "720x480i @ 29.97";
    std::string caption = "Off";
    if (s.source == value::SRC_COMPOSITE)
        caption = ntscSd ? "CEA-608" : "Off";
    else if (s.source == value::SRC_HD_SDI)
        caption = ntscSd ? "CEA-608" : "CEA-708";
    if (s.channel == 1 && !s.closedCaption)
        caption = "Off";
    out.put(encoder, med::PARAM_CLOSED_CAPTION, caption);
}

// Section 18: the capture crops channel 0 only.
void configCrop(const ChannelSnapshot& s, PipelineOutput& out) {
    if (s.channel != 0)
        return;
    const char* capture = med::VIDEO_FULL_CAPTURE_CH0;
    out.put(capture, prop::CROP_ENABLE, s.cropEnable);
    out.put(capture, prop::CROP_X, s.cropX);
    out.put(capture, prop::CROP_Y, s.cropY);
    out.put(capture, prop::CROP_WIDTH, s.cropWidth);
    out.put(capture, prop::CROP_HEIGHT, s.cropHeight);
}

// Section 21.
void configVideoSwitch(const ChannelSnapshot& s, PipelineOutput& out) {
    out.put(out.comp(med::VIDEO_SWITCH), med::PARAM_ENABLE, s.encodeVideo);
}
