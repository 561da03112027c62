#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "holder/DataHolder.h"
#include "records/Fcodes.h"

// Small helpers shared by the side actions of the channel logic (statistics,
// data-stream events, SAP, KLV, probes, LEDs, video sources). Internal to
// ChannelManagerLib.
namespace side {

// Holds the holder's recursive lock for a scope (play, stop and the
// data-stream events take it whole).
class HolderLock {
public:
    explicit HolderLock(DataHolder& holder) : holder(holder) { holder.lock(); }
    ~HolderLock() { holder.unlock(); }
    HolderLock(const HolderLock&) = delete;
    HolderLock& operator=(const HolderLock&) = delete;

private:
    DataHolder& holder;
};

// The rows of `component` ("ChannelTargetTable", "Audio Source Table") whose
// "Channel ID" is the channel, in document order.
Fcodes channelChildren(DataHolder& holder, const char* component, const std::string& rowId,
                       std::vector<std::string>& rows);

// An Fcode as it travels in a header: lower-case hex without "0x" ("10000").
std::string hexCode(uint32_t code);

// A counter as an integer property can hold it: values above INT32_MAX are
// stored as INT32_MAX rather than wrapping to negative numbers.
int32_t clampToInt(unsigned long long value);

}  // namespace side
