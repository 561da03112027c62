// What an operator does, driven end to end through the channel logic against
// the simulated peers: accept an edit, reconfigure a channel, lose and regain
// the input, change format, change bitrates. Each test checks what the
// mediator received, the events and the rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>

#include "side/BoundedCommand.h"
#include "side/ProbeRegistry.h"
#include "support/ChannelPipelineSupport.h"
#include "support/ManagerHarness.h"
#include "support/MediatorTranscript.h"
#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;

namespace {

using RowChange = std::function<void(PipelineBench&)>;

Fcodes activate(ChannelHarness& h, const std::string& rowId) {
    return h.channelCommand(cmd::ACTIVATE_ROW, {{cmd::PARAM_ROW_ID, rowId}});
}

// "State Fcode Status" of a channel, the code in hexadecimal.
std::string stateFcodeStatus(ChannelHarness& h, const std::string& rowId) {
    std::ostringstream fcode;
    fcode << std::hex << h.number(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, rowId);
    return h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, rowId) + " " + fcode.str() + " " +
           h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, rowId);
}

long count(const std::vector<std::string>& list, const std::string& item) {
    return std::count(list.begin(), list.end(), item);
}

}  // namespace

// The front end writes pending values and sends "Accept Changes": the values
// being accepted reach the mediator at once, and are committed.
TEST(OperatorFlows, AcceptedPictureAndGainEditsReachTheMediator) {
    ManagerHarness h;
    ASSERT_TRUE(h.ready());
    ASSERT_EQ(FC_OK, h.manager.loadDataSet(path::FACTORY_CHANNELS));
    const struct {
        const char* component;
        const char* property;
        const char* instance;
        int value;
        const char* write;
    } edits[] = {
        {tbl::AV_SETTINGS, prop::BRIGHTNESS, row::HEVC, 70, "VIDEO_MIXER_CH1/Brightness=70"},
        {tbl::AV_SETTINGS, prop::CONTRAST, row::HEVC, 40, "VIDEO_MIXER_CH1/Contrast=40"},
        {tbl::AV_SETTINGS, prop::SATURATION, row::H264, 30, "VIDEO_MIXER_CH0/Saturation=30"},
        {tbl::AV_SETTINGS, prop::HUE, row::H264, 5, "VIDEO_MIXER_CH0/Hue=5"},
        {tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, "H.264 Audio2", -6, "UNBALANCED_AMPLIFIER/Gain Str1=-6"},
    };
    for (const auto& e : edits)
        ASSERT_EQ(FC_OK, h.manager.setIntParam(ds::CHANNEL, e.component, e.property, e.value, e.instance)) << e.write;
    // The gain's row becomes an enabled analogue input in the same edit.
    ASSERT_EQ(FC_OK, h.manager.setBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED, true, "H.264 Audio2"));
    ASSERT_EQ(FC_OK, h.manager.setTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, "Unbalanced analog",
                                            "H.264 Audio2"));
    h.mediator.model().clearRecords();
    EXPECT_EQ(FC_OK, h.execute("Accept Changes"));
    EXPECT_FALSE(h.manager.isChanged());
    const std::vector<std::string> writes = h.mediator.model().writes();
    for (const auto& e : edits)
        EXPECT_EQ(1, count(writes, e.write)) << e.write;
}

// "ACTIVATE_ROW": the row's "Format Changed" cleared, the configuration, the
// read-back of what the encoder chose, "Channel Configured", the probes of
// the unicast targets, and the reply; a refused write answers its failure
// and neither tells nor probes.
TEST(OperatorFlows, ActivateRowConfiguresReadsBackAndProbes) {
    // The probe of the loopback target answers "Target Connection OK" where
    // this host can ping it.
    const BoundedRun ping = runBounded("ping -c 1 127.0.0.1", 3000, 0);
    const bool canPing = ping.started && ping.status == 0;
    for (const bool refused : {false, true}) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready());
        PipelineBench b(h);
        b.flag(tbl::SOURCE, prop::FORMAT_CHANGED, row::HEVC, true)
            .integer(tbl::AV_SETTINGS, prop::BRIGHTNESS, row::HEVC, 60)
            .text(tbl::HEVC_ENCODER, prop::TIER, "", "High")
            .text(tbl::TARGET, prop::TARGET_ADDRESS, "HEVC Target1", "127.0.0.1");
        ASSERT_TRUE(b.ok);
        if (refused) {
            ASSERT_EQ(FC_OK, h.failNext("Tarnevel Put Param"));
        }
        const Fcodes reply = activate(h, row::HEVC);
        ASSERT_TRUE(ProbeRegistry::instance().waitIdle(std::chrono::seconds(20)));
        const std::vector<std::string> names = h.recorder.names();
        EXPECT_EQ(refused ? Fcodes(FC_OK | FC_UNAVAILABLE) : FC_OK, reply) << refused;
        bool changed = true;
        h.holder->getBoolParam(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, changed, row::HEVC);
        EXPECT_FALSE(changed) << refused;
        EXPECT_EQ(1, count(h.mediator.model().writes(), "VIDEO_MIXER_CH1/Brightness=60")) << refused;
        EXPECT_EQ("Main", h.text(ds::CHANNEL, tbl::HEVC_ENCODER, prop::TIER, "")) << "read back, " << refused;
        EXPECT_EQ(refused ? 0 : 1, count(names, "Channel Configured HEVC")) << refused;
        if (canPing) {
            EXPECT_EQ(refused ? 0 : 1, count(names, "Target Connection OK HEVC")) << refused;
        }
    }
}

