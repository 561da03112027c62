// The channel manager's command table, through execute as the engine calls
// it: missing parameters and their log lines, letter case, the loading of
// channel files and the acceptance of changes.
#include <gtest/gtest.h>

#include <json/json.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "TestFiles.h"
#include "datacom/SysmgtRoot.h"
#include "support/ManagerHarness.h"

using namespace datacom;

using namespace vocab;

using ChannelMngrCommands = ManagerTest;

namespace {
// The names in the root's /tmp.
std::set<std::string> tmpNames() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(sysmgtPath("/tmp")))
        names.insert(entry.path().filename());
    return names;
}
}  // namespace

TEST_F(ChannelMngrCommands, MissingParametersAnswerBodyErrorWithTheirLogLines) {
    const struct {
        const char* id;
        Fcodes expected;
        std::vector<std::string> lines;  // in this order
    } rows[] = {
        {"Update Source",
         FC_BODY_ERROR,
         {"execute: command=Update Source", "execute: Not found tags Video Source in:\n"}},
        {"Set DVI mode", FC_BODY_ERROR, {"execute: command=Set DVI mode", "execute: Not found tags DVI_mode in:\n"}},
        {"Set Analog Format",
         FC_BODY_ERROR,
         {"execute: command=Set Analog Format", "execute: Not found tags analog_source in:\n"}},
        {"STORE_CHANNELS", FC_BODY_ERROR, {"execute: Not found tags File in:\n", "execute: After Storing file=\n"}},
        {"LOAD_CHANNELS", FC_BODY_ERROR, {}},
    };
    for (const auto& row : rows) {
        h.takeLog();
        EXPECT_EQ(row.expected, h.execute(row.id)) << row.id;
        const std::string log = h.takeLog();
        size_t at = 0;
        for (const std::string& line : row.lines) {
            at = log.find(line, at);
            EXPECT_NE(std::string::npos, at) << row.id << " lacks, or has out of order: " << line << "\n" << log;
        }
        if (std::string(row.id) == "LOAD_CHANNELS") {
            EXPECT_EQ(std::string::npos, log.find("execute:")) << log;
        }
    }
    // "STORE_CHANNELS" without a file still tells the subscribers; "LOAD_CHANNELS" does not.
    EXPECT_EQ(std::vector<std::string>{"Channels Stored  " + std::to_string(FC_BODY_ERROR)}, h.manager.configEvents());

    // Text that is no command at all.
    std::string result;
    EXPECT_EQ(FC_BODY_ERROR, h.manager.execute("<Parameter Name=\"File\" Value=\"x\" />", result));
    EXPECT_TRUE(h.waitLog("execute: Not found tags in:\n<Parameter"));

    // With their parameter, the two input-mode commands answer "OK" and change nothing.
    EXPECT_EQ(FC_OK, h.execute("Set DVI mode", {{"DVI_mode", "1"}}));
    EXPECT_EQ(FC_OK, h.execute("Set Analog Format", {{"analog_source", "PAL"}}));
    EXPECT_FALSE(h.manager.isChanged());
}

TEST_F(ChannelMngrCommands, WrongLetterCaseReachesTheWorkersRefusal) {
    for (const char* id : {"play", "STOP", "Load_Channels", "Set dvi mode", "Accept Changes "}) {
        h.takeLog();
        // Handed to the worker: the requester hears "OK" for the hand-over.
        EXPECT_EQ(FC_OK, h.execute(id, {{"RowID", "HEVC"}})) << id;
        EXPECT_TRUE(h.waitLog(std::string("doExecute: NOT SUPPORTED command=") + id + "\n")) << id;
        EXPECT_EQ(std::string::npos, h.takeLog().find("execute: command=")) << id;
    }
    // The worker refuses whatever reaches it, also unparsable text.
    std::string result;
    EXPECT_EQ(FC_NO_SUCH_NAME, h.manager.doExecute(ManagerHarness::commandText("Play"), result));
    EXPECT_EQ(FC_BODY_ERROR, h.manager.doExecute("no command", result));
    EXPECT_EQ(FC_UNAVAILABLE, h.manager.deleteRow("ChannelsTable", 1));
    EXPECT_TRUE(h.waitLog("deleteRow: Unsupported"));
}

