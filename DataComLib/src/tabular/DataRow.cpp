#include "datacom/DataRow.h"

#include <algorithm>

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataObject.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DataTable.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

DataRow::DataRow() : state(datastate::NEW) {}

DataRow::DataRow(int32_t rowId) : id(rowId), state(datastate::NEW) {}

DataRow::DataRow(const std::string& rowTextId) : textId(rowTextId), state(datastate::NEW) {}

DataRow::~DataRow() {
    // The items must not call back into a row that is going away.
    for (auto& item : itemOrder)
        item->clearRow();
    itemOrder.clear();
}

void DataRow::propagate() {
    if (state == datastate::UNCHANGED)
        return;
    if (table)
        table->setState(datastate::CHANGED);
    if (object)
        object->setState(datastate::CHANGED);
}

void DataRow::setState(uint32_t bits) {
    state = bits;
    propagate();
}

void DataRow::addState(uint32_t bits) {
    state |= bits;
    propagate();
}

DataItem* DataRow::getDataItem(const std::string& name) const {
    auto found = itemsByName.find(name);
    return found == itemsByName.end() ? nullptr : found->second;
}

void DataRow::registerItem(const std::string& name, DataItem* item) {
    DataItem*& slot = itemsByName[name];
    if (slot && slot != item) {
        std::unique_ptr<DataItem> displaced = unregisterItem(slot);
        displaced->clearRow();
    }
    itemsByName[name] = item;
    auto held = std::find_if(itemOrder.begin(), itemOrder.end(), [item](const auto& p) { return p.get() == item; });
    if (held == itemOrder.end())
        itemOrder.emplace_back(item);
}

std::unique_ptr<DataItem> DataRow::unregisterItem(DataItem* item) {
    for (auto byName = itemsByName.begin(); byName != itemsByName.end();) {
        if (byName->second == item)
            byName = itemsByName.erase(byName);
        else
            ++byName;
    }
    auto held = std::find_if(itemOrder.begin(), itemOrder.end(), [item](const auto& p) { return p.get() == item; });
    if (held == itemOrder.end())
        return nullptr;
    std::unique_ptr<DataItem> released = std::move(*held);
    itemOrder.erase(held);
    return released;
}

void DataRow::addDataItem(const std::string& name, DataItem* item) {
    if (!item)
        return;
    item->detachAndStoreRow(this);
    registerItem(name, item);
}

std::unique_ptr<DataItem> DataRow::removeDataItem(DataItem* item) {
    if (!item || item->getRow() != this)
        return nullptr;
    item->clearRow();
    return unregisterItem(item);
}

std::unique_ptr<DataItem> DataRow::removeDataItem(const std::string& name) {
    return removeDataItem(getDataItem(name));
}

// Runs one change operation on every item; the or of their codes.
Fcodes DataRow::forEachItem(Fcodes (DataItem::*operation)()) {
    Fcodes result = FC_OK;
    for (auto& item : itemOrder)
        result |= ((*item).*operation)();
    return result;
}

Fcodes DataRow::touch() {
    const Fcodes result = forEachItem(&DataItem::touch);
    setState(datastate::CHANGED);
    return result;
}

Fcodes DataRow::untouch() {
    state = datastate::UNCHANGED;
    return forEachItem(&DataItem::untouch);
}

Fcodes DataRow::acceptChanges() {
    state = datastate::UNCHANGED;
    return forEachItem(&DataItem::acceptChanges);
}

Fcodes DataRow::rollbackChanges() {
    state = datastate::UNCHANGED;
    return forEachItem(&DataItem::rollbackChanges);
}

void DataRow::toString(std::string& out) const {
    out = "\t\t\t<Row ID=\"" + std::to_string(id) + "\" >\n";
    std::string line;
    for (const auto& item : itemOrder) {
        item->toString(line);
        out += line;
    }
    out += "\t\t\t</Row>\n";
}

Fcodes DataRow::initFromString(const std::string& text) {
    std::string idText;
    if (getPropertyValue(text, 0, "ID", idText) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags ID in:\n" << text;
        return FC_OK;
    }
    id = tagToInt(idText);
    Fcodes result = FC_OK;
    std::string segment;
    for (int from = getSegment(text, 0, "Item", segment); from >= 0; from = getSegment(text, from, "Item", segment)) {
        std::string name, value;
        if (getPropertyValue(segment, 0, "Name", name) < 0 || getPropertyValue(segment, 0, "Value", value) < 0)
            continue;
        DataItem* item = getDataItem(name);
        if (!item) {
            DBG(DBG_ERROR) << "initFromString: No item in row with ID=" << name;
            result = FC_NO_SUCH_NAME;
            continue;
        }
        item->initValue(value);
    }
    return result;
}

void DataRow::fillItems(const ColumnRefs& columns, const DataRow* source) {
    for (const auto& column : columns) {
        auto* item = new DataItem(column.second);
        const DataItem* from = source ? source->getDataItem(column.first) : nullptr;
        if (from)
            item->setValue(*from);
        addDataItem(column.first, item);
    }
}

void DataRow::overwriteItems(const ColumnRefs& columns, const DataRow* source, const char* caller) {
    for (const auto& column : columns) {
        DataItem* item = getDataItem(column.first);
        if (!item)
            continue;
        if (!source) {
            item->resetValue();
            continue;
        }
        const DataItem* from = source->getDataItem(column.first);
        if (!from)
            continue;
        DBG(DBG_INFO) << caller << ": adding to rowId=" << id << " col=" << column.first << " val=" << from->getIntVal()
                      << " str=" << from->getStrVal();
        item->setValue(*from);
    }
}

}  // namespace datacom