// A configuration enables what the channel uses and turns off, once, what it
// used before and no longer does; the low-delay audio path takes the first
// HEVC stream only for the codecs it carries.
TEST(OperatorFlows, AConfigurationTurnsOffWhatItNoLongerUses) {
    const std::string h1 = "H.264 Target1", h2 = "H.264 Target2";
    const struct Flow {
        const char* name;
        const char* rowId;
        RowChange before, after;
        std::vector<std::string> once, absent;  // among the writes of the second configuration
        // clang-format off
    } flows[] = {
        {"second target disabled", row::H264, [&](PipelineBench& b) { b.flag(tbl::TARGET, prop::ENABLED, h2, true); },
         [&](PipelineBench& b) { b.flag(tbl::TARGET, prop::ENABLED, h2, false); },
         {"UDP Sender CH0 2/Enable=0"}, {"UDP Sender CH0 2/Enable=1"}},
        {"protocol changed", row::H264,
         [&](PipelineBench& b) { b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, h1, "Zixi"); },
         [&](PipelineBench& b) { b.text(tbl::TARGET, prop::STREAMING_PROTOCOL, h1, "UDP TS"); },
         {"Zixi Feeder CH0/Enable=0", "UDP Sender CH0/Enable=1"}, {"Zixi Feeder CH0/Enable=1"}},
        {"KLV ingest back to None", row::H264,
         [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::INGEST_KLV, row::H264, "SDI-Sync"); },
         [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::INGEST_KLV, row::H264, "None"); },
         {"KlvoSDI Wrapper CH0/Enable=0", "KlvoSDI Filter CH0/Enable=0"}, {}},
        {"a shared KLV filter stays on for the other channel", row::H264,
         [](PipelineBench& b) {
             b.text(tbl::PROCESSING, prop::INGEST_KLV, row::H264, "IP").text(tbl::PROCESSING, prop::INGEST_KLV,
                                                                             row::HEVC, "IP");
         },
         [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::INGEST_KLV, row::H264, "None"); }, {},
         {"TS KLV Filter/Enable=0"}},
        {"SDI preview cleared", row::H264,
         [](PipelineBench& b) { b.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, row::H264, true); },
         [](PipelineBench& b) { b.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, row::H264, false); },
         {"SDI_TRANSMITTER/Enable=0"}, {}},
        {"leaving Ultra Low Latency", row::HEVC,
         [](PipelineBench& b) {
             b.text(tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, value::PROFILE_ULL)
                 .text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, "HEVC Audio1", "AAC-ELD");
         },
         [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, value::PROFILE_BROADCAST); },
         {"Audio Capture Str0 CH1 Low Delay/Enable=0", "AAC Encoder Str0 CH1 Low Delay/Enable=0",
          "Audio Capture Str0 CH1/Enable=1"},
         {}},
        {"Ultra Low Latency with AAC-LC keeps the normal capture", row::HEVC,
         [](PipelineBench& b) { b.text(tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, value::PROFILE_ULL); },
         [](PipelineBench&) {}, {"Audio Capture Str0 CH1/Enable=1", "Audio Switch Str0 CH1/Input=Audio Encoder Str0 CH1"},
         {"Audio Capture Str0 CH1/Enable=0", "Audio Capture Str0 CH1 Low Delay/Enable=1"}},
    };
    // clang-format on
    for (const Flow& f : flows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << f.name;
        PipelineBench b(h);
        f.before(b);
        EXPECT_TRUE(noWriteFailed(activate(h, f.rowId))) << f.name;
        f.after(b);
        ASSERT_TRUE(b.ok) << f.name;
        h.mediator.model().clearRecords();
        EXPECT_TRUE(noWriteFailed(activate(h, f.rowId))) << f.name;
        const std::vector<std::string> writes = h.mediator.model().writes();
        for (const std::string& w : f.once)
            EXPECT_EQ(1, count(writes, w)) << f.name << ": " << w;
        for (const std::string& w : f.absent)
            EXPECT_EQ(0, count(writes, w)) << f.name << ": " << w;
    }
}

