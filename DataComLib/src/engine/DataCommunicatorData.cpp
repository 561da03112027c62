// Data requests: "GET" reads and "SET" writes items of this process's data
// through its holder. This is how the web front end reads and edits channel
// data.
//
// Request body (after the header; whitespace between elements is free, only
// the first DataSet or, failing that, the first Table element is served):
//
//   <BODY>
//   	<DataSet ID="dataset" >                 ID "" or absent: each component's
//   	<Component Name="component" >          data set is looked up by its name
//   		<Item Name="property" />             the single instance (key "")
//   		<Row ID="key-or-index" >             an instance: its key, or for a
//   		<Item Name="property" />             component whose instances are an
//   		</Row>                               array, the decimal index
//   	</Component>
//   </DataSet>
//   </BODY>
//
//   <BODY>
//   	<Table Name="table" >
//   		<Row ID="row id" >
//   		<Item Name="column" />
//   		</Row>
//   	</Table>
//   </BODY>
//
// In a "SET" every Item carries Value="text". Any number of Components, Rows
// and Items; a Component's direct Items and Rows are served in request order;
// Items of a Table outside a Row are not read.
//
// Reply: "RESPONSE" with the request's ID, Fcode OK and Size = the length of
// the whole reply body (BODY tags included). The body repeats the request's
// structure with one element per line, indented as above, every Item written
// as `<Item Name="name" Value="value" />`:
//
//   <BODY>\n\t<DataSet ID="dataset" >\n\t<Component Name="component" >\n
//   \t\t<Row ID="key" >\n\t\t<Item Name="property" Value="value" />\n\t\t</Row>\n
//   \t</Component>\n</DataSet>\n</BODY>\n
//
//   <BODY>\n\t<Table Name="table" >\n\t\t<Row ID="3" >\n
//   \t\t<Item Name="column" Value="value" />\n\t\t</Row>\n\t</Table>\n</BODY>\n
//
// Values: GET gives the value in effect (committed), SET the value now
// pending; JSON booleans as "true"/"false", integers in decimal. SET writes
// pending values only (setTextParam, setStringParam): they take effect with
// "Accept Changes".
//
// Refusals (the reply becomes a NACK with the code and Size 0): an unknown data
// set, component, instance, table, row or item gives FC_NO_SUCH_NAME; a missing
// Name, ID or SET Value, or a body with neither element, FC_BODY_ERROR;
// a value or an echoed name holding '"', '<' or '>', which the wire cannot
// carry, FC_BAD_VALUE (a SET's value before it is written, a stored one before
// it is written out); a failed write the holder's code. Every refusal logs a
// line beginning "treatDataMsg: ". All Items are tried and the codes merged.
// After a failed SET the holder's rollbackChanges() runs (treatMsg), and for a
// DataSet body the JSON values this request wrote are put back as they were
// pending before it (a value, or none), in reverse order, so that no part of a
// refused SET stays pending while other clients' pending edits survive.
#include <string>
#include <vector>

#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/IDataHolder.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"

namespace datacom {

namespace {

// An instance of a JSON component: by index in an array, or by key ("" is the
// single instance).
struct Instance {
    bool byIndex = false;
    int index = 0;
    std::string key;
};

// The opening tag of an element, so that attribute searches cannot reach
// into its children (a Row's ID is not its DataSet's ID).
std::string openingTag(const std::string& element) {
    return element.substr(0, element.find('>') + 1);
}

bool attribute(const std::string& element, const char* name, std::string& value) {
    return getPropertyValue(openingTag(element), 0, name, value) >= 0;
}

// Where the next `<tag ` or `<tag>` starts at or after `from`; npos if none.
size_t findElement(const std::string& text, size_t from, const char* tag) {
    const std::string open = std::string("<") + tag;
    for (size_t at = text.find(open, from); at != std::string::npos; at = text.find(open, at + 1)) {
        char next = at + open.size() < text.size() ? text[at + open.size()] : '\0';
        if (next == ' ' || next == '>')
            return at;
    }
    return std::string::npos;
}

// A name of the request that the reply echoes: refused, as a value would be,
// when it holds what the reply could not carry (only a '<' gets this far).
bool echoFits(const char* what, const std::string& name) {
    if (fitsTagValue(name))
        return true;
    DBG(DBG_ERROR) << "treatDataMsg: " << what << "=" << name << " holds a '\"', '<' or '>'";
    return false;
}

bool isDecimal(const std::string& text) {
    if (text.empty() || text.size() > 9)
        return false;
    for (char c : text)
        if (c < '0' || c > '9')
            return false;
    return true;
}

// Serves one data request body into `out`; one object per request.
class DataRequest {
public:
    DataRequest(IDataHolder& holder, bool isSet, std::string& out) : holder(holder), isSet(isSet), out(out) {}

