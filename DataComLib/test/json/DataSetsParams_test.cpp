#include <gtest/gtest.h>

#include <functional>

#include "json/DataSetsTestSupport.h"

using namespace datacom;

using dstest::LogCapture;
using dstest::valueAt;

using dstest::kChan;
using dstest::kSet;

TEST(DataSetsParams, CommittedAndPendingReadsAcrossSetCommitRollback) {
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    EXPECT_FALSE(store.isChanged());

    ASSERT_EQ(store.setIntParam(kSet, kChan, "Bitrate", 9000, "HEVC"), FC_OK);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC"), 6000);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC", true), 9000);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "H.264", true), 8000) << "nothing pending: the committed value";
    EXPECT_TRUE(store.isChanged() && store.isChangedDataSet(kSet) && store.isChangedComponent(kSet, kChan));
    EXPECT_TRUE(store.isChangedInstance(kSet, kChan, "HEVC"));
    EXPECT_FALSE(store.isChangedInstance(kSet, kChan, "H.264"));
    EXPECT_TRUE(store.isChangedProperty(kSet, kChan, "Bitrate", "HEVC"));
    EXPECT_FALSE(store.isChangedProperty(kSet, kChan, "Name", "HEVC"));

    // A store before the commit writes the committed value only.
    ASSERT_EQ(store.storeDataSet(kSet, "/data/settings/uncommitted.json"), FC_OK);
    DataSets reloaded;
    ASSERT_EQ(reloaded.loadDataSet("/data/settings/uncommitted.json"), FC_OK);
    EXPECT_EQ(valueAt<int>(reloaded, kChan, "Bitrate", "HEVC"), 6000);

    ASSERT_EQ(store.commit(), FC_OK);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC"), 9000);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC", true), 9000);
    EXPECT_FALSE(store.isChanged());

    ASSERT_EQ(store.setIntParam(kSet, kChan, "Bitrate", 100, "HEVC"), FC_OK);
    ASSERT_EQ(store.rollback(), FC_OK);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC"), 9000);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC", true), 9000);
    EXPECT_FALSE(store.isChanged());

    // Component-wise commit and rollback touch only their component.
    ASSERT_EQ(store.setIntParam(kSet, kChan, "Bitrate", 1, "HEVC"), FC_OK);
    ASSERT_EQ(store.setIntParam(kSet, "Device", "Port", 6000, ""), FC_OK);
    ASSERT_EQ(store.commitComponent(kSet, "Device"), FC_OK);
    EXPECT_FALSE(store.isChangedComponent(kSet, "Device"));
    EXPECT_EQ(valueAt<int>(store, "Device", "Port", ""), 6000);
    ASSERT_EQ(store.rollbackComponent(kSet, kChan), FC_OK);
    EXPECT_FALSE(store.isChanged());
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "HEVC"), 9000);
}

TEST(DataSetsParams, InitWritesCommittedAndLeavesPendingAlone) {
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    ASSERT_EQ(store.setIntParam(kSet, kChan, "Bitrate", 5000, "H.264"), FC_OK);
    ASSERT_EQ(store.initIntParam(kSet, kChan, "Bitrate", 3000, "H.264"), FC_OK);
    ASSERT_EQ(store.initTextParam(kSet, kChan, "Name", "renamed", "H.264"), FC_OK);
    ASSERT_EQ(store.initBoolParam(kSet, kChan, "Enabled", false, "H.264"), FC_OK);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "H.264"), 3000);
    EXPECT_EQ(valueAt<int>(store, kChan, "Bitrate", "H.264", true), 5000) << "init leaves the pending value";
    EXPECT_EQ(valueAt<std::string>(store, kChan, "Name", "H.264"), "renamed");
    EXPECT_FALSE(valueAt<bool>(store, kChan, "Enabled", "H.264"));
    EXPECT_FALSE(store.isChangedProperty(kSet, kChan, "Name", "H.264"));
}

