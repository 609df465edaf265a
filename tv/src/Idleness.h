#ifndef HOMELOOM_TV_IDLENESS_H
#define HOMELOOM_TV_IDLENESS_H

#include <chrono>
#include <cstdint>
#include <functional>

namespace homeloom::tv {

/// Tells when the program has come to rest: all its threads but the caller's sleep, those of the hub control
/// application too, and nothing happened meanwhile. A guess by time alone would be wrong on a busy machine, where a
/// thread that has work may wait long for its turn.
///
/// Work that a timer will begin doesn't count.
class Idleness {
public:
    /// `activity` is a number that changes with every event.
    explicit Idleness(std::function<std::uint64_t()> activity);

    /// Forgets the looks so far.
    void restart();
    /// Looks now, and tells for how long each look has found the program at rest. To be called every few milliseconds.
    std::chrono::milliseconds restingFor();

private:
    using Clock = std::chrono::steady_clock;

    std::function<std::uint64_t()> _activity;
    std::uint64_t _lastActivity;
    Clock::time_point _since;
};

}  // namespace homeloom::tv

#endif
