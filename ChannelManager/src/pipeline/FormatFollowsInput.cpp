#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "model/VideoFormatTables.h"
#include "pipeline/FormatFollowsInput.h"
#include "pipeline/TextTables.h"
#include "vocab/PeerNames.h"

using namespace vocab;

// Section 8: the encoding format that follows the detected input (the
// store adjustment itself is RunAdjustments::followInputFormat).
//
// The rules, chosen so that the result always passes validateInputFormat:
// - The encoding format is the input's own "<w>x<h><scan>"; every detected
//   format the appliance knows has an encoding format of that name that lists
//   it. The frame sampling is the input's rate rounded (59.94 -> 60), halved
//   for "Half of Input", and never above 60.
// - 1080p at 50 Hz and above: "ISR - Low Bandwidth" encodes "1280x720p" at
//   the full rate (fewer pixels rather than fewer pictures on a thin link);
//   "Ultra Low Latency - LAN" keeps "1920x1080p" at the full rate; any other
//   profile keeps "1920x1080p", halved to 30/25 on H.264 whose encoder cannot
//   run 1080p faster than 30.
// - The encoders' own limits (the H.264 and HEVC tables) halve the rate
//   unless the profile is "Ultra Low Latency - LAN" or, on HEVC, the GOP is
//   "I" or "IP".
// - HEVC GOP: "IP" for a 1080p input at 50 Hz and above (B pictures at that
//   rate crash the encoder); otherwise "I" with "Ultra Low Latency - LAN"
//   when the GOP had B pictures; else unchanged.
// - H.264: an interlaced format cannot be coded with the Baseline profile,
//   which then becomes "H.264 Main Profile".
// - The choice must be one the channel's validation accepts: an input whose
//   own format is not in the format matrix (such as "2048x1080p") has none,
//   and then nothing is chosen and nothing is written.

namespace {
constexpr int kMaxRate = 60;

bool intraOrP(const std::string& gop) {
    return gop == value::GOP_I || gop == value::GOP_IP;
}
}  // namespace

bool pipeline::chooseEncoding(int channel, const std::string& input, const std::string& streamProfile, bool halfRate,
                              const std::string& gopStructure, const std::string& h264Profile, FormatChoice& choice) {
    int w = 0, h = 0;
    char scan = 'x';
    float rate = 0;
    if (std::sscanf(input.c_str(), "%dx%d%c @ %f", &w, &h, &scan, &rate) != 4 || rate <= 0 ||
        (scan != 'p' && scan != 'i'))
        return false;
    const bool ull = streamProfile == value::PROFILE_ULL;
    const bool fast1080p = w == 1920 && h == 1080 && scan == 'p' && rate >= 49;
    choice.encodingFormat = std::to_string(w) + "x" + std::to_string(h) + scan;
    choice.frameSampling = static_cast<int>(std::lround(halfRate ? rate / 2 : rate));
    if (choice.frameSampling > kMaxRate)
        choice.frameSampling = kMaxRate;
    choice.gopStructure = gopStructure;
    if (channel == 1) {
        if (fast1080p)
            choice.gopStructure = value::GOP_IP;
        else if (ull && !intraOrP(gopStructure))
            choice.gopStructure = value::GOP_I;
    }
    int limit = 0;
    bool limited = false;
    if (fast1080p && streamProfile == value::PROFILE_ISR)
        choice.encodingFormat = "1280x720p";
    else if (channel == 0)
        limited = !ull && videoformat::maxH264FrameRate(choice.encodingFormat, limit);
    else
        limited = !ull && !intraOrP(choice.gopStructure) && videoformat::maxHevcFrameRate(choice.encodingFormat, limit);
    if (limited && choice.frameSampling > limit)
        choice.frameSampling = (choice.frameSampling + 1) / 2 <= limit ? (choice.frameSampling + 1) / 2 : limit;
    choice.h264MainProfile =
        channel == 0 && scan == 'i' && choice.encodingFormat.back() == 'i' && h264Profile == "H.264 Baseline Profile";
    int inputLimit = 0;
    return videoformat::inputAllowed(choice.encodingFormat, input) &&
           (!videoformat::maxInputFrameRate(input, inputLimit) || choice.frameSampling <= inputLimit);
}

int pipeline::gopSizeRough(int frameSampling, const std::string& gopStructure) {
    if (gopStructure == value::GOP_I || frameSampling <= 0)
        return 1;
    const char* sub = lookup(HEVC_GOP_SUB_SIZE, gopStructure);
    const int tableSize = sub ? std::atoi(sub) : (gopStructure == "IBBrBP" ? 4 : 1);
    const int subGop = tableSize > 0 ? tableSize : 1;  // a divisor
    const int rough = frameSampling / subGop * subGop;
    return rough > 0 ? rough : subGop;
}
