#include "support/Plugin.h"

#include <future>
#include <memory>

#include <desktop/Framework.h>
#include <desktop/Guard.h>
#include <desktop/Settings.h>

#include "Homeloom/Common/MsgDispatcher.h"
#include "plugin_interface.h"
#include "support/Homes.h"
#include "support/Input.h"

namespace fuzz {

namespace framework = homeloom::desktop::framework;
using framework::Report;

namespace {

constexpr std::chrono::minutes kLimit(1);  // what takes longer hangs

}  // namespace

Plugin& Plugin::running() {
    static Plugin plugin;
    return plugin;
}

Plugin::Plugin()
    : home(homeloom::test::apartmentWith(
          {"washer", "aircon", "fridge", "ceiling-light", "living-camera", "hub-button", "hub-plug", "tv-hub"})) {
    homeloom::desktop::settings::setInt("db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree", 1);
    agent.load(home);
    require(CreatePlugin(), "the plug-in starts");
    int lists = 0;
    require(framework::waitFor(
                [&lists](const Report& report) { return report.kind == Report::Kind::DeviceList && ++lists == 2; },
                kLimit) != nullptr,
            "the home is shown");
    waitForEvents();
    framework::keepReports(100);
}

Plugin::~Plugin() {
    agent.clearFaults();
    DestroyPlugin();
    require(homeloom::desktop::pluginExceptions().empty(), "no exception leaves the plug-in");
    require(agent.escapedExceptions().empty(), "no exception reaches the agent");
    require(agent.holdings().total() == 0, "nothing of the agent's is kept");
}

void Plugin::waitForEvents() {
    require(agent.waitIdle(kLimit), "the agent's callbacks return");
    const auto done = std::make_shared<std::promise<void>>();
    const auto future = done->get_future();
    VMFramework::HomeLoom::EnqueueOnScheduler([done] { done->set_value(); }, "fuzz");
    require(future.wait_for(kLimit) == std::future_status::ready, "an event is handled");
}

void Plugin::waitForRequests() {
    // One on each of the two threads, that is answered whatever happens.
    for (const char* name : {"hl_change_device_name", "get_third_party_notification_status"}) {
        const auto id = framework::request(name);
        require(framework::waitFor([id](const Report& report) { return report.transaction == id; }, kLimit) != nullptr,
                "a request is handled");
    }
}

}  // namespace fuzz
