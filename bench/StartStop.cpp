// How long the plug-in takes to show the apartment, to let go of it and take it up again when the agent is updated, and
// to go when a thousand jobs still wait.
#include <vector>

#include <VMFramework/JsonValue.h>
#include <desktop/Framework.h>
#include <simulator/Agent.h>
#include <simulator/ServiceManager.h>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"

namespace framework = homeloom::desktop::framework;
using VMFramework::json::JsonValue;

namespace {

constexpr int kRounds = 21;
constexpr int kJobs = 1000;
constexpr char kRequest[] = "hl_execute_scene";
constexpr char kAgentCall[] = "homeloom_core_execute_scene_async";

using homeloom::test::apartment;

/// Parsing every document of the apartment's device models once.
bench::Seconds timeOfParsing(const simulator::Home& home) {
    return bench::timeOf(21, 10, [&home] {
        for (const auto& [vid, model] : home.models) {
            if (!model.uiMetadata.empty() && JsonValue::Create(model.uiMetadata).isNull()) {
                bench::fail(vid + " is no JSON");
            }
        }
    });
}

/// Returns the time to the second list.
bench::Seconds measureStart(bench::Seconds parsing) {
    std::vector<bench::Seconds> first;
    std::vector<bench::Seconds> second;
    for (int round = 0; round < kRounds; ++round) {
        bench::Desk desk(apartment());
        const auto start = bench::Clock::now();
        desk.create();
        desk.waitForLists(1);
        first.push_back(bench::Clock::now() - start);
        desk.waitForLists(2);
        second.push_back(bench::Clock::now() - start);
        simulator::Agent::instance().waitIdle();
    }
    const bench::Seconds toFirst = bench::median(first);
    bench::print({"CreatePlugin to the apartment's first list", bench::text(toFirst), "parsing its models' documents",
                  bench::text(parsing), toFirst / parsing, "", true});
    const bench::Seconds toSecond = bench::median(second);
    bench::print({"CreatePlugin to the apartment's second list", bench::text(toSecond), "parsing its models' documents",
                  bench::text(parsing), toSecond / parsing, "", true});
    return toSecond;
}

void measureUpdate(bench::Seconds start) {
    auto& manager = simulator::ServiceManager::instance();
    bench::Desk desk(apartment());
    desk.show();
    std::vector<bench::Seconds> ends;
    std::vector<bench::Seconds> cycles;
    for (int round = 0; round < kRounds; ++round) {
        const auto begin = bench::Clock::now();
        manager.startUpdate();
        manager.waitIdle();
        ends.push_back(bench::Clock::now() - begin);
        desk.forgetLists();
        manager.endUpdate();
        desk.waitForLists(2);
        cycles.push_back(bench::Clock::now() - begin);
        simulator::Agent::instance().waitIdle();
    }
    const auto print = [start](const char* name, bench::Seconds time) {
        bench::print(
            {name, bench::text(time), "CreatePlugin to the second list", bench::text(start), time / start, "", true});
    };
    print("agent's update, letting go of the apartment", bench::median(ends));
    print("agent's update, to the second list after it", bench::median(cycles));
}

bench::Seconds timeOfStop(int jobs) {
    std::vector<bench::Seconds> times;
    for (int round = 0; round < kRounds; ++round) {
        bench::Desk desk(apartment());
        desk.show();
        auto& agent = simulator::Agent::instance();
        // The first job waits for an answer that never comes, the others for it.
        agent.fault(kAgentCall, simulator::Fault::never());
        for (int job = 0; job < jobs; ++job) {
            framework::request(kRequest, {{"location_id", std::string("home")}, {"scene_id", std::string("night")}});
        }
        if (!framework::waitIdle() || (jobs > 0 && agent.callCount(kAgentCall) > 1)) {
            bench::fail("the jobs don't wait");
        }
        const auto start = bench::Clock::now();
        desk.destroy();
        times.push_back(bench::Clock::now() - start);
    }
    return bench::median(times);
}

}  // namespace

int main() {
    measureUpdate(measureStart(timeOfParsing(apartment())));
    const bench::Seconds idle = timeOfStop(0);
    const bench::Seconds busy = timeOfStop(kJobs);
    bench::print({"DestroyPlugin while 1,000 jobs wait", bench::text(busy), "DestroyPlugin while none does",
                  bench::text(idle), busy / idle, "", true});
    return bench::exitStatus();
}
