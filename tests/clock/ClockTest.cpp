#include "clock/Clock.h"

#include <glib.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "../../clock/src/Waiters.h"
#include "clock/Rest.h"
#include "clock/Turner.h"

namespace clk = homeloom::clock;
using namespace std::chrono_literals;
using std::chrono::steady_clock;
using std::chrono::system_clock;

namespace {

class ClockTest : public testing::Test {
protected:
    ClockTest() { clk::stand(); }
};

struct Wait {
    std::string name;
    std::function<void()> untilHalfAMinuteIsOver;
};

template <typename Clock>
void waitForCondition() {
    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock<std::mutex> lock(mutex);
    condition.wait_until(lock, Clock::now() + 30s, [] { return false; });
}

template <typename Clock>
void waitForFuture() {
    std::promise<void> promise;
    promise.get_future().wait_until(Clock::now() + 30s);
}

void waitForGLibCondition() {
    GMutex mutex;
    GCond condition;
    g_mutex_init(&mutex);
    g_cond_init(&condition);
    g_mutex_lock(&mutex);
    const gint64 end = g_get_monotonic_time() + 30 * G_TIME_SPAN_SECOND;
    while (g_cond_wait_until(&condition, &mutex, end) != FALSE) {
    }
    g_mutex_unlock(&mutex);
    g_cond_clear(&condition);
    g_mutex_clear(&mutex);
}

void runMainLoop() {
    GMainContext* const context = g_main_context_new();
    GMainLoop* const loop = g_main_loop_new(context, FALSE);
    GSource* const source = g_timeout_source_new(30000);
    g_source_set_callback(
        source,
        [](gpointer itsLoop) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(itsLoop));
            return G_SOURCE_REMOVE;
        },
        loop, nullptr);
    g_source_attach(source, context);
    g_main_loop_run(loop);
    g_source_unref(source);
    g_main_loop_unref(loop);
    g_main_context_unref(context);
}

void sleepUntilDate() {
    timespec end{};
    clock_gettime(CLOCK_REALTIME, &end);
    end.tv_sec += 30;
    clock_nanosleep(CLOCK_REALTIME, TIMER_ABSTIME, &end, nullptr);
}

void pollWithMask() {
    sigset_t mask;
    sigemptyset(&mask);
    const timespec time{30, 0};
    ppoll(nullptr, 0, &time, &mask);
}

const std::vector<Wait>& waits() {
    static const std::vector<Wait> waits = {
        {"a condition and the steady clock", waitForCondition<steady_clock>},
        {"a condition and a date", waitForCondition<system_clock>},
        {"a future", waitForFuture<steady_clock>},
        {"a future and a date", waitForFuture<system_clock>},
        {"a condition of GLib's", waitForGLibCondition},
        {"a main loop", runMainLoop},
        {"sleep", [] { std::this_thread::sleep_for(30s); }},
        {"sleep until a date", sleepUntilDate},
        {"poll", [] { poll(nullptr, 0, 30000); }},
        {"poll with a mask", pollWithMask},
    };
    return waits;
}

class Waiting {
public:
    explicit Waiting(const std::function<void()>& function)
        : _thread([this, function] {
              function();
              _isOver = true;
          }) {}
    ~Waiting() { _thread.join(); }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    bool isOver() const { return _isOver; }

private:
    std::atomic<bool> _isOver{false};
    std::thread _thread;
};

}  // namespace

TEST_F(ClockTest, WhoeverWaitsWaitsUntilTheClockHasBeenTurnedSoFar) {
    for (const Wait& wait : waits()) {
        SCOPED_TRACE(wait.name);
        const Waiting waiting(wait.untilHalfAMinuteIsOver);
        clk::advance(29999ms);
        EXPECT_FALSE(waiting.isOver());
        clk::advance(1ms);
        EXPECT_TRUE(waiting.isOver());
    }
}

