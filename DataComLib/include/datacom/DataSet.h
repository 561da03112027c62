#pragma once

#include "datacom/Export.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"

namespace datacom {

class DataItem;
class DataTable;
template <typename T>
class Retired;

/// One tabular configuration document: an id, a version text and named
/// tables, kept as tag text in a file. Owns its tables. No lock of its own:
/// loading, storing, merging and accepting run on one thread (the data
/// holder's worker); parameter reads hold the table's lock.
class DATACOM_API DataSet {
public:
    using TableList = std::vector<DataTable*>;

    DataSet();
    explicit DataSet(const std::string& dataSetId);
    DataSet(const DataSet&) = delete;
    DataSet& operator=(const DataSet&) = delete;
    virtual ~DataSet();

    /// Every table accepted (deleted rows destroyed); state 0.
    virtual Fcodes acceptChanges();
    /// Every table touched; state 4.
    virtual Fcodes touch();
    /// Every table untouched; state 0.
    virtual Fcodes untouch();
    /// The named table touched and the dataset marked; FC_OK for any name.
    virtual Fcodes touch(const std::string& tableName);
    virtual Fcodes untouch(const std::string& tableName);
    /// Replaces `out` with the whole document, tables in name order.
    virtual void toString(std::string& out);
    /// Reads ID, Version and every Table block; the or of the table codes.
    Fcodes initFromString(const std::string& text);

    const std::string& getId() const { return id; }
    void setId(const std::string& dataSetId) { id = dataSetId; }
    const std::string& getVersion() const { return version; }
    void setVersion(const std::string& text) { version = text; }
    uint32_t getState() const { return state; }
    void setState(uint32_t bits) { state = bits; }
    void addState(uint32_t bits) { state |= bits; }

    DataTable* getTable(const std::string& tableName) const;
    /// Takes ownership and marks the dataset changed. A different table
    /// already under that name is unregistered as by removeTable; a table
    /// already held under another name is refused.
    void addTable(const std::string& tableName, DataTable* table);
    /// Unregister only: the table stays alive (a caller may still hold it)
    /// until the dataset is cleaned up or destroyed.
    void removeTable(const std::string& tableName);
    void removeTable(DataTable* table);
    /// Destroys every table.
    void clearTable() { cleanUpRelations(); }
    /// Tables in insertion order.
    TableList::const_iterator tablesBegin() const { return tableOrder.begin(); }
    TableList::const_iterator tablesEnd() const { return tableOrder.end(); }

    Fcodes rollbackChanges();
    /// True when the dataset or any table is marked.
    bool isChanged();

    /// Reads the file into the dataset: FC_NO_SUCH_NAME when it cannot be
    /// opened, FC_UNAVAILABLE when it is empty (the tables stay as they were).
    Fcodes load(const std::string& file);
    /// Replaces the file atomically with toString. Always FC_OK: a failed
    /// write is logged, never reported, and leaves the old file whole.
    Fcodes store(const std::string& file);
    /// Merges a reference document into this one and accepts the result.
    Fcodes update(DataSet& reference, bool keepOwnTables, bool addMissingTables, bool keepOwnColumns, bool mergeColumns,
                  bool mergeRows, bool overwriteRows);

    /// Committed value of one cell, read under the table lock. FC_NO_SUCH_NAME
    /// (and the output untouched) for an unknown table, row or column.
    Fcodes getIntParam(const std::string& tableName, int32_t rowId, const std::string& column, int& value);
    Fcodes getStringParam(const std::string& tableName, int32_t rowId, const std::string& column, std::string& value);
    /// Runs `access` on one cell under the table lock and returns its code; an
    /// unknown table, row or column is logged as "<caller>: No such ..." and
    /// answered FC_NO_SUCH_NAME without calling it.
    Fcodes accessItem(const char* caller, const std::string& tableName, int32_t rowId, const std::string& column,
                      const std::function<Fcodes(DataItem&)>& access);
    /// The table's own answers, under its lock; 0 for an unknown table.
    int32_t getFirstRowIndex(const std::string& tableName);
    int32_t getNextRowIndex(const std::string& tableName, int32_t rowId);

    /// Destroys every table, retired ones included.
    void cleanUpRelations();

private:
    Fcodes forEachTable(Fcodes (DataTable::*operation)());

    std::string id;
    std::string version = "0";
    std::atomic<uint32_t> state;
    std::map<std::string, std::unique_ptr<DataTable>> tables;
    TableList tableOrder;
    std::unique_ptr<Retired<DataTable>> retiredTables;
};

}  // namespace datacom
