#ifndef HOMELOOM_HOMELOOM_COMMON_MAINLOOPTIMER_H
#define HOMELOOM_HOMELOOM_COMMON_MAINLOOPTIMER_H

#include <functional>
#include <memory>
#include <vector>

#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

/// A timer on GLib's main loop that fires once at most and has an exact end.
///
/// All operations may be called from any thread, from the callback too. Their locks are leaves. The callback runs on
/// the main loop and under no lock of the timer's; what it throws is logged.
class MainLoopTimer {
public:
    MainLoopTimer();
    /// Disarms. The callback may be running, or be the one that destroys its timer.
    ~MainLoopTimer();
    MainLoopTimer(const MainLoopTimer&) = delete;
    MainLoopTimer& operator=(const MainLoopTimer&) = delete;

    /// Arms the timer in place of what it was armed for before. Answers GLib's id of the source, 0 when there is none.
    unsigned Start(unsigned milliseconds, std::function<void()> callback);
    /// The callback does not begin any more. One that has begun is not waited for, so that any lock may be held here.
    void Disarm();
    /// The callback neither runs nor will run, and GLib will not come back from it into this library, also where it
    /// had decided to call. Not to be called with a lock held that the callback takes. Called from the callback itself,
    /// it only disarms.
    void Cancel();

    /// Waits for the callbacks of all timers that are disarmed or have fired, destroyed timers included: what Cancel
    /// does for one. For the teardown, after which the library may be closed.
    static void WaitForCallbacks();

private:
    struct Run;
    using Runs = std::vector<std::shared_ptr<Run>>;

    static int onTimeout(void* userData);
    static void waitFor(const Runs& runs);

    // Every run until GLib has let go of it. Outlives the singletons that have timers.
    static Mutex runsMutex;
    static Runs runs GUARDED_BY(runsMutex);

    const unsigned long _id;
    Mutex _mutex;
    std::shared_ptr<Run> _run GUARDED_BY(_mutex);  // the last one that was started, unless disarmed
};

}  // namespace VMFramework::HomeLoom

#endif
