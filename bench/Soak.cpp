// A week of a home's life: ten million events over 200 devices, with persons, sign-outs, agent updates and faults among
// them. What the plug-in holds at the end must be what a plug-in holds that has lived in the same home for three hours.
// The clock is turned, so that a week takes as long as its events need. The argument says how many hours are lived.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <clock/Clock.h>
#include <clock/Rest.h>
#include <desktop/Framework.h>
#include <fmt/core.h>
#include <homeloom_core.h>
#include <simulator/Agent.h>
#include <simulator/HomeLoader.h>
#include <simulator/ServiceManager.h>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Heap.h"

namespace {

namespace clk = homeloom::clock;
namespace framework = homeloom::desktop::framework;
using namespace std::chrono_literals;

constexpr int kDevices = 200;
constexpr int kHubDevices = 20;
constexpr int kLocations = 4;
constexpr int kScenes = 20;                                    // and as many routines
constexpr int kEntries = kDevices + kLocations + 2 * kScenes;  // of a list
constexpr int kEventsPerHour = 59524;                          // ten millions in a week
constexpr int kPartsOfAnHour = 5;
constexpr auto kPart = 12min;
// Longer than the agent's limit of 30 seconds, and in order, unlike the long leaps: every timer of the plug-in fires.
constexpr auto kWhile = 35s;
constexpr int kYoungHours = 3;
// The desk's framework keeps the transaction of each request until the plug-in is closed: five thousand in a week. A
// byte lost with each event would make it more than ten times as much.
constexpr double kWantedGrowth = 1.2;

struct Held {
    double heap;
    long descriptors;
    long threads;
    long handles;  // of the agent's and the framework's objects, but for the transactions
};

long threadsNow() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

// Without those by which the clock watches each thread.
long descriptorsNow() {
    long count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        count += std::filesystem::read_symlink(entry, error).native().rfind("/proc/", 0) == 0 ? 0 : 1;
    }
    return count;
}

Held held() {
    clk::waitForRest();
    const framework::Handles handles = framework::liveHandles();
    return {
        bench::heapInUse(), descriptorsNow(), threadsNow(),
        simulator::Agent::instance().holdings().total() + static_cast<long>(handles.total() - handles.transactions)};
}

/// What happens in a home, drawn by lot from one seed: every run lives the same week.
class Life {
public:
    explicit Life(const simulator::Home& home) : _home(home) {}

    long events() const { return _events; }

    void hour(int number) {
        for (int part = 0; part < kPartsOfAnHour; ++part) {
            for (int i = 0; i < kEventsPerHour / kPartsOfAnHour; ++i) {
                event();
            }
            clk::waitForRest();
            person();
            clk::waitForRest();
            clk::advance(kPart);
        }
        misfortune();
        if (number % 12 == 0) {
            update();
        }
        signOutAndIn();
        agent().resetCalls();
    }

private:
    static simulator::Agent& agent() { return simulator::Agent::instance(); }

    int below(int limit) { return static_cast<int>(_lot() % static_cast<unsigned>(limit)); }

    std::string someDevice() { return "device-" + std::to_string(below(kDevices)); }
    std::string someLocation() { return "location-" + std::to_string(below(kLocations)); }
    std::string someScene() { return "scene-" + std::to_string(below(kScenes)); }

