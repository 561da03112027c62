// The channel manager's reactions to events, as the worker hands them to
// doHandle: the Zixi feeder classification, the KLV-ingest reconfiguration
// with its carry-over, the time zone (also a restarted device manager's), and
// the periodic source refresh.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/ManagerHarness.h"

using namespace datacom;

using namespace vocab;

TEST(ChannelMngrEventDispatch, FeederClassificationNamesTheChannel) {
    const struct {
        const char* description;
        const char* channel;
    } rows[] = {
        {"Zixi Feeder CH1", "HEVC"},
        {"error in Zixi Feeder CH0: link down", "H.264"},
        {"Zixi Feeder CH0 and Zixi Feeder CH1", "HEVC"},  // CH1 is tested first
        {"zixi feeder ch1", ""},                          // case-sensitive
        {"Zixi Feeder CH2", ""},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.channel, ChannelMngr::feederChannel(row.description)) << row.description;

    // An event naming no feeder is dropped with "OK", its source cleared.
    ManagerHarness h;
    ASSERT_TRUE(h.ready());
    for (const char* id : {"Data Stream", "Zixi Connection Failed", "Zixi Change Bitrate Request"}) {
        MessageEvent event = mediatorEvent(id, "HEVC", "");
        event.description = "UDP Sender CH1";
        EXPECT_EQ(FC_OK, h.manager.doHandle(&event)) << id;
        EXPECT_EQ("", event.source) << id;
    }
    EXPECT_TRUE(h.waitLog("doHandle: arrived event=Zixi Change Bitrate Request"));
}

TEST(ChannelMngrEventDispatch, KlvIngestReconfigurationCarriesAFailureOver) {
    ManagerHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(FC_OK, h.manager.loadDataSet(path::FACTORY_CHANNELS));
    auto ingest = [&h](const char* rowId, const char* klv, const char* klv2) {
        h.manager.setTextParam("ChannelDataSet", "ChannelProcessingTable", "Ingest KLV", klv, rowId);
        h.manager.setTextParam("ChannelDataSet", "ChannelProcessingTable", "Ingest KLV2", klv2, rowId);
        return h.manager.commit();
    };
    ASSERT_EQ(FC_OK, ingest("H.264", "IP", "SDI-Sync"));
    ASSERT_EQ(FC_OK, ingest("HEVC", "Serial", "IP"));

    const struct {
        const char* event;
        std::vector<Fcodes> answers;  // what each reconfiguration answers
        std::vector<std::string> reconfigured;
        Fcodes result;
    } rows[] = {
        {"KLVoIP Updated", {}, {"H.264", "HEVC"}, FC_OK},
        {"KLVoIP Updated", {FC_UNAVAILABLE}, {"H.264"}, Fcodes(FC_UNAVAILABLE | FC_OK)},  // carried over
        {"KLVoIP Updated", {FC_OK, FC_COMM_ERROR}, {"H.264", "HEVC"}, FC_COMM_ERROR},
        {"Com Port Updated", {}, {"HEVC"}, FC_OK},
        {"KLVoSDI Updated", {}, {"H.264"}, FC_OK},
    };
    for (const auto& row : rows) {
        h.manager.reconfigured.clear();
        h.manager.reconfigureResults = row.answers;
        MessageEvent event = mediatorEvent(row.event, "", "");
        EXPECT_EQ(row.result, h.manager.doHandle(&event)) << row.event << " answers " << row.answers.size();
        EXPECT_EQ(row.reconfigured, h.manager.reconfigured) << row.event << " answers " << row.answers.size();
    }

    // A failed read carries over too: without the processing row of "H.264",
    // "HEVC" is read but no longer reconfigured.
    ASSERT_EQ(FC_OK, h.manager.removeInstance("ChannelDataSet", "ChannelProcessingTable", "H.264"));
    ASSERT_EQ(FC_OK, h.manager.commit());
    h.manager.reconfigured.clear();
    h.manager.reconfigureResults.clear();
    MessageEvent event = mediatorEvent("KLVoIP Updated", "", "");
    EXPECT_NE(FC_OK, h.manager.doHandle(&event));
    EXPECT_TRUE(h.manager.reconfigured.empty());
}

TEST(ChannelMngrEventDispatch, TimeZoneAndIgnoredEvents) {
    ManagerHarness h;
    ASSERT_TRUE(h.ready());
    // Taken from the device manager at start-up.
    EXPECT_STREQ("UTC", std::getenv("TZ"));
    EXPECT_TRUE(h.waitLog("init: setenv TZ=UTC"));

    MessageEvent update = mediatorEvent("Date&Time Updated", "", "");
    update.addParam("TZ", "EST5EDT");
    EXPECT_EQ(FC_OK, h.manager.doHandle(&update));
    EXPECT_STREQ("EST5EDT", std::getenv("TZ"));
    EXPECT_TRUE(h.waitLog("doHandle: setenv TZ=EST5EDT"));

    // Without "TZ" the zone stays; ignored and unknown events answer "OK".
    for (const char* id : {"Date&Time Updated", "Data Critical Error", "date&time updated", "Something Else"}) {
        MessageEvent event = mediatorEvent(id, "", "");
        EXPECT_EQ(FC_OK, h.manager.doHandle(&event)) << id;
        EXPECT_TRUE(h.waitLog(std::string("doHandle: arrived event=") + id)) << id;
    }
    EXPECT_STREQ("EST5EDT", std::getenv("TZ"));

    // A restarted device manager's zone is read again; one that refuses the read leaves it.
    h.manager.setPeerWatchPeriod(std::chrono::milliseconds(20));
    ASSERT_EQ(FC_OK, h.device.initTextParam(ds::DEVICE, "DateTimeTable", "TZ", "CET-1CEST", ""));
    ASSERT_TRUE(h.device.restart());
    EXPECT_TRUE(h.waitLog("peerWatch: setenv TZ=CET-1CEST")) << h.takeLog();
    std::string result;
    ASSERT_EQ(FC_OK, h.device.execute(ManagerHarness::commandText("Sim Fail", {{"Command", "GET"}}), result));
    ASSERT_TRUE(h.device.restart());
    EXPECT_TRUE(h.waitLog("peerWatch: no time zone from peer=/tmp/sockDev, TZ kept")) << h.takeLog();
    EXPECT_STREQ("CET-1CEST", std::getenv("TZ"));
}

TEST(ChannelMngrEventDispatch, SourceRefreshRunsOnItsOwnThreadAndRearms) {
    ManagerHarness h;
    ASSERT_TRUE(h.ready());
    h.manager.useTimerPeriod(std::chrono::milliseconds(50));
    h.takeLog();
    ASSERT_EQ(0, h.manager.startTimer());
    // Each refresh is the command "Update Source" for "All", run by execute,
    // then re-armed. The refresh thread's task name is not checked: its thread
    // id may be one an ended thread of this process registered first, and the
    // first registration of an id wins.
    EXPECT_TRUE(h.waitLog("execute: command=Update Source")) << h.takeLog();
    h.takeLog();
    EXPECT_TRUE(h.waitLog("execute: command=Update Source")) << "the timer was not re-armed";
}
