#include <gtest/gtest.h>

#include "json/DataSetsTestSupport.h"

using namespace datacom;

using dstest::LogCapture;
using dstest::valueAt;
using Keys = std::vector<std::string>;

using dstest::kChan;
using dstest::kSet;

TEST(DataSetsInstances, AddAppendRemoveAndClear) {
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    ASSERT_EQ(store.addInstance(kSet, kChan, "Spare"), FC_OK);
    EXPECT_TRUE(store.hasInstance(kSet, kChan, "Spare"));
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "Spare"), 4000) << "instances start from the defaults";
    EXPECT_EQ(valueAt<int>(store, kChan, "Mode", "Spare"), 1);
    EXPECT_FALSE(valueAt<bool>(store, kChan, "Enabled", "Spare"));
    EXPECT_EQ(valueAt<std::string>(store, kChan, "Profile", "Spare"), "Main");
    EXPECT_EQ(store.addInstance(kSet, kChan, "Spare"), FC_BAD_VALUE) << "existing key";
    {
        LogCapture log;
        EXPECT_EQ(store.addInstance(kSet, "Targets", "x"), FC_WRONG_TYPE);
        EXPECT_NE(
            log.take().find("addInstance: Couldn't add to comp=Targets instances those are not an object (by key)"),
            std::string::npos);
        int index = -1;
        EXPECT_EQ(store.appendInstance(kSet, kChan, index), FC_WRONG_TYPE);
        EXPECT_NE(log.take().find("addInstance: Couldn't append to comp=ChannelsTable values those are not an array"),
                  std::string::npos);
    }

    int index = -1;
    ASSERT_EQ(store.appendInstance(kSet, "Targets", index), FC_OK);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(valueAt<std::string>(store, "Targets", "Address", 2), "239.1.1.1");

    // Removing by index shifts later instances and their pending values.
    ASSERT_EQ(store.setIntParam(kSet, "Targets", "Port", 7000, 2), FC_OK);
    ASSERT_EQ(store.removeInstance(kSet, "Targets", 0), FC_OK);
    EXPECT_FALSE(store.hasInstance(kSet, "Targets", 2));
    EXPECT_TRUE(store.isChangedProperty(kSet, "Targets", "Port", 1));
    EXPECT_EQ(valueAt<std::string>(store, "Targets", "Address", 0), "127.0.0.1");

    ASSERT_EQ(store.setIntParam(kSet, kChan, "Bitrate", 1, "Spare"), FC_OK);
    ASSERT_EQ(store.removeInstance(kSet, kChan, "Spare"), FC_OK);
    EXPECT_FALSE(store.isChangedComponent(kSet, kChan)) << "pending values go with their instance";
    EXPECT_EQ(store.removeInstance(kSet, kChan, "Spare"), FC_NO_SUCH_NAME);

    ASSERT_EQ(store.clearComponent(kSet, "Targets"), FC_OK);
    int size = -1;
    EXPECT_EQ(store.getComponentSize(kSet, "Targets", size), FC_OK);
    EXPECT_EQ(size, 0);
    EXPECT_FALSE(store.isChanged());
    ASSERT_EQ(store.appendInstance(kSet, "Targets", index), FC_OK) << "still an array after clearing";
    EXPECT_EQ(index, 0);
}

TEST(DataSetsInstances, Queries) {
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    struct Row {
        const char* name;
        Fcodes (*query)(DataSets&, Keys&);
        Keys expected;
    } rows[] = {
        {"properties",
         [](DataSets& s, Keys& k) { return s.getProperties(kSet, kChan, k); },
         {"Bitrate", "Enabled", "Mode", "Name", "Profile"}},
        {"keyed instances", [](DataSets& s, Keys& k) { return s.getInstances(kSet, kChan, k); }, {"H.264", "HEVC"}},
        {"array instances", [](DataSets& s, Keys& k) { return s.getInstances(kSet, "Targets", k); }, {"0", "1"}},
        {"single instance", [](DataSets& s, Keys& k) { return s.getInstances(kSet, "Device", k); }, {""}},
        {"by text",
         [](DataSets& s, Keys& k) { return s.getInstancesByParameter(kSet, kChan, "Profile", "Main", k); },
         {"HEVC"}},
        {"by int",
         [](DataSets& s, Keys& k) { return s.getInstancesByParameter(kSet, "Targets", "Port", 5000, k); },
         {"1"}},
        {"by int, text value",
         [](DataSets& s, Keys& k) { return s.getInstancesByParameter(kSet, kChan, "Name", 0, k); },
         {}},
        {"by key prefix", [](DataSets& s, Keys& k) { return s.getInstancesByKey(kSet, kChan, "HE", k); }, {"HEVC"}},
        {"by empty prefix",
         [](DataSets& s, Keys& k) { return s.getInstancesByKey(kSet, kChan, "", k); },
         {"H.264", "HEVC"}},
    };
    for (const Row& row : rows) {
        Keys keys = {"stale"};
        EXPECT_EQ(row.query(store, keys), FC_OK) << row.name;
        EXPECT_EQ(keys, row.expected) << row.name;
    }
    Keys keys;
    EXPECT_EQ(store.getInstancesByKey(kSet, "Nope", "", keys), FC_NO_SUCH_NAME);
    EXPECT_EQ(store.getInstancesByParameter("NoSet", kChan, "Name", "x", keys), FC_NO_SUCH_NAME);

    int size = 0;
    EXPECT_EQ(store.getComponentSize(kSet, kChan, size), FC_OK);
    EXPECT_EQ(size, 2);
    EXPECT_EQ(store.getComponentSize(kSet, "Device", size), FC_OK);
    EXPECT_EQ(size, 1);

    std::string type, access, def;
    Keys values;
    EXPECT_EQ(store.getComponentProperty(kSet, kChan, "Mode", type, access, def, values), FC_OK);
    EXPECT_EQ(type, "enum");
    EXPECT_EQ(access, "RW");
    EXPECT_EQ(def, "1");
    EXPECT_EQ(values, (Keys{"1", "2", "7"}));
    EXPECT_EQ(store.getComponentProperty(kSet, kChan, "Nope", type, access, def, values), FC_NO_SUCH_NAME);
    EXPECT_EQ(store.getComponentPropertyDefault(kSet, kChan, "Profile", def), FC_OK);
    EXPECT_EQ(def, "Main");
}
