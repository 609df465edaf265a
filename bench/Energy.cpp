// What the energy report's second stage takes, which asks each device, and what it leaves to others meanwhile.
#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <desktop/Framework.h>
#include <simulator/Agent.h>
#include <simulator/Fault.h>
#include <simulator/HomeLoader.h>

#include "support/Desk.h"
#include "support/Figures.h"

namespace framework = homeloom::desktop::framework;

namespace {

constexpr int kDevices = 200;
constexpr std::chrono::milliseconds kAnswerTime{5};
constexpr std::chrono::seconds kLimit{60};
constexpr int kRounds = 200;

const std::string kEnergy = "hl_get_energy_info";
// Refused before anybody asks the agent.
const std::string kWithoutAgent = "hl_change_device_name";
const std::string kWithAgent = "get_locksmith_key_value";

simulator::Home meteredHome() {
    simulator::Home home = simulator::generateHome(kDevices);
    for (simulator::Device& device : home.devices) {
        device.location = home.locations.front().id;
        device.room.clear();
        device.energyThisMonth = 1000;
    }
    home.installedApps = {{"energy", "HomeLoomEnergy", "AUTHORIZED", "app", home.locations.front().id, "", ""}};
    return home;
}

void await(const std::string& what, std::size_t from, const framework::ReportTest& test) {
    if (!framework::waitFor(test, kLimit, from)) {
        bench::fail(what + " did not come");
    }
}

/// From the request to its answer.
bench::Seconds timeOfAnswer(const std::string& name, const homeloom::desktop::Fields& arguments = {}) {
    const std::size_t from = framework::reportCount();
    const auto start = bench::Clock::now();
    const auto id = framework::request(name, arguments);
    await("the answer to " + name, from, [id](const framework::Report& report) { return report.transaction == id; });
    return bench::Clock::now() - start;
}

bench::Seconds timeOfEnergyAnswer() {
    return timeOfAnswer(kEnergy, {{"installed_app_id", std::string("energy")}});
}

void awaitSecondStage(std::size_t from) {
    await("the second stage", from,
          [](const framework::Report& report) { return report.name == "hl_energy_info_updated"; });
}

/// The times of that request, over and over while a second stage goes on.
std::vector<bench::Seconds> timesMeanwhile(const std::string& name) {
    const std::size_t from = framework::reportCount();
    timeOfEnergyAnswer();
    std::vector<bench::Seconds> times;
    const auto isOver = [from] {
        return framework::waitFor(
                   [](const framework::Report& report) { return report.name == "hl_energy_info_updated"; },
                   std::chrono::milliseconds(0), from) != nullptr;
    };
    while (true) {
        const bench::Seconds time = timeOfAnswer(name, {{"locksmith_key", std::string("door")}});
        if (isOver()) {
            break;
        }
        times.push_back(time);
    }
    if (times.empty()) {
        bench::fail("nothing was answered during the second stage");
    }
    return times;
}

bench::Seconds timeOfWaiting() {
    const auto start = bench::Clock::now();
    for (int i = 0; i < kDevices; ++i) {
        std::this_thread::sleep_for(kAnswerTime);
    }
    return bench::Clock::now() - start;
}

}  // namespace

int main() {
    bench::Desk desk(meteredHome());
    desk.show();
    framework::keepReports(100000);
    std::vector<bench::Seconds> idle;
    for (int i = 0; i < kRounds; ++i) {
        idle.push_back(timeOfAnswer(kWithoutAgent));
    }
    const bench::Seconds alone = bench::median(idle);

    simulator::Agent::instance().fault("homeloom_core_get_device_status", simulator::Fault::late(kAnswerTime));
    const std::size_t from = framework::reportCount();
    const bench::Seconds first = timeOfEnergyAnswer();
    const auto answered = bench::Clock::now();
    awaitSecondStage(from);
    const bench::Seconds second = bench::Clock::now() - answered;
    const bench::Seconds waiting = timeOfWaiting();
    bench::print({"energy, request to first answer, 200 devices", bench::text(first), "a request without agent call",
                  bench::text(alone), first / alone, "", true});
    bench::print({"energy, second stage, 200 devices", bench::text(second), "200 waits of 5 ms", bench::text(waiting),
                  second / waiting, "at most 1.1", second <= 1.1 * waiting});

    const bench::Seconds free = bench::median(timesMeanwhile(kWithoutAgent));
    bench::print({"request during the second stage, median", bench::text(free), "the same while nothing goes on",
                  bench::text(alone), free / alone, "at most 3", free <= 3 * alone});
    const auto asking = timesMeanwhile(kWithAgent);
    const bench::Seconds slowest = *std::max_element(asking.begin(), asking.end());
    const bench::Seconds answer = kAnswerTime;
    bench::print({"the same with an agent call, slowest", bench::text(slowest), "one of the agent's answers",
                  bench::text(answer), slowest / answer, "at most 3", slowest <= 3 * answer});
    return bench::exitStatus();
}
