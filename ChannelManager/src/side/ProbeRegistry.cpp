#include "side/ProbeRegistry.h"

using datacom::Mutex;
using datacom::ScopedLock;

ProbeRegistry& ProbeRegistry::instance() {
    // Never destroyed: a detached probe may still end after main returned.
    static ProbeRegistry* registry = new ProbeRegistry();
    return *registry;
}

void ProbeRegistry::begin() {
    ScopedLock<Mutex> guard(mutex);
    ++count;
}

void ProbeRegistry::end() {
    ScopedLock<Mutex> guard(mutex);
    if (--count == 0)
        idle.notify_all();
}

int ProbeRegistry::running() const {
    ScopedLock<Mutex> guard(mutex);
    return count;
}

bool ProbeRegistry::waitIdle(std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    ScopedLock<Mutex> guard(mutex);
    while (count != 0) {
        const auto left = deadline - std::chrono::steady_clock::now();
        if (left <= std::chrono::steady_clock::duration::zero())
            return false;
        mutex.waitFor(idle, left);
    }
    return true;
}
