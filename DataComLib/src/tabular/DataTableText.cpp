// The tag text of a table: written into dataset files and read back.
#include "datacom/DataColumn.h"
#include "datacom/DataRow.h"
#include "datacom/DataTable.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"

namespace datacom {

void DataTable::toString(std::string& out) {
    std::lock_guard<std::recursive_mutex> guard(mutex);
    out = "\t<Table Name=\"" + name + "\">\n\t\t<Columns>\n";
    std::string piece;
    for (const auto& column : columns) {
        column->toString(piece);
        out += piece;
    }
    out += "\t\t</Columns>\n";
    for (const auto& row : rows) {
        row.second->toString(piece);
        out += piece;
    }
    out += "\t</Table>\n";
}

// Columns first, then every Row block as a new row whose items take
// the written values. The rows stay marked new until the dataset accepts them.
Fcodes DataTable::initFromString(const std::string& text) {
    if (getPropertyValue(text, 0, "Name", name) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found Name in:" << text;
        return FC_BODY_ERROR;
    }
    Fcodes result = FC_OK;
    std::string block, segment;
    if (getSegment(text, 0, "Columns", block) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found Columns in:" << text;
    } else {
        result = parseColumns(block, "column", [this](DataColumn* column) { addColumns(column->getName(), column); });
    }
    for (int from = getSegment(text, 0, "Row", segment); from >= 0; from = getSegment(text, from, "Row", segment)) {
        std::string idText;
        getPropertyValue(segment, 0, "ID", idText);
        DataRow* row = newRow(tagToInt(idText), nullptr, false);
        const Fcodes code = row->initFromString(segment);
        if (result > FC_OK)
            DBG(DBG_ERROR) << "initFromString: error in row=" << row->getId() << " fcode" << std::hex
                           << static_cast<uint32_t>(code);
        result |= code;
    }
    return result;
}

}  // namespace datacom
