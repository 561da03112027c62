#pragma once

#include <cstddef>
#include <string>

// A shell line run with a time bound: "/bin/sh -c line" in a process group
// of its own, standard input from /dev/null, standard output read through a
// pipe. A command still running when the bound expires is killed with its
// whole group, so a probe never outlives its bound. Any thread may call;
// nothing is shared between calls.
struct BoundedRun {
    bool started = false;   // the shell could be started
    bool timedOut = false;  // killed at the bound
    int status = -1;        // exit status; 128 + signal when killed by one
    std::string output;     // the first `maxOutput` bytes of standard output
};

// The rest of the output beyond `maxOutput` is read and dropped, so that the
// command never blocks on a full pipe.
BoundedRun runBounded(const std::string& line, int limitMs, std::size_t maxOutput);
