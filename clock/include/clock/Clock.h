#ifndef HOMELOOM_CLOCK_CLOCK_H
#define HOMELOOM_CLOCK_CLOCK_H

#include <chrono>

/// The clock of a program: what std::chrono, GLib and every other library in it take for the time, monotonic clocks and
/// dates alike. It shows the machine's time until somebody turns it.
///
/// A program has this clock when the objects of homeloom-clock are linked into it. Nothing else needs to know.
/// All functions may be called from any thread; those that turn wait for each other.
namespace homeloom::clock {

using Duration = std::chrono::nanoseconds;

/// The clock goes with the machine's time, behind by as long as it stood still, ahead by as much as it was turned.
void run();
/// The clock stands still until it is turned: whoever waits for a time waits until then, slow machine or not.
void stand();
bool isStanding();

/// The monotonic clock's time, from the start of the machine; the date, from the year 1970 on. For all threads alike.
Duration now();
Duration date();

/// Has everything happen that happens within this duration, each in its order, and returns when that is done and the
/// program rests: the clock goes from deadline to deadline and stands still while the woken ones work. More than ten
/// minutes are one step, without such an order. Afterwards the clock runs or stands as before.
/// The caller may hold no lock that others need for what they do meanwhile.
void advance(Duration duration);

/// Moves a standing clock to the next moment for which somebody waits, if that is no later than `end` by now(), and
/// wakes the first who waits for it; whoever waits for the same moment comes with the next call. False if there is
/// nobody. To be called when the program rests (see Rest.h).
bool leapToNextDeadline(Duration end = Duration::max());

/// The next moment for which somebody waits; Duration::max() if nobody does. Those who were woken for theirs, and
/// exempt threads, don't count.
Duration nextDeadline();

/// While it lives, the clock is for its thread the machine's: what this thread waits for ends in the machine's time,
/// and the thread doesn't count when the program rests. For the one who turns.
class Exempt {
public:
    Exempt();
    ~Exempt();
    Exempt(const Exempt&) = delete;
    Exempt& operator=(const Exempt&) = delete;
};

/// Shares the clock of the program that started this one, in which it is turned; to be called first of all in main().
/// False if that program has none; then this one keeps its own.
bool join();

}  // namespace homeloom::clock

#endif
