#pragma once

#include <string>
#include <vector>

#include "datacom/Fcodes.h"

namespace datacom {
class DataHolder;
}

// What the bitrate model of one channel works from, read once per operation
// (an on-the-fly change, a pipeline run) and then passed by value: the
// processing and transport settings, the first target's protocol, the audio
// streams and the KLV bitrates of the device manager.
struct ChannelSettings {
    // One audio stream as the model counts it.
    struct AudioStream {
        bool encode = false;   // "Encode Audio"
        int bitrate = 0;       // "Audio Bitrate"
        std::string format;    // "Audio Encoding Format"; read only for an encoded stream with a bitrate
        std::string sampling;  // "Audio Sampling" of the same row of "Audio Source Table"; likewise
    };

    std::string rowId;
    std::string rateControl, encodingFormat, ingestKlv, ingestKlv2;
    bool encodeVideo = false;
    int frameSampling = 0, totalBitrate = 0, maxBitrate = 0;
    int overheadPercent = 0;  // "MuxRate Overhead Percent"
    int videoPid = 0, pcrPid = 0;
    bool hasTarget = false;
    std::string protocol;  // the first target's, enabled or not; "" without a target
    std::vector<AudioStream> audio;
    int klvBitrate1 = 0, klvBitrate2 = 0;  // of "Ingest KLV" and "Ingest KLV2"; 0 for "None"

    bool pcrOnVideoPid() const { return pcrPid == videoPid; }
};

// Reads a channel's settings from "ChannelDataSet" and its KLV bitrates from
// the device manager (each asked once); the codes of the reads OR-ed, with
// "Unavailable" when the channel has no target.
datacom::Fcodes readChannelSettings(datacom::DataHolder& holder, const std::string& rowId, ChannelSettings& settings);

// The last step of readChannelSettings, for a caller that read the rest
// itself (a pipeline run): the target check and the KLV bitrates.
datacom::Fcodes finishChannelSettings(datacom::DataHolder& holder, ChannelSettings& settings);
