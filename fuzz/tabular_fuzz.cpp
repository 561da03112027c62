// The tabular data set file: loaded from a file as the holder does at start,
// its tables walked and read, written and read again, merged as a reference
// into the channel data set, and its changes accepted and rolled back. The
// same text is read as a typed object too.
#include <fstream>
#include <vector>

#include "FuzzStores.h"
#include "FuzzSupport.h"
#include "datacom/DataObject.h"
#include "datacom/DataSet.h"
#include "datacom/DataTable.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

// Reads every column of the first rows as the holder's parameter reads do,
// and walks the rows as "Get Next Row" does: ids rise until 0 ends the walk.
void walkTables(DataSet& dataSet) {
    std::vector<DataTable*> tables(dataSet.tablesBegin(), dataSet.tablesEnd());
    for (DataTable* table : tables) {
        const std::string name = table->getId();
        const std::vector<std::string> columns = table->getColumnNames();
        int32_t row = dataSet.getFirstRowIndex(name);
        for (size_t seen = 0; row != 0; ++seen) {
            fuzz::check(seen <= table->getRowsNum(), "the row walk ends");
            if (seen < 3) {
                for (const std::string& column : columns) {
                    int number = 0;
                    std::string text;
                    dataSet.getIntParam(name, row, column, number);
                    dataSet.getStringParam(name, row, column, text);
                }
            }
            const int32_t next = dataSet.getNextRowIndex(name, row);
            fuzz::check(next == 0 || next > row, "the row walk moves forward");
            row = next;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::usePrivateRoot();
    fuzz::Input input(data, size);
    const uint8_t flags = input.byte();
    const std::string text = input.rest();
    std::ofstream(sysmgtPath("/tmp/fuzz_dataset.xml"), std::ios::binary | std::ios::trunc) << text;

    DataSet loaded;
    loaded.load("/tmp/fuzz_dataset.xml");
    walkTables(loaded);
    std::string written;
    loaded.toString(written);
    DataSet again;
    again.initFromString(written);

    // The hostile set as the reference of a merge into the channels.
    DataSet channels;
    fuzz::check(isOk(channels.initFromString(fuzz::kTabularDoc)), "the channel data set parses");
    channels.update(loaded, flags & 0x01, flags & 0x02, flags & 0x04, flags & 0x08, flags & 0x10, flags & 0x20);
    walkTables(channels);

    loaded.touch();
    loaded.isChanged();
    if (flags & 0x40)
        loaded.acceptChanges();
    else
        loaded.rollbackChanges();

    DataObject object;
    object.initFromString(text);
    object.toString(written);
    object.touch();
    object.rollbackChanges();
    return 0;
}
