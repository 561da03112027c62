// The tag text of an object and its merge against a reference object.
#include <sstream>

#include "datacom/DataColumn.h"
#include "datacom/DataObject.h"
#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

void DataObject::toString(std::string& out) {
    Guard guard(mutex);
    out = "\t<Object Type=\"" + name + "\">\n\t\t<Parameters>\n";
    std::string piece;
    for (const auto& parameter : parameters) {
        parameter.second->toString(piece);
        out += piece;
    }
    out += "\t\t</Parameters>\n";
    for (const auto& instance : rows) {
        instance.second->toString(piece);
        out += piece;
    }
    out += "\t</Object>\n";
}

// Parameters from the Parameters block, then every Row block with an ID as an
// instance named by that ID text.
Fcodes DataObject::initFromString(const std::string& text) {
    if (getPropertyValue(text, 0, "Type", name) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found Type in:" << text;
        return FC_BODY_ERROR;
    }
    Fcodes result = FC_OK;
    std::string block, segment;
    if (getSegment(text, 0, "Parameters", block) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found Parameters in:" << text;
    } else {
        result =
            parseColumns(block, "parameter", [this](DataColumn* column) { addParameter(column->getName(), column); });
    }
    for (int from = getSegment(text, 0, "Row", segment); from >= 0; from = getSegment(text, from, "Row", segment)) {
        std::string instanceName;
        if (getPropertyValue(segment, 0, "ID", instanceName) < 0)
            continue;
        const Fcodes code = newInstance(instanceName, nullptr, false)->initFromString(segment);
        if (code > FC_OK)
            DBG(DBG_ERROR) << "initFromString: error in instance=" << instanceName << " fcode" << std::hex
                           << static_cast<uint32_t>(code);
        result |= code;
    }
    return result;
}

Fcodes DataObject::update(DataObject& reference, bool keepOwnColumns, bool mergeColumns, bool mergeRows,
                          bool overwriteRows) {
    if (mergeColumns) {
        for (const std::string& parameterName : reference.getParameters()) {
            const DataColumn& theirs = *reference.getParameter(parameterName);
            DataColumn* mine = getParameter(parameterName);
            if (mine && mine->isEqualTo(theirs))
                continue;
            if (mine) {
                DBG(DBG_WARN) << "update: dataObject=" << name << " column=" << parameterName
                              << " changed. Replacing...";
                replaceParameter(parameterName, new DataColumn(theirs));
            } else {
                addParameter(parameterName, new DataColumn(theirs));
            }
        }
    }
    if (!keepOwnColumns) {
        for (const std::string& parameterName : getParameters())
            if (!reference.getParameter(parameterName))
                removeParameter(parameterName);
    }
    if (!mergeRows)
        return FC_OK;
    for (const std::string& instanceName : reference.getInstances()) {
        DBG(DBG_INFO) << "update: adding rowId=" << instanceName;
        newInstance(instanceName, reference.getInstance(instanceName), overwriteRows);
    }
    return FC_OK;
}

}  // namespace datacom
