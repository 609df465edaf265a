// What the stream of events costs, what a large home's scenes and routines cost, and whether a storm of events loses
// anything.
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <desktop/Framework.h>
#include <homeloom_core.h>
#include <simulator/Agent.h>
#include <simulator/HomeLoader.h>

#include "support/Border.h"
#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Heap.h"
#include "support/Homes.h"
#include "support/Instructions.h"

namespace {

namespace framework = homeloom::desktop::framework;
using bench::border::hubEvent;

constexpr int kRounds = 41;
constexpr int kBatches = 5;
constexpr int kBatch = 100;  // events that wait at once
constexpr int kCounted = 1000;
constexpr int kStorm = 10000;
constexpr int kKinds = 5;  // of which the storm is made
constexpr double kWantedHeapGrowth = 1.02;
constexpr char kWasherState[] = "/operational/state/vs/0";
constexpr char kWasherMinutes[] = "x.com.norvane.da.remainingMinutes";

/// Counts notifies, and keeps the state texts of the two devices whose order is looked at.
class Notifies {
public:
    Notifies() {
        _listener = framework::addListener([this](const framework::ReportPtr& report) { take(*report); });
    }
    ~Notifies() { framework::removeListener(_listener); }
    Notifies(const Notifies&) = delete;
    Notifies& operator=(const Notifies&) = delete;

    void waitFor(int hub, int washer, int others, int answers) {
        std::unique_lock<std::mutex> lock(_mutex);
        const bool came = _arrived.wait_for(lock, std::chrono::minutes(2), [&] {
            return hubTexts.size() >= static_cast<std::size_t>(hub) &&
                   washerTexts.size() >= static_cast<std::size_t>(washer) && _others >= others && _answers >= answers;
        });
        if (!came) {
            bench::fail("events were lost: " + std::to_string(hubTexts.size()) + " of the hub, " +
                        std::to_string(washerTexts.size()) + " of the washer, " + std::to_string(_others) +
                        " others, " + std::to_string(_answers) + " answers");
        }
    }

    std::vector<std::string> hubTexts;
    std::vector<std::string> washerTexts;

private:
    void take(const framework::Report& report) {
        if (report.kind != framework::Report::Kind::Notify) {
            return;
        }
        const std::lock_guard<std::mutex> lock(_mutex);
        const std::string device = report.properties.text("device_id");
        if (report.transaction != 0) {
            ++_answers;
        } else if (device == "hub-plug") {
            hubTexts.push_back(report.properties.text("state_text"));
        } else if (device == "washer") {
            washerTexts.push_back(report.properties.text("state_text"));
        } else {
            ++_others;
        }
        _arrived.notify_all();
    }

    std::mutex _mutex;
    std::condition_variable _arrived;
    int _others = 0;
    int _answers = 0;
    int _listener = 0;
};

using homeloom::test::apartment;

/// A desk whose plug behind the hub is known to the plug-in.
class HubDesk {
public:
    HubDesk() : _desk(apartment()) {
        _desk.show();
        bench::Desk::waitForRest();
        _closed.emplace();
    }

