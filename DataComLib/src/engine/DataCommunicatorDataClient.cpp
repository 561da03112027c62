// Client side of the data requests: read or write one item of a peer's table
// ("Table" body) or one property of a peer's JSON data set ("DataSet" body).
// The peer answers with a "RESPONSE" repeating the request with the Item's
// Value filled in (DataCommunicatorData.cpp serves it).
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "engine/DataCommunicatorInternal.h"

namespace datacom {

namespace {

// `\t\t<Item Name="item" />` or, carrying a value, `\t\t<Item Name="item" Value="value" />`.
void appendItemLine(std::string& body, const std::string& item, const std::string* value) {
    body += "\t\t<Item Name=\"";
    body += item;
    if (value != nullptr) {
        body += "\" Value=\"";
        body += *value;
    }
    body += "\" />\n";
}

std::string tableBody(const std::string& table, int row, const std::string& item, const std::string* value) {
    std::string body = "<BODY>\n\t<Table Name=\"";
    body += table;
    body += "\" >\n\t\t<Row ID=\"";
    body += std::to_string(row);
    body += "\" >\n";
    appendItemLine(body, item, value);
    body += "\t\t</Row>\n\t</Table>\n</BODY>\n";
    return body;
}

std::string dataSetBody(const std::string& dataSet, const std::string& component, const std::string& item,
                        const std::string* value, const std::string& row) {
    std::string body = "<BODY>\n\t<DataSet ID=\"";
    body += dataSet;
    body += "\" >\n\t<Component Name=\"";
    body += component;
    body += "\" >\n";
    if (!row.empty()) {
        body += "\t\t<Row ID=\"";
        body += row;
        body += "\" >\n";
    }
    appendItemLine(body, item, value);
    if (!row.empty())
        body += "\t\t</Row>\n";
    body += "\t</Component>\n</DataSet>\n</BODY>\n";
    return body;
}

// Checks a data reply and takes the Value of its first Item, which must be
// the requested one. The reply's Fcode is not consulted: a refusal comes as a
// NACK and fails the header check. `value` is untouched on failure.
Fcodes takeItemValue(const char* op, const char* kind, const MessageHeader& request, const MessageHeader& reply,
                     const std::string& replyBody, const std::string& item, std::string& value) {
    if (reply.ID != request.ID || reply.Type != msgtype::RESPONSE) {
        DBG(DBG_ERROR) << op << ": Request Header was:\n" << headerText(request);
        DBG(DBG_ERROR) << op << ": Response Header mismatch:\n" << headerText(reply);
        return FC_HEADER_ERROR;
    }
    if (replyBody.empty()) {
        DBG(DBG_ERROR) << op << ": Body size=0 in " << kind << " response";
        return FC_BODY_ERROR;
    }
    std::string itemText, name, itemValue;
    if (getSegment(replyBody, 0, wire::TAG_ITEM, itemText) < 0) {
        DBG(DBG_ERROR) << op << ": No Item segment in response:\n" << replyBody;
        return FC_BODY_ERROR;
    }
    if (getPropertyValue(itemText, 0, wire::ATTR_NAME, name) < 0) {
        DBG(DBG_ERROR) << op << ": No Name tags in response:\n" << replyBody;
        return FC_BODY_ERROR;
    }
    if (name != item) {
        DBG(DBG_ERROR) << op << ": requested=" << item << " got=" << name << " in response:\n" << replyBody;
        return FC_BODY_ERROR;
    }
    if (getPropertyValue(itemText, 0, wire::ATTR_VALUE, itemValue) < 0) {
        DBG(DBG_ERROR) << op << ": No Value tags in response:\n" << replyBody;
        return FC_BODY_ERROR;
    }
    value = itemValue;
    return FC_OK;
}

}  // namespace

Fcodes DataCommunicator::exchangeItem(const char* op, const std::string& peer, const char* type,
                                      const std::string& body, const std::string& item, std::string& value,
                                      unsigned timeoutSec, unsigned tries) {
    MessageHeader request = outgoingHeader(type, FC_OK, body);
    MessageHeader reply;
    std::string replyBody;
    Fcodes code = sendRequest(peer, request, body, reply, replyBody, timeoutSec, tries);
    if (!isOk(code)) {
        DBG(DBG_ERROR) << op << ": Failed to sendRequest:\n" << headerText(request) << body;
        DBG(DBG_ERROR) << op << ": FCODE=0x" << std::hex << code;
        return code;
    }
    const char* kind = request.Type == msgtype::SET ? "set" : "get";
    return takeItemValue(op, kind, request, reply, replyBody, item, value);
}

Fcodes DataCommunicator::requestDataItem(const std::string& peer, const std::string& table, int row,
                                         const std::string& item, std::string& value, unsigned timeoutSec,
                                         unsigned tries) {
    return exchangeItem("requestDataItem", peer, msgtype::GET, tableBody(table, row, item, nullptr), item, value,
                        timeoutSec, tries);
}

Fcodes DataCommunicator::requestSetDataItem(const std::string& peer, const std::string& table, int row,
                                            const std::string& item, const std::string& value, unsigned timeoutSec,
                                            unsigned tries) {
    if (!fitsTagValue(value)) {
        DBG(DBG_ERROR) << "requestSetDataItem: value of item=" << item << " holds a '\"', '<' or '>': " << value;
        return FC_BAD_VALUE;
    }
    std::string echoed;  // read to check the reply, not returned
    return exchangeItem("requestSetDataItem", peer, msgtype::SET, tableBody(table, row, item, &value), item, echoed,
                        timeoutSec, tries);
}

Fcodes DataCommunicator::requestGetParam(const std::string& peer, const std::string& dataSet,
                                         const std::string& component, const std::string& item, std::string& value,
                                         ParamAccess access, const std::string& row, unsigned timeoutSec,
                                         unsigned tries) {
    // Both forms report as "requestDataItem", deliberately: one reader of the
    // log sees every data read under one name.
    const bool write = access == ParamAccess::Write;
    if (write && !fitsTagValue(value)) {
        DBG(DBG_ERROR) << "requestDataItem: value of item=" << item << " holds a '\"', '<' or '>': " << value;
        return FC_BAD_VALUE;
    }
    return exchangeItem("requestDataItem", peer, write ? msgtype::SET : msgtype::GET,
                        dataSetBody(dataSet, component, item, write ? &value : nullptr, row), item, value, timeoutSec,
                        tries);
}

}  // namespace datacom
