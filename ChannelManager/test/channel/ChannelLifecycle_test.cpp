#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"
#include "support/FakeMediator.h"
#include "support/FakeStore.h"
#include "support/MediatorTranscript.h"
#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;

namespace {

std::string hex(unsigned long code) {
    std::ostringstream text;
    text << "0x" << std::hex << code;
    return text.str();
}

// "id rowId fcode" of each recorded event.
std::vector<std::string> eventLines(const EventRecorder& recorder) {
    std::vector<std::string> out;
    for (const RecordedEvent& event : recorder.events())
        out.push_back(event.id + " " + event.rowId + " " + hex(event.fcode));
    return out;
}

void setTarget(ChannelHarness& h, const std::string& target, bool enabled, const char* protocol) {
    ASSERT_EQ(FC_OK, h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, enabled, target));
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, protocol, target));
}

void setChannel(ChannelHarness& h, const std::string& channel, const char* chanState, uint32_t fcode) {
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, chanState, channel));
    ASSERT_EQ(FC_OK, h.holder->initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, static_cast<int>(fcode), channel));
}

void runBranch(ChannelHarness& h, const std::string& branch) {
    ASSERT_EQ(FC_OK, ITarnevelClient::startTarnevelBranch(h.holder.get(), branch, false, 1));
}

// One transition of the state machine against the simulated mediator: the
// setup on the factory data, the command (or operation), then the result,
// the end state, the events in order and the branch requests in order.
struct Transition {
    const char* name;
    std::function<void(ChannelHarness&)> setup;
    std::function<Fcodes(ChannelHarness&)> run;
    Fcodes expected;
    std::vector<std::pair<std::string, std::string>> endStates;  // channel, "State"
    std::vector<std::string> events;
    std::vector<std::string> branchCommands;
};

std::function<Fcodes(ChannelHarness&)> command(const char* id, const char* rowId) {
    return [id, rowId](ChannelHarness& h) { return h.channelCommand(id, {{cmd::PARAM_ROW_ID, rowId}}); };
}

const char* H = row::H264;
const char* V = row::HEVC;
const std::string T1 = "H.264 Target1", T2 = "H.264 Target2";

