#include "Homeloom/Common/FairMutex.h"

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>

#include <gtest/gtest.h>

using VMFramework::HomeLoom::FairMutex;

namespace {

bool Sleeps(pid_t thread) {
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    const std::string text{std::istreambuf_iterator<char>(status), {}};
    return text.find("State:\tS") != std::string::npos;
}

}  // namespace

TEST(FairMutex, GoesToWhoWaitsBeforeItComesBack) {
    for (int round = 0; round < 20; ++round) {
        FairMutex mutex;
        std::string order;
        std::atomic<pid_t> waiting{0};
        mutex.lock();
        std::thread other([&] {
            waiting = gettid();
            const std::lock_guard<FairMutex> lock(mutex);
            order += "other ";
        });
        while (waiting == 0 || !Sleeps(waiting)) {
            std::this_thread::yield();
        }
        mutex.unlock();
        mutex.lock();
        order += "first";
        mutex.unlock();
        other.join();
        ASSERT_EQ(order, "other first");
    }
}
