#pragma once

#include <cstddef>
#include <string>

#include "datacom/Fcodes.h"
#include "settings/ChannelContext.h"
#include "settings/ChannelRows.h"
#include "side/SideActions.h"

struct PipelineRun;

// The pipeline configuration of a channel: a run (configChannel) turns the
// channel's rows into the parameters of its mediator components, section by
// section, in a fixed order; the audio/video adjustments applied while a
// channel runs; the on-the-fly bitrate change; and the read-back of what the
// encoder chose. Bitrates come from the model in settings/, computed from the
// channel's settings as each operation read them once. May call the side actions (KLV follows a run) and the
// settings below; never plays or stops a channel.
class PipelineConfigurator {
public:
    explicit PipelineConfigurator(ChannelContext& ctx) : ctx(ctx), rows(ctx.holder), side(ctx) {}

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
    // ---- configChannel's sections, in the order they run ----
    // pipeline/PipelineRun.cpp
    void configPrologue(PipelineRun& run);          // 1: status, assembly, targets
    void readAudioRows(PipelineRun& run);           // after 3: the audio rows as it left them
    void readProcessingSettings(PipelineRun& run);  // 7
    // pipeline/VideoSections.cpp
    void configInputFormat(PipelineRun& run);      // 2
    void configSharedInput(PipelineRun& run);      // 3
    void configFrameRateRatio(PipelineRun& run);   // 4
    void configVideoInput(PipelineRun& run);       // 5
    void configGenlock(PipelineRun& run);          // 9
    void configVideoProcessing(PipelineRun& run);  // 13
    void configCrop(PipelineRun& run);             // 18
    void configVideoSwitch(PipelineRun& run);      // 21
    // pipeline/FormatFollowsInput.cpp
    void configFormatChange(PipelineRun& run);  // 8
    // pipeline/AudioSections.cpp
    void configAudioInput(PipelineRun& run);       // 6
    void configAudioSampleRate(PipelineRun& run);  // 10
    void configTestPatterns(PipelineRun& run);     // 11
    void configSdiOutput(PipelineRun& run);        // 12
    void configAudioEncoding(PipelineRun& run);    // 19 (HEVC) and 20 (H.264)
    // pipeline/EncoderSections.cpp
    void configEncodingResolution(PipelineRun& run);  // 14
    void configBitrates(PipelineRun& run);            // 15
    void configRateControl(PipelineRun& run);         // 16
    void configGopAndCoding(PipelineRun& run);        // 17
    void configCodingH264(PipelineRun& run);
    void configCodingHevc(PipelineRun& run);
    // pipeline/KlvSections.cpp
    void configKlvIngest(PipelineRun& run);   // 22
    void configKlvOverSdi(PipelineRun& run);  // 23
    void configEncryption(PipelineRun& run);  // 24
    // pipeline/MuxSection.cpp
    void configMultiplexer(PipelineRun& run);  // 25
    // pipeline/TargetSenders.cpp
    void configTargets(PipelineRun& run);  // 26
    void configUdpSender(PipelineRun& run, size_t target);
    void configRtspServer(PipelineRun& run, size_t target);
    void configZixiFeeder(PipelineRun& run, size_t target);
    void configSrtSender(PipelineRun& run, size_t target);
    void configRtmpServer(PipelineRun& run, size_t target);
    // pipeline/UnusedComponents.cpp
    void configUnusedComponents(PipelineRun& run);  // after 26: what this run does not use, off
    // pipeline/SummarySection.cpp
    void configSummary(PipelineRun& run);  // 27

    // ---- The on-the-fly change (pipeline/OnTheFlyBitrate.cpp) ----
    void setEncoderOnTheFly(const std::string& rowId, const std::string& component, const std::string& parameter,
                            int value);

    // ---- Read-back (pipeline/EncoderReadback.cpp) ----
    // The effective encoder and multiplexer values into the encoder settings.
    datacom::Fcodes writeBackEncoderSettings(const std::string& rowId);

    ChannelContext& ctx;
    ChannelRows rows;
    SideActions side;
};
