#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "ChannelHarness.h"
#include "ITarnevelClient.h"
#include "MediatorTranscript.h"

using namespace vocab;

namespace {

std::string commandText(const std::string& id, const std::vector<std::pair<std::string, std::string>>& params) {
    MessageCommand command;
    command.setId(id);
    for (const auto& [name, value] : params)
        command.addParam(name, value);
    std::string text;
    command.toString(text);
    return text;
}

// Both directions of the branch naming, including the deliberate gaps: the
// RTMP names have no low-latency variant, and no SRT branch maps back.
TEST(ChannelRows, BranchNamesBothWays) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    struct Row {
        const char* channel;
        bool ultraLowLatency;
        const char* protocol;
        const char* branch;  // "" = Unavailable
    } rows[] = {
        {row::H264, false, value::UDP_TS, "UDP CH0"},        {row::H264, false, value::PRO_MPEG, "UDP CH0"},
        {row::H264, false, value::RTP_TS, "UDP CH0"},        {row::H264, false, value::RTP_ES, "RTP RTSP CH0"},
        {row::H264, false, value::RTMP, "RTMP CH0"},         {row::H264, false, value::ZIXI, "ZIXI CH0"},
        {row::H264, false, value::SRT, "SRT CH0"},           {row::H264, true, value::UDP_TS, "UDP CH0"},
        {row::HEVC, false, value::UDP_TS, "UDP CH1"},        {row::HEVC, false, value::RTP_ES, "RTP RTSP CH1"},
        {row::HEVC, false, value::SRT, "SRT CH1"},           {row::HEVC, true, value::PRO_MPEG, "UDP CH1 ULL"},
        {row::HEVC, true, value::RTP_ES, "RTP RTSP CH1 ULL"}, {row::HEVC, true, value::RTMP, "RTMP CH1"},
        {row::HEVC, true, value::ZIXI, "ZIXI CH1 ULL"},      {row::HEVC, true, value::SRT, "SRT CH1 ULL"},
        {row::HEVC, false, "HTTP", ""},                      {row::ALL, false, value::UDP_TS, ""},
    };
    for (const Row& r : rows) {
        if (isChannelRow(r.channel)) {
            ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE,
                                                     r.ultraLowLatency ? value::PROFILE_ULL : value::PROFILE_BROADCAST,
                                                     r.channel));
        }
        std::string branch;
        const Fcodes code = h.channel().getBranch(r.channel, r.protocol, branch);
        EXPECT_EQ(*r.branch ? FC_OK : FC_UNAVAILABLE, code) << r.channel << " " << r.protocol;
        EXPECT_EQ(r.branch, branch) << r.channel << " " << r.protocol;
    }

    struct Back {
        const char* branch;
        const char* rowId;  // "" = Unavailable
    } back[] = {
        {"UDP CH0", row::H264},  {"RTP RTSP CH0", row::H264},     {"RTMP CH0", row::H264},    {"ZIXI CH0", row::H264},
        {"UDP CH1", row::HEVC},  {"RTP RTSP CH1 ULL", row::HEVC}, {"UDP CH1 ULL", row::HEVC}, {"ZIXI CH1 ULL", row::HEVC},
        {"RTMP CH1", row::HEVC}, {"SRT CH0", ""},                 {"SRT CH1", ""},            {"SRT CH1 ULL", ""},
        {"KLVoSDI CH0", ""},
    };
    for (const Back& b : back) {
        std::string rowId;
        EXPECT_EQ(*b.rowId ? FC_OK : FC_UNAVAILABLE, h.channel().getRowId(b.branch, rowId)) << b.branch;
        EXPECT_EQ(b.rowId, rowId) << b.branch;
    }
}

