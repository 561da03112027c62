#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "datacom/ThreadSafety.h"

namespace datacom {

/// A standard mutex as a lock the thread-safety analysis knows, so that
/// members can be declared DATACOM_GUARDED_BY it: the same object inside, the
/// same size and behaviour.
template <typename Native>
class DATACOM_CAPABILITY("mutex") BasicMutex {
public:
    void lock() DATACOM_ACQUIRE() DATACOM_NO_THREAD_SAFETY_ANALYSIS { native.lock(); }
    void unlock() DATACOM_RELEASE() DATACOM_NO_THREAD_SAFETY_ANALYSIS { native.unlock(); }
    bool try_lock() DATACOM_TRY_ACQUIRE(true) DATACOM_NO_THREAD_SAFETY_ANALYSIS { return native.try_lock(); }

protected:
    Native native;
};

/// A plain mutex: a second lock() on the same thread deadlocks.
class DATACOM_CAPABILITY("mutex") Mutex : public BasicMutex<std::mutex> {
public:
    /// Waits on `wake` for at most `period`, the mutex released meanwhile and
    /// held again on return, as std::condition_variable::wait_for does.
    template <typename Rep, typename Period>
    std::cv_status waitFor(std::condition_variable& wake, const std::chrono::duration<Rep, Period>& period)
        DATACOM_REQUIRES(this) DATACOM_NO_THREAD_SAFETY_ANALYSIS {
        std::unique_lock<std::mutex> held(native, std::adopt_lock);
        const std::cv_status status = wake.wait_for(held, period);
        held.release();  // locked again: the caller's scope unlocks it
        return status;
    }
};

/// A mutex its holder may take again. The analysis does not model re-entry: it
/// checks that guarded members are used with the lock held, and a second
/// acquisition within one function is reported, so re-entry goes through calls.
class DATACOM_CAPABILITY("mutex") RecursiveMutex : public BasicMutex<std::recursive_mutex> {};

/// Holds a lock for its scope: the std::lock_guard the analysis can follow,
/// for a Mutex, a RecursiveMutex or a DataHolder.
template <typename Lockable>
class DATACOM_SCOPED_CAPABILITY ScopedLock {
public:
    explicit ScopedLock(Lockable& lockable) DATACOM_ACQUIRE(lockable) : held(lockable) { held.lock(); }
    ~ScopedLock() DATACOM_RELEASE() { held.unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    Lockable& held;
};

}  // namespace datacom
