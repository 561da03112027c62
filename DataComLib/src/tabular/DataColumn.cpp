#include "datacom/DataColumn.h"

#include <memory>

#include "datacom/DataStoreConstants.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

DataColumn::DataColumn() : type(coltype::STR), access(colaccess::RO), defVal(0) {}

DataColumn::DataColumn(const DataColumn& other)
    : name(other.name),
      type(other.type),
      access(other.access),
      valueTexts(other.valueTexts),
      valueIndexes(other.valueIndexes),
      defVal(other.defVal) {}

void DataColumn::init(const std::string& newName, int32_t newAccess, int32_t newType) {
    name = newName;
    access = newAccess;
    type = newType;
    defVal = 0;
}

void DataColumn::addValue(int32_t index, const std::string& text) {
    valueTexts[index] = text;
    valueIndexes[text] = index;
}

bool DataColumn::getValueText(int32_t index, std::string& text) const {
    auto found = valueTexts.find(index);
    if (found == valueTexts.end())
        return false;
    text = found->second;
    return true;
}

bool DataColumn::getValueIndex(const std::string& text, int32_t& index) const {
    auto found = valueIndexes.find(text);
    if (found == valueIndexes.end())
        return false;
    index = found->second;
    return true;
}

bool DataColumn::isEqualTo(const DataColumn& other) const {
    std::string mine, theirs;
    toString(mine);
    other.toString(theirs);
    return mine == theirs;
}

void DataColumn::toString(std::string& out) const {
    out = "\t\t\t<Column Name=\"" + name + "\" Access=\"";
    if (access == colaccess::RW)
        out += "RW\" ";
    else if (access == colaccess::WO)
        out += "WO\" ";
    else
        out += "RO\" ";
    if (type == coltype::INT)
        out += "Type=\"int\" ";
    else if (type == coltype::ENUM)
        out += "Type=\"enum\" ";
    else
        out += "Type=\"str\" ";
    out += "Value=\"" + std::to_string(defVal) + "\" ";
    if (valueTexts.empty()) {
        out += "/>\n";
        return;
    }
    out += " >\n";
    for (const auto& value : valueTexts)
        out += "\t\t\t\t<Value Index=\"" + std::to_string(value.first) + "\" Text=\"" + value.second + "\" />\n";
    out += "\t\t\t</Column>\n";
}

Fcodes DataColumn::initFromString(const std::string& text) {
    if (getPropertyValue(text, 0, "Name", name) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags Name in:\n" << text;
        return FC_BODY_ERROR;
    }
    std::string word;
    if (getPropertyValue(text, 0, "Access", word) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags Access in:\n" << text;
        return FC_BODY_ERROR;
    }
    // An unknown access word keeps the access the column had.
    if (word == colaccess::RO_WORD)
        access = colaccess::RO;
    else if (word == colaccess::RW_WORD)
        access = colaccess::RW;
    else if (word == colaccess::WO_WORD)
        access = colaccess::WO;

    if (getPropertyValue(text, 0, "Type", word) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags Type in:\n" << text;
        return FC_BODY_ERROR;
    }
    if (word == coltype::INT_WORD)
        type = coltype::INT;
    else if (word == coltype::ENUM_WORD)
        type = coltype::ENUM;
    else
        type = coltype::STR;

    if (getPropertyValue(text, 0, "Value", word) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not Found tags Value in:\n" << text;
        return FC_BODY_ERROR;
    }
    defVal = tagToInt(word);
    parseValues(text);
    return FC_OK;
}

// Every <Value Index=".." Text=".." /> of the text; incomplete ones are logged
// and skipped, existing entries are kept.
void DataColumn::parseValues(const std::string& text) {
    std::string segment;
    for (int from = getSegment(text, 0, "Value", segment); from >= 0; from = getSegment(text, from, "Value", segment)) {
        std::string index, valueText;
        if (getPropertyValue(segment, 0, "Index", index) < 0) {
            DBG(DBG_ERROR) << "initFromString: Not Found tags Index in:\n" << segment;
            continue;
        }
        if (getPropertyValue(segment, 0, "Text", valueText) < 0) {
            DBG(DBG_ERROR) << "initFromString: Not Found tags Text in:\n" << segment;
            continue;
        }
        addValue(tagToInt(index), valueText);
    }
}

Fcodes parseColumns(const std::string& block, const char* what, const std::function<void(DataColumn*)>& add) {
    Fcodes result = FC_OK;
    std::string segment;
    for (int from = getSegment(block, 0, "Column", segment); from >= 0;
         from = getSegment(block, from, "Column", segment)) {
        auto column = std::make_unique<DataColumn>();
        const Fcodes code = column->initFromString(segment);
        result |= code;
        if (code != FC_OK) {
            DBG(DBG_ERROR) << "initFromString: error in " << what << " fcode=" << std::hex
                           << static_cast<uint32_t>(code);
            continue;
        }
        add(column.release());
    }
    return result;
}

}  // namespace datacom
