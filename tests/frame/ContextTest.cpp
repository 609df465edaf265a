#include "common/include_internal/TPLContext.h"

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include <VMFramework/CDirectInvoker.h>
#include <gtest/gtest.h>

#include "support/Gate.h"

using VMFramework::TPL::CContext;
using VMFramework::TPL::CDirectInvoker;

namespace {

class Worker : public CContext<Worker> {
public:
    static std::shared_ptr<Worker> Create() {
        auto worker = std::make_shared<Worker>();
        worker->_SetOwner(worker);
        return worker;
    }
    void Start() { Initiate(CDirectInvoker::GetInstance()); }
    void Stop() { TerminateSync(CDirectInvoker::GetInstance()); }
    bool Do(std::function<void()> work) {
        return InvokeTask(CDirectInvoker::GetInstance(), [work](const std::shared_ptr<Worker>&) { work(); });
    }
};

class Context : public testing::Test {
protected:
    /// A thread that becomes the worker, and stands still in a job of its own.
    std::thread BusyWorker() {
        std::thread thread([this] { worker->Do([this] { gate.pass(); }); });
        gate.waitUntilEntered();
        return thread;
    }

    const std::shared_ptr<Worker> worker = Worker::Create();
    Gate gate;
};

}  // namespace

TEST_F(Context, RunsInPlaceOnlyBetweenInitiateAndTerminate) {
    int ran = 0;
    EXPECT_TRUE(worker->Do([&] { ++ran; }));  // accepted, and dropped without a word
    EXPECT_EQ(ran, 0);
    worker->Start();
    EXPECT_TRUE(worker->Do([&] { ++ran; }));
    EXPECT_EQ(ran, 1);
    worker->Stop();
    EXPECT_FALSE(worker->Do([&] { ++ran; }));
    EXPECT_EQ(ran, 1);
}

TEST_F(Context, AJobThatPostsRunsTheNewOneAfterItself) {
    worker->Start();
    std::vector<int> order;
    worker->Do([&] {
        EXPECT_TRUE(worker->Do([&] { order.push_back(2); }));
        order.push_back(1);
    });
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST_F(Context, ASecondCallersJobRunsOnTheFirstOnesThread) {
    worker->Start();
    std::thread first = BusyWorker();
    const auto firstId = first.get_id();
    std::thread::id second;
    EXPECT_TRUE(worker->Do([&] { second = std::this_thread::get_id(); }));
    EXPECT_EQ(second, std::thread::id());
    gate.open();
    first.join();
    EXPECT_EQ(second, firstId);
}

TEST_F(Context, AThrowingJobReachesItsCallerAndLeavesTheOthers) {
    worker->Start();
    int ran = 0;
    EXPECT_THROW(worker->Do([&] {
        worker->Do([&] { ++ran; });
        throw std::runtime_error("bad");
    }),
                 std::runtime_error);
    EXPECT_EQ(ran, 0);
    worker->Do([] {});
    EXPECT_EQ(ran, 1);
}

// A job that throws just as another thread becomes the worker must not let two threads run jobs at once.
TEST_F(Context, NeverTwoWorkers) {
    worker->Start();
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    std::vector<std::thread> callers;
    for (int c = 0; c < 4; ++c) {
        callers.emplace_back([&] {
            for (int i = 0; i < 3000; ++i) {
                try {
                    worker->Do([&, i] {
                        if (++inside > 1) {
                            overlapped = true;
                        }
                        --inside;
                        if (i % 3 == 0) {
                            throw std::runtime_error("bad");
                        }
                    });
                } catch (const std::runtime_error&) {
                }
            }
        });
    }
    for (auto& caller : callers) {
        caller.join();
    }
    EXPECT_FALSE(overlapped);
}

TEST_F(Context, TerminateInTheMiddleOfAJobDoesNotWaitAndDropsTheRest) {
    worker->Start();
    std::thread first = BusyWorker();
    std::atomic<int> ran{0};
    EXPECT_TRUE(worker->Do([&] { ++ran; }));
    worker->Stop();  // would hang here if it waited for the job
    EXPECT_FALSE(worker->Do([&] { ++ran; }));
    gate.open();
    first.join();
    EXPECT_EQ(ran, 0);
}

TEST_F(Context, TerminateBetweenQueuingAndRunningDropsWhatIsQueued) {
    worker->Start();
    struct LateInvoker {
        Worker& worker;
        void Invoke(const std::function<void()>& function) {
            worker.Stop();
            function();
        }
    } invoker{*worker};
    const auto held = std::make_shared<int>(0);
    bool ran = false;
    worker->InvokeTask(invoker, [held, &ran](const std::shared_ptr<Worker>&) { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(Context, AnExpiredOwnerIsAnError) {
    Worker orphan;
    EXPECT_THROW(orphan.Start(), std::bad_weak_ptr);
    // The failed call has not left the context taken.
    EXPECT_THROW(orphan.Do([] {}), std::bad_weak_ptr);
}
