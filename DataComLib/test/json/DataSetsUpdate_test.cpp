#include <gtest/gtest.h>

#include "json/DataSetsTestSupport.h"

using namespace datacom;

using dstest::LogCapture;
using dstest::valueAt;
using dstest::writeText;

namespace {

// A saved document of an older layout: "Old" is gone from the reference,
// "Legacy" is a property the reference dropped, and the reference added
// properties to keyed, array and single instances and a whole component.
constexpr const char* kSaved = R"({"dataset": "ChannelDataSet", "components": {
  "Chan": {"properties": {"Name": {"type": "string", "default": ""}, "Legacy": {"type": "integer", "default": 0}},
           "instances": {"A": {"Name": "mine", "Legacy": 3, "Gain": 9}, "B": {"Name": "other", "Legacy": 4}}},
  "Targets": {"properties": {"Port": {"type": "integer", "default": 1}},
              "instances": [{"Port": 10, "Ttl": 64}, {"Port": 11}, {"Port": 12}]},
  "Device": {"properties": {"Label": {"type": "string", "default": "x"}}, "instance": {"Label": "saved"}},
  "Empty": {"properties": {"P": {"type": "integer", "default": 1}}},
  "Old": {"properties": {}, "instance": {}}}})";

constexpr const char* kReference = R"({"dataset": "Default Dataset", "components": {
  "Chan": {"properties": {"Name": {"type": "string", "default": "dflt"}, "Gain": {"type": "integer", "default": "5"},
                          "On": {"type": "boolean", "default": "true"}},
           "instances": {"A": {"Name": "factory", "Gain": 5, "On": true}}},
  "Targets": {"properties": {"Port": {"type": "integer", "default": 1},
                             "Ttl": {"type": "integer", "default": 16},
                             "Proto": {"type": "enum", "default": "UDP", "values": ["UDP", "RTP"]},
                             "Extra": {"type": "list", "default": [1]}},
              "instances": [{"Port": 1}]},
  "Device": {"properties": {"Label": {"type": "string", "default": "x"}, "Serial": {"type": "string", "default": "none"}},
             "instance": {"Label": "factory", "Serial": "none"}},
  "Empty": {"properties": {"P": {"type": "integer", "default": 1}}, "instances": {"k": {"P": 1}}},
  "New": {"properties": {"Q": {"type": "boolean", "default": false}}, "instances": [{"Q": true}]}}})";

}  // namespace

class DataSetUpdate : public ::testing::Test {
protected:
    void SetUp() override {
        writeText("/data/settings/saved.json", kSaved);
        writeText("/etc/sysmgt/defaults.json", kReference);
        ASSERT_EQ(store.loadDataSet("/data/settings/saved.json"), FC_OK);
        ASSERT_EQ(store.loadDataSet("Default Dataset", "/etc/sysmgt/defaults.json"), FC_OK);
    }
    DataSets store;
};

