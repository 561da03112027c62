#include <gtest/gtest.h>

#include <functional>

#include "support/ChannelHarness.h"
#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using tarnevel::ITarnevelClient;

using namespace vocab;

TEST(KlvBranches, BranchFollowsTheIngestSettingsAndTheChannelState) {
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

        h.setState(row::H264, state::PLAYING);
        EXPECT_EQ(h.channel().klvAction(row::H264), FC_OK) << name;
        for (const std::string& branch : row.branches)
            EXPECT_EQ(h.mediator.model().branchState(branch), "RUN") << name << " " << branch;
        EXPECT_EQ(h.device.model().commands(), row.commands) << name;
        // A second play finds the branches running: no restart, no reset.
        EXPECT_EQ(h.channel().klvAction(row::H264), FC_OK) << name;
        EXPECT_EQ(h.device.model().commands(), row.commands) << name;

        h.setState(row::H264, state::STOPPING);
        EXPECT_EQ(h.channel().klvAction(row::H264), FC_OK) << name;
        for (const std::string& branch : row.branches)
            EXPECT_EQ(h.mediator.model().branchState(branch), "STOP") << name << " " << branch;
    }
}

// What a play started its stop stops, whatever changed in between (an edit or
// a device setting, applied by a reconfiguration or not); a branch the other
// channel plays with stays running until that channel's own stop.
TEST(KlvBranches, AStopStopsWhatThePlayStartedWhateverChangedSince) {
    const auto toNone = [](ChannelHarness& h) { h.set({{tbl::PROCESSING, prop::INGEST_KLV, row::H264, "None"}}); };
    const auto toRaw = [](ChannelHarness& h) {
        h.device.initTextParam(ds::DEVICE, tbl::KLV_OVER_IP, prop::ENCAPSULATION, "RAW", "");
    };
    const struct {
        const char* name;
        const char* ingest;  // of "H.264", and of "HEVC" when shared
        bool shared;
        bool runningBefore;  // the play finds its branch running
        std::function<void(ChannelHarness&)> change;
        const char* branch;       // the play's
        const char* afterChange;  // its state after the change and the other channel's stop
        const char* next;         // the branch the change started, or nullptr
    } flows[] = {
        {"ingest to None", value::KLV_IP, false, false, toNone, "KLVoIP", "RUN", nullptr},
        {"found running, ingest to None", value::KLV_IP, false, true, toNone, "KLVoIP", "RUN", nullptr},
        {"ingest to None, activated", value::KLV_IP, false, false,
         [&toNone](ChannelHarness& h) {
             toNone(h);
             h.channelCommand(cmd::ACTIVATE_ROW, {{cmd::PARAM_ROW_ID, row::H264}});
         },
         "KLVoIP", "STOP", nullptr},
        {"encapsulation to RAW", value::KLV_IP, false, false, toRaw, "KLVoIP", "RUN", nullptr},
        {"encapsulation to RAW, reconfigured", value::KLV_IP, false, false,
         [&toRaw](ChannelHarness& h) {
             toRaw(h);
             h.channel().configChannel(row::H264);
         },
         "KLVoIP", "STOP", "RAWKLVoIP"},
        {"shared, then ingest to None", value::KLV_SDI, true, false, toNone, "KLVoSDI Async", "RUN", nullptr},
    };
    for (const auto& f : flows) {
        ChannelHarness h;
        ASSERT_TRUE(h.ready()) << f.name;
        ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::INGEST_KLV, row::H264, f.ingest},
                           {tbl::PROCESSING, prop::INGEST_KLV, row::HEVC, f.shared ? f.ingest : "None"}}));
        if (f.runningBefore) {
            ASSERT_EQ(FC_OK, ITarnevelClient::startTarnevelBranch(h.holder.get(), f.branch, false, 1)) << f.name;
        }
        ASSERT_EQ(FC_OK, h.channel().playChannel(row::H264)) << f.name;
        ASSERT_EQ(FC_OK, h.channel().playChannel(row::HEVC)) << f.name;
        ASSERT_EQ("RUN", h.mediator.model().branchState(f.branch)) << f.name;
        f.change(h);
        if (f.next) {
            EXPECT_EQ("RUN", h.mediator.model().branchState(f.next)) << f.name;
        }
        EXPECT_EQ(FC_OK, h.channelCommand(cmd::STOP, {{cmd::PARAM_ROW_ID, row::HEVC}})) << f.name;
        EXPECT_EQ(f.afterChange, h.mediator.model().branchState(f.branch)) << f.name;
        EXPECT_EQ(FC_OK, h.channelCommand(cmd::STOP, {{cmd::PARAM_ROW_ID, row::H264}})) << f.name;
        for (const char* branch : {f.branch, f.next ? f.next : f.branch})
            EXPECT_EQ("STOP", h.mediator.model().branchState(branch)) << f.name << ": " << branch;
    }
}