TEST_F(ClockTest, WhoeverWaitsWhileTheClockRunsIsOverWhenItIsTurned) {
    clk::run();
    for (const Wait& wait : waits()) {
        SCOPED_TRACE(wait.name);
        const Waiting waiting(wait.untilHalfAMinuteIsOver);
        clk::advance(31s);
        EXPECT_TRUE(waiting.isOver());
        EXPECT_FALSE(clk::isStanding());
    }
}

TEST_F(ClockTest, AllClocksMoveTogetherDatesToo) {
    const auto look = [] {
        timeval day{};
        gettimeofday(&day, nullptr);
        timespec boot{};
        clock_gettime(CLOCK_BOOTTIME, &boot);
        return std::vector<std::int64_t>{std::chrono::duration_cast<std::chrono::seconds>(clk::now()).count(),
                                         steady_clock::now().time_since_epoch() / 1s,
                                         system_clock::now().time_since_epoch() / 1s,
                                         time(nullptr),
                                         day.tv_sec,
                                         boot.tv_sec,
                                         g_get_monotonic_time() / G_TIME_SPAN_SECOND,
                                         g_get_real_time() / G_TIME_SPAN_SECOND};
    };
    std::vector<std::int64_t> expected = look();
    EXPECT_EQ(look(), expected);
    clk::advance(48h);
    for (std::int64_t& seconds : expected) {
        seconds += 48 * 3600;
    }
    EXPECT_EQ(look(), expected);
}

TEST_F(ClockTest, WakesInTheOrderOfTheTimesAndThenOfThoseWhoCame) {
    constexpr int kSleepers = 20;
    std::mutex mutex;
    std::vector<int> order;
    std::vector<std::thread> threads;
    std::vector<int> expected;
    const auto start = steady_clock::now();
    for (int i = 0; i < kSleepers; ++i) {
        // The later half comes in pairs for the same moment.
        const auto end = start + 1s - (i < kSleepers / 2 ? i : kSleepers + i / 2) * 10us;
        threads.emplace_back([&, i, end] {
            std::this_thread::sleep_until(end);
            const std::lock_guard<std::mutex> lock(mutex);
            order.push_back(i);
        });
        ASSERT_TRUE(clk::waitForRest());
    }
    for (int pair = kSleepers - 2; pair >= kSleepers / 2; pair -= 2) {
        expected.insert(expected.end(), {pair, pair + 1});
    }
    for (int i = kSleepers / 2 - 1; i >= 0; --i) {
        expected.push_back(i);
    }
    clk::advance(1s);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(order, expected);
}

TEST_F(ClockTest, WhatComesInTimeIsNoTimeout) {
    std::mutex mutex;
    std::condition_variable condition;
    std::promise<int> promise;
    std::future<int> future = promise.get_future();
    const int file = eventfd(0, EFD_CLOEXEC);
    bool isSet = false;
    std::cv_status conditionEnd{};
    std::future_status futureEnd{};
    int readable = 0;
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        std::unique_lock<std::mutex> lock(mutex);
        while (!isSet && conditionEnd == std::cv_status::no_timeout) {
            conditionEnd = condition.wait_for(lock, 30s);
        }
    });
    threads.emplace_back([&] { futureEnd = future.wait_for(30s); });
    threads.emplace_back([&] {
        pollfd files[] = {{file, POLLIN, 0}};
        readable = poll(files, 1, 30000) == 1 ? files[0].revents : 0;
    });
    clk::advance(29s);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isSet = true;
    }
    condition.notify_one();
    promise.set_value(1);
    eventfd_write(file, 1);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(conditionEnd, std::cv_status::no_timeout);
    EXPECT_EQ(futureEnd, std::future_status::ready);
    EXPECT_EQ(readable, POLLIN);
    close(file);
}

