#ifndef HOMELOOM_CLOCK_MACHINE_H
#define HOMELOOM_CLOCK_MACHINE_H

#include <time.h>

#include <cstdint>

/// What lies below the clock: the functions that it covers, and plain calls of the system. Nothing here is seen by a
/// sanitizer, and no standard template is used whose code a sanitizer's build could share with it.
namespace homeloom::clock {

constexpr std::int64_t kSecond = 1'000'000'000;

/// The function of this name that a program without the clock would have called: a sanitizer's, else the C library's.
void* functionBelow(const char* name);
/// The C library's own, past any sanitizer.
void* functionOfLibrary(const char* name);

/// A function below, looked up at its first call. For static objects.
template <typename Function>
struct Below {
    const char* name;
    void* (*lookUp)(const char*) = functionBelow;
    Function* found = nullptr;

    Function* operator*() {
        Function* function = __atomic_load_n(&found, __ATOMIC_ACQUIRE);
        if (function == nullptr) {
            function = reinterpret_cast<Function*>(lookUp(name));
            __atomic_store_n(&found, function, __ATOMIC_RELEASE);
        }
        return function;
    }
};

/// The system call, past the clock; -1 and errno when it fails.
long systemCall(long number, long a = 0, long b = 0, long c = 0, long d = 0, long e = 0, long f = 0);

template <typename Type>
long toLong(Type* pointer) {
    return reinterpret_cast<long>(pointer);
}

/// The machine's time of one of the system's clocks, in nanoseconds.
std::int64_t machineTime(clockid_t clock);
/// Sleeps in the machine's time.
void nap(std::int64_t nanoseconds);
int threadId();

constexpr timespec toTimespec(std::int64_t nanoseconds) {
    const std::int64_t seconds = nanoseconds / kSecond - (nanoseconds % kSecond < 0 ? 1 : 0);
    timespec time{};
    time.tv_sec = static_cast<time_t>(seconds);
    time.tv_nsec = static_cast<decltype(time.tv_nsec)>(nanoseconds - seconds * kSecond);
    return time;
}

/// Far times are far, and never run over.
constexpr std::int64_t toNanoseconds(std::int64_t seconds, std::int64_t nanoseconds) {
    constexpr std::int64_t kMost = INT64_MAX / kSecond / 4;
    return (seconds > kMost ? kMost : seconds < -kMost ? -kMost : seconds) * kSecond + nanoseconds;
}

/// A lock that no sanitizer sees. Held for a few lines.
class SpinLock {
public:
    explicit SpinLock(std::uint32_t& word);
    ~SpinLock() { __atomic_store_n(&_word, 0, __ATOMIC_RELEASE); }
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

private:
    std::uint32_t& _word;
};

}  // namespace homeloom::clock

#endif
