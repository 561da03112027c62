#pragma once

#include <cstddef>
#include <string>

// The appliance's video format matrix: which detected inputs an encoding
// format can be made from, the highest frame sampling an input or an
// encoding format allows, and the genlock default of each encoding format.
// Constant tables, kept here verbatim and in their order; the lookups are
// built once on first use and never change, so any thread may read them.
//
// Format texts: width "x" height and the scan letter ("1920x1080i"), and for
// detected inputs " @ " and the frame rate ("1920x1080i @ 25").
namespace videoformat {

struct FormatRate {
    const char* format;
    int maxFrameRate;
};
struct FormatInputs {
    const char* format;
    const char* inputs;  // detected input formats separated by ":"
};
struct FormatGenlock {
    const char* format;
    const char* genlock;
};

// Detected input format -> highest frame sampling it can feed.
extern const FormatRate inputResMaxOutputFrameratesMatch[];
extern const std::size_t inputResMaxOutputFrameratesRows;
// HEVC encoding format -> highest frame sampling.
extern const FormatRate encHevcResMaxOutputFrameratesMatch[];
extern const std::size_t encHevcResMaxOutputFrameratesRows;
// H.264 encoding format -> highest frame sampling.
extern const FormatRate encH264ResMaxOutputFrameratesMatch[];
extern const std::size_t encH264ResMaxOutputFrameratesRows;
// Encoding format -> the input formats it can be made from.
extern const FormatInputs outputFromInput[];
extern const std::size_t outputFromInputRows;
// Encoding format -> default genlock input format.
extern const FormatGenlock encFormatToDefGenlock[];
extern const std::size_t encFormatToDefGenlockRows;

// Each lookup answers false, leaving the out-value alone, when the format has no row.
bool maxInputFrameRate(const std::string& inputFormat, int& maxFrameRate);
bool maxHevcFrameRate(const std::string& encodingFormat, int& maxFrameRate);
bool maxH264FrameRate(const std::string& encodingFormat, int& maxFrameRate);
bool allowedInputs(const std::string& encodingFormat, std::string& inputs);
bool defaultGenlock(const std::string& encodingFormat, std::string& genlock);

// True when the encoding format has a row and the detected input occurs in
// its list. A plain substring search of the list text, not a split of the
// list: that is how the appliance has always matched, and the matrix is
// written for it.
bool inputAllowed(const std::string& encodingFormat, const std::string& inputFormat);

}  // namespace videoformat
