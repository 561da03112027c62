// The treatment of "COMMAND" requests: the commands every engine serves
// itself, and the hand-over of all others to the holder's execute.
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/IDataHolder.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"

namespace datacom {

namespace {

// The parameters "Add Row" and "Get Next Row" share: "Table" is required,
// "Row" optional (hasRow false when absent).
struct RowRequest {
    std::string table;
    bool hasRow = false;
    int row = 0;
};

Fcodes parseRowRequest(const std::string& commandText, RowRequest& request) {
    MessageCommand command;
    Fcodes code = command.initFromString(commandText);
    if (!isOk(code))
        return code;
    if (command.getParam(wire::PARAM_TABLE, request.table) == 0) {
        DBG(DBG_ERROR) << "treatCommandMsg: Not found parameter Table in:\n" << commandText;
        return FC_BODY_ERROR;
    }
    std::string row;
    request.hasRow = command.getParam(wire::PARAM_ROW, row) != 0;
    request.row = tagToInt(row);
    return FC_OK;
}

}  // namespace

Fcodes DataCommunicator::treatCommandMsg(MessageHeader& header, const std::string& body, MessageHeader& replyHeader,
                                         std::string& replyBody) {
    // A refusal is filled in like an answer; doWork turns it into a NACK.
    auto refuse = [&](Fcodes code) {
        replyHeader.ID = header.ID;
        replyHeader.Type = msgtype::ACK;
        replyHeader.Fcode = code;
        replyHeader.Size = 0;
        return code;
    };

    std::string bodySegment;
    if (getSegment(body, 0, wire::TAG_BODY, bodySegment) < 0) {
        DBG(DBG_ERROR) << "treatCommandMsg: Not Found BODY tags in msg:\n" << body;
        return refuse(FC_BODY_ERROR);
    }
    if (header.Type != msgtype::COMMAND)
        return FC_OK;
    std::string commandText;
    if (getSegment(bodySegment, 0, wire::TAG_COMMAND, commandText) < 0) {
        DBG(DBG_ERROR) << "treatCommandMsg: Not Found Command tags in msg:\n" << body;
        return refuse(FC_BODY_ERROR);
    }
    std::string commandId;
    if (getPropertyValue(commandText, 0, wire::ATTR_ID, commandId) < 0) {
        DBG(DBG_ERROR) << "treatCommandMsg: Not found tags ID in:\n" << commandText;
        return refuse(FC_BODY_ERROR);
    }

    std::string payload;
    Fcodes result = FC_OK;
    if (commandId == wire::CMD_SUBSCRIBE) {
        std::string parameter, paramName, value;
        if (getSegment(commandText, 0, wire::TAG_PARAMETER, parameter) < 0) {
            DBG(DBG_ERROR) << "treatCommandMsg: Not found tags Parameter in:\n" << commandText;
            return refuse(FC_BODY_ERROR);
        }
        getPropertyValue(parameter, 0, wire::ATTR_NAME, paramName);
        if (getPropertyValue(parameter, 0, wire::ATTR_VALUE, value) < 0 || paramName != wire::PARAM_SOCK_NAME) {
            DBG(DBG_ERROR) << "treatCommandMsg: Not found tags Name=SockName or Value in:\n" << commandText;
            return refuse(FC_BODY_ERROR);
        }
        subscribe(value);
    } else if (commandId == wire::CMD_ADD_ROW || commandId == wire::CMD_GET_NEXT_ROW) {
        RowRequest request;
        Fcodes parsed = parseRowRequest(commandText, request);
        if (!isOk(parsed))
            return refuse(parsed);
        IDataHolder* parameters = dataHolder != nullptr ? dataHolder->dataParameters() : nullptr;
        if (parameters == nullptr) {
            DBG(DBG_ERROR) << "treatCommandMsg: No data holder for command=" << commandId;
            return refuse(FC_UNAVAILABLE);
        }
        // The row the holder returns is deliberately not put into the reply:
        // every engine of the appliance answers these commands with the result
        // code alone, and requesters read the table itself for its rows.
        if (commandId == wire::CMD_ADD_ROW && request.hasRow)
            parameters->newRow(request.table, request.row);
        else if (commandId == wire::CMD_ADD_ROW)
            parameters->appendNewRow(request.table);
        else if (request.hasRow)
            parameters->getNextRowIndex(request.table, request.row);
        else
            parameters->getFirstRowIndex(request.table);
    } else if (commandId == wire::CMD_STOP_DBG_PRINT) {
        gDbgLevel = wire::DBG_LEVEL_SILENT;
    } else if (commandId == wire::CMD_START_DBG_PRINT) {
        gDbgLevel = wire::DBG_LEVEL_VERBOSE;
    } else if (dataHolder == nullptr) {
        DBG(DBG_ERROR) << "treatCommandMsg: No data holder for command=" << commandId;
        return refuse(FC_UNAVAILABLE);
    } else {
        result = dataHolder->execute(commandText, payload) | FC_OK;
    }

    replyHeader.ID = header.ID;
    replyHeader.Type = msgtype::ACK;
    replyHeader.Fcode = result;
    // Size is the payload's length without the BODY tags, deliberately: that is
    // how every engine of the appliance counts it, and readers only test it for
    // being positive before they look for the body.
    replyHeader.Size = static_cast<int32_t>(payload.size());
    replyBody.clear();
    if (!payload.empty()) {
        replyBody.reserve(payload.size() + 13);
        replyBody += "<BODY>";
        replyBody += payload;
        replyBody += "</BODY>";
    }
    return result;
}

}  // namespace datacom
