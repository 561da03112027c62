#pragma once

#include <ctime>
#include <string>

namespace datacom {

// The appliance runs past January 2038: every time of day it keeps (log
// stamps, event times) is a 64-bit time_t. 32-bit builds get it from
// _TIME_BITS=64; a build without it stops here.
static_assert(sizeof(time_t) == 8, "time_t must be 64 bits: build with _TIME_BITS=64 and _FILE_OFFSET_BITS=64");

// The wall clock that log stamps and event times read. It is one replaceable
// source so that a test can put the daemon's clock at a chosen moment (after
// 2038, say) without changing the machine's.
using WallClockSource = void (*)(timespec* now);

// The current time from the source (CLOCK_REALTIME unless replaced).
timespec wallClockNow();

// Replaces the source; nullptr restores the system clock. Returns the previous
// source. Meant for start-up or tests, not for a running engine.
WallClockSource setWallClockSource(WallClockSource replacement);

// Local time as events carry it, e.g. "22-Nov-26  02:26:06".
std::string eventTimeText(time_t when);

}  // namespace datacom
