#include "Homeloom/Common/MsgDispatcher.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/Log.h"

using VMFramework::HomeLoom::MsgDispatcher;

namespace {

/// A job that runs until it is let go.
class Gate {
public:
    std::function<void()> Job() {
        return [this] {
            _entered.set_value();
            _open.get_future().wait();
        };
    }
    void WaitUntilEntered() { _entered.get_future().wait(); }
    void Open() { _open.set_value(); }

private:
    std::promise<void> _entered;
    std::promise<void> _open;
};

void RunAll(MsgDispatcher& dispatcher) {
    std::promise<void> done;
    dispatcher.EnqueueData([&done] { done.set_value(); }, "last");
    done.get_future().wait();
}

}  // namespace

TEST(MsgDispatcher, RunsJobsInOrderWhateverTheyThrow) {
    MsgDispatcher dispatcher("test");
    std::vector<int> order;
    dispatcher.EnqueueData([&] { order.push_back(1); }, "one");
    dispatcher.EnqueueData([] { throw std::runtime_error("bad"); }, "throws");
    dispatcher.EnqueueData([] { throw 7; }, "throws an int");
    dispatcher.EnqueueData({}, "empty");
    dispatcher.EnqueueData([&] { order.push_back(2); }, "two");
    RunAll(dispatcher);
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(MsgDispatcher, QuitFinishesTheRunningJobAndDropsTheRest) {
    MsgDispatcher dispatcher("test");
    Gate gate;
    std::atomic<int> ran{0};
    const auto held = std::make_shared<int>(0);
    dispatcher.EnqueueData(gate.Job(), "running");
    for (int i = 0; i < 5; ++i) {
        dispatcher.EnqueueData([&ran, held] { ++ran; }, "queued");
    }
    gate.WaitUntilEntered();
    std::thread quitter([&] { dispatcher.Quit(); });
    gate.Open();
    quitter.join();
    // The running job may have been followed by some before Quit was seen, but nothing is left.
    const int ranAtQuit = ran;
    EXPECT_TRUE(dispatcher.isEmptyQueue());
    EXPECT_EQ(held.use_count(), 1);
    dispatcher.EnqueueData([&ran, held] { ++ran; }, "late");
    EXPECT_EQ(ran, ranAtQuit);
    EXPECT_TRUE(dispatcher.isEmptyQueue());
    dispatcher.Quit();  // nothing more to join
}

TEST(MsgDispatcher, ThrowsAwayWhatComesWhilePaused) {
    MsgDispatcher dispatcher("test");
    Gate gate;
    std::atomic<int> ran{0};
    dispatcher.EnqueueData(gate.Job(), "running");
    gate.WaitUntilEntered();
    dispatcher.EnqueueData([&] { ++ran; }, "queued before");
    dispatcher.Pause();  // does not wait for the running job
    dispatcher.EnqueueData([&] { ++ran; }, "queued while paused");
    gate.Open();
    while (!dispatcher.isEmptyQueue()) {
        std::this_thread::yield();
    }
    dispatcher.Resume();
    RunAll(dispatcher);
    EXPECT_EQ(ran, 0);
}

TEST(MsgDispatcher, APauseThatComesAfterQuitDoesNotHoldItUp) {
    homeloom::desktop::log::Capture log{DLOG_INFO};
    MsgDispatcher dispatcher("test");
    std::promise<void> entered;
    dispatcher.EnqueueData(
        [&] {
            entered.set_value();
            log.waitFor("[test] before join");
            dispatcher.Pause();
        },
        "pauses");
    entered.get_future().wait();
    dispatcher.Quit();
    EXPECT_FALSE(log.contains("PAUSED STATUS"));
}

TEST(MsgDispatcher, JobsMayPushAndTheirDestructorsToo) {
    MsgDispatcher dispatcher("test");
    struct PushesOnDestruction {
        MsgDispatcher& dispatcher;
        std::promise<void>& pushed;
        ~PushesOnDestruction() {
            dispatcher.EnqueueData([this_pushed = &pushed] { this_pushed->set_value(); }, "from a destructor");
        }
    };
    std::promise<void> fromClear;
    Gate gate;
    dispatcher.EnqueueData(gate.Job(), "running");
    gate.WaitUntilEntered();
    auto pusher = std::make_shared<PushesOnDestruction>(PushesOnDestruction{dispatcher, fromClear});
    std::weak_ptr<PushesOnDestruction> watch = pusher;
    dispatcher.EnqueueData([pusher = std::move(pusher)] {}, "holds a pusher");
    dispatcher.ClearData();
    EXPECT_TRUE(watch.expired());
    gate.Open();
    fromClear.get_future().wait();
}

// Pushers that hit the moment in which the thread goes to sleep must neither lose their wake-up nor wait for a job.
TEST(MsgDispatcher, WakesUpForEveryJob) {
    MsgDispatcher dispatcher("test");
    constexpr int kJobs = 5000;
    for (int i = 0; i < kJobs; ++i) {
        std::promise<void> done;
        dispatcher.EnqueueData([&done] { done.set_value(); }, "one");
        ASSERT_EQ(done.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    }
}

TEST(MsgDispatcher, ManyPushersLoseNothing) {
    MsgDispatcher dispatcher("test");
    constexpr int kPushers = 4;
    constexpr int kEach = 2000;
    std::vector<std::vector<int>> seen(kPushers);
    std::vector<std::thread> pushers;
    for (int p = 0; p < kPushers; ++p) {
        pushers.emplace_back([&, p] {
            for (int i = 0; i < kEach; ++i) {
                dispatcher.EnqueueData([&seen, p, i] { seen[static_cast<std::size_t>(p)].push_back(i); }, "job");
            }
        });
    }
    for (auto& pusher : pushers) {
        pusher.join();
    }
    RunAll(dispatcher);
    for (const auto& numbers : seen) {
        ASSERT_EQ(numbers.size(), static_cast<std::size_t>(kEach));
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}
