#pragma once

#include "datacom/Export.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "datacom/Fcodes.h"

namespace datacom {

/// The definition of one column of a table (or one parameter of an object):
/// name, value type, access right, default value and, for enumerations, the
/// allowed values. Owned by its table or object; items point at it. No lock:
/// callers hold the owner's lock when the column is shared.
class DATACOM_API DataColumn {
public:
    /// Empty name, string type, read-only, no values, default 0.
    DataColumn();
    /// Copies name, type, access, both value maps and the default.
    DataColumn(const DataColumn& other);
    DataColumn& operator=(const DataColumn&) = delete;
    virtual ~DataColumn() = default;

    /// Sets name, access and type and resets the default to 0; the values stay.
    virtual void init(const std::string& name, int32_t access, int32_t type);
    /// Replaces `out` with the column's tag text (one line, or a block with values).
    virtual void toString(std::string& out) const;
    /// Fills the column from a tag text: FC_BODY_ERROR when Name, Access, Type
    /// or Value is missing (fields read so far stay set), else FC_OK.
    Fcodes initFromString(const std::string& text);

    const std::string& getName() const { return name; }
    void setName(const std::string& newName) { name = newName; }
    int32_t getType() const { return type; }
    void setType(int32_t newType) { type = newType; }
    int32_t getAccess() const { return access; }
    void setAccess(int32_t newAccess) { access = newAccess; }
    int32_t getDefVal() const { return defVal; }
    void setDefVal(int32_t value) { defVal = value; }

    /// Enters an enumeration value in both directions, overwriting an existing entry.
    void addValue(int32_t index, const std::string& text);
    /// Lookups of the enumeration; on a miss they return false and leave the output alone.
    bool getValueText(int32_t index, std::string& text) const;
    bool getValueIndex(const std::string& text, int32_t& index) const;
    /// True when both tag texts are byte-for-byte equal.
    bool isEqualTo(const DataColumn& other) const;

private:
    void parseValues(const std::string& text);

    std::string name;
    int32_t type;
    int32_t access;
    std::map<int32_t, std::string> valueTexts;
    std::map<std::string, int32_t> valueIndexes;
    int32_t defVal;
};

/// Parses every Column element of `block` and hands each good column to `add`,
/// which takes ownership. A column that fails is logged as "initFromString:
/// error in <what> fcode=" and freed, since nothing refers to it. Returns the
/// or of all column codes.
DATACOM_API Fcodes parseColumns(const std::string& block, const char* what,
                                const std::function<void(DataColumn*)>& add);

}  // namespace datacom
