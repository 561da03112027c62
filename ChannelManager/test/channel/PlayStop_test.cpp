#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"
#include "ITarnevelClient.h"
#include "support/MediatorTranscript.h"

using namespace vocab;

namespace {

// Makes the simulated mediator refuse the next request of `commandId` with "Unavailable".
void failNext(ChannelHarness& h, const std::string& commandId) {
    std::string result;
    ASSERT_EQ(FC_OK, h.mediator.execute(commandText("Sim Fail", {{"Command", commandId}}), result));
}

std::string hex(unsigned long code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%lx", code);
    return text;
}

// "id rowId fcode" of each recorded event.
std::vector<std::string> eventLines(const EventRecorder& recorder) {
    std::vector<std::string> out;
    for (const RecordedEvent& event : recorder.events())
        out.push_back(event.id + " " + event.rowId + " " + hex(event.fcode));
    return out;
}

std::string text(ChannelHarness& h, const char* component, const char* property, const std::string& instance) {
    std::string value;
    h.holder->getTextParam(ds::CHANNEL, component, property, value, instance);
    return value;
}

int fcodeOf(ChannelHarness& h, const std::string& channel) {
    int value = 0;
    h.holder->getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, value, channel);
    return value;
}

// What the side actions of a play and a stop (SAP, KLV, LEDs) answer on the
// factory data, which has no SAP target and KLV "None": "OK" in the
// appliance. A play's and a stop's result holds their code.
Fcodes sideActionsCode(ChannelHarness& h) {
    ConfigChannelTarnevel channel = h.channel();
    return channel.sapAction(row::H264) | channel.klvAction(row::H264) | channel.updateStreamAndErrorLeds();
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
    bool sideActions;  // the result also holds the side actions' code
    std::vector<std::pair<std::string, std::string>> endStates;  // channel, "State"
    std::vector<std::string> events;
    std::vector<std::string> branchCommands;
};

std::function<Fcodes(ChannelHarness&)> command(const char* id, const char* rowId) {
    return [id, rowId](ChannelHarness& h) {
        std::string response;
        return h.channel().execute(commandText(id, {{cmd::PARAM_ROW_ID, rowId}}), response);
    };
}

std::function<Fcodes(ChannelHarness&)> stopChannel(const char* rowId) {
    return [rowId](ChannelHarness& h) { return h.channel().stopChannel(rowId); };
}

const char* H = row::H264;
const char* V = row::HEVC;
const std::string T1 = "H.264 Target1", T2 = "H.264 Target2";

