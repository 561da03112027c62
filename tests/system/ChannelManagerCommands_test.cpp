// The channel manager's file commands as the front end sends them to the
// running daemon: their reply codes, the configuration events and the
// settings archive.
#include <gtest/gtest.h>

#include "DaemonProcess.h"

using namespace datacom;

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
    EXPECT_EQ(FC_OK, front.command("STORE_CHANNELS", {{"File", "/data/settings/channels.json"}}));
    EXPECT_EQ("\x1f\x8b", readText("/tmp/devsettings.tgz").substr(0, 2));
    ASSERT_TRUE(front.waitFileEvent("Channels Stored", "/data/settings/channels.json", event));
    EXPECT_EQ(FC_OK, event.fcode);
    EXPECT_TRUE(fileExists("/data/settings/channels.json"));
    EXPECT_EQ(std::string::npos, session.log().find("FATAL"));
}
