#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"
#include "ITarnevelClient.h"
#include "support/MediatorTranscript.h"

using namespace vocab;

namespace {

// Both directions of the branch naming, including the deliberate gaps: RTMP
// has no low-latency variant, and no SRT branch maps back to a channel.
TEST(ChannelRows, BranchNamesBothWays) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    const char *H = row::H264, *V = row::HEVC;
    struct {
        const char* channel;
        bool ultraLowLatency;
        const char *protocol, *branch;  // "" = Unavailable
    } rows[] = {
        {H, false, value::PRO_MPEG, "UDP CH0"},      {H, false, value::RTP_TS, "UDP CH0"},
        {H, false, value::RTP_ES, "RTP RTSP CH0"},   {H, false, value::RTMP, "RTMP CH0"},
        {H, false, value::ZIXI, "ZIXI CH0"},         {H, true, value::SRT, "SRT CH0"},
        {V, false, value::UDP_TS, "UDP CH1"},        {V, false, value::SRT, "SRT CH1"},
        {V, true, value::PRO_MPEG, "UDP CH1 ULL"},   {V, true, value::RTP_ES, "RTP RTSP CH1 ULL"},
        {V, true, value::RTMP, "RTMP CH1"},          {V, true, value::ZIXI, "ZIXI CH1 ULL"},
        {V, false, "HTTP", ""},                      {row::ALL, false, value::UDP_TS, ""},
    };
    for (const auto& r : rows) {
        const char* profile = r.ultraLowLatency ? value::PROFILE_ULL : value::PROFILE_BROADCAST;
        h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE, profile, r.channel);
        std::string branch;
        EXPECT_EQ(*r.branch ? FC_OK : FC_UNAVAILABLE, h.channel().getBranch(r.channel, r.protocol, branch))
            << r.channel << " " << r.protocol;
        EXPECT_EQ(r.branch, branch) << r.channel << " " << r.protocol;
    }
    struct {
        const char *branch, *rowId;  // "" = Unavailable
    } back[] = {
        {"RTP RTSP CH0", H}, {"ZIXI CH0", H},  {"RTP RTSP CH1 ULL", V}, {"UDP CH1 ULL", V}, {"RTMP CH1", V},
        {"SRT CH0", ""},     {"SRT CH1", ""},  {"SRT CH1 ULL", ""},     {"KLVoSDI CH0", ""},
    };
    for (const auto& b : back) {
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
    std::ofstream(h.root.host("/etc/sysmgt/rows.json"))
        << R"({"dataset": "Rows", "components": {"Rows": {"properties": {"Channel ID": {"type": "string",
              "default": "", "access": "RW", "description": ""}}, "instances": [{"Channel ID": "HEVC"},
              {"Channel ID": "H.264"}, {"Channel ID": "HEVC"}]}}})";
    ASSERT_EQ(FC_OK, h.holder->loadDataSet("/etc/sysmgt/rows.json"));
    ConfigChannelTarnevel channel = h.channel();
    EXPECT_EQ(0, channel.getFirstChildRowId("Rows", "Rows", prop::CHANNEL_ID, row::HEVC));
    EXPECT_EQ(2, channel.getNextChildRowId("Rows", "Rows", prop::CHANNEL_ID, row::HEVC, 0));
    EXPECT_EQ(-1, channel.getNextChildRowId("Rows", "Rows", prop::CHANNEL_ID, row::HEVC, 2));
    EXPECT_EQ(1, channel.getFirstChildRowId("Rows", "Rows", prop::CHANNEL_ID, row::H264));
}

// A stop puts back the bitrates saved before an on-the-fly change (0 = not
// saved) and clears the backup.
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
        int processing;
    } expected[] = {{prop::TOTAL_BITRATE, 4000000}, {prop::MAX_BITRATE, 6000000}, {prop::VIDEO_BITRATE, 3000000}};
    for (const auto& e : expected) {
        int processing = -1, backup = -1;
        d.getIntParam(ds::CHANNEL, tbl::PROCESSING, e.property, processing, row::H264);
        d.getIntParam(ds::CHANNEL, tbl::PROCESSING_BACKUP, e.property, backup, row::H264);
        EXPECT_EQ(e.processing, processing) << e.property;
        EXPECT_EQ(0, backup) << e.property;
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
        std::string after;
        h.holder->getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, after, channel);
        EXPECT_EQ(r.chanState, after) << r.event << " " << r.branch;
    }
    EXPECT_TRUE(h.recorder.events().empty());
}

// The wait polls every 5 ms for at most its time; not getting there is no failure.
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
    ASSERT_EQ(FC_OK, d.initTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, value::AUDIO_HDMI_EMBEDDED,
                                     audio1));
    EXPECT_EQ(FC_OK, h.channel().updateChannelStatus(row::H264));
    std::string status;
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, status, row::H264);
    EXPECT_EQ(state::STATUS_ERROR, status);
    ASSERT_EQ(1u, h.recorder.events().size());
    const RecordedEvent event = h.recorder.events()[0];
    EXPECT_EQ(ev::CHANNEL_ERROR + std::string(" H.264 ON"), event.id + " " + event.rowId + " " + event.status);
    EXPECT_EQ(cond::CHANNEL_ERROR, event.fcode);
}

// "Change on-the-fly" needs both bitrates, reads them with base detection
// and skips a request equal to the settings.
TEST(ChannelLifecycle, ChangeOnTheFlyCommand) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    std::string response;
    auto change = [&](std::vector<std::pair<std::string, std::string>> params) {
        params.push_back({cmd::PARAM_ROW_ID, row::H264});
        return h.channel().execute(commandText(cmd::CHANGE_ON_THE_FLY, params), response);
    };
    EXPECT_EQ(FC_OK, change({{cmd::PARAM_TOTAL_BITRATE, "4000000"}}));
    EXPECT_EQ(FC_OK, change({{cmd::PARAM_TOTAL_BITRATE, "0x4C4B40"}, {cmd::PARAM_MAX_BITRATE, "6000000"}}));
    EXPECT_TRUE(h.mediator.model().writes().empty());
    EXPECT_TRUE(h.recorder.events().empty());
    EXPECT_EQ(FC_OK, change({{cmd::PARAM_TOTAL_BITRATE, "0x3D0900"}, {cmd::PARAM_MAX_BITRATE, "027000000"}}));
    int total = 0, max = 0;
    h.holder->getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, total, row::H264);
    h.holder->getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, max, row::H264);
    EXPECT_EQ(4000000, total);
    EXPECT_EQ(6029312, max) << "027000000 read as octal";
    ASSERT_EQ(1u, h.recorder.events().size());
    EXPECT_EQ("prev: 5000000 new: 4000000", h.recorder.events()[0].description);
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
    std::string h264, hevc;
    int fcode = 0;
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, h264, row::H264);
    d.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, hevc, row::HEVC);
    d.getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, fcode, row::HEVC);
    EXPECT_EQ(state::PLAYING, h264);
    EXPECT_EQ(state::STOPPED, hevc);
    EXPECT_EQ(0x10000, fcode);
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

}  // namespace
