#include <gtest/gtest.h>

#include "datacom/DataColumn.h"
#include "datacom/DataItem.h"
#include "datacom/DataObject.h"
#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"

using namespace datacom;

namespace {

const char* const kObjectText =
    "\t<Object Type=\"Encoder\">\n"
    "\t\t<Parameters>\n"
    "\t\t\t<Column Name=\"Gop\" Access=\"RW\" Type=\"int\" Value=\"30\" />\n"
    "\t\t\t<Column Name=\"Name\" Access=\"RO\" Type=\"str\" Value=\"0\" />\n"
    "\t\t</Parameters>\n"
    "\t\t\t<Row ID=\"2\" >\n"
    "\t\t\t<Item Name=\"Gop\" Value=\"60\" />\n"
    "\t\t\t<Item Name=\"Name\" Value=\"hevc\" />\n"
    "\t\t\t</Row>\n"
    "\t\t\t<Row ID=\"7\" >\n"
    "\t\t\t<Item Name=\"Gop\" Value=\"30\" />\n"
    "\t\t\t<Item Name=\"Name\" Value=\"main\" />\n"
    "\t\t\t</Row>\n"
    "\t</Object>\n";

}  // namespace

TEST(DataObject, TagTextParametersAndInstances) {
    DataObject object;
    ASSERT_EQ(object.initFromString(kObjectText), FC_OK);
    std::string text;
    object.toString(text);
    EXPECT_EQ(text, kObjectText);
    EXPECT_EQ(object.getInstances(), (std::vector<std::string>{"2", "7"}));
    EXPECT_EQ(object.getInstance("2")->getId(), 2);
    EXPECT_EQ(object.initFromString("<Object><Parameters></Parameters></Object>"), FC_BODY_ERROR);

    // Parameters listed by name; a new one reaches every instance, a removed one leaves them.
    auto* bitrate = new DataColumn();
    bitrate->init("Bitrate", colaccess::RW, coltype::INT);
    object.addParameter("Bitrate", bitrate);
    EXPECT_EQ(object.getParameters(), (std::vector<std::string>{"Bitrate", "Gop", "Name"}));
    EXPECT_EQ(object.getInstance("7")->getDataItem("Bitrate")->getStrVal(), "0");
    EXPECT_EQ(object.getInstance("7")->getState(), datastate::NEW | datastate::CHANGED);
    object.removeParameter(bitrate);
    EXPECT_EQ(object.getParameter("Bitrate"), nullptr);
    EXPECT_EQ(object.getInstance("7")->getDataItem("Bitrate"), nullptr);

    auto* gopText = new DataColumn();
    gopText->init("Gop", colaccess::RW, coltype::STR);
    object.replaceParameter("Gop", gopText);
    EXPECT_EQ(object.getInstance("2")->getDataItem("Gop")->getStrVal(), "60") << "int to string keeps values";
    EXPECT_EQ(object.getInstance("2")->getDataItem("Gop")->getColumn(), gopText);
    object.replaceParameter("Gop", nullptr);
    EXPECT_EQ(object.getParameter("Gop"), nullptr);
    EXPECT_EQ(object.getInstance("2")->getDataItem("Gop")->getId(), "Gop") << "the item keeps its old column";
}

TEST(DataObject, ChangeTrackingAndMerge) {
    DataSet dataSet("Main");
    DataObject object("Encoder");
    object.setDataSet(&dataSet);
    ASSERT_EQ(object.initFromString(kObjectText), FC_OK);
    object.acceptChanges();
    dataSet.setState(datastate::UNCHANGED);
    EXPECT_FALSE(object.isChanged());

    object.getInstance("2")->getDataItem("Gop")->setValue(std::string("90"));
    EXPECT_EQ(object.getState(), datastate::CHANGED);
    EXPECT_EQ(dataSet.getState(), datastate::CHANGED) << "an instance edit marks the dataset";
    DataRow* added = object.newInstance("extra", nullptr, false);
    EXPECT_EQ(added->getDataItem("Gop")->getIntVal(), 30);
    EXPECT_EQ(object.deleteInstance("7"), FC_OK);
    EXPECT_EQ(object.deleteInstance("none"), FC_NO_SUCH_NAME);
    object.rollbackChanges();
    EXPECT_EQ(object.getInstance("extra"), nullptr);
    EXPECT_NE(object.getInstance("7"), nullptr);
    object.deleteInstance("7");
    object.acceptChanges();
    EXPECT_EQ(object.getInstance("7"), nullptr);
    DataItem* gop = object.getInstance("2")->getDataItem("Gop");
    EXPECT_EQ(gop->getIntVal(), 60);
    EXPECT_EQ(gop->getIntVal_copy(), 90) << "rollback keeps the pending value";
    gop->setValue(std::string("90"));
    object.acceptChanges();

    DataObject reference;
    reference.initFromString(kObjectText);
    object.update(reference, false, true, true, false);
    EXPECT_NE(object.getInstance("7"), nullptr);
    EXPECT_EQ(gop->getIntVal_copy(), 90) << "not overwritten";
    object.update(reference, false, true, true, true);
    object.acceptChanges();
    EXPECT_EQ(object.getInstance("2")->getDataItem("Gop")->getIntVal(), 60) << "overwritten from the reference";

    // touch marks the object and its dataset, untouch clears the object, and a
    // marked instance marks its object when the object is asked.
    dataSet.setState(datastate::UNCHANGED);
    object.touch();
    EXPECT_EQ(object.getState(), datastate::CHANGED);
    EXPECT_EQ(dataSet.getState(), datastate::CHANGED);
    object.untouch();
    EXPECT_EQ(object.getState(), datastate::UNCHANGED);
    EXPECT_FALSE(object.isChanged());
    object.getInstance("2")->getDataItem("Gop")->setValue(std::string("45"));
    object.setState(datastate::UNCHANGED);
    EXPECT_TRUE(object.isChanged());
    EXPECT_EQ(object.getState(), datastate::CHANGED);
    DataObject empty("Empty");
    empty.touch();
    EXPECT_EQ(empty.getState(), datastate::CHANGED) << "touched without an instance to mark it";
}
