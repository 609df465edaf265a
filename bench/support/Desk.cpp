#include "support/Desk.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>
#include <utility>

#include <desktop/Settings.h>
#include <simulator/Agent.h>

#include "support/Figures.h"
#include "support/Places.h"

namespace bench {

namespace framework = homeloom::desktop::framework;

namespace {

constexpr auto kLimit = std::chrono::minutes(2);

template <typename Function>
Function symbol(void* library, const char* name) {
    void* const address = dlsym(library, name);
    if (address == nullptr) {
        fail(std::string("the plug-in has no ") + name);
    }
    return reinterpret_cast<Function>(address);
}

}  // namespace

Desk::Desk(simulator::Home home) {
    simulator::Agent::instance().load(std::move(home));
    homeloom::desktop::settings::setInt("db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree", 1);
    open();
    framework::keepReports(1);  // the desk's memory and time are not what is measured
    _listener = framework::addListener([this](const framework::ReportPtr& report) {
        if (report->kind == framework::Report::Kind::DeviceList) {
            const std::lock_guard<std::mutex> lock(_mutex);
            ++_lists;
            _listArrived.notify_all();
        }
    });
}

Desk::~Desk() {
    close();
    framework::removeListener(_listener);
    simulator::Agent::instance().reset();
    homeloom::desktop::settings::reset();
}

void Desk::open() {
    _library = dlopen(homeloom::test::pluginFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (_library == nullptr) {
        fail(dlerror());
    }
    _createPlugin = symbol<bool (*)()>(_library, "CreatePlugin");
    _destroyPlugin = symbol<bool (*)()>(_library, "DestroyPlugin");
}

void Desk::create() {
    _isRunning = true;
    forgetLists();
    _createPlugin();
}

void Desk::destroy() {
    if (std::exchange(_isRunning, false)) {
        _destroyPlugin();
    }
}

void Desk::close() {
    destroy();
    if (_library != nullptr) {
        dlclose(std::exchange(_library, nullptr));
    }
}

void Desk::show() {
    create();
    waitForLists(2);
    simulator::Agent::instance().waitIdle();
}

void Desk::waitForLists(int count) {
    std::unique_lock<std::mutex> lock(_mutex);
    if (!_listArrived.wait_for(lock, kLimit, [&] { return _lists >= count; })) {
        fail("the home was not reported");
    }
}

void Desk::forgetLists() {
    const std::lock_guard<std::mutex> lock(_mutex);
    _lists = 0;
}

void Desk::waitForSubscription(const std::string& deviceId) {
    const auto isSubscribed = [&] {
        const auto subscriptions = simulator::Agent::instance().subscriptions();
        return std::any_of(subscriptions.begin(), subscriptions.end(),
                           [&](const auto& subscription) { return subscription.deviceId == deviceId; });
    };
    const auto limit = Clock::now() + kLimit;
    while (!isSubscribed()) {
        if (Clock::now() > limit) {
            fail(deviceId + " was not subscribed");
        }
        std::this_thread::yield();
    }
}

void Desk::waitForRest() {
    constexpr auto kLook = std::chrono::milliseconds(300);
    constexpr std::clock_t kIdle = CLOCKS_PER_SEC / 50;  // that little is a thread that looks whether there is work
    std::clock_t before = std::clock();
    while (true) {
        std::this_thread::sleep_for(kLook);
        const std::clock_t now = std::clock();
        if (now - before < kIdle) {
            return;
        }
        before = now;
    }
}

void fail(const std::string& reason) {
    std::fprintf(stderr, "bench: %s\n", reason.c_str());
    // Threads of the plug-in may still run.
    std::_Exit(2);
}

}  // namespace bench
