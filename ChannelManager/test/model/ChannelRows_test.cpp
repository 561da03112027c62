#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

using ChannelRowsTest = ChannelTest;

// Both directions of the branch naming, including the deliberate gaps: RTMP
// has no low-latency variant, and no SRT branch maps back to a channel.
TEST_F(ChannelRowsTest, BranchNamesBothWays) {
    const char *H = row::H264, *V = row::HEVC;
    struct {
        const char* channel;
        bool ultraLowLatency;
        const char *protocol, *branch;  // "" = Unavailable
    } rows[] = {
        {H, false, value::PRO_MPEG, "UDP CH0"},
        {H, false, value::RTP_TS, "UDP CH0"},
        {H, false, value::RTP_ES, "RTP RTSP CH0"},
        {H, false, value::RTMP, "RTMP CH0"},
        {H, false, value::ZIXI, "ZIXI CH0"},
        {H, true, value::SRT, "SRT CH0"},
        {V, false, value::UDP_TS, "UDP CH1"},
        {V, false, value::SRT, "SRT CH1"},
        {V, true, value::PRO_MPEG, "UDP CH1 ULL"},
        {V, true, value::RTP_ES, "RTP RTSP CH1 ULL"},
        {V, true, value::RTMP, "RTMP CH1"},
        {V, true, value::ZIXI, "ZIXI CH1 ULL"},
        {V, false, "HTTP", ""},
        {row::ALL, false, value::UDP_TS, ""},
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
        {"RTP RTSP CH0", H}, {"ZIXI CH0", H}, {"RTP RTSP CH1 ULL", V}, {"UDP CH1 ULL", V},  {"RTMP CH1", V},
        {"SRT CH0", ""},     {"SRT CH1", ""}, {"SRT CH1 ULL", ""},     {"KLVoSDI CH0", ""},
    };
    for (const auto& b : back) {
        std::string rowId;
        EXPECT_EQ(*b.rowId ? FC_OK : FC_UNAVAILABLE, h.channel().getRowId(b.branch, rowId)) << b.branch;
        EXPECT_EQ(b.rowId, rowId) << b.branch;
    }
}

// A channel's rows by "Channel ID": keyed instances in order, and the
// row-index forms over an array of instances.
TEST_F(ChannelRowsTest, ChildInstancesAndRowIndices) {
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
TEST_F(ChannelRowsTest, StopRestoresTheBitrateBackup) {
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
        EXPECT_EQ(e.processing, h.number(ds::CHANNEL, tbl::PROCESSING, e.property, row::H264)) << e.property;
        EXPECT_EQ(0, h.number(ds::CHANNEL, tbl::PROCESSING_BACKUP, e.property, row::H264)) << e.property;
    }
}

}  // namespace