// An input whose format the channel cannot take stops it for its format, with
// or without "Format as Detected": "Stopping" with 0x20010, nothing invalid
// committed, resumed when a fitting input returns (also after a data-stream
// "OFF" cleared the code), but not after the operator's Stop or Play (here
// one whose branch start is refused).
TEST(OperatorFlows, AFormatStopStaysAFormatStopUntilAFittingInputReturns) {
    const std::string unfit = "2048x1080p @ 24", fit = "1920x1080i @ 25", stop = "Stop", play = "Play",
                      refusedPlay = "Play, start refused", off = "Data Stream OFF";
    for (const bool asDetected : {false, true}) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready());
        ASSERT_EQ(FC_OK, h.holder->initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::FORMAT_AS_DETECTED, asDetected,
                                                 row::H264));
        ASSERT_EQ(FC_OK, h.channel().playChannel(row::H264));
        const struct {
            const std::string& what;  // an input format, the operator's command or a mediator event
            const char* channel;      // "State Fcode Status" afterwards
        } steps[] = {
            {unfit, "Stopping 20010 OK"}, {off, "Stopping 10000 OK"},   {fit, "Playing 10000 OK"},
            {unfit, "Stopping 20010 OK"}, {stop, "Stopping 20020 OK"},  {fit, "Stopping 20020 OK"},
            {play, "Playing 10000 OK"},   {unfit, "Stopping 20010 OK"}, {refusedPlay, "Stopping 20010 OK"},
            {fit, "Stopping 20010 OK"},
        };
        for (const auto& step : steps) {
            if (step.what == refusedPlay)
                h.failNext("Tarnevel Start Branch");
            MessageEvent dataStreamOff = mediatorEvent(ev::DATA_STREAM, row::H264, "OFF");
            if (step.what == stop)
                h.channelCommand(cmd::STOP, {{cmd::PARAM_ROW_ID, row::H264}});
            else if (step.what == play || step.what == refusedPlay)
                h.channelCommand(cmd::PLAY, {{cmd::PARAM_ROW_ID, row::H264}});
            else if (step.what == off)
                h.channel().handleDataStreamEvent(&dataStreamOff);
            else
                detectFormat(h, value::SRC_HD_SDI, step.what);
            EXPECT_EQ(step.channel, stateFcodeStatus(h, row::H264)) << asDetected << " " << step.what;
            EXPECT_EQ("1920x1080i", h.text(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, row::H264))
                << asDetected << " " << step.what;
        }
    }
}

// The input comes back to a playing channel that shows its loss, however the
// loss was recorded: the alarm closes, "Status" and the Error LED clear.
TEST(OperatorFlows, TheInputComingBackClosesTheAlarmHoweverTheLossArose) {
    const struct {
        const char* name;
        std::function<void(ChannelHarness&)> loss;
        const char* lost;  // "State Fcode Status" during the loss
    } flows[] = {
        {"played while the input was lost",
         [](ChannelHarness& h) {
             detectFormat(h, value::SRC_HD_SDI, "None");
             h.channel().playChannel(row::H264);
         },
         "Playing 10000 ERROR"},
        {"lost, then a Data Stream OFF",
         [](ChannelHarness& h) {
             h.channel().playChannel(row::H264);
             detectFormat(h, value::SRC_HD_SDI, "None");
             MessageEvent off = mediatorEvent(ev::DATA_STREAM, row::H264, "OFF");
             h.channel().handleDataStreamEvent(&off);
         },
         "Playing 10000 ERROR"},
    };
    for (const auto& f : flows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << f.name;
        f.loss(h);
        EXPECT_EQ(f.lost, stateFcodeStatus(h, row::H264)) << f.name;
        h.recorder.clear();
        h.mediator.model().clearRecords();
        detectFormat(h, value::SRC_HD_SDI, "1920x1080i @ 25");
        EXPECT_EQ("Playing 10000 OK", stateFcodeStatus(h, row::H264)) << f.name;
        EXPECT_EQ(1, count(h.recorder.names(), "Close Alarms H.264")) << f.name;
        const std::vector<std::string> leds = h.writes({"Device/Error LED="});
        EXPECT_EQ("Device/Error LED=0", leds.empty() ? "" : leds.back()) << f.name;
    }
}

