#pragma once

#include <string>
#include <vector>

#include "datacom/Fcodes.h"

class ChannelStore;

// One channel as an operation reads it, once: its processing, encoder and
// transport settings, its targets and audio rows, what the device manager
// reports of its KLV inputs, and (for a pipeline run) what the run read of
// the mediator before it. A pipeline run, the bitrate model and the
// on-the-fly change all work from this value and read nothing else.
struct ChannelSnapshot {
    // One audio stream: a row of "Audio Source Table" with the row of the
    // same name in "Audio Processing", which extends it.
    struct Audio {
        std::string id;
        bool enabled = false;
        bool encodeSetting = false;  // "Encode Audio" as set, enabled or not
        bool encode = false;         // encoded: set and enabled
        std::string source, track, sampling, format, channelMode;
        int bitrate = 0, pid = 0, gain = 0;
    };
    // One target. The protocol's own settings are read for an enabled target
    // only: nothing is sent for a disabled one.
    struct Target {
        std::string id;
        bool enabled = false;
        std::string protocol, name, interface, address, shaping;
        int port = 0, ttl = 0, packetSize = 0;
        // "FEC Settings"
        std::string fecMode;
        int fecColumns = 0, fecRows = 0, fecPort1d = 0, fecPort2d = 0;
        // "Zixi Feeder Settings"
        bool zixiDynamic = false, zixiFailover = false;
        int zixiMinPercent = 0, zixiMaxPercent = 0, zixiMinBitrate = 0, zixiMaxBitrate = 0, zixiLatency = 0;
        int zixiFailoverPort = 0;
        std::string zixiStreamId, zixiPassword, zixiFailoverAddress;
        // "SRT Settings"
        std::string srtMode, srtAesMode, srtAesKey, srtStreamId;
        bool srtFec = false;
        int srtLatency = 0, srtColumns = 0, srtRows = 0;
        // "RTMP Settings"
        std::string rtmpUrl, rtmpStreamName, rtmpUsername, rtmpPassword;
    };

    std::string rowId;
    int channel = 0;     // 0 = "H.264", 1 = "HEVC"
    std::string suffix;  // "CH0" / "CH1"

    // "ChannelsTable": the status at the start of the run; state and fcode.
    std::string status, state;
    int fcode = 0;

    // The source and its detected input ("None" without a signal).
    std::string source, inputDetected;
    std::string inputResolution;  // as the source table holds it
    bool inputParsed = false;
    int inputWidth = 0, inputHeight = 0;
    char inputScan = 'x';
    float inputRate = 0;
    bool forceColorBar = false, sdiOutPreview = false;

    // "ChannelProcessingTable".
    std::string streamProfile, rateControl, encodingFormat, videoCodecProfile, ingestKlv, ingestKlv2;
    std::string frameRateRatio;
    bool halfRate[2] = {false, false};  // "Half of Input" of the H.264 and HEVC rows
    bool encodeVideo = true, formatAsDetected = false, cropEnable = false, lowLatency = false, encryption = false;
    bool videoFilter = false;
    int videoFilterStrength = 0;
    int frameSampling = 0, totalBitrate = 0, maxBitrate = 0;
    // Encoder settings of "H.264 Encoder" / "HEVC Encoder" (instance "").
    std::string aspectRatio, level, gopStructure, pictureCoding, vlcMode, errorResilience;
    int gopSize = 0, qpBase = 0, qpRangeMin = 0, qpMax = 0, initialDelay = 0, maximumDelay = 0;
    int cropX = 0, cropY = 0, cropWidth = 0, cropHeight = 0;
    bool closedGop = false, auDelimiters = false, timestamps = false, latencyMeasurement = false;
    bool spsPpsPerPicture = false, autoAdapt = false, fixedGopSize = false, closedCaption = false;
    // "Transport Stream".
    int pmtPid = 0, videoPid = 0, pcrPid = 0, klvPid = 0, klv2Pid = 0, klvDecimation = 0, rtspPort = 0;
    int overheadPercent = 0;  // "MuxRate Overhead Percent"
    bool dvbMode = false;
    std::string aesMode, aesKey;

    std::vector<Audio> audio;     // in row order (stream 0 = "...Audio1")
    std::vector<Target> targets;  // in row order (target 0 uses the senders without suffix)

    // The other channel's rows that decide whether a shared component is free.
    bool otherSdiOutPreview = false;
    std::string otherIngestKlv, otherIngestKlv2;

    // The device manager: the KLV bitrates of "Ingest KLV" and "Ingest KLV2"
    // (0 for "None"); a run also reads the serial input's "Input Data Format"
    // and the IP input's "Encapsulation" when an ingest names them.
    int klvBitrate1 = 0, klvBitrate2 = 0;
    std::string klvSerialFormat, klvIpEncapsulation;

    // The mediator's assembly, as the run read it before the snapshot.
    std::string assembly;
    bool assemblyRead = false;
    // The run's adjustments changed the encoding format or the frame sampling.
    bool formatChanged = false;

    bool ultraLowLatency() const;
    bool pcrOnVideoPid() const { return pcrPid == videoPid; }
    bool hasTarget() const { return !targets.empty(); }
    // The first target's protocol, enabled or not; "" without a target.
    std::string protocol() const { return targets.empty() ? std::string() : targets.front().protocol; }
    // True when a stream of the channel is encoded.
    bool audioEncoded(size_t stream) const { return stream < audio.size() && audio[stream].encode; }
};

// What a pipeline run read before its snapshot: the assembly and whether its
// adjustments changed the format. A run also reads the device manager's KLV
// texts; an on-the-fly change passes none and does not.
struct RunPrelude {
    std::string assembly;
    bool assemblyRead = false;
    bool formatChanged = false;
};

// Reads one channel's rows from "ChannelDataSet" and its KLV bitrates from
// the device manager (each asked once); the codes of the reads OR-ed, with
// "Unavailable" when the channel has no target. `prelude`: read for a run.
datacom::Fcodes readChannelSnapshot(ChannelStore& store, const std::string& rowId, ChannelSnapshot& snapshot,
                                    const RunPrelude* prelude = nullptr);
