#include <future>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/Guard.h"
#include "simulator/ServiceManager.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
using namespace std::chrono_literals;
using simulator::Agent;
using simulator::Fault;
using simulator::ServiceManager;

namespace {

constexpr char kState[] = "/operational/state/vs/0";
constexpr char kStateProperty[] = "x.com.norvane.da.state";

void Show(Desk& desk) {
    desk.waitForLists(2);
    desk.waitForState("washer", "Ready");
    desk.waitForState("bedside-button", "Ready");
    desk.settle();
}

void Press(Desk& desk, const char* button) {
    desk.agent.set(button, "/capability/button/main/0", "button", "pushed");
    desk.waitForNotify("hl_device_state_updated", button);
}

}  // namespace

// ---- Stopped while a thread is in the middle of something ----

struct Moment {
    const char* name;
    const char* line;  // of the log, at which the thread is caught until the end has begun
    /// What brings it about once the home is shown; null for what happens in each start.
    void (*cause)(Desk&);
    bool isOnMainLoop;
};
void PrintTo(const Moment& moment, std::ostream* out) {
    *out << moment.name;
}

// clang-format off
const Moment kMoments[] = {
    // The scheduler's thread
    {"Connecting", "[TESSEL CLIENT CONNECTED]", nullptr, false},
    {"SigningIn", "is_signed_in(1) reported to UI", nullptr, false},
    {"Registering", "We DO REGISTER callback functions", nullptr, false},
    {"BeginningToBuild", "old device map size", nullptr, false},
    {"InTheMiddleOfTheBuild", "added device id : bedside-button", nullptr, false},
    {"QueuingTheMetadata", "parseMetadata() parsing start!", nullptr, false},
    {"SendingTheList", "R2 Feature Enabled", nullptr, false},
    {"BuildingTheCanvas", "createCanvasMap()", nullptr, false},
    {"TakingAnUpdate", "_HomeLoomClientSubscribeChanged(): Device id: washer",
     [](Desk& desk) { desk.agent.set("washer", kState, kStateProperty, "Run"); }, false},
    {"TakingAnEvent", "state text : Pressed, active : 1",
     [](Desk& desk) { desk.agent.set("hub-button", "/capability/button/main/0", "button", "pushed"); }, false},
    {"SigningOut", "sign out! clear all devices info", [](Desk& desk) { desk.agent.signOut(); }, false},
    {"LosingTheConnection", "5 sec delayed, will start Reinit",
     [](Desk& desk) { desk.agent.changeConnection(Agent::Connection::IoError); }, false},
    // The device handler's threads
    {"ParsingMetadata", "ui metadata parsing done for HL-WASHER-WF24", nullptr, false},
    {"Subscribing", "device_id : washer, jsonResUri", nullptr, false},
    {"TakingValues", "_HomeLoomClientGetDeviceRemoteAttributes(): Device Id: washer", nullptr, false},
    {"ReportingAState", "DeviceStateUpdatedInfo DeviceName:Washer", nullptr, false},
    // "Normal"
    {"InARequest", "Action Url: /operational/state/vs/0",
     [](Desk&) { framework::request("hl_do_main_action", {{"device_id", std::string("washer")}}); }, false},
    {"InARequestForTheHub", "execute local hub connected device",
     [](Desk&) { framework::request("hl_do_main_action", {{"device_id", std::string("hub-plug")}}); }, false},
    {"Scanning", "[SCAN REQUEST]", [](Desk&) { framework::requestDeviceList(); }, false},
    // The framework's threads
    {"TakingARequest", "service property name : hl_get_device_info",
     [](Desk&) { framework::request("hl_get_device_info", {{"device_id", std::string("washer")}}); }, false},
    // The agent's
    {"ToldOfAConnection", "_HomeLoomClientConnectionStateChanged(): Result", nullptr, false},
    {"ToldOfASignOut", "_HomeLoomClientSignInStateChanged(): isSignedIn: 0",
     [](Desk& desk) { desk.agent.signOut(); }, false},
    {"HandingOverAReply", "try to set_value of promise", nullptr, false},
    // The service manager's
    {"LettingGoForAnUpdate", "deinitClientByAgentUpdate Start",
     [](Desk&) { ServiceManager::instance().startUpdate(); }, false},
    {"TakingUpAfterAnUpdate", "initClientByAgentUpdate Start",
     [](Desk&) { ServiceManager::instance().startUpdate(), ServiceManager::instance().endUpdate(); }, false},
    // The main loop
    {"TryingAgain", "try to call homeloom_client_connect",
     [](Desk& desk) { desk.agent.changeConnection(Agent::Connection::IoError), Desk::elapse(5s); }, true},
    {"TheDisclaimerIsWithdrawn", "homeloom_client_disconnect() ret", [](Desk& desk) { desk.setDisclaimer(0); }, true},
    {"AButtonIsReadyAgain", "button timer expired",
     [](Desk& desk) { Press(desk, "hub-button"), Desk::elapse(1s); }, true},
    {"LocationsHaveChanged", "_LocationTimerCallback() start",
     [](Desk& desk) { desk.agent.renameLocation("home", "Flat"), Desk::elapse(500ms); }, true},
};
// clang-format on