TEST_F(ClockTest, WhoeverIsWokenBeforeFallingAsleepIsWokenAgain) {
    std::promise<void> registered;
    std::promise<void> turned;
    std::mutex mutex;
    std::condition_variable condition;
    std::atomic<bool> isOver{false};
    const Waiting waiting([&] {
        const clk::Waiter waiter((clk::now() + 1s).count(), clk::Waiter::Bed::Condition, condition.native_handle());
        std::unique_lock<std::mutex> lock(mutex);
        registered.set_value();
        turned.get_future().wait();
        condition.wait(lock);  // nobody notifies
        isOver = waiter.isOver();
    });
    registered.get_future().wait();
    EXPECT_TRUE(clk::leapToNextDeadline());
    EXPECT_FALSE(waiting.isOver());
    turned.set_value();
    EXPECT_TRUE(clk::waitForRest());
    EXPECT_TRUE(isOver);
}

TEST_F(ClockTest, LeapsToTheNextDeadlineAndNoFurther) {
    const auto start = clk::now();
    const Waiting first([] { std::this_thread::sleep_for(3s); });
    const Waiting second([] { std::this_thread::sleep_for(5s); });
    ASSERT_TRUE(clk::waitForRest());
    EXPECT_FALSE(clk::leapToNextDeadline(start + 2s));
    EXPECT_EQ(clk::now(), start);
    EXPECT_TRUE(clk::leapToNextDeadline(start + 3s));
    ASSERT_TRUE(clk::waitForRest());
    EXPECT_EQ(clk::now(), start + 3s);
    EXPECT_TRUE(first.isOver());
    EXPECT_FALSE(second.isOver());
    EXPECT_TRUE(clk::leapToNextDeadline());
    EXPECT_TRUE(clk::waitForRest());
    EXPECT_FALSE(clk::leapToNextDeadline());
}

TEST_F(ClockTest, TheTurnerBringsWhateverIsWaitedFor) {
    const auto start = clk::now();
    {
        const clk::Turner turner;
        for (const Wait& wait : waits()) {
            wait.untilHalfAMinuteIsOver();
        }
    }
    // GLib counts in microseconds.
    EXPECT_EQ(std::chrono::round<std::chrono::milliseconds>(clk::now() - start), waits().size() * 30s);
}

TEST_F(ClockTest, AThreadThatOnlyLooksAtTheClockIsNotWaitedForEndlessly) {
    const auto end = steady_clock::now() + 1s;
    std::atomic<bool> isGivenUp{false};
    const Waiting waiting([&] {
        while (steady_clock::now() < end && !isGivenUp) {
        }
    });
    EXPECT_FALSE(clk::waitForRest(20ms));
    isGivenUp = true;
}

TEST_F(ClockTest, AnExemptThreadLivesInTheMachinesTime) {
    const auto start = clk::now();
    const clk::Exempt exempt;
    std::this_thread::sleep_for(1ms);
    std::mutex mutex;
    std::unique_lock<std::mutex> lock(mutex);
    EXPECT_FALSE(std::condition_variable().wait_for(lock, 1ms, [] { return false; }));
    EXPECT_EQ(clk::now(), start);
}

TEST_F(ClockTest, ThereIsNoRestWhileAStartedProgramWorks) {
    std::vector<std::string> words = {"sh", "-c", "while :; do :; done"};
    char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    pid_t process = 0;
    ASSERT_EQ(posix_spawnp(&process, "sh", nullptr, nullptr, arguments, environ), 0);
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(clk::isAtRest());
    }
    kill(process, SIGSTOP);
    waitpid(process, nullptr, WUNTRACED);
    EXPECT_TRUE(clk::waitForRest());
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    EXPECT_TRUE(clk::waitForRest());
}

#ifdef __SANITIZE_THREAD__
// Who is woken later than another knows nothing of it for that: the clock hides no race from the sanitizer.
TEST(ClockDeathTest, ThreadsThatOnlyTheClockBringsIntoAnOrderRace) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto race = [] {
        int value = 0;
        {
            const clk::Turner turner;
            std::thread first([&value] { std::this_thread::sleep_for(1s), value = 1; });
            std::thread second([&value] { std::this_thread::sleep_for(2s), value = 2; });
            first.join();
            second.join();
        }
        std::exit(value == 2 ? 0 : 1);
    };
    EXPECT_EXIT(race(), testing::ExitedWithCode(66), "data race");  // the sanitizer's own
}
#endif
