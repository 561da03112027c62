#include <gtest/gtest.h>

#include "SideActionTestSupport.h"

using namespace vocab;

namespace {

// The receiver of `source` detects `format` from now on (the simulator's
// control command, over the mediator's socket).
Fcodes setInput(ChannelHarness& h, const std::string& source, const std::string& format) {
    return simControl(h, wire::SOCK_MEDIATOR, "Sim Set Input", {{"Source", source}, {"Input Detected", format}});
}

std::string detectedOf(ChannelHarness& h, const std::string& source) {
    return textOf(h, ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, source);
}

bool connectedOf(ChannelHarness& h, const std::string& source) {
    return boolOf(h, ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, source);
}

}  // namespace

TEST(ChannelVideoSources, RefreshFromTheReceiverAndFromTheEvent) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    struct Row {
        const char* source;
        const char* receiverFormat;  // what the receiver detects, or nullptr: the event carries it
        const char* eventFormat;
        const char* detected;
        bool connected;
    };
    const Row rows[] = {
        {"Composite", "None", nullptr, "None", false},
        {"Composite", "720x576i @ 25", nullptr, "720x576i @ 25", true},
        {"DVI-D", "No signal", nullptr, "None", false},
        {"DVI-D", nullptr, "1024x768p @ 60", "1024x768p @ 60", true},
        {"DVI-D", nullptr, "No signal", "None", false},
        {"DVI-D", nullptr, "", "None", false},
    };
    for (const Row& row : rows) {
        const std::string name = std::string(row.source) + " " + (row.receiverFormat ? row.receiverFormat : "event");
        h.recorder.clear();
        if (row.receiverFormat) {
            ASSERT_EQ(setInput(h, row.source, row.receiverFormat), FC_OK) << name;
            EXPECT_EQ(h.channel().updateVideoSource(std::string(row.source)), FC_OK) << name;
        } else {
            MessageEvent event = mediatorEvent(ev::AUTO_DETECTION, row.source, "ON", {{"Input Detected", row.eventFormat}});
            EXPECT_EQ(h.channel().updateVideoSource(&event), FC_OK) << name;
        }
        EXPECT_EQ(detectedOf(h, row.source), row.detected) << name;
        EXPECT_EQ(connectedOf(h, row.source), row.connected) << name;
        const std::vector<RecordedEvent> events = h.recorder.events();
        ASSERT_EQ(events.size(), 1u) << name;
        EXPECT_EQ(events[0].id, "Video Source Updated") << name;
        EXPECT_EQ(events[0].rowId, row.source) << name;
        EXPECT_EQ(events[0].status, row.connected ? "ON" : "OFF") << name;
        EXPECT_EQ(events[0].description, row.detected) << name;
    }
    // An event naming only the source asks its receiver (start-up's refresh).
    ASSERT_EQ(setInput(h, "HDMI", "1920x1080p @ 30"), FC_OK);
    MessageEvent bare = mediatorEvent(ev::AUTO_DETECTION, "HDMI", "");
    EXPECT_EQ(h.channel().updateVideoSource(&bare), FC_OK);
    EXPECT_EQ(detectedOf(h, "HDMI"), "1920x1080p @ 30");
}

TEST(ChannelVideoSources, UnknownSourcesAndUnansweredReceiversChangeNothing) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    EXPECT_EQ(h.channel().updateVideoSource(std::string()), FC_BAD_VALUE);
    EXPECT_EQ(h.channel().updateVideoSource(std::string("SDI 2")), FC_NO_SUCH_NAME);
    MessageEvent unknown = mediatorEvent(ev::AUTO_DETECTION, "SDI 2", "ON", {{"Input Detected", "None"}});
    EXPECT_EQ(h.channel().updateVideoSource(&unknown), FC_NO_SUCH_NAME);
    EXPECT_EQ(h.channel().updateVideoSource(static_cast<MessageEvent*>(nullptr)), FC_BAD_VALUE);

    ASSERT_EQ(setInput(h, "HD-SDI", "None"), FC_OK);
    ASSERT_EQ(simFail(h, "Tarnevel Get Param"), FC_OK);
    EXPECT_EQ(h.channel().updateVideoSource(std::string("HD-SDI")), FC_UNAVAILABLE);
    EXPECT_EQ(detectedOf(h, "HD-SDI"), "1920x1080i @ 25") << "an unanswered question is no lost input";
    EXPECT_TRUE(connectedOf(h, "HD-SDI"));
    EXPECT_TRUE(h.recorder.events().empty());
}

TEST(ChannelVideoSources, StoppedChannelsDoNotFollowTheirInput) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    // "H.264" (stopped by its user) and "HEVC" (stopped) both on HD-SDI.
    ASSERT_EQ(h.holder->initTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, "HD-SDI", row::HEVC), FC_OK);
    ASSERT_EQ(h.holder->initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, 0x20020, row::H264), FC_OK);
    for (const char* format : {"None", "720x576i @ 25", "1920x1080i @ 25"}) {
        MessageEvent event = mediatorEvent(ev::AUTO_DETECTION, "HD-SDI", "ON", {{"Input Detected", format}});
        EXPECT_EQ(h.channel().updateVideoSource(&event), FC_OK) << format;
        for (const char* row : {row::H264, row::HEVC}) {
            EXPECT_EQ(textOf(h, ds::CHANNEL, tbl::CHANNELS, prop::STATE, row), "Stopped") << format << " " << row;
            EXPECT_FALSE(boolOf(h, ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, row)) << format << " " << row;
        }
        EXPECT_EQ(intOf(h, ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row::H264), 0x20020) << format;
        EXPECT_EQ(intOf(h, ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row::HEVC), 0x10000) << format;
    }
    EXPECT_EQ(h.recorder.names().size(), 3u) << "only the three \"Video Source Updated\"";
}

TEST(ChannelVideoSources, InputBackWhilePlayingClosesTheAlarm) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    // Playing on HD-SDI at the detected "1920x1080i @ 25", with a data-stream condition raised.
    h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, "Playing", row::H264);
    h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, "ERROR", row::H264);
    h.holder->initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, 0x3000a, row::H264);
    h.holder->initTextParam(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, "1920x1080i @ 25", row::H264);
    MessageEvent back = mediatorEvent(ev::AUTO_DETECTION, "HD-SDI", "ON", {{"Input Detected", "1920x1080i @ 25"}});
    EXPECT_EQ(h.channel().updateVideoSource(&back), FC_OK);
    EXPECT_EQ(intOf(h, ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row::H264), 0x30008) << "the lost input only";
    EXPECT_EQ(textOf(h, ds::CHANNEL, tbl::CHANNELS, prop::STATUS, row::H264), "OK");
    EXPECT_EQ(textOf(h, ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::H264), "Playing");
    EXPECT_EQ(h.recorder.names(), (std::vector<std::string>{"Close Alarms H.264", "Video Source Updated HD-SDI"}));
    EXPECT_EQ(writesTo(h, "Device/Error LED=").back(), "Device/Error LED=0");
}
