#include "desktop/Packages.h"

#include <app_manager.h>

#include <atomic>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/Guard.h"
#include "desktop/MainLoop.h"
#include "support/Gate.h"

namespace packages = homeloom::desktop::packages;
using homeloom::desktop::MainLoop;
using testing::ElementsAre;

namespace {

constexpr char kApp[] = "com.norvane.app";

class Packages : public testing::Test {
protected:
    Packages() {
        EXPECT_EQ(package_manager_create(&manager), 0);
        EXPECT_EQ(package_manager_set_event_cb(manager, onEvent, this), 0);
    }
    ~Packages() override {
        EXPECT_EQ(package_manager_destroy(manager), 0);
        EXPECT_EQ(packages::managerCount(), 0);
        EXPECT_NE(package_manager_destroy(manager), 0);
    }
    static void onEvent(const char*, const char* package, package_manager_event_type_e type,
                        package_manager_event_state_e state, int progress, package_manager_error_e, void* self) {
        static_cast<Packages*>(self)->told(std::string(package) + " " + std::to_string(type) + " " +
                                           std::to_string(state) + " " + std::to_string(progress));
    }
    void waitForLoop() {
        loop.call([] {});
    }

    std::function<void(const std::string&)> told = [this](const std::string& event) { events.push_back(event); };
    std::vector<std::string> events;
    MainLoop loop;
    package_manager_h manager = nullptr;
};

TEST_F(Packages, AreToldWithAllTheirSteps) {
    app_info_h info = nullptr;
    EXPECT_NE(app_manager_get_app_info(kApp, &info), 0);
    packages::install(kApp);
    ASSERT_EQ(app_manager_get_app_info(kApp, &info), 0);
    EXPECT_EQ(app_info_destroy(info), 0);
    packages::fail("app_manager_get_app_info", -5);
    EXPECT_EQ(app_manager_get_app_info(kApp, &info), -5);
    packages::install(kApp);
    packages::uninstall(kApp);
    EXPECT_FALSE(packages::isInstalled(kApp));
    waitForLoop();
    const std::string app = kApp;
    EXPECT_THAT(events, ElementsAre(app + " 0 0 0", app + " 0 1 50", app + " 0 2 100",  // installed
                                    app + " 2 0 0", app + " 2 1 50", app + " 2 2 100",  // updated
                                    app + " 1 0 0", app + " 1 1 50", app + " 1 2 100"));
    told = [](const std::string&) { throw std::runtime_error("bad"); };
    packages::tell({kApp});
    waitForLoop();
    EXPECT_THAT(homeloom::desktop::pluginExceptions(), ElementsAre("package event: bad"));
    EXPECT_EQ(packages::appInfoCount(), 0);
}

TEST_F(Packages, EndOfAWatchWaitsForARunningCallback) {
    Gate gate;
    std::atomic<bool> hasLeft{false};
    told = [&](const std::string&) {
        gate.pass();
        hasLeft = true;
    };
    packages::tell({kApp});
    packages::tell({kApp});  // not told any more
    gate.waitUntilEntered();
    std::future<void> end = std::async(std::launch::async, [&] {
        EXPECT_EQ(package_manager_unset_event_cb(manager), 0);
        EXPECT_TRUE(hasLeft);
    });
    while (packages::watchCount() > 0) {
        std::this_thread::yield();
    }
    gate.open();
    end.get();
    waitForLoop();

    EXPECT_EQ(package_manager_set_event_cb(manager, onEvent, this), 0);
    told = [&](const std::string&) { EXPECT_EQ(package_manager_unset_event_cb(manager), 0); };  // from within
    packages::tell({kApp});
    waitForLoop();
    EXPECT_EQ(packages::watchCount(), 0);
}

}  // namespace
