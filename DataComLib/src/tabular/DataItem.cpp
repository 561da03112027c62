#include "datacom/DataItem.h"

#include "datacom/DataColumn.h"
#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

namespace {

// An item without a column behaves as one of a default column: a string
// column without enumeration values.
int32_t typeOf(const DataColumn* column) {
    return column ? column->getType() : coltype::STR;
}

bool lookUpText(const DataColumn* column, int32_t index, std::string& text) {
    return column && column->getValueText(index, text);
}

bool lookUpIndex(const DataColumn* column, const std::string& text, int32_t& index) {
    return column && column->getValueIndex(text, index);
}

}  // namespace

DataItem::DataItem() : state(datastate::NEW) {}

DataItem::DataItem(DataColumn* newColumn) : state(datastate::NEW), column(newColumn) {
    if (column)
        initValue(column->getDefVal());
}

DataItem::DataItem(const DataItem& other)
    : intVal(other.intVal),
      intValCopy(other.intValCopy),
      state(datastate::NEW),
      strVal(other.strVal),
      strValCopy(other.strValCopy),
      column(other.column) {}

DataItem::~DataItem() {
    cleanUpRelations();
}

Fcodes DataItem::acceptChanges() {
    intVal = intValCopy;
    strVal = strValCopy;
    state = datastate::UNCHANGED;
    return FC_OK;
}

Fcodes DataItem::rollbackChanges() {
    state = datastate::UNCHANGED;
    return FC_OK;
}

Fcodes DataItem::touch() {
    state = datastate::CHANGED;
    return FC_OK;
}

Fcodes DataItem::untouch() {
    state = datastate::UNCHANGED;
    return FC_OK;
}

DataItem* DataItem::clone() const {
    return new DataItem(*this);
}

Fcodes DataItem::init(DataColumn* newColumn) {
    column = newColumn;
    return resetValue();
}

Fcodes DataItem::resetValue() {
    return initValue(column ? column->getDefVal() : 0);
}

std::string DataItem::getId() const {
    return column ? column->getName() : std::string();
}

int32_t DataItem::getType() const {
    return column ? column->getType() : 0;
}

int32_t DataItem::getAccess() const {
    return column ? column->getAccess() : 0;
}

void DataItem::toString(std::string& out) const {
    out = "\t\t\t<Item Name=\"" + getId() + "\" Value=\"" + strVal + "\" />\n";
}

Fcodes DataItem::initFromString(const std::string& text) {
    std::string name, value;
    if (getPropertyValue(text, 0, "Name", name) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags Name in:\n" << text;
        return FC_BODY_ERROR;
    }
    if (getPropertyValue(text, 0, "Value", value) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags Value in:\n" << text;
        return FC_BODY_ERROR;
    }
    return initValue(value);
}

void DataItem::initIntVal(int32_t value) {
    intVal = intValCopy = value;
}

void DataItem::initStrVal(const std::string& value) {
    strVal = strValCopy = value;
}

void DataItem::initValue(const DataItem& other) {
    initIntVal(other.intVal);
    initStrVal(other.strVal);
}

void DataItem::markChanged() {
    state |= datastate::CHANGED;
    if (row)
        row->addState(datastate::CHANGED);
}

void DataItem::setIntVal(int32_t value) {
    intValCopy = value;
    markChanged();
}

void DataItem::setStrVal(const std::string& value) {
    strValCopy = value;
    markChanged();
}

void DataItem::setValue(const DataItem& other) {
    setIntVal(other.intVal);
    setStrVal(other.strVal);
}

// The integer that goes with `text` in the item's column: the number for an
// integer column, the index for an enumeration (false when the text is not
// one of its values), 0 for a string column.
bool DataItem::integerOf(const std::string& text, int32_t& value) const {
    const int32_t type = typeOf(column);
    if (type == coltype::ENUM)
        return lookUpIndex(column, text, value);
    value = type == coltype::INT ? tagToInt(text) : 0;
    return true;
}

Fcodes DataItem::initValue(const std::string& text) {
    int32_t value = 0;
    if (!integerOf(text, value)) {
        DBG(DBG_ERROR) << "initValue: item=" << getId() << " ENUM not found text=" << text;
        return FC_BAD_VALUE;
    }
    initStrVal(text);
    initIntVal(value);
    return FC_OK;
}

Fcodes DataItem::setValue(const std::string& text) {
    int32_t value = 0;
    if (!integerOf(text, value)) {
        DBG(DBG_ERROR) << "setValue(str): item=" << getId() << " ENUM not found text=" << text;
        return FC_BAD_VALUE;
    }
    strValCopy = text;
    intValCopy = value;
    markChanged();
    return FC_OK;
}

Fcodes DataItem::initValue(int32_t value) {
    if (typeOf(column) == coltype::INT) {
        strVal = strValCopy = std::to_string(value);
        intVal = intValCopy = value;
        return FC_OK;
    }
    // Enumeration and string columns alike: the index must name a value text.
    std::string text;
    if (!lookUpText(column, value, text)) {
        DBG(DBG_ERROR) << "initValue: item=" << getId() << " ENUM not found ind=" << value;
        return FC_BAD_VALUE;
    }
    strVal = strValCopy = text;
    intVal = intValCopy = value;
    return FC_OK;
}

// Kept as the appliance has always behaved: the text stored (and, for
// enumerations, the lookup) comes from the committed integer, not from `value`.
Fcodes DataItem::setValue(int32_t value) {
    if (typeOf(column) == coltype::INT) {
        strValCopy = std::to_string(intVal);
        intValCopy = value;
        markChanged();
        return FC_OK;
    }
    std::string text;
    if (!lookUpText(column, intVal, text)) {
        DBG(DBG_WARN) << "setValue(int): item=" << getId() << " ENUM not found ind=" << intVal;
        return FC_BAD_VALUE;
    }
    strValCopy = text;
    intValCopy = value;
    markChanged();
    return FC_OK;
}

void DataItem::setRow(DataRow* newRow) {
    if (newRow == row)
        return;
    if (newRow)
        newRow->registerItem(getId(), this);
    detachAndStoreRow(newRow);
}

void DataItem::detachAndStoreRow(DataRow* newRow) {
    if (row && row != newRow)
        static_cast<void>(row->unregisterItem(this).release());  // ownership stays with whoever holds the item now
    row = newRow;
}

void DataItem::cleanUpRelations() {
    detachAndStoreRow(nullptr);
    column = nullptr;
}

void adaptItemToColumn(DataItem& item, DataColumn& column, const std::string& columnName, const char* caller) {
    const std::string text = item.getStrVal();
    int32_t index = 0;
    if (column.getType() == coltype::ENUM && !column.getValueIndex(text, index)) {
        DBG(DBG_WARN) << caller << ": enum column=" << columnName << " Set default instead of val=" << text;
        item.init(&column);
    } else if (column.getType() == coltype::INT && item.getType() != coltype::INT) {
        DBG(DBG_WARN) << caller << ": int column=" << columnName << " Set default instead of type=" << item.getType()
                      << " val=" << text;
        item.init(&column);
    } else {
        DBG(DBG_WARN) << caller << ": column=" << columnName << " Keep val=" << text;
        item.setColumn(&column);
    }
}

}  // namespace datacom
