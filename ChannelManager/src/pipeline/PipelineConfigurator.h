#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "ports/ChannelContext.h"

class KlvBranches;
class PipelineOutput;

// The pipeline configuration of a channel: a run (configChannel) turns the
// channel's rows into the parameters of its mediator components: it adjusts
// the rows that follow the input, reads the channel once into a snapshot,
// runs the sections of PipelineSections.h over it in a fixed order and
// applies their output. Also the audio/video adjustments applied while a
// channel runs, the on-the-fly bitrate change and the read-back of what the
// encoder chose. May call the side actions (KLV follows a run) and the
// model below; never plays or stops a channel.
class PipelineConfigurator {
public:
    // `klv`: the KLV branches a run makes follow the settings it applied.
    PipelineConfigurator(ChannelContext& ctx, KlvBranches& klv) : ctx(ctx), klv(klv) {}

    // The channel's rows turned into the parameters of its mediator components.
    datacom::Fcodes configChannel(const std::string& rowId);
    // "Brightness", "Contrast", "Saturation", "Hue" of "ChannelAVSettings".
    // `pending`: apply the values being accepted (the store's pending
    // values, else the committed ones) instead of the committed values.
    datacom::Fcodes configAVSettings(const std::string& rowId, bool pending = false);
    // "Audio Gain" of an audio row ("H.264 Audio1" ...); `pending` as above.
    datacom::Fcodes configAudioGain(const std::string& audioRowId, bool pending = false);

    datacom::Fcodes changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate);

    // Copies the effective encoder and multiplexer values into the summary.
    datacom::Fcodes updateChannel(const std::string& rowId);
    // Reads back what the encoder chose by itself into the encoder settings.
    datacom::Fcodes updateAutomaticParams(const std::string& rowId);

private:
    // Carries out an output's actions in order; the codes of the failures
    // OR-ed, those of refused mediator writes when `writeFailures`.
    datacom::Fcodes apply(const PipelineOutput& out, bool writeFailures = true);
    // The mediator's assembly, with the error line of a failed read.
    datacom::Fcodes readAssembly(const char* operation, const std::string& rowId, std::string& assembly, bool& read);
    // The effective encoder and multiplexer values into the encoder settings.
    datacom::Fcodes writeBackEncoderSettings(const std::string& rowId);

    ChannelContext& ctx;
    KlvBranches& klv;
};
