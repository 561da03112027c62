#pragma once

#include <cstdint>

#include "datacom/WireConstants.h"

/// What a peer service names when it talks to the channel manager on
/// datacom::wire::SOCK_CHAN: the channel rows a command addresses, the commands
/// it serves with their parameters, the events it sends to its subscribers
/// with their "Status" and "Severity" texts, and the channel condition codes
/// (the "Fcode" of a channel and of its events). The channel manager itself
/// takes its texts from here, so a daemon that uses these names speaks exactly
/// what it serves. Texts are compared whole and case-sensitively.
namespace chanmgr {

/// Channel rows ("RowID" of a command, source of an event).
namespace row {
constexpr const char* H264 = "H.264";  ///< channel 0, components suffixed "CH0"
constexpr const char* HEVC = "HEVC";   ///< channel 1, components suffixed "CH1"
constexpr const char* ALL = "ALL";
constexpr const char* ALL_NUMERIC = "0";  ///< a "RowID" of "0" means "ALL"
}  // namespace row

/// Channel condition codes: the "Fcode" of a channel row and of its events.
namespace cond {
constexpr uint32_t INFO = 0x20000;             ///< configured, played, stopped, alarms closed
constexpr uint32_t CHANNEL_ERROR = 0x20002;    ///< video input lost while playing
constexpr uint32_t ZIXI_CONNECTION = 0x20004;  ///< "Zixi Connection Failed" raised
constexpr uint32_t DATA_STREAM = 0x20008;      ///< "Data Stream" raised
constexpr uint32_t FORMAT_CHANGED = 0x20010;   ///< stopped by the system: input format changed
constexpr uint32_t FORCED_STOP = 0x20020;      ///< stopped by a user "Stop"
}  // namespace cond

/// Commands the channel manager serves, and their parameters.
namespace cmd {
constexpr const char* ACCEPT_CHANGES = datacom::wire::CMD_ACCEPT_CHANGES;
constexpr const char* ROLLBACK_CHANGES = datacom::wire::CMD_ROLLBACK_CHANGES;
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
constexpr const char* PARAM_ROW_ID = "RowID";
constexpr const char* PARAM_FILE = "File";
constexpr const char* PARAM_VIDEO_SOURCE = "Video Source";
constexpr const char* PARAM_DVI_MODE = "DVI_mode";
constexpr const char* PARAM_ANALOG_SOURCE = "analog_source";
constexpr const char* PARAM_TOTAL_BITRATE = "Total Bitrate";
constexpr const char* PARAM_MAX_BITRATE = "Max Bitrate";
constexpr const char* FILE_DEFAULT = "Default";  ///< "File" of the factory channel data
constexpr const char* VIDEO_SOURCE_ALL = "All";  ///< "Video Source" of every source
}  // namespace cmd

/// Events sent to every subscriber.
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

/// An event's "Status" and "Severity".
namespace state {
constexpr const char* ALARM_NONE = "None";
constexpr const char* ALARM_ON = "ON";
constexpr const char* ALARM_OFF = "OFF";
constexpr const char* SEVERITY_INFO = "Info";
constexpr const char* SEVERITY_DEBUG = "Debug";
}  // namespace state

}  // namespace chanmgr