// A channel's rows by "Channel ID": keyed instances in order, and the
// row-index forms over an array of instances.
TEST(ChannelRows, ChildInstancesAndRowIndices) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    std::vector<std::string> targets;
    EXPECT_EQ(FC_OK, h.channel().getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, row::HEVC, targets));
    EXPECT_EQ((std::vector<std::string>{"HEVC Target1", "HEVC Target2"}), targets);
    std::vector<std::string> audio;
    EXPECT_EQ(FC_OK, h.channel().getChildInstances(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::CHANNEL_ID, "2", audio));
    EXPECT_TRUE(audio.empty());

    {
        std::ofstream file(h.root.host("/etc/sysmgt/rows.json"));
        file << R"({"dataset": "RowsDataSet", "components": {"Rows": {"properties": {"Channel ID": {"type": "string",
               "default": "", "access": "RW", "description": ""}}, "instances": [{"Channel ID": "HEVC"},
               {"Channel ID": "H.264"}, {"Channel ID": "HEVC"}]}}})";
    }
    ASSERT_EQ(FC_OK, h.holder->loadDataSet("/etc/sysmgt/rows.json"));
    ConfigChannelTarnevel channel = h.channel();
    EXPECT_EQ(0, channel.getFirstChildRowId("RowsDataSet", "Rows", prop::CHANNEL_ID, row::HEVC));
    EXPECT_EQ(2, channel.getNextChildRowId("RowsDataSet", "Rows", prop::CHANNEL_ID, row::HEVC, 0));
    EXPECT_EQ(-1, channel.getNextChildRowId("RowsDataSet", "Rows", prop::CHANNEL_ID, row::HEVC, 2));
    EXPECT_EQ(1, channel.getFirstChildRowId("RowsDataSet", "Rows", prop::CHANNEL_ID, row::H264));
    EXPECT_EQ(-1, channel.getFirstChildRowId("RowsDataSet", "Rows", prop::CHANNEL_ID, "2"));
}

// A stop puts back the bitrates saved before an on-the-fly change; a zero
// in the backup means "nothing saved".
TEST(ChannelRows, StopRestoresTheBitrateBackup) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    DataHolder& d = *h.holder;
    ASSERT_EQ(FC_OK, d.initIntParam(ds::CHANNEL, tbl::PROCESSING_BACKUP, prop::TOTAL_BITRATE, 4000000, row::H264));
    ASSERT_EQ(FC_OK, d.initIntParam(ds::CHANNEL, tbl::PROCESSING_BACKUP, prop::VIDEO_BITRATE, 3000000, row::H264));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, row::H264));
    h.channel().stopChannel(row::H264);
    struct {
        const char* property;
        int processing, backup;
    } expected[] = {{prop::TOTAL_BITRATE, 4000000, 0}, {prop::MAX_BITRATE, 6000000, 0}, {prop::VIDEO_BITRATE, 3000000, 0}};
    for (const auto& e : expected) {
        int processing = -1, backup = -1;
        d.getIntParam(ds::CHANNEL, tbl::PROCESSING, e.property, processing, row::H264);
        d.getIntParam(ds::CHANNEL, tbl::PROCESSING_BACKUP, e.property, backup, row::H264);
        EXPECT_EQ(e.processing, processing) << e.property;
        EXPECT_EQ(e.backup, backup) << e.property;
    }
}

// Branch events are checked against the channel and change nothing; an SRT
// branch is never tied to a channel.
TEST(ChannelLifecycle, BranchEventsChangeNothing) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    struct Row {
        const char* event;
        const char* branch;
        const char* chanState;
        Fcodes expected;
    } rows[] = {
        {ev::BRANCH_STOPPED, "UDP CH0", state::PLAYED, FC_OK},   {ev::BRANCH_STARTED, "UDP CH0", state::STOPPING, FC_OK},
        {ev::BRANCH_STARTED, "UDP CH1", state::PLAYING, FC_OK},  {ev::BRANCH_STOPPED, "ZIXI CH1 ULL", state::STOPPED, FC_OK},
        {ev::BRANCH_STOPPED, "SRT CH0", state::PLAYING, FC_UNAVAILABLE},
        {ev::BRANCH_STARTED, "KLVoSDI CH1", state::PLAYING, FC_UNAVAILABLE},
    };
    for (const Row& r : rows) {
        const std::string channel = std::string(r.branch).find("CH0") != std::string::npos ? row::H264 : row::HEVC;
        ASSERT_EQ(FC_OK, h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, r.chanState, channel));
        MessageEvent event;
        event.id = r.event;
        event.source = r.branch;
        EXPECT_EQ(r.expected, h.channel().handleTarnevelBranchEvent(&event)) << r.event << " " << r.branch;
        std::string after;
        h.holder->getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, after, channel);
        EXPECT_EQ(r.chanState, after) << r.event << " " << r.branch;
    }
    EXPECT_TRUE(h.recorder.events().empty());
}

