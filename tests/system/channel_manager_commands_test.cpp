// The channel manager's commands as the front end sends them to the running
// daemon: reply codes, the configuration events, the settings archive, and
// the refusal of what it does not serve.
#include <gtest/gtest.h>

#include "DaemonProcess.h"

TEST(ChannelManagerCommands, ReplyCodesOfTheManagersOwnCommands) {
    DaemonSession session;
    ASSERT_TRUE(session.ready()) << session.everything();
    const struct {
        const char* args;
        int status;
        const char* output;  // part of what chanctl prints
    } rows[] = {
        {"command 'Set DVI mode' DVI_mode=1", 0, ""},
        {"command 'Set DVI mode'", 1, "Message Body Error"},
        {"command 'Set Analog Format' analog_source=PAL", 0, ""},
        {"command 'Set Analog Format' DVI_mode=1", 1, "Message Body Error"},
        {"command 'Update Source'", 1, "Message Body Error"},
        {"command LOAD_CHANNELS", 1, "Message Body Error"},
        {"command STORE_CHANNELS", 1, "Message Body Error"},
        {"command LOAD_CHANNELS File=/data/settings/none.json", 1, "No Such Name"},
        {"command 'Accept Changes'", 0, ""},
        {"command 'Rollback Changes'", 0, ""},
        // Not one of its commands: handed to the worker, which refuses it in the log.
        {"command play RowID=HEVC", 0, ""},
    };
    for (const auto& row : rows) {
        ToolRun run = chanctl(row.args);
        EXPECT_EQ(row.status, run.status) << row.args << ": " << run.output;
        EXPECT_NE(std::string::npos, run.output.find(row.output)) << row.args << ": " << run.output;
    }
    EXPECT_TRUE(session.waitLog("doExecute: NOT SUPPORTED command=play")) << session.log();
    EXPECT_TRUE(session.waitLog("execute: Not found tags DVI_mode in:")) << session.log();
    EXPECT_TRUE(session.daemon.running());
}

TEST(ChannelManagerCommands, LoadAndStoreTellTheFrontEndAndArchiveTheSettings) {
    DaemonSession session;
    ASSERT_TRUE(session.ready()) << session.everything();
    FrontEnd front;
    ASSERT_EQ(FC_OK, front.subscribe());
    MessageEvent event;

    // A store before anything was loaded fails, and says so.
    EXPECT_EQ(FC_NO_SUCH_NAME, front.command("STORE_CHANNELS", {{"File", "/tmp/early.json"}}));
    ASSERT_TRUE(front.waitFileEvent("Channels Stored", "/tmp/early.json", event));
    EXPECT_EQ(FC_NO_SUCH_NAME, event.fcode);

    // The factory data, named by the word "Default" in its event.
    front.command("LOAD_CHANNELS", {{"File", "Default"}}, 60);
    ASSERT_TRUE(front.waitFileEvent("Channels Loaded", "Default", event)) << session.everything();
    EXPECT_EQ("Default", event.description);
    EXPECT_EQ("None", event.status);
    EXPECT_EQ("Debug", event.severity);

    EXPECT_EQ(FC_OK, front.command("STORE_CHANNELS", {{"File", "/tmp/kept.json"}}));
    EXPECT_TRUE(fileExists("/tmp/kept.json"));
    EXPECT_FALSE(fileExists("/tmp/devsettings.tgz"));
    // A leftover of an interrupted archive is replaced, not asked about nor published again.
    std::ofstream(sysmgtPath("/tmp/devsettings.tar.gz")) << "stale";
    EXPECT_EQ(FC_OK, front.command("STORE_CHANNELS", {{"File", "/data/settings/channels.json"}}));
    EXPECT_EQ("\x1f\x8b", readText(sysmgtPath("/tmp/devsettings.tgz")).substr(0, 2));
    EXPECT_FALSE(fileExists("/tmp/devsettings.tar.gz"));
    ASSERT_TRUE(front.waitFileEvent("Channels Stored", "/data/settings/channels.json", event));
    EXPECT_EQ(FC_OK, event.fcode);
    EXPECT_TRUE(fileExists("/data/settings/channels.json"));
    EXPECT_TRUE(fileExists("/tmp/devsettings.tgz")) << session.daemonOutput();
    EXPECT_EQ(std::string::npos, session.log().find("FATAL"));
}
