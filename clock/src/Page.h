#ifndef HOMELOOM_CLOCK_PAGE_H
#define HOMELOOM_CLOCK_PAGE_H

#include <time.h>

#include <cstdint>

/// What the clock shows. It lies in a page of memory that the program shares with those that it starts.
namespace homeloom::clock {

constexpr std::int64_t kNever = INT64_MAX;

/// What a system's clock shows; nothing but the machine's time for those that count processor time.
std::int64_t shown(clockid_t clock);
/// The monotonic clock.
std::int64_t shown();
bool stands();

/// Changes what is shown; one thread at a time. The monotonic clock never goes back.
void makeStand();
void makeRun();
void show(std::int64_t monotonic);

// ---- The other programs ----

/// Grows with each call to the other programs: whoever waits for a time that has come is to be woken, or everybody.
std::uint32_t callsToFollowers();
std::uint32_t callsToAllWaiting();
void callFollowers(bool everybody);
/// Returns when there was another call than this one.
void waitForCall(std::uint32_t last);

/// The first deadline in a program that has joined, not counting those that are stopped.
std::int64_t nextDeadlineOfFollowers();

bool joinPage();
bool hasJoined();
/// Tells the first deadline of this program, which has joined.
void tellDeadline(std::int64_t deadline);

}  // namespace homeloom::clock

#endif