TEST(ChannelLifecycle, TransitionsAgainstTheMediator) {
    const std::string played = std::string(ev::CHANNEL_PLAYED) + " ";
    const std::string closed = std::string(ev::CLOSE_ALARMS) + " ";
    const std::string stopped = std::string(ev::CHANNEL_STOPPED) + " ";
    auto none = [](ChannelHarness&) {};
    // clang-format off
    const std::vector<Transition> table = {
        {"play: one enabled UDP target", none, command(cmd::PLAY, H), FC_OK,
         {{H, state::PLAYING}, {V, state::STOPPED}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}},
        {"play: two enabled UDP targets share the branch",
         [](ChannelHarness& h) { setTarget(h, T2, true, value::RTP_TS); }, command(cmd::PLAY, H), FC_OK,
         {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20", "Get Branch State UDP CH0"}},
        {"play: a branch already RUN is left alone", [](ChannelHarness& h) { runBranch(h, "UDP CH0"); },
         command(cmd::PLAY, H), FC_OK, {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"}, {"Get Branch State UDP CH0"}},
        {"play: no enabled target", [](ChannelHarness& h) { setTarget(h, T1, false, value::UDP_TS); },
         command(cmd::PLAY, H), FC_OK, {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"}, {}},
        {"play: a last target without a branch reports Unavailable and plays",
         [](ChannelHarness& h) { setTarget(h, T2, true, "HTTP"); }, command(cmd::PLAY, H), FC_UNAVAILABLE,
         {{H, state::PLAYING}}, {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}},
        {"play: only the last target's code is kept",
         [](ChannelHarness& h) {
             setTarget(h, T1, true, "HTTP");
             setTarget(h, T2, true, value::UDP_TS);
         },
         command(cmd::PLAY, H), FC_OK, {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}},
        {"stop: Zixi first and without waiting, then the others",
         [](ChannelHarness& h) {
             setTarget(h, T2, true, value::ZIXI);
             setChannel(h, H, state::PLAYING, FC_OK);
             runBranch(h, "UDP CH0");
             runBranch(h, "ZIXI CH0");
         },
         command(cmd::STOP, H), FC_OK, {{H, state::STOPPED}},
         {stopped + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State ZIXI CH0", "Stop Branch ZIXI CH0", "Get Branch State UDP CH0",
          "Stop Branch UDP CH0 sync=20"}},
        {"RowID 0 plays both channels", none, command(cmd::PLAY, row::ALL_NUMERIC), FC_OK,
         {{H, state::PLAYING}, {V, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000", played + "HEVC 0x20000", closed + "HEVC 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20", "Get Branch State UDP CH1",
          "Start Branch UDP CH1 sync=20"}},
        {"RowID 0 stops both channels and withdraws every announcement",
         [](ChannelHarness& h) {
             setChannel(h, H, state::PLAYING, FC_OK);
             setChannel(h, V, state::STOPPED, FC_OK);
             runBranch(h, "UDP CH0");
         },
         command(cmd::STOP, row::ALL_NUMERIC), FC_OK, {{H, state::STOPPED}, {V, state::STOPPED}},
         {stopped + "H.264 0x20000", closed + "H.264 0x20000", "STOP ALL SAP  0x0"},
         {"Get Branch State UDP CH0", "Stop Branch UDP CH0 sync=20"}},
        {"RowID 2 is refused", none, command(cmd::PLAY, "2"), FC_BAD_VALUE,
         {{H, state::STOPPED}, {V, state::STOPPED}}, {}, {}},
        {"a statistics command on a channel does nothing", none, command(cmd::UPDATE_ZIXI_STATISTICS, H), FC_OK, {{H, state::STOPPED}}, {}, {}},
    };
    // clang-format on

    for (const Transition& t : table) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << t.name;
        MediatorTranscript transcript(h);
        ASSERT_TRUE(transcript.ready()) << t.name;
        t.setup(h);
        transcript.mark();
        h.recorder.clear();

        EXPECT_EQ(hex(t.expected), hex(t.run(h))) << t.name;
        for (const auto& [channel, expectedState] : t.endStates)
            EXPECT_EQ(expectedState, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, channel))
                << t.name << ": " << channel;
        EXPECT_EQ(t.events, eventLines(h.recorder)) << t.name;
        EXPECT_EQ(t.branchCommands, transcript.branchCommands()) << t.name;
    }
}

// Branch events are checked against the channel and change nothing; an SRT
// branch is never tied to a channel.
TEST(ChannelLifecycle, BranchEventsChangeNothing) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    struct {
        const char *event, *branch, *chanState;
        Fcodes expected;
    } rows[] = {
        {ev::BRANCH_STOPPED, "UDP CH0", state::PLAYED, FC_OK},
        {ev::BRANCH_STARTED, "UDP CH0", state::STOPPING, FC_OK},
        {ev::BRANCH_STOPPED, "ZIXI CH1 ULL", state::PLAYING, FC_OK},
        {ev::BRANCH_STOPPED, "SRT CH0", state::PLAYING, FC_UNAVAILABLE},
    };
    for (const auto& r : rows) {
        const std::string channel = std::string(r.branch).find("CH0") != std::string::npos ? row::H264 : row::HEVC;
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, r.chanState, channel));
        MessageEvent event;
        event.id = r.event;
        event.source = r.branch;
        EXPECT_EQ(r.expected, h.channel().handleTarnevelBranchEvent(&event)) << r.event << " " << r.branch;
        EXPECT_EQ(r.chanState, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, channel)) << r.event << " " << r.branch;
    }
    EXPECT_TRUE(h.recorder.events().empty());
}

// A playing channel whose source is gone turns "ERROR" with "Channel Error",
// but only when it takes video or embedded audio from that source.
TEST(ChannelLifecycle, ChannelStatusFollowsTheSource) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    DataHolder& d = *h.holder;
    const std::string audio1 = "H.264 Audio1";
    ASSERT_EQ(FC_OK, d.initBoolParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, false, value::SRC_HD_SDI));
    h.channel().updateChannelStatus(row::H264);
    EXPECT_TRUE(h.recorder.events().empty()) << "stopped";
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, row::H264));
    ASSERT_EQ(FC_OK, d.initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODE_VIDEO, false, row::H264));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, "Balanced analog", audio1));
    h.channel().updateChannelStatus(row::H264);
    EXPECT_TRUE(h.recorder.events().empty()) << "nothing taken from the source";
    ASSERT_EQ(FC_OK,
              d.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, value::AUDIO_HDMI_EMBEDDED, audio1));
    EXPECT_EQ(FC_OK, h.channel().updateChannelStatus(row::H264));
    EXPECT_EQ(state::STATUS_ERROR, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, row::H264));
    ASSERT_EQ(1u, h.recorder.events().size());
    const RecordedEvent event = h.recorder.events()[0];
    EXPECT_EQ(ev::CHANNEL_ERROR + std::string(" H.264 ON"), event.id + " " + event.rowId + " " + event.status);
    EXPECT_EQ(cond::CHANNEL_ERROR, event.fcode);
}

