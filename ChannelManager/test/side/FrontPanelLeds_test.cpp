#include <gtest/gtest.h>

#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

// The last value written to a mediator parameter ("Device/Error LED"), or "".
std::string last(ChannelHarness& h, const std::string& parameter) {
    const std::vector<std::string> writes = h.writes({parameter + "="});
    return writes.empty() ? "" : writes.back().substr(parameter.size() + 1);
}

}  // namespace

TEST(FrontPanelLeds, LightingFollowsStateStatusAndInput) {
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
        h.setState(row::H264, row.h264State, row.h264Status);
        h.setState(row::HEVC, row.hevcState, row.hevcStatus);
        h.holder->initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, row.hdmiInput, "HDMI");
        EXPECT_EQ(h.channel().updateStreamAndErrorLeds(), FC_OK) << name;
        EXPECT_EQ(last(h, "Device/Streaming LED"), row.streaming) << name;
        EXPECT_EQ(last(h, "Device/Error LED"), row.error) << name;
    }
}
