#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <string>

#include "datacom/Fcodes.h"

namespace datacom {

class DataColumn;
class DataRow;

/// One cell: the value of one column in one row, kept committed and pending in
/// both an integer and a text form, with change bits (1 new, 4 changed).
/// Owned by its row while it is in one; points at its column (owned by the
/// table) and back at its row. No lock of its own: callers hold the table lock.
class DATACOM_API DataItem {
public:
    /// No column, state new, values 0 and empty.
    DataItem();
    /// State new, then the column's default through initValue(int).
    explicit DataItem(DataColumn* column);
    /// Copies both value forms and the column; state new, no row.
    DataItem(const DataItem& other);
    DataItem& operator=(const DataItem&) = delete;
    /// Leaves its row (cleanUpRelations).
    virtual ~DataItem();

    /// Pending values become the committed ones; state 0.
    virtual Fcodes acceptChanges();
    /// State becomes exactly 4.
    virtual Fcodes touch();
    /// State becomes 0.
    virtual Fcodes untouch();
    /// A copy made by the copy constructor, owned by the caller.
    virtual DataItem* clone() const;
    /// Committed values.
    virtual int32_t getIntVal() const { return intVal; }
    virtual std::string getStrVal() const { return strVal; }
    /// Points the item at a column and takes its default.
    virtual Fcodes init(DataColumn* newColumn);
    /// Replaces `out` with the item line; only the committed text is written.
    virtual void toString(std::string& out) const;
    /// Reads Name and Value and takes the value through initValue(text).
    Fcodes initFromString(const std::string& text);

    /// Back to the column default, committed and pending.
    Fcodes resetValue();
    /// Clears the state only; pending values stay as they are on purpose.
    Fcodes rollbackChanges();

    /// Pending values.
    int32_t getIntVal_copy() const { return intValCopy; }
    std::string getStrVal_copy() const { return strValCopy; }

    /// Column name, type and access; an item without a column reads "", 0, 0.
    std::string getId() const;
    int32_t getType() const;
    int32_t getAccess() const;
    DataColumn* getColumn() const { return column; }
    /// Points the item at another column and keeps both values as they are.
    void setColumn(DataColumn* newColumn) { column = newColumn; }
    DataRow* getRow() const { return row; }

    uint32_t getState() const { return state; }
    void setState(uint32_t bits) { state = bits; }
    void addState(uint32_t bits) { state |= bits; }

    /// Committed and pending alike; the state is left alone.
    void initIntVal(int32_t value);
    void initStrVal(const std::string& value);
    void initValue(const DataItem& other);
    /// Pending only; mark the item and its row changed.
    void setIntVal(int32_t value);
    void setStrVal(const std::string& value);
    void setValue(const DataItem& other);

    /// Typed setters: the column type decides how text and integer relate; an
    /// enumeration value the column does not know gives FC_BAD_VALUE and no change.
    Fcodes initValue(int32_t value);
    Fcodes initValue(const std::string& text);
    Fcodes setValue(int32_t value);
    Fcodes setValue(const std::string& text);

    /// Moves the item into `newRow` (registered there before it leaves the old
    /// row, which gives up ownership); null only detaches.
    void setRow(DataRow* newRow);
    /// Leaves the current row (without it deleting the item) and stores `newRow`.
    void detachAndStoreRow(DataRow* newRow);
    /// Stores the back pointer only.
    void storeRow(DataRow* newRow) { row = newRow; }
    void clearRow() { row = nullptr; }
    /// Leaves the row and forgets the column.
    void cleanUpRelations();

private:
    void markChanged();
    bool integerOf(const std::string& text, int32_t& value) const;

    int32_t intVal = 0;
    int32_t intValCopy = 0;
    uint32_t state;
    std::string strVal;
    std::string strValCopy;
    DataRow* row = nullptr;
    DataColumn* column = nullptr;
};

/// Points `item` at a replacement column of its name. The first rule that
/// applies wins: an enumeration text the new column lacks, or a change to an
/// integer column, resets the item to the new default; otherwise both values
/// stay. An enumeration index is deliberately not re-mapped: enumerations grow
/// by appending entries, so a stored index still names the same entry.
/// Logged as `caller`.
DATACOM_API void adaptItemToColumn(DataItem& item, DataColumn& column, const std::string& columnName,
                                   const char* caller);

}  // namespace datacom
