// Change tracking, tag text and merge of an object's instances.
#include <sstream>

#include "DataColumn.h"
#include "DataObject.h"
#include "DataRow.h"
#include "DataStoreConstants.h"
#include "DbgPrintClient.h"
#include "RowScans.h"
#include "TagText.h"

using Guard = std::lock_guard<std::recursive_mutex>;

bool DataObject::isChanged() {
    if (state != datastate::UNCHANGED)
        return true;
    if (!anyRowChanged(instances))
        return false;
    addState(datastate::CHANGED);
    return true;
}

Fcodes DataObject::touch() {
    Guard guard(mutex);
    const Fcodes result = touchRows(instances, true);
    setState(datastate::CHANGED);
    return result;
}

Fcodes DataObject::untouch() {
    Guard guard(mutex);
    const Fcodes result = touchRows(instances, false);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataObject::acceptChanges() {
    Guard guard(mutex);
    const Fcodes result = acceptRows(instances);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataObject::rollbackChanges() {
    Guard guard(mutex);
    const Fcodes result = rollbackRows(instances);
    state = datastate::UNCHANGED;
    return result;
}

void DataObject::toString(std::string& out) {
    Guard guard(mutex);
    out = "\t<Object Type=\"" + name + "\">\n\t\t<Parameters>\n";
    std::string piece;
    for (const auto& parameter : parameters) {
        parameter.second->toString(piece);
        out += piece;
    }
    out += "\t\t</Parameters>\n";
    for (const auto& instance : instances) {
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
        for (int from = getSegment(block, 0, "Column", segment); from >= 0;
             from = getSegment(block, from, "Column", segment)) {
            auto column = std::make_unique<DataColumn>();
            const Fcodes code = column->initFromString(segment);
            result |= code;
            if (code != FC_OK) {
                DBG(DBG_ERROR) << "initFromString: error in parameter fcode=" << std::hex
                               << static_cast<uint32_t>(code);
                continue;
            }
            const std::string parameterName = column->getName();
            addParameter(parameterName, column.release());
        }
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