    void sendBatch() {
        for (int i = 0; i < kBatch; ++i) {
            bench::border::sendHubEvent(_sent++);
        }
        _closed->waitFor(_sent);
    }

private:
    bench::Desk _desk;
    std::optional<bench::border::Closed> _closed;
    int _sent = 0;
};

void measureHubEvents() {
    HubDesk desk;
    const std::string text = hubEvent(0);
    std::vector<bench::Seconds> parses;
    std::vector<bench::Seconds> times;
    for (int round = 0; round < kRounds; ++round) {
        parses.push_back(bench::timeOf(1, kBatch, [&] { VMFramework::json::JsonValue::Create(text); }));
        times.push_back(bench::timeOf(1, kBatches, [&] { desk.sendBatch(); }) / kBatch);
    }
    const bench::Seconds parsing = bench::median(parses);
    const bench::Seconds each = bench::median(times);
    bench::print({"hub events, sustained", bench::perSecond(1 / each.count()), "parsing the event's text",
                  bench::perSecond(1 / parsing.count()), each / parsing, "", true});
}

void countInstructions() {
    HubDesk desk;
    desk.sendBatch();  // the first ones fill what is kept
    bench::beginCount();
    for (int sent = 0; sent < kCounted; sent += kBatch) {
        desk.sendBatch();
    }
    bench::endCount("hub event to notify", kCounted);
}

void measureLargeList() {
    simulator::HomePlan plan;
    plan.devices = 20;
    plan.locations = 10;
    plan.scenes = 100;
    plan.routines = 100;
    bench::Desk desk(simulator::generateHome(plan));
    desk.show();
    std::vector<bench::Seconds> times;
    for (int round = 0; round < 15; ++round) {
        const std::size_t mark = framework::reportCount();
        const auto start = bench::Clock::now();
        framework::requestDeviceList();
        const auto isList = [](const framework::Report& report) {
            return report.kind == framework::Report::Kind::DeviceList;
        };
        if (framework::waitFor(isList, std::chrono::minutes(1), mark) == nullptr) {
            bench::fail("the list did not come");
        }
        times.push_back(bench::Clock::now() - start);
    }
    // Each location costs the agent two calls, for its scenes and its routines; a call costs two changes of threads.
    std::mutex mutex;
    const bench::Seconds wake = bench::timeOf(7, 20, [&] {
        std::thread([&] {
            mutex.lock();
            mutex.unlock();
        }).join();
    });
    bench::print({"list of 10 locations, 100 scenes, 100 routines", bench::text(bench::median(times)),
                  "starting and joining a thread", bench::text(wake), bench::median(times) / wake, "", true});
}

// Events of five kinds in turn, requests meanwhile.
void storm(Notifies& notifies) {
    auto& agent = simulator::Agent::instance();
    const int each = kStorm / kKinds;
    for (int i = 0; i < each; ++i) {
        agent.sendEvent(HOMELOOM_CORE_SSE_DEVICE_EVENT, hubEvent(i));
        agent.set("washer", kWasherState, kWasherMinutes, std::to_string(1 + i % 1000));
        agent.sendEvent(HOMELOOM_CORE_SSE_SCENE_LIFECYCLE,
                        R"({"lifecycle":"DELETE","locationId":"home","sceneId":"movie-time"})");
        agent.sendEvent(HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE,
                        R"({"lifecycle":"DELETE","locationId":"home","ruleId":"night-watch"})");
        agent.sendEvent(HOMELOOM_CORE_SSE_DEVICE_EVENT, R"({"deviceId":"washer","capability":"nobody's"})");
        if (i % 100 == 0) {
            framework::request("hl_get_favorite", {{"location_id", std::string("home")}});
        }
    }
    notifies.waitFor(each, each, 2 * each, each / 100);
}

void checkOrder(const Notifies& notifies) {
    for (std::size_t i = 0; i < notifies.hubTexts.size(); ++i) {
        if (notifies.hubTexts[i] != (i % 2 == 0 ? "On" : "Off")) {
            bench::fail("the hub's events came out of order");
        }
    }
    for (std::size_t i = 0; i < notifies.washerTexts.size(); ++i) {
        const std::string minutes = std::to_string(1 + i % (kStorm / kKinds) % 1000);
        if (notifies.washerTexts[i].find(" " + minutes + " min") == std::string::npos) {
            bench::fail("the washer's updates came out of order: " + notifies.washerTexts[i]);
        }
    }
}

void measureStorm() {
    bench::Desk desk(apartment());
    framework::keepReports(1);
    auto& agent = simulator::Agent::instance();
    desk.show();
    desk.waitForSubscription("washer");
    agent.set("washer", kWasherState, "x.com.norvane.da.state", "Run");
    agent.waitIdle();
    {
        // The first storm warms up what is kept from then on; the second must not keep more.
        Notifies warmUp;
        storm(warmUp);
    }
    const double before = bench::heapAtRest();
    {
        Notifies notifies;
        storm(notifies);
        checkOrder(notifies);
    }
    const double after = bench::heapAtRest();
    const auto inKiB = [](double bytes) { return std::to_string(static_cast<int>(bytes / 1024)) + " KiB"; };
    bench::print({"heap after a storm of 10,000 events", inKiB(after), "heap before it", inKiB(before), after / before,
                  "at most 1.02", after <= kWantedHeapGrowth * before});
}

}  // namespace

int main(int count, char** arguments) {
    if (bench::isCountingInstructions(count, arguments)) {
        bench::border::stayOnOneProcessor();
        countInstructions();
        return 0;
    }
    // Its threads stay on one processor; those of the other figures use what there is.
    std::thread([] {
        bench::border::stayOnOneProcessor();
        measureHubEvents();
    }).join();
    measureLargeList();
    measureStorm();
    return bench::exitStatus();
}
