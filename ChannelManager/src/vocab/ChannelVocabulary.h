#pragma once

#include <cstdint>
#include <string>

#include "records/Fcodes.h"

// The vocabulary of the channel manager: datasets, their components and
// properties, channel rows, state texts, condition codes, the commands it
// serves and the events it sends, and the mediator's branches and
// components. Every text the channel logic uses in more than one place is
// named here, so a typo is a compile error. Texts are compared whole and
// case-sensitively. Socket paths are in records/WireConstants.h.
namespace vocab {

// ---- Files and datasets ----
namespace path {
constexpr const char* FACTORY_CHANNELS = "/etc/sysmgt/channel_data_set_vex.json";
constexpr const char* VIDEO_SOURCES = "/etc/sysmgt/vsrc_data_set.json";
constexpr const char* ZIXI_STATS = "/etc/sysmgt/zixistat_data_set.json";
constexpr const char* SRT_STATS = "/etc/sysmgt/srtstat_data_set.json";
constexpr const char* SETTINGS_DIR = "/data/settings";
constexpr const char* SDP_DIR = "/srv/http/webui/sdp/";
}  // namespace path

namespace ds {
constexpr const char* CHANNEL = "ChannelDataSet";
constexpr const char* VIDEO_SOURCE = "VideoSourceDataSet";
constexpr const char* ZIXI_STAT = "ZixiStatDataSet";
constexpr const char* SRT_STAT = "SrtStatDataSet";
constexpr const char* DEFAULT = "Default Dataset";
constexpr const char* DEVICE = "DeviceDataSet";  // the device manager's, read remotely
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
// The device manager's "DeviceDataSet".
constexpr const char* DATE_TIME = "DateTimeTable";
constexpr const char* NETWORK_INTERFACES = "NetworkInterfacesTable";
constexpr const char* COM_PORTS = "ComPortsTable";
constexpr const char* KLV_OVER_IP = "KLV over IP";
constexpr const char* KLV_OVER_SDI = "KLV over SDI";
constexpr const char* KLV_TABLE = "KLV Table";
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
// The device manager's tables
constexpr const char* TZ = "TZ";
constexpr const char* IP_ADDRESS = "IP Address";
constexpr const char* BAUD_RATE = "Baud Rate";
constexpr const char* KLV_BITRATE = "KLV Bitrate";
constexpr const char* BITRATE = "Bitrate";
constexpr const char* ENCAPSULATION = "Encapsulation";
constexpr const char* INPUT_DATA_FORMAT = "Input Data Format";
}  // namespace prop

// ---- Channel rows and their members ----
namespace row {
constexpr const char* H264 = "H.264";  // channel 0, suffix "CH0"
constexpr const char* HEVC = "HEVC";   // channel 1, suffix "CH1"
constexpr const char* ALL = "ALL";
constexpr const char* ALL_NUMERIC = "0";  // a "RowID" of "0" means "ALL"
}  // namespace row

// ---- Texts of state and configuration values ----
namespace state {
constexpr const char* STOPPED = "Stopped";
constexpr const char* PLAYED = "Played";
constexpr const char* PLAYING = "Playing";
constexpr const char* STOPPING = "Stopping";
constexpr const char* STATUS_OK = "OK";
constexpr const char* STATUS_ERROR = "ERROR";
constexpr const char* BRANCH_RUN = "RUN";
constexpr const char* BRANCH_STOP = "STOP";
constexpr const char* ALARM_NONE = "None";
constexpr const char* ALARM_ON = "ON";
constexpr const char* ALARM_OFF = "OFF";
constexpr const char* SEVERITY_INFO = "Info";
constexpr const char* SEVERITY_DEBUG = "Debug";
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
// GOP structures the HEVC format rules test
constexpr const char* GOP_I = "I";
constexpr const char* GOP_IP = "IP";
}  // namespace value

// ---- Channel condition codes ("Fcode" of a channel and of its events) ----
namespace cond {
constexpr uint32_t INFO = 0x20000;             // configured, played, stopped, alarms closed
constexpr uint32_t CHANNEL_ERROR = 0x20002;    // video input lost while playing
constexpr uint32_t ZIXI_CONNECTION = 0x20004;  // "Zixi Connection Failed" raised
constexpr uint32_t DATA_STREAM = 0x20008;      // "Data Stream" raised
constexpr uint32_t FORMAT_CHANGED = 0x20010;   // stopped by the system: input format changed
constexpr uint32_t FORCED_STOP = 0x20020;      // stopped by a user "Stop"
}  // namespace cond

// ---- Commands served ----
namespace cmd {
constexpr const char* ACCEPT_CHANGES = "Accept Changes";
constexpr const char* ROLLBACK_CHANGES = "Rollback Changes";
constexpr const char* LOAD_CHANNELS = "LOAD_CHANNELS";
constexpr const char* STORE_CHANNELS = "STORE_CHANNELS";
constexpr const char* ACTIVATE_ROW = "ACTIVATE_ROW";
constexpr const char* CHANGE_ON_THE_FLY = "Change on-the-fly";
constexpr const char* PLAY = "Play";
constexpr const char* STOP = "Stop";
constexpr const char* UPDATE_SOURCE = "Update Source";
constexpr const char* SET_DVI_MODE = "Set DVI mode";
constexpr const char* SET_ANALOG_FORMAT = "Set Analog Format";
constexpr const char* UPDATE_ZIXI_STATISTICS = "Update Zixi Statistics";
constexpr const char* UPDATE_SRT_STATISTICS = "Update Srt Statistics";
// Parameters
constexpr const char* PARAM_ROW_ID = "RowID";
constexpr const char* PARAM_FILE = "File";
constexpr const char* PARAM_VIDEO_SOURCE = "Video Source";
constexpr const char* PARAM_DVI_MODE = "DVI_mode";
constexpr const char* PARAM_ANALOG_SOURCE = "analog_source";
constexpr const char* PARAM_TOTAL_BITRATE = "Total Bitrate";
constexpr const char* PARAM_MAX_BITRATE = "Max Bitrate";
constexpr const char* PARAM_TZ = "TZ";
constexpr const char* FILE_DEFAULT = "Default";
constexpr const char* VIDEO_SOURCE_ALL = "All";
// The SAP announcer's commands
constexpr const char* START_SAP = "START_SAP";
constexpr const char* STOP_SAP = "STOP_SAP";
constexpr const char* STOP_ALL_SAP = "STOP ALL SAP";
// The device manager's commands
constexpr const char* TOGGLE_KLVOSDI_INPUT = "Toggle KLVoSDI Input";
constexpr const char* RESET_KLVOSDI_STATISTICS = "Reset KLVoSDI Statistics";
constexpr const char* RESET_KLVOIP_STATISTICS = "Reset KLVoIP Statistics";
constexpr const char* RESET_KLV_STATISTICS = "Reset KLV Statistics";
}  // namespace cmd

// ---- Events ----
namespace ev {
// Sent to the subscribers of "/tmp/sockChan"
constexpr const char* CHANNEL_CONFIGURED = "Channel Configured";
constexpr const char* CHANNEL_CONFIG_ERROR = "Channel Config Error";
constexpr const char* CHANNEL_PLAYED = "Channel Played";
constexpr const char* CHANNEL_PLAY_ERROR = "Channel Play Error";
constexpr const char* CHANNEL_STOPPED = "Channel Stopped";
constexpr const char* CLOSE_ALARMS = "Close Alarms";
constexpr const char* CHANNEL_ERROR = "Channel Error";
constexpr const char* BITRATE_RECALCULATED = "Bitrate Recalculated";
constexpr const char* TARGET_CONNECTION_OK = "Target Connection OK";
constexpr const char* TARGET_CONNECTION_FAILED = "Target Connection Failed";
constexpr const char* CHANNELS_LOADED = "Channels Loaded";
constexpr const char* CHANNELS_STORED = "Channels Stored";
constexpr const char* VIDEO_SOURCE_UPDATED = "Video Source Updated";
// Received from the mediator and the device manager
constexpr const char* AUTO_DETECTION = "Auto Detection Event";
constexpr const char* BRANCH_STARTED = "Tarnevel Branch Started";
constexpr const char* BRANCH_STOPPED = "Tarnevel Branch Stopped";
constexpr const char* ZIXI_CONNECTION_FAILED = "Zixi Connection Failed";
constexpr const char* DATA_STREAM = "Data Stream";
constexpr const char* ZIXI_CHANGE_BITRATE_REQUEST = "Zixi Change Bitrate Request";
constexpr const char* SRT_NEW_CLIENT_REQUEST = "Srt New Client Request";
constexpr const char* DATA_CRITICAL_ERROR = "Data Critical Error";
constexpr const char* KLVOIP_UPDATED = "KLVoIP Updated";
constexpr const char* KLVOSDI_UPDATED = "KLVoSDI Updated";
constexpr const char* COM_PORT_UPDATED = "Com Port Updated";
constexpr const char* DATE_TIME_UPDATED = "Date&Time Updated";
// "Auto Detection Event": Source = the video source row; the detected format
// travels as the parameter "Input Detected" ("None" when there is no signal).
constexpr const char* PARAM_INPUT_DETECTED = "Input Detected";
}  // namespace ev

// ---- The mediator: branches and components ----
namespace med {
// Per-channel names, indexed by channel (0 = "H.264", 1 = "HEVC").
using PerChannel = const char* const[2];
constexpr PerChannel VIDEO_ENCODER = {"Video Encoder CH0", "Video Encoder CH1"};
constexpr PerChannel TS_MULTIPLEXER = {"TS Multiplexer CH0", "TS Multiplexer CH1"};
constexpr PerChannel RTSP_SERVER = {"Rtsp Server CH0", "Rtsp Server CH1"};
constexpr PerChannel KLVOSDI_BRANCH = {"KLVoSDI CH0", "KLVoSDI CH1"};
// Senders of a channel's first and second target.
constexpr PerChannel UDP_SENDER = {"UDP Sender CH0", "UDP Sender CH1"};
constexpr PerChannel UDP_SENDER_2 = {"UDP Sender CH0 2", "UDP Sender CH1 2"};
constexpr PerChannel ZIXI_FEEDER = {"Zixi Feeder CH0", "Zixi Feeder CH1"};
constexpr PerChannel ZIXI_FEEDER_2 = {"Zixi Feeder CH0 2", "Zixi Feeder CH1 2"};
constexpr PerChannel SRT_SENDER = {"Srt Sender CH0", "Srt Sender CH1"};
constexpr PerChannel SRT_SENDER_2 = {"Srt Sender CH0 2", "Srt Sender CH1 2"};
constexpr const char* RTMP_SERVER_CH0 = "Rtmp Server CH0";
// The front panel
constexpr const char* DEVICE = "Device";
constexpr const char* STREAMING_LED = "Streaming LED";
constexpr const char* ERROR_LED = "Error LED";
// Receivers of the video inputs and their detected format
constexpr const char* SDI_RECEIVER = "SDI_RECEIVER";
constexpr const char* CVBS_RECEIVER = "CVBS_RECEIVER";
constexpr const char* DVI_RECEIVER = "DVI_RECEIVER";
constexpr const char* HDMI_RECEIVER = "HDMI_RECEIVER";
constexpr const char* VIDEO_FORMAT = "Video Format";
// Encoder and multiplexer parameters shared by several operations
constexpr const char* PARAM_BITRATE = "Bitrate";
constexpr const char* PARAM_BITRATE_MARGIN = "Bitrate Margin";
constexpr const char* PARAM_APPLY_ON_THE_FLY = "Apply On The Fly Bitrate";
constexpr const char* PARAM_UPDATE_STATS = "Update Stats";
constexpr const char* PARAM_STAT_BITRATE_MBPS = "Stat: Bitrate (mbps)";  // SRT senders
constexpr const char* PARAM_SDP_DIRECTORY = "SDP directory";
constexpr const char* PARAM_REMAINING_OUTPUT_BITRATE = "Remaining Output Bitrate bps";
}  // namespace med

// ---- Channel helpers ----
// 0 for "H.264", 1 for "HEVC", -1 for any other row.
inline int channelIndex(const std::string& rowId) {
    if (rowId == row::H264) return 0;
    if (rowId == row::HEVC) return 1;
    return -1;
}
inline bool isChannelRow(const std::string& rowId) {
    return channelIndex(rowId) >= 0;
}
// The channel condition code as an Fcodes value (they share the result type).
inline Fcodes condCode(uint32_t code) {
    return static_cast<Fcodes>(code);
}

}  // namespace vocab
