#include <gtest/gtest.h>

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataStoreConstants.h"

using namespace datacom;

namespace {

DataColumn makeColumn(const std::string& text) {
    DataColumn column;
    EXPECT_EQ(column.initFromString(text), FC_OK) << text;
    return column;
}

const char* const kModeColumn =
    "\t\t\t<Column Name=\"Mode\" Access=\"RW\" Type=\"enum\" Value=\"1\"  >\n"
    "\t\t\t\t<Value Index=\"0\" Text=\"Off\" />\n"
    "\t\t\t\t<Value Index=\"1\" Text=\"On\" />\n"
    "\t\t\t</Column>\n";

}  // namespace

TEST(DataColumn, TagTextLayoutAndParse) {
    DataColumn port;
    port.init("Port", colaccess::RW, coltype::INT);
    port.setDefVal(5000);
    std::string text;
    port.toString(text);
    EXPECT_EQ(text, "\t\t\t<Column Name=\"Port\" Access=\"RW\" Type=\"int\" Value=\"5000\" />\n");

    DataColumn mode;
    mode.init("Mode", colaccess::RW, coltype::ENUM);
    mode.addValue(1, "On");
    mode.addValue(0, "Off");
    mode.setDefVal(1);
    mode.toString(text);
    EXPECT_EQ(text, kModeColumn);
    EXPECT_TRUE(makeColumn(kModeColumn).isEqualTo(mode));

    DataColumn renamed(mode);
    renamed.addValue(1, "ON");
    EXPECT_FALSE(renamed.isEqualTo(mode)) << "one value text differs";
    int32_t index = -1;
    EXPECT_TRUE(renamed.getValueIndex("ON", index));
    EXPECT_EQ(index, 1);
    std::string valueText = "untouched";
    EXPECT_FALSE(renamed.getValueText(7, valueText));
    EXPECT_EQ(valueText, "untouched");

    // Unknown access keeps the previous one, unknown type gives string, junk numbers read leniently.
    DataColumn odd = makeColumn("<Column Name=\"X\" Access=\"XX\" Type=\"float\" Value=\"12x\" />");
    EXPECT_EQ(odd.getAccess(), colaccess::RO);
    EXPECT_EQ(odd.getType(), coltype::STR);
    EXPECT_EQ(odd.getDefVal(), 12);
    EXPECT_EQ(makeColumn("<Column Name=\"X\" Access=\"WO\" Type=\"int\" Value=\"99999999999\" />").getDefVal(),
              INT32_MAX);
}

TEST(DataColumn, ParseRefusesMissingProperties) {
    const struct {
        const char* text;
        Fcodes code;
        const char* name;
    } cases[] = {
        {"<Column Access=\"RW\" Type=\"int\" Value=\"1\" />", FC_BODY_ERROR, ""},
        {"<Column Name=\"A\" Type=\"int\" Value=\"1\" />", FC_BODY_ERROR, "A"},
        {"<Column Name=\"A\" Access=\"RW\" Value=\"1\" />", FC_BODY_ERROR, "A"},
        {"<Column Name=\"A\" Access=\"RW\" Type=\"int\" />", FC_BODY_ERROR, "A"},
        {"<Column Name=\"A\" Access=\"RW\" Type=\"int\" Value=\"1", FC_BODY_ERROR, "A"},
        {"<Column Name=\"A\" Access=\"RW\" Type=\"enum\" Value=\"1\" ><Value Index=\"1\" /><Value Text=\"x\" />"
         "<Value Index=\"2\" Text=\"Two\" /></Column>",
         FC_OK, "A"},
    };
    for (const auto& c : cases) {
        DataColumn column;
        EXPECT_EQ(column.initFromString(c.text), c.code) << c.text;
        EXPECT_EQ(column.getName(), c.name) << c.text;
    }
    DataColumn partial = makeColumn(cases[5].text);
    std::string text;
    EXPECT_TRUE(partial.getValueText(2, text));
    EXPECT_FALSE(partial.getValueText(1, text)) << "a value without Text is skipped";
}

