#pragma once

#include <cstddef>

namespace datacom {

/// The vocabulary of the appliance's datagram protocol that the messaging
/// engine speaks: socket paths, element and attribute names, the commands every
/// engine serves itself, and the limits of the transport. Message types are in
/// MessageTypes.h. Texts are compared whole and case-sensitively.
namespace wire {

/// Logical socket paths (resolved under SYSMGT_ROOT at the system call).
constexpr const char* SOCK_CHAN = "/tmp/sockChan";
constexpr const char* SOCK_SEND_CHAN = "/tmp/sockSendChan";
constexpr const char* SOCK_MEDIATOR = "/tmp/sockTarnevelMediator";
constexpr const char* SOCK_DEV = "/tmp/sockDev";
constexpr const char* SOCK_SAP = "/tmp/sockSap";

/// Elements.
constexpr const char* TAG_HEADER = "HEADER";
constexpr const char* TAG_BODY = "BODY";
constexpr const char* TAG_COMMAND = "Command";
constexpr const char* TAG_PARAMETER = "Parameter";
constexpr const char* TAG_EVENT = "Event";
constexpr const char* TAG_DATASET = "DataSet";
constexpr const char* TAG_COMPONENT = "Component";
constexpr const char* TAG_TABLE = "Table";
constexpr const char* TAG_ROW = "Row";
constexpr const char* TAG_ITEM = "Item";

/// Attributes.
constexpr const char* ATTR_ID = "ID";
constexpr const char* ATTR_NAME = "Name";
constexpr const char* ATTR_VALUE = "Value";

/// Commands served by every engine, and their parameters.
constexpr const char* CMD_SUBSCRIBE = "SUBSCRIBE";
constexpr const char* CMD_ADD_ROW = "Add Row";
constexpr const char* CMD_GET_NEXT_ROW = "Get Next Row";
constexpr const char* CMD_STOP_DBG_PRINT = "StopDbgPrint";
constexpr const char* CMD_START_DBG_PRINT = "StartDbgPrint";
constexpr const char* PARAM_SOCK_NAME = "SockName";
constexpr const char* PARAM_TABLE = "Table";
constexpr const char* PARAM_ROW = "Row";

/// Commands the data holder serves (used by its clients).
constexpr const char* CMD_ACCEPT_CHANGES = "Accept Changes";
constexpr const char* CMD_ROLLBACK_CHANGES = "Rollback Changes";

/// Transport limits. A datagram of MAX_DATAGRAM bytes or more is refused: one
/// message is one datagram, so this is the message size limit of the system.
constexpr size_t MAX_DATAGRAM = 70000;
/// Size of the zeroed buffer that receives a sender's address.
constexpr unsigned SENDER_ADDR_SIZE = 110;
/// Replies kept in the response history (evicted from the 11th store on).
constexpr size_t HISTORY_LIMIT = 10;
/// Log level set by "StopDbgPrint" (silent) and "StartDbgPrint" (everything).
constexpr int DBG_LEVEL_SILENT = 5;
constexpr int DBG_LEVEL_VERBOSE = 0;

/// Time-out and delay arguments, in whole seconds: 0 waits without limit,
/// NO_WAIT (all ones) polls a read once without waiting and never sleeps
/// between the tries of a send (each try still has the socket's send time-out).
constexpr unsigned WAIT_FOREVER = 0;
constexpr unsigned NO_WAIT = static_cast<unsigned>(-1);
/// Time-out and tries every request of the appliance uses.
constexpr unsigned REQUEST_TIMEOUT_SEC = 10;
constexpr unsigned REQUEST_TRIES = 3;
/// A failed send sleeps this long when the caller's delay is 0.
constexpr unsigned DEFAULT_RETRY_DELAY_SEC = 10;
/// Builders set this request ID; sendRequest always replaces it.
constexpr int PLACEHOLDER_REQUEST_ID = 100;

}  // namespace wire

}  // namespace datacom
