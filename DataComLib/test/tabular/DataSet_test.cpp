#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <sstream>

#include "TestFiles.h"
#include "datacom/AtomicFile.h"
#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DataTable.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

const char* const kDataSetText =
    "<DataSet ID=\"Main\" Version=\"3\">\n"
    "\t<Table Name=\"ChannelsTable\">\n"
    "\t\t<Columns>\n"
    "\t\t\t<Column Name=\"Bitrate\" Access=\"RW\" Type=\"int\" Value=\"8000\" />\n"
    "\t\t\t<Column Name=\"Mode\" Access=\"RO\" Type=\"enum\" Value=\"0\"  >\n"
    "\t\t\t\t<Value Index=\"0\" Text=\"CBR\" />\n"
    "\t\t\t\t<Value Index=\"1\" Text=\"VBR\" />\n"
    "\t\t\t</Column>\n"
    "\t\t</Columns>\n"
    "\t\t\t<Row ID=\"1\" >\n"
    "\t\t\t<Item Name=\"Bitrate\" Value=\"-12\" />\n"
    "\t\t\t<Item Name=\"Mode\" Value=\"VBR\" />\n"
    "\t\t\t</Row>\n"
    "\t</Table>\n"
    "\t<Table Name=\"Targets\">\n"
    "\t\t<Columns>\n"
    "\t\t\t<Column Name=\"Host\" Access=\"WO\" Type=\"str\" Value=\"0\" />\n"
    "\t\t</Columns>\n"
    "\t\t\t<Row ID=\"2\" >\n"
    "\t\t\t<Item Name=\"Host\" Value=\"239.0.0.9\" />\n"
    "\t\t\t</Row>\n"
    "\t</Table>\n"
    "</DataSet>\n";

}  // namespace

TEST(DataSet, FileRoundTripIsByteIdentical) {
    writeText("/etc/sysmgt/main.ds", kDataSetText);
    DataSet dataSet;
    ASSERT_EQ(dataSet.load("/etc/sysmgt/main.ds"), FC_OK);
    EXPECT_FALSE(dataSet.isChanged()) << "a load marks nothing";
    EXPECT_EQ(dataSet.store("/data/settings/main.ds"), FC_OK);
    EXPECT_EQ(readText("/data/settings/main.ds"), kDataSetText);
    DataSet again;
    ASSERT_EQ(again.load("/data/settings/main.ds"), FC_OK);
    std::string text;
    again.toString(text);
    EXPECT_EQ(text, kDataSetText);

    // Without Version the document is written back with Version="0".
    DataSet bare;
    EXPECT_EQ(bare.initFromString("<DataSet ID=\"B\"></DataSet>"), FC_OK);
    bare.toString(text);
    EXPECT_EQ(text, "<DataSet ID=\"B\" Version=\"0\">\n</DataSet>\n");
}

TEST(DataSet, LoadFailuresKeepWhatIsThere) {
    writeText("/etc/sysmgt/main.ds", kDataSetText);
    writeText("/etc/sysmgt/empty.ds", "");
    DataSet dataSet;
    ASSERT_EQ(dataSet.load("/etc/sysmgt/main.ds"), FC_OK);
    EXPECT_EQ(dataSet.load("/etc/sysmgt/missing.ds"), FC_NO_SUCH_NAME);
    EXPECT_EQ(dataSet.load("/etc/sysmgt/empty.ds"), FC_UNAVAILABLE);
    EXPECT_EQ(dataSet.load("/etc/sysmgt"), FC_UNAVAILABLE) << "a directory reads as nothing";
    EXPECT_NE(dataSet.getTable("Targets"), nullptr);

    // Malformed and truncated texts: codes, never a crash; good tables stay, unaccepted.
    const std::string text(kDataSetText);
    const struct {
        std::string content;
        Fcodes code;
    } cases[] = {
        {"<DataSet Version=\"1\"></DataSet>", FC_BODY_ERROR},
        {"<DataSet ID=\"M\"><Table Name=\"T\"><Columns><Column Name=\"A\" Value=\"x\" /></Columns></Table>",
         FC_BODY_ERROR},
        {"<DataSet ID=\"M\"><Table Id=\"1\"><Row ID=\"1\" ></Row></Table><Table Name=\"Ok\"></Table>", FC_BODY_ERROR},
        {text.substr(0, text.size() / 2), FC_OK},
        {"<DataSet ID=\"", FC_BODY_ERROR},
    };
    for (const auto& c : cases) {
        writeText("/etc/sysmgt/bad.ds", c.content);
        DataSet bad;
        EXPECT_EQ(bad.load("/etc/sysmgt/bad.ds"), c.code) << c.content;
    }
    // Every truncation of a good file loads without crashing and without a table it lacks.
    for (size_t length = 1; length < text.size(); ++length) {
        DataSet truncated;
        const Fcodes code = truncated.initFromString(text.substr(0, length));
        EXPECT_TRUE(code == FC_OK || code == FC_BODY_ERROR) << length;
        EXPECT_LE(std::distance(truncated.tablesBegin(), truncated.tablesEnd()), 2) << length;
    }
    DataSet partial;
    partial.load("/etc/sysmgt/bad.ds");
    writeText("/etc/sysmgt/bad.ds", cases[2].content);
    EXPECT_EQ(partial.load("/etc/sysmgt/bad.ds"), FC_BODY_ERROR);
    ASSERT_NE(partial.getTable("Ok"), nullptr);
    EXPECT_TRUE(partial.isChanged()) << "tables of a failed load are not accepted";
}