TEST(DataItem, TypedSettersPerColumnType) {
    DataColumn number;
    number.init("Port", colaccess::RW, coltype::INT);
    number.setDefVal(5);
    DataColumn mode = makeColumn(kModeColumn);
    DataColumn name;
    name.init("Name", colaccess::RW, coltype::STR);

    DataItem port(&number);
    EXPECT_EQ(port.getState(), datastate::NEW);
    EXPECT_EQ(port.getStrVal(), "5");
    EXPECT_EQ(port.setValue(7), FC_OK);
    EXPECT_EQ(port.getIntVal_copy(), 7);
    EXPECT_EQ(port.getStrVal_copy(), "5") << "setValue(int) takes its text from the committed integer";
    port.acceptChanges();
    EXPECT_EQ(port.getIntVal(), 7);
    EXPECT_EQ(port.getStrVal(), "5");
    EXPECT_EQ(port.initValue(std::string("12x")), FC_OK);
    EXPECT_EQ(port.getIntVal(), 12);
    EXPECT_EQ(port.getState(), datastate::UNCHANGED) << "init never marks";

    DataItem item(&mode);
    EXPECT_EQ(item.getStrVal(), "On");
    EXPECT_EQ(item.getIntVal(), 1);
    EXPECT_EQ(item.setValue(std::string("Off")), FC_OK);
    EXPECT_EQ(item.getIntVal_copy(), 0);
    EXPECT_EQ(item.getState(), datastate::NEW | datastate::CHANGED);
    EXPECT_EQ(item.setValue(std::string("Auto")), FC_BAD_VALUE);
    EXPECT_EQ(item.getStrVal_copy(), "Off") << "a refused value leaves the item alone";
    EXPECT_EQ(item.initValue(5), FC_BAD_VALUE);
    EXPECT_EQ(item.initValue(0), FC_OK);
    EXPECT_EQ(item.getStrVal(), "Off");

    // A string column without value texts refuses every integer, the default included.
    DataItem text(&name);
    EXPECT_EQ(text.getStrVal(), "");
    EXPECT_EQ(text.initValue(0), FC_BAD_VALUE);
    EXPECT_EQ(text.setValue(std::string("cam1")), FC_OK);
    EXPECT_EQ(text.getIntVal_copy(), 0);

    // Rollback clears the marks and keeps the pending values.
    text.rollbackChanges();
    EXPECT_EQ(text.getState(), datastate::UNCHANGED);
    EXPECT_EQ(text.getStrVal_copy(), "cam1");
    EXPECT_EQ(text.getStrVal(), "");
    text.touch();
    EXPECT_EQ(text.getState(), datastate::CHANGED);
}

TEST(DataItem, TagTextCopyAndRows) {
    DataColumn mode = makeColumn(kModeColumn);
    DataItem item(&mode);
    item.setValue(std::string("Off"));
    std::string text;
    item.toString(text);
    EXPECT_EQ(text, "\t\t\t<Item Name=\"Mode\" Value=\"On\" />\n") << "only the committed text is written";
    EXPECT_EQ(item.initFromString("<Item Name=\"Other\" Value=\"Off\" />"), FC_OK);
    EXPECT_EQ(item.getIntVal(), 0);
    EXPECT_EQ(item.initFromString("<Item Name=\"Mode\" Value=\"Auto\" />"), FC_BAD_VALUE);
    EXPECT_EQ(item.initFromString("<Item Value=\"On\" />"), FC_BODY_ERROR);
    EXPECT_EQ(item.initFromString("<Item Name=\"Mode\" />"), FC_BODY_ERROR);

    DataRow first(1), second(2);
    auto copy = std::unique_ptr<DataItem>(item.clone());
    EXPECT_EQ(copy->getState(), datastate::NEW);
    EXPECT_EQ(copy->getStrVal(), "Off");
    DataItem* moved = copy.release();
    first.addDataItem("Mode", moved);
    first.setState(datastate::UNCHANGED);
    moved->setValue(std::string("On"));
    EXPECT_EQ(first.getState(), datastate::CHANGED) << "an edited item marks its row";
    moved->setRow(&second);
    EXPECT_EQ(first.getDataItem("Mode"), nullptr);
    EXPECT_EQ(second.getDataItem("Mode"), moved);
    EXPECT_EQ(moved->getRow(), &second);
    std::unique_ptr<DataItem> removed = second.removeDataItem("Mode");
    EXPECT_EQ(removed.get(), moved);
    EXPECT_EQ(moved->getRow(), nullptr);
}
