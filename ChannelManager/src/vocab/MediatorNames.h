#pragma once

// The media mediator's component and parameter names that the channel's
// pipeline writes, besides the shared ones of PeerNames.h. Each is written
// here once.
namespace vocab {
namespace med {
constexpr const char* PARAM_ENABLE = "Enable";
constexpr const char* PARAM_INPUT = "Input";
constexpr const char* PARAM_RATE_CONTROL_MODE = "Rate Control Mode";
// An encoder's "Frame Rate Ratio": every picture of the input, or every second one.
constexpr const char* RATIO_FULL = "Input Full";
constexpr const char* RATIO_HALF = "Input 1/2";
// The encoder parameter that makes a running encoder take its new bitrates.
constexpr const char* PARAM_APPLY_ON_THE_FLY = "Apply On The Fly Bitrate";
// The video mixer of a channel ("VIDEO_MIXER_CH0"), with its picture adjustments.
constexpr const char* VIDEO_MIXER = "VIDEO_MIXER_";
// The amplifier of the analogue line input, one gain per stream.
constexpr const char* UNBALANCED_AMPLIFIER = "UNBALANCED_AMPLIFIER";
constexpr const char* PARAM_GAIN_STR0 = "Gain Str0";
constexpr const char* PARAM_GAIN_STR1 = "Gain Str1";
// Values: a test generator's states, a scaled size.
constexpr const char* STATE_ENABLE = "Enable";
constexpr const char* STATE_AUTOMATIC = "Automatic";
constexpr const char* STATE_DISABLE = "Disable";
constexpr const char* CUSTOM = "Custom";
// Components. A name ending in a blank or "_" is completed by the channel
// ("CH0" / "CH1") or the stream.
constexpr const char* AAC_ENCODER_STR0_CH1_LOW_DELAY = "AAC Encoder Str0 CH1 Low Delay";
constexpr const char* AES_ENCRYPT = "AES Encrypt ";
constexpr const char* AFW = "AFW_";
constexpr const char* AFW_STR1 = "AFW_STR1_";
constexpr const char* AUDIO_CAPTURE = "Audio Capture ";
constexpr const char* AUDIO_CAPTURE_BUFFER_STR0_CH1 = "Audio Capture Buffer Str0 CH1";
constexpr const char* AUDIO_CAPTURE_STR0_CH1_LOW_DELAY = "Audio Capture Str0 CH1 Low Delay";
constexpr const char* AUDIO_ENCODER = "Audio Encoder ";
constexpr const char* AUDIO_MUX_STR0 = "AUDIO_MUX_STR0_";
constexpr const char* AUDIO_MUX_STR1 = "AUDIO_MUX_STR1_";
constexpr const char* AUDIO_SWITCH = "Audio Switch ";
constexpr const char* FB_MUX_CH1 = "FB_MUX_CH1";
constexpr const char* FRAMEBUFFER_CH1 = "FRAMEBUFFER_CH1";
constexpr const char* GS4911B = "GS4911B_";
constexpr const char* KLVOSDI_DROP = "KlvoSDI Drop ";
constexpr const char* KLVOSDI_FILTER = "KlvoSDI Filter ";
constexpr const char* KLVOSDI_FILTER_ASYNC = "KlvoSDI Filter Async";
constexpr const char* KLVOSDI_WRAPPER = "KlvoSDI Wrapper ";
constexpr const char* KLVOSERIAL_FILTER = "KLVoSerial Filter";
constexpr const char* KLV_SWITCH = "KLV Switch ";
constexpr const char* KLV_SWITCH_2 = "KLV Switch_2 ";
constexpr const char* LOW_LATENCY_VIDEO_BUFFER_CH1 = "LOW_LATENCY_VIDEO_BUFFER_CH1";
constexpr const char* PCM_CONVERTER_STR0_CH1_LOW_DELAY = "PCM Converter Str0 CH1 Low Delay";
constexpr const char* RAW_KLV_FILTER = "RAW KLV Filter";
constexpr const char* RAW_KLV_RS232_FILTER = "RAW KLV RS232 Filter";
constexpr const char* RTMP_SERVER = "Rtmp Server ";
constexpr const char* SDI_TRANSMITTER = "SDI_TRANSMITTER";
constexpr const char* SDI_TX_AUDIO_MUX = "SDI_TX_AUDIO_MUX_";
constexpr const char* SYNCGEN_CH1 = "SYNCGEN_CH1";
constexpr const char* TIMESTAMP_GENERATOR = "TIMESTAMP_GENERATOR_";
constexpr const char* TS_KLV_FILTER = "TS KLV Filter";
constexpr const char* VFW = "VFW_";
constexpr const char* VIDEO_FILTER_CH0 = "VIDEO_FILTER_CH0";
constexpr const char* VIDEO_FULL_CAPTURE_CH0 = "Video Full Capture CH0";
constexpr const char* VIDEO_MIXER_SDI_TX = "VIDEO_MIXER_SDI_TX";
constexpr const char* VIDEO_SWITCH = "Video Switch ";
// Parameters. PARAM_MUTE_CHANNEL is completed by the side number and
// PARAM_MUTE_LEFT / PARAM_MUTE_RIGHT.
constexpr const char* PARAM_ADAPTIVE_MODE = "Adaptive Mode";
constexpr const char* PARAM_ADJUSTABLE_BITRATE = "Adjustable bitrate";
constexpr const char* PARAM_ADJUSTABLE_BITRATE_MAX = "Adjustable bitrate max";
constexpr const char* PARAM_ADJUSTABLE_BITRATE_MIN = "Adjustable bitrate min";
constexpr const char* PARAM_AES_MODE = "AES Mode";
constexpr const char* PARAM_ASPECT_RATIO_X = "Aspect Ratio X";
constexpr const char* PARAM_ASPECT_RATIO_Y = "Aspect Ratio Y";
constexpr const char* PARAM_AUDIO2_PID = "Audio2 PID";
constexpr const char* PARAM_AUDIO_CODEC = "Audio Codec";
constexpr const char* PARAM_AUDIO_EMBEDDER = "Audio Embedder";
constexpr const char* PARAM_AUDIO_SAMPLE_RATE = "Audio Sample Rate";
constexpr const char* PARAM_BIT_DEPTH = "Bit Depth";
constexpr const char* PARAM_BROADCASTER_IP = "Broadcaster IP";
constexpr const char* PARAM_BROADCASTER_PORT = "Broadcaster Port";
constexpr const char* PARAM_BYPASS = "Bypass";
constexpr const char* PARAM_CHANNEL_MODE = "Channel Mode";
constexpr const char* PARAM_CHROMA_FORMAT = "Chroma Format";
constexpr const char* PARAM_CLOSED_CAPTION = "Closed Caption";
constexpr const char* PARAM_DEFAULT_VIDEO_FORMAT = "Default Video Format";
constexpr const char* PARAM_DELAY_MODE = "Delay Mode";
constexpr const char* PARAM_ENABLE_FILTER = "Enable Filter";
constexpr const char* PARAM_ENCODING_HEIGHT = "Encoding Height";
constexpr const char* PARAM_ENCODING_RESOLUTION = "Encoding Resolution";
constexpr const char* PARAM_ENCODING_WIDTH = "Encoding Width";
constexpr const char* PARAM_ENCRYPTION_CIPHER = "Encryption Cipher";
constexpr const char* PARAM_ENCRYPTION_MODE = "Encryption Mode";
constexpr const char* PARAM_ENTROPY_CODING = "Entropy Coding";
constexpr const char* PARAM_EXTERNAL_SYNC = "External Sync";
constexpr const char* PARAM_FAILOVER_BROADCASTER_IP = "Failover Broadcaster IP";
constexpr const char* PARAM_FAILOVER_BROADCASTER_PORT = "Failover Broadcaster Port";
constexpr const char* PARAM_FEC_BLOCK_MS = "FEC block ms";
constexpr const char* PARAM_FEC_D = "FEC D";
constexpr const char* PARAM_FEC_L = "FEC L";
constexpr const char* PARAM_FEC_MODE = "FEC Mode";
constexpr const char* PARAM_FEC_OVERHEAD_PERCENT = "FEC overhead (percent)";
constexpr const char* PARAM_FILTER_FORCE = "Filter Force";
constexpr const char* PARAM_FRAME_BUFFER = "Frame Buffer";
constexpr const char* PARAM_H_CROP_FACTOR_X1000 = "H Crop Factor (x1000)";
constexpr const char* PARAM_INTERLACED_PROGRESSIVE = "Interlaced/Progressive";
constexpr const char* PARAM_IP_ADDRESS = "IP Address";
constexpr const char* PARAM_LATENCY_MS = "Latency (ms)";
constexpr const char* PARAM_LEFT_ENABLE = "Left Enable";
constexpr const char* PARAM_LEFT_MODE = "Left Mode";
constexpr const char* PARAM_LIVE_URIS = "Live URIs";
constexpr const char* PARAM_MARGIN_OVERHEAD_PERCENT = "Margin overhead percent";
constexpr const char* PARAM_MAX_DATA_RATE = "Max Data Rate";
constexpr const char* PARAM_MAX_DELAY_PACKETS = "Max Delay Packets";
constexpr const char* PARAM_MAX_PACKET_SIZE = "Max Packet Size";
constexpr const char* PARAM_MAX_PAYLOAD_SIZE = "Max Payload Size";
constexpr const char* PARAM_MISB_TIMESTAMPS = "MISB Timestamps";
constexpr const char* PARAM_MULTICAST_INTERFACE = "Multicast Interface";       // of a UDP sender
constexpr const char* PARAM_RTSP_MULTICAST_INTERFACE = "Multicast interface";  // of an RTSP server
constexpr const char* PARAM_MUTE_CHANNEL = "Mute Channel ";
constexpr const char* PARAM_MUTE_LEFT = " Left";
constexpr const char* PARAM_MUTE_RIGHT = " Right";
constexpr const char* PARAM_NAME_OF_PUBLISHED_STREAM = "Name of published stream";
constexpr const char* PARAM_NETWORK_INTERFACE = "Network interface";
constexpr const char* PARAM_OBJECT_TYPE = "Object Type";
constexpr const char* PARAM_OUTPUT_GRANULARITY = "Output Granularity";
constexpr const char* PARAM_PACKET_FILTER = "Packet Filter";
constexpr const char* PARAM_PARSING = "Parsing";
constexpr const char* PARAM_PORT = "Port";
constexpr const char* PARAM_QP_MODE = "QP Mode";
constexpr const char* PARAM_RECEIVER_MODE = "Receiver Mode";
constexpr const char* PARAM_REFRESH_INTERFACES = "Refresh Interfaces";
constexpr const char* PARAM_RIGHT_ENABLE = "Right Enable";
constexpr const char* PARAM_RIGHT_MODE = "Right Mode";
constexpr const char* PARAM_ROUND_MUXRATE = "Round Muxrate";
constexpr const char* PARAM_RTP_PACKET_SIZE = "RTP packet size";
constexpr const char* PARAM_RTSP_PORT = "RTSP port";
constexpr const char* PARAM_SAMPLES_PER_FRAME = "Samples per Frame";
constexpr const char* PARAM_SEI_PICTURE_TIMING = "SEI Picture Timing";
constexpr const char* PARAM_SEI_TIMECODE = "SEI Timecode";
constexpr const char* PARAM_SEI_USER_DATA_UNREGISTRED = "SEI User Data Unregistred";
constexpr const char* PARAM_SELECTED_PIDS = "Selected PIDs";
constexpr const char* PARAM_SERVER_IP = "Server IP";
constexpr const char* PARAM_SESSION_OR_PWD = "Session or Pwd";
constexpr const char* PARAM_SPS_PER_PICTURE = "SPS per Picture";
constexpr const char* PARAM_SPS_PPS_PER_IDR = "SPS/PPS per IDR";
constexpr const char* PARAM_STATE = "State";
constexpr const char* PARAM_STREAM_FORMAT = "Stream Format";
constexpr const char* PARAM_STRENGTH = "Strength";
constexpr const char* PARAM_SUB_GOP_SIZE = "Sub-GOP Size";
constexpr const char* PARAM_SYNC_PROCESSING = "Sync processing";
constexpr const char* PARAM_TRAFFIC_SHAPING = "Traffic Shaping";
constexpr const char* PARAM_TRAFFIC_SHAPING_BITRATE_OVERHEAD_HTB_ONLY = "Traffic Shaping Bitrate OverHead (HTB only)";
constexpr const char* PARAM_TRAFFIC_SHAPING_HTB_MAX_BANDWIDTH = "Traffic Shaping HTB Max Bandwidth";
constexpr const char* PARAM_TYPE = "Type";
constexpr const char* PARAM_UDP_PORT = "UDP Port";
constexpr const char* PARAM_UDP_PORT_FEC_A = "UDP Port FEC A";
constexpr const char* PARAM_UDP_PORT_FEC_B = "UDP Port FEC B";
constexpr const char* PARAM_UPDATE_LDS_KEYS = "Update LDS Keys";
constexpr const char* PARAM_VIDEO_SOURCE = "Video Source";
constexpr const char* PARAM_V_CROP_FACTOR_X1000 = "V Crop Factor (x1000)";
}  // namespace med
}  // namespace vocab
