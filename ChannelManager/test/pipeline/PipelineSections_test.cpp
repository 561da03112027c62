#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "pipeline/PipelineSections.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace vocab;

namespace {

// An H.264 channel in memory: 1920x1080i at 25, a 5 Mbit/s total under a
// 6 Mbit/s maximum, no audio, no KLV, the PCR on its own PID, one enabled
// target of `protocol`.
ChannelSnapshot h264(const char* rateControl, const char* protocol) {
    ChannelSnapshot s;
    s.rowId = row::H264;
    s.suffix = "CH0";
    s.rateControl = rateControl;
    s.encodingFormat = "1920x1080i";
    s.frameSampling = 25;
    s.totalBitrate = 5000000;
    s.maxBitrate = 6000000;
    s.overheadPercent = 7;
    s.videoPid = 101;
    s.pcrPid = 100;
    s.targets.push_back({});
    s.targets.back().enabled = true;
    s.targets.back().protocol = protocol;
    return s;
}

// The stores of an output as "property=value".
std::vector<std::string> stores(const PipelineOutput& out) {
    std::vector<std::string> got;
    for (const PipelineOutput::Action& a : out.actions())
        if (a.kind == PipelineOutput::Kind::Store)
            got.push_back(a.parameter + "=" + a.text);
    return got;
}

// Sections 15 and 16 on a snapshot: the video share of the total, the rate
// control mode and the margin; only Capped VBR turns the margin into the
// multiplexer's overhead, which section 25 then sends.
TEST(PipelineSections, BitratesAndRateControlFollowTheModel) {
    struct Case {
        const char *rateControl, *protocol, *mode;
        int video, margin, overhead;
    } cases[] = {
        // (5000000 - 74197) x 18400 / 18800 - 25 x 888; the maximum's share gives 20 %.
        {"VBR", "UDP TS", "Capped VBR", 4798798, 20, 7},
        {"VBR", "RTMP", "VBR", 5000000, 20, 7},
        {"Capped VBR", "UDP TS", "Capped VBR", 4798798, 20, 20},
        {"CBR", "UDP TS", "CBR", 4483406, 25, 7},  // the 7 % overhead counts with CBR: x 18400 / (107 x 188)
    };
    for (const Case& c : cases) {
        const ChannelSnapshot s = h264(c.rateControl, c.protocol);
        PipelineOutput out(s);
        configBitrates(s, out);
        configRateControl(s, out);
        const std::string name = std::string(c.rateControl) + " " + c.protocol;
        EXPECT_EQ((std::vector<std::string>{"Video Encoder CH0/Bitrate=" + std::to_string(c.video),
                                            std::string("Video Encoder CH0/Rate Control Mode=") + c.mode,
                                            "Video Encoder CH0/Bitrate Margin=" + std::to_string(c.margin)}),
                  out.writes())
            << name;
        std::vector<std::string> expectStores = {std::string(prop::VIDEO_BITRATE) + "=" + std::to_string(c.video)};
        if (c.overhead != 7)
            expectStores.push_back(std::string(prop::MUXRATE_OVERHEAD_PERCENT) + "=" + std::to_string(c.overhead));
        EXPECT_EQ(expectStores, stores(out)) << name;
        EXPECT_EQ(c.overhead, out.bitrates.overheadPercent) << name;
        PipelineOutput mux(s);
        mux.bitrates = out.bitrates;
        configMultiplexer(s, mux);
        const std::vector<std::string> w = mux.writes();
        EXPECT_NE(w.end(), std::find(w.begin(), w.end(),
                                     "TS Multiplexer CH0/Margin overhead percent=" + std::to_string(c.overhead)))
            << name;
    }
}

// Below the H.264 floor the video is raised to 100000, the total recomputed
// and stored, and a maximum below what 110000 needs raised with an event.
TEST(PipelineSections, BitrateFloorsRaiseAndTell) {
    ChannelSnapshot s = h264("CBR", "UDP TS");
    s.totalBitrate = 150000;
    s.maxBitrate = 150000;
    PipelineOutput out(s);
    configBitrates(s, out);
    EXPECT_EQ(100000, out.bitrates.video);
    EXPECT_EQ((std::vector<std::string>{std::string(prop::TOTAL_BITRATE) + "=" + std::to_string(out.bitrates.total),
                                        std::string(prop::MAX_BITRATE) + "=" + std::to_string(out.bitrates.max),
                                        std::string(prop::VIDEO_BITRATE) + "=100000"}),
              stores(out));
    EXPECT_GT(out.bitrates.total, 150000);
    EXPECT_GT(out.bitrates.max, out.bitrates.total);
    const PipelineOutput::Action& event = out.actions()[2];
    ASSERT_EQ(PipelineOutput::Kind::Event, event.kind);
    EXPECT_EQ("prev: 150000 new: " + std::to_string(out.bitrates.max), event.instance);
}

// Target 1 has its own senders (" 2") and stream 2 its own PID: neither may
// fall back to target 0's sender or stream 1's PID.
TEST(PipelineSections, TheSecondTargetAndStreamAreTheirOwn) {
    ChannelSnapshot s = h264("CBR", "Zixi");
    s.targets.push_back(s.targets.back());
    s.targets[0].address = "239.1.1.1";
    s.targets[1].address = "239.1.1.2";
    s.audio.resize(2);
    for (ChannelSnapshot::Audio& a : s.audio)
        a.encode = true;
    s.audio[0].pid = 201;
    s.audio[1].pid = 202;
    PipelineOutput out(s);
    configTargets(s, out);
    configMultiplexer(s, out);
    const std::vector<std::string> w = out.writes();
    for (const char* expected :
         {"Zixi Feeder CH0/Broadcaster IP=239.1.1.1", "Zixi Feeder CH0 2/Broadcaster IP=239.1.1.2",
          "TS Multiplexer CH0/Audio PID=201", "TS Multiplexer CH0/Audio2 PID=202"})
        EXPECT_EQ(1, std::count(w.begin(), w.end(), expected)) << expected;
}

}  // namespace
