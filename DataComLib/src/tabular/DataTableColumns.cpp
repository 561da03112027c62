// Column definitions of a table: adding, removing and replacing columns while
// the rows adapt, and the merge against a reference table.
#include <algorithm>

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DataTable.h"
#include "datacom/DbgPrintClient.h"
#include "tabular/Retired.h"

namespace datacom {

std::vector<std::string> DataTable::getColumnNames() const {
    std::vector<std::string> names;
    for (const auto& column : columns)
        names.push_back(column->getName());
    return names;
}

DataColumn* DataTable::getColumns(const std::string& columnName) const {
    auto found = columnsByName.find(columnName);
    return found == columnsByName.end() ? nullptr : found->second;
}

// Takes ownership; a column coming back from retirement is taken out of it.
// A column already held under another name is only given the second name.
void DataTable::registerColumn(const std::string& columnName, DataColumn* column) {
    columnsByName[columnName] = column;
    if (std::any_of(columns.begin(), columns.end(), [column](const auto& p) { return p.get() == column; }))
        return;
    retiredColumns->reclaim(column);
    columns.emplace_back(column);
}

std::unique_ptr<DataColumn> DataTable::unregisterColumn(DataColumn* column) {
    for (auto byName = columnsByName.begin(); byName != columnsByName.end();) {
        if (byName->second == column)
            byName = columnsByName.erase(byName);
        else
            ++byName;
    }
    auto held = std::find_if(columns.begin(), columns.end(), [column](const auto& p) { return p.get() == column; });
    if (held == columns.end())
        return nullptr;
    std::unique_ptr<DataColumn> released = std::move(*held);
    columns.erase(held);
    return released;
}

void DataTable::addColumns(const std::string& columnName, DataColumn* column) {
    if (!column)
        return;
    if (getColumns(columnName))
        removeColumns(columnName);
    registerColumn(columnName, column);
    for (const auto& row : rows) {
        row.second->addDataItem(columnName, new DataItem(column));
        row.second->addState(datastate::CHANGED);
    }
}

void DataTable::removeColumns(const std::string& columnName) {
    DataColumn* column = getColumns(columnName);
    if (column)
        removeColumns(column);
}

// The column and the items taken out stay alive (a caller may still hold
// them) until the table is destroyed.
void DataTable::removeColumns(DataColumn* column) {
    std::string columnName = column ? column->getName() : std::string();
    for (const auto& byName : columnsByName)
        if (byName.second == column)
            columnName = byName.first;
    std::unique_ptr<DataColumn> removed = unregisterColumn(column);
    if (!removed)
        return;
    for (const auto& row : rows) {
        if (std::unique_ptr<DataItem> item = row.second->removeDataItem(columnName))
            retiredItems->keep(std::move(item));
        row.second->addState(datastate::CHANGED);
    }
    retiredColumns->keep(std::move(removed));
}

void DataTable::replaceColumn(const std::string& columnName, DataColumn* column) {
    if (DataColumn* old = getColumns(columnName)) {
        if (old == column)
            return;
        // The items still point at the old column until they are adapted below.
        retiredColumns->keep(unregisterColumn(old));
    }
    if (!column)
        return;
    registerColumn(columnName, column);
    for (const auto& row : rows)
        if (DataItem* item = row.second->getDataItem(columnName))
            adaptItemToColumn(*item, *column, columnName, "replaceColumn");
}

Fcodes DataTable::update(DataTable& reference, bool keepOwnColumns, bool mergeColumns, bool mergeRows,
                         bool overwriteRows) {
    if (mergeColumns) {
        for (auto at = reference.columnsBegin(); at != reference.columnsEnd(); ++at) {
            const DataColumn& theirs = **at;
            DataColumn* mine = getColumns(theirs.getName());
            if (mine && mine->isEqualTo(theirs))
                continue;
            if (mine) {
                DBG(DBG_WARN) << "update: table=" << name << " column=" << theirs.getName() << " changed. Replacing...";
                replaceColumn(theirs.getName(), new DataColumn(theirs));
            } else {
                addColumns(theirs.getName(), new DataColumn(theirs));
            }
        }
    }
    if (!keepOwnColumns) {
        for (auto at = columns.begin(); at != columns.end();) {
            if (reference.getColumns((*at)->getName())) {
                ++at;
                continue;
            }
            removeColumns((*at)->getName());
            at = columns.begin();
        }
    }
    if (!mergeRows)
        return FC_OK;
    for (auto at = reference.rowsBegin(); at != reference.rowsEnd(); ++at) {
        DBG(DBG_INFO) << "update: adding rowId=" << at->first;
        newRow(at->first, at->second.get(), overwriteRows);
    }
    return FC_OK;
}

}  // namespace datacom
