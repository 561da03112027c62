#include "datacom/DataTable.h"

#include <cstdint>

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DbgPrintClient.h"
#include "tabular/Retired.h"
#include "tabular/RowOwner.h"

namespace datacom {

DataTable::DataTable() : DataTable(std::string()) {}

DataTable::DataTable(const std::string& tableName)
    : name(tableName),
      retiredColumns(std::make_unique<Retired<DataColumn>>()),
      retiredItems(std::make_unique<Retired<DataItem>>()) {}

DataTable::~DataTable() {
    cleanUpRelations();
}

void DataTable::cleanUpRelations() {
    Guard guard(mutex);
    // A retired item that was put into a row again belongs to that row now.
    retiredItems->forget([](const DataItem& item) { return item.getRow() != nullptr; });
    retiredItems->clear();
    rows.clear();
    columnsByName.clear();
    columns.clear();
    retiredColumns->clear();
}

Fcodes DataTable::acceptChanges() {
    Guard guard(mutex);
    const Fcodes result = rowowner::acceptChanges(rows);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataTable::touch() {
    Guard guard(mutex);
    const Fcodes result = rowowner::forEachRow(rows, &DataRow::touch);
    setState(datastate::CHANGED);
    return result;
}

Fcodes DataTable::untouch() {
    Guard guard(mutex);
    const Fcodes result = rowowner::forEachRow(rows, &DataRow::untouch);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataTable::rollbackChanges() {
    Guard guard(mutex);
    const Fcodes result = rowowner::rollbackChanges(rows);
    state = datastate::UNCHANGED;
    return result;
}

bool DataTable::isChanged() {
    if (state != datastate::UNCHANGED)
        return true;
    if (!rowowner::anyRowMarked(rows))
        return false;
    addState(datastate::CHANGED);
    return true;
}

void DataTable::setState(uint32_t bits) {
    state = bits;
    rowowner::markDataSet(dataSet, bits);
}

void DataTable::addState(uint32_t bits) {
    rowowner::markDataSet(dataSet, state |= bits);
}

DataRow* DataTable::getRows(int32_t id) const {
    auto found = rows.find(id);
    return found == rows.end() ? nullptr : found->second.get();
}

Fcodes DataTable::addRows(int32_t id, DataRow* row) {
    if (!row)
        return FC_BAD_VALUE;
    Guard guard(mutex);
    DataRow* held = getRows(row->getId());
    if (held == row && row->getId() != id)  // one row, one id: it has one owner
        return FC_BAD_VALUE;
    std::unique_ptr<DataRow>& slot = rows[id];
    if (slot.get() != row)
        slot.reset(row);
    row->setId(id);
    row->setTable(this);
    setState(datastate::CHANGED);
    return FC_OK;
}

DataRow::ColumnRefs DataTable::columnRefs() const {
    DataRow::ColumnRefs refs;
    for (const auto& column : columns)
        refs.emplace_back(column->getName(), column.get());
    return refs;
}

DataRow* DataTable::newRow(int32_t id, const DataRow* source, bool overwrite) {
    Guard guard(mutex);
    if (DataRow* existing = getRows(id)) {
        if (overwrite) {
            existing->overwriteItems(columnRefs(), source, "newRow");
            existing->addState(datastate::CHANGED);
        }
        addState(datastate::CHANGED);
        return existing;
    }
    DataRow* row = new DataRow(id);
    addRows(id, row);
    row->fillItems(columnRefs(), source);
    row->addState(datastate::NEW);
    addState(datastate::CHANGED);
    return row;
}

int32_t DataTable::getAvailableRowId() {
    Guard guard(mutex);
    int32_t candidate = 1;
    for (const auto& row : rows) {
        if (row.first > candidate)
            break;
        if (row.first == candidate)
            ++candidate;
    }
    return candidate;
}

int32_t DataTable::newRow() {
    Guard guard(mutex);
    return newRow(getAvailableRowId(), nullptr, false)->getId();
}

int32_t DataTable::appendNewRow() {
    Guard guard(mutex);
    const int64_t id = rows.empty() ? 1 : int64_t{rows.rbegin()->first} + 1;
    if (id <= 0 || id > INT32_MAX)  // no positive id is left above the highest one
        return 0;
    DataRow* row = newRow(static_cast<int32_t>(id), nullptr, false);
    return row ? row->getId() : 0;
}

Fcodes DataTable::deleteRow(int32_t id) {
    Guard guard(mutex);
    DataRow* row = getRows(id);
    if (!row)
        return FC_NO_SUCH_NAME;
    row->addState(datastate::DELETED);
    addState(datastate::CHANGED);
    return FC_OK;
}

Fcodes DataTable::doDeleteRow(int32_t id) {
    Guard guard(mutex);
    rows.erase(id);
    return FC_OK;
}

void DataTable::doDeleteAllRows() {
    Guard guard(mutex);
    rows.clear();
}

int32_t DataTable::getFirstRowIndex() {
    Guard guard(mutex);
    for (const auto& row : rows)
        if (!(row.second->getState() & datastate::DELETED))
            return row.first;
    return 0;
}

int32_t DataTable::getNextRowIndex(int32_t id) {
    Guard guard(mutex);
    auto at = rows.find(id);
    if (at == rows.end())
        return 0;
    for (++at; at != rows.end(); ++at)
        if (at->second->getState() != datastate::DELETED)
            return at->first;
    return 0;
}

int32_t DataTable::getLastRowIndex() {
    Guard guard(mutex);
    for (auto at = rows.rbegin(); at != rows.rend(); ++at)
        if (at->second->getState() == datastate::UNCHANGED)
            return at->first;
    return 0;
}

}  // namespace datacom
