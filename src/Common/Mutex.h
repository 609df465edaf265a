#ifndef HOMELOOM_COMMON_MUTEX_H
#define HOMELOOM_COMMON_MUTEX_H

#include <mutex>
#include <shared_mutex>

// What a mutex guards and in which order it is taken, in words that clang checks (-Wthread-safety, scripts/check-tidy).
// Other compilers see nothing of them.
#if defined(__clang__)
#define HL_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define HL_THREAD_SAFETY(attribute)
#endif
/// The member is read and written under that mutex only.
#define GUARDED_BY(mutex) HL_THREAD_SAFETY(guarded_by(mutex))
/// The function is called with that mutex held.
#define REQUIRES(...) HL_THREAD_SAFETY(requires_capability(__VA_ARGS__))
/// The function is called without that mutex, which it takes.
#define EXCLUDES(...) HL_THREAD_SAFETY(locks_excluded(__VA_ARGS__))
/// A thread that holds this mutex may not take those.
#define ACQUIRED_AFTER(...) HL_THREAD_SAFETY(acquired_after(__VA_ARGS__))

namespace VMFramework::HomeLoom {

/// A std::mutex whose guarding is checked. A recursive one can't be: the analysis takes a second lock for a fault.
class HL_THREAD_SAFETY(capability("mutex")) Mutex {
public:
    void lock() HL_THREAD_SAFETY(acquire_capability()) { _mutex.lock(); }
    void unlock() HL_THREAD_SAFETY(release_capability()) { _mutex.unlock(); }

private:
    std::mutex _mutex;
};

/// The same of a std::shared_mutex.
class HL_THREAD_SAFETY(capability("mutex")) SharedMutex {
public:
    void lock() HL_THREAD_SAFETY(acquire_capability()) { _mutex.lock(); }
    void unlock() HL_THREAD_SAFETY(release_capability()) { _mutex.unlock(); }
    void lock_shared() HL_THREAD_SAFETY(acquire_shared_capability()) { _mutex.lock_shared(); }
    void unlock_shared() HL_THREAD_SAFETY(release_shared_capability()) { _mutex.unlock_shared(); }

private:
    std::shared_mutex _mutex;
};

/// Holds a mutex for a scope.
template <typename Kind>
class HL_THREAD_SAFETY(scoped_lockable) Locked {
public:
    explicit Locked(Kind& mutex) HL_THREAD_SAFETY(acquire_capability(mutex)) : _mutex(mutex) { _mutex.lock(); }
    ~Locked() HL_THREAD_SAFETY(release_capability()) { _mutex.unlock(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    Kind& _mutex;
};
using MutexLock = Locked<Mutex>;

/// Shares a mutex with other readers for a scope.
class HL_THREAD_SAFETY(scoped_lockable) SharedLock {
public:
    explicit SharedLock(SharedMutex& mutex) HL_THREAD_SAFETY(acquire_shared_capability(mutex)) : _mutex(mutex) {
        _mutex.lock_shared();
    }
    ~SharedLock() HL_THREAD_SAFETY(release_capability()) { _mutex.unlock_shared(); }
    SharedLock(const SharedLock&) = delete;
    SharedLock& operator=(const SharedLock&) = delete;

private:
    SharedMutex& _mutex;
};

}  // namespace VMFramework::HomeLoom

#endif
