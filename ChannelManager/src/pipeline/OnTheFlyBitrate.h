#pragma once

#include "model/ChannelSnapshot.h"
#include "pipeline/PipelineOutput.h"

// A new total and maximum for a running encoder, from the channel's
// snapshot: the bitrate model's video share and floors, then the encoder's
// "Bitrate", its margin (and, on HEVC, the order to take them), and the
// bitrates stored back into "ChannelProcessingTable". Under Capped VBR the
// margin becomes the multiplexer's overhead; plain VBR keeps its own. The
// settled total and maximum end in out.bitrates.
void bitrateChange(const ChannelSnapshot& s, int totalBitrate, int maxBitrate, PipelineOutput& out);
