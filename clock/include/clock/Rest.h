#ifndef HOMELOOM_CLOCK_REST_H
#define HOMELOOM_CLOCK_REST_H

#include <chrono>
#include <cstdint>

/// Rest: every thread of the program, and of the programs that it has started, sleeps, and nobody is left who would
/// wake one; only time, or something from outside, can go on. It is told exactly, from what the kernel knows of each
/// thread, and never guessed from the time that has passed.
///
/// Exempt threads and the caller don't count.
namespace homeloom::clock {

/// Whether there was a moment of rest during the call. Takes a tenth of a millisecond or two.
bool isAtRest();

/// How much a program may work, in processor time, before the clock goes on without rest: a thread that asks the
/// standing clock again and again would never let it.
constexpr std::chrono::nanoseconds kMostWork = std::chrono::seconds(20);

class WorkLimit {
public:
    explicit WorkLimit(std::chrono::nanoseconds limit = kMostWork);
    void restart();
    bool isReached() const;

private:
    const std::int64_t _limit;
    std::int64_t _start = 0;
};

/// Waits for rest; false when the work limit is reached before.
bool waitForRest(std::chrono::nanoseconds limit = kMostWork);

}  // namespace homeloom::clock

#endif
