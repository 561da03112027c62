// The values the senders and the multiplexer derive from the targets:
// TS packets per datagram, HTB overhead, Zixi bitrate limits, SRT packet
// filter and RTSP live URIs.
#include <gtest/gtest.h>

#include "pipeline/MuxSection.h"
#include "pipeline/TargetSenders.h"

TEST(TargetSenders, TransportValuesFollowTheTargets) {
    struct Granularity {
        int packetSize;
        bool ull;
        int packets;
    } granularities[] = {{1316, false, 7}, {1316, true, 1}, {376, false, 2}, {100, false, 1}, {1500, false, 7}};
    for (const Granularity& g : granularities)
        EXPECT_EQ(g.packets, pipeline::outputGranularity(g.packetSize, g.ull)) << g.packetSize << " " << g.ull;
    struct Htb {
        const char* protocol;
        const char* fecMode;
        int columns, rows, percent;
    } htbs[] = {{"UDP TS", "None", 10, 10, 3},
                {"RTP TS", "None", 10, 10, 4},
                {"Pro-MPEG", "1-D", 10, 10, 14},
                {"Pro-MPEG", "2-D", 10, 5, 34}};
    for (const Htb& t : htbs)
        EXPECT_EQ(t.percent, pipeline::htbOverheadPercent(t.protocol, 1316, t.fecMode, t.columns, t.rows))
            << t.protocol << " " << t.fecMode;
    struct Zixi {
        int total, minPct, maxPct, minBr, maxBr, low, high;
    } zixis[] = {{5000000, 50, 120, 1000000, 8000000, 2500000, 6000000},
                 {1000000, 50, 120, 1000000, 8000000, 1000000, 1200000},
                 {10000000, 50, 120, 1000000, 8000000, 5000000, 8000000},
                 {1000000, 50, 80, 2000000, 8000000, 800000, 800000}};
    for (const Zixi& z : zixis) {
        int low = 0, high = 0;
        pipeline::zixiBitrateLimits(z.total, z.minPct, z.maxPct, z.minBr, z.maxBr, low, high);
        EXPECT_EQ(z.low, low) << z.total << " " << z.minBr;
        EXPECT_EQ(z.high, high) << z.total << " " << z.maxBr;
    }
    EXPECT_EQ("fec,cols:2,rows:2,arq:onreq", pipeline::srtPacketFilter(true, 2, 2));
    EXPECT_EQ("", pipeline::srtPacketFilter(false, 2, 2));
    EXPECT_EQ("1", pipeline::liveUris(false, false));
    EXPECT_EQ("1,2", pipeline::liveUris(true, false));
    EXPECT_EQ("1,3", pipeline::liveUris(false, true));
    EXPECT_EQ("1,2,3", pipeline::liveUris(true, true));
}

// The crop factors of the KLV filter and the SDI output's audio, through a
// whole run.