// A play whose side action fails still records the running format: the next
// detection of the same format is no format change, and the channel plays on.
TEST(OperatorFlows, APlayWithAFailedSideActionRecordsTheRunningFormat) {
    const struct {
        const char* name;
        std::function<void(ChannelHarness&)> fault;
    } flows[] = {
        {"SAP announcer refuses",
         [](ChannelHarness& h) {
             h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::SAP, true, "H.264 Target1");
             std::string reply;
             h.sap.execute(commandText("Sim Fail", {{"Command", "START_SAP"}}), reply);
         }},
        {"KLV branch refused",
         [](ChannelHarness& h) {
             h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, "SDI-Sync", row::H264);
             ITarnevelClient::startTarnevelBranch(h.holder.get(), "UDP CH0", false, 1);
             h.failNext("Tarnevel Start Branch");
         }},
    };
    for (const auto& f : flows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << f.name;
        ASSERT_EQ(FC_OK,
                  h.holder->initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::FORMAT_AS_DETECTED, true, row::H264));
        f.fault(h);
        EXPECT_NE(FC_OK, h.channel().playChannel(row::H264)) << f.name;
        EXPECT_EQ("1920x1080i @ 25", h.text(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, row::H264)) << f.name;
        h.recorder.clear();
        detectFormat(h, value::SRC_HD_SDI, "1920x1080i @ 25");
        EXPECT_EQ("Playing 10000 OK", stateFcodeStatus(h, row::H264)) << f.name;
        EXPECT_EQ(0, count(h.recorder.names(), "Channel Stopped H.264")) << f.name;
    }
}

// Both channels on the SDI input: the H.264 run sends the audio that the
// shared-input rule copied into its rows; and its frame sampling follows the
// frame-rate ratio, so the encoder, the bitrate and the summary agree.
TEST(OperatorFlows, SharedInputAndFrameRateRatioInSectionOrder) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    PipelineBench b(h);
    b.text(tbl::SOURCE, prop::SOURCE, row::HEVC, value::SRC_HD_SDI)
        .text(tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, "HEVC Audio1", "Pair 3")
        .text(tbl::PROCESSING, prop::ENCODING_FORMAT, row::H264, "1920x1080p")
        .text(tbl::PROCESSING, prop::FRAME_RATE_RATIO, row::H264, "Half of Input")
        .integer(tbl::PROCESSING, prop::FRAME_SAMPLING, row::H264, 30);
    ASSERT_TRUE(b.ok);
    ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED,
                                             "1920x1080p @ 50", value::SRC_HD_SDI));
    h.mediator.model().clearRecords();
    EXPECT_TRUE(noWriteFailed(activate(h, row::H264)));
    const std::vector<std::string> writes = h.mediator.model().writes();
    EXPECT_EQ("Pair 3", h.text(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, "H.264 Audio1"));
    // 5000000 bit/s at 25 pictures a second: 4591798 of video.
    for (const char* w : {"AUDIO_MUX_STR0_CH0/Input=SDI_IN_ITF Port 3", "Video Encoder CH0/Frame Rate Ratio=Input 1/2",
                          "Video Encoder CH0/Frame Sampling=25", "Video Encoder CH0/Bitrate=4591798"})
        EXPECT_EQ(1, count(writes, w)) << w;
    EXPECT_EQ(25, h.number(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, row::H264));
    EXPECT_EQ("1920x1080p @ 25", b.summary(prop::RESOLUTION, row::H264));
}

