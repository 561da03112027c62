#pragma once

// The channel manager's own datasets: the files they load from, the dataset,
// component and property names (a test holds the factory datasets of
// etc/sysmgt to them, see ChannelSchema.cpp), and the texts that channel
// rows hold as values. Names used by one file only live in that file; the
// wire texts are in ChannelWireTexts.h, the peers' names in PeerNames.h.
// Texts are compared whole and case-sensitively.
namespace vocab {

// ---- Files and datasets ----
namespace path {
constexpr const char* FACTORY_CHANNELS = "/etc/sysmgt/channel_data_set_vex.json";
}  // namespace path

namespace ds {
constexpr const char* CHANNEL = "ChannelDataSet";
constexpr const char* VIDEO_SOURCE = "VideoSourceDataSet";
constexpr const char* ZIXI_STAT = "ZixiStatDataSet";
constexpr const char* SRT_STAT = "SrtStatDataSet";
constexpr const char* DEFAULT = "Default Dataset";  // the factory data while it is merged
}  // namespace ds

// ---- Components (tables) ----
namespace tbl {
// "ChannelDataSet", instance = channel row unless stated.
constexpr const char* CHANNELS = "ChannelsTable";
constexpr const char* SOURCE = "ChannelSourceTable";
constexpr const char* PROCESSING = "ChannelProcessingTable";
constexpr const char* PROCESSING_BACKUP = "ChannelProcessingBackup";
constexpr const char* TRANSPORT_STREAM = "Transport Stream";
constexpr const char* AV_SETTINGS = "ChannelAVSettings";
constexpr const char* H264_ENCODER = "H.264 Encoder";  // single instance ""
constexpr const char* HEVC_ENCODER = "HEVC Encoder";   // single instance ""
// Instance = target row ("H.264 Target1" ...), "Channel ID" names the channel.
constexpr const char* TARGET = "ChannelTargetTable";
constexpr const char* FEC_SETTINGS = "FEC Settings";
constexpr const char* SRT_SETTINGS = "SRT Settings";
constexpr const char* ZIXI_FEEDER = "Zixi Feeder";
constexpr const char* RTMP_SETTINGS = "RTMP Settings";
// Instance = audio row ("H.264 Audio1" ...), "Channel ID" names the channel.
constexpr const char* AUDIO_SOURCE = "Audio Source Table";
constexpr const char* AUDIO_PROCESSING = "Audio Processing";
// "VideoSourceDataSet", instance = source name.
constexpr const char* VIDEO_SOURCE = "VideoSourceTable";
// "ZixiStatDataSet" / "SrtStatDataSet", instance = target row.
constexpr const char* ZIXI_QOS = "Zixi QoS Statistics";
constexpr const char* ZIXI_NETWORK = "Zixi Network Statistics";
constexpr const char* SRT_NETWORK = "Srt Network Statistics";
constexpr const char* SRT_QOS = "Srt QoS Statistics";
}  // namespace tbl

// ---- Properties ----
namespace prop {
// ChannelsTable
constexpr const char* STATE = "State";
constexpr const char* STATUS = "Status";
constexpr const char* FCODE = "Fcode";
constexpr const char* SOURCE = "Source";
constexpr const char* INPUT_RESOLUTION = "Input Resolution";
constexpr const char* TOTAL_BIT_RATE = "Total Bit Rate";
constexpr const char* RESOLUTION = "Resolution";
constexpr const char* KLV = "KLV";
constexpr const char* AUDIO = "Audio";
constexpr const char* FEC = "FEC";
constexpr const char* FEC2 = "FEC2";
constexpr const char* CHANNEL_NAME = "Channel Name";
constexpr const char* SECOND_CHANNEL_NAME = "Second Channel Name";
constexpr const char* TARGET_ADDRESS = "Target Address";
constexpr const char* SECOND_TARGET_ADDRESS = "Second Target Address";
// ChannelSourceTable
constexpr const char* FORMAT_CHANGED = "Format Changed";
constexpr const char* INPUT_DETECTION = "Input Detection";
constexpr const char* FORCE_COLOR_BAR = "Force Color Bar";
constexpr const char* SDI_OUT_PREVIEW = "SDI Out Preview";
// ChannelProcessingTable (and its backup)
constexpr const char* TOTAL_BITRATE = "Total Bitrate";
constexpr const char* MAX_BITRATE = "Max Bitrate";
constexpr const char* VIDEO_BITRATE = "Video Bitrate";
constexpr const char* STREAM_PROFILE = "Stream Profile";
constexpr const char* ENCODE_VIDEO = "Encode Video";
constexpr const char* FORMAT_AS_DETECTED = "Format as Detected";
constexpr const char* RATE_CONTROL = "Rate Control";
constexpr const char* ENCODING_FORMAT = "Encoding Format";
constexpr const char* FRAME_SAMPLING = "Frame Sampling";
constexpr const char* FRAME_RATE_RATIO = "Frame Rate Ratio";
constexpr const char* CROP_ENABLE = "Crop Enable";
constexpr const char* LOW_LATENCY = "Low Latency";
constexpr const char* VIDEO_CODEC_PROFILE = "Video Codec Profile";
constexpr const char* INGEST_KLV = "Ingest KLV";
constexpr const char* INGEST_KLV2 = "Ingest KLV2";
constexpr const char* ENCRYPTION = "Encryption";
constexpr const char* VIDEO_FILTER_ENABLED = "Video Filter Enabled";
constexpr const char* VIDEO_FILTER_STRENGTH = "Video Filter Strength";
// Encoders ("H.264 Encoder", "HEVC Encoder")
constexpr const char* ASPECT_RATIO = "Aspect Ratio";
constexpr const char* LEVEL = "Level";
constexpr const char* PROFILE = "Profile";
constexpr const char* TIER = "Tier";
constexpr const char* GOP_STRUCTURE = "GOP Structure";
constexpr const char* GOP_SIZE = "GOP Size";
constexpr const char* CLOSED_GOP = "Closed GOP";
constexpr const char* INSERT_AU_DELIMITERS = "Insert AU Delimiters";
constexpr const char* PICTURE_CODING = "Picture Coding";
constexpr const char* VLC_MODE = "VLC Mode";
constexpr const char* TIMESTAMPS = "Timestamps";
constexpr const char* LATENCY_MEASUREMENT = "Latency Measurement";
constexpr const char* SPS_PPS_PER_PICTURE = "SPS/PPS per Picture";
constexpr const char* AUTO_ADAPT_BITRATES = "Auto Adapt to Stream Bitrates";
constexpr const char* QP_BASE = "QP Base";
constexpr const char* QP_RANGE_MIN = "QP Range Min";
constexpr const char* QP_RANGE_MAX = "QP Range Max";  // the mediator's name
constexpr const char* QP_MAX = "QP Max";              // the configuration's name
constexpr const char* INITIAL_DELAY = "Initial Delay";
constexpr const char* MAXIMUM_DELAY = "Maximum Delay";  // the configuration's name
constexpr const char* MAX_DELAY = "Max Delay";          // the multiplexer's name
constexpr const char* CROP_X = "Crop X";
constexpr const char* CROP_Y = "Crop Y";
constexpr const char* CROP_WIDTH = "Crop Width";
constexpr const char* CROP_HEIGHT = "Crop Height";
constexpr const char* FIXED_GOP_SIZE = "Fixed GOP Size";
constexpr const char* ERROR_RESILIENCE = "Error Resilience";
constexpr const char* CLOSED_CAPTION = "Closed Caption";
// Transport Stream
constexpr const char* PMT_PID = "PMT PID";
constexpr const char* VIDEO_PID = "Video PID";
constexpr const char* PCR_PID = "PCR PID";
constexpr const char* KLV_PID = "KLV PID";
constexpr const char* KLV2_PID = "KLV2 PID";
constexpr const char* KLV_DECIMATION = "KLV Decimation";
constexpr const char* DVB_MODE = "DVB Mode";
constexpr const char* RTSP_SERVER_PORT = "RTSP Server Port";
constexpr const char* AES_MODE = "AES Mode";
constexpr const char* AES_KEY = "AES Key";
constexpr const char* MUXRATE_OVERHEAD_PERCENT = "MuxRate Overhead Percent";
// ChannelAVSettings
constexpr const char* BRIGHTNESS = "Brightness";
constexpr const char* CONTRAST = "Contrast";
constexpr const char* SATURATION = "Saturation";
constexpr const char* HUE = "Hue";
// Rows that belong to a channel
constexpr const char* CHANNEL_ID = "Channel ID";
constexpr const char* ENABLED = "Enabled";
// ChannelTargetTable
constexpr const char* STREAMING_PROTOCOL = "Streaming Protocol";
constexpr const char* NETWORK_INTERFACE = "Network Interface";
constexpr const char* TARGET_PORT = "Target Port";
constexpr const char* SAP = "SAP";
constexpr const char* TTL = "TTL";
constexpr const char* UDP_PACKET_SIZE = "UDP Packet Size";
constexpr const char* TRAFFIC_SHAPING = "Traffic Shaping";
// FEC Settings, SRT Settings, Zixi Feeder, RTMP Settings
constexpr const char* MODE = "Mode";
constexpr const char* COLUMNS = "Columns";
constexpr const char* ROWS = "Rows";
constexpr const char* PORT_1D = "1-D Port Number";
constexpr const char* PORT_2D = "2-D Port Number";
constexpr const char* LATENCY = "Latency";
constexpr const char* SRT_FEC = "Fec";
constexpr const char* STREAM_ID = "Stream ID";
constexpr const char* PASSWORD = "Password";
constexpr const char* ENABLE_DYNAMIC_BITRATE = "Enable Dynamic Bit-rate Control";
constexpr const char* MIN_BITRATE_PERCENTS = "Minimum bit-rate percents";
constexpr const char* MAX_BITRATE_PERCENTS = "Maximum bit-rate percents";
constexpr const char* MIN_BITRATE = "Minimum bit-rate";
constexpr const char* MAX_BITRATE_ZIXI = "Maximum bit-rate";
constexpr const char* ENABLE_FAILOVER = "Enable Failover";
constexpr const char* FAILOVER_ADDRESS = "Failover Address";
constexpr const char* FAILOVER_PORT = "Failover Port";
constexpr const char* RTMP_SERVER_URL = "RTMP Server URL";
constexpr const char* STREAM_NAME = "Stream Name";
constexpr const char* USERNAME = "Username";
// Audio Source Table, Audio Processing
constexpr const char* AUDIO_SOURCE = "Audio Source";
constexpr const char* AUDIO_INPUT_FORMAT = "Audio Input Format";
constexpr const char* AUDIO_TRACK = "Audio Track";
constexpr const char* AUDIO_SAMPLING = "Audio Sampling";
constexpr const char* AUDIO_GAIN = "Audio Gain";
constexpr const char* ENCODE_AUDIO = "Encode Audio";
constexpr const char* AUDIO_BITRATE = "Audio Bitrate";
constexpr const char* AUDIO_ENCODING_FORMAT = "Audio Encoding Format";
constexpr const char* CHANNEL_MODE = "Channel Mode";
constexpr const char* AUDIO_PID = "Audio PID";
// VideoSourceTable
constexpr const char* INPUT_DETECTED = "Input Detected";
constexpr const char* CONNECTED = "Connected";
// Statistics
constexpr const char* TOTAL_PACKETS = "Total Packets";
constexpr const char* PACKET_RATE = "Packet Rate";
constexpr const char* DROPPED_PACKETS = "Dropped Packets";
constexpr const char* PACKET_LOSS = "Packet Loss";
constexpr const char* RECOVERED_PACKETS = "Recovered Packets";
constexpr const char* NON_RECOVERED_PACKETS = "Non Recovered Packets";
constexpr const char* AVAILABLE_BITRATE = "Available Bitrate";
constexpr const char* ROUND_TRIP_TIME = "Round Trip Time";
constexpr const char* JITTER = "Jitter";
constexpr const char* ZIXI_LATENCY = "Zixi Latency";
constexpr const char* RECONNECTION = "Reconnection";
constexpr const char* SRT_LATENCY = "SRT Latency";
}  // namespace prop

// ---- Texts of state and configuration values ----
namespace state {
constexpr const char* STOPPED = "Stopped";
constexpr const char* PLAYED = "Played";
constexpr const char* PLAYING = "Playing";
constexpr const char* STOPPING = "Stopping";
constexpr const char* STATUS_OK = "OK";
constexpr const char* STATUS_ERROR = "ERROR";
constexpr const char* INPUT_NONE = "None";  // "Input Detected" without a signal
constexpr const char* NO_SIGNAL = "No signal";
}  // namespace state

namespace value {
// Streaming protocols
constexpr const char* UDP_TS = "UDP TS";
constexpr const char* PRO_MPEG = "Pro-MPEG";
constexpr const char* RTP_TS = "RTP TS";
constexpr const char* RTP_ES = "RTP ES";
constexpr const char* RTMP = "RTMP";
constexpr const char* ZIXI = "Zixi";
constexpr const char* SRT = "SRT";
// Stream profiles
constexpr const char* PROFILE_ISR = "ISR - Low Bandwidth";
constexpr const char* PROFILE_BROADCAST = "Broadcast - Broadband";
constexpr const char* PROFILE_ULL = "Ultra Low Latency - LAN";
// Rate control
constexpr const char* CBR = "CBR";
constexpr const char* CAPPED_VBR = "Capped VBR";
constexpr const char* VBR = "VBR";
// Audio channel modes and the codecs with a low-delay path
constexpr const char* MONO_LEFT = "Mono Left";
constexpr const char* MONO_RIGHT = "Mono Right";
constexpr const char* STEREO = "Stereo";
constexpr const char* AUDIO_AAC_ELD = "AAC-ELD";
constexpr const char* AUDIO_PCM = "PCM";
// FEC modes of a Pro-MPEG target (and the summary's "FEC")
constexpr const char* FEC_1D = "1-D";
constexpr const char* FEC_2D = "2-D";
// The channel's AES modes that the SRT sender applies itself
constexpr const char* AES_128_SRT = "128-bit (SRT)";
constexpr const char* AES_256_SRT = "256-bit (SRT)";
// Frame rate ratio
constexpr const char* HALF_OF_INPUT = "Half of Input";
// KLV ingest
constexpr const char* KLV_NONE = "None";
constexpr const char* KLV_SERIAL = "Serial";
constexpr const char* KLV_IP = "IP";
constexpr const char* KLV_SDI = "SDI";
constexpr const char* KLV_SDI_SYNC = "SDI-Sync";
// Video sources
constexpr const char* SRC_HD_SDI = "HD-SDI";
constexpr const char* SRC_COMPOSITE = "Composite";
constexpr const char* SRC_DVI_D = "DVI-D";
constexpr const char* SRC_HDMI = "HDMI";
// Embedded audio sources
constexpr const char* AUDIO_SDI_EMBEDDED = "SDI Embedded";
constexpr const char* AUDIO_HDMI_EMBEDDED = "HDMI Embedded";
// The analogue line input, the one audio source with a gain to set
constexpr const char* AUDIO_UNBALANCED_ANALOG = "Unbalanced analog";
// GOP structures the HEVC format rules test
constexpr const char* GOP_I = "I";
constexpr const char* GOP_IP = "IP";
}  // namespace value

}  // namespace vocab
