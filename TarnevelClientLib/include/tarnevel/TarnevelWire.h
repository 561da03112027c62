#pragma once

/// The vocabulary of the media mediator's command protocol: command IDs,
/// parameter names and the fixed values the channel manager sends. Texts are
/// compared whole and case-sensitively by the mediator.
namespace tarnevel {

/// Commands.
constexpr const char* CMD_GET_PARAM = "Tarnevel Get Param";
constexpr const char* CMD_PUT_PARAM = "Tarnevel Put Param";
constexpr const char* CMD_GET_ASSEMBLY = "Tarnevel Get Assembly";
constexpr const char* CMD_PUT_ASSEMBLY = "Tarnevel Put Assembly";
constexpr const char* CMD_GET_BRANCH_STATE = "Tarnevel Get Branch State";
constexpr const char* CMD_STORE_STATE = "Tarnevel Store State";
constexpr const char* CMD_START_BRANCH = "Tarnevel Start Branch";
constexpr const char* CMD_STOP_BRANCH = "Tarnevel Stop Branch";

/// Parameters.
constexpr const char* PARAM_COMPONENT = "Component";
constexpr const char* PARAM_PARAMETER = "Parameter";
constexpr const char* PARAM_TEXT_VALUE = "TextValue";
constexpr const char* PARAM_INT_VALUE = "IntValue";
constexpr const char* PARAM_ASSEMBLY = "Assembly";
constexpr const char* PARAM_BRANCH = "Branch";
constexpr const char* PARAM_BRANCH_STATE = "Branch State";
constexpr const char* PARAM_SYNC = "Sync";
constexpr const char* PARAM_TIMEOUT_SEC = "Timeout sec";
constexpr const char* SYNC_TRUE = "true";

/// Branch states the mediator reports.
constexpr const char* BRANCH_RUN = "RUN";
constexpr const char* BRANCH_STOP = "STOP";

/// Time-outs (seconds) and tries. A branch start always waits START_WAIT_SEC
/// for its reply, whatever time-out it hands to the mediator; a stop waits the
/// caller's. Loading an assembly may take the mediator minutes.
constexpr unsigned TIMEOUT_SEC = 10;
constexpr unsigned TRIES = 3;
constexpr unsigned ASSEMBLY_PUT_TIMEOUT_SEC = 200;
constexpr unsigned START_WAIT_SEC = 120;
constexpr unsigned BRANCH_TRIES = 1;
constexpr unsigned ASSEMBLY_PUT_TRIES = 1;

}  // namespace tarnevel
