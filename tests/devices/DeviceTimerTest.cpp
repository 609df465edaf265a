#include <memory>
#include <stdexcept>
#include <vector>

#include <glib.h>
#include <gtest/gtest.h>

#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {
namespace {

class DeviceTimerTest : public testing::Test {
protected:
    // A source id removed twice would be a critical message of GLib's.
    DeviceTimerTest() { g_log_set_always_fatal(GLogLevelFlags(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING)); }

    // Runs the main loop until a timer of that many milliseconds, set now, has fired. What was due before has then run.
    static void runMainLoop(unsigned milliseconds) {
        bool isOver = false;
        g_timeout_add(
            milliseconds,
            [](gpointer over) {
                *static_cast<bool*>(over) = true;
                return G_SOURCE_REMOVE;
            },
            &isOver);
        while (!isOver) {
            g_main_context_iteration(nullptr, TRUE);
        }
    }

    std::shared_ptr<Device> device = std::make_shared<Device>();
    std::vector<int> runs;
};

TEST_F(DeviceTimerTest, FiresOnceInPlaceOfTheOneBeforeAndCanBeSetAgain) {
    device->SetTimer(1, [this] { runs.push_back(1); });
    device->SetTimer(1, [this] {
        runs.push_back(2);
        device->SetTimer(1, [this] { runs.push_back(3); });
    });
    device->SetTimer(1, nullptr);  // refused, and the one that waits stays
    runMainLoop(20);
    runMainLoop(20);
    EXPECT_EQ((std::vector<int>{2, 3}), runs);
    device->SetTimer(1, [this] { runs.push_back(4); });
    runMainLoop(20);
    EXPECT_EQ((std::vector<int>{2, 3, 4}), runs);
}

TEST_F(DeviceTimerTest, DoesNotFireOnceCancelledOrWithoutItsDevice) {
    device->SetTimer(1, [this] { runs.push_back(1); });
    device->CancelTimer();
    device->CancelTimer();
    auto other = std::make_shared<Device>();
    other->SetTimer(1, [this] { runs.push_back(2); });
    const std::weak_ptr<Device> weak = other;
    other.reset();
    EXPECT_TRUE(weak.expired()) << "the timer keeps its device alive";
    runMainLoop(20);
    EXPECT_TRUE(runs.empty());
}

TEST_F(DeviceTimerTest, MayThrowAndMayDropItsDevice) {
    device->SetTimer(1, [] { throw std::runtime_error("thrown by a timer"); });
    runMainLoop(20);
    device->SetTimer(1, [this] {
        runs.push_back(1);
        device.reset();
    });
    runMainLoop(20);
    EXPECT_EQ(std::vector<int>{1}, runs);
}

}  // namespace
}  // namespace VMFramework::HomeLoom
