#pragma once

#include <cstdint>
#include <string>

// The ranges of stored integers that the bitrate model accepts. A value
// outside is clamped to the nearer bound with a log line naming the
// parameter, so that no stored or accepted setting can divide by zero or
// overflow. The factory channel dataset states the same ranges ("minimum",
// "maximum" of the property definitions); the schema lists them beside the
// names, and a test holds the file to it.
namespace range {

struct IntRange {
    const char* property;
    int32_t minimum;
    int32_t maximum;
};

// "MuxRate Overhead Percent" divides the inverse formula through (P + 100):
// below 0 the model is meaningless and at -100 it divides by zero. Up to 200
// per cent (a rate cap three times the average, which is also where Capped VBR
// stores its margin).
constexpr IntRange OVERHEAD_PERCENT{"MuxRate Overhead Percent", 0, 200};
// "Frame Sampling" in frames per second, times up to 1776 bits per frame.
constexpr IntRange FRAME_SAMPLING{"Frame Sampling", 0, 240};

// `value` within `range`; outside, logs at WARN "<op>: rowId=<row> Error:
// param=<property> val=<value> out of range [min,max], set to <bound>" and
// returns the nearer bound.
int32_t clampLogged(const char* op, const std::string& rowId, const IntRange& range, int64_t value);

}  // namespace range
