#pragma once

#include <chrono>
#include <condition_variable>

#include "datacom/Mutex.h"

// Counts the target probes (detached threads of testConnectionToTarget) that
// are still running, so that the owner of the event sink they report to can
// wait for them before dropping it. The daemon's sink, the channel manager,
// lives for the whole process and never waits; a test waits in its harness.
// A process-wide object that is never destroyed, so that a probe still
// running at exit finds it intact. Thread-safe.
class ProbeRegistry {
public:
    static ProbeRegistry& instance();

    // A probe starts (called before its thread is made) and ends (the last
    // thing its thread does).
    void begin();
    void end();
    int running() const;
    // True when no probe runs any more, false when `limit` passed first.
    bool waitIdle(std::chrono::milliseconds limit);

private:
    ProbeRegistry() = default;
    mutable datacom::Mutex mutex;
    std::condition_variable idle;
    int count DATACOM_GUARDED_BY(mutex) = 0;
};
