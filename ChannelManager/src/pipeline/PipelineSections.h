#pragma once

#include "model/ChannelSnapshot.h"
#include "pipeline/PipelineOutput.h"

// The sections of a pipeline run. Each turns the channel's snapshot into
// the writes it decides, appended to the run's output; none reads or writes
// anything else, so each can be run on a snapshot made in memory. The order
// they run in is the configurator's table.
void configInputFormat(const ChannelSnapshot& s, PipelineOutput& out);
void configFrameRateRatio(const ChannelSnapshot& s, PipelineOutput& out);
void configVideoInput(const ChannelSnapshot& s, PipelineOutput& out);
void configAudioInput(const ChannelSnapshot& s, PipelineOutput& out);
void configGenlock(const ChannelSnapshot& s, PipelineOutput& out);
void configAudioSampleRate(const ChannelSnapshot& s, PipelineOutput& out);
void configTestPatterns(const ChannelSnapshot& s, PipelineOutput& out);
void configSdiOutput(const ChannelSnapshot& s, PipelineOutput& out);
void configVideoProcessing(const ChannelSnapshot& s, PipelineOutput& out);
void configEncodingResolution(const ChannelSnapshot& s, PipelineOutput& out);
// Settles the run's bitrates (out.bitrates) that the later sections use.
void configBitrates(const ChannelSnapshot& s, PipelineOutput& out);
void configRateControl(const ChannelSnapshot& s, PipelineOutput& out);
void configGopAndCoding(const ChannelSnapshot& s, PipelineOutput& out);
void configCrop(const ChannelSnapshot& s, PipelineOutput& out);
void configAudioEncoding(const ChannelSnapshot& s, PipelineOutput& out);
void configVideoSwitch(const ChannelSnapshot& s, PipelineOutput& out);
void configKlvIngest(const ChannelSnapshot& s, PipelineOutput& out);
void configKlvOverSdi(const ChannelSnapshot& s, PipelineOutput& out);
void configEncryption(const ChannelSnapshot& s, PipelineOutput& out);
void configMultiplexer(const ChannelSnapshot& s, PipelineOutput& out);
void configTargets(const ChannelSnapshot& s, PipelineOutput& out);
void configUnusedComponents(const ChannelSnapshot& s, PipelineOutput& out);
void configSummary(const ChannelSnapshot& s, PipelineOutput& out);