    void event() {
        ++_events;
        switch (below(100)) {
            case 0:
                agent().sendEvent(HOMELOOM_CORE_SSE_SCENE_LIFECYCLE,
                                  R"({"lifecycle":"DELETE","locationId":"location-0","sceneId":"nobody's"})");
                break;
            case 1:
                agent().sendEvent(HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE,
                                  R"({"lifecycle":"DELETE","locationId":"location-0","ruleId":"nobody's"})");
                break;
            case 2:
                agent().sendEvent(HOMELOOM_CORE_SSE_DEVICE_EVENT, "no document {");
                break;
            case 3:
                agent().sendEvent(HOMELOOM_CORE_SSE_DEVICE_EVENT, R"({"deviceId":"nobody's","capability":"switch"})");
                break;
            default:
                changeDevice();
        }
    }

    // Somebody at the device, or the device itself.
    void changeDevice() {
        const simulator::Device& device = _home.devices[static_cast<std::size_t>(below(kDevices))];
        const auto& commands = _home.models.at(device.vid).commands;
        const simulator::Change& change =
            commands[static_cast<std::size_t>(below(static_cast<int>(commands.size())))].changes[0];
        agent().set(device.id, change.uri, change.property, change.value);
    }

    // Somebody at the TV, or at the telephone.
    void person() {
        framework::request("hl_do_main_action", {{"device_id", someDevice()}});
        framework::request("hl_execute_scene", {{"location_id", someLocation()}, {"scene_id", someScene()}});
        framework::request("hl_get_favorite", {{"location_id", someLocation()}});
        framework::request("hl_get_device_icon_info", {{"device_id", someDevice()}});
        framework::request("hl_get_device_info", {{"device_id", std::string("nobody's")}});
        const std::string device = someDevice();
        agent().renameDevice(device, "Device " + std::to_string(below(1000)));
        agent().setStatus(device, 1);
        agent().setStatus(device, 0);
        agent().removeRoom(agent().addRoom(someLocation(), "Attic"));
        framework::requestDeviceList();
    }

    // One function of the agent fails for a while, in one of the ways in which it can.
    void misfortune() {
        const auto& names = _mayFail;
        const std::array<simulator::Fault, 6> faults = {
            simulator::Fault::fail(-5),  simulator::Fault::answer(-5), simulator::Fault::say("no document {"),
            simulator::Fault::late(31s), simulator::Fault::twice(),    simulator::Fault::null()};
        agent().fault(names[static_cast<std::size_t>(below(static_cast<int>(names.size())))],
                      faults[static_cast<std::size_t>(below(static_cast<int>(faults.size())))]);
        person();
        clk::waitForRest();
        clk::advance(kWhile);
        agent().clearFaults();
        clk::advance(kWhile);
    }

    static void update() {
        simulator::ServiceManager::instance().startUpdate();
        clk::waitForRest();
        clk::advance(kWhile);
        simulator::ServiceManager::instance().endUpdate();
        clk::waitForRest();
        clk::advance(kWhile);
    }

    static void signOutAndIn() {
        agent().signOut();
        clk::waitForRest();
        agent().signIn();
        clk::waitForRest();
        clk::advance(kWhile);
    }

    // A record whose destruction fails stays: the agent's doing, and nobody's leak.
    static std::vector<std::string> allButDestroyers() {
        std::vector<std::string> names = simulator::Agent::functionNames();
        const auto destroys = [](const std::string& name) { return name.find("_destroy") != std::string::npos; };
        names.erase(std::remove_if(names.begin(), names.end(), destroys), names.end());
        return names;
    }

    const simulator::Home& _home;
    const std::vector<std::string> _mayFail = allButDestroyers();
    std::mt19937 _lot{1};
    long _events = 0;
};

/// Counts what the framework is told.
class Told {
public:
    Told() {
        _listener = framework::addListener([this](const framework::ReportPtr& report) {
            if (report->kind == framework::Report::Kind::DeviceList) {
                _entries = static_cast<long>(report->endpoints.size());
            } else {
                ++_notifies;
            }
        });
    }
    ~Told() { framework::removeListener(_listener); }
    Told(const Told&) = delete;
    Told& operator=(const Told&) = delete;

    long notifies() const { return _notifies; }
    long lengthOfLastList() const { return _entries; }

private:
    std::atomic<long> _notifies{0};
    std::atomic<long> _entries{0};
    int _listener = 0;
};

void row(const std::string& after, long events, long notifies, const Held& now) {
    fmt::print("| {:<10} | {:>10} | {:>10} | {:>10.0f} | {:>11} | {:>7} | {:>7} |\n", after, events, notifies,
               now.heap / 1024, now.descriptors, now.threads, now.handles);
    std::fflush(stdout);
}

// What comes back when the plug-in is closed: what the simulated agent keeps stays out.
double heapThatComesBack(bench::Desk& desk) {
    const double open = held().heap;
    clk::run();
    desk.close();
    return open - held().heap;
}

// A person's touch must show at once: a plug-in that holds nothing because it is dead passes no soak.
void expectAlive(const Told& told) {
    const long before = told.notifies();
    for (const char* value : {"Run", "Ready"}) {
        simulator::Agent::instance().set("device-25", "/operational/state/vs/0", "x.com.norvane.da.state", value);
    }
    clk::waitForRest();
    if (told.notifies() < before + 2) {
        bench::fail("a device's change was not told any more");
    }
    if (told.lengthOfLastList() != kEntries) {
        bench::fail("the last list holds " + std::to_string(told.lengthOfLastList()) + " entries");
    }
    for (const std::string& text : simulator::Agent::instance().escapedExceptions()) {
        bench::fail("an exception escaped: " + text);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int hours = argc > 1 ? std::atoi(argv[1]) : 168;
    if (hours < 2) {
        bench::fail("at least two hours are needed");
    }
    simulator::HomePlan plan;
    plan.devices = kDevices;
    plan.hubDevices = kHubDevices;
    plan.locations = kLocations;
    plan.scenes = kScenes;
    plan.routines = kScenes;
    const simulator::Home home = simulator::generateHome(plan);
    bench::Desk desk(home);
    const Told told;
    Life life(home);
    fmt::print("| {:<10} | {:>10} | {:>10} | {:>10} | {:>11} | {:>7} | {:>7} |\n", "After", "Events", "Told",
               "Heap, KiB", "Descriptors", "Threads", "Handles");
    fmt::print("|{:-<12}|{:->11}:|{:->11}:|{:->11}:|{:->12}:|{:->8}:|{:->8}:|\n", "", "", "", "", "", "", "");
    desk.show();
    clk::stand();
    Held first{};
    Held last{};
    for (int hour = 0; hour < hours; ++hour) {
        life.hour(hour);
        expectAlive(told);
        last = held();
        if (hour == 0) {
            first = last;
        }
        if (hour == 0 || hour % 24 == 23 || hour + 1 == hours) {
            row(fmt::format("{} h", hour + 1), life.events(), told.notifies(), last);
        }
    }
    const double old = heapThatComesBack(desk);

    desk.open();
    desk.show();
    clk::stand();
    for (int hour = 0; hour < kYoungHours; ++hour) {
        life.hour(hour);
    }
    const double young = heapThatComesBack(desk);

    const bool isKept = old <= kWantedGrowth * young && last.descriptors == first.descriptors &&
                        last.threads == first.threads && last.handles == first.handles;
    fmt::print("\nheap of the plug-in at the end {:.0f} KiB, of one that has lived for {} hours {:.0f} KiB: {}\n",
               old / 1024, kYoungHours, young / 1024,
               isKept ? "kept" : "NOT KEPT, or the descriptors, threads or handles");
    return isKept ? 0 : 1;
}
