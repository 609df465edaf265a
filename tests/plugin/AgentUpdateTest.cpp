// Updates of the agent while everybody wants something of the plug-in.

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "RequestTable.h"
#include "Words.h"
#include "desktop/Guard.h"
#include "simulator/ServiceManager.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
using simulator::Agent;
using simulator::Fault;
using simulator::ServiceManager;

namespace {

constexpr char kState[] = "/operational/state/vs/0";
constexpr char kStateProperty[] = "x.com.norvane.da.state";
constexpr int kUpdateStarted = 2;
constexpr int kUpdateEnded = 3;

bool IsShown(const Screen& screen) {
    return screen.stateText("dryer") == "Drying · 18 min left";
}

}  // namespace

class AgentUpdate : public testing::Test {
protected:
    void StartAndShow() {
        desk.start();
        desk.waitFor("the dryer", IsShown);
        desk.settle();
    }

    Screen WaitForHomeAfter(int lists) {
        return desk.waitFor("the home again", [lists](const Screen& s) { return s.lists > lists + 1 && IsShown(s); });
    }

    Desk desk{homeloom::test::apartmentWith({"washer", "dryer", "ceiling-light", "living-camera", "fridge",
                                             "bedside-button", "tag", "tv-hub", "hub-plug", "hub-button", "ir-fan"})};
    ServiceManager& manager = ServiceManager::instance();
};

TEST_F(AgentUpdate, AnAgentThatAnswersAtOnceIsHeard) {
    StartAndShow();
    manager.startUpdate();
    manager.waitIdle();
    const int lists = desk.screen().lists;
    desk.log.clear();
    // The connected event is out before the function that asked for the connection has returned.
    desk.atLogLine("homeloom_client_connect() requested", [this] {
        desk.agent.waitIdle();
        EXPECT_TRUE(desk.log.waitFor("[SGTMsgDispatcher][_HomeLoomClientConnectionStateChanged] before job"));
    });
    manager.endUpdate();
    WaitForHomeAfter(lists);
}

TEST_F(AgentUpdate, IsAnnouncedOutOfOrder) {
    StartAndShow();
    desk.log.clear();
    for (const int status : {kUpdateEnded, 0, 1, 4, -1}) {
        manager.announce(status);
    }
    manager.waitIdle();
    EXPECT_EQ(desk.log.count("ClientByAgentUpdate"), 0);

    manager.startUpdate();
    manager.announce(kUpdateStarted);
    manager.waitIdle();
    EXPECT_EQ(desk.log.count("deinitClientByAgentUpdate Start"), 1);
    EXPECT_TRUE(desk.log.contains("now on updating. skip"));

    const int lists = desk.screen().lists;
    manager.endUpdate();
    manager.announce(kUpdateEnded);
    WaitForHomeAfter(lists);
    EXPECT_EQ(desk.log.count("  initClientByAgentUpdate Start"), 1);
}

TEST_F(AgentUpdate, ASettingThatChangesMeanwhileCounts) {
    StartAndShow();
    manager.startUpdate();
    manager.waitIdle();
    desk.setDisclaimer(0);
    manager.endUpdate();
    manager.waitIdle();
    desk.settle();
    EXPECT_EQ(desk.agent.holdings().clients, 0);
    const int lists = desk.screen().lists;
    desk.setDisclaimer(1);
    WaitForHomeAfter(lists);
}

// ---- Everything at once ----

class Hammered : public AgentUpdate {
protected:
    Hammered() {
        for (const auto& spec : homeloom::tv::requestTable()) {
            _requests.emplace_back(spec.name,
                                   homeloom::tv::typedArguments(spec, homeloom::tv::splitWords(spec.example)));
        }
        // A call that waits for its answer is found in the middle of it.
        desk.agent.fault("homeloom_core_get_rule_list_async", Fault::late(std::chrono::milliseconds(1)));
        // The home keeps its size.
        for (const char* function :
             {"homeloom_core_create_room_async", "homeloom_core_create_scene_async", "homeloom_core_create_favorite"}) {
            desk.agent.fault(function, Fault::answer(-5));
        }
    }

    ~Hammered() override { StopHammering(); }

    void StartHammering() {
        StartThread([this](std::size_t round) {
            for (std::size_t i = 0; i < _requests.size(); ++i) {
                // Neither of the two threads always goes first.
                const auto& [name, arguments] = _requests[(i + round * 7) % _requests.size()];
                framework::request(name, arguments);
            }
            framework::requestDeviceList();
            ++_passes;
            WaitForRoom();
        });
        StartThread([this](std::size_t round) {
            const auto& [name, arguments] = _requests[round % _requests.size()];
            framework::request(name, arguments);
            std::this_thread::yield();
            WaitForRoom();
        });
        StartThread([this](std::size_t round) {
            SendEvents(round);
            WaitForPass(_passes + 1);
        });
    }

    void StopHammering() {
        _isOver = true;
        for (auto& thread : _threads) {
            thread.join();
        }
        _threads.clear();
    }