// Start-up: every channel stopped and configured; a channel that was playing
// plays again when its input fits and stays stopped when it does not.
TEST(ChannelLifecycle, ConfigChannelsReplaysPlayingChannelsWithAValidInput) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    MediatorTranscript transcript(h);
    ASSERT_TRUE(transcript.ready());
    DataHolder& d = *h.holder;
    for (const char* channel : {row::H264, row::HEVC})
        ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, channel));
    ASSERT_EQ(FC_OK, d.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, 0x20020, row::HEVC));
    // HEVC encodes 1280x720p, which cannot be made from a standard-definition input.
    ASSERT_EQ(FC_OK, d.initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, "720x576i @ 25",
                                     value::SRC_HDMI));
    transcript.mark();
    h.channel().configChannels();
    EXPECT_EQ(state::PLAYING, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::H264));
    EXPECT_EQ(state::STOPPED, h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC));
    EXPECT_EQ(0x10000, h.number(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, row::HEVC));
    EXPECT_EQ((std::vector<std::string>{"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}),
              transcript.branchCommands());
    // A configuration event per channel in order ("Channel Configured", or
    // "Channel Config Error" with the failure), then the replay's events.
    std::vector<std::string> names;
    for (const RecordedEvent& event : h.recorder.events())
        names.push_back(event.id == ev::CHANNEL_CONFIG_ERROR && event.fcode != FC_OK
                            ? std::string(ev::CHANNEL_CONFIGURED) + " " + event.rowId
                            : event.id + " " + event.rowId);
    EXPECT_EQ((std::vector<std::string>{"Channel Configured H.264", "Channel Configured HEVC", "Channel Played H.264",
                                        "Close Alarms H.264"}),
              names);
}

// The channel logic on in-memory ports: H.264 with a UDP and a Zixi target,
// no KLV, playing or stopped as a test sets it.
struct OnFakes {
    explicit OnFakes(const char* chanState) {
        store.set(ds::CHANNEL, tbl::CHANNELS, prop::STATE, H, chanState);
        store.set(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, H, "0");
        for (const auto& [target, protocol] : {std::pair{T1, value::UDP_TS}, std::pair{T2, value::ZIXI}}) {
            store.set(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, target, H);
            store.set(ds::CHANNEL, tbl::TARGET, prop::ENABLED, target, "true");
            store.set(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, target, protocol);
        }
        for (const char* ingest : {prop::INGEST_KLV, prop::INGEST_KLV2})
            store.set(ds::CHANNEL, tbl::PROCESSING, ingest, H, value::KLV_NONE);
    }
    ConfigChannelTarnevel channel() { return ConfigChannelTarnevel(store, mediator, recorder, book); }

    FakeStore store;
    FakeMediator mediator;
    EventRecorder recorder;
    ChannelRunBook book;
};

using Calls = std::vector<std::string>;
using Books = std::vector<std::string>;

// A refused start answers its code and stops the channel at once: Zixi first
// and without waiting, then what the play started; a branch in transition is
// neither started nor stopped.
TEST(ChannelLifecycle, ARefusedStartStopsWhatThePlayStarted) {
    OnFakes f(state::STOPPED);
    f.mediator.refused = {"start ZIXI CH0"};
    EXPECT_EQ(hex(FC_UNAVAILABLE), hex(f.channel().playChannel(H)));
    EXPECT_EQ(state::STOPPED, f.store.get(ds::CHANNEL, tbl::CHANNELS, prop::STATE, H));
    EXPECT_EQ((Calls{"state UDP CH0", "start UDP CH0 sync 20", "state ZIXI CH0", "start ZIXI CH0 sync 20",
                     "state ZIXI CH0", "state UDP CH0", "stop UDP CH0 sync 20"}),
              f.mediator.calls);
    EXPECT_EQ(
        (Calls{std::string(ev::CHANNEL_PLAY_ERROR) + " H.264 0x10100",
               std::string(ev::CHANNEL_STOPPED) + " H.264 0x20000", std::string(ev::CLOSE_ALARMS) + " H.264 0x20000"}),
        eventLines(f.recorder));
    EXPECT_TRUE(f.book.branches(H, ChannelRunBook::Kind::Target).empty());

    OnFakes moving(state::STOPPED);
    moving.mediator.states["UDP CH0"] = "STARTING";
    moving.mediator.refused = {"start ZIXI CH0"};
    EXPECT_EQ(hex(FC_UNAVAILABLE), hex(moving.channel().playChannel(H)));
    EXPECT_EQ((Calls{"state UDP CH0", "state ZIXI CH0", "start ZIXI CH0 sync 20", "state ZIXI CH0", "state UDP CH0"}),
              moving.mediator.calls);
}

// A refused stop is reported in the event and the branch stays in the run
// book; the next stop of the stopped channel tries it again, KLV first.
TEST(ChannelLifecycle, ARefusedStopIsTriedAgainByTheNextStop) {
    OnFakes f(state::PLAYING);
    f.store.set(ds::CHANNEL, tbl::TARGET, prop::ENABLED, T2, "false");
    for (const char* branch : {"UDP CH0", "KLVoSDI CH0"})
        f.mediator.states[branch] = state::BRANCH_RUN;
    f.book.addBranch(H, "UDP CH0", ChannelRunBook::Kind::Target);
    f.book.addBranch(H, "KLVoSDI CH0", ChannelRunBook::Kind::Klv);
    f.mediator.refused = {"stop UDP CH0", "stop KLVoSDI CH0"};
    f.channel().stopChannel(H);
    EXPECT_EQ(state::STOPPED, f.store.get(ds::CHANNEL, tbl::CHANNELS, prop::STATE, H));
    EXPECT_EQ(
        (Calls{std::string(ev::CHANNEL_STOPPED) + " H.264 0x10100", std::string(ev::CLOSE_ALARMS) + " H.264 0x20000"}),
        eventLines(f.recorder));
    EXPECT_EQ(Books{"UDP CH0"}, f.book.branches(H, ChannelRunBook::Kind::Target));
    EXPECT_EQ(Books{"KLVoSDI CH0"}, f.book.branches(H, ChannelRunBook::Kind::Klv));

    f.mediator.refused.clear();
    f.mediator.calls.clear();
    f.recorder.clear();
    EXPECT_EQ(FC_OK, f.channel().stopChannel(H));
    EXPECT_EQ((Calls{"state KLVoSDI CH0", "stop KLVoSDI CH0 sync 20", "state UDP CH0", "stop UDP CH0 sync 20"}),
              f.mediator.calls);
    EXPECT_TRUE(f.recorder.events().empty()) << "a second stop sends nothing";
    EXPECT_TRUE(f.book.branches(H, ChannelRunBook::Kind::Target).empty());
    EXPECT_TRUE(f.book.branches(H, ChannelRunBook::Kind::Klv).empty());
}

// A stop ends in "Stopped" unless a data-stream or Zixi condition or a format
// change holds the channel in "Stopping"; a stopped or stopping channel's
// stop sends nothing.
TEST(ChannelLifecycle, WhatAStopEndsIn) {
    const struct {
        const char* before;
        uint32_t fcode;
        const char* after;
        size_t events;
    } rows[] = {{state::PLAYING, cond::FORMAT_CHANGED, state::STOPPING, 2},
                {state::PLAYED, cond::DATA_STREAM, state::STOPPING, 2},
                {state::PLAYING, cond::ZIXI_CONNECTION, state::STOPPING, 2},
                {state::PLAYING, cond::CHANNEL_ERROR, state::STOPPED, 2},
                {state::STOPPED, FC_OK, state::STOPPED, 0},
                {state::STOPPING, cond::DATA_STREAM, state::STOPPING, 0}};
    for (const auto& r : rows) {
        OnFakes f(r.before);
        f.store.set(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, H, std::to_string(r.fcode));
        f.channel().stopChannel(H);
        EXPECT_EQ(r.after, f.store.get(ds::CHANNEL, tbl::CHANNELS, prop::STATE, H)) << r.before << " " << r.fcode;
        EXPECT_EQ(r.events, f.recorder.events().size()) << r.before << " " << r.fcode;
    }
}

// The wait reads the branch, then polls every 5 ms until it reports the
// wanted state or its time is out; running out is no failure.
TEST(ChannelLifecycle, WaitWhileInTransitionPollsWithinItsTime) {
    OnFakes f(state::STOPPED);
    f.mediator.passing["UDP CH0"] = {"STARTING", "STARTING"};
    f.mediator.states["UDP CH0"] = state::BRANCH_RUN;
    EXPECT_EQ(FC_OK, f.channel().waitWhileInTransition("UDP CH0", state::BRANCH_RUN, 1000));
    EXPECT_EQ(Calls(3, "state UDP CH0"), f.mediator.calls) << "two in transition, then there";
    f.mediator.calls.clear();
    EXPECT_EQ(FC_OK, f.channel().waitWhileInTransition("UDP CH1", state::BRANCH_RUN, 20));
    EXPECT_EQ(Calls(5, "state UDP CH1"), f.mediator.calls) << "a first read and four polls in 20 ms";
}

}  // namespace
