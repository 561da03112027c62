#pragma once

#include <cstdint>
#include <string>

#include "model/ChannelSnapshot.h"

// The transport-stream model of a channel's bitrates, computed from a
// ChannelSnapshot value alone (no holder, no peer): the video share with its
// per-frame and 188/184 packet overhead, the audio packetised in whole
// transport packets per audio frame, the KLV inputs and the fixed multiplex
// overhead; the per-channel floors and the encoder's margin. A pipeline run
// and an on-the-fly change both use it. Logs only.
namespace bitrate {

// totalBitrate 0 on entry: the total from videoBitrate; otherwise the video
// bitrate from the total. audioBitrate and klvBitrate are outputs.
void calcBitrates(const ChannelSnapshot& settings, int& totalBitrate, int& videoBitrate, float frameRate,
                  int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid);

// The floors a channel's video bitrate keeps: a video bitrate below the
// channel's minimum is raised to it and the total recomputed from it; the
// maximum is raised to the total that the minimum plus ten per cent needs.
// Logs under `operation`; the caller writes what was raised.
void applyBitrateFloors(const char* operation, const ChannelSnapshot& settings, float frameRate, bool pcrOnVideoPid,
                        int& video, int& total, int& max, bool& totalRaised, bool& maxRaised);

// The encoder's "Bitrate Margin" for a video bitrate and a maximum: 0
// without video; the channel's own margin with "CBR"; otherwise the headroom,
// in per cent, that the maximum leaves over the video bitrate.
int encoderMargin(const char* operation, const ChannelSnapshot& settings, int video, int max, float frameRate,
                  bool pcrOnVideoPid);

// The Capped VBR "Bitrate Margin" in per cent, clamped to the overhead's
// range with a log line under `op`; 0 when `video` is 0.
int32_t bitrateMargin(const char* op, const std::string& rowId, int64_t maxVideo, int64_t video);

}  // namespace bitrate
