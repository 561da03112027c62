#include <gtest/gtest.h>

#include "side/StreamStatistics.h"
#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

TEST(StreamStatistics, ParseZixiStatTakesTheNumberBeforeTheFirstKey) {
    struct Row {
        const char* text;
        const char* key;
        uint64_t expected;
    };
    const Row rows[] = {
        {"1200 packets, 0 dropped", " dropped", 0},
        {"1200 packets, 7 dropped", " dropped", 7},
        {"1200 packets, 7 dropped", " packets", 1200},  // the first item parses from the start
        {"1200 packets", " rtt", 0},                    // no key
        {"", " packets", 0},
        {"5 packets,0x1f dropped", " dropped", 31},  // base detected from the prefix
        {"5 packets, 010 dropped", " dropped", 8},   // leading zero: octal
        {"5 packets, 3 packet_rate", " packet", 5},  // naive: the first occurrence decides
        {"5 packets, x dropped", " dropped", 0},     // no number in front
        {"1,2,3 jitter", " jitter", 3},
        // 64 bits on every build: past 2^31 and 2^32, saturating beyond 2^64.
        {"2147483648 packets", " packets", 2147483648ULL},
        {"5000000000 packets", " packets", 5000000000ULL},
        {"99999999999999999999 packets", " packets", UINT64_MAX},
    };
    for (const Row& row : rows)
        EXPECT_EQ(StreamStatistics::parseZixiStat(row.text, row.key), row.expected)
            << "text=\"" << row.text << "\" key=\"" << row.key << "\"";
}

TEST(StreamStatistics, ZixiStatisticsReachTheirDatasetAndFollowTheFeeder) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    const std::string target = "HEVC Target2";
    struct Expect {
        const char* component;
        const char* property;
        int tick1;
        int tick2;
    };
    // The simulator's feeder adds 1000 packets, 10 dropped, 3 ARQ- and 2
    // FEC-recovered and 1 lost per refresh.
    const Expect expected[] = {
        {tbl::ZIXI_QOS, prop::TOTAL_PACKETS, 1000, 2000},
        {tbl::ZIXI_QOS, prop::PACKET_RATE, 1000, 1000},
        {tbl::ZIXI_QOS, prop::DROPPED_PACKETS, 10, 20},
        {tbl::ZIXI_QOS, prop::PACKET_LOSS, 1, 1},
        {tbl::ZIXI_QOS, prop::RECOVERED_PACKETS, 5, 10},
        {tbl::ZIXI_QOS, prop::NON_RECOVERED_PACKETS, 1, 2},
        {tbl::ZIXI_NETWORK, prop::TOTAL_BITRATE, 5000000, 5000000},
        {tbl::ZIXI_NETWORK, prop::AVAILABLE_BITRATE, 20000000, 20000000},
        {tbl::ZIXI_NETWORK, prop::ROUND_TRIP_TIME, 21, 22},
        {tbl::ZIXI_NETWORK, prop::JITTER, 2, 2},
        {tbl::ZIXI_NETWORK, prop::ZIXI_LATENCY, 500, 500},
        {tbl::ZIXI_NETWORK, prop::RECONNECTION, 0, 0},
    };
    for (int tick = 1; tick <= 2; ++tick) {
        EXPECT_EQ(h.channel().updateZixiStatistics(target), FC_OK) << "tick " << tick;
        for (const Expect& e : expected)
            EXPECT_EQ(h.number(ds::ZIXI_STAT, e.component, e.property, target), tick == 1 ? e.tick1 : e.tick2)
                << e.component << "/" << e.property << " tick " << tick;
    }
    EXPECT_EQ(h.writes({"Zixi Feeder CH1 2/Update Stats=1"}).size(), 2u);
    // Another target's figures are untouched.
    EXPECT_EQ(h.number(ds::ZIXI_STAT, tbl::ZIXI_QOS, prop::TOTAL_PACKETS, "HEVC Target1"), 0);

    // A failed read of "Network Stats" keeps what was published; the other texts still arrive.
    ASSERT_EQ(h.failNext("Tarnevel Get Param"), FC_OK);
    EXPECT_EQ(h.channel().updateZixiStatistics(target), FC_UNAVAILABLE);
    EXPECT_EQ(h.number(ds::ZIXI_STAT, tbl::ZIXI_QOS, prop::TOTAL_PACKETS, target), 2000);
    EXPECT_EQ(h.number(ds::ZIXI_STAT, tbl::ZIXI_QOS, prop::RECOVERED_PACKETS, target), 15);

    // A link that has run for months: counters past 2^32 are published whole.
    h.mediator.model().setStatTicks("Zixi Feeder CH1 2", 4999999);
    EXPECT_EQ(h.channel().updateZixiStatistics(target), FC_OK);
    EXPECT_EQ(h.text(ds::ZIXI_STAT, tbl::ZIXI_QOS, prop::TOTAL_PACKETS, target), "5000000000");
    EXPECT_EQ(h.text(ds::ZIXI_STAT, tbl::ZIXI_QOS, prop::DROPPED_PACKETS, target), "50000000");
    EXPECT_EQ(h.number(ds::ZIXI_STAT, tbl::ZIXI_QOS, prop::PACKET_LOSS, target), 1);

    EXPECT_EQ(h.channel().updateZixiStatistics("HEVC"), FC_NO_SUCH_NAME);
    EXPECT_EQ(h.channel().updateSrtStatistics("H.264 Target3"), FC_NO_SUCH_NAME);
}

TEST(StreamStatistics, SrtStatisticsScaleTheBitrateAndCopyTheConfiguredLatency) {
    ChannelHarness h;
    ASSERT_TRUE(h.ready());
    const std::string target = "H.264 Target1";
    ASSERT_EQ(h.holder->initIntParam(ds::CHANNEL, tbl::SRT_SETTINGS, prop::LATENCY, 250, target), FC_OK);
    EXPECT_EQ(h.channel().updateSrtStatistics(target), FC_OK);
    // First refresh of the simulated sender: "5.5" Mbit/s, RTT 3, 1000 packets, 1 lost, 0 dropped, 2 retransmitted.
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_NETWORK, prop::TOTAL_BITRATE, target), 5500);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_NETWORK, prop::ROUND_TRIP_TIME, target), 3);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_NETWORK, prop::SRT_LATENCY, target), 250);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_QOS, prop::TOTAL_PACKETS, target), 1000);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_QOS, prop::PACKET_LOSS, target), 1);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_QOS, prop::DROPPED_PACKETS, target), 0);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_QOS, prop::RECOVERED_PACKETS, target), 2);
    EXPECT_EQ(h.writes({"Srt Sender CH0/Update Stats=1"}).size(), 1u);

    // A refused refresh is reported, and the reads still publish.
    ASSERT_EQ(h.failNext("Tarnevel Put Param"), FC_OK);
    EXPECT_EQ(h.channel().updateSrtStatistics(target), FC_UNAVAILABLE);
    EXPECT_EQ(h.number(ds::SRT_STAT, tbl::SRT_NETWORK, prop::TOTAL_BITRATE, target), 5500);
}