// Stores the factory channel data, changed by `edit`, as a channel file at `path`.
template <typename Edit>
static void storeFactoryChanged(const std::string& path, Edit edit) {
    std::ifstream in(std::string(testpaths::FACTORY_DIR) + "/channel_data_set_vex.json");
    Json::Value document;
    in >> document;
    edit(document["components"]);
    std::ofstream(sysmgtPath(path)) << document;
}

TEST_F(ChannelMngrCommands, LoadChannelsNamesTheWordAndMergesAStoredFileWithTheDefaults) {
    std::vector<std::string> channels;

    // A missing file: the load's own failure, no channel data, the event all the same.
    EXPECT_EQ(FC_NO_SUCH_NAME, h.execute("LOAD_CHANNELS", {{"File", "/data/settings/missing.json"}}));
    EXPECT_TRUE(h.waitLog("execute: Loading Channels from file=/data/settings/missing.json"));
    EXPECT_TRUE(h.waitLog("loadChannels: Loading /data/settings/missing.json"));
    EXPECT_NE(FC_OK, h.manager.getInstances("ChannelDataSet", "ChannelsTable", channels));

    h.takeLog();
    h.execute("LOAD_CHANNELS", {{"File", "Default"}});
    EXPECT_TRUE(h.waitLog("loadChannels: Loading /etc/sysmgt/channel_data_set_vex.json"));
    EXPECT_EQ(std::string::npos, h.takeLog().find("execute: Loading Channels from file="));
    ASSERT_EQ(FC_OK, h.manager.getInstances("ChannelDataSet", "ChannelsTable", channels));
    EXPECT_EQ((std::vector<std::string>{"H.264", "HEVC"}), channels);
    const std::vector<std::string> events = h.manager.configEvents();
    ASSERT_EQ(2u, events.size());
    EXPECT_EQ("Channels Loaded /data/settings/missing.json " + std::to_string(FC_NO_SUCH_NAME), events[0]);
    EXPECT_EQ(0u, events[1].rfind("Channels Loaded Default ", 0)) << events[1];

    // A stored file of an older release, without "Channel Name": the load adds
    // it from the factory defaults and drops the defaults again.
    storeFactoryChanged("/data/settings/old.json", [](Json::Value& components) {
        Json::Value& table = components["ChannelsTable"];
        table["properties"].removeMember("Channel Name");
        for (const std::string& key : table["instances"].getMemberNames())
            table["instances"][key].removeMember("Channel Name");
    });
    std::string name;
    ASSERT_EQ(FC_OK, h.manager.loadDataSet("/data/settings/old.json"));
    ASSERT_NE(FC_OK, h.manager.getTextParam("ChannelDataSet", "ChannelsTable", "Channel Name", name, "HEVC"))
        << "the edited file still holds the property";
    h.execute("LOAD_CHANNELS", {{"File", "/data/settings/old.json"}});
    EXPECT_EQ(FC_OK, h.manager.getTextParam("ChannelDataSet", "ChannelsTable", "Channel Name", name, "HEVC"));
    EXPECT_NE(FC_OK, h.manager.getInstances("Default Dataset", "ChannelsTable", channels));
}