TEST(DataSet, InterruptedStoreLeavesOldFile) {
    writeText("/etc/sysmgt/main.ds", kDataSetText);
    DataSet dataSet;
    ASSERT_EQ(dataSet.load("/etc/sysmgt/main.ds"), FC_OK);
    dataSet.getTable("Targets")->getRows(2)->getDataItem("Host")->setValue(std::string("239.0.0.10"));
    dataSet.acceptChanges();
    gAtomicFileBeforeRename = failBeforeRename;
    EXPECT_EQ(dataSet.store("/etc/sysmgt/main.ds"), FC_OK) << "a failed store still answers OK";
    gAtomicFileBeforeRename = nullptr;
    EXPECT_EQ(readText("/etc/sysmgt/main.ds"), kDataSetText);
    EXPECT_EQ(dataSet.store("/etc/sysmgt/main.ds"), FC_OK);
    EXPECT_NE(readText("/etc/sysmgt/main.ds").find("239.0.0.10"), std::string::npos);
}

TEST(DataSet, ParameterReadsAndMarks) {
    DataSet dataSet;
    ASSERT_EQ(dataSet.initFromString(kDataSetText), FC_OK);
    dataSet.acceptChanges();
    int number = 7;
    std::string text = "untouched";
    EXPECT_EQ(dataSet.getIntParam("ChannelsTable", 1, "Bitrate", number), FC_OK);
    EXPECT_EQ(number, -12);
    EXPECT_EQ(dataSet.getIntParam("ChannelsTable", 1, "Mode", number), FC_OK);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(dataSet.getIntParam("Targets", 2, "Host", number), FC_OK);
    EXPECT_EQ(number, 0) << "an integer read of a string item";
    EXPECT_EQ(dataSet.getStringParam("ChannelsTable", 1, "Bitrate", text), FC_OK);
    EXPECT_EQ(text, "-12");
    const struct {
        const char* table;
        int32_t row;
        const char* column;
    } missing[] = {{"Nope", 1, "Bitrate"}, {"ChannelsTable", 5, "Bitrate"}, {"ChannelsTable", 1, "Nope"}};
    for (const auto& m : missing) {
        text = "untouched";
        EXPECT_EQ(dataSet.getStringParam(m.table, m.row, m.column, text), FC_NO_SUCH_NAME) << m.table << m.row;
        EXPECT_EQ(text, "untouched");
    }
    EXPECT_EQ(dataSet.getFirstRowIndex("Targets"), 2);
    EXPECT_EQ(dataSet.getNextRowIndex("Targets", 2), 0);
    EXPECT_EQ(dataSet.getFirstRowIndex("Nope"), 0);

    EXPECT_EQ(dataSet.touch("Nope"), FC_OK);
    EXPECT_FALSE(dataSet.isChanged());
    dataSet.touch("Targets");
    EXPECT_TRUE(dataSet.isChanged());
    dataSet.untouch();
    EXPECT_FALSE(dataSet.isChanged());
    dataSet.getTable("Targets")->deleteRow(2);
    EXPECT_EQ(dataSet.getStringParam("Targets", 2, "Host", text), FC_OK) << "deleted rows read until accepted";
    dataSet.rollbackChanges();
    EXPECT_NE(dataSet.getTable("Targets")->getRows(2), nullptr);
}

TEST(DataSet, MergeFlags) {
    DataSet reference;
    ASSERT_EQ(reference.initFromString(kDataSetText), FC_OK);
    const char* const ownText =
        "<DataSet ID=\"Main\"><Table Name=\"Local\"><Columns></Columns></Table>"
        "<Table Name=\"Targets\"><Columns><Column Name=\"Host\" Access=\"WO\" Type=\"str\" Value=\"0\" />"
        "</Columns><Row ID=\"2\" ><Item Name=\"Host\" Value=\"127.0.0.1\" /></Row></Table></DataSet>";

    DataSet own;
    own.initFromString(ownText);
    EXPECT_EQ(own.update(reference, true, false, true, true, true, false), FC_OK);
    EXPECT_EQ(own.getTable("ChannelsTable"), nullptr) << "without addMissingTables";
    EXPECT_NE(own.getTable("Local"), nullptr) << "keepOwnTables";
    EXPECT_FALSE(own.isChanged()) << "a merge is accepted at once";
    std::string host;
    own.getStringParam("Targets", 2, "Host", host);
    EXPECT_EQ(host, "127.0.0.1") << "existing row not overwritten";

    own.update(reference, false, true, true, true, true, true);
    EXPECT_EQ(own.getTable("Local"), nullptr);
    ASSERT_NE(own.getTable("ChannelsTable"), nullptr);
    EXPECT_NE(own.getTable("ChannelsTable"), reference.getTable("ChannelsTable"));
    own.getStringParam("Targets", 2, "Host", host);
    EXPECT_EQ(host, "239.0.0.9") << "overwriteRows";
    std::string mine, theirs;
    own.toString(mine);
    reference.toString(theirs);
    EXPECT_EQ(mine.substr(mine.find('\n')), theirs.substr(theirs.find('\n'))) << "same tables after the merge";
}