// Each row: an operation on a fresh store, the code it must give, a text the
// log must hold, and whether a value is pending afterwards.
TEST(DataSetsParams, TypeAndEnumerationChecks) {
    struct Row {
        const char* name;
        std::function<Fcodes(DataSets&)> op;
        Fcodes expected;
        const char* logged;
        bool pendingAfter;
    };
    const std::string hevc = "HEVC";
    const Row rows[] = {
        {"int enum member", [&](DataSets& s) { return s.setIntParam(kSet, kChan, "Mode", 7, hevc); }, FC_OK, "", true},
        {"int enum miss", [&](DataSets& s) { return s.setIntParam(kSet, kChan, "Mode", 5, hevc); }, FC_BAD_VALUE,
         "setIntParam: dataset=ChannelDataSet comp=ChannelsTable param=Mode ind=HEVC absent in enum", false},
        {"int into boolean", [&](DataSets& s) { return s.setIntParam(kSet, kChan, "Enabled", 1, hevc); }, FC_WRONG_TYPE,
         "setIntParam: dataset=ChannelDataSet comp=ChannelsTable param=Enabled ind=HEVC wrong expected "
         "type:\"boolean\"",
         false},
        {"bool into string", [&](DataSets& s) { return s.setBoolParam(kSet, kChan, "Name", true, hevc); },
         FC_WRONG_TYPE, "setBoolParam: dataset=", false},
        {"text into integer", [&](DataSets& s) { return s.setTextParam(kSet, kChan, "Bitrate", "-12", hevc); }, FC_OK,
         "set as int=-12", true},
        {"bad text into integer", [&](DataSets& s) { return s.setTextParam(kSet, kChan, "Bitrate", "7k", hevc); },
         FC_BAD_VALUE, "", false},
        {"text into boolean", [&](DataSets& s) { return s.setTextParam(kSet, kChan, "Enabled", "yes", hevc); }, FC_OK,
         "set as bool=false", true},
        {"text enum member", [&](DataSets& s) { return s.setTextParam(kSet, kChan, "Profile", "High", hevc); }, FC_OK,
         "", true},
        {"text int-enum member", [&](DataSets& s) { return s.setTextParam(kSet, kChan, "Mode", "7", hevc); }, FC_OK, "",
         true},
        {"int past the range", [&](DataSets& s) { return s.setIntParam(kSet, "Device", "Port", 65536, ""); },
         FC_BAD_VALUE,
         "setIntParam: dataset=ChannelDataSet comp=Device param=Port ind= out of range=65536 maximum=65535", false},
        {"int at the range's edge", [&](DataSets& s) { return s.setIntParam(kSet, "Device", "Port", 65535, ""); },
         FC_OK, "", true},
        {"text below the range", [&](DataSets& s) { return s.setTextParam(kSet, "Device", "Port", "0", ""); },
         FC_BAD_VALUE, "setTextParam: dataset=ChannelDataSet comp=Device param=Port ind= out of range=0 minimum=1",
         false},
        {"text enum miss", [&](DataSets& s) { return s.setTextParam(kSet, kChan, "Profile", "Low", hevc); },
         FC_BAD_VALUE, "absent in enum", false},
        {"property without a definition", [&](DataSets& s) { return s.setIntParam(kSet, kChan, "Nope", 1, hevc); },
         FC_WRONG_TYPE, "param=Nope ind=HEVC wrong expected type:null", false},
        {"defined property without a committed value",
         [&](DataSets& s) {
             s.loadComponent(kSet, "Extra", R"({"properties": {"N": {"type": "integer"}}, "instance": {}})");
             return s.setIntParam(kSet, "Extra", "N", 1, "");
         },
         FC_WRONG_TYPE, "param=N ind= wrong expected type:\"integer\"", false},
        {"unknown instance", [&](DataSets& s) { return s.setIntParam(kSet, kChan, "Bitrate", 1, "X"); },
         FC_NO_SUCH_NAME, "", false},
        {"int read of text",
         [&](DataSets& s) {
             int v;
             return s.getIntParam(kSet, kChan, "Name", v, hevc);
         },
         FC_WRONG_TYPE, "getIntParam: dataset=ChannelDataSet comp=ChannelsTable param=Name ind=HEVC wrong type.",
         false},
        {"missing read",
         [&](DataSets& s) {
             int v;
             return s.getNewIntParam(kSet, "Nope", "Port", v, 3);
         },
         FC_NO_SUCH_NAME, "getIntParam: dataset=ChannelDataSet comp=Nope param=Port ind=3 No such name.", false},
    };
    for (const Row& row : rows) {
        DataSets store;
        ASSERT_TRUE(dstest::loadChannelDoc(store));
        LogCapture log;
        EXPECT_EQ(row.op(store), row.expected) << row.name;
        EXPECT_NE(log.take().find(row.logged), std::string::npos) << row.name;
        EXPECT_EQ(store.isChanged(), row.pendingAfter) << row.name;
    }
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    ASSERT_EQ(store.setTextParam(kSet, kChan, "Mode", "7", "HEVC"), FC_OK);
    EXPECT_EQ(valueAt<int>(store, kChan, "Mode", "HEVC", true), 7) << "stored as the enumeration's integer";
    EXPECT_EQ(valueAt<std::string>(store, kChan, "Bitrate", "HEVC"), "6000");
}

