#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datacom/Fcodes.h"

namespace datacom {

class DataColumn;
class DataItem;
class DataObject;
class DataTable;

/// One row of a table (or one instance of an object): one item per column,
/// change bits (1 new, 2 deleted, 4 changed). Owns its items. A non-zero state
/// marks the owning table or object changed. No lock of its own: callers hold
/// the table (or object) lock.
class DATACOM_API DataRow {
public:
    DataRow();
    explicit DataRow(int32_t rowId);
    /// The text id is kept for the instance name of an object; nothing reads it.
    explicit DataRow(const std::string& rowTextId);
    DataRow(const DataRow&) = delete;
    DataRow& operator=(const DataRow&) = delete;
    /// Detaches and destroys its items.
    virtual ~DataRow();

    /// Every item commits its pending values; state 0.
    virtual Fcodes acceptChanges();
    /// Every item touched, state 4, propagated to the owner.
    virtual Fcodes touch();
    /// Every item untouched, state 0, not propagated.
    virtual Fcodes untouch();
    /// Replaces `out` with the row block: the Row line, its items in insertion order, the end line.
    virtual void toString(std::string& out) const;
    /// Reads ID and the values of the items the row already has. A text
    /// without ID succeeds with nothing read; an unknown item name gives FC_NO_SUCH_NAME.
    Fcodes initFromString(const std::string& text);
    /// Clears the marks of the row and its items; pending values stay.
    Fcodes rollbackChanges();

    int32_t getId() const { return id; }
    void setId(int32_t rowId) { id = rowId; }
    const std::string& getTextId() const { return textId; }
    uint32_t getState() const { return state; }
    /// Both propagate a non-zero state to the table and object as "changed".
    void setState(uint32_t bits);
    void addState(uint32_t bits);

    DataTable* getTable() const { return table; }
    void setTable(DataTable* owner) { table = owner; }
    DataObject* getObject() const { return object; }
    void setObject(DataObject* owner) { object = owner; }

    DataItem* getDataItem(const std::string& name) const;
    /// Takes ownership; the item leaves any earlier row. An item already held
    /// under that name is destroyed.
    void addDataItem(const std::string& name, DataItem* item);
    /// Unregisters the item and empties its row; ownership passes to the caller.
    std::unique_ptr<DataItem> removeDataItem(DataItem* item);
    std::unique_ptr<DataItem> removeDataItem(const std::string& name);
    size_t getItemsNum() const { return itemOrder.size(); }

    /// The owner's columns, each with the name its item is kept under, in the owner's order.
    using ColumnRefs = std::vector<std::pair<std::string, DataColumn*>>;
    /// One new default item per column; a source item of the same name is
    /// taken as a pending change.
    void fillItems(const ColumnRefs& columns, const DataRow* source);
    /// The existing items take the source's values as pending changes (logged
    /// as `caller`), or go back to their defaults when there is no source.
    void overwriteItems(const ColumnRefs& columns, const DataRow* source, const char* caller);

    /// Bookkeeping used by DataItem::setRow: register without touching the
    /// item, and unregister handing ownership back.
    void registerItem(const std::string& name, DataItem* item);
    std::unique_ptr<DataItem> unregisterItem(DataItem* item);

private:
    void propagate();
    Fcodes forEachItem(Fcodes (DataItem::*operation)());

    int32_t id = 0;
    std::string textId;
    uint32_t state;
    std::map<std::string, DataItem*> itemsByName;
    std::vector<std::unique_ptr<DataItem>> itemOrder;
    DataTable* table = nullptr;
    DataObject* object = nullptr;
};

}  // namespace datacom
