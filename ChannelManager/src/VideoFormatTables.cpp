#include "VideoFormatTables.h"

#include <utility>

namespace {
// encFormatToDefGenlock: encoding format -> default genlock input format.
const std::pair<const char*, const char*> encFormatToDefGenlock[] = {
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
}  // namespace

const char* defaultGenlockFor(const std::string& encodingFormat) {
    for (const auto& row : encFormatToDefGenlock)
        if (encodingFormat == row.first)
            return row.second;
    return nullptr;
}
