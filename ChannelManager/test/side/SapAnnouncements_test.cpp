#include <gtest/gtest.h>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

using SapAnnouncementsTest = ChannelTest;

TEST_F(SapAnnouncementsTest, AnnouncesTargetsWithSapFromPlayedOnAndWithdrawsThemOtherwise) {
    const char* t1 = "H.264 Target1";  // enabled, "UDP TS" to 239.1.1.1:5000
    const char* t2 = "H.264 Target2";
    h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::SAP, true, t1);
    h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::SAP, true, t2);
    h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, true, t2);
    h.holder->initTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, "RTP ES", t2);
    // A name from a loaded file that tries to inject a parameter: its delimiters are replaced.
    h.holder->initTextParam(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_NAME, "S2\"/><Parameter Name=\"TTL\" Value=\"255",
                            t2);
    h.holder->initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, 0x30008, row::H264);
    // HEVC Target1 is enabled without SAP: never announced.

    // A play runs the SAP action while the channel is still "Played".
    h.setState(row::H264, state::PLAYED);
    EXPECT_EQ(h.channel().sapAction(row::H264), FC_OK);
    EXPECT_EQ(h.channel().sapAction(row::HEVC), FC_OK);
    const std::string common = " Fcode=30008 IfAddress=127.0.0.1 Input=HD-SDI Input Format=1920x1080i @ 25 ";
    std::vector<std::string> expected = {
        "START_SAP ChannelName=H.264 Stream 1 DestinationIp=239.1.1.1 DestinationPort=5000" + common +
            "SdpFile= Status=OK Streaming Protocol=UDP TS TTL=16",
        "START_SAP ChannelName=S2'/)(Parameter Name='TTL' Value='255 DestinationIp=239.1.1.2 DestinationPort=5010" +
            common + "SdpFile=/srv/http/webui/sdp/H.264_Target2.sdp Status=OK Streaming Protocol=RTP ES TTL=16",
    };
    EXPECT_EQ(h.sap.model().requests(), expected);
    EXPECT_EQ(h.sap.model().streams().size(), 2u);

    // "Stopping": both withdrawn, with the name, address and port only.
    h.setState(row::H264, state::STOPPING);
    EXPECT_EQ(h.channel().sapAction(row::H264), FC_OK);
    expected.push_back("STOP_SAP ChannelName=H.264 Stream 1 DestinationIp=239.1.1.1 DestinationPort=5000");
    expected.push_back(
        "STOP_SAP ChannelName=S2'/)(Parameter Name='TTL' Value='255 DestinationIp=239.1.1.2 DestinationPort=5010");
    EXPECT_EQ(h.sap.model().requests(), expected);
    EXPECT_TRUE(h.sap.model().streams().empty());

    EXPECT_EQ(h.channel().sapAction("ALL"), FC_BAD_VALUE);
}
