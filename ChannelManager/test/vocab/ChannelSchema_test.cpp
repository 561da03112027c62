#include <gtest/gtest.h>
#include <json/json.h>

#include <fstream>
#include <memory>
#include <set>
#include <string>

#include "datacom/DataSetsFactory.h"
#include "datacom/IDataSets.h"
#include "support/ChannelHarness.h"
#include "vocab/ChannelSchema.h"

using namespace datacom;

namespace {

const char* typeOf(SchemaEntry::Kind kind) {
    switch (kind) {
        case SchemaEntry::Kind::Text:
            return "string";
        case SchemaEntry::Kind::Integer:
            return "integer";
        case SchemaEntry::Kind::Boolean:
            return "boolean";
        case SchemaEntry::Kind::Choice:
            return "enum";
    }
    return "?";
}

// Every name the channel logic uses exists in the factory datasets with the
// type it expects, and every instance holds a value of that type; a dataset
// property that no code names is reported too, so the two lists stay one.
TEST(ChannelSchema, FactoryDatasetsHoldEveryNameTheCodeUses) {
    TestRoot root;
    std::unique_ptr<IDataSets> store(DataSetsFactory().createDataSets());
    for (const char* file : kFactoryFiles) {
        ASSERT_TRUE(installFactoryFile(root, file)) << file;
        ASSERT_EQ(FC_OK, store->loadDataSet(std::string("/etc/sysmgt/") + file)) << file;
    }
    Json::Value channelFile;  // the ranges are read from the file itself: the store does not keep them apart
    std::ifstream channelText(std::string(testpaths::FACTORY_DIR) + "/channel_data_set_vex.json");
    channelText >> channelFile;
    std::set<std::string> named;
    for (const SchemaEntry& entry : channelSchema()) {
        const std::string where = std::string(entry.dataSet) + "/" + entry.component + "/" + entry.property;
        named.insert(where);
        std::string type, access, defaultValue;
        std::vector<std::string> values;
        ASSERT_EQ(FC_OK, store->getComponentProperty(entry.dataSet, entry.component, entry.property, type, access,
                                                     defaultValue, values))
            << where;
        EXPECT_EQ(typeOf(entry.kind), type) << where;
        if (entry.range) {
            const Json::Value& definition = channelFile["components"][entry.component]["properties"][entry.property];
            EXPECT_EQ(entry.range->minimum, definition.get("minimum", -1).asInt()) << where;
            EXPECT_EQ(entry.range->maximum, definition.get("maximum", -1).asInt()) << where;
        }
        std::vector<std::string> keys;
        store->getInstances(entry.dataSet, entry.component, keys);
        if (keys.empty())
            keys.push_back("");  // the single "instance"
        for (const std::string& key : keys) {
            std::string text;
            int number = 0;
            bool flag = false;
            Fcodes read = entry.kind == SchemaEntry::Kind::Text || entry.kind == SchemaEntry::Kind::Choice
                              ? store->getTextParam(entry.dataSet, entry.component, entry.property, text, key)
                          : entry.kind == SchemaEntry::Kind::Integer
                              ? store->getIntParam(entry.dataSet, entry.component, entry.property, number, key)
                              : store->getBoolParam(entry.dataSet, entry.component, entry.property, flag, key);
            EXPECT_EQ(FC_OK, read) << where << " instance=" << key;
        }
    }
    std::set<std::pair<std::string, std::string>> components;
    for (const SchemaEntry& entry : channelSchema())
        components.emplace(entry.dataSet, entry.component);
    for (const auto& [dataSet, component] : components) {
        std::vector<std::string> properties;
        ASSERT_EQ(FC_OK, store->getProperties(dataSet, component, properties)) << dataSet << "/" << component;
        for (const std::string& property : properties)
            EXPECT_TRUE(named.count(dataSet + "/" + component + "/" + property))
                << dataSet << "/" << component << "/" << property << " is in the file but no code names it";
    }
}

}  // namespace
