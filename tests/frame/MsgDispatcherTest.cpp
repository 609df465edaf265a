#include "Homeloom/Common/MsgDispatcher.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/Log.h"
#include "support/Gate.h"

using VMFramework::HomeLoom::MsgDispatcher;

namespace {

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
    dispatcher.EnqueueData([&] { gate.pass(); }, "running");
    for (int i = 0; i < 5; ++i) {
        dispatcher.EnqueueData([&ran, held] { ++ran; }, "queued");
    }
    gate.waitUntilEntered();
    std::thread quitter([&] { dispatcher.Quit(); });
    gate.open();
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

// A pause and its end stand back to back, as when the agent connects at once after its update, with an idle thread and
// with one that is in a job.
TEST(MsgDispatcher, ThrowsAwayWhatComesWhilePausedAndNothingElse) {
    MsgDispatcher dispatcher("test");
    std::atomic<int> ranWhilePaused{0};
    for (int i = 0; i < 3000; ++i) {
        Gate gate;
        const bool isBusy = i % 2 != 0;
        if (isBusy) {
            dispatcher.EnqueueData([&] { gate.pass(); }, "running");
            gate.waitUntilEntered();
            dispatcher.EnqueueData([&] { ++ranWhilePaused; }, "queued before");
        }
        dispatcher.Pause();  // does not wait for the running job
        dispatcher.EnqueueData([&] { ++ranWhilePaused; }, "queued while paused");
        dispatcher.Resume();
        auto promise = std::make_shared<std::promise<void>>();
        std::future<void> done = promise->get_future();
        dispatcher.EnqueueData([promise = std::move(promise)] { promise->set_value(); }, "queued after");
        if (isBusy) {
            gate.open();
        }
        ASSERT_NO_THROW(done.get()) << "the job was destroyed unrun";
        ASSERT_EQ(ranWhilePaused, 0);
    }
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
    dispatcher.EnqueueData([&] { gate.pass(); }, "running");
    gate.waitUntilEntered();
    auto pusher = std::make_shared<PushesOnDestruction>(PushesOnDestruction{dispatcher, fromClear});
    std::weak_ptr<PushesOnDestruction> watch = pusher;
    dispatcher.EnqueueData([pusher = std::move(pusher)] {}, "holds a pusher");
    dispatcher.ClearData();
    EXPECT_TRUE(watch.expired());
    gate.open();
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
