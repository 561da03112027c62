#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "support/ChannelHarness.h"
#include "support/MediatorTranscript.h"

using namespace datacom;

using namespace vocab;

namespace {

std::string sourceRow(ChannelHarness& h, const std::string& source) {
    const bool connected = h.flag(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, source);
    return h.text(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, source) + (connected ? " +" : " -");
}

// "State Fcode Status FormatChanged" of a channel.
std::string channelRow(ChannelHarness& h, const char* row) {
    const bool changed = h.flag(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, row);
    std::ostringstream fcode;
    fcode << std::hex << h.number(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row);
    return h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row) + " " + fcode.str() + " " +
           h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, row) + (changed ? " changed" : "");
}

}  // namespace

using VideoSourceTrackerTest = ChannelTest;

TEST_F(VideoSourceTrackerTest, RefreshFromTheReceiverOrTheEvent) {
    struct Row {
        const char* source;
        const char* receiverFormat;  // nullptr: the event carries the format
        const char* eventFormat;
        const char* expected;
    } rows[] = {
        {"Composite", "None", nullptr, "None -"},  {"Composite", "720x576i @ 25", nullptr, "720x576i @ 25 +"},
        {"DVI-D", "No signal", nullptr, "None -"}, {"DVI-D", nullptr, "1024x768p @ 60", "1024x768p @ 60 +"},
        {"DVI-D", nullptr, "No signal", "None -"},
    };
    for (const Row& row : rows) {
        h.recorder.clear();
        if (row.receiverFormat) {
            h.simControl("Sim Set Input", {{"Source", row.source}, {"Input Detected", row.receiverFormat}});
            EXPECT_EQ(h.channel().updateVideoSource(std::string(row.source)), FC_OK) << row.expected;
        } else {
            EXPECT_EQ(detectFormat(h, row.source, row.eventFormat), FC_OK) << row.expected;
        }
        EXPECT_EQ(sourceRow(h, row.source), row.expected);
        const std::vector<RecordedEvent> events = h.recorder.events();
        ASSERT_EQ(events.size(), 1u) << row.expected;
        const std::string expected(row.expected);
        const bool on = expected.back() == '+';
        EXPECT_EQ(events[0].id + " " + events[0].rowId + " " + events[0].status + " " + events[0].description,
                  "Video Source Updated " + std::string(row.source) + (on ? " ON " : " OFF ") +
                      expected.substr(0, expected.size() - 2));
    }
    EXPECT_EQ(h.channel().updateVideoSource(std::string()), FC_BAD_VALUE);
    EXPECT_EQ(h.channel().updateVideoSource(std::string("SDI 2")), FC_NO_SUCH_NAME);
    EXPECT_EQ(detectFormat(h, "SDI 2", "None"), FC_NO_SUCH_NAME);
    // An unanswered receiver is no lost input: the row stays.
    ASSERT_EQ(h.failNext("Tarnevel Get Param"), FC_OK);
    EXPECT_EQ(h.channel().updateVideoSource(std::string("HD-SDI")), FC_UNAVAILABLE);
    EXPECT_EQ(sourceRow(h, "HD-SDI"), "1920x1080i @ 25 +");
}

TEST_F(VideoSourceTrackerTest, PlayingChannelFollowsItsInput) {
    MediatorTranscript transcript(h);
    ASSERT_TRUE(transcript.ready());
    ASSERT_EQ(h.channel().playChannel(row::H264), FC_OK);
    struct Step {
        const char* format;  // of HD-SDI, the source of "H.264"
        const char* channel;
        const char* lastEvent;
    } steps[] = {
        {"None", "Playing 30002 ERROR", "Channel Error H.264"},                // lost while playing
        {"1920x1080i @ 25", "Playing 10000 OK", "Close Alarms H.264"},         // back
        {"1920x1080i @ 30", "Playing 10000 OK changed", nullptr},              // valid: followed
        {"720x576i @ 25", "Stopping 20010 OK changed", "Close Alarms H.264"},  // invalid: stopped
        {"None", "Stopping 20010 OK changed", nullptr},
        {"1920x1080i @ 25", "Playing 10000 OK", "Close Alarms H.264"},  // valid again: resumed
    };
    for (const Step& step : steps) {
        h.recorder.clear();
        transcript.mark();
        detectFormat(h, "HD-SDI", step.format);
        EXPECT_EQ(channelRow(h, row::H264), step.channel) << step.format;
        const std::vector<std::string> names = h.recorder.names();
        ASSERT_FALSE(names.empty());
        EXPECT_EQ(names.size() > 1 ? names[names.size() - 2] : "", step.lastEvent ? step.lastEvent : "") << step.format;
    }
    EXPECT_EQ(h.text(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, row::H264), "1920x1080i @ 25");
    // The resume sent the channel's configuration before it started the branch.
    const std::vector<std::string> resume = transcript.requests();
    auto first = [&resume](const std::string& prefix) {
        return std::find_if(resume.begin(), resume.end(),
                            [&prefix](const std::string& r) { return r.compare(0, prefix.size(), prefix) == 0; }) -
               resume.begin();
    };
    EXPECT_LT(first("\"Tarnevel Put Param\" Component=\"Video Encoder CH0\""), first("\"Tarnevel Start Branch\""))
        << testing::PrintToString(resume);
}

TEST_F(VideoSourceTrackerTest, FormatAsDetectedReconfiguresAndPlaysAgain) {
    h.holder->initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::FORMAT_AS_DETECTED, true, row::H264);
    ASSERT_EQ(h.channel().playChannel(row::H264), FC_OK);
    detectFormat(h, "HD-SDI", "1920x1080i @ 30");
    EXPECT_EQ(channelRow(h, row::H264), "Playing 10000 OK changed");
    EXPECT_EQ(h.text(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, row::H264), "1920x1080i @ 30");
    const std::vector<std::string> names = h.recorder.names();
    EXPECT_NE(std::find(names.begin(), names.end(), "Channel Stopped H.264"), names.end());
    EXPECT_EQ(h.mediator.model().branchState("UDP CH0"), "RUN");
}
