#pragma once

// The media mediator's component and parameter names that the channel's
// pipeline writes, besides the shared ones of PeerNames.h. Each is written
// here once.
namespace vocab {
namespace med {
constexpr const char* PARAM_ENABLE = "Enable";
constexpr const char* PARAM_INPUT = "Input";
constexpr const char* PARAM_RATE_CONTROL_MODE = "Rate Control Mode";
// An encoder's "Frame Rate Ratio": every picture of the input, or every second one.
constexpr const char* RATIO_FULL = "Input Full";
constexpr const char* RATIO_HALF = "Input 1/2";
// The encoder parameter that makes a running encoder take its new bitrates.
constexpr const char* PARAM_APPLY_ON_THE_FLY = "Apply On The Fly Bitrate";
// The video mixer of a channel ("VIDEO_MIXER_CH0"), with its picture adjustments.
constexpr const char* VIDEO_MIXER = "VIDEO_MIXER_";
// The amplifier of the analogue line input, one gain per stream.
constexpr const char* UNBALANCED_AMPLIFIER = "UNBALANCED_AMPLIFIER";
constexpr const char* PARAM_GAIN_STR0 = "Gain Str0";
constexpr const char* PARAM_GAIN_STR1 = "Gain Str1";
}  // namespace med
}  // namespace vocab
