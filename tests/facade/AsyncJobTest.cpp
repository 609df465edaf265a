#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "Homeloom/Common/AsyncJob.h"
#include "clock/Clock.h"
#include "clock/Turner.h"

using namespace VMFramework::HomeLoom;
using namespace std::chrono_literals;

namespace {

std::atomic<int> liveRecords{0};

// A reply that owns a record, as a list reply does.
struct FakeParam {
    FakeParam() = default;
    FakeParam(int error, int* handedOver) : ret(error), record(handedOver) {}
    FakeParam(FakeParam&& other) noexcept : ret(other.ret), record(std::exchange(other.record, nullptr)) {}
    ~FakeParam() {
        if (record != nullptr) {
            delete record;
            --liveRecords;
        }
    }
    void LogResult() const {}

    int ret = 0;
    int* record = nullptr;
};

using FakeCallback = void (*)(int, int*, void*);

void OnReply(int error, int* record, void* userData) {
    AsyncJob<FakeParam>::Deliver(userData, error, record);
}

// An agent that answers as it is told to, on threads of its own.
struct FakeAgent {
    static int Ask(FakeAgent* agent, FakeCallback callback, void* userData) {
        agent->asked.set_value(std::make_pair(callback, userData));
        return agent->code;
    }

    static int AskAndAnswer(FakeAgent* agent, FakeCallback callback, void* userData) {
        callback(5, NewRecord(), userData);
        return agent->code;
    }

    void Answer(int error) {
        const auto [callback, userData] = call.get();
        callback(error, NewRecord(), userData);
    }
    static int* NewRecord() {
        ++liveRecords;
        return new int(7);
    }

    int code = 0;
    std::promise<std::pair<FakeCallback, void*>> asked;
    std::shared_future<std::pair<FakeCallback, void*>> call{asked.get_future()};
};

class AsyncJobTest : public testing::Test {
protected:
    ~AsyncJobTest() override { EXPECT_EQ(0, liveRecords) << "records that nobody destroyed"; }

    FakeParam Await(FakeAgent& agent) { return AsyncJob<FakeParam>().Await(running, &FakeAgent::Ask, &agent, OnReply); }

    std::atomic<bool> running{true};
};

TEST_F(AsyncJobTest, ASecondReplyIsDestroyedAndChangesNothing) {
    FakeAgent agent;
    std::thread thread([&] {
        agent.call.wait();
        std::this_thread::sleep_for(150ms);  // into the second step of the wait
        agent.Answer(1);
        agent.Answer(2);
    });
    const FakeParam reply = Await(agent);
    thread.join();
    EXPECT_EQ(1, reply.ret);
    ASSERT_NE(nullptr, reply.record);
    EXPECT_EQ(7, *reply.record);
    agent.Answer(3);
    OnReply(4, FakeAgent::NewRecord(), nullptr);
}

TEST_F(AsyncJobTest, AReplyThatIsReadyWhenQuitIsSeenIsStillReturned) {
    running = false;
    FakeAgent agent;
    const FakeParam reply = AsyncJob<FakeParam>().Await(running, &FakeAgent::AskAndAnswer, &agent, OnReply);
    EXPECT_EQ(5, reply.ret);
    EXPECT_NE(nullptr, reply.record);
}

TEST_F(AsyncJobTest, TheLimitEndsAWaitWhateverTheCallItselfReturned) {
    const homeloom::clock::Turner turner;
    const auto start = homeloom::clock::now();
    FakeAgent silent;
    FakeAgent refusing;
    refusing.code = -22;
    EXPECT_EQ(kAsyncJobTimeout, Await(refusing).ret);
    const FakeParam reply = Await(silent);
    EXPECT_EQ(kAsyncJobTimeout, reply.ret);
    EXPECT_EQ(nullptr, reply.record);
    // Each step is asked for the limit, so the last one goes beyond it.
    EXPECT_EQ(std::chrono::milliseconds(2 * (kAsyncJobLimitMs + kAsyncJobStepMs)), homeloom::clock::now() - start);
    silent.Answer(0);
}

TEST(AsyncJobNameTest, IsTheTypesOwnName) {
    EXPECT_EQ("FakeParam", AsyncJobName(typeid(FakeParam)));
}

}  // namespace