// The wait polls every 5 ms for at most the given time and is not a failure
// when the branch never gets there.
TEST(ChannelLifecycle, WaitWhileInTransitionPollsWithinItsTime) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    MediatorTranscript transcript(h);
    ASSERT_TRUE(transcript.ready());
    ASSERT_EQ(FC_OK, ITarnevelClient::startTarnevelBranch(h.holder.get(), "UDP CH0", false, 1));
    transcript.mark();
    EXPECT_EQ(FC_OK, h.channel().waitWhileInTransition("UDP CH0", state::BRANCH_RUN, 1000));
    EXPECT_EQ(1u, transcript.branchCommands().size()) << "already there: one read";
    transcript.mark();
    EXPECT_EQ(FC_OK, h.channel().waitWhileInTransition("UDP CH1", state::BRANCH_RUN, 20));
    EXPECT_EQ(std::vector<std::string>(5, "Get Branch State UDP CH1"), transcript.branchCommands())
        << "a first read and four polls in 20 ms";
}

// A playing channel whose source is gone turns "ERROR" with "Channel Error";
// a stopped one, or one that neither encodes video nor uses embedded audio,
// does not.
TEST(ChannelLifecycle, ChannelStatusFollowsTheSource) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    DataHolder& d = *h.holder;
    ASSERT_EQ(FC_OK, d.initBoolParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, false, value::SRC_HD_SDI));
    EXPECT_EQ(FC_OK, h.channel().updateChannelStatus(row::H264));
    EXPECT_TRUE(h.recorder.events().empty()) << "stopped";

    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, row::H264));
    ASSERT_EQ(FC_OK, d.initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODE_VIDEO, false, row::H264));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, "Balanced analog",
                                     "H.264 Audio1"));
    EXPECT_EQ(FC_OK, h.channel().updateChannelStatus(row::H264));
    EXPECT_TRUE(h.recorder.events().empty()) << "nothing taken from the source";

    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, value::AUDIO_HDMI_EMBEDDED,
                                     "H.264 Audio1"));
    EXPECT_EQ(FC_OK, h.channel().updateChannelStatus(row::H264));
    std::string status;
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, status, row::H264);
    EXPECT_EQ(state::STATUS_ERROR, status);
    const auto events = h.recorder.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(ev::CHANNEL_ERROR, events[0].id);
    EXPECT_EQ(row::H264, events[0].rowId);
    EXPECT_EQ(cond::CHANNEL_ERROR, events[0].fcode);
    EXPECT_EQ(state::ALARM_ON, events[0].status);
}

// The summary row: source, detected input, total, "format @ rate", KLV flag.
TEST(ChannelLifecycle, UpdateChannelWritesTheSummary) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    DataHolder& d = *h.holder;
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, "1280x720p @ 50", row::HEVC));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, value::KLV_IP, row::HEVC));
    EXPECT_EQ(FC_OK, h.channel().updateChannel(row::HEVC));
    std::string source, input, resolution;
    int total = 0;
    bool klv = false;
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::SOURCE, source, row::HEVC);
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::INPUT_RESOLUTION, input, row::HEVC);
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::RESOLUTION, resolution, row::HEVC);
    d.getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::TOTAL_BIT_RATE, total, row::HEVC);
    d.getBoolParam(ds::CHANNEL, tbl::CHANNELS, prop::KLV, klv, row::HEVC);
    EXPECT_EQ(value::SRC_HDMI, source);
    EXPECT_EQ("1280x720p @ 50", input);
    EXPECT_EQ("1280x720p @ 50", resolution);
    EXPECT_EQ(5000000, total);
    EXPECT_TRUE(klv);
    EXPECT_EQ(FC_BAD_VALUE, h.channel().updateChannel(row::ALL));
}

