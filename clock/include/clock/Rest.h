#ifndef HOMELOOM_CLOCK_REST_H
#define HOMELOOM_CLOCK_REST_H

#include <chrono>

/// Rest: every thread of the program, and of the programs that it has started, sleeps, and nobody is left who would
/// wake one; only time, or something from outside, can go on. It is told exactly, from what the kernel knows of each
/// thread, and never guessed from the time that has passed.
///
/// Exempt threads and the caller don't count.
namespace homeloom::clock {

/// Whether there was a moment of rest during the call. Takes a tenth of a millisecond or two.
bool isAtRest();

/// Waits for rest. False when the program has worked for `limit` of processor time and found none: a thread that asks
/// the standing clock again and again would never let it go on.
bool waitForRest(std::chrono::nanoseconds limit = std::chrono::seconds(20));

}  // namespace homeloom::clock

#endif
