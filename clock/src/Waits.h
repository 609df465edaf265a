#ifndef HOMELOOM_CLOCK_WAITS_H
#define HOMELOOM_CLOCK_WAITS_H

#include <poll.h>
#include <pthread.h>
#include <signal.h>

#include <cstdint>

/// What the covered functions do. Each waits in the machine's time while the clock runs, and without end while it
/// stands: the clock wakes it. Deadlines are of the monotonic clock. To an exempt thread all clocks are the machine's.
namespace homeloom::clock {

/// What one of the system's clocks says to the caller.
std::int64_t timeOf(clockid_t clock);

/// The deadline that a time of one of the system's clocks stands for.
std::int64_t deadlineOf(clockid_t clock, std::int64_t time);
/// The deadline after a duration.
std::int64_t deadlineAfter(std::int64_t duration);

/// These return 0 or an error's number. One that the clock has not brought about is no timeout: it wakes for nothing.
int waitForCondition(pthread_cond_t* condition, pthread_mutex_t* mutex, std::int64_t deadline);
/// As the system call; -1 and errno when it fails. `arguments` are those of the call.
long waitForFutex(const long (&arguments)[6], std::int64_t deadline);
int pollUntil(pollfd* files, nfds_t count, std::int64_t deadline, const sigset_t* mask);
/// 0 or the error's number; `left` is how long was left of it then.
int sleepUntil(std::int64_t deadline, std::int64_t& left);

}  // namespace homeloom::clock

#endif
