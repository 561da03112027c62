#pragma once

#include <cstdint>
#include <string>

#include "datacom/Fcodes.h"
#include "ports/ChannelContext.h"

// The Zixi and SRT statistics of a target row, read from its sender on the
// mediator into the statistics datasets.
class StreamStatistics {
public:
    explicit StreamStatistics(ChannelContext& ctx) : ctx(ctx) {}

    // `targetRowId` is a target row ("HEVC Target1" ... "H.264 Target2").
    datacom::Fcodes updateZixiStatistics(const std::string& targetRowId);
    datacom::Fcodes updateSrtStatistics(const std::string& targetRowId);
    // The number in front of `key` in a comma-separated statistics text; 0 without.
    static uint64_t parseZixiStat(const std::string& text, const std::string& key);

private:
    ChannelContext& ctx;
};
