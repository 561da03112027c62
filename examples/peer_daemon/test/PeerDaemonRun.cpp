// The LED daemon of examples/peer_daemon, built from the installed libraries
// alone (run_example.sh), run beside the channel manager and the simulated
// appliance: it hears "Channel Played" after a Play and answers a GET of its
// state. LED_DAEMON is the command line that starts it.
#include <gtest/gtest.h>

#include <cstdlib>

#include "DaemonProcess.h"

using namespace datacom;

TEST(PeerDaemon, FollowsTheChannelManagerAndAnswersItsGet) {
    const char* ledCommand = std::getenv("LED_DAEMON");
    ASSERT_NE(nullptr, ledCommand) << "LED_DAEMON names the example's command line";
    DaemonSession session;
    ASSERT_TRUE(session.ready()) << session.everything();
    ChildProcess led(std::string(ledCommand) + " --timeout 120 > " + sysmgtPath("/tmp/led.out") + " 2>&1");
    auto ledSaid = [](const std::string& text) { return readText("/tmp/led.out").find(text) != std::string::npos; };
    ASSERT_TRUE(waitFor([&] { return ledSaid("led_daemon subscribed"); }, 60)) << readText("/tmp/led.out");

    FrontEnd front;
    auto ledValue = [&](const std::string& property, std::string& value) {
        return front.engine.requestGetParam("/tmp/sockLed", "LedDataSet", "Front LED", property, value,
                                            ParamAccess::Read, "", 10, 1);
    };
    std::string colour;
    ASSERT_EQ(FC_OK, ledValue("Colour", colour));
    EXPECT_EQ("off", colour);

    ASSERT_EQ(FC_OK, front.command("LOAD_CHANNELS", {{"File", "Default"}}, 120)) << session.everything();
    ASSERT_EQ(FC_OK, front.command("Play", {{"RowID", "HEVC"}}, 120)) << session.everything();
    ASSERT_TRUE(waitFor([&] { return ledSaid("event: Channel Played HEVC"); }, 60)) << readText("/tmp/led.out");

    std::string channel, changes, missing = "untouched";
    EXPECT_EQ(FC_OK, ledValue("Colour", colour));
    EXPECT_EQ("green", colour);
    EXPECT_EQ(FC_OK, ledValue("Channel", channel));
    EXPECT_EQ("HEVC", channel);
    EXPECT_EQ(FC_OK, ledValue("Changes", changes));
    EXPECT_EQ("1", changes);
    EXPECT_NE(FC_OK, ledValue("Brightness", missing));
    EXPECT_EQ("untouched", missing);
    EXPECT_TRUE(led.running()) << readText("/tmp/led.out");
}
