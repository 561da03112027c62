#pragma once

// The multiplexer value the configuration leaves to the appliance; pure,
// pinned by a table of its own.
namespace pipeline {
// "Output Granularity": TS packets per datagram.
int outputGranularity(int udpPacketSize, bool ultraLowLatency);
}  // namespace pipeline
