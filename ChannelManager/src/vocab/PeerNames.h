#pragma once

#include <string>

#include "tarnevel/TarnevelWire.h"
#include "vocab/DatasetNames.h"

// The names the channel manager and its peer services must agree on: the
// media mediator's components, parameters and events, the device manager's
// dataset and commands, the SAP announcer's commands. tools/appliance_sim
// plays these peers with the same names (its SimVocabulary.h takes them from
// here). The mediator's commands are in TarnevelWire.h. Texts are compared
// whole and case-sensitively.
namespace vocab {

// ---- The media mediator ----
namespace med {
// Per-channel names, indexed by channel (0 = "H.264", 1 = "HEVC").
using PerChannel = const char* const[2];
constexpr PerChannel VIDEO_ENCODER = {"Video Encoder CH0", "Video Encoder CH1"};
constexpr PerChannel TS_MULTIPLEXER = {"TS Multiplexer CH0", "TS Multiplexer CH1"};
constexpr PerChannel RTSP_SERVER = {"Rtsp Server CH0", "Rtsp Server CH1"};
// Senders of a channel's first and second target.
constexpr PerChannel UDP_SENDER = {"UDP Sender CH0", "UDP Sender CH1"};
constexpr PerChannel UDP_SENDER_2 = {"UDP Sender CH0 2", "UDP Sender CH1 2"};
constexpr PerChannel ZIXI_FEEDER = {"Zixi Feeder CH0", "Zixi Feeder CH1"};
constexpr PerChannel ZIXI_FEEDER_2 = {"Zixi Feeder CH0 2", "Zixi Feeder CH1 2"};
constexpr PerChannel SRT_SENDER = {"Srt Sender CH0", "Srt Sender CH1"};
constexpr PerChannel SRT_SENDER_2 = {"Srt Sender CH0 2", "Srt Sender CH1 2"};
// The receiver of each video source row; its "Video Format" is the format
// it detects.
struct SourceReceiver {
    const char* source;
    const char* receiver;
};
constexpr SourceReceiver RECEIVERS[] = {
    {value::SRC_HD_SDI, "SDI_RECEIVER"},
    {value::SRC_COMPOSITE, "CVBS_RECEIVER"},
    {value::SRC_DVI_D, "DVI_RECEIVER"},
    {value::SRC_HDMI, "HDMI_RECEIVER"},
};
constexpr const char* VIDEO_FORMAT = "Video Format";
// The receiver of a video source row, null for a row without one.
inline const char* receiverOf(const std::string& source) {
    for (const SourceReceiver& entry : RECEIVERS)
        if (source == entry.source)
            return entry.receiver;
    return nullptr;
}
// Encoder, multiplexer and sender parameters shared by several operations
constexpr const char* PARAM_BITRATE = "Bitrate";
constexpr const char* PARAM_BITRATE_MARGIN = "Bitrate Margin";
constexpr const char* PARAM_UPDATE_STATS = "Update Stats";               // a Zixi feeder's or SRT sender's refresh
constexpr const char* PARAM_STAT_BITRATE_MBPS = "Stat: Bitrate (mbps)";  // SRT senders
constexpr const char* PARAM_SDP_DIRECTORY = "SDP directory";
// Branch start and stop: how long the mediator may take (a synchronous
// request waits for the branch); a Zixi branch is stopped without waiting.
constexpr int START_TIMEOUT_SEC = 20;
constexpr int STOP_TIMEOUT_SEC = 20;
constexpr int ZIXI_STOP_TIMEOUT_SEC = 5;
// The KLV metadata branches: serial and IP ingest (COT or raw KLV) and
// asynchronous SDI are shared by both channels; synchronous SDI is per channel.
constexpr const char* KLV_O_SERIAL = "KLVoSerial";
constexpr const char* RAW_KLV_O_SERIAL = "RAWKLVoSerial";
constexpr const char* KLV_O_IP = "KLVoIP";
constexpr const char* RAW_KLV_O_IP = "RAWKLVoIP";
constexpr const char* KLV_O_SDI_ASYNC = "KLVoSDI Async";
constexpr PerChannel KLV_O_SDI = {"KLVoSDI CH0", "KLVoSDI CH1"};
// The front panel's LEDs, integer parameters of the component "Device".
constexpr const char* DEVICE = "Device";
constexpr const char* PARAM_STREAMING_LED = "Streaming LED";
constexpr const char* PARAM_ERROR_LED = "Error LED";
// What an SRT sender may still send, re-divided when a client joins.
constexpr const char* PARAM_REMAINING_OUTPUT_BITRATE = "Remaining Output Bitrate bps";
// A Zixi feeder's statistics texts.
constexpr const char* PARAM_NETWORK_STATS = "Network Stats";
constexpr const char* PARAM_ERROR_CORRECTION_STATS = "Error Correction Stats";
constexpr const char* PARAM_CONNECTION_STATS = "Connection Stats";
// An SRT sender's statistics texts (besides PARAM_STAT_BITRATE_MBPS).
constexpr const char* PARAM_STAT_RTT = "Stat: RTT";
constexpr const char* PARAM_STAT_PACKETS = "Stat: Packets";
constexpr const char* PARAM_STAT_LOST_PACKETS = "Stat: Lost Packets";
constexpr const char* PARAM_STAT_DROPPED_PACKETS = "Stat: Dropped Packets";
constexpr const char* PARAM_STAT_RETRANSMITTED_PACKETS = "Stat: Retransmitted Packets";
}  // namespace med

// Branch states the mediator reports.
namespace state {
constexpr const char* BRANCH_RUN = tarnevel::BRANCH_RUN;
constexpr const char* BRANCH_STOP = tarnevel::BRANCH_STOP;
}  // namespace state

// Events the mediator raises.
namespace ev {
constexpr const char* BRANCH_STARTED = "Tarnevel Branch Started";
constexpr const char* BRANCH_STOPPED = "Tarnevel Branch Stopped";
constexpr const char* ZIXI_CONNECTION_FAILED = "Zixi Connection Failed";
constexpr const char* DATA_STREAM = "Data Stream";
constexpr const char* ZIXI_CHANGE_BITRATE_REQUEST = "Zixi Change Bitrate Request";
constexpr const char* SRT_NEW_CLIENT_REQUEST = "Srt New Client Request";
// "Auto Detection Event": Source = the video source row; the detected format
// travels as the parameter "Input Detected" ("None" when there is no signal).
constexpr const char* AUTO_DETECTION = "Auto Detection Event";
constexpr const char* PARAM_INPUT_DETECTED = "Input Detected";
}  // namespace ev

// ---- The device manager ("/tmp/sockDev") ----
namespace ds {
constexpr const char* DEVICE = "DeviceDataSet";  // read remotely
}  // namespace ds
namespace tbl {
constexpr const char* KLV_OVER_IP = "KLV over IP";
constexpr const char* KLV_TABLE = "KLV Table";
}  // namespace tbl
namespace prop {
constexpr const char* ENCAPSULATION = "Encapsulation";
constexpr const char* INPUT_DATA_FORMAT = "Input Data Format";
constexpr const char* KLV_BITRATE = "KLV Bitrate";  // of a "KLV over IP" input
}  // namespace prop
// The device manager's table of each KLV ingest and the property that holds
// its bitrate.
struct DeviceKlvInput {
    const char* ingest;
    const char* table;
    const char* bitrate;
};
constexpr DeviceKlvInput DEVICE_KLV_INPUTS[] = {
    {value::KLV_SERIAL, "ComPortsTable", "Baud Rate"},
    {value::KLV_IP, tbl::KLV_OVER_IP, prop::KLV_BITRATE},
    {value::KLV_SDI, "KLV over SDI", "Bitrate"},
    {value::KLV_SDI_SYNC, "KLV over SDI", "Bitrate"},
};
// The input of an "Ingest KLV" setting; null for "None" or an unknown text.
inline const DeviceKlvInput* deviceKlvInput(const std::string& ingest) {
    for (const DeviceKlvInput& input : DEVICE_KLV_INPUTS)
        if (ingest == input.ingest)
            return &input;
    return nullptr;
}
namespace cmd {
// "Toggle KLVoSDI Input" names the channel and whether KLV comes from SDI.
constexpr const char* TOGGLE_KLVOSDI_INPUT = "Toggle KLVoSDI Input";
constexpr const char* PARAM_KLV_SOURCE = "KLV Source";
constexpr const char* PARAM_KLV_CHANNEL_ID = "ChannelID";
constexpr const char* RESET_KLVOSDI_STATISTICS = "Reset KLVoSDI Statistics";
constexpr const char* RESET_KLVOIP_STATISTICS = "Reset KLVoIP Statistics";
constexpr const char* RESET_KLV_STATISTICS = "Reset KLV Statistics";
}  // namespace cmd

// ---- The SAP announcer ("/tmp/sockSap") ----
namespace cmd {
constexpr const char* START_SAP = "START_SAP";
constexpr const char* STOP_SAP = "STOP_SAP";
constexpr const char* STOP_ALL_SAP = "STOP ALL SAP";
// The parameters that name an announced stream.
constexpr const char* PARAM_SAP_CHANNEL_NAME = "ChannelName";
constexpr const char* PARAM_SAP_DESTINATION_IP = "DestinationIp";
constexpr const char* PARAM_SAP_DESTINATION_PORT = "DestinationPort";
}  // namespace cmd

// ---- Requests to the device manager and the SAP announcer ----
namespace peer {
constexpr unsigned REQUEST_TIMEOUT_SEC = 10;  // per try
constexpr unsigned REQUEST_TRIES = 3;
}  // namespace peer

}  // namespace vocab
