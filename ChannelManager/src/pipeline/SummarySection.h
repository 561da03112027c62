#pragma once

#include <string>

// The summary texts of a channel's targets; pure.
namespace pipeline {
// The summary's "Target Address" of one target.
std::string targetAddressText(const std::string& protocol, const std::string& address, int port,
                              const std::string& srtMode, const std::string& rtmpUrl);
// The summary's "FEC" of one target.
std::string fecText(const std::string& protocol, const std::string& fecMode, bool srtFec, int srtRows);
}  // namespace pipeline
