// The C library's functions of time, as every library of the program comes to call them.
#include <linux/futex.h>
#include <poll.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdint>

#include "Machine.h"
#include "Waits.h"

namespace clk = homeloom::clock;

namespace {

constexpr std::int64_t kMillisecond = 1'000'000;

clk::Below<int(clockid_t, timespec*)> clockGetTimeBelow{"clock_gettime"};
clk::Below<int(pollfd*, nfds_t, int)> pollBelow{"poll"};
clk::Below<int(pollfd*, nfds_t, const timespec*, const sigset_t*)> ppollBelow{"ppoll"};

// Times of this program's own layout, and of the 64-bit one beside it that 32-bit programs have.
template <typename Time>
bool isValid(const Time* time) {
    return time->tv_nsec >= 0 && time->tv_nsec < clk::kSecond;
}

template <typename Time>
std::int64_t from(const Time* time) {
    return clk::toNanoseconds(time->tv_sec, time->tv_nsec);
}

template <typename Time>
void to(std::int64_t nanoseconds, Time* time) {
    const std::int64_t seconds = nanoseconds / clk::kSecond - (nanoseconds % clk::kSecond < 0 ? 1 : 0);
    time->tv_sec = static_cast<decltype(time->tv_sec)>(seconds);
    time->tv_nsec = static_cast<decltype(time->tv_nsec)>(nanoseconds - seconds * clk::kSecond);
}

std::int64_t date() {
    return clk::timeOf(CLOCK_REALTIME);
}

template <typename Time>
int getTime(clockid_t clock, Time* time) {
    // The one below knows which clocks there are, and a sanitizer what is written here.
    timespec machine{};
    const int result = (*clockGetTimeBelow)(clock, &machine);
    if (result == 0) {
        to(clk::timeOf(clock), time);
    }
    return result;
}

// The clock that a condition was made for stands in it.
clockid_t clockOf(const pthread_cond_t* condition) {
    constexpr unsigned kIsMonotonic = 2;
    const unsigned flags = __atomic_load_n(&condition->__data.__wrefs, __ATOMIC_RELAXED);
    return (flags & kIsMonotonic) != 0 ? CLOCK_MONOTONIC : CLOCK_REALTIME;
}

template <typename Time>
int waitForCondition(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const Time* time) {
    if (!isValid(time) || (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC)) {
        return EINVAL;
    }
    return clk::waitForCondition(condition, mutex, clk::deadlineOf(clock, from(time)));
}

template <typename Time>
int sleep(std::int64_t deadline, Time* rest) {
    std::int64_t left = 0;
    const int result = clk::sleepUntil(deadline, left);
    if (result != 0 && rest != nullptr) {
        to(left, rest);
    }
    return result;
}

template <typename Time>
int sleepBy(clockid_t clock, int flags, const Time* time, Time* rest) {
    if (!isValid(time) || time->tv_sec < 0) {
        return EINVAL;
    }
    const bool isAbsolute = (flags & TIMER_ABSTIME) != 0;
    return sleep(isAbsolute ? clk::deadlineOf(clock, from(time)) : clk::deadlineAfter(from(time)),
                 isAbsolute ? nullptr : rest);
}

template <typename Time>
int sleepFor(const Time* time, Time* rest) {
    const int result = sleepBy(CLOCK_MONOTONIC, 0, time, rest);
    if (result == 0) {
        return 0;
    }
    errno = result;
    return -1;
}

template <typename Time>
int pollFor(pollfd* files, nfds_t count, const Time* time, const sigset_t* mask) {
    if (time != nullptr && isValid(time) && from(time) > 0) {
        return clk::pollUntil(files, count, clk::deadlineAfter(from(time)), mask);
    }
    const timespec none = time != nullptr ? timespec{static_cast<time_t>(time->tv_sec),
                                                     static_cast<decltype(timespec::tv_nsec)>(time->tv_nsec)}
                                          : timespec{};
    return (*ppollBelow)(files, count, time != nullptr ? &none : nullptr, mask);
}

template <typename Time>
long waitForFutex(const long (&arguments)[6]) {
    const auto* const time = reinterpret_cast<const Time*>(arguments[3]);
    const int operation = static_cast<int>(arguments[1]);
    const int command = operation & FUTEX_CMD_MASK;
    if (!isValid(time) || time->tv_sec < 0) {
        errno = EINVAL;
        return -1;
    }
    const clockid_t clock = (operation & FUTEX_CLOCK_REALTIME) != 0 ? CLOCK_REALTIME : CLOCK_MONOTONIC;
    return clk::waitForFutex(
        arguments, command == FUTEX_WAIT ? clk::deadlineAfter(from(time)) : clk::deadlineOf(clock, from(time)));
}

bool isTimedFutexWait(const long (&arguments)[6]) {
    const int command = static_cast<int>(arguments[1]) & FUTEX_CMD_MASK;
    return (command == FUTEX_WAIT || command == FUTEX_WAIT_BITSET) && arguments[3] != 0;
}

struct Time64 {
    std::int64_t tv_sec;
    std::int32_t tv_nsec;
    std::int32_t padding;
};

// As the kernel has it in a classic call.
struct TimeLong {
    long tv_sec;
    long tv_nsec;
};

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    return getTime(clock, time);
}

