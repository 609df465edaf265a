#include "Homeloom/Common/MainLoopTimer.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include <dlfcn.h>
#include <glib.h>
#include <gtest/gtest.h>

#include "support/Gate.h"

using VMFramework::HomeLoom::MainLoopTimer;

namespace {

// What GLib calls in place of a source's callback, and what it was to call.
struct Stretched {
    GSourceFunc function;
    gpointer data;
};
Stretched stretched{};
std::function<void()> inTheGap;
std::atomic<bool> isEntered{false};  // GLib has called into the timer's code
std::atomic<bool> isGone{false};     // nobody may, from here on

gboolean dispatchLate(gpointer) {
    inTheGap();
    EXPECT_FALSE(isGone) << "the library would be closed by now";
    isEntered = true;
    return stretched.function(stretched.data);
}

}  // namespace

// Stands before GLib's: GLib decides to dispatch, lets go of its lock, and only then calls. This makes room there.
extern "C" void g_source_set_callback(GSource* source, GSourceFunc function, gpointer data, GDestroyNotify notify) {
    static const auto real =
        reinterpret_cast<decltype(&g_source_set_callback)>(dlsym(RTLD_NEXT, "g_source_set_callback"));
    if (inTheGap) {
        stretched = {function, data};
        function = dispatchLate;
    }
    real(source, function, data, notify);
}

namespace {

class MainLoopTimerTest : public testing::Test {
protected:
    MainLoopTimerTest() {
        g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
        // Makes what GLib makes at first need, before there is a thread: its locks are unknown to the thread sanitizer.
        g_main_context_iteration(nullptr, FALSE);
    }
    ~MainLoopTimerTest() override {
        _isOver = true;
        g_main_context_wakeup(nullptr);
        if (_loop.joinable()) {
            _loop.join();
        }
    }
    void runLoop() {
        _loop = std::thread([this] {
            while (!_isOver) {
                g_main_context_iteration(nullptr, TRUE);
            }
        });
    }

    std::atomic<int> runs{0};

private:
    std::atomic<bool> _isOver{false};
    std::thread _loop;
};

TEST_F(MainLoopTimerTest, CancelOutlastsADispatchThatGLibHasDecidedOn) {
    for (const bool one : {true, false}) {
        auto timer = std::make_unique<MainLoopTimer>();
        std::thread canceller;
        isEntered = isGone = false;
        inTheGap = [&] {
            GSource* const source = g_main_current_source();
            canceller = std::thread([&] {
                if (one) {
                    timer->Cancel();
                } else {
                    timer.reset();  // gone as a device that has left the list
                    MainLoopTimer::WaitForCallbacks();
                }
                isGone = true;
            });
            while (!g_source_is_destroyed(source)) {
                std::this_thread::yield();
            }
            for (int i = 0; i < 1000; ++i) {
                std::this_thread::yield();  // time enough to be gone too early
            }
        };
        timer->Start(0, [this] { ++runs; });
        while (!isEntered) {
            g_main_context_iteration(nullptr, TRUE);
        }
        canceller.join();
        EXPECT_EQ(runs, 0);
    }
    inTheGap = nullptr;
}

TEST_F(MainLoopTimerTest, CancelWaitsForARunningCallbackAndDisarmDoesNot) {
    runLoop();
    MainLoopTimer timer;
    MainLoopTimer other;
    std::mutex callersLock;
    Gate gate;
    bool isLeft = false;
    timer.Start(0, [&] {
        other.Start(0, [this] { ++runs; });
        timer.Start(1000000, [this] { ++runs; });  // the run before it is still to be waited for
        gate.pass();
        const std::lock_guard<std::mutex> lock(callersLock);
        isLeft = true;
    });
    gate.waitUntilEntered();
    {
        const std::lock_guard<std::mutex> lock(callersLock);
        other.Disarm();
        timer.Disarm();
        gate.open();
    }
    timer.Cancel();
    EXPECT_TRUE(isLeft);
    EXPECT_EQ(runs, 0);
}

TEST_F(MainLoopTimerTest, TheCallbackMayDoAllWithItsTimer) {
    runLoop();
    auto timer = std::make_shared<MainLoopTimer>();
    Gate gate;
    timer->Start(0, [&] {
        timer->Cancel();
        MainLoopTimer::WaitForCallbacks();
        timer->Start(0, [&, weak = std::weak_ptr<MainLoopTimer>(timer)] {
            EXPECT_FALSE(weak.expired());
            gate.pass();
            timer.reset();  // the last one
            EXPECT_TRUE(weak.expired());
            ++runs;
            throw std::runtime_error("thrown by a timer");
        });
    });
    gate.waitUntilEntered();
    gate.open();
    MainLoopTimer::WaitForCallbacks();
    EXPECT_EQ(runs, 1);
}

}  // namespace
