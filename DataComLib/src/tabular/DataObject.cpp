#include "datacom/DataObject.h"

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DbgPrintClient.h"
#include "tabular/Retired.h"
#include "tabular/RowOwner.h"

namespace datacom {

DataObject::DataObject() : DataObject(std::string()) {}

DataObject::DataObject(const std::string& objectName)
    : name(objectName), retiredParameters(std::make_unique<Retired<DataColumn>>()) {}

DataObject::~DataObject() {
    cleanUpRelations();
}

void DataObject::cleanUpRelations() {
    Guard guard(mutex);
    rows.clear();
    parameters.clear();
    retiredParameters->clear();
}

Fcodes DataObject::acceptChanges() {
    Guard guard(mutex);
    const Fcodes result = rowowner::acceptChanges(rows);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataObject::touch() {
    Guard guard(mutex);
    const Fcodes result = rowowner::forEachRow(rows, &DataRow::touch);
    setState(datastate::CHANGED);
    return result;
}

Fcodes DataObject::untouch() {
    Guard guard(mutex);
    const Fcodes result = rowowner::forEachRow(rows, &DataRow::untouch);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataObject::rollbackChanges() {
    Guard guard(mutex);
    const Fcodes result = rowowner::rollbackChanges(rows);
    state = datastate::UNCHANGED;
    return result;
}

bool DataObject::isChanged() {
    if (state != datastate::UNCHANGED)
        return true;
    if (!rowowner::anyRowMarked(rows))
        return false;
    addState(datastate::CHANGED);
    return true;
}

void DataObject::setState(uint32_t bits) {
    state = bits;
    rowowner::markDataSet(dataSet, bits);
}

void DataObject::addState(uint32_t bits) {
    rowowner::markDataSet(dataSet, state |= bits);
}

std::vector<std::string> DataObject::getParameters() {
    Guard guard(mutex);
    std::vector<std::string> names;
    for (const auto& parameter : parameters)
        names.push_back(parameter.first);
    return names;
}

DataColumn* DataObject::getParameter(const std::string& parameterName) const {
    auto found = parameters.find(parameterName);
    return found == parameters.end() ? nullptr : found->second.get();
}

bool DataObject::holds(const DataColumn* column) const {
    for (const auto& parameter : parameters)
        if (parameter.second.get() == column)
            return true;
    return false;
}

// A column the object already holds (under any name) is refused: it has one owner.
void DataObject::addParameter(const std::string& parameterName, DataColumn* column) {
    if (!column || holds(column))
        return;
    if (getParameter(parameterName))
        removeParameter(parameterName);
    retiredParameters->reclaim(column);
    parameters[parameterName].reset(column);
    for (const auto& instance : rows) {
        instance.second->addDataItem(parameterName, new DataItem(column));
        instance.second->addState(datastate::CHANGED);
    }
}

// The items taken out and the column are destroyed here: nothing else owns them.
void DataObject::removeParameter(const std::string& parameterName) {
    auto found = parameters.find(parameterName);
    if (found == parameters.end())
        return;
    for (const auto& instance : rows) {
        instance.second->removeDataItem(parameterName);
        instance.second->addState(datastate::CHANGED);
    }
    parameters.erase(found);
}

void DataObject::removeParameter(DataColumn* column) {
    for (const auto& parameter : parameters) {
        if (parameter.second.get() == column) {
            removeParameter(std::string(parameter.first));
            return;
        }
    }
}

// The replaced column stays alive while items may still point at it (with a
// null replacement they keep it); it is freed with the object.
void DataObject::replaceParameter(const std::string& parameterName, DataColumn* column) {
    if (column && holds(column))
        return;
    auto found = parameters.find(parameterName);
    if (found != parameters.end()) {
        retiredParameters->keep(std::move(found->second));
        parameters.erase(found);
    }
    if (!column)
        return;
    retiredParameters->reclaim(column);
    parameters[parameterName].reset(column);
    for (const auto& instance : rows)
        if (DataItem* item = instance.second->getDataItem(parameterName))
            adaptItemToColumn(*item, *column, parameterName, "replaceParameter");
}

std::vector<std::string> DataObject::getInstances() {
    Guard guard(mutex);
    std::vector<std::string> names;
    for (const auto& instance : rows)
        names.push_back(instance.first);
    return names;
}

DataRow* DataObject::getInstance(const std::string& instanceName) const {
    auto found = rows.find(instanceName);
    return found == rows.end() ? nullptr : found->second.get();
}

// A row the object already holds under another name is refused (FC_BAD_VALUE).
Fcodes DataObject::addInstance(const std::string& instanceName, DataRow* row) {
    if (!row)
        return FC_BAD_VALUE;
    Guard guard(mutex);
    for (const auto& instance : rows)
        if (instance.second.get() == row && instance.first != instanceName)
            return FC_BAD_VALUE;
    std::unique_ptr<DataRow>& slot = rows[instanceName];
    if (slot.get() != row)
        slot.reset(row);
    row->setObject(this);
    setState(datastate::CHANGED);
    return FC_OK;
}

DataRow* DataObject::newInstance(const std::string& instanceName, const DataRow* source, bool overwrite) {
    Guard guard(mutex);
    DataRow::ColumnRefs refs;
    for (const auto& parameter : parameters)
        refs.emplace_back(parameter.first, parameter.second.get());
    if (DataRow* existing = getInstance(instanceName)) {
        if (overwrite) {
            existing->overwriteItems(refs, source, "newInstance");
            existing->addState(datastate::CHANGED);
        }
        addState(datastate::CHANGED);
        return existing;
    }
    DataRow* row = new DataRow(instanceName);
    addInstance(instanceName, row);
    row->fillItems(refs, source);
    row->addState(datastate::NEW);
    addState(datastate::CHANGED);
    return row;
}

Fcodes DataObject::deleteInstance(const std::string& instanceName) {
    Guard guard(mutex);
    DataRow* row = getInstance(instanceName);
    if (!row)
        return FC_NO_SUCH_NAME;
    row->addState(datastate::DELETED);
    addState(datastate::CHANGED);
    return FC_OK;
}

Fcodes DataObject::doDeleteInstance(const std::string& instanceName) {
    Guard guard(mutex);
    rows.erase(instanceName);
    return FC_OK;
}

void DataObject::doDeleteAllInstances() {
    Guard guard(mutex);
    rows.clear();
}

}  // namespace datacom
