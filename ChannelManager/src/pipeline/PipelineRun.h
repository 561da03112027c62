#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "settings/ChannelSettings.h"

namespace datacom {
class DataHolder;
}

// The working state of one configChannel run, shared by its sections
// (pipeline/): the channel, the mediator's assembly (read
// once per run), the settings read in the early sections, and the result that
// every read and write is OR-ed into. Owned by configChannel's stack frame.
struct PipelineRun {
    // `operation` names the operation in the log lines ("configChannel").
    PipelineRun(datacom::DataHolder& holder, const std::string& rowId, const char* operation = "configChannel");
    // Reads the mediator's assembly (once per run).
    void readAssembly();

    // ---- Dataset reads (ChannelDataSet unless stated); failures OR-ed in ----
    std::string text(const char* component, const char* property, const std::string& instance,
                     const std::string& fallback = "");
    int integer(const char* component, const char* property, const std::string& instance, int fallback = 0);
    bool flag(const char* component, const char* property, const std::string& instance, bool fallback = false);
    // Summary and state writes (committed, as the channel's own fields are).
    void initText(const char* component, const char* property, const std::string& instance, const std::string& v);
    void initInt(const char* component, const char* property, const std::string& instance, int v);
    void initBool(const char* component, const char* property, const std::string& instance, bool v);

    // ---- Mediator writes ----
    // A failed write logs "configChannel: rowId=... Error: val=... param=...
    // comp=..." (with " assembly=" for an assembly-checked component) and the
    // run goes on. An assembly-checked component that the assembly does not
    // hold is skipped: that build of the appliance has no such hardware.
    void put(const std::string& component, const std::string& parameter, const std::string& value);
    void put(const std::string& component, const std::string& parameter, int value);
    void put(const std::string& component, const std::string& parameter, bool value) {
        put(component, parameter, value ? 1 : 0);
    }
    void put(const std::string& component, const std::string& parameter, const char* value) {
        put(component, parameter, std::string(value));
    }
    // True when `component` may be written: always for the components every
    // assembly holds, otherwise when the assembly names it.
    bool present(const std::string& component) const;
    // The one write path of both put forms: the assembly check, then `send`,
    // then the failure line with the value as `shown`.
    void write(const std::string& component, const std::string& parameter, const std::string& shown,
               const std::function<datacom::Fcodes()>& send);
    // Writes "Enable" = true and remembers the component as used by this run
    // (configUnusedComponents turns off the channel's others).
    void enable(const std::string& component);
    // Logs "configChannel: rowId=<row> Unknown <what>=<value>".
    void unknown(const char* what, const std::string& value) const;

    // The per-channel component name: "<base>CH0" / "<base>CH1".
    std::string comp(const std::string& base) const { return base + suffix; }

    datacom::DataHolder& holder;
    const std::string rowId;
    const char* const operation;
    const int channel;         // 0 = "H.264", 1 = "HEVC"
    const std::string suffix;  // "CH0" / "CH1"
    datacom::Fcodes result = datacom::FC_OK;
    std::string status;  // the channel's "Status" at the start of the run
    std::string assembly;
    bool assemblyRead = false;
    std::set<std::string> enabled;  // components this run enabled

    // Input (sections 2, 8).
    std::string source;
    std::string inputDetected;  // "None" without a signal
    bool inputParsed = false;
    int inputWidth = 0, inputHeight = 0;
    char inputScan = 'x';
    float inputRate = 0;
    bool formatChanged = false;

    // Processing settings (section 7).
    std::string streamProfile, rateControl, encodingFormat, videoCodecProfile, ingestKlv, ingestKlv2;
    std::string frameRateRatio;
    bool encodeVideo = true, formatAsDetected = false, cropEnable = false, lowLatency = false, encryption = false;
    int frameSampling = 0, totalBitrate = 0, maxBitrate = 0, videoBitrate = 0;
    // Encoder settings of "H.264 Encoder" / "HEVC Encoder" (instance "").
    std::string aspectRatio, level, gopStructure, pictureCoding, vlcMode, errorResilience;
    int gopSize = 0, qpBase = 0, qpRangeMin = 0, qpMax = 0, initialDelay = 0, maximumDelay = 0;
    int cropX = 0, cropY = 0, cropWidth = 0, cropHeight = 0;
    bool closedGop = false, auDelimiters = false, timestamps = false, latencyMeasurement = false;
    bool spsPpsPerPicture = false, autoAdapt = false, fixedGopSize = false, closedCaption = false;
    // "Transport Stream".
    int pmtPid = 0, videoPid = 0, pcrPid = 0, klvPid = 0, klv2Pid = 0, klvDecimation = 0, rtspPort = 0;
    int muxOverheadPercent = 0;
    bool dvbMode = false;
    std::string aesMode, aesKey;

    // The channel's audio streams, in row order (stream 0 = "...Audio1").
    struct Audio {
        std::string id;
        bool enabled = false, encode = false;
        bool encodeSetting = false;  // "Encode Audio" as set, enabled or not
        std::string source, track, sampling, format, channelMode;
        int bitrate = 0, pid = 0, gain = 0;
    };
    std::vector<Audio> audio;
    // The channel's targets, in row order (target 0 uses the senders without
    // suffix, target 1 those with " 2").
    struct Target {
        std::string id;
        bool enabled = false;
        std::string protocol, name, interface, address, shaping;
        int port = 0, ttl = 0, packetSize = 0;
    };
    std::vector<Target> targets;
    // What the bitrate model works from (section 15), made of the values above
    // and used again by section 16.
    ChannelSettings bitrates;

