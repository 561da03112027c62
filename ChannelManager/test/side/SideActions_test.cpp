#include <gtest/gtest.h>

#include "support/SideActionTestSupport.h"

using namespace vocab;

namespace {

void setState(ChannelHarness& h, const char* row, const char* state, const char* status = "OK") {
    h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state, row);
    h.holder->initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, status, row);
}

// The last value written to a mediator parameter ("Device/Error LED"), or "".
std::string lastWrite(ChannelHarness& h, const std::string& componentParameter) {
    const std::vector<std::string> writes = writesTo(h, componentParameter + "=");
    return writes.empty() ? "" : writes.back().substr(componentParameter.size() + 1);
}

}  // namespace

TEST(ChannelSap, AnnouncesTargetsWithSapWhilePlayingAndWithdrawsThemOtherwise) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
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

    setState(h, row::H264, state::PLAYING);
    EXPECT_EQ(h.channel().sapAction(row::H264), FC_OK);
    EXPECT_EQ(h.channel().sapAction(row::HEVC), FC_OK);
    const std::string common = " Fcode=30008 IfAddress=127.0.0.1 Input=HD-SDI Input Format=1920x1080i @ 25 ";
    std::vector<std::string> expected = {
        "START_SAP ChannelName=H.264 Stream 1 DestinationIp=239.1.1.1 DestinationPort=5000" + common +
            "SdpFile= Status=OK Streaming Protocol=UDP TS TTL=16",
        "START_SAP ChannelName=S2'/)(Parameter Name='TTL' Value='255 DestinationIp=239.1.1.2 DestinationPort=5010" +
            common +
            "SdpFile=/srv/http/webui/sdp/H.264_Target2.sdp Status=OK Streaming Protocol=RTP ES TTL=16",
    };
    EXPECT_EQ(h.sap.model().requests(), expected);
    EXPECT_EQ(h.sap.model().streams().size(), 2u);

    // "Stopping": both withdrawn, with the name, address and port only.
    setState(h, row::H264, state::STOPPING);
    EXPECT_EQ(h.channel().sapAction(row::H264), FC_OK);
    expected.push_back("STOP_SAP ChannelName=H.264 Stream 1 DestinationIp=239.1.1.1 DestinationPort=5000");
    expected.push_back(
        "STOP_SAP ChannelName=S2'/)(Parameter Name='TTL' Value='255 DestinationIp=239.1.1.2 DestinationPort=5010");
    EXPECT_EQ(h.sap.model().requests(), expected);
    EXPECT_TRUE(h.sap.model().streams().empty());

    EXPECT_EQ(h.channel().sapAction("ALL"), FC_BAD_VALUE);
}

TEST(ChannelKlv, BranchFollowsTheIngestSettingsAndTheChannelState) {
    struct Row {
        const char* ingest;
        const char* ingest2;
        const char* deviceTable;  // a device setting changed first, or nullptr
        const char* deviceProperty;
        const char* deviceValue;
        std::vector<std::string> branches;
        std::vector<std::string> commands;
    };
    const Row rows[] = {
        {"SDI-Sync", "None", nullptr, nullptr, nullptr, {"KLVoSDI CH0"}, {"Reset KLVoSDI Statistics"}},
        {"SDI", "SDI", nullptr, nullptr, nullptr, {"KLVoSDI Async"}, {"Reset KLVoSDI Statistics"}},
        {"Serial", "None", nullptr, nullptr, nullptr, {"RAWKLVoSerial"}, {"Reset KLV Statistics"}},
        {"None", "Serial", "KLV Table", "Input Data Format", "COT", {"KLVoSerial"}, {"Reset KLV Statistics"}},
        {"IP", "None", nullptr, nullptr, nullptr, {"KLVoIP"}, {"Reset KLVoIP Statistics"}},
        {"IP",
         "SDI-Sync",
         "KLV over IP",
         "Encapsulation",
         "RAW",
         {"RAWKLVoIP", "KLVoSDI CH0"},
         {"Reset KLVoIP Statistics", "Reset KLVoSDI Statistics"}},
        {"None", "None", nullptr, nullptr, nullptr, {}, {}},
    };
    for (const Row& row : rows) {
        const std::string name = std::string(row.ingest) + "/" + row.ingest2;
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << name;
        if (row.deviceTable)
            h.device.initTextParam(ds::DEVICE, row.deviceTable, row.deviceProperty, row.deviceValue, "");
        h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, row.ingest, row::H264);
        h.holder->initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, row.ingest2, row::H264);

        setState(h, row::H264, state::PLAYING);
        EXPECT_EQ(h.channel().klvAction(row::H264), FC_OK) << name;
        for (const std::string& branch : row.branches)
            EXPECT_EQ(h.mediator.model().branchState(branch), "RUN") << name << " " << branch;
        EXPECT_EQ(h.device.model().commands(), row.commands) << name;
        // A second play finds the branches running: no restart, no reset.
        EXPECT_EQ(h.channel().klvAction(row::H264), FC_OK) << name;
        EXPECT_EQ(h.device.model().commands(), row.commands) << name;

        setState(h, row::H264, state::STOPPING);
        EXPECT_EQ(h.channel().klvAction(row::H264), FC_OK) << name;
        for (const std::string& branch : row.branches)
            EXPECT_EQ(h.mediator.model().branchState(branch), "STOP") << name << " " << branch;
    }
}

TEST(ChannelLeds, LightingFollowsStateStatusAndInput) {
    struct Row {
        const char* h264State;
        const char* h264Status;
        const char* hevcState;
        const char* hevcStatus;
        const char* hdmiInput;  // the HEVC channel's source
        const char* streaming;
        const char* error;
    };
    const Row rows[] = {
        {"Stopped", "OK", "Stopped", "OK", "1280x720p @ 50", "0", "0"},
        {"Playing", "OK", "Stopped", "OK", "1280x720p @ 50", "1", "0"},
        {"Played", "OK", "Stopping", "OK", "1280x720p @ 50", "0", "0"},
        {"Playing", "OK", "Playing", "ERROR", "1280x720p @ 50", "1", "1"},
        {"Stopped", "OK", "Playing", "OK", "None", "1", "1"},  // playing without input
        {"Stopped", "OK", "Stopped", "OK", "None", "0", "0"},  // no input, nothing to stream
        {"Stopped", "ERROR", "Stopped", "OK", "1280x720p @ 50", "0", "1"},
    };
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    for (const Row& row : rows) {
        const std::string name = std::string(row.h264State) + "/" + row.h264Status + " " + row.hevcState + "/" +
                                 row.hevcStatus + " " + row.hdmiInput;
        setState(h, row::H264, row.h264State, row.h264Status);
        setState(h, row::HEVC, row.hevcState, row.hevcStatus);
        h.holder->initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, row.hdmiInput, "HDMI");
        EXPECT_EQ(h.channel().updateStreamAndErrorLeds(), FC_OK) << name;
        EXPECT_EQ(lastWrite(h, "Device/Streaming LED"), row.streaming) << name;
        EXPECT_EQ(lastWrite(h, "Device/Error LED"), row.error) << name;
    }
}
