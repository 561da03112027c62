#include "side/ProbeRegistry.h"

ProbeRegistry& ProbeRegistry::instance() {
    // Never destroyed: a detached probe may still end after main returned.
    static ProbeRegistry* registry = new ProbeRegistry();
    return *registry;
}

void ProbeRegistry::begin() {
    std::lock_guard<std::mutex> guard(mutex);
    ++count;
}

void ProbeRegistry::end() {
    std::lock_guard<std::mutex> guard(mutex);
    if (--count == 0)
        idle.notify_all();
}

int ProbeRegistry::running() const {
    std::lock_guard<std::mutex> guard(mutex);
    return count;
}

bool ProbeRegistry::waitIdle(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    return idle.wait_for(lock, limit, [this] { return count == 0; });
}
