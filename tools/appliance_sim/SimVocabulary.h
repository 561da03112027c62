#pragma once

#include "vocab/PeerNames.h"

// The words the appliance's peer services speak with the channel manager, as
// the simulator serves them, and the simulator's own control commands. The
// words the channel manager also speaks are taken from its vocab/PeerNames.h,
// so the two cannot drift apart. Texts are compared whole and
// case-sensitively.
namespace sim {

// Send sockets of the three simulated services (their receive sockets are
// the peers' well-known paths in WireConstants.h).
constexpr const char* SOCK_SEND_MEDIATOR = "/tmp/sockSendTarnevelMediator";
constexpr const char* SOCK_SEND_DEV = "/tmp/sockSendDev";
constexpr const char* SOCK_SEND_SAP = "/tmp/sockSendSap";

// Mediator events (its commands and parameters are in TarnevelWire.h).
constexpr const char* EVT_BRANCH_STARTED = vocab::ev::BRANCH_STARTED;
constexpr const char* EVT_BRANCH_STOPPED = vocab::ev::BRANCH_STOPPED;

// Mediator parameters the simulator itself changes.
constexpr const char* PARAM_UPDATE_STATS = vocab::med::PARAM_UPDATE_STATS;
constexpr const char* PARAM_VIDEO_FORMAT = vocab::med::VIDEO_FORMAT;

// Device manager: its data set and commands.
constexpr const char* DEVICE_DATA_SET = vocab::ds::DEVICE;
constexpr const char* DEVICE_DATA_SET_PATH = "/etc/sysmgt/device_data_set.json";
constexpr const char* CMD_TOGGLE_KLVOSDI_INPUT = vocab::cmd::TOGGLE_KLVOSDI_INPUT;
constexpr const char* CMD_RESET_KLVOSDI_STATS = vocab::cmd::RESET_KLVOSDI_STATISTICS;
constexpr const char* CMD_RESET_KLVOIP_STATS = vocab::cmd::RESET_KLVOIP_STATISTICS;
constexpr const char* CMD_RESET_KLV_STATS = vocab::cmd::RESET_KLV_STATISTICS;
constexpr const char* PARAM_KLV_SOURCE = vocab::cmd::PARAM_KLV_SOURCE;
constexpr const char* PARAM_CHANNEL_ID = vocab::cmd::PARAM_KLV_CHANNEL_ID;

// SAP announcer commands and the parameters that name a stream.
constexpr const char* CMD_START_SAP = vocab::cmd::START_SAP;
constexpr const char* CMD_STOP_SAP = vocab::cmd::STOP_SAP;
constexpr const char* CMD_STOP_ALL_SAP = vocab::cmd::STOP_ALL_SAP;
constexpr const char* PARAM_CHANNEL_NAME = vocab::cmd::PARAM_SAP_CHANNEL_NAME;
constexpr const char* PARAM_DESTINATION_IP = vocab::cmd::PARAM_SAP_DESTINATION_IP;
constexpr const char* PARAM_DESTINATION_PORT = vocab::cmd::PARAM_SAP_DESTINATION_PORT;

// Control commands, served on every socket of the simulator.
// "Sim Fail": Command=ID [Count=N (1)] [Mode=Fcode|NACK|Silent (Fcode)]
//             [Fcode=code, hex with 0x or decimal (0x10100)]
constexpr const char* CMD_SIM_FAIL = "Sim Fail";
// "Sim Set Param" (mediator): Component, Parameter, Value.
constexpr const char* CMD_SIM_SET_PARAM = "Sim Set Param";
// "Sim Set Input" (mediator): Source = a video source row ("HD-SDI",
// "Composite", "DVI-D", "HDMI"), Input Detected = the format its receiver now
// detects ("None" for no signal). Sets the receiver's "Video Format" and
// sends "Auto Detection Event" with that Source and parameter.
constexpr const char* CMD_SIM_SET_INPUT = "Sim Set Input";
constexpr const char* PARAM_INPUT_DETECTED = vocab::ev::PARAM_INPUT_DETECTED;
constexpr const char* EVT_AUTO_DETECTION = vocab::ev::AUTO_DETECTION;
// "Sim Emit Event": Event=ID [Source] [Status] [Description] [Severity], every
// other parameter travels as a parameter of the event.
constexpr const char* CMD_SIM_EMIT_EVENT = "Sim Emit Event";
// "Sim Report": answers "Report" = what the service recorded, one entry a line.
constexpr const char* CMD_SIM_REPORT = "Sim Report";
constexpr const char* PARAM_COMMAND = "Command";
constexpr const char* PARAM_COUNT = "Count";
constexpr const char* PARAM_MODE = "Mode";
constexpr const char* PARAM_FCODE = "Fcode";
constexpr const char* PARAM_VALUE = "Value";
constexpr const char* PARAM_EVENT = "Event";
constexpr const char* PARAM_SOURCE = "Source";
constexpr const char* PARAM_STATUS = "Status";
constexpr const char* PARAM_DESCRIPTION = "Description";
constexpr const char* PARAM_SEVERITY = "Severity";
constexpr const char* PARAM_REPORT = "Report";
constexpr const char* MODE_FCODE = "Fcode";
constexpr const char* MODE_NACK = "NACK";
constexpr const char* MODE_SILENT = "Silent";

}  // namespace sim