    Fcodes serveDataSet(const std::string& element);
    Fcodes serveTable(const std::string& element);
    // Puts every JSON value this request wrote back to its earlier pending state.
    void undoWrites();

private:
    // A JSON value this request wrote, and what was pending there before it.
    struct Written {
        std::string dataSet, component, property;
        Instance instance;
        bool wasPending;
        std::string previous;
    };

    Fcodes serveComponent(const std::string& dataSetId, const std::string& element);
    Fcodes serveJsonItem(const std::string& dataSet, const std::string& component,
                         const std::vector<std::string>& properties, const std::string& rowId, const Instance& instance,
                         const std::string& element);
    Fcodes serveTableItem(const std::string& table, const std::string& rowId, const std::string& element);
    Fcodes readJsonValue(const std::string& dataSet, const std::string& component, const std::string& property,
                         const Instance& instance, std::string& value);
    bool findInstance(const std::string& dataSet, const std::string& component, const std::string& rowId,
                      Instance& instance);
    // Name (and, for SET, Value) of an Item: FC_BODY_ERROR when one is
    // missing, FC_BAD_VALUE for a SET value the reply could not carry back.
    Fcodes itemAttributes(const std::string& element, std::string& name, std::string& value);
    Fcodes appendItem(const std::string& name, const std::string& value);