// A hand-edited channel file with a value its definitions refuse is not
// loaded: the answer names the kind of fault and the log the first refused
// value; the channel data, its pending edit and the next Play are those of
// before. Only the stop, which comes before the file is read, took place.
TEST_F(ChannelMngrCommands, ARefusedChannelFileChangesNothingButTheStop) {
    ASSERT_EQ(FC_OK, h.execute("LOAD_CHANNELS", {{"File", "Default"}}));
    ASSERT_TRUE(h.set({{tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC, value::PROFILE_ULL}}));
    ASSERT_EQ(FC_OK, h.execute("Play", {{"RowID", "HEVC"}}));
    // Each file adds a fault of the HEVC row to those of the one before; the
    // first in name order is named. The last holds "bright" and "Warp Speed".
    const struct {
        const char *table, *property;
        Json::Value value;
        Fcodes expected;
        std::string logged;
    } rows[] = {
        {tbl::PROCESSING, prop::STREAM_PROFILE, "Warp Speed", FC_BAD_VALUE,
         "comp=ChannelProcessingTable param=Stream Profile ind=HEVC refused value=\"Warp Speed\" in file="},
        {tbl::PROCESSING, prop::FRAME_SAMPLING, 241, FC_BAD_VALUE,
         "param=Frame Sampling ind=HEVC out of range=241 maximum=240"},
        {tbl::AV_SETTINGS, prop::BRIGHTNESS, "bright", FC_WRONG_TYPE,
         "loadDataSet: dataset=ChannelDataSet comp=ChannelAVSettings param=Brightness ind=HEVC refused "
         "value=\"bright\" in file=/data/settings/bad.json"},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        const auto& row = rows[i];
        storeFactoryChanged("/data/settings/bad.json", [&](Json::Value& components) {
            for (size_t fault = 0; fault <= i; ++fault)
                components[rows[fault].table]["instances"][row::HEVC][rows[fault].property] = rows[fault].value;
        });
        ASSERT_EQ(FC_OK, h.manager.setTextParam(ds::CHANNEL, tbl::CHANNELS, prop::CHANNEL_NAME, "Pending", row::HEVC));
        EXPECT_EQ(row.expected | FC_OK, h.execute("LOAD_CHANNELS", {{"File", "/data/settings/bad.json"}}))
            << row.logged;
        EXPECT_TRUE(h.waitLog(row.logged)) << row.logged;
        EXPECT_EQ("Stopped", h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, row::HEVC)) << row.logged;
        EXPECT_EQ(50, h.number(ds::CHANNEL, tbl::AV_SETTINGS, prop::BRIGHTNESS, row::HEVC)) << row.logged;
        EXPECT_EQ(value::PROFILE_ULL, h.text(ds::CHANNEL, tbl::PROCESSING, prop::STREAM_PROFILE, row::HEVC))
            << row.logged;
        EXPECT_TRUE(h.manager.isChangedProperty(ds::CHANNEL, tbl::CHANNELS, prop::CHANNEL_NAME, row::HEVC));
        // The next Play starts the branch of the old data's profile.
        EXPECT_EQ(FC_OK, h.execute("Play", {{"RowID", "HEVC"}})) << row.logged;
        EXPECT_EQ("RUN", h.mediator.model().branchState("UDP CH1 ULL")) << row.logged;
    }
}

TEST_F(ChannelMngrCommands, AcceptChangesCommitsWhatItDoesNotApply) {
    ASSERT_EQ(FC_OK, h.manager.loadDataSet(path::FACTORY_CHANNELS));
    // Nothing pending: "OK", nothing touched.
    EXPECT_EQ(FC_OK, h.execute("Accept Changes"));
    EXPECT_TRUE(h.waitLog("execute: command=Accept Changes"));
    EXPECT_EQ(std::string::npos, h.takeLog().find("acceptChanges: dataSets_json changed."));

    ASSERT_EQ(FC_OK, h.manager.setTextParam("ChannelDataSet", "ChannelsTable", "Channel Name", "Studio", "HEVC"));
    ASSERT_TRUE(h.manager.isChanged());
    EXPECT_EQ(FC_OK, h.execute("Accept Changes"));
    EXPECT_TRUE(h.waitLog("acceptChanges: dataSets_json changed."));
    EXPECT_FALSE(h.manager.isChanged());
    EXPECT_EQ("Studio", h.text("ChannelDataSet", "ChannelsTable", "Channel Name", "HEVC"));

    // "Rollback Changes" drops the JSON datasets' pending edits too.
    ASSERT_EQ(FC_OK, h.manager.setTextParam("ChannelDataSet", "ChannelsTable", "Channel Name", "Stale", "HEVC"));
    EXPECT_EQ(FC_OK, h.execute("Rollback Changes"));
    EXPECT_FALSE(h.manager.isChanged());
    // LOAD_CHANNELS drops the pending edits of the channel data it replaces, and only those.
    ASSERT_EQ(FC_OK, h.manager.setTextParam("ChannelDataSet", "ChannelsTable", "Channel Name", "Stale", "HEVC"));
    ASSERT_EQ(FC_OK, h.manager.setTextParam("VideoSourceDataSet", "VideoSourceTable", "Input Detected", "X", "DVI-D"));
    h.execute("LOAD_CHANNELS", {{"File", "Default"}});
    EXPECT_FALSE(h.manager.isChangedDataSet("ChannelDataSet"));
    EXPECT_TRUE(h.manager.isChangedDataSet("VideoSourceDataSet"));
    std::string name;
    EXPECT_EQ(FC_OK, h.manager.getNewTextParam("ChannelDataSet", "ChannelsTable", "Channel Name", name, "HEVC"));
    EXPECT_EQ("HEVC Stream 1", name) << "the factory name, not the stale edit";
}

