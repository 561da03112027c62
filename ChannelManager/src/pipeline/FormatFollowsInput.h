#pragma once

#include <string>

// The encoding format a channel with "Format as Detected" takes from its
// input. Pure, so its rules are pinned by
// a table of their own.
namespace pipeline {
struct FormatChoice {
    std::string encodingFormat;    // "1920x1080p"
    int frameSampling = 0;         // frames per second
    std::string gopStructure;      // the GOP to use (unchanged unless a rule says)
    bool h264MainProfile = false;  // an H.264 profile that must become "H.264 Main Profile"
};
// `input` is a detected format text ("1920x1080p @ 59.94"); false when it
// does not parse or no encoding format of the matrix can be made from it.
// `channel` 0 = H.264, 1 = HEVC.
bool chooseEncoding(int channel, const std::string& input, const std::string& streamProfile, bool halfRate,
                    const std::string& gopStructure, const std::string& h264Profile, FormatChoice& choice);
// About one second of pictures, ending on a whole sub-GOP; 1 for "I".
int gopSizeRough(int frameSampling, const std::string& gopStructure);
}  // namespace pipeline
