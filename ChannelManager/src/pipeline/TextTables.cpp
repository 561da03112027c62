#include "pipeline/TextTables.h"

// Every configuration text of a channel and the mediator text it becomes.
// A text missing from its table is logged as " Unknown ...=" by the section
// that looks it up, and the parameter is left as it was.
namespace pipeline {

const char* lookup(const TextTable& table, const std::string& from) {
    for (const TextPair& pair : table)
        if (from == pair.from)
            return pair.to;
    return nullptr;
}

// The embedded sources ("HDMI Embedded", "SDI Embedded") are completed by
// their "Audio Track" ("Pair n" -> " Port n") in the audio input section.
const TextTable AUDIO_INPUT = {
    {"Unbalanced digital 1", "DIR9001_1 Port 0"},  {"Unbalanced digital 2", "DIR9001_2 Port 0"},
    {"Unbalanced analog", "TLV320AIC34_A Port 0"}, {"Balanced analog", "TLV320AIC34_B Port 0"},
    {"HDMI Embedded", "HDMI_IN_ITF Port "},        {"SDI Embedded", "SDI_IN_ITF Port "}};

const TextTable AUDIO_SAMPLE_RATE = {
    {"8 KHz", "8 kHz"}, {"16 KHz", "16 kHz"}, {"24 KHz", "24 kHz"}, {"32 KHz", "32 kHz"}, {"48 KHz", "48 kHz"}};

// The SDI output re-embeds the channel's audio; embedded sources add the pair
// number ("SDI Pair 3").
const TextTable SDI_TX_AUDIO = {{"SDI Embedded", "SDI Pair "},
                                {"HDMI Embedded", "HDMI Pair "},
                                {"Unbalanced analog", "Unbalanced Analog"},
                                {"Balanced analog", "Balanced Analog"},
                                {"Unbalanced digital 1", "Unbalanced digital 1"},
                                {"Unbalanced digital 2", "Unbalanced digital 2"}};

const TextTable ASPECT_RATIO = {{"3:2", "3:2"}, {"4:3", "4:3"},   {"5:3", "5:3"},
                                {"5:4", "5:4"}, {"16:9", "16:9"}, {"16:10", "16:10"}};

const TextTable H264_PROFILE = {
    {"H.264 Baseline Profile", "Baseline"}, {"H.264 Main Profile", "Main"}, {"H.264 High Profile", "High"}};

const TextTable ENTROPY_CODING = {{"CABAC", "CABAC"}, {"CAVLC", "CAVLC"}};

const TextTable H264_GOP = {{"I", "I"}, {"IP", "IP"}, {"IBP", "IBP"}, {"IBBP", "IBBP"}, {"IBBrBP", "IBBrBP"}};

const TextTable PICTURE_CODING = {
    {"Frame Only", "Frame Only"}, {"Field Only", "Field Only"}, {"MBAFF", "MBAFF"}, {"PAFF", "PAFF"}};

const TextTable HEVC_CHROMA = {{"HEVC 8-Bit 4:2:0", "4:2:0"},
                               {"HEVC 8-Bit 4:2:2", "4:2:2"},
                               {"HEVC 10-Bit 4:2:0", "4:2:0"},
                               {"HEVC 10-Bit 4:2:2", "4:2:2"}};
const TextTable HEVC_BIT_DEPTH = {
    {"HEVC 8-Bit 4:2:0", "8"}, {"HEVC 8-Bit 4:2:2", "8"}, {"HEVC 10-Bit 4:2:0", "10"}, {"HEVC 10-Bit 4:2:2", "10"}};

// The sub-GOP is the distance between reference pictures: the B pictures
// between two P pictures plus one.
const TextTable HEVC_GOP_SUB_SIZE = {{"I", "1"},     {"IP", "1"},     {"IBP", "2"},     {"IBBP", "3"},
                                     {"IBBBP", "4"}, {"I(7B)P", "8"}, {"I(15B)P", "16"}};

const TextTable ERROR_RESILIENCE = {
    {"Medium", "Medium"}, {"Low Bitrate", "Low Bitrate"}, {"Ultra Low Latency", "Ultra Low Latency"}};

const TextTable AUDIO_OBJECT_TYPE = {{"AAC-LC", "MPEG-4 LC"},
                                     {"AAC-ELD", "MPEG-4 ELD"},
                                     {"HE AAC-v1", "MPEG-4 SBR (HE-AAC)"},
                                     {"HE AAC-v2", "MPEG-4 SBR PS (HE-AAC v2)"}};

const TextTable AUDIO_CODEC = {{"AAC-LC", "AAC"},
                               {"AAC-ELD", "AAC"},
                               {"HE AAC-v1", "AAC"},
                               {"HE AAC-v2", "AAC"},
                               {"MPEG-1 Layer 2", "MPEG-1 Layer II"}};

const TextTable KLV_SERIAL_FILTER = {{"COT", "KLVoSerial Filter"}, {"KLV", "RAW KLV RS232 Filter"}};
const TextTable KLV_IP_FILTER = {{"TS", "TS KLV Filter"}, {"RAW", "RAW KLV Filter"}};

const TextTable AES_CIPHER = {{"128-bit", "AES 128 CBC"}, {"256-bit", "AES 256 CBC"}};

// The multiplexer knows constant and variable rate only: a capped VBR stream
// is multiplexed as VBR under the encoder's cap.
const TextTable MUX_RATE_CONTROL = {{"CBR", "CBR"}, {"Capped VBR", "VBR"}, {"VBR", "VBR"}};

const TextTable UDP_STREAM_FORMAT = {{"Pro-MPEG", "RTP + FEC"}, {"RTP TS", "RTP"}, {"UDP TS", "UDP"}};

const TextTable MULTICAST_INTERFACE = {{"Ethernet 1", "eth0"}, {"Ethernet 2", "eth1"}};

// The target's "Traffic Shaping" names the sender's shaping mode; "None"
// sends unshaped.
const TextTable TRAFFIC_SHAPING = {
    {"None", "None"}, {"LINUX HTB", "LINUX HTB"}, {"LINUX HTB LIMIT MAX BANDWIDTH", "LINUX HTB LIMIT MAX BANDWIDTH"}};

const TextTable SRT_RECEIVER_MODE = {
    {"Caller", "SRT Caller"}, {"Listener", "SRT Listener"}, {"Rendez Vous", "SRT Rendez Vous"}};

const TextTable SRT_AES_MODE = {{"Disabled", "Disabled"}, {"128-bit (SRT)", "AES-128"}, {"256-bit (SRT)", "AES-256"}};

const TextTable ENCODER_RATE_CONTROL = {{"CBR", "CBR"}, {"Capped VBR", "Capped VBR"}, {"VBR", "VBR"}};

const std::vector<const char*> LEVELS = {"1.0", "1.1", "1.2", "1.3", "2.0", "2.1", "2.2", "3.0", "3.1", "3.2",
                                         "4.0", "4.1", "4.2", "5.0", "5.1", "5.2", "6.0", "6.1", "6.2"};

const std::vector<const char*> TS_PROTOCOLS = {"UDP TS", "RTP TS", "Pro-MPEG", "Zixi", "SRT"};

// Optional boards and licensed features: genlock, SDI output, the
// pre-processing of each channel, the low-delay audio path, KLV, encryption,
// the Zixi, SRT and RTMP senders and the analogue amplifier. Everything else
// (mixers, receivers, capture, encoders, multiplexers, UDP senders, RTSP) is
// in every build.
const std::vector<const char*> ASSEMBLY_CHECKED = {"GS4911B_",
                                                   "VIDEO_MIXER_SDI_TX",
                                                   "SDI_TX_AUDIO_MUX_",
                                                   "SDI_TRANSMITTER",
                                                   "VIDEO_FILTER_",
                                                   "FB_MUX_",
                                                   "SYNCGEN_",
                                                   "TIMESTAMP_GENERATOR_",
                                                   "Video Full Capture ",
                                                   "Audio Capture Str0 CH1 Low Delay",
                                                   "Audio Capture Buffer ",
                                                   "AAC Encoder ",
                                                   "PCM Converter ",
                                                   "KLV Switch",
                                                   "KLVoSerial Filter",
                                                   "RAW KLV",
                                                   "KlvoSDI ",
                                                   "TS KLV Filter",
                                                   "AES Encrypt ",
                                                   "Zixi Feeder ",
                                                   "Srt Sender ",
                                                   "Rtmp Server ",
                                                   "UNBALANCED_AMPLIFIER"};

}  // namespace pipeline