TEST(DataSetsParams, KeyAndIndexAddressing) {
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    EXPECT_EQ(valueAt<std::string>(store, "Device", "Label", ""), "encoder");
    std::string text;
    {
        LogCapture log;
        EXPECT_EQ(store.getTextParam(kSet, "Device", "Label", text, 0), FC_NO_SUCH_NAME);
        EXPECT_NE(log.take().find("param=Label ind=0 No such name."), std::string::npos);
    }
    EXPECT_EQ(store.setTextParam(kSet, "Device", "Label", "x", 0), FC_NO_SUCH_NAME);
    EXPECT_EQ(store.getTextParam(kSet, kChan, "Name", text, ""), FC_NO_SUCH_NAME) << "keyed component, no single";

    EXPECT_EQ(valueAt<std::string>(store, "Targets", "Address", 1), "127.0.0.1");
    EXPECT_EQ(store.getTextParam(kSet, "Targets", "Address", text, "1"), FC_NO_SUCH_NAME);
    EXPECT_EQ(store.getTextParam(kSet, "Targets", "Address", text, 2), FC_NO_SUCH_NAME);

    ASSERT_EQ(store.setIntParam(kSet, "Targets", "Port", 6000, 1), FC_OK);
    EXPECT_TRUE(store.isChangedInstance(kSet, "Targets", 1));
    EXPECT_TRUE(store.isChangedInstance(kSet, "Targets", 0)) << "the pending array holds an element 0 (null)";
    EXPECT_FALSE(store.isChangedProperty(kSet, "Targets", "Port", 0));
    EXPECT_TRUE(store.isChangedProperty(kSet, "Targets", "Port", 1));
    ASSERT_EQ(store.setTextParam(kSet, "Device", "Label", "renamed", ""), FC_OK);
    EXPECT_TRUE(store.isChangedInstance(kSet, "Device", ""));
    ASSERT_EQ(store.commit(), FC_OK);
    EXPECT_EQ(valueAt<int>(store, "Targets", "Port", 1), 6000);
    EXPECT_EQ(valueAt<std::string>(store, "Device", "Label", ""), "renamed");
}

TEST(DataSetsParams, TouchAndUntouch) {
    DataSets store;
    ASSERT_TRUE(dstest::loadChannelDoc(store));
    ASSERT_EQ(store.setIntParam(kSet, "Targets", "Port", 77, 1), FC_OK);
    ASSERT_EQ(store.touchComponent(kSet, "Targets"), FC_OK);
    EXPECT_TRUE(store.isChangedInstance(kSet, "Targets", 0));
    EXPECT_EQ(valueAt<int>(store, "Targets", "Port", 1, true), 5000) << "a full copy of the committed component";
    EXPECT_EQ(store.touchComponent(kSet, "Nope"), FC_NO_SUCH_NAME);
    ASSERT_EQ(store.untouchComponent(kSet, "Targets"), FC_OK);
    EXPECT_FALSE(store.isChanged());

    ASSERT_EQ(store.setIntParam(kSet, kChan, "Mode", 7, "HEVC"), FC_OK);
    ASSERT_EQ(store.touchDataSet(kSet), FC_OK);
    EXPECT_TRUE(store.isChangedProperty(kSet, kChan, "Mode", "H.264"));
    EXPECT_EQ(valueAt<int>(store, kChan, "Mode", "HEVC", true), 1) << "a full copy of the committed document";
    ASSERT_EQ(store.untouchDataSet(kSet), FC_OK);
    EXPECT_FALSE(store.isChanged());

    ASSERT_EQ(store.setIntParam(kSet, kChan, "Bitrate", 1, "HEVC"), FC_OK);
    ASSERT_EQ(store.setIntParam(kSet, "Targets", "Port", 1, 0), FC_OK);
    ASSERT_EQ(store.untouchProperty(kSet, kChan, "Bitrate", "HEVC"), FC_OK);
    EXPECT_FALSE(store.isChangedComponent(kSet, kChan)) << "an emptied component leaves the overlay";
    ASSERT_EQ(store.untouchProperty(kSet, "Targets", "Port", 0), FC_OK);
    EXPECT_FALSE(store.isChanged());
}