    IDataHolder& holder;
    const bool isSet;
    std::string& out;
    std::vector<Written> written;
};

// Calls `operation` with the instance's selector: its index or its key.
template <typename Operation>
auto onInstance(const Instance& instance, Operation operation) -> decltype(operation(0)) {
    return instance.byIndex ? operation(instance.index) : operation(instance.key);
}

Fcodes DataRequest::serveDataSet(const std::string& element) {
    std::string dataSetId;
    attribute(element, wire::ATTR_ID, dataSetId);
    if (!echoFits("dataset", dataSetId))
        return FC_BAD_VALUE;
    out += "\t<DataSet ID=\"" + dataSetId + "\" >\n";
    Fcodes result = FC_OK;
    std::string component;
    for (int at = 0; (at = getSegment(element, at, wire::TAG_COMPONENT, component)) >= 0;)
        result |= serveComponent(dataSetId, component);
    out += "</DataSet>\n";
    return result;
}

Fcodes DataRequest::serveComponent(const std::string& dataSetId, const std::string& element) {
    std::string component;
    if (!attribute(element, wire::ATTR_NAME, component)) {
        DBG(DBG_ERROR) << "treatDataMsg: Not found tags Name in:\n" << element;
        return FC_BODY_ERROR;
    }
    if (!echoFits("comp", component))
        return FC_BAD_VALUE;
    std::string dataSet = dataSetId;
    if (dataSet.empty() && !isOk(holder.findDataSetWithComponent(dataSet, component))) {
        DBG(DBG_ERROR) << "treatDataMsg: Not Found a DataSet with comp=" << component;
        return FC_NO_SUCH_NAME;
    }
    std::vector<std::string> properties;
    if (!isOk(holder.getProperties(dataSet, component, properties))) {
        DBG(DBG_ERROR) << "treatDataMsg: No such comp=" << component << " in dataset=" << dataSet;
        return FC_NO_SUCH_NAME;
    }

    out += "\t<Component Name=\"" + component + "\" >\n";
    Fcodes result = FC_OK;
    const Instance single;
    std::string child;
    size_t at = 0;
    for (;;) {
        size_t rowAt = findElement(element, at, wire::TAG_ROW);
        size_t itemAt = findElement(element, at, wire::TAG_ITEM);
        if (rowAt == std::string::npos && itemAt == std::string::npos)
            break;
        const bool isRow = rowAt < itemAt;
        int end = getSegment(element, static_cast<int>(isRow ? rowAt : itemAt), isRow ? wire::TAG_ROW : wire::TAG_ITEM,
                             child);
        if (end < 0)
            break;  // an element without its end: nothing more to serve
        at = static_cast<size_t>(end);
        if (!isRow) {
            result |= serveJsonItem(dataSet, component, properties, "", single, child);
            continue;
        }
        std::string rowId;
        if (!attribute(child, wire::ATTR_ID, rowId)) {
            DBG(DBG_ERROR) << "treatDataMsg: Not found tags ID in:\n" << child;
            result |= FC_BODY_ERROR;
            continue;
        }
        if (!echoFits("row", rowId)) {
            result |= FC_BAD_VALUE;
            continue;
        }
        Instance instance;
        if (!findInstance(dataSet, component, rowId, instance)) {
            DBG(DBG_ERROR) << "treatDataMsg: No such row=" << rowId << " in comp=" << component
                           << " dataset=" << dataSet;
            result |= FC_NO_SUCH_NAME;
            continue;
        }
        out += "\t\t<Row ID=\"" + rowId + "\" >\n";
        std::string item;
        for (int itemEnd = 0; (itemEnd = getSegment(child, itemEnd, wire::TAG_ITEM, item)) >= 0;)
            result |= serveJsonItem(dataSet, component, properties, rowId, instance, item);
        out += "\t\t</Row>\n";
    }
    out += "\t</Component>\n";
    return result;
}

bool DataRequest::findInstance(const std::string& dataSet, const std::string& component, const std::string& rowId,
                               Instance& instance) {
    if (isDecimal(rowId) && holder.hasInstance(dataSet, component, tagToInt(rowId))) {
        instance.byIndex = true;
        instance.index = tagToInt(rowId);
        return true;
    }
    instance.key = rowId;
    return holder.hasInstance(dataSet, component, rowId);
}

Fcodes DataRequest::serveJsonItem(const std::string& dataSet, const std::string& component,
                                  const std::vector<std::string>& properties, const std::string& rowId,
                                  const Instance& instance, const std::string& element) {
    std::string property, value;
    if (const Fcodes refused = itemAttributes(element, property, value); !isOk(refused))
        return refused;
    bool known = false;
    for (const std::string& candidate : properties)
        known = known || candidate == property;
    if (!known) {
        DBG(DBG_ERROR) << "treatDataMsg: No such item=" << property << " in comp=" << component
                       << " dataset=" << dataSet;
        return FC_NO_SUCH_NAME;
    }
    if (isSet) {
        Written before{dataSet, component, property, instance, false, std::string()};
        before.wasPending = onInstance(instance, [&](const auto& selector) {
            return holder.isChangedProperty(dataSet, component, property, selector);
        });
        if (before.wasPending && !isOk(readJsonValue(dataSet, component, property, instance, before.previous)))
            before.wasPending = false;  // unreadable: undone by dropping it
        Fcodes code = onInstance(instance, [&](const auto& selector) {
            return holder.setTextParam(dataSet, component, property, value, selector);
        });
        if (!isOk(code)) {
            DBG(DBG_ERROR) << "treatDataMsg: dataHolder->setTextParam() failed: table=" << dataSet
                           << " comp=" << component << " row=" << rowId << " item=" << property << " value=" << value
                           << " fcode=0x" << std::hex << code;
            return code;
        }
        written.push_back(std::move(before));
    }
    Fcodes read = readJsonValue(dataSet, component, property, instance, value);
    if (!isOk(read)) {
        DBG(DBG_ERROR) << "treatDataMsg: Couldn't read dataset=" << dataSet << " comp=" << component << " row=" << rowId
                       << " item=" << property << " fcode=0x" << std::hex << read;
        return read;
    }
    return appendItem(property, value);
}

Fcodes DataRequest::readJsonValue(const std::string& dataSet, const std::string& component, const std::string& property,
                                  const Instance& instance, std::string& value) {
    // The text read serves every type in a store that converts; a stricter
    // store refuses other types as FC_WRONG_TYPE, and they are read in their own.
    Fcodes code = onInstance(instance, [&](const auto& selector) {
        return isSet ? holder.getNewTextParam(dataSet, component, property, value, selector)
                     : holder.getTextParam(dataSet, component, property, value, selector);
    });
    if (code != FC_WRONG_TYPE)
        return code;
    bool flag = false;
    code = onInstance(instance, [&](const auto& selector) {
        return isSet ? holder.getNewBoolParam(dataSet, component, property, flag, selector)
                     : holder.getBoolParam(dataSet, component, property, flag, selector);
    });
    if (isOk(code)) {
        value = flag ? "true" : "false";
        return code;
    }
    if (code != FC_WRONG_TYPE)
        return code;
    int number = 0;
    code = onInstance(instance, [&](const auto& selector) {
        return isSet ? holder.getNewIntParam(dataSet, component, property, number, selector)
                     : holder.getIntParam(dataSet, component, property, number, selector);
    });
    if (isOk(code))
        value = std::to_string(number);
    return code;
}

void DataRequest::undoWrites() {
    for (auto it = written.rbegin(); it != written.rend(); ++it) {
        const Written& w = *it;
        Fcodes code = onInstance(w.instance, [&](const auto& selector) {
            return w.wasPending ? holder.setTextParam(w.dataSet, w.component, w.property, w.previous, selector)
                                : holder.untouchProperty(w.dataSet, w.component, w.property, selector);
        });
        if (!isOk(code))
            DBG(DBG_ERROR) << "treatDataMsg: Couldn't undo the write of dataset=" << w.dataSet
                           << " comp=" << w.component << " item=" << w.property << " fcode=0x" << std::hex << code;
    }
    written.clear();
}

Fcodes DataRequest::serveTable(const std::string& element) {
    std::string table;
    if (!attribute(element, wire::ATTR_NAME, table)) {
        DBG(DBG_ERROR) << "treatDataMsg: Not found tags Name in:\n" << element;
        return FC_BODY_ERROR;
    }
    if (!echoFits("table", table))
        return FC_BAD_VALUE;
    out += "\t<Table Name=\"" + table + "\" >\n";
    Fcodes result = FC_OK;
    std::string row, rowId, item;
    for (int at = 0; (at = getSegment(element, at, wire::TAG_ROW, row)) >= 0;) {
        if (!attribute(row, wire::ATTR_ID, rowId)) {
            DBG(DBG_ERROR) << "treatDataMsg: Not found tags ID in:\n" << row;
            result |= FC_BODY_ERROR;
            continue;
        }
        if (!echoFits("row", rowId)) {
            result |= FC_BAD_VALUE;
            continue;
        }
        out += "\t\t<Row ID=\"" + rowId + "\" >\n";
        for (int itemEnd = 0; (itemEnd = getSegment(row, itemEnd, wire::TAG_ITEM, item)) >= 0;)
            result |= serveTableItem(table, rowId, item);
        out += "\t\t</Row>\n";
    }
    out += "\t</Table>\n";
    return result;
}

Fcodes DataRequest::serveTableItem(const std::string& table, const std::string& rowId, const std::string& element) {
    std::string column, value;
    if (const Fcodes refused = itemAttributes(element, column, value); !isOk(refused))
        return refused;
    const int row = tagToInt(rowId);
    if (isSet) {
        Fcodes written = holder.setStringParam(table, row, column, value);
        if (!isOk(written)) {
            DBG(DBG_ERROR) << "treatDataMsg: dataHolder->setStringParam() failed: table=" << table << " row=" << rowId
                           << " item=" << column << " value=" << value << " fcode=0x" << std::hex << written;
            return written;
        }
    }
    Fcodes read =
        isSet ? holder.getNewStringParam(table, row, column, value) : holder.getStringParam(table, row, column, value);
    if (!isOk(read)) {
        DBG(DBG_ERROR) << "treatDataMsg: Couldn't read table=" << table << " row=" << rowId << " item=" << column
                       << " fcode=0x" << std::hex << read;
        return read;
    }
    return appendItem(column, value);
}

Fcodes DataRequest::itemAttributes(const std::string& element, std::string& name, std::string& value) {
    if (!attribute(element, wire::ATTR_NAME, name)) {
        DBG(DBG_ERROR) << "treatDataMsg: Not found tags Name in:\n" << element;
        return FC_BODY_ERROR;
    }
    if (!echoFits("item", name))
        return FC_BAD_VALUE;
    if (isSet && !attribute(element, wire::ATTR_VALUE, value)) {
        DBG(DBG_ERROR) << "treatDataMsg: Not found tags Value in:\n" << element;
        return FC_BODY_ERROR;
    }
    // Refused before it is written: a stored value no reply can carry would
    // make every later GET of it fail. (Only '<' reaches here: a '"' ends
    // the attribute and a '>' the element.)
    if (isSet && !fitsTagValue(value)) {
        DBG(DBG_ERROR) << "treatDataMsg: value of item=" << name << " holds a '\"', '<' or '>': " << value;
        return FC_BAD_VALUE;
    }
    return FC_OK;
}

Fcodes DataRequest::appendItem(const std::string& name, const std::string& value) {
    if (!fitsTagValue(value)) {
        DBG(DBG_ERROR) << "treatDataMsg: value of item=" << name << " holds a '\"', '<' or '>': " << value;
        return FC_BAD_VALUE;
    }
    out += "\t\t<Item Name=\"" + name + "\" Value=\"" + value + "\" />\n";
    return FC_OK;
}

}  // namespace

Fcodes DataCommunicator::treatDataMsg(MessageHeader& header, const std::string& body, MessageHeader& replyHeader,
                                      std::string& replyBody) {
    replyHeader.ID = header.ID;
    replyHeader.Type = msgtype::RESPONSE;
    replyHeader.Size = 0;
    auto refuse = [&](Fcodes code) {
        replyHeader.Fcode = code;
        replyBody.clear();
        return code;
    };

    IDataHolder* parameters = dataHolder != nullptr ? dataHolder->dataParameters() : nullptr;
    if (parameters == nullptr) {
        DBG(DBG_ERROR) << "treatDataMsg: No data holder for " << header.Type;
        return refuse(FC_UNAVAILABLE);
    }
    std::string bodySegment, element, payload;
    if (getSegment(body, 0, wire::TAG_BODY, bodySegment) < 0) {
        DBG(DBG_ERROR) << "treatDataMsg: Not Found BODY tags in msg:\n" << body;
        return refuse(FC_BODY_ERROR);
    }
    const bool isSet = header.Type == msgtype::SET;
    DataRequest request(*parameters, isSet, payload);
    Fcodes result;
    if (getSegment(bodySegment, 0, wire::TAG_DATASET, element) >= 0) {
        result = request.serveDataSet(element);
        if (isSet && !isOk(result))
            request.undoWrites();
    } else if (getSegment(bodySegment, 0, wire::TAG_TABLE, element) >= 0) {
        result = request.serveTable(element);
    } else {
        DBG(DBG_ERROR) << "treatDataMsg: Not found tags DataSet or Table in:\n" << bodySegment;
        result = FC_BODY_ERROR;
    }
    if (!isOk(result))
        return refuse(result);

    replyBody.clear();
    replyBody.reserve(payload.size() + 16);
    replyBody += "<BODY>\n";
    replyBody += payload;
    replyBody += "</BODY>\n";
    replyHeader.Fcode = FC_OK;
    replyHeader.Size = static_cast<int32_t>(replyBody.size());
    return FC_OK;
}

}  // namespace datacom
