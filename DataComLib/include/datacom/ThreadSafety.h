#pragma once

/// @file
/// Lock rules written where they live, for Clang's thread-safety analysis
/// (-Wthread-safety, an error in this tree's clang builds): a member says which
/// lock guards it, a function which lock it needs held or must not be called
/// with. With any other compiler the macros expand to nothing.
///
/// The names carry the library's prefix because this header is installed with
/// the others: a daemon that has macros of its own under the short names keeps them.

#if defined(__clang__)
#define DATACOM_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define DATACOM_THREAD_ANNOTATION(x)
#endif

/// A class whose objects are locks.
#define DATACOM_CAPABILITY(kind) DATACOM_THREAD_ANNOTATION(capability(kind))
/// A class whose objects hold a lock for their lifetime.
#define DATACOM_SCOPED_CAPABILITY DATACOM_THREAD_ANNOTATION(scoped_lockable)
/// The member is read and written only with the lock held.
#define DATACOM_GUARDED_BY(lock) DATACOM_THREAD_ANNOTATION(guarded_by(lock))
/// What the member points to is used only with the lock held.
#define DATACOM_PT_GUARDED_BY(lock) DATACOM_THREAD_ANNOTATION(pt_guarded_by(lock))
/// The caller holds the lock(s).
#define DATACOM_REQUIRES(...) DATACOM_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The caller must not hold the lock(s): the function takes them, or waits for
/// a thread that does.
#define DATACOM_EXCLUDES(...) DATACOM_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
/// The function takes the lock (no argument: the object itself) and returns with it held.
#define DATACOM_ACQUIRE(...) DATACOM_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
/// The function releases the lock (no argument: the object itself).
#define DATACOM_RELEASE(...) DATACOM_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
/// The function takes the lock when it returns `result`.
#define DATACOM_TRY_ACQUIRE(...) DATACOM_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
/// The function's body is not checked: it is where a lock meets a primitive
/// the analysis cannot see into (the standard library's mutexes).
#define DATACOM_NO_THREAD_SAFETY_ANALYSIS DATACOM_THREAD_ANNOTATION(no_thread_safety_analysis)
