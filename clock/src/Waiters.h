#ifndef HOMELOOM_CLOCK_WAITERS_H
#define HOMELOOM_CLOCK_WAITERS_H

#include <cstdint>

/// Those of this program who wait for a time.
namespace homeloom::clock {

/// A thread that waits for a time, on its stack for as long as it waits. The clock wakes it, as often as need be: one
/// that is here and not yet asleep must not miss it.
class Waiter {
public:
    enum class Bed { Condition, Futex, File };

    /// `address` is the condition's or the futex's; for a file there is none, but wakeFile().
    Waiter(std::int64_t deadline, Bed bed, void* address = nullptr);
    ~Waiter();
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;

    bool isOver() const;
    /// How long it still is by the clock, not below 0.
    std::int64_t left() const;
    /// Readable when the clock wakes this waiter.
    int wakeFile() const { return _file; }
    /// Makes it unreadable again.
    void takeWake() const;

private:
    friend class Waiters;

    void wake() const;

    const std::int64_t _deadline;
    const Bed _bed;
    void* const _address;
    int _file = -1;
    std::uint64_t _order = 0;
    bool _isWoken = false;
    bool _isWokenAgain = false;
    Waiter* _next = nullptr;
    Waiter* _previous = nullptr;
};

class Waiters {
public:
    /// The first deadline of those that haven't been woken for it; kNever if nobody waits.
    static std::int64_t nextDeadline();
    /// Wakes the first of those whose time is the earliest.
    static void wakeFirst();
    /// Wakes those whose time has come, in the order of their times.
    static void wakeOverdue();
    static void wakeAll();
    /// Wakes those once more that have been woken and are still here. False if there are none that weren't woken so
    /// before: such a one sleeps elsewhere, for a mutex that somebody keeps.
    static bool wakeAgain();

private:
    friend class Waiter;

    static void add(Waiter& waiter);
    static void remove(Waiter& waiter);
    static Waiter* first();
    static void tellFirst();
};

}  // namespace homeloom::clock

#endif