    bool ultraLowLatency() const;
    // The bitrate settings as this run read them: its processing and
    // transport values, the first target's protocol, its audio rows (those of
    // "Audio Source Table", which "Audio Processing" extends row by row). The
    // KLV bitrates are left to finishChannelSettings.
    ChannelSettings bitrateSettings() const;
    // True when a stream of the channel is encoded.
    bool audioEncoded(size_t stream) const { return stream < audio.size() && audio[stream].encode; }
};

// The value tables of the pipeline (pipeline/TextTables.cpp): every
// configuration text and the mediator text it becomes, in one place.
namespace pipeline {
struct TextPair {
    const char* from;
    const char* to;
};
using TextTable = std::vector<TextPair>;
// The mapped text, or nullptr when `from` is not in the table.
const char* lookup(const TextTable& table, const std::string& from);

extern const TextTable AUDIO_INPUT;                  // section 6, non-embedded sources
extern const TextTable AUDIO_SAMPLE_RATE;            // section 10
extern const TextTable SDI_TX_AUDIO;                 // section 12, non-embedded sources
extern const TextTable ASPECT_RATIO;                 // section 14: "W:H" for custom ratios
extern const TextTable H264_PROFILE;                 // section 17
extern const TextTable ENTROPY_CODING;               // section 17
extern const TextTable H264_GOP;                     // section 17
extern const TextTable PICTURE_CODING;               // section 17
extern const TextTable HEVC_CHROMA;                  // section 17: profile -> chroma format
extern const TextTable HEVC_BIT_DEPTH;               // section 17: profile -> bit depth
extern const TextTable HEVC_GOP_SUB_SIZE;            // section 17: GOP -> sub-GOP size
extern const TextTable ERROR_RESILIENCE;             // section 17
extern const TextTable AUDIO_OBJECT_TYPE;            // sections 19, 20
extern const TextTable AUDIO_CODEC;                  // section 20
extern const TextTable KLV_SERIAL_FILTER;            // section 22: "Input Data Format"
extern const TextTable KLV_IP_FILTER;                // section 22: "Encapsulation"
extern const TextTable AES_CIPHER;                   // section 24
extern const TextTable MUX_RATE_CONTROL;             // section 25
extern const TextTable UDP_STREAM_FORMAT;            // section 26
extern const TextTable MULTICAST_INTERFACE;          // section 26
extern const TextTable TRAFFIC_SHAPING;              // section 26
extern const TextTable SRT_RECEIVER_MODE;            // section 26
extern const TextTable SRT_AES_MODE;                 // section 26
extern const TextTable ENCODER_RATE_CONTROL;         // section 16: configured -> encoder mode
extern const std::vector<const char*> LEVELS;        // section 14: besides "Auto"
extern const std::vector<const char*> TS_PROTOCOLS;  // protocols that carry a transport stream
// Components that not every assembly holds (name prefixes); the rest are
// written without looking.
extern const std::vector<const char*> ASSEMBLY_CHECKED;
}  // namespace pipeline

// The encoding format a channel with "Format as Detected" takes from its
// input (pipeline/FormatFollowsInput.cpp). Pure, so its rules are pinned by
// a table of their own.
namespace pipeline {
struct FormatChoice {
    std::string encodingFormat;    // "1920x1080p"
    int frameSampling = 0;         // frames per second
    std::string gopStructure;      // the GOP to use (unchanged unless a rule says)
    bool h264MainProfile = false;  // an H.264 profile that must become "H.264 Main Profile"
};
// `input` is a detected format text ("1920x1080p @ 59.94"); false when it
// does not parse or no encoding format of the matrix can be made from it.
// `channel` 0 = H.264, 1 = HEVC.
bool chooseEncoding(int channel, const std::string& input, const std::string& streamProfile, bool halfRate,
                    const std::string& gopStructure, const std::string& h264Profile, FormatChoice& choice);
// About one second of pictures, ending on a whole sub-GOP; 1 for "I".
int gopSizeRough(int frameSampling, const std::string& gopStructure);
}  // namespace pipeline

// The values of the multiplexer, targets and summary that the text leaves to
// the appliance (pipeline/MuxSection.cpp, TargetSenders.cpp,
// SummarySection.cpp); pure, each pinned by a table of its own.
namespace pipeline {
// "Output Granularity": TS packets per datagram.
int outputGranularity(int udpPacketSize, bool ultraLowLatency);
// HTB overhead in per cent of the stream: IP/UDP (and RTP) headers of each
// datagram plus the FEC packets, rounded up.
int htbOverheadPercent(const std::string& protocol, int packetSize, const std::string& fecMode, int columns, int rows);
// Zixi "Adjustable bitrate min"/"max": the configured percentages of the
// channel's total, kept within the configured absolute limits.
void zixiBitrateLimits(int totalBitrate, int minPercent, int maxPercent, int minBitrate, int maxBitrate, int& low,
                       int& high);
// The SRT "Packet Filter" text; "" without FEC.
std::string srtPacketFilter(bool fec, int columns, int rows);
// "Live URIs" of the RTSP server: 1 = video, 2 and 3 = the encoded audio streams.
std::string liveUris(bool audio1, bool audio2);
// The summary's "Target Address" of one target.
std::string targetAddressText(const std::string& protocol, const std::string& address, int port,
                              const std::string& srtMode, const std::string& rtmpUrl);
// The summary's "FEC" of one target.
std::string fecText(const std::string& protocol, const std::string& fecMode, bool srtFec, int srtRows);
}  // namespace pipeline