int gettimeofday(timeval* time, void* zone) noexcept {
    const std::int64_t now = date();
    time->tv_sec = static_cast<decltype(time->tv_sec)>(now / clk::kSecond);
    time->tv_usec = static_cast<decltype(time->tv_usec)>(now % clk::kSecond / 1000);
    if (zone != nullptr) {
        *static_cast<struct timezone*>(zone) = {};
    }
    return 0;
}

time_t time(time_t* time) noexcept {
    const auto now = static_cast<time_t>(date() / clk::kSecond);
    if (time != nullptr) {
        *time = now;
    }
    return now;
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* time) {
    return waitForCondition(condition, mutex, clockOf(condition), time);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* time) {
    return waitForCondition(condition, mutex, clock, time);
}

int nanosleep(const timespec* time, timespec* rest) {
    return sleepFor(time, rest);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* rest) {
    return sleepBy(clock, flags, time, rest);
}

int poll(pollfd* files, nfds_t count, int timeout) {
    return timeout > 0 ? clk::pollUntil(files, count, clk::deadlineAfter(timeout * kMillisecond), nullptr)
                       : (*pollBelow)(files, count, timeout);
}

int ppoll(pollfd* files, nfds_t count, const timespec* time, const sigset_t* mask) {
    return pollFor(files, count, time, mask);
}

// What the compiler makes of poll() in libraries that are built with its checks.
int __poll_chk(pollfd* files, nfds_t count, int timeout, std::size_t) {
    return poll(files, count, timeout);
}

int __ppoll_chk(pollfd* files, nfds_t count, const timespec* time, const sigset_t* mask, std::size_t) {
    return ppoll(files, count, time, mask);
}

// A future's wait and that of GLib's conditions.
long syscall(long number, ...) noexcept {
    long arguments[6];
    va_list list;
    va_start(list, number);
    for (long& argument : arguments) {
        argument = va_arg(list, long);
    }
    va_end(list);
    if (number == SYS_futex && isTimedFutexWait(arguments)) {
        return waitForFutex<TimeLong>(arguments);
    }
#ifdef SYS_futex_time64
    if (number == SYS_futex_time64 && isTimedFutexWait(arguments)) {
        return waitForFutex<Time64>(arguments);
    }
#endif
    return clk::systemCall(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}

#if __SIZEOF_LONG__ == 4
// The names that the C library gives these in 32-bit libraries whose times have 64 bits.
int __clock_gettime64(clockid_t clock, Time64* time) noexcept {
    return getTime(clock, time);
}

int __gettimeofday64(Time64* time, void* zone) noexcept {
    const std::int64_t now = date();
    if (time != nullptr) {
        // Microseconds, in 64 bits themselves.
        const std::int64_t fields[] = {now / clk::kSecond, now % clk::kSecond / 1000};
        __builtin_memcpy(time, fields, sizeof fields);
    }
    if (zone != nullptr) {
        *static_cast<struct timezone*>(zone) = {};
    }
    return 0;
}

std::int64_t __time64(std::int64_t* time) noexcept {
    const std::int64_t now = date() / clk::kSecond;
    if (time != nullptr) {
        *time = now;
    }
    return now;
}

int __pthread_cond_timedwait64(pthread_cond_t* condition, pthread_mutex_t* mutex, const Time64* time) {
    return waitForCondition(condition, mutex, clockOf(condition), time);
}

int __pthread_cond_clockwait64(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const Time64* time) {
    return waitForCondition(condition, mutex, clock, time);
}

int __nanosleep64(const Time64* time, Time64* rest) {
    return sleepFor(time, rest);
}

int __clock_nanosleep_time64(clockid_t clock, int flags, const Time64* time, Time64* rest) {
    return sleepBy(clock, flags, time, rest);
}

int __ppoll64(pollfd* files, nfds_t count, const Time64* time, const sigset_t* mask) {
    return pollFor(files, count, time, mask);
}
#endif

}  // extern "C"