    /// One update, with what may come in the middle of it.
    void UpdateOnce(int round) {
        manager.startUpdate();
        switch (round % 5) {
            case 0:
                manager.waitIdle();
                break;
            case 1:
                manager.announce(kUpdateStarted);
                break;
            case 2:
                desk.setDisclaimer(0);
                desk.setDisclaimer(1);
                break;
            case 3:
                manager.waitIdle();
                desk.agent.signOut();
                desk.agent.signIn();
                break;
            default:
                break;
        }
        manager.endUpdate();
        if (round % 7 == 0) {
            manager.announce(kUpdateEnded);
        }
        if (round % 5 == 0) {
            manager.waitIdle();
            // Some homes are built, others only begun.
            WaitForPass(_passes + 1);
        }
        // What was said so far is not of interest.
        desk.log.clear();
        framework::keepReports(0);
        framework::keepReports(1000000);
    }

private:
    void StartThread(std::function<void(std::size_t)> round) {
        _threads.emplace_back([this, round = std::move(round)] {
            for (std::size_t i = 0; !_isOver; ++i) {
                round(i);
            }
        });
    }

    void WaitForPass(int pass) const {
        while (!_isOver && _passes < pass) {
            std::this_thread::yield();
        }
    }

    /// Until the queues of the plug-in are short again: each request in them holds its list.
    void WaitForRoom() const {
        while (!_isOver && framework::liveHandles().propertyLists > _requests.size()) {
            std::this_thread::yield();
        }
    }

    void SendEvents(std::size_t round) {
        Agent& agent = desk.agent;
        const char* const on = round % 2 == 0 ? "on" : "off";
        agent.set("washer", kState, kStateProperty, round % 2 == 0 ? "Run" : "Pause");
        agent.set("hub-plug", "/capability/switch/main/0", "switch", on);
        agent.set("living-camera", "/capability/switch/main/0", "switch", on);
        for (const char* button : {"bedside-button", "hub-button"}) {
            agent.set(button, "/capability/button/main/0", "button", "pushed");
        }
        agent.setStatus("washer", static_cast<int>(round % 2));
        agent.setStatus("hub-plug", static_cast<int>(round % 2));
        agent.renameDevice("washer", "Washer " + std::to_string(round));
        agent.renameLocation("home", "Home " + std::to_string(round));
        const std::string json = R"({"deviceId":"living-camera","capability":"webrtc","attribute":"stream",)"
                                 R"("locationId":"home","sceneId":"good-night","ruleId":"night-watch",)"
                                 R"("lifecycle":")" +
                                 std::string(round % 3 == 0   ? "CREATE"
                                             : round % 3 == 1 ? "UPDATE"
                                                              : "DELETE") +
                                 R"(","stateChange":true,"status":"ONLINE","eventType":"energy","value":{}})";
        for (int kind = 1; kind <= 0x40000; kind *= 2) {
            agent.sendEvent(kind, json);
        }
        agent.sendThirdPartyNotificationStatusChange();
        const simulator::Home home = agent.home();
        agent.sendDeviceDetailList(home.devices);
        agent.sendDeviceList({"washer", "dryer", "living-camera", "tv-hub", "hub-plug", "hub-button"});
        if (round % 8 == 0) {
            agent.changeConnection(Agent::Connection::IoError);
        }
        agent.waitIdle(std::chrono::milliseconds(20));
    }

    std::vector<std::pair<std::string, homeloom::desktop::Fields>> _requests;
    std::atomic<int> _passes{0};  // of all requests
    std::atomic<bool> _isOver{false};
    std::vector<std::thread> _threads;
};

TEST_F(Hammered, AHundredTimes) {
    StartAndShow();
    StartHammering();
    for (int round = 0; round < 100; ++round) {
        UpdateOnce(round);
    }
    StopHammering();
    desk.agent.clearFaults();
    manager.waitIdle();
    // What was asked for is done, whatever came of it, and the home is as whole as before.
    desk.setDisclaimer(1);
    desk.agent.signIn();
    desk.settle();
    desk.agent.sendDeviceDetailList(desk.agent.home().devices);
    desk.agent.set("dryer", kState, kStateProperty, "Ready");
    desk.waitForState("dryer", "Ready");
}

class HammeredToTheEnd : public Hammered, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(AgentUpdate, HammeredToTheEnd, testing::Bool(),
                         [](const auto& onLoop) { return onLoop.param ? "ByTheMainLoop" : "ByAThread"; });

TEST_P(HammeredToTheEnd, _) {
    StartAndShow();
    StartHammering();
    for (int round = 0; round < 10; ++round) {
        UpdateOnce(round);
    }
    std::atomic<bool> isOver{false};
    std::thread updates([&] {
        for (int round = 0; !isOver; ++round) {
            UpdateOnce(round);
        }
    });
    desk.stop(GetParam());
    isOver = true;
    updates.join();
    StopHammering();
    manager.waitIdle();
    framework::waitIdle();
    homeloom::desktop::forgetPluginExceptions();  // requests that came between the end and the unsubscribing
}
