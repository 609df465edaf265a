#include "clock/Turner.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

#include "clock/Clock.h"
#include "clock/Rest.h"

namespace homeloom::clock {

namespace {

// Held while a turner turns, so that none does once a pause has begun.
std::mutex pausing;
int pauses = 0;
unsigned long pausesBegun = 0;

/// The number of pauses up to now, or nothing while one lasts.
std::optional<unsigned long> unpaused() {
    const std::lock_guard<std::mutex> lock(pausing);
    return pauses == 0 ? std::make_optional(pausesBegun) : std::nullopt;
}

// A pause that came and went since then may have known of the same rest, and wanted the clock to stand.
bool leapUnlessPausedSince(unsigned long begun) {
    const std::lock_guard<std::mutex> lock(pausing);
    return pauses == 0 && pausesBegun == begun && leapToNextDeadline();
}

}  // namespace

Turner::Pause::Pause() {
    const std::lock_guard<std::mutex> lock(pausing);
    ++pauses;
    ++pausesBegun;
}

Turner::Pause::~Pause() {
    const std::lock_guard<std::mutex> lock(pausing);
    --pauses;
}

Turner::Turner() : _wasStanding(isStanding()) {
    stand();
    _thread = std::thread([this] { turn(); });
}

Turner::~Turner() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isOver = true;
    }
    _wake.notify_one();
    _thread.join();
    if (!_wasStanding) {
        run();
    }
}

void Turner::turn() {
    constexpr std::chrono::microseconds kShortestNap{50};
    constexpr std::chrono::microseconds kLongestNap{2000};
    const Exempt exempt;
    auto nap = kShortestNap;
    WorkLimit limit;
    std::unique_lock<std::mutex> lock(_mutex);
    while (!_isOver) {
        lock.unlock();
        // A program that never rests, since somebody asks for the time again and again, needs it to go on all the more.
        const auto begun = unpaused();
        const bool hasTurned = begun && (isAtRest() || limit.isReached()) && leapUnlessPausedSince(*begun);
        lock.lock();
        if (hasTurned) {
            nap = kShortestNap;
            limit.restart();
        } else {
            _wake.wait_for(lock, nap, [this] { return _isOver; });
            nap = std::min(2 * nap, kLongestNap);
        }
    }
}

}  // namespace homeloom::clock
