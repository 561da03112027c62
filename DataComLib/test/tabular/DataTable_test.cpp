#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DataTable.h"

using namespace datacom;

namespace {

const char* const kTableText =
    "\t<Table Name=\"Targets\">\n"
    "\t\t<Columns>\n"
    "\t\t\t<Column Name=\"Port\" Access=\"RW\" Type=\"int\" Value=\"5000\" />\n"
    "\t\t\t<Column Name=\"Host\" Access=\"RW\" Type=\"str\" Value=\"0\" />\n"
    "\t\t</Columns>\n"
    "\t\t\t<Row ID=\"1\" >\n"
    "\t\t\t<Item Name=\"Port\" Value=\"1234\" />\n"
    "\t\t\t<Item Name=\"Host\" Value=\"239.1.1.1\" />\n"
    "\t\t\t</Row>\n"
    "\t\t\t<Row ID=\"3\" >\n"
    "\t\t\t<Item Name=\"Port\" Value=\"5000\" />\n"
    "\t\t\t<Item Name=\"Host\" Value=\"127.0.0.1\" />\n"
    "\t\t\t</Row>\n"
    "\t</Table>\n";

// A loaded table, owned by a dataset so that marks reach the dataset; nothing marked.
struct LoadedTable {
    LoadedTable() {
        table = new DataTable();
        EXPECT_EQ(table->initFromString(kTableText), FC_OK);
        dataSet.addTable("Targets", table);
        dataSet.acceptChanges();
    }
    DataSet dataSet{"Main"};
    DataTable* table;
};

DataColumn* column(const std::string& name, int32_t type, int32_t defVal) {
    auto* made = new DataColumn();
    made->init(name, colaccess::RW, type);
    made->setDefVal(defVal);
    return made;
}

}  // namespace

TEST(DataTable, TagTextRoundTripAndLayout) {
    LoadedTable loaded;
    std::string text;
    loaded.table->toString(text);
    EXPECT_EQ(text, kTableText);
    EXPECT_EQ(loaded.table->getColumnNames(), (std::vector<std::string>{"Port", "Host"}));

    // Rows without a Columns block still load, with no items.
    DataTable bare;
    EXPECT_EQ(bare.initFromString("<Table Name=\"T\"><Row ID=\"4\" ></Row></Table>"), FC_OK);
    ASSERT_NE(bare.getRows(4), nullptr);
    EXPECT_EQ(bare.getRows(4)->getItemsNum(), 0u);
    // An item the row lacks, a broken column and a missing name are reported.
    DataTable broken;
    EXPECT_EQ(broken.initFromString("<Table Name=\"T\"><Columns><Column Name=\"A\" /></Columns>"
                                    "<Row ID=\"1\" ><Item Name=\"Z\" Value=\"1\" /></Row></Table>"),
              FC_BODY_ERROR | FC_NO_SUCH_NAME);
    EXPECT_EQ(broken.getColumnsNum(), 0u);
    EXPECT_EQ(DataTable().initFromString("<Table><Columns></Columns></Table>"), FC_BODY_ERROR);
}

