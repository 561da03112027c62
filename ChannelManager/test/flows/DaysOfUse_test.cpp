// What an appliance lives through over days, each story as an operator met
// it against the simulated peers: a profile change while playing, a Zixi
// bitrate request around a format change, and a mediator that restarts
// behind the daemon's back. (A stop for the input around a data-stream event
// is a step of OperatorFlows' format-stop table.)
#include <gtest/gtest.h>

#include "support/ManagerHarness.h"

using namespace datacom;
using namespace vocab;

namespace {

const char* const VALID = "1280x720p @ 50";   // what the HEVC channel's 1280x720p is made from
const char* const UNFIT = "2048x1080p @ 24";  // what it cannot be made from

Fcodes run(ChannelHarness& h, const std::string& id, const std::string& rowId) {
    return h.channelCommand(id, {{cmd::PARAM_ROW_ID, rowId}});
}

void dataStream(ChannelHarness& h, const MessageEvent& event) {
    MessageEvent copy = event;
    h.channel().handleDataStreamEvent(&copy);
}

std::string lastWrite(ChannelHarness& h, const std::string& prefix) {
    const std::vector<std::string> writes = h.writes({prefix});
    return writes.empty() ? "" : writes.back().substr(prefix.size());
}

// The branches of channel 1 the mediator runs, "" when none.
std::string runningCh1(ChannelHarness& h) {
    std::string running;
    for (const char* branch : {"UDP CH1", "UDP CH1 ULL", "SRT CH1", "SRT CH1 ULL", "ZIXI CH1", "ZIXI CH1 ULL"})
        if (h.mediator.model().branchState(branch) == state::BRANCH_RUN)
            running += std::string(running.empty() ? "" : ",") + branch;
    return running;
}

}  // namespace

// The profile (and with it the branch) changes while HEVC plays; the stop
// stops the branch the play started, and the new one after a second play.
TEST(DaysOfUse, StopStopsWhatThePlayStartedWhateverWasActivatedSince) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(FC_OK, h.channel().playChannel(row::HEVC));
    ASSERT_EQ("UDP CH1", runningCh1(h));
    ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, value::PROFILE_ULL}}));
    run(h, cmd::ACTIVATE_ROW, row::HEVC);
    EXPECT_EQ("UDP CH1", runningCh1(h));
    run(h, cmd::STOP, row::HEVC);
    EXPECT_EQ("", runningCh1(h));
    // Played under the new profile, switched back by an edit, stopped: the same.
    run(h, cmd::PLAY, row::HEVC);
    EXPECT_EQ("UDP CH1 ULL", runningCh1(h));
    ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, "Broadcast - Broadband"},
                       {tbl::TARGET, prop::STREAMING_PROTOCOL, "HEVC Target1", value::SRT}}));
    run(h, cmd::STOP, row::HEVC);
    EXPECT_EQ("", runningCh1(h));
}

// A Zixi request lowers the bitrate, the input goes unfit (the stop restores
// the configured bitrates) and comes back: the encoder runs what the channel
// shows. The operator's own on-the-fly change outlives the next stop.
TEST(DaysOfUse, AResumedChannelRunsTheBitrateItShows) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(FC_OK, h.channel().playChannel(row::HEVC));
    dataStream(h, mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::HEVC, "ON", {{"Total Bitrate", "2000000"}}));
    const std::string zixiVideo = lastWrite(h, "Video Encoder CH1/Bitrate=");
    detectFormat(h, value::SRC_HDMI, UNFIT);
    EXPECT_EQ(5000000, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::HEVC));
    detectFormat(h, value::SRC_HDMI, VALID);
    ASSERT_EQ(state::PLAYING, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC));
    const int shown = h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::HEVC);
    EXPECT_NE(zixiVideo, std::to_string(shown));
    EXPECT_EQ(std::to_string(shown), lastWrite(h, "Video Encoder CH1/Bitrate="));

    dataStream(h, mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::HEVC, "ON", {{"Total Bitrate", "2000000"}}));
    h.channelCommand(cmd::CHANGE_ON_THE_FLY,
                     {{cmd::PARAM_ROW_ID, row::HEVC}, {"Total Bitrate", "3000000"}, {"Max Bitrate", "4000000"}});
    run(h, cmd::STOP, row::HEVC);
    EXPECT_EQ(3000000, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::HEVC));
    // The operator's own play after a Zixi request and a stop: the encoder went back with the stop.
    run(h, cmd::PLAY, row::HEVC);
    dataStream(h, mediatorEvent(ev::ZIXI_CHANGE_BITRATE_REQUEST, row::HEVC, "ON", {{"Total Bitrate", "2000000"}}));
    run(h, cmd::STOP, row::HEVC);
    run(h, cmd::PLAY, row::HEVC);
    EXPECT_EQ(std::to_string(h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::HEVC)),
              lastWrite(h, "Video Encoder CH1/Bitrate="));
}

// The mediator restarts (a new process behind its socket, knowing nothing):
// the daemon subscribes again, configures it, plays HEVC again with one INFO
// line, and the new mediator's input detections reach the channel.
TEST(DaysOfUse, ARestartedMediatorIsSubscribedConfiguredAndPlayedAgain) {
    ManagerHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(FC_OK, h.execute(cmd::LOAD_CHANNELS, {{"File", "Default"}}));
    ASSERT_EQ(FC_OK, h.execute(cmd::PLAY, {{cmd::PARAM_ROW_ID, row::HEVC}}));
    h.manager.setPeerWatchPeriod(std::chrono::milliseconds(20));
    h.takeLog();
    const size_t before = h.writes().size();
    ASSERT_TRUE(h.mediator.restart());
    ASSERT_TRUE(h.waitLog("peerWatch: mediator restarted: 2 channels configured again, playing again: HEVC"))
        << h.takeLog();
    for (int i = 0; i < 1000 && runningCh1(h).empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ("UDP CH1", runningCh1(h));
    const std::vector<std::string> writes = h.writes();
    EXPECT_NE(writes.end(),
              std::find(writes.begin() + static_cast<long>(before), writes.end(),
                        "Video Encoder CH1/Bitrate=" +
                            std::to_string(h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, row::HEVC))));

    // Through the mediator's socket, as its own detection: sent to its subscribers.
    std::string reply;
    ASSERT_EQ(FC_OK,
              h.manager.requestCommand(
                  datacom::wire::SOCK_MEDIATOR,
                  commandText("Sim Set Input", {{"Source", value::SRC_HDMI}, {"Input Detected", UNFIT}}), reply, 5, 1));
    for (int i = 0; i < 1000 && h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC) != state::STOPPING; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(state::STOPPING, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC));
}