// "Change on-the-fly" needs both bitrates, reads them with base
// detection, and skips a request equal to the settings.
TEST(ChannelLifecycle, ChangeOnTheFlyCommand) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    std::string response;
    ConfigChannelTarnevel channel = h.channel();
    EXPECT_EQ(FC_OK, channel.execute(commandText(cmd::CHANGE_ON_THE_FLY, {{cmd::PARAM_ROW_ID, row::H264},
                                                                          {cmd::PARAM_TOTAL_BITRATE, "4000000"}}),
                                     response));
    EXPECT_EQ(FC_OK, channel.execute(commandText(cmd::CHANGE_ON_THE_FLY, {{cmd::PARAM_ROW_ID, row::H264},
                                                                          {cmd::PARAM_TOTAL_BITRATE, "0x4C4B40"},
                                                                          {cmd::PARAM_MAX_BITRATE, "6000000"}}),
                                     response));
    EXPECT_TRUE(h.mediator.model().writes().empty());
    EXPECT_TRUE(h.recorder.events().empty());

    EXPECT_EQ(FC_OK, channel.execute(commandText(cmd::CHANGE_ON_THE_FLY, {{cmd::PARAM_ROW_ID, row::H264},
                                                                          {cmd::PARAM_TOTAL_BITRATE, "0x3D0900"},
                                                                          {cmd::PARAM_MAX_BITRATE, "027000000"}}),
                                     response));
    int total = 0, max = 0;
    h.holder->getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, total, row::H264);
    h.holder->getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, max, row::H264);
    EXPECT_EQ(4000000, total);
    EXPECT_EQ(6029312, max) << "027000000 read as octal";
    const auto events = h.recorder.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ("prev: 5000000 new: 4000000", events[0].description);
}

// Start-up: every channel stopped and configured; a channel that was playing
// plays again when its input fits, and stays stopped when it does not.
TEST(ChannelLifecycle, ConfigChannelsReplaysPlayingChannelsWithAValidInput) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    MediatorTranscript transcript(h);
    ASSERT_TRUE(transcript.ready());
    DataHolder& d = *h.holder;
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, row::H264));
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, row::HEVC));
    ASSERT_EQ(FC_OK, d.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, static_cast<int>(cond::FORCED_STOP),
                                    row::HEVC));
    // HEVC encodes 1280x720p @ 50 from an input limited to 30.
    ASSERT_EQ(FC_OK, d.initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, "1280x720p @ 29.97",
                                     value::SRC_HDMI));
    transcript.mark();
    h.channel().configChannels();

    std::string h264, hevc;
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, h264, row::H264);
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, hevc, row::HEVC);
    EXPECT_EQ(state::PLAYING, h264);
    EXPECT_EQ(state::STOPPED, hevc);
    int fcode = 0;
    d.getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, fcode, row::HEVC);
    EXPECT_EQ(static_cast<int>(FC_OK), fcode);
    EXPECT_EQ((std::vector<std::string>{"Get Branch State UDP CH0", "Start Branch UDP CH0 sync=20"}),
              transcript.branchCommands());

    // One configuration event per channel in order, then the replay's events.
    std::vector<std::string> names;
    for (const RecordedEvent& event : h.recorder.events()) {
        if (event.id == ev::CHANNEL_CONFIG_ERROR) {
            EXPECT_NE(static_cast<unsigned long>(FC_OK), event.fcode) << event.rowId;
            names.push_back(std::string(ev::CHANNEL_CONFIGURED) + " " + event.rowId);
        } else {
            names.push_back(event.id + " " + event.rowId);
        }
    }
    EXPECT_EQ((std::vector<std::string>{"Channel Configured H.264", "Channel Configured HEVC", "Channel Played H.264",
                                        "Close Alarms H.264"}),
              names);
}

}  // namespace