TEST(ChannelStateMachine, TransitionsAgainstTheMediator) {
    const std::string played = std::string(ev::CHANNEL_PLAYED) + " ";
    const std::string closed = std::string(ev::CLOSE_ALARMS) + " ";
    const std::string stopped = std::string(ev::CHANNEL_STOPPED) + " ";
    auto none = [](ChannelHarness&) {};
    const std::vector<Transition> table = {
        {"play: one enabled UDP target", none, command(cmd::PLAY, H), FC_OK, true,
         {{H, state::PLAYING}, {V, state::STOPPED}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}},
        {"play: two enabled UDP targets share the branch",
         [](ChannelHarness& h) { setTarget(h, T2, true, value::RTP_TS); }, command(cmd::PLAY, H), FC_OK, true,
         {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20", "Get Branch State UDP CH0"}},
        {"play: a branch already RUN is left alone", [](ChannelHarness& h) { runBranch(h, "UDP CH0"); },
         command(cmd::PLAY, H), FC_OK, true, {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"}, {"Get Branch State UDP CH0"}},
        {"play: no enabled target", [](ChannelHarness& h) { setTarget(h, T1, false, value::UDP_TS); },
         command(cmd::PLAY, H), FC_OK, true, {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"}, {}},
        {"play: a last target without a branch reports Unavailable and plays",
         [](ChannelHarness& h) { setTarget(h, T2, true, "HTTP"); }, command(cmd::PLAY, H), FC_UNAVAILABLE, true,
         {{H, state::PLAYING}}, {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}},
        {"play: only the last target's code is kept",
         [](ChannelHarness& h) {
             setTarget(h, T1, true, "HTTP");
             setTarget(h, T2, true, value::UDP_TS);
         },
         command(cmd::PLAY, H), FC_OK, true, {{H, state::PLAYING}},
         {played + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}},
        {"play: a failed start stops the channel and answers the start's code",
         [](ChannelHarness& h) { failNext(h, "Tarnevel Start Branch"); }, command(cmd::PLAY, H), FC_UNAVAILABLE,
         false, {{H, state::STOPPED}},
         {std::string(ev::CHANNEL_PLAY_ERROR) + " H.264 0x10100", stopped + "H.264 0x20000",
          closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20", "Get Branch State UDP CH0"}},
        {"play: the stop after a failed start undoes the started branches, Zixi first",
         [](ChannelHarness& h) {
             setTarget(h, T2, true, value::ZIXI);
             runBranch(h, "UDP CH0");
             failNext(h, "Tarnevel Start Branch");
         },
         command(cmd::PLAY, H), FC_UNAVAILABLE, false, {{H, state::STOPPED}},
         {std::string(ev::CHANNEL_PLAY_ERROR) + " H.264 0x10100", stopped + "H.264 0x20000",
          closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Get Branch State ZIXI CH0", "Start Branch ZIXI CH0 sync=20",
          "Get Branch State ZIXI CH0", "Get Branch State UDP CH0", "Stop Branch UDP CH0 sync=20"}},
        {"stop: Zixi first and without waiting, then the others",
         [](ChannelHarness& h) {
             setTarget(h, T2, true, value::ZIXI);
             setChannel(h, H, state::PLAYING, FC_OK);
             runBranch(h, "UDP CH0");
             runBranch(h, "ZIXI CH0");
         },
         command(cmd::STOP, H), FC_OK, true, {{H, state::STOPPED}},
         {stopped + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State ZIXI CH0", "Stop Branch ZIXI CH0", "Get Branch State UDP CH0",
          "Stop Branch UDP CH0 sync=20"}},
        {"stop: a stopped channel sends nothing", none, command(cmd::STOP, H), FC_OK, false, {{H, state::STOPPED}},
         {}, {}},
        {"stop: a stopping channel sends nothing",
         [](ChannelHarness& h) { setChannel(h, H, state::STOPPING, cond::DATA_STREAM); }, command(cmd::STOP, H),
         FC_OK, false, {{H, state::STOPPING}}, {}, {}},
        {"stop: a refused branch stop is reported in the event",
         [](ChannelHarness& h) {
             setChannel(h, H, state::PLAYING, FC_OK);
             runBranch(h, "UDP CH0");
             failNext(h, "Tarnevel Stop Branch");
         },
         command(cmd::STOP, H), FC_UNAVAILABLE, true, {{H, state::STOPPED}},
         {stopped + "H.264 0x10100", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Stop Branch UDP CH0 sync=20"}},
        {"stop: a format change holds the channel in Stopping",
         [](ChannelHarness& h) {
             setChannel(h, H, state::PLAYING, cond::FORMAT_CHANGED);
             runBranch(h, "UDP CH0");
         },
         stopChannel(H), FC_OK, true, {{H, state::STOPPING}},
         {stopped + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0", "Stop Branch UDP CH0 sync=20"}},
        {"stop: a data-stream condition holds the channel in Stopping",
         [](ChannelHarness& h) { setChannel(h, H, state::PLAYED, cond::DATA_STREAM); }, stopChannel(H), FC_OK, true,
         {{H, state::STOPPING}}, {stopped + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0"}},
        {"stop: a lost input does not hold the channel",
         [](ChannelHarness& h) { setChannel(h, H, state::PLAYING, cond::CHANNEL_ERROR); }, stopChannel(H), FC_OK,
         true, {{H, state::STOPPED}}, {stopped + "H.264 0x20000", closed + "H.264 0x20000"},
         {"Get Branch State UDP CH0"}},
        {"RowID 0 plays both channels", none, command(cmd::PLAY, row::ALL_NUMERIC), FC_OK, true,
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
         command(cmd::STOP, row::ALL_NUMERIC), FC_OK, true, {{H, state::STOPPED}, {V, state::STOPPED}},
         {stopped + "H.264 0x20000", closed + "H.264 0x20000", "STOP ALL SAP  0x0"},
         {"Get Branch State UDP CH0", "Stop Branch UDP CH0 sync=20"}},
        {"RowID 2 is refused", none, command(cmd::PLAY, "2"), FC_BAD_VALUE, false,
         {{H, state::STOPPED}, {V, state::STOPPED}}, {}, {}},
        {"a statistics command on a channel does nothing", none, command(cmd::UPDATE_ZIXI_STATISTICS, H), FC_OK,
         false, {{H, state::STOPPED}}, {}, {}},
    };

    for (const Transition& t : table) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << t.name;
        MediatorTranscript transcript(h);
        ASSERT_TRUE(transcript.ready()) << t.name;
        const Fcodes side = t.sideActions ? sideActionsCode(h) : FC_OK;
        t.setup(h);
        transcript.mark();
        h.recorder.clear();

        EXPECT_EQ(hex(t.expected | side), hex(t.run(h))) << t.name;
        for (const auto& [channel, expectedState] : t.endStates)
            EXPECT_EQ(expectedState, text(h, tbl::CHANNELS, prop::STATE, channel)) << t.name << ": " << channel;
        EXPECT_EQ(t.events, eventLines(h.recorder)) << t.name;
        EXPECT_EQ(t.branchCommands, transcript.branchCommands()) << t.name;
    }
}

// "Stop" marks the channel as stopped by the user, also when it was stopped
// already; a play clears the mark.
TEST(ChannelStateMachine, ForcedStopCodeAndPlayClearsIt) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    std::string response;
    EXPECT_EQ(FC_OK, h.channel().execute(commandText(cmd::STOP, {{cmd::PARAM_ROW_ID, H}}), response));
    EXPECT_EQ(static_cast<int>(cond::FORCED_STOP), fcodeOf(h, H));
    EXPECT_EQ(static_cast<int>(FC_OK), fcodeOf(h, V));
    h.channel().playChannel(H);
    EXPECT_EQ(static_cast<int>(FC_OK), fcodeOf(h, H));
    EXPECT_EQ(state::STATUS_OK, text(h, tbl::CHANNELS, prop::STATUS, H));

    EXPECT_EQ(FC_BODY_ERROR, h.channel().execute("no tags here", response));
}

}  // namespace