TEST(DataTable, ChangeTrackingEndToEnd) {
    LoadedTable loaded;
    DataTable& table = *loaded.table;
    EXPECT_FALSE(loaded.dataSet.isChanged());

    table.getRows(1)->getDataItem("Port")->setValue(std::string("4000"));
    EXPECT_EQ(table.getRows(1)->getState(), datastate::CHANGED);
    EXPECT_EQ(table.getState(), datastate::CHANGED);
    EXPECT_EQ(loaded.dataSet.getState(), datastate::CHANGED);
    int port = 0;
    loaded.dataSet.getIntParam("Targets", 1, "Port", port);
    EXPECT_EQ(port, 1234) << "reads give the committed value until accepted";
    EXPECT_EQ(table.acceptChanges(), FC_OK);
    loaded.dataSet.acceptChanges();
    loaded.dataSet.getIntParam("Targets", 1, "Port", port);
    EXPECT_EQ(port, 4000);
    EXPECT_FALSE(loaded.dataSet.isChanged());

    // Rollback drops a new row, keeps a new-and-edited one, keeps a deleted one.
    const int32_t plain = table.newRow();
    const int32_t edited = table.appendNewRow();
    table.getRows(edited)->getDataItem("Host")->setValue(std::string("239.2.2.2"));
    EXPECT_EQ(table.deleteRow(3), FC_OK);
    std::string text;
    table.toString(text);
    EXPECT_NE(text.find("<Row ID=\"3\" >"), std::string::npos) << "a deleted row is written until accepted";
    std::string host;
    EXPECT_EQ(loaded.dataSet.getStringParam("Targets", 3, "Host", host), FC_OK);
    EXPECT_EQ(host, "127.0.0.1");
    table.rollbackChanges();
    EXPECT_EQ(table.getRows(plain), nullptr);
    ASSERT_NE(table.getRows(edited), nullptr);
    EXPECT_EQ(table.getRows(edited)->getState(), datastate::UNCHANGED);
    EXPECT_EQ(table.getRows(edited)->getDataItem("Host")->getStrVal_copy(), "239.2.2.2");
    EXPECT_EQ(table.getRows(3)->getState(), datastate::UNCHANGED);

    // Accept destroys deleted rows.
    table.deleteRow(3);
    table.acceptChanges();
    EXPECT_EQ(table.getRows(3), nullptr);
    EXPECT_EQ(table.deleteRow(3), FC_NO_SUCH_NAME);
    EXPECT_EQ(table.doDeleteRow(3), FC_OK);
    table.touch();
    EXPECT_EQ(table.getRows(1)->getDataItem("Port")->getState(), datastate::CHANGED);
    table.untouch();
    EXPECT_FALSE(table.isChanged());
    // A marked row marks its table when the table is asked.
    table.getRows(1)->getDataItem("Port")->setValue(5000);
    table.setState(datastate::UNCHANGED);
    EXPECT_TRUE(table.isChanged());
    EXPECT_EQ(table.getState(), datastate::CHANGED);
}

TEST(DataTable, RowIdsAndIndexFilters) {
    DataTable table("T");
    for (int32_t id : {1, 2, 7})
        table.newRow(id, nullptr, false);
    EXPECT_EQ(table.appendNewRow(), 8);
    EXPECT_EQ(table.newRow(), 3);
    EXPECT_EQ(DataTable().appendNewRow(), 1);
    table.newRow(INT32_MAX, nullptr, false);
    EXPECT_EQ(table.appendNewRow(), 0) << "no id above the largest";
    EXPECT_EQ(table.newRow(), 4);

    DataTable states("S");
    const uint32_t rowStates[] = {datastate::UNCHANGED, datastate::DELETED | datastate::CHANGED, datastate::CHANGED};
    for (int32_t id = 1; id <= 3; ++id)
        states.newRow(id, nullptr, false)->setState(rowStates[id - 1]);
    EXPECT_EQ(states.getFirstRowIndex(), 1);
    EXPECT_EQ(states.getNextRowIndex(1), 2) << "deleted and changed is not skipped";
    EXPECT_EQ(states.getLastRowIndex(), 1) << "only unchanged rows count";
    EXPECT_EQ(states.getNextRowIndex(9), 0);
    states.getRows(1)->setState(datastate::DELETED);
    states.getRows(2)->setState(datastate::DELETED);
    EXPECT_EQ(states.getFirstRowIndex(), 3);
    EXPECT_EQ(states.getNextRowIndex(1), 3);
    EXPECT_EQ(states.getLastRowIndex(), 0);
}

TEST(DataTable, ColumnReplacementRules) {
    LoadedTable loaded;
    DataTable& table = *loaded.table;
    // Integer by string: values kept; the column moves to the end.
    table.replaceColumn("Port", column("Port", coltype::STR, 0));
    EXPECT_EQ(table.getRows(1)->getDataItem("Port")->getStrVal(), "1234");
    EXPECT_EQ(table.getColumnNames(), (std::vector<std::string>{"Host", "Port"}));
    // String by integer: every item takes the default.
    table.replaceColumn("Host", column("Host", coltype::INT, 9));
    EXPECT_EQ(table.getRows(1)->getDataItem("Host")->getStrVal(), "9");
    EXPECT_EQ(table.getRows(3)->getDataItem("Host")->getIntVal(), 9);
    // Enumeration lacking the text: default; knowing it: kept with the old index.
    DataColumn* mode = column("Mode", coltype::ENUM, 0);
    mode->addValue(0, "Off");
    mode->addValue(1, "On");
    table.addColumns("Mode", mode);
    table.getRows(3)->getDataItem("Mode")->initValue(1);
    DataColumn* fewer = column("Mode", coltype::ENUM, 5);
    fewer->addValue(5, "Off");
    fewer->addValue(9, "Auto");
    table.replaceColumn("Mode", fewer);
    EXPECT_EQ(table.getRows(1)->getDataItem("Mode")->getIntVal(), 0) << "Off kept, index not re-mapped";
    EXPECT_EQ(table.getRows(3)->getDataItem("Mode")->getStrVal(), "Off") << "On unknown: default";
    EXPECT_EQ(table.getRows(3)->getDataItem("Mode")->getIntVal(), 5);
    EXPECT_EQ(table.getRows(3)->getDataItem("Mode")->getColumn(), fewer);

    table.removeColumns("Mode");
    EXPECT_EQ(table.getRows(1)->getDataItem("Mode"), nullptr);
    EXPECT_EQ(table.getColumnsNum(), 2u);
    EXPECT_EQ(table.getRows(1)->getState(), datastate::CHANGED);
}

