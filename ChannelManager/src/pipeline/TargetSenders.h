#pragma once

#include <string>

// The sender values the configuration leaves to the appliance; pure, each
// pinned by a table of its own.
namespace pipeline {
// HTB overhead in per cent of the stream: IP/UDP (and RTP) headers of each
// datagram plus the FEC packets, rounded up.
int htbOverheadPercent(const std::string& protocol, int packetSize, const std::string& fecMode, int columns, int rows);
// Zixi "Adjustable bitrate min"/"max": the configured percentages of the
// channel's total, kept within the configured absolute limits.
void zixiBitrateLimits(int totalBitrate, int minPercent, int maxPercent, int minBitrate, int maxBitrate, int& low,
                       int& high);
// The SRT "Packet Filter" text; "" without FEC.
std::string srtPacketFilter(bool fec, int columns, int rows);
// "Live URIs" of the RTSP server: 1 = video, 2 and 3 = the encoded audio streams.
std::string liveUris(bool audio1, bool audio2);
}  // namespace pipeline
