// The remote family: parameters, rows, commands and events of peer services,
// forwarded to the embedded engine's client requests.
#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "holder/DataHolderImpl.h"

namespace datacom {

namespace {

// The row commands' table parameter is "Tables" on the wire, while an
// engine's server reads "Table": peers that serve these commands with the
// engine refuse them. Kept as it has always been sent.
constexpr const char* PARAM_TABLES = "Tables";

}  // namespace

Fcodes DataHolder::requestCommand(const std::string& socketPath, const std::string& command, std::string& result,
                                  unsigned timeoutSec, unsigned tries) {
    return impl->communicator.requestCommand(socketPath, command, result, timeoutSec, tries);
}

Fcodes DataHolder::Impl::requestRowCommand(const char* commandId, const std::string& socketPath,
                                           const std::string& table, int rowId, int& answerRow, unsigned timeoutSec,
                                           unsigned tries) {
    MessageCommand command;
    command.setId(commandId);
    command.addParam(PARAM_TABLES, table);
    command.addParam(wire::PARAM_ROW, std::to_string(rowId));
    std::string text, reply;
    command.toString(text);
    Fcodes code = owner.requestCommand(socketPath, text, reply, timeoutSec, tries);
    if (!isOk(code))
        return code;
    MessageCommand answer;
    std::string row;
    code = answer.initFromString(reply);
    if (!isOk(code))
        return code;
    // A reply without "Row" has nothing to give: the out-value stays.
    if (answer.getParam(wire::PARAM_ROW, row) == 0) {
        DBG(DBG_ERROR) << "requestRowCommand: No Row in reply to " << commandId << " table=" << table;
        return FC_BODY_ERROR;
    }
    answerRow = tagToInt(row);
    return FC_OK;
}

Fcodes DataHolder::requestAddRow(const std::string& socketPath, const std::string& table, int rowId, int& newRowId,
                                 unsigned timeoutSec, unsigned tries) {
    return impl->requestRowCommand(wire::CMD_ADD_ROW, socketPath, table, rowId, newRowId, timeoutSec, tries);
}

Fcodes DataHolder::requestNextRowId(const std::string& socketPath, const std::string& table, int rowId, int& nextRowId,
                                    unsigned timeoutSec, unsigned tries) {
    return impl->requestRowCommand(wire::CMD_GET_NEXT_ROW, socketPath, table, rowId, nextRowId, timeoutSec, tries);
}

Fcodes DataHolder::requestRemoteIntParam(const std::string& socketPath, const std::string& table, int rowId,
                                         const std::string& column, int& value, unsigned timeoutSec, unsigned tries) {
    std::string text;
    Fcodes code = impl->communicator.requestDataItem(socketPath, table, rowId, column, text, timeoutSec, tries);
    if (isOk(code))
        value = tagToInt(text);
    return code;
}

Fcodes DataHolder::requestRemoteStringParam(const std::string& socketPath, const std::string& table, int rowId,
                                            const std::string& column, std::string& value, unsigned timeoutSec,
                                            unsigned tries) {
    return impl->communicator.requestDataItem(socketPath, table, rowId, column, value, timeoutSec, tries);
}

Fcodes DataHolder::requestGetTextParam(const std::string& socketPath, const std::string& dataSet,
                                       const std::string& component, const std::string& property, std::string& value,
                                       const std::string& row) {
    return impl->communicator.requestGetParam(socketPath, dataSet, component, property, value, ParamAccess::Read, row,
                                              wire::REQUEST_TIMEOUT_SEC, wire::REQUEST_TRIES);
}

Fcodes DataHolder::requestGetIntParam(const std::string& socketPath, const std::string& dataSet,
                                      const std::string& component, const std::string& property, int& value,
                                      const std::string& row) {
    std::string text;
    Fcodes code = requestGetTextParam(socketPath, dataSet, component, property, text, row);
    if (isOk(code))
        value = tagToInt(text);
    return code;
}

// The peer keeps the value pending; its read-back is not needed here.
Fcodes DataHolder::requestSetRemoteStringParam(const std::string& socketPath, const std::string& dataSet,
                                               const std::string& component, const std::string& property,
                                               const std::string& value, const std::string& row, unsigned timeoutSec,
                                               unsigned tries) {
    std::string readBack = value;
    return impl->communicator.requestGetParam(socketPath, dataSet, component, property, readBack, ParamAccess::Write,
                                              row, timeoutSec, tries);
}

Fcodes DataHolder::requestSetRemoteIntParam(const std::string& socketPath, const std::string& dataSet,
                                            const std::string& component, const std::string& property, int value,
                                            const std::string& row, unsigned timeoutSec, unsigned tries) {
    return requestSetRemoteStringParam(socketPath, dataSet, component, property, std::to_string(value), row, timeoutSec,
                                       tries);
}

Fcodes DataHolder::requestEvent(const std::string& socketPath, MessageEvent& event, unsigned delaySec, unsigned tries) {
    return impl->communicator.requestEvent(socketPath, event, delaySec, tries);
}

void DataHolder::notify(MessageEvent& event) {
    impl->communicator.notify(event);
}

}  // namespace datacom
