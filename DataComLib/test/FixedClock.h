#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

#include "datacom/SysmgtRoot.h"
#include "datacom/WallClock.h"

// Puts the library's wall clock at a fixed moment, in UTC, while it lives:
// 2040-02-29 12:34:56.789 unless told otherwise, a leap day well past the
// moment a 32-bit time_t wraps (2038-01-19 03:14:08).
class FixedClock {
public:
    static constexpr int64_t kLeapDay2040 = 2214131696;

    explicit FixedClock(int64_t seconds = kLeapDay2040, long nanoseconds = 789000000) {
        moment.tv_sec = static_cast<time_t>(seconds);
        moment.tv_nsec = nanoseconds;
        const char* zone = std::getenv("TZ");
        hadZone = zone != nullptr;
        savedZone = hadZone ? zone : "";
        datacom::setTimeZone("UTC");
        previous = datacom::setWallClockSource([](timespec* now) { *now = moment; });
    }
    ~FixedClock() {
        datacom::setWallClockSource(previous);
        if (hadZone) {
            datacom::setTimeZone(savedZone);
        } else {
            unsetenv("TZ");
            tzset();
        }
    }
    FixedClock(const FixedClock&) = delete;
    FixedClock& operator=(const FixedClock&) = delete;

private:
    static inline timespec moment{};
    datacom::WallClockSource previous = nullptr;
    bool hadZone = false;
    std::string savedZone;
};
