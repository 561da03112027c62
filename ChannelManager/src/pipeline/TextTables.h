#pragma once

#include <string>
#include <vector>

// The value tables of the pipeline: every
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
