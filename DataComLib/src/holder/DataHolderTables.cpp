// The table family: cell reads and writes and the table-structure operations,
// each on the first table of that name in data-set name order, under the
// table's own lock.
#include "datacom/DataColumn.h"
#include "datacom/DataHolder.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataTable.h"
#include "datacom/DbgPrintClient.h"
#include "holder/DataHolderImpl.h"

namespace datacom {

// The table lookup of the cell operations: the first data set in name order
// that has the table does the row and item lookup and its log lines.
Fcodes DataHolder::Impl::withItem(const char* op, const std::string& table, int rowId, const std::string& column,
                                  const std::function<Fcodes(DataItem&)>& access) {
    DataSet* holding = owner.findDataSetWithTable(table);
    if (!holding) {
        DBG(DBG_ERROR) << op << ": No such table=" << table;
        return FC_NO_SUCH_NAME;
    }
    return holding->accessItem(op, table, rowId, column, access);
}

template <typename Result, typename Access>
Result DataHolder::Impl::withTable(const std::string& table, Result missing, Access access) {
    DataTable* found = owner.findDataTable(table);
    if (!found)
        return missing;
    std::lock_guard<DataTable> guard(*found);
    return access(*found);
}

Fcodes DataHolder::getIntParam(const std::string& table, int rowId, const std::string& column, int& value) {
    return impl->withItem("getIntParam", table, rowId, column, [&](DataItem& item) {
        value = item.getIntVal();
        return FC_OK;
    });
}

Fcodes DataHolder::getNewIntParam(const std::string& table, int rowId, const std::string& column, int& value) {
    return impl->withItem("getNewIntParam", table, rowId, column, [&](DataItem& item) {
        value = item.getIntVal_copy();
        return FC_OK;
    });
}

Fcodes DataHolder::getStringParam(const std::string& table, int rowId, const std::string& column, std::string& value) {
    return impl->withItem("getStringParam", table, rowId, column, [&](DataItem& item) {
        value = item.getStrVal();
        return FC_OK;
    });
}

Fcodes DataHolder::getNewStringParam(const std::string& table, int rowId, const std::string& column,
                                     std::string& value) {
    return impl->withItem("getNewStringParam", table, rowId, column, [&](DataItem& item) {
        value = item.getStrVal_copy();
        return FC_OK;
    });
}

Fcodes DataHolder::setIntParam(const std::string& table, int rowId, const std::string& column, int value) {
    return impl->withItem("setIntParam", table, rowId, column, [&](DataItem& item) { return item.setValue(value); });
}

// Its log lines name getStringParam, as they always have.
Fcodes DataHolder::setStringParam(const std::string& table, int rowId, const std::string& column,
                                  const std::string& value) {
    return impl->withItem("getStringParam", table, rowId, column, [&](DataItem& item) { return item.setValue(value); });
}

Fcodes DataHolder::initIntParam(const std::string& table, int rowId, const std::string& column, int value) {
    return impl->withItem("initIntParam", table, rowId, column, [&](DataItem& item) { return item.initValue(value); });
}

Fcodes DataHolder::initStringParam(const std::string& table, int rowId, const std::string& column,
                                   const std::string& value) {
    return impl->withItem("initStringParam", table, rowId, column,
                          [&](DataItem& item) { return item.initValue(value); });
}

Fcodes DataHolder::getParamState(const std::string& table, int rowId, const std::string& column, unsigned& state) {
    return impl->withItem("getParamState", table, rowId, column, [&](DataItem& item) {
        state = item.getState();
        return FC_OK;
    });
}

Fcodes DataHolder::getParamType(const std::string& table, const std::string& column, int& type) {
    return impl->withTable(table, FC_NO_SUCH_NAME, [&](DataTable& found) {
        DataColumn* definition = found.getColumns(column);
        if (!definition)
            return FC_NO_SUCH_NAME;
        type = definition->getType();
        return FC_OK;
    });
}

Fcodes DataHolder::getDefValue(const std::string& table, const std::string& column, std::string& value) {
    DataTable* found = findDataTable(table);
    if (!found) {
        DBG(DBG_ERROR) << "getDefValue: No such table=" << table;
        return FC_NO_SUCH_NAME;
    }
    std::lock_guard<DataTable> guard(*found);
    DataColumn* definition = found->getColumns(column);
    if (!definition) {
        DBG(DBG_ERROR) << "getDefValue: No such colId=" << column;
        return FC_NO_SUCH_NAME;
    }
    value = std::to_string(definition->getDefVal());
    return FC_OK;
}

int DataHolder::getFirstRowIndex(const std::string& table) {
    return impl->withTable(table, 0, [](DataTable& found) { return static_cast<int>(found.getFirstRowIndex()); });
}

int DataHolder::getNextRowIndex(const std::string& table, int index) {
    return impl->withTable(table, 0, [&](DataTable& found) { return static_cast<int>(found.getNextRowIndex(index)); });
}

int DataHolder::getLastRowIndex(const std::string& table) {
    DataTable* found = findDataTable(table);
    return found ? found->getLastRowIndex() : 0;
}

int DataHolder::getRowsNum(const std::string& table) {
    DataTable* found = findDataTable(table);
    return found ? static_cast<int>(found->getRowsNum()) : 0;
}

int DataHolder::newRow(const std::string& table, int rowId) {
    DataTable* found = findDataTable(table);
    if (!found)
        return 0;
    if (rowId == 0)
        return found->newRow();
    // Row ids are positive; a negative one makes no row.
    return rowId > 0 ? found->newRow(rowId, nullptr, false)->getId() : 0;
}

int DataHolder::appendNewRow(const std::string& table) {
    DataTable* found = findDataTable(table);
    return found ? found->appendNewRow() : 0;
}

// Marks the row deleted; it goes when the changes are accepted.
Fcodes DataHolder::deleteRow(const std::string& table, int rowId) {
    return impl->withTable(table, FC_NO_SUCH_NAME, [&](DataTable& found) { return found.deleteRow(rowId); });
}

std::vector<std::string> DataHolder::getColumnNames(const std::string& table) {
    return impl->withTable(table, std::vector<std::string>{}, [](DataTable& found) { return found.getColumnNames(); });
}

Fcodes DataHolder::addColumnToTable(const std::string&, const std::string&, const std::string&, const std::string&,
                                    const std::string&) {
    return FC_OK;
}

Fcodes DataHolder::addDataSet(const std::string& setName, DataSet* dataSet) {
    if (!dataSet)
        return FC_BAD_VALUE;
    std::unique_ptr<DataSet>& held = impl->dataSets[setName];
    if (held.get() != dataSet)
        held.reset(dataSet);
    return FC_OK;
}

DataSet* DataHolder::getDataSet(const std::string& setName) {
    auto found = impl->dataSets.find(setName);
    return found == impl->dataSets.end() ? nullptr : found->second.get();
}

DataSet* DataHolder::findDataSetWithTable(const std::string& table) {
    for (auto& entry : impl->dataSets)
        if (entry.second->getTable(table))
            return entry.second.get();
    return nullptr;
}

DataTable* DataHolder::findDataTable(const std::string& table) {
    DataSet* owner = findDataSetWithTable(table);
    return owner ? owner->getTable(table) : nullptr;
}

}  // namespace datacom