// A configuration applies the bitrate floors and margin of an on-the-fly
// change: a total too small for the minimum video bitrate is raised, the
// maximum with it ("Bitrate Recalculated"); "Capped VBR" sends the margin.
TEST(OperatorFlows, AConfigurationAppliesTheBitrateFloorsAndMargin) {
    const struct {
        const char* rowId;
        const char* rateControl;
        int overheadPercent, total, max;
        int totalAfter, maxAfter;
        std::vector<std::string> writes;
        const char* event;  // description of "Bitrate Recalculated", or nullptr
        // clang-format off
    } rows[] = {
        {row::H264, "CBR", 0, 150000, 150000, 410553, 420770,
         {"Video Encoder CH0/Bitrate=100000", "Video Encoder CH0/Bitrate Margin=25"}, "prev: 150000 new: 420770"},
        {row::HEVC, "CBR", 0, 100000, 100000, 355481, 357923,
         {"Video Encoder CH1/Bitrate=23900", "Video Encoder CH1/Bitrate Margin=0"}, "prev: 100000 new: 357923"},
        {row::H264, "Capped VBR", 0, 5000000, 6000000, 5000000, 6000000,
         {"Video Encoder CH0/Bitrate=4591798", "Video Encoder CH0/Bitrate Margin=21"}, nullptr},
        // The CBR overhead shrinks the video share: 4714303 * 18400 / (110 * 188) - 22200.
        {row::H264, "CBR", 10, 5000000, 6000000, 5000000, 6000000,
         {"Video Encoder CH0/Bitrate=4172344", "Video Encoder CH0/Bitrate Margin=25"}, nullptr},
    };
    // clang-format on
    for (const auto& r : rows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << r.rowId;
        PipelineBench b(h);
        b.text(tbl::PROCESSING, prop::RATE_CONTROL, r.rowId, r.rateControl)
            .integer(tbl::PROCESSING, prop::TOTAL_BITRATE, r.rowId, r.total)
            .integer(tbl::PROCESSING, prop::MAX_BITRATE, r.rowId, r.max)
            .integer(tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, r.rowId, r.overheadPercent);
        ASSERT_TRUE(b.ok);
        h.mediator.model().clearRecords();
        EXPECT_TRUE(noWriteFailed(activate(h, r.rowId))) << r.rowId;
        const std::string name = std::string(r.rowId) + " " + r.rateControl;
        EXPECT_EQ(r.totalAfter, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, r.rowId)) << name;
        EXPECT_EQ(r.maxAfter, h.number(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, r.rowId)) << name;
        for (const std::string& w : r.writes)
            EXPECT_EQ(1, count(h.mediator.model().writes(), w)) << name << ": " << w;
        std::vector<std::string> recalculated;
        for (const RecordedEvent& e : h.recorder.events())
            if (e.id == ev::BITRATE_RECALCULATED)
                recalculated.push_back(e.rowId + " " + e.description);
        EXPECT_EQ(r.event ? std::vector<std::string>{std::string(r.rowId) + " " + r.event} : std::vector<std::string>{},
                  recalculated)
            << name;
        if (std::string(r.rateControl) == "Capped VBR") {
            EXPECT_EQ(21, h.number(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, r.rowId));
        }
    }
}

// "Change on-the-fly" changes one channel: "ALL" and a missing "RowID" change
// nothing, while "Play" and "ACTIVATE_ROW" with "ALL" act on both channels.
TEST(OperatorFlows, OnTheFlyForOneChannelPlayAndActivateForAll) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    const Params bitrates = {{cmd::PARAM_TOTAL_BITRATE, "3000000"}, {cmd::PARAM_MAX_BITRATE, "4000000"}};
    const struct {
        const char* name;
        Params rowId;
        int h264Total, hevcTotal;
    } rows[] = {
        {"ALL", {{cmd::PARAM_ROW_ID, row::ALL}}, 5000000, 5000000},
        {"no RowID", {}, 5000000, 5000000},
        {"HEVC", {{cmd::PARAM_ROW_ID, row::HEVC}}, 5000000, 3000000},
    };
    for (const auto& r : rows) {
        h.recorder.clear();
        h.mediator.model().clearRecords();
        Params params = r.rowId;
        params.insert(params.end(), bitrates.begin(), bitrates.end());
        EXPECT_EQ(FC_OK, h.channelCommand(cmd::CHANGE_ON_THE_FLY, params)) << r.name;
        EXPECT_EQ(r.h264Total, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::H264)) << r.name;
        EXPECT_EQ(r.hevcTotal, h.number(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, row::HEVC)) << r.name;
        const bool changed = std::string(r.name) == "HEVC";
        EXPECT_EQ(changed, !h.mediator.model().writes().empty()) << r.name;
        EXPECT_EQ(changed ? 1 : 0, count(h.recorder.names(), "Bitrate Recalculated HEVC")) << r.name;
    }
    h.recorder.clear();
    EXPECT_EQ(FC_OK, h.channelCommand(cmd::ACTIVATE_ROW, {{cmd::PARAM_ROW_ID, row::ALL}}));
    EXPECT_EQ(FC_OK, h.channelCommand(cmd::PLAY, {{cmd::PARAM_ROW_ID, row::ALL}}));
    const std::vector<std::string> names = h.recorder.names();
    for (const char* channel : {row::H264, row::HEVC}) {
        EXPECT_EQ(1, count(names, std::string("Channel Configured ") + channel)) << channel;
        EXPECT_EQ("Playing", h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, channel)) << channel;
    }
}
