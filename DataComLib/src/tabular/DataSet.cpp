#include "datacom/DataSet.h"

#include <algorithm>
#include <sstream>

#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DataTable.h"
#include "datacom/DbgPrintClient.h"
#include "tabular/Retired.h"

namespace datacom {

DataSet::DataSet() : DataSet(std::string()) {}

DataSet::DataSet(const std::string& dataSetId)
    : id(dataSetId), state(datastate::UNCHANGED), retiredTables(std::make_unique<Retired<DataTable>>()) {}

DataSet::~DataSet() {
    cleanUpRelations();
}

void DataSet::cleanUpRelations() {
    tableOrder.clear();
    tables.clear();
    retiredTables->clear();
}

DataTable* DataSet::getTable(const std::string& tableName) const {
    auto found = tables.find(tableName);
    return found == tables.end() ? nullptr : found->second.get();
}

void DataSet::addTable(const std::string& tableName, DataTable* table) {
    if (!table)
        return;
    DataTable* current = getTable(tableName);
    if (current == table)
        return;
    for (const auto& held : tables)
        if (held.second.get() == table)  // already held under another name: one owner only
            return;
    if (current)
        removeTable(current);
    retiredTables->reclaim(table);
    tables[tableName].reset(table);
    tableOrder.push_back(table);
    table->setDataSet(this);
    state = datastate::CHANGED;
}

void DataSet::removeTable(const std::string& tableName) {
    removeTable(getTable(tableName));
}

void DataSet::removeTable(DataTable* table) {
    for (auto byName = tables.begin(); byName != tables.end(); ++byName) {
        if (byName->second.get() != table)
            continue;
        tableOrder.erase(std::find(tableOrder.begin(), tableOrder.end(), table));
        table->setDataSet(nullptr);
        retiredTables->keep(std::move(byName->second));
        tables.erase(byName);
        return;
    }
}

// Runs one change operation on every table, in name order; the or of their codes.
Fcodes DataSet::forEachTable(Fcodes (DataTable::*operation)()) {
    Fcodes result = FC_OK;
    for (auto& table : tables)
        result |= ((*table.second).*operation)();
    return result;
}

Fcodes DataSet::acceptChanges() {
    const Fcodes result = forEachTable(&DataTable::acceptChanges);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataSet::rollbackChanges() {
    DBG(DBG_INFO) << "rollbackChanges: executing...";
    const Fcodes result = forEachTable(&DataTable::rollbackChanges);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataSet::touch() {
    const Fcodes result = forEachTable(&DataTable::touch);
    state = datastate::CHANGED;
    return result;
}

Fcodes DataSet::untouch() {
    const Fcodes result = forEachTable(&DataTable::untouch);
    state = datastate::UNCHANGED;
    return result;
}

Fcodes DataSet::touch(const std::string& tableName) {
    if (DataTable* table = getTable(tableName)) {
        table->touch();
        state = datastate::CHANGED;
    }
    return FC_OK;
}

Fcodes DataSet::untouch(const std::string& tableName) {
    if (DataTable* table = getTable(tableName))
        table->untouch();
    return FC_OK;
}

bool DataSet::isChanged() {
    if (state != datastate::UNCHANGED)
        return true;
    for (auto& table : tables) {
        if (table.second->isChanged()) {
            state |= datastate::CHANGED;
            return true;
        }
    }
    return false;
}

Fcodes DataSet::update(DataSet& reference, bool keepOwnTables, bool addMissingTables, bool keepOwnColumns,
                       bool mergeColumns, bool mergeRows, bool overwriteRows) {
    for (auto at = reference.tablesBegin(); at != reference.tablesEnd(); ++at) {
        DataTable& theirs = **at;
        if (DataTable* mine = getTable(theirs.getId())) {
            mine->update(theirs, keepOwnColumns, mergeColumns, mergeRows, overwriteRows);
            continue;
        }
        if (!addMissingTables)
            continue;
        std::string text;
        theirs.toString(text);
        auto copy = std::make_unique<DataTable>();
        const Fcodes code = copy->initFromString(text);
        if (code != FC_OK) {
            DBG(DBG_ERROR) << "update: Error in initializing table fcode=" << std::hex << static_cast<uint32_t>(code);
            continue;
        }
        addTable(theirs.getId(), copy.release());
    }
    if (!keepOwnTables) {
        for (auto at = tables.begin(); at != tables.end();) {
            if (reference.getTable(at->first)) {
                ++at;
                continue;
            }
            removeTable(at->first);
            at = tables.begin();
        }
    }
    return acceptChanges();
}

Fcodes DataSet::accessItem(const char* caller, const std::string& tableName, int32_t rowId, const std::string& column,
                           const std::function<Fcodes(DataItem&)>& access) {
    DataTable* table = getTable(tableName);
    if (!table) {
        DBG(DBG_ERROR) << caller << ": No such table=" << tableName;
        return FC_NO_SUCH_NAME;
    }
    std::lock_guard<DataTable> guard(*table);
    DataRow* row = table->getRows(rowId);
    if (!row) {
        DBG(DBG_ERROR) << caller << ": No such rowId=" << rowId << " in table=" << tableName;
        return FC_NO_SUCH_NAME;
    }
    DataItem* item = row->getDataItem(column);
    if (!item) {
        DBG(DBG_ERROR) << caller << ": No such item=" << column << " in rowId=" << rowId << " in table=" << tableName;
        return FC_NO_SUCH_NAME;
    }
    return access(*item);
}

Fcodes DataSet::getIntParam(const std::string& tableName, int32_t rowId, const std::string& column, int& value) {
    return accessItem("getIntParam", tableName, rowId, column, [&value](DataItem& item) {
        value = item.getIntVal();
        return FC_OK;
    });
}

Fcodes DataSet::getStringParam(const std::string& tableName, int32_t rowId, const std::string& column,
                               std::string& value) {
    return accessItem("getStringParam", tableName, rowId, column, [&value](DataItem& item) {
        value = item.getStrVal();
        return FC_OK;
    });
}

int32_t DataSet::getFirstRowIndex(const std::string& tableName) {
    DataTable* table = getTable(tableName);
    if (!table)
        return 0;
    std::lock_guard<DataTable> guard(*table);
    return table->getFirstRowIndex();
}

int32_t DataSet::getNextRowIndex(const std::string& tableName, int32_t rowId) {
    DataTable* table = getTable(tableName);
    if (!table)
        return 0;
    std::lock_guard<DataTable> guard(*table);
    return table->getNextRowIndex(rowId);
}

}  // namespace datacom
