#include "Waits.h"

#include <linux/futex.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Machine.h"
#include "Page.h"
#include "Programs.h"
#include "Waiters.h"

namespace homeloom::clock {

namespace {

using ConditionWait = int(pthread_cond_t*, pthread_mutex_t*);
using ConditionClockWait = int(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*);
using Poll = int(pollfd*, nfds_t, const timespec*, const sigset_t*);

Below<ConditionWait> conditionWaitBelow{"pthread_cond_wait"};
Below<ConditionClockWait> conditionClockWaitBelow{"pthread_cond_clockwait"};
Below<Poll> pollBelow{"ppoll"};

// When nothing can wake whoever polls, it looks from time to time.
constexpr std::int64_t kLookInterval = 10'000'000;

std::int64_t leftUntil(std::int64_t deadline) {
    const std::int64_t left = deadline - timeOf(CLOCK_MONOTONIC);
    return left > 0 ? left : 0;
}

// In the machine's time from now on.
int waitForConditionFor(pthread_cond_t* condition, pthread_mutex_t* mutex, std::int64_t left) {
    const timespec end = toTimespec(machineTime(CLOCK_MONOTONIC) + left);
    return (*conditionClockWaitBelow)(condition, mutex, CLOCK_MONOTONIC, &end);
}

// `left` below 0 waits without end. The kernel's own layout of times is that of a long here.
long waitForFutexFor(const long (&arguments)[6], std::int64_t left) {
    struct {
        long seconds;
        long nanoseconds;
    } time{};
    const int operation = static_cast<int>(arguments[1]);
    const bool isAbsolute = (operation & FUTEX_CMD_MASK) == FUTEX_WAIT_BITSET;
    if (left >= 0) {
        const bool isDate = (operation & FUTEX_CLOCK_REALTIME) != 0;
        const timespec end =
            toTimespec(left + (isAbsolute ? machineTime(isDate ? CLOCK_REALTIME : CLOCK_MONOTONIC) : 0));
        time = {static_cast<long>(end.tv_sec), static_cast<long>(end.tv_nsec)};
    }
    return systemCall(SYS_futex, arguments[0], arguments[1], arguments[2], left >= 0 ? toLong(&time) : 0, arguments[4],
                      arguments[5]);
}

int pollFor(pollfd* files, nfds_t count, std::int64_t left, const sigset_t* mask) {
    const timespec time = toTimespec(left);
    return (*pollBelow)(files, count, left >= 0 ? &time : nullptr, mask);
}

// The caller's files and the one that the clock wakes by.
class Files {
public:
    Files(const pollfd* files, nfds_t count, int wakeFile) : _files(_few), _count(count) {
        if (count >= sizeof _few / sizeof *_few) {
            _files = static_cast<pollfd*>(std::malloc((count + 1) * sizeof(pollfd)));
            if (_files == nullptr) {
                std::abort();
            }
        }
        if (count > 0) {
            std::memcpy(_files, files, count * sizeof(pollfd));
        }
        _files[count] = {wakeFile, POLLIN, 0};
    }
    ~Files() {
        if (_files != _few) {
            std::free(_files);
        }
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    pollfd* all() { return _files; }
    bool isWoken() const { return _files[_count].revents != 0; }
    void copyEventsTo(pollfd* files) const {
        for (nfds_t i = 0; i < _count; ++i) {
            files[i].revents = _files[i].revents;
        }
    }

private:
    pollfd _few[16];
    pollfd* _files;
    const nfds_t _count;
};

}  // namespace

std::int64_t timeOf(clockid_t clock) {
    return isExempt() ? machineTime(clock) : shown(clock);
}

std::int64_t deadlineOf(clockid_t clock, std::int64_t time) {
    return deadlineAfter(time - timeOf(clock));
}

std::int64_t deadlineAfter(std::int64_t duration) {
    const std::int64_t now = timeOf(CLOCK_MONOTONIC);
    return duration < kNever - 1 - now ? now + duration : kNever - 1;
}

int waitForCondition(pthread_cond_t* condition, pthread_mutex_t* mutex, std::int64_t deadline) {
    if (isExempt()) {
        return waitForConditionFor(condition, mutex, leftUntil(deadline));
    }
    const Waiter waiter(deadline, Waiter::Bed::Condition, condition);
    const bool isAsked = stands() && !waiter.isOver();
    const int result =
        isAsked ? (*conditionWaitBelow)(condition, mutex) : waitForConditionFor(condition, mutex, waiter.left());
    if (result == 0 || result == ETIMEDOUT) {
        // While the clock stands, a signal and the clock's own wake look the same. To whoever was meant by a signal
        // that came with the end of its time, another wake is owed: the clock wakes all who wait for the condition.
        return waiter.isOver() && (isAsked || result == ETIMEDOUT) ? ETIMEDOUT : 0;
    }
    return result;
}

long waitForFutex(const long (&arguments)[6], std::int64_t deadline) {
    if (isExempt()) {
        return waitForFutexFor(arguments, leftUntil(deadline));
    }
    const Waiter waiter(deadline, Waiter::Bed::Futex, reinterpret_cast<void*>(arguments[0]));
    const bool isAsked = stands() && !waiter.isOver();
    const long result = waitForFutexFor(arguments, isAsked ? -1 : waiter.left());
    if (result == 0 && isAsked && waiter.isOver()) {
        errno = ETIMEDOUT;
        return -1;
    }
    return result < 0 && errno == ETIMEDOUT && !waiter.isOver() ? 0 : result;
}

int pollUntil(pollfd* files, nfds_t count, std::int64_t deadline, const sigset_t* mask) {
    if (isExempt()) {
        return pollFor(files, count, leftUntil(deadline), mask);
    }
    const Waiter waiter(deadline, Waiter::Bed::File);
    Files watched(files, count, waiter.wakeFile());
    while (true) {
        const bool isLast = waiter.isOver();
        const std::int64_t left = !stands() ? waiter.left() : waiter.wakeFile() >= 0 ? -1 : kLookInterval;
        int result = pollFor(watched.all(), count + 1, isLast ? 0 : left, mask);
        if (result < 0) {
            return result;
        }
        if (watched.isWoken()) {
            waiter.takeWake();
            --result;
        }
        if (result > 0 || isLast) {
            watched.copyEventsTo(files);
            return result;
        }
    }
}

int sleepUntil(std::int64_t deadline, std::int64_t& left) {
    const int result = pollUntil(nullptr, 0, deadline, nullptr) < 0 ? errno : 0;
    left = leftUntil(deadline);
    return result;
}

}  // namespace homeloom::clock