TEST(DataTable, MergeFlags) {
    LoadedTable reference;
    reference.table->replaceColumn("Port", column("Port", coltype::INT, 6000));
    reference.table->newRow(5, nullptr, false);
    reference.table->getRows(1)->getDataItem("Port")->initValue(std::string("1"));

    DataTable own("Targets");
    own.addColumns("Extra", column("Extra", coltype::INT, 0));
    own.addColumns("Port", column("Port", coltype::INT, 5000));
    own.newRow(1, nullptr, false);
    own.update(*reference.table, true, false, false, false);
    EXPECT_EQ(own.getColumnNames(), (std::vector<std::string>{"Extra", "Port"})) << "nothing to merge";

    own.update(*reference.table, true, true, false, false);
    EXPECT_EQ(own.getColumns("Port")->getDefVal(), 6000) << "differing column replaced by a copy";
    EXPECT_NE(own.getColumns("Port"), reference.table->getColumns("Port"));
    EXPECT_NE(own.getColumns("Host"), nullptr) << "missing column added";
    EXPECT_NE(own.getColumns("Extra"), nullptr) << "own column kept";
    EXPECT_EQ(own.getRowsNum(), 1u);

    own.update(*reference.table, false, true, true, false);
    EXPECT_EQ(own.getColumns("Extra"), nullptr);
    EXPECT_EQ(own.getRowsNum(), 3u);
    EXPECT_EQ(own.getRows(1)->getDataItem("Port")->getIntVal_copy(), 5000) << "existing row kept";
    EXPECT_EQ(own.getRows(3)->getDataItem("Host")->getStrVal_copy(), "127.0.0.1") << "new row from reference";
    own.update(*reference.table, false, true, true, true);
    EXPECT_EQ(own.getRows(1)->getDataItem("Port")->getIntVal_copy(), 1) << "overwritten";
}

TEST(DataTable, ConcurrentReadersAndWriter) {
    LoadedTable loaded;
    DataSet& dataSet = loaded.dataSet;
    DataTable& table = *loaded.table;
    std::atomic<bool> done{false};
    std::atomic<int> badReads{0}, reads{0};
    auto reader = [&] {
        while (!done) {
            ++reads;
            int port = 0;
            std::string text;
            if (dataSet.getIntParam("Targets", 1, "Port", port) != FC_OK || port < 1000)
                ++badReads;
            for (int32_t id = dataSet.getFirstRowIndex("Targets"); id != 0; id = dataSet.getNextRowIndex("Targets", id))
                dataSet.getStringParam("Targets", id, "Host", text);
            table.toString(text);
        }
    };
    std::thread readers[] = {std::thread(reader), std::thread(reader)};
    // At least 300 writes, and on until the readers have overlapped them a while (bounded).
    int round = 0;
    for (; round < 300 || (reads < 2000 && round < 1000000); ++round) {
        table.lock();
        table.getRows(1)->getDataItem("Port")->setValue(std::to_string(1000 + round));
        const int32_t id = table.appendNewRow();
        table.deleteRow(id);
        table.acceptChanges();
        table.unlock();
    }
    done = true;
    for (auto& thread : readers)
        thread.join();
    EXPECT_EQ(badReads, 0);
    int port = 0;
    dataSet.getIntParam("Targets", 1, "Port", port);
    EXPECT_EQ(port, 1000 + round - 1);
    EXPECT_EQ(table.getRowsNum(), 2u);
}
