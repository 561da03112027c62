#include <gtest/gtest.h>

#include "SideActionTestSupport.h"

using namespace vocab;

namespace {

int fcodeOf(ChannelHarness& h, const std::string& row) {
    return intOf(h, ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row);
}

}  // namespace

TEST(ChannelDataStream, ConditionEventsChangeOnlyTheFcode) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    struct Step {
        const char* event;
        const char* status;
        int fcodeBefore;  // -1: as the previous step left it
        int fcodeAfter;
    };
    const Step steps[] = {
        {ev::DATA_STREAM, "ON", 0x10000, 0x30008},
        {ev::ZIXI_CONNECTION_FAILED, "ON", -1, 0x3000c},
        {ev::DATA_STREAM, "OFF", -1, 0x10000},  // OFF clears the Zixi condition as well
        {ev::ZIXI_CONNECTION_FAILED, "ON", -1, 0x30004},
        {ev::ZIXI_CONNECTION_FAILED, "Unknown", -1, 0x10000},  // anything but ON clears
        {ev::DATA_STREAM, "ON", 0x20020, 0x20020},  // a user's stop is kept
        {ev::ZIXI_CONNECTION_FAILED, "OFF", 0x20020, 0x20020},
        {ev::DATA_STREAM, "ON", 0x20010, 0x20018},  // a format stop is not a user's stop
        {"Data Critical Error", "ON", 0x10000, 0x10000},  // not a data-stream event
    };
    for (const Step& step : steps) {
        if (step.fcodeBefore >= 0) {
            ASSERT_EQ(h.holder->initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, step.fcodeBefore, row::HEVC),
                      FC_OK);
        }
        MessageEvent event = mediatorEvent(step.event, row::HEVC, step.status);
        EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_OK) << step.event << " " << step.status;
        EXPECT_EQ(fcodeOf(h, row::HEVC), step.fcodeAfter) << step.event << " " << step.status << " before 0x"
                                                          << std::hex << step.fcodeBefore;
        EXPECT_EQ(textOf(h, ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC), state::STOPPED) << step.event;
    }
    EXPECT_EQ(fcodeOf(h, row::H264), 0x10000) << "the other channel is untouched";
    EXPECT_TRUE(h.recorder.events().empty());
    MessageEvent unknownRow = mediatorEvent(ev::DATA_STREAM, "ALL", "ON");
    EXPECT_EQ(h.channel().handleDataStreamEvent(&unknownRow), FC_NO_SUCH_NAME);
}

TEST(ChannelDataStream, ZixiBitrateRequestSavesTheConfiguredBitratesOnce) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    auto backup = [&h](const char* property) { return intOf(h, ds::CHANNEL, tbl::PROCESSING_BACKUP, property, row::H264); };

    // Equal to the current total (factory 5000000): nothing happens.
    MessageEvent same = mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::H264, "ON", {{"Total Bitrate", "5000000"}});
    EXPECT_EQ(h.channel().handleDataStreamEvent(&same), FC_OK);
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 0);
    EXPECT_TRUE(h.recorder.events().empty());

    // Missing parameter: refused, nothing saved.
    MessageEvent missing = mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::H264, "ON");
    EXPECT_EQ(h.channel().handleDataStreamEvent(&missing), FC_BODY_ERROR);
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 0);

    // Another total (hex, base detected): forwarded, and the configuration saved.
    MessageEvent lower = mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::H264, "ON", {{"Total Bitrate", "0x3d0900"}});
    h.channel().handleDataStreamEvent(&lower);
    EXPECT_EQ(h.recorder.names(), std::vector<std::string>{"Zixi Change Bitrate Request H.264"});
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 5000000);
    EXPECT_EQ(backup(prop::MAX_BITRATE), 6000000);
    EXPECT_EQ(backup(prop::VIDEO_BITRATE), 4500000);

    // A later request keeps the first backup (the configured bitrates).
    ASSERT_EQ(h.holder->initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, 4000000, row::H264), FC_OK);
    MessageEvent again = mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::H264, "ON", {{"Total Bitrate", "3000000"}});
    h.channel().handleDataStreamEvent(&again);
    EXPECT_EQ(h.recorder.events().size(), 2u);
    EXPECT_EQ(backup(prop::TOTAL_BITRATE), 5000000);
    EXPECT_EQ(intOf(h, ds::CHANNEL, tbl::PROCESSING_BACKUP, prop::TOTAL_BITRATE, row::HEVC), 0);
}

TEST(ChannelDataStream, NewSrtClientTellsEachSenderWhatItsChannelLeaves) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(h.holder->initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, 8000000, row::HEVC), FC_OK);
    h.mediator.model().setParam("Srt Sender CH0", med::PARAM_STAT_BITRATE_MBPS, "1.5");
    h.mediator.model().setParam("Srt Sender CH0 2", med::PARAM_STAT_BITRATE_MBPS, "6");
    h.mediator.model().setParam("Srt Sender CH1", med::PARAM_STAT_BITRATE_MBPS, "0.25");
    h.mediator.model().setParam("Srt Sender CH1 2", med::PARAM_STAT_BITRATE_MBPS, "not a number");
    MessageEvent event = mediatorEvent(ev::SRT_NEW_CLIENT_REQUEST, "", "ON");
    EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_OK);
    const std::vector<std::string> expected = {
        "Srt Sender CH0/Remaining Output Bitrate bps=3500000",  // 5 Mbit/s total - 1.5
        "Srt Sender CH0 2/Remaining Output Bitrate bps=0",      // sends more than the total: 0
        "Srt Sender CH1/Remaining Output Bitrate bps=7750000",  // 8 - 0.25
        "Srt Sender CH1 2/Remaining Output Bitrate bps=8000000",
    };
    EXPECT_EQ(writesTo(h, "Srt Sender"), expected);

    // A sender whose figure cannot be read is offered its channel's whole total.
    ASSERT_EQ(simFail(h, wire::SOCK_MEDIATOR, "Tarnevel Get Param"), FC_OK);
    EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_OK);
    std::vector<std::string> after = writesTo(h, "Srt Sender");
    ASSERT_EQ(after.size(), 8u);
    EXPECT_EQ(after[4], "Srt Sender CH0/Remaining Output Bitrate bps=5000000");
    // A refused write is reported; the other senders are still told.
    ASSERT_EQ(simFail(h, wire::SOCK_MEDIATOR, "Tarnevel Put Param"), FC_OK);
    EXPECT_EQ(h.channel().handleDataStreamEvent(&event), FC_UNAVAILABLE);
    EXPECT_EQ(writesTo(h, "Srt Sender").size(), 11u);
}
