#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "vocab/ChannelWireTexts.h"

// The channel conditions a channel's "Fcode" can hold, with the name a person
// reads: the daemon sets and tests these codes, and chanctl and chanweb name
// them from this table. Header-only, so the tools include it without linking
// the daemon's logic.
namespace vocab {

struct ChannelCondition {
    uint32_t code;
    const char* name;
};

inline constexpr ChannelCondition CHANNEL_CONDITIONS[] = {
    {cond::CHANNEL_ERROR, "input lost"},          {cond::ZIXI_CONNECTION, "Zixi connection failed"},
    {cond::DATA_STREAM, "data stream condition"}, {cond::FORMAT_CHANGED, "input format changed"},
    {cond::FORCED_STOP, "stopped by user"},
};

}  // namespace vocab

// The names of the conditions `fcode` holds, in table order; a condition is
// held when all its bits are set, as the daemon tests it. Bits no condition
// accounts for (beyond "OK" 0x10000 and the informational 0x20000) are named
// "unknown 0x<bits>". Empty for a channel without conditions.
inline std::vector<std::string> channelConditionNames(uint32_t fcode) {
    std::vector<std::string> names;
    uint32_t named = 0x10000u | vocab::cond::INFO;
    for (const vocab::ChannelCondition& condition : vocab::CHANNEL_CONDITIONS)
        if (vocab::holds(fcode, condition.code)) {
            names.push_back(condition.name);
            named |= condition.code;
        }
    if ((fcode & ~named) != 0) {
        std::ostringstream unknown;
        unknown << "unknown 0x" << std::hex << (fcode & ~named);
        names.push_back(unknown.str());
    }
    return names;
}
