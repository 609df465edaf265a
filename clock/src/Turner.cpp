#include "clock/Turner.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "clock/Clock.h"
#include "clock/Rest.h"

namespace homeloom::clock {

Turner::Turner() : _wasStanding(isStanding()) {
    stand();
    _thread = std::thread([this] { turn(); });
}

Turner::~Turner() {
    _isOver = true;
    _thread.join();
    if (!_wasStanding) {
        run();
    }
}

void Turner::turn() {
    constexpr std::chrono::microseconds kShortestNap{50};
    constexpr std::chrono::microseconds kLongestNap{2000};
    const Exempt exempt;
    for (auto nap = kShortestNap; !_isOver;) {
        // A program that never rests, since somebody asks for the time again and again, needs it to go on all the more.
        if (waitForRest() && !_isOver && !leapToNextDeadline()) {
            std::this_thread::sleep_for(nap);
            nap = std::min(2 * nap, kLongestNap);
        } else {
            nap = kShortestNap;
        }
    }
}

}  // namespace homeloom::clock
