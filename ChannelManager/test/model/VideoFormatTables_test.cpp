#include <gtest/gtest.h>

#include <string>

#include "model/VideoFormatTables.h"

namespace {

// The rows of the format matrix the appliance relies on, including the ones
// that look like slips but are deliberate.
TEST(VideoFormatTables, KeepTheApplianceMatrix) {
    using namespace videoformat;
    struct {
        bool (*lookup)(const std::string&, int&);
        const char* format;
        int expected;  // -1: no row
    } rates[] = {
        {maxInputFrameRate, "1920x1080p @ 59.94", 60}, {maxInputFrameRate, "1280x720p @ 30", 60},  // deliberate
        {maxInputFrameRate, "1280x720p @ 29.97", 30},  {maxInputFrameRate, "1600x1200p @ 85", 60},
        {maxInputFrameRate, "1600x1200p @ 60", -1},    {maxHevcFrameRate, "1280x1024p", 30},
        {maxHevcFrameRate, "1920x1080p", -1},          {maxH264FrameRate, "1920x1080i", 30},
        {maxH264FrameRate, "1280x720p", -1},
    };
    for (const auto& row : rates) {
        int max = -1;
        row.lookup(row.format, max);
        EXPECT_EQ(row.expected, max) << row.format;
    }
    struct {
        const char* encoding;
        const char* input;
        bool allowed;
    } inputs[] = {
        {"720x480p", "1600x1200p @ 60", true},  {"352x480p", "1600x1200p @ 60", true},  // deliberate
        {"352x240", "1600x1200p @ 60", true},   {"704x480p", "1600x1200p @ 60", false},
        {"1280x720i", "1280x720p @ 60", false}, {"800x600p", "800x600p @ 60", true},
        {"704x576p", "720x576p @ 50", false},   {"640x480p", "640x480p @ 60", false},
        {"1920x1080p", "1920x1080p @ 5", true},  // a plain substring search
    };
    for (const auto& row : inputs)
        EXPECT_EQ(row.allowed, inputAllowed(row.encoding, row.input)) << row.encoding << " / " << row.input;
    std::string genlock;
    EXPECT_TRUE(defaultGenlock("352x240", genlock));
    EXPECT_EQ("720x480i @ 29.97", genlock);
    EXPECT_TRUE(defaultGenlock("1280x720i", genlock));
    EXPECT_EQ("1280x720p @ 60", genlock);
    EXPECT_FALSE(defaultGenlock("1600x1200p", genlock));
}

}  // namespace