// A neighbour in the shared /tmp plants the archive's names as links to a
// file of ours: the store neither follows nor truncates them, the archive is
// a real file in place of the link, and nothing is left behind.
TEST_F(ChannelMngrCommands, StoreArchivesTheSettingsOverPlantedLinksAndLeavesNothing) {
    ASSERT_EQ(FC_OK, h.manager.loadDataSet(path::FACTORY_CHANNELS));
    writeText("/data/victim", "kept");
    for (const char* name : {"/tmp/devsettings.tar", "/tmp/devsettings.tar.gz", "/tmp/devsettings.tgz"})
        ASSERT_EQ(0, symlink(sysmgtPath("/data/victim").c_str(), sysmgtPath(name).c_str())) << name;
    const std::set<std::string> before = tmpNames();

    EXPECT_EQ(FC_OK, h.execute("STORE_CHANNELS", {{"File", "/data/settings/channels.json"}})) << h.takeLog();
    EXPECT_EQ("kept", readText("/data/victim").substr(0, 64));
    // In place of the link, a gzip'd tar of the settings, its members named as on the device.
    ASSERT_EQ(
        0, std::system(("tar tzf " + sysmgtPath("/tmp/devsettings.tgz") + " > " + sysmgtPath("/data/list")).c_str()));
    EXPECT_NE(std::string::npos, ("\n" + readText("/data/list")).find("\ndata/settings/channels.json\n"))
        << readText("/data/list");
    EXPECT_EQ(before, tmpNames()) << "no private directory, no intermediate file left";

    // A name the archive cannot replace: "Unavailable", and nothing left either.
    unlink(sysmgtPath("/tmp/devsettings.tgz").c_str());
    ASSERT_EQ(0, mkdir(sysmgtPath("/tmp/devsettings.tgz").c_str(), 0700));
    EXPECT_EQ(FC_UNAVAILABLE, h.execute("STORE_CHANNELS", {{"File", "/data/settings/channels.json"}}));
    EXPECT_TRUE(h.waitLog("execute: settings archive failed"));
    EXPECT_EQ(before, tmpNames());
}

// The run book is the manager's, lent to every command: a stop stops the
// branch the play started, though the target's protocol changed in between.
TEST_F(ChannelMngrCommands, AStopStopsTheBranchAnEarlierPlayStarted) {
    ASSERT_EQ(FC_OK, h.execute(cmd::LOAD_CHANNELS, {{"File", "Default"}}));
    ASSERT_EQ(FC_OK, h.execute(cmd::PLAY, {{cmd::PARAM_ROW_ID, row::H264}}));
    ASSERT_EQ(state::BRANCH_RUN, h.mediator.model().branchState("UDP CH0"));
    ASSERT_TRUE(h.set({{tbl::TARGET, prop::STREAMING_PROTOCOL, "H.264 Target1", value::ZIXI}}));
    EXPECT_EQ(FC_OK, h.execute(cmd::STOP, {{cmd::PARAM_ROW_ID, row::H264}}));
    EXPECT_EQ(state::BRANCH_STOP, h.mediator.model().branchState("UDP CH0"));
}
