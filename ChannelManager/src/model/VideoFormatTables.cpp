#include "model/VideoFormatTables.h"

#include <map>

namespace videoformat {

// Rows deliberately kept as the appliance has them: "1280x720p @ 30" allows
// 60, and the 480-line lists of "720x480p", "352x480p" and "352x240" admit
// "1600x1200p @ 60".
const FormatRate inputResMaxOutputFrameratesMatch[] = {
    {"1920x1080p @ 60", 60},    {"1920x1080p @ 59.94", 60}, {"1920x1080p @ 50", 50},    {"1920x1080p @ 30", 30},
    {"1920x1080p @ 29.97", 30}, {"1920x1080p @ 25", 25},    {"1920x1080p @ 24", 24},    {"1920x1080p @ 23.976", 24},
    {"1920x1080i @ 30", 30},    {"1920x1080i @ 29.97", 30}, {"1920x1080i @ 25", 25},    {"1280x720p @ 60", 60},
    {"1280x720p @ 59.94", 60},  {"1280x720p @ 50", 50},     {"1280x720p @ 30", 60},     {"1280x720p @ 29.97", 30},
    {"1280x720p @ 25", 25},     {"1280x720p @ 24", 24},     {"1280x720p @ 23.976", 24}, {"720x480i @ 29.97", 30},
    {"720x576i @ 25", 25},      {"1600x1200p @ 85", 60},    {"1600x1200p @ 75", 60},    {"1600x1200p @ 50", 50},
    {"1400x1050p @ 60", 60},    {"1400x1050p @ 50", 50},    {"1440x900p @ 60", 60},     {"1440x900p @ 50", 50},
    {"1366x768p @ 60", 60},     {"1366x768p @ 50", 50},     {"1280x1024p @ 60", 60},    {"1280x1024p @ 50", 50},
    {"1280x800p @ 60", 60},     {"1280x800p @ 50", 50},     {"1024x768p @ 60", 60},     {"1024x768p @ 50", 50},
    {"720x576p @ 50", 50},      {"720x480p @ 59.94", 60},
};
const std::size_t inputResMaxOutputFrameratesRows =
    sizeof(inputResMaxOutputFrameratesMatch) / sizeof(inputResMaxOutputFrameratesMatch[0]);

const FormatRate encHevcResMaxOutputFrameratesMatch[] = {
    {"1600x1200p", 30}, {"1400x1050p", 30}, {"1440x900p", 30}, {"1366x768p", 30}, {"1280x1024p", 30},
};
const std::size_t encHevcResMaxOutputFrameratesRows =
    sizeof(encHevcResMaxOutputFrameratesMatch) / sizeof(encHevcResMaxOutputFrameratesMatch[0]);

const FormatRate encH264ResMaxOutputFrameratesMatch[] = {
    {"1920x1080p", 30}, {"1920x1080i", 30}, {"1440x1080p", 30}, {"1440x1080i", 30}, {"1600x1200p", 30},
    {"1400x1050p", 30}, {"1440x900p", 30},  {"1366x768p", 30},  {"1280x1024p", 30},
};
const std::size_t encH264ResMaxOutputFrameratesRows =
    sizeof(encH264ResMaxOutputFrameratesMatch) / sizeof(encH264ResMaxOutputFrameratesMatch[0]);

const FormatInputs outputFromInput[] = {
    {"1920x1080p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 50:1920x1080p @ 30:1920x1080p @ 29.97:"
     "1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:"
     "1920x1080i @ 25"},
    {"1920x1080i", "1920x1080i @ 30:1920x1080i @ 29.97:1920x1080i @ 25"},
    {"1440x1080p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 50:1920x1080p @ 30:1920x1080p @ 29.97:"
     "1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:"
     "1920x1080i @ 25"},
    {"1440x1080i", "1920x1080i @ 30:1920x1080i @ 29.97:1920x1080i @ 25"},
    {"960x1080p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 50:1920x1080p @ 30:1920x1080p @ 29.97:"
     "1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:"
     "1920x1080i @ 25"},
    {"960x1080i", "1920x1080i @ 30:1920x1080i @ 29.97:1920x1080i @ 25"},
    {"1280x720p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 50:1920x1080p @ 30:1920x1080p @ 29.97:"
     "1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:"
     "1920x1080i @ 25:1280x720p @ 60:1280x720p @ 59.94:1280x720p @ 50:1280x720p @ 30:"
     "1280x720p @ 29.97:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:1600x1200p @ 85:"
     "1600x1200p @ 75:1600x1200p @ 60:1600x1200p @ 50:1400x1050p @ 60:1400x1050p @ 50:1440x900p @ 60:"
     "1440x900p @ 50:1366x768p @ 60:1366x768p @ 50:1280x1024p @ 60:1280x1024p @ 50:1280x800p @ 60:"
     "1280x800p @ 50"},
    {"1280x720i", "1920x1080i @ 30:1920x1080i @ 29.97:1920x1080i @ 25"},
    {"960x720p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 50:1920x1080p @ 30:1920x1080p @ 29.97:"
     "1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1280x720p @ 60:1280x720p @ 59.94:"
     "1280x720p @ 50:1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976"},
    {"640x720p",
     "1280x720p @ 60:1280x720p @ 59.94:1280x720p @ 50:1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 25:"
     "1280x720p @ 24:1280x720p @ 23.976"},
    {"640x360p",
     "1280x720p @ 60:1280x720p @ 59.94:1280x720p @ 50:1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 25:"
     "1280x720p @ 24:1280x720p @ 23.976"},
    {"720x480p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 30:1920x1080p @ 29.97:1920x1080p @ 24:"
     "1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:1280x720p @ 60:1280x720p @ 59.94:"
     "1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 24:1280x720p @ 23.976:1600x1200p @ 60:"
     "720x480i @ 29.97:720x480p @ 59.94"},
    {"720x480i", "1920x1080i @ 30:1920x1080i @ 29.97:720x480i @ 29.97"},
    {"704x480p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 30:1920x1080p @ 29.97:1920x1080p @ 24:"
     "1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:1280x720p @ 60:1280x720p @ 59.94:"
     "1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 24:1280x720p @ 23.976:720x480i @ 29.97"},
    {"704x480i", "1920x1080i @ 30:1920x1080i @ 29.97:720x480i @ 29.97"},
    {"544x480p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 30:1920x1080p @ 29.97:1920x1080p @ 24:"
     "1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:1280x720p @ 60:1280x720p @ 59.94:"
     "1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 24:1280x720p @ 23.976:720x480i @ 29.97"},
    {"544x480i", "1920x1080i @ 30:1920x1080i @ 29.97:720x480i @ 29.97"},
    {"448x336p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 50:1920x1080p @ 30:1920x1080p @ 29.97:"
     "1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:"
     "1920x1080i @ 25:1280x720p @ 60:1280x720p @ 59.94:1280x720p @ 50:1280x720p @ 30:"
     "1280x720p @ 29.97:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:720x480i @ 29.97:"
     "720x576i @ 25"},
    {"448x336i", "1920x1080i @ 30:1920x1080i @ 29.97:1920x1080i @ 25:720x480i @ 29.97:720x576i @ 25"},
    {"352x480p",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 30:1920x1080p @ 29.97:1920x1080p @ 24:"
     "1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:1280x720p @ 60:1280x720p @ 59.94:"
     "1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 24:1280x720p @ 23.976:1600x1200p @ 60:"
     "720x480i @ 29.97"},
    {"352x480i", "1920x1080i @ 30:1920x1080i @ 29.97:720x480i @ 29.97"},
    {"352x240",
     "1920x1080p @ 60:1920x1080p @ 59.94:1920x1080p @ 30:1920x1080p @ 29.97:1920x1080p @ 24:"
     "1920x1080p @ 23.976:1920x1080i @ 30:1920x1080i @ 29.97:1280x720p @ 60:1280x720p @ 59.94:"
     "1280x720p @ 30:1280x720p @ 29.97:1280x720p @ 24:1280x720p @ 23.976:1600x1200p @ 60:"
     "720x480i @ 29.97"},
    {"720x576p",
     "1920x1080p @ 50:1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 25:"
     "1280x720p @ 50:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:720x576i @ 25:720x576p @ 50"},
    {"720x576i", "1920x1080i @ 25:720x576i @ 25"},
    {"704x576p",
     "1920x1080p @ 50:1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 25:"
     "1280x720p @ 50:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:720x576i @ 25"},
    {"704x576i", "1920x1080i @ 25:720x576i @ 25"},
    {"544x576p",
     "1920x1080p @ 50:1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 25:"
     "1280x720p @ 50:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:720x576i @ 25"},
    {"544x576i", "1920x1080i @ 25:720x576i @ 25"},
    {"352x576p",
     "1920x1080p @ 50:1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 25:"
     "1280x720p @ 50:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:720x576i @ 25"},
    {"352x576i", "1920x1080i @ 25:720x576i @ 25"},
    {"352x288",
     "1920x1080p @ 50:1920x1080p @ 25:1920x1080p @ 24:1920x1080p @ 23.976:1920x1080i @ 25:"
     "1280x720p @ 50:1280x720p @ 25:1280x720p @ 24:1280x720p @ 23.976:720x576i @ 25"},
    {"1600x1200p", "1600x1200p @ 85:1600x1200p @ 75:1600x1200p @ 60:1600x1200p @ 50"},
    {"1400x1050p", "1400x1050p @ 60:1400x1050p @ 50"},
    {"1440x900p", "1440x900p @ 60:1440x900p @ 50"},
    {"1366x768p", "1366x768p @ 60:1366x768p @ 50"},
    {"1280x1024p", "1280x1024p @ 60:1280x1024p @ 50"},
    {"1280x800p", "1280x800p @ 60:1280x800p @ 50"},
    {"1024x768p", "1024x768p @ 60:1024x768p @ 50"},
    {"800x600p", "800x600p @ 60"},
};
const std::size_t outputFromInputRows = sizeof(outputFromInput) / sizeof(outputFromInput[0]);

const FormatGenlock encFormatToDefGenlock[] = {
    {"1920x1080p", "1920x1080p @ 60"}, {"1920x1080i", "1920x1080i @ 30"}, {"1440x1080p", "1920x1080p @ 60"},
    {"1440x1080i", "1920x1080i @ 30"}, {"960x1080p", "1920x1080p @ 60"},  {"960x1080i", "1920x1080i @ 30"},
    {"1280x720p", "1280x720p @ 60"},   {"1280x720i", "1280x720p @ 60"},   {"960x720p", "1280x720p @ 60"},
    {"640x720p", "1280x720p @ 60"},    {"640x360p", "1280x720p @ 60"},    {"720x480p", "720x480p @ 59.94"},
    {"720x480i", "720x480i @ 29.97"},  {"704x480p", "720x480p @ 59.94"},  {"704x480i", "720x480i @ 29.97"},
    {"544x480p", "720x480p @ 59.94"},  {"544x480i", "720x480i @ 29.97"},  {"448x336p", "720x480p @ 59.94"},
    {"448x336i", "720x480i @ 29.97"},  {"352x480p", "720x480p @ 59.94"},  {"352x480i", "720x480i @ 29.97"},
    {"352x240", "720x480i @ 29.97"},   {"720x576p", "720x576p @ 50"},     {"720x576i", "720x576i @ 25"},
    {"704x576p", "720x576p @ 50"},     {"704x576i", "720x576i @ 25"},     {"544x576p", "720x576p @ 50"},
    {"544x576i", "720x576i @ 25"},     {"352x576p", "720x576p @ 50"},     {"352x576i", "720x576i @ 25"},
    {"352x288", "720x576i @ 25"},
};
const std::size_t encFormatToDefGenlockRows = sizeof(encFormatToDefGenlock) / sizeof(encFormatToDefGenlock[0]);

namespace {

// A lookup built from a table on first use (thread-safe static
// initialisation); the first row of a format wins.
template <typename Row, typename Value, typename Field>
std::map<std::string, Value> index(const Row* rows, std::size_t count, Field field) {
    std::map<std::string, Value> lookup;
    for (std::size_t i = 0; i < count; ++i)
        lookup.emplace(rows[i].format, rows[i].*field);
    return lookup;
}

template <typename Value>
bool find(const std::map<std::string, Value>& lookup, const std::string& key, Value& out) {
    auto found = lookup.find(key);
    if (found == lookup.end())
        return false;
    out = found->second;
    return true;
}

}  // namespace

bool maxInputFrameRate(const std::string& inputFormat, int& maxFrameRate) {
    static const auto lookup = index<FormatRate, int>(inputResMaxOutputFrameratesMatch, inputResMaxOutputFrameratesRows,
                                                      &FormatRate::maxFrameRate);
    return find(lookup, inputFormat, maxFrameRate);
}

bool maxHevcFrameRate(const std::string& encodingFormat, int& maxFrameRate) {
    static const auto lookup = index<FormatRate, int>(encHevcResMaxOutputFrameratesMatch,
                                                      encHevcResMaxOutputFrameratesRows, &FormatRate::maxFrameRate);
    return find(lookup, encodingFormat, maxFrameRate);
}

bool maxH264FrameRate(const std::string& encodingFormat, int& maxFrameRate) {
    static const auto lookup = index<FormatRate, int>(encH264ResMaxOutputFrameratesMatch,
                                                      encH264ResMaxOutputFrameratesRows, &FormatRate::maxFrameRate);
    return find(lookup, encodingFormat, maxFrameRate);
}

bool allowedInputs(const std::string& encodingFormat, std::string& inputs) {
    static const auto lookup =
        index<FormatInputs, std::string>(outputFromInput, outputFromInputRows, &FormatInputs::inputs);
    return find(lookup, encodingFormat, inputs);
}

bool defaultGenlock(const std::string& encodingFormat, std::string& genlock) {
    static const auto lookup =
        index<FormatGenlock, std::string>(encFormatToDefGenlock, encFormatToDefGenlockRows, &FormatGenlock::genlock);
    return find(lookup, encodingFormat, genlock);
}

bool inputAllowed(const std::string& encodingFormat, const std::string& inputFormat) {
    std::string inputs;
    return allowedInputs(encodingFormat, inputs) && inputs.find(inputFormat) != std::string::npos;
}

}  // namespace videoformat
