#pragma once

#include <cstdint>

// Small helpers shared by the side actions of the channel logic (statistics,
// data-stream events, SAP, KLV, probes, LEDs, video sources). Internal to
// ChannelManagerLib.
namespace side {

// A counter as an integer property can hold it: values above INT32_MAX are
// stored as INT32_MAX rather than wrapping to negative numbers.
int32_t clampToInt(unsigned long long value);

}  // namespace side