// By a thread and by the main loop, which can't be busy with both.
std::vector<std::pair<Moment, bool>> Stops() {
    std::vector<std::pair<Moment, bool>> stops;
    for (const Moment& moment : kMoments) {
        stops.emplace_back(moment, false);
        if (!moment.isOnMainLoop) {
            stops.emplace_back(moment, true);
        }
    }
    return stops;
}

class StoppedWhile : public testing::TestWithParam<std::pair<Moment, bool>> {};
INSTANTIATE_TEST_SUITE_P(Teardown, StoppedWhile, testing::ValuesIn(Stops()), [](const auto& stop) {
    return std::string(stop.param.first.name) + (stop.param.second ? "ByTheMainLoop" : "");
});

TEST_P(StoppedWhile, _) {
    Desk desk(homeloom::test::apartmentWith({"washer", "bedside-button", "hub-button", "hub-plug", "tv-hub"}));
    const auto& [moment, byMainLoop] = GetParam();
    if (moment.cause != nullptr) {
        desk.start();
        Show(desk);
    }
    // A thread is caught at the moment, and goes on when the end has set its first flags.
    std::promise<void> caught;
    desk.atLogLine(moment.line, [&] {
        caught.set_value();
        desk.log.waitFor("[DeviceHandler] Quit", std::chrono::seconds(1));
    });
    moment.cause != nullptr ? moment.cause(desk) : desk.start();
    ASSERT_EQ(caught.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready)
        << "no line: " << moment.line;
    desk.stop(byMainLoop);
}

// ---- Stopped with much or nothing to do ----

class Teardown : public testing::TestWithParam<bool> {
protected:
    void Stop() { desk.stop(GetParam()); }

    Desk desk{homeloom::test::apartmentWith({"washer", "bedside-button", "hub-button", "hub-plug", "tv-hub"})};
};
INSTANTIATE_TEST_SUITE_P(Teardown, Teardown, testing::Bool(),
                         [](const auto& onLoop) { return onLoop.param ? "ByTheMainLoop" : "ByAThread"; });

TEST_P(Teardown, RightAfterTheStart) {
    desk.start();
    Stop();
}

TEST_P(Teardown, WithoutAConnectionEver) {
    desk.agent.fault("homeloom_client_connect", Fault::never());
    desk.start();
    Stop();
}

TEST_P(Teardown, EndsCallsThatAreNeverAnswered) {
    desk.start();
    Show(desk);
    const int scenesRead = desk.agent.callCount("homeloom_core_get_scene_list_async");
    for (const char* function : {"homeloom_core_create_room_async", "homeloom_core_get_scene_list_async",
                                 "homeloom_client_set_remote_attributes", "homeloom_client_get_remote_attributes",
                                 "homeloom_core_get_rule_list_async"}) {
        desk.agent.fault(function, Fault::never());
    }
    const auto action = framework::request("hl_do_main_action", {{"device_id", std::string("washer")}});
    framework::request("hl_get_device_info", {{"device_id", std::string("washer")}});
    framework::request("hl_create_room", {{"location_id", std::string("home")}, {"room_name", std::string("Attic")}});
    desk.agent.sendDeviceDetailList(desk.agent.home().devices);
    // One of the two holds the facade from then on.
    while (desk.agent.callCount("homeloom_core_create_room_async") == 0 &&
           desk.agent.callCount("homeloom_core_get_scene_list_async") == scenesRead) {
        std::this_thread::yield();
    }
    Stop();
    EXPECT_TRUE(desk.log.contains("ESCAPE!. Context Not Running"));
    EXPECT_FALSE(desk.isAnswered(action));
}

TEST_P(Teardown, WithTimersArmed) {
    desk.start();
    Show(desk);
    Press(desk, "bedside-button");
    Press(desk, "hub-button");
    desk.agent.renameLocation("home", "Flat");
    EXPECT_TRUE(desk.log.waitFor("location list updated"));
    desk.settle();
    desk.agent.changeConnection(Agent::Connection::Rejected);
    EXPECT_TRUE(desk.log.waitFor("will start Reinit"));
    EXPECT_GE(desk.armedTimers(), 3);
    Stop();
}

TEST_P(Teardown, InAStormOfJobs) {
    desk.start();
    Show(desk);
    std::thread requests([] {
        for (int i = 0; i < 1000; ++i) {
            framework::request("hl_get_device_info", {{"device_id", std::string("washer")}});
            framework::request("hl_change_device_name");
        }
    });
    for (int i = 0; i < 1000; ++i) {
        desk.agent.set("washer", kState, kStateProperty, i % 2 == 0 ? "Run" : "Pause");
        desk.agent.set("hub-plug", "/capability/switch/main/0", "switch", i % 2 == 0 ? "on" : "off");
    }
    Stop();
    requests.join();
    framework::waitIdle();
    homeloom::desktop::forgetPluginExceptions();  // requests that came between the end and the unsubscribing
}

TEST_P(Teardown, InTheMiddleOfAThousandDevices) {
    desk.agent.load(simulator::generateHome(1000));
    std::promise<void> caught;
    desk.atLogLine("added device id : device-500 to device map", [&] {
        caught.set_value();
        EXPECT_TRUE(desk.log.waitFor("[DeviceHandler] Quit"));
    });
    desk.start();
    caught.get_future().wait();
    Stop();
    EXPECT_FALSE(desk.log.contains("added device id : device-999 to device map"));
}
