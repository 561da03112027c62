#include "datacom/WallClock.h"

#include <atomic>

namespace datacom {

namespace {

void systemClock(timespec* now) {
    clock_gettime(CLOCK_REALTIME, now);
}

std::atomic<WallClockSource> source{&systemClock};

}  // namespace

timespec wallClockNow() {
    timespec now{};
    source.load()(&now);
    return now;
}

WallClockSource setWallClockSource(WallClockSource replacement) {
    return source.exchange(replacement ? replacement : &systemClock);
}

std::string eventTimeText(time_t when) {
    struct tm local {};
    localtime_r(&when, &local);
    char text[32];
    size_t length = strftime(text, sizeof text, "%d-%b-%y  %T", &local);
    return std::string(text, length);
}

}  // namespace datacom
