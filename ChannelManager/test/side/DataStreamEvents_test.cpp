#include <gtest/gtest.h>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

using DataStreamEventsTest = ChannelTest;

TEST_F(DataStreamEventsTest, ConditionEventsChangeOnlyTheFcode) {
    struct Step {
        const char* event;
        const char* status;
        int fcodeBefore;  // -1: as the previous step left it
        int fcodeAfter;
    } steps[] = {
        {ev::DATA_STREAM, "ON", 0x10000, 0x30008},
        {ev::ZIXI_CONNECTION_FAILED, "ON", -1, 0x3000c},
        {ev::DATA_STREAM, "OFF", -1, 0x10000},  // OFF clears the Zixi condition as well
        {ev::ZIXI_CONNECTION_FAILED, "ON", -1, 0x30004},
        {ev::ZIXI_CONNECTION_FAILED, "Unknown", -1, 0x10000},  // anything but ON clears
        {ev::DATA_STREAM, "ON", 0x20020, 0x20020},             // a user's stop is kept
        {ev::ZIXI_CONNECTION_FAILED, "OFF", 0x20020, 0x20020},
        {ev::DATA_STREAM, "ON", 0x20010, 0x20018},  // a format stop is not a user's stop
        {"Data Critical Error", "ON", 0x10000, 0x10000},
    };
    for (const Step& step : steps) {
        if (step.fcodeBefore >= 0)
            h.holder->initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, step.fcodeBefore, row::HEVC);
        MessageEvent event = mediatorEvent(step.event, row::HEVC, step.status);
        EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_OK) << step.event << " " << step.status;
        EXPECT_EQ(h.number(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row::HEVC), step.fcodeAfter)
            << step.event << " " << step.status << " before 0x" << std::hex << step.fcodeBefore;
        EXPECT_EQ(h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC), state::STOPPED) << step.event;
    }
    EXPECT_EQ(h.number(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row::H264), 0x10000);
    EXPECT_TRUE(h.recorder.events().empty());
    MessageEvent notAChannel = mediatorEvent(ev::DATA_STREAM, "ALL", "ON");
    EXPECT_EQ(h.channel().handleDataStreamEvent(&notAChannel), FC_NO_SUCH_NAME);
}

TEST_F(DataStreamEventsTest, ZixiBitrateRequestSavesTheConfiguredBitratesOnce) {
    auto request = [this](const char* total) {
        MessageEvent event =
            mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::H264, "ON", {{"Total Bitrate", total}});
        return h.channel().handleDataStreamEvent(&event);
    };
    auto backup = [this](const char* p) { return h.number(ds::CHANNEL, tbl::PROCESSING_BACKUP, p, row::H264); };
    EXPECT_EQ(request("5000000"), FC_OK);  // the current total: nothing happens
    EXPECT_EQ(request(""), FC_BODY_ERROR);
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 0);
    EXPECT_TRUE(h.recorder.events().empty());

    request("0x3d0900");  // another total: forwarded, and the configuration saved
    EXPECT_EQ(h.recorder.names(),
              (std::vector<std::string>{"Zixi Change Bitrate Request H.264", "Bitrate Recalculated H.264"}));
    EXPECT_EQ(h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::H264), 4000000);
    EXPECT_EQ(h.recorder.events()[0].description, "bitrate: 4000000 bps");
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 5000000);
    EXPECT_EQ(backup(prop::MAX_BITRATE), 6000000);
    EXPECT_EQ(backup(prop::VIDEO_BITRATE), 4500000);

    request("3000000");  // a later request keeps the first backup
    EXPECT_EQ(h.recorder.events().size(), 4u);
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 5000000);
}

TEST_F(DataStreamEventsTest, NewSrtClientTellsEachSenderWhatItsChannelLeaves) {
    h.holder->initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, 8000000, row::HEVC);
    const char* figures[][2] = {
        {"Srt Sender CH0", "1.5"}, {"Srt Sender CH0 2", "6"}, {"Srt Sender CH1", "0.25"}, {"Srt Sender CH1 2", "x"}};
    for (auto& figure : figures)
        h.mediator.model().setParam(figure[0], med::PARAM_STAT_BITRATE_MBPS, figure[1]);
    MessageEvent event = mediatorEvent(ev::SRT_NEW_CLIENT_REQUEST, "", "ON");
    EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_OK);
    const std::vector<std::string> expected = {
        "Srt Sender CH0/Remaining Output Bitrate bps=3500000",  // 5 Mbit/s total - 1.5
        "Srt Sender CH0 2/Remaining Output Bitrate bps=0",      // sends more than the total
        "Srt Sender CH1/Remaining Output Bitrate bps=7750000",
        "Srt Sender CH1 2/Remaining Output Bitrate bps=8000000",
    };
    EXPECT_EQ(h.writes({"Srt Sender"}), expected);

    // An unreadable figure counts as nothing sent; a refused write is reported.
    ASSERT_EQ(h.failNext("Tarnevel Get Param"), FC_OK);
    EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_OK);
    EXPECT_EQ(h.writes({"Srt Sender"}).at(4), "Srt Sender CH0/Remaining Output Bitrate bps=5000000");
    ASSERT_EQ(h.failNext("Tarnevel Put Param"), FC_OK);
    EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_UNAVAILABLE);
}
