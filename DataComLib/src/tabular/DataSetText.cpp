// The dataset document: its tag text, and loading and storing it as a file.
#include <fstream>
#include <sstream>

#include "datacom/AtomicFile.h"
#include "datacom/DataSet.h"
#include "datacom/DataTable.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/TagText.h"

namespace datacom {

void DataSet::toString(std::string& out) {
    out = "<DataSet ID=\"" + id + "\" Version=\"" + version + "\">\n";
    std::string piece;
    for (auto& table : tables) {
        table.second->toString(piece);
        out += piece;
    }
    out += "</DataSet>\n";
}

Fcodes DataSet::initFromString(const std::string& text) {
    if (getPropertyValue(text, 0, "ID", id) < 0) {
        DBG(DBG_ERROR) << "initFromString: Not found ID in:" << text;
        return FC_BODY_ERROR;
    }
    if (getPropertyValue(text, 0, "Version", version) < 0)
        version = "0";
    Fcodes result = FC_OK;
    std::string segment;
    for (int from = getSegment(text, 0, "Table", segment); from >= 0; from = getSegment(text, from, "Table", segment)) {
        auto table = std::make_unique<DataTable>();
        const Fcodes code = table->initFromString(segment);
        result |= code;
        if (code != FC_OK) {
            DBG(DBG_ERROR) << "initFromString: Error in initializing table fcode=" << std::hex
                           << static_cast<uint32_t>(code);
            continue;
        }
        const std::string tableName = table->getId();
        addTable(tableName, table.release());
    }
    return result;
}

// Nothing is destroyed before the whole file has been read, so a missing or
// empty file leaves the dataset as it was.
Fcodes DataSet::load(const std::string& file) {
    std::ifstream in(sysmgtPath(file), std::ios::binary);
    if (!in.good()) {
        DBG(DBG_ERROR) << "load: file stream !good " << file;
        return FC_NO_SUCH_NAME;
    }
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    in.seekg(0, std::ios::beg);
    if (size <= 0) {
        DBG(DBG_ERROR) << "load: file stream size==0 file=" << file;
        return FC_UNAVAILABLE;
    }
    std::ostringstream content;
    content << in.rdbuf();
    in.close();
    if (content.str().empty()) {  // a size but nothing readable (a directory, say)
        DBG(DBG_ERROR) << "load: file stream size==0 file=" << file;
        return FC_UNAVAILABLE;
    }

    cleanUpRelations();
    const Fcodes parsed = initFromString(content.str());
    if (parsed != FC_OK)
        return parsed;
    const Fcodes accepted = acceptChanges() | FC_OK;
    if (accepted > FC_OK)
        DBG(DBG_ERROR) << "load: After acceptChanges() fcode=" << std::hex << static_cast<uint32_t>(accepted);
    return accepted;
}

// The file is replaced through a temporary file and a rename, so a power cut
// leaves the old document or the new one. The result stays FC_OK as the
// store has always answered; a failure shows in the log only.
Fcodes DataSet::store(const std::string& file) {
    std::string text;
    toString(text);
    const int error = writeFileAtomically(file, text);
    if (error != 0)
        DBG(DBG_ERROR) << "store: write failed errno=" << error << " file=" << file;
    DBG(DBG_INFO) << "store: stored in file=" << file;
    return FC_OK;
}

}  // namespace datacom
