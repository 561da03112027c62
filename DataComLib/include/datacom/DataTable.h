#pragma once

#include "datacom/Export.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/Fcodes.h"

namespace datacom {

class DataColumn;
class DataItem;
class DataSet;
template <typename T>
class Retired;

/// A named table of a dataset: columns in definition order and rows keyed by
/// a positive id, each row one item per column. The unit of locking and change
/// tracking of the tabular store. Owns its columns and rows; points back at
/// its dataset. Every operation that walks or changes the rows holds the
/// table's recursive mutex; column operations, accessors and isChanged do not,
/// so multi-step callers bracket their work with lock()/unlock().
class DATACOM_API DataTable {
public:
    using Rows = std::map<int32_t, std::unique_ptr<DataRow>>;
    using Columns = std::vector<std::unique_ptr<DataColumn>>;

    DataTable();
    explicit DataTable(const std::string& tableName);
    virtual ~DataTable();
    DataTable(const DataTable&) = delete;
    DataTable& operator=(const DataTable&) = delete;

    /// Change tracking (DataObject has the same over its instances). The scans
    /// hold the mutex; isChanged and the state accessors do not.
    /// Rows marked deleted are destroyed, new and changed ones commit their values; state 0.
    virtual Fcodes acceptChanges();
    /// Every row touched; the table and its dataset marked changed.
    virtual Fcodes touch();
    /// Every row untouched; state 0.
    virtual Fcodes untouch();
    /// Changed and deleted rows only lose their marks (pending values stay);
    /// rows that are merely new are destroyed, so a new row that was also
    /// edited is kept. State 0.
    Fcodes rollbackChanges();
    /// True when the table or any row is marked; a marked row marks the table.
    bool isChanged();
    uint32_t getState() const { return state; }
    /// Both mark the dataset changed when the new state is non-zero.
    void setState(uint32_t bits);
    void addState(uint32_t bits);
    DataSet* getDataSet() const { return dataSet; }
    void setDataSet(DataSet* owner) { dataSet = owner; }
    /// The recursive mutex, for callers bracketing multi-step work.
    void lock() { mutex.lock(); }
    void unlock() { mutex.unlock(); }

    /// Replaces `out` with the table block (columns, then rows by id, deleted ones included).
    virtual void toString(std::string& out);
    /// Fills the table from a Table block (its Column and Row elements).
    Fcodes initFromString(const std::string& text);

    const std::string& getId() const { return name; }
    void setId(const std::string& tableName) { name = tableName; }
    /// Columns (no lock).
    size_t getColumnsNum() const { return columns.size(); }
    std::vector<std::string> getColumnNames() const;
    DataColumn* getColumns(const std::string& columnName) const;
    Columns::const_iterator columnsBegin() const { return columns.begin(); }
    Columns::const_iterator columnsEnd() const { return columns.end(); }
    /// Takes ownership; every row gets a default item of that name and is
    /// marked changed. A column already under that name is removed first.
    void addColumns(const std::string& columnName, DataColumn* column);
    /// Unregisters the column and takes its item out of every row (each marked
    /// changed). Unknown names and columns are ignored.
    void removeColumns(const std::string& columnName);
    void removeColumns(DataColumn* column);
    /// Puts `column` (owned from now on) in place of the column of that name,
    /// at the end of the order, adapting every row's item; null only removes.
    void replaceColumn(const std::string& columnName, DataColumn* column);

    /// Rows. getRows takes no lock.
    size_t getRowsNum() const { return rows.size(); }
    DataRow* getRows(int32_t id) const;
    Rows::const_iterator rowsBegin() const { return rows.begin(); }
    Rows::const_iterator rowsEnd() const { return rows.end(); }
    /// The row of that id, created with default items (taking `source` values
    /// as pending changes) or, when it exists and `overwrite` is set, refreshed
    /// from `source` or reset to the defaults. Never null.
    DataRow* newRow(int32_t id, const DataRow* source, bool overwrite);
    /// A new row at the smallest free id; returns the id.
    int32_t newRow();
    /// A new row after the highest id; returns the id, 0 when none was made.
    int32_t appendNewRow();
    /// Takes ownership of `row` under `id` (a row already there is destroyed)
    /// and marks the table changed. A row held under another id is refused
    /// with FC_BAD_VALUE.
    Fcodes addRows(int32_t id, DataRow* row);
    /// Marks the row deleted; FC_NO_SUCH_NAME for an unknown id.
    Fcodes deleteRow(int32_t id);
    /// Destroys the row; FC_OK whether or not it existed.
    Fcodes doDeleteRow(int32_t id);
    void doDeleteAllRows();
    /// The smallest id from 1 upward that no row uses.
    int32_t getAvailableRowId();

    /// Row-index queries; 0 when nothing qualifies. Their filters differ on purpose:
    /// first skips rows with the deleted bit, next skips rows whose state is
    /// exactly "deleted", last takes only unchanged rows.
    int32_t getFirstRowIndex();
    int32_t getNextRowIndex(int32_t id);
    int32_t getLastRowIndex();

    /// Merges a reference table's columns and rows into this one.
    Fcodes update(DataTable& reference, bool keepOwnColumns, bool mergeColumns, bool mergeRows, bool overwriteRows);

    /// Destroys every row and column (and everything retired).
    void cleanUpRelations();

private:
    using Guard = std::lock_guard<std::recursive_mutex>;

    void registerColumn(const std::string& columnName, DataColumn* column);
    std::unique_ptr<DataColumn> unregisterColumn(DataColumn* column);
    DataRow::ColumnRefs columnRefs() const;

    std::recursive_mutex mutex;
    std::atomic<uint32_t> state{datastate::NEW};
    Rows rows;
    DataSet* dataSet = nullptr;
    std::string name;
    Columns columns;
    std::map<std::string, DataColumn*> columnsByName;

    /// Removed and replaced columns and the items taken out with them.
    std::unique_ptr<Retired<DataColumn>> retiredColumns;
    std::unique_ptr<Retired<DataItem>> retiredItems;
};

}  // namespace datacom
