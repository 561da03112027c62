#pragma once

#include <cstdint>
#include <string>

#include "datacom/Fcodes.h"

// What the channel manager's clients see on "/tmp/sockChan": the channel
// rows a command names, the commands it serves with their parameters, the
// events it sends with their status and severity texts, and the channel
// condition codes ("Fcode" of a channel and of its events). Header-only, so
// that tools (chanctl) include it instead of restating the texts. Texts are
// compared whole and case-sensitively.
namespace vocab {

// ---- Channel rows ----
namespace row {
constexpr const char* H264 = "H.264";  // channel 0, suffix "CH0"
constexpr const char* HEVC = "HEVC";   // channel 1, suffix "CH1"
constexpr const char* ALL = "ALL";
constexpr const char* ALL_NUMERIC = "0";  // a "RowID" of "0" means "ALL"
// The row of the channel beside `channel` (0 or 1): what the two share is
// turned off only when the other does not use it either.
constexpr const char* otherChannel(int channel) {
    return channel == 0 ? HEVC : H264;
}
}  // namespace row

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
constexpr const char* FILE_DEFAULT = "Default";
constexpr const char* VIDEO_SOURCE_ALL = "All";
}  // namespace cmd

// ---- Events sent to the subscribers ----
namespace ev {
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
}  // namespace ev

// ---- An event's "Status" and "Severity" ----
namespace state {
constexpr const char* ALARM_NONE = "None";
constexpr const char* ALARM_ON = "ON";
constexpr const char* ALARM_OFF = "OFF";
constexpr const char* SEVERITY_INFO = "Info";
constexpr const char* SEVERITY_DEBUG = "Debug";
}  // namespace state

// ---- Channel helpers ----
// 0 for "H.264", 1 for "HEVC", -1 for any other row.
inline int channelIndex(const std::string& rowId) {
    if (rowId == row::H264)
        return 0;
    if (rowId == row::HEVC)
        return 1;
    return -1;
}
inline bool isChannelRow(const std::string& rowId) {
    return channelIndex(rowId) >= 0;
}
// True when every bit of `condition` is set in a channel's "Fcode".
inline bool holds(uint32_t fcode, uint32_t condition) {
    return (fcode & condition) == condition;
}
// The channel condition code as an Fcodes value (they share the result type).
inline datacom::Fcodes condCode(uint32_t code) {
    return static_cast<datacom::Fcodes>(code);
}

}  // namespace vocab