TEST_F(DataSetUpdate, AddsTypedDefaultsKeepsValuesAndRemovesExtras) {
    LogCapture log;
    ASSERT_EQ(store.updateDataSet("ChannelDataSet", "Default Dataset", false, true, false), FC_OK);
    const std::string lines = log.take();

    EXPECT_EQ(valueAt<std::string>(store, "Chan", "Name", "A"), "mine") << "existing values are kept";
    EXPECT_EQ(valueAt<std::string>(store, "Chan", "Gain", "A"), "9") << "an instance that holds the value keeps it";
    EXPECT_EQ(valueAt<int>(store, "Chan", "Gain", "B"), 5) << "numeric text default -> integer";
    EXPECT_TRUE(valueAt<bool>(store, "Chan", "On", "B")) << "text \"true\" -> boolean";
    EXPECT_EQ(store.setBoolParam("ChannelDataSet", "Chan", "On", false, "A"), FC_OK) << "stored as a JSON boolean";
    EXPECT_FALSE(store.hasInstance("ChannelDataSet", "Chan", ""));

    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(valueAt<int>(store, "Targets", "Ttl", i), i == 0 ? 64 : 16) << "index " << i;
        EXPECT_EQ(valueAt<int>(store, "Targets", "Port", i), 10 + i) << "index " << i;
    }
    EXPECT_EQ(valueAt<std::string>(store, "Targets", "Proto", 2), "UDP");
    EXPECT_EQ(valueAt<std::string>(store, "Device", "Serial", ""), "none");
    EXPECT_EQ(valueAt<std::string>(store, "Device", "Label", ""), "saved");
    EXPECT_TRUE(store.hasInstance("ChannelDataSet", "New", 0)) << "a new component comes with its values";

    int legacy = 0;
    EXPECT_EQ(store.getIntParam("ChannelDataSet", "Chan", "Legacy", legacy, "A"), FC_NO_SUCH_NAME);
    std::vector<std::string> names;
    EXPECT_EQ(store.getProperties("ChannelDataSet", "Chan", names), FC_OK);
    EXPECT_EQ(names, (std::vector<std::string>{"Gain", "Name", "On"}));
    std::string found;
    EXPECT_EQ(store.findDataSetWithComponent(found, "Old"), FC_NO_SUCH_NAME);

    for (const char* expected : {"updateDataSet: src=ChannelDataSet ref=Default Dataset",
                                 "updateDataSet: Adding comp=New to src_dataset=ChannelDataSet",
                                 "updateDataSet: Updating existing comp=Chan in src_dataset=ChannelDataSet",
                                 "updateDataSet: Adding property=Ttl in comp=Targets",
                                 "updateDataSet: Adding int value=16 ind=2 prop=Ttl to comp=Targets",
                                 "updateDataSet: Adding intvalue=5 key=B prop=Gain to comp=Chan",
                                 "updateDataSet: Found value=9", "updateDataSet: Adding default value ind=0 prop=Extra",
                                 "updateDataSet: Removing property=Legacy", "updateDataSet: Removing value from key=A",
                                 "updateDataSet: Removing comp=Old from src_dataset=ChannelDataSet"})
        EXPECT_NE(lines.find(expected), std::string::npos) << expected;
}

TEST_F(DataSetUpdate, FlagsAndFailures) {
    ASSERT_EQ(store.updateDataSet("ChannelDataSet", "Default Dataset", true, false, false), FC_OK);
    int legacy = 0;
    EXPECT_EQ(store.getIntParam("ChannelDataSet", "Chan", "Legacy", legacy, "A"), FC_OK) << "extras kept";
    std::string found;
    EXPECT_EQ(store.findDataSetWithComponent(found, "Old"), FC_OK);
    EXPECT_EQ(store.getTextParam("ChannelDataSet", "Device", "Serial", found, ""), FC_NO_SUCH_NAME)
        << "addMissing false adds no property";
    EXPECT_TRUE(store.hasInstance("ChannelDataSet", "New", 0)) << "missing components always come";

    EXPECT_FALSE(store.hasInstance("ChannelDataSet", "Empty", "k"));
    ASSERT_EQ(store.updateDataSet("ChannelDataSet", "Default Dataset", true, false, true), FC_OK);
    EXPECT_TRUE(store.hasInstance("ChannelDataSet", "Empty", "k")) << "instances taken where the source had none";
    EXPECT_EQ(valueAt<std::string>(store, "Chan", "Name", "A"), "mine") << "existing instances are never replaced";

    ASSERT_EQ(store.storeDataSet("ChannelDataSet", "/data/settings/before.json"), FC_OK);
    EXPECT_EQ(store.updateDataSet("ChannelDataSet", "Nope", false, true, false), FC_NO_SUCH_NAME);
    EXPECT_EQ(store.updateDataSet("Nope", "Default Dataset", false, true, false), FC_NO_SUCH_NAME);
    ASSERT_EQ(store.storeDataSet("ChannelDataSet", "/data/settings/after.json"), FC_OK);
    EXPECT_EQ(dstest::readText("/data/settings/after.json"), dstest::readText("/data/settings/before.json"));

    // A component of the wrong shape makes jsoncpp throw: a code and a line, no escape.
    writeText("/data/settings/bad.json", R"({"dataset": "Bad", "components": {"Chan": {"properties": 5}}})");
    ASSERT_EQ(store.loadDataSet("/data/settings/bad.json"), FC_OK);
    LogCapture log;
    EXPECT_EQ(store.updateDataSet("Bad", "Default Dataset", false, true, false), FC_BODY_ERROR);
    EXPECT_NE(log.take().find("updateDataSet: Exc: Couldn't update dataset src=Bad"), std::string::npos);
}
