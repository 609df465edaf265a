// How fast an update of a device becomes a notify: from the agent's call of the subscription's callback, through the
// scheduler and the evaluation of the UI metadata, to the plug-in's call of the framework.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>

#include "support/Border.h"
#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"
#include "support/Instructions.h"

using VMFramework::json::JsonValue;

namespace {

constexpr int kRounds = 101;
constexpr int kParses = 500;
constexpr int kBatches = 5;
constexpr int kBatch = 100;  // updates that wait at once
constexpr int kSingles = 10000;
constexpr int kCounted = 1000;
constexpr double kWantedRatio = 1.5;
constexpr bench::Seconds kWantedSlowest{0.020};

void parseBoth() {
    const JsonValue representation = JsonValue::Create(bench::border::representation(0));
    const JsonValue types = JsonValue::Create(bench::border::types());
    if (representation.size() != types.size()) {
        bench::fail("the texts are no JSON");
    }
}

// A floor that no change of the code under test moves: the same few thousand steps, each of which needs the last one's
// result.
void referenceLoop() {
    std::uint64_t hash = 14695981039346656037U;
    for (std::uint64_t step = 0; step < 4096; ++step) {
        hash = (hash ^ (step & 0xff)) * 1099511628211U;
    }
    if (hash == 0) {
        bench::fail("the loop's result is wrong");
    }
}

class Updates {
public:
    void sendBatch() {
        for (int i = 0; i < kBatch; ++i) {
            bench::border::update(_sent++);
        }
        _closed.waitFor(_sent);
    }
    void sendOne() {
        bench::border::update(_sent++);
        _closed.waitFor(_sent);
    }

private:
    bench::border::Closed _closed;
    int _sent = 0;
};

bench::Seconds measureSustained(Updates& updates) {
    // In turn, so that all meet the same machine.
    std::vector<bench::Seconds> loops;
    std::vector<bench::Seconds> parses;
    std::vector<bench::Seconds> times;
    for (int round = 0; round < kRounds; ++round) {
        loops.push_back(bench::timeOf(1, kParses, referenceLoop));
        parses.push_back(bench::timeOf(1, kParses, parseBoth));
        times.push_back(bench::timeOf(1, kBatches, [&] { updates.sendBatch(); }) / kBatch);
    }
    const bench::Seconds loop = bench::median(loops);
    const bench::Seconds parse = bench::median(parses);
    const bench::Seconds sustained = bench::median(times);
    const std::string rate = bench::perSecond(1 / sustained.count());
    bench::print({"update to notify, sustained", rate, "a loop of 4,096 multiplications",
                  bench::perSecond(1 / loop.count()), sustained / loop, "at most 1.5",
                  sustained <= kWantedRatio * loop});
    bench::print({"update to notify, sustained", rate, "parsing the same two texts",
                  bench::perSecond(1 / parse.count()), sustained / parse, "", true});
    return loop;
}

void measureSingles(Updates& updates, bench::Seconds loop) {
    std::vector<bench::Seconds> times;
    for (int i = 0; i < kSingles; ++i) {
        const auto start = bench::Clock::now();
        updates.sendOne();
        times.push_back(bench::Clock::now() - start);
    }
    const bench::Seconds slowest = *std::max_element(times.begin(), times.end());
    const bench::Seconds usual = bench::median(times);
    bench::print({"update to notify, one at a time, median", bench::text(usual), "a loop of 4,096 multiplications",
                  bench::text(loop), usual / loop, "", true});
    bench::print({"update to notify, slowest of 10,000", bench::text(slowest), "the median of the same",
                  bench::text(usual), slowest / usual, "under 20 ms", slowest < kWantedSlowest});
}

void countInstructions(Updates& updates) {
    updates.sendBatch();  // the first ones fill what is kept
    bench::beginCount();
    for (int sent = 0; sent < kCounted; sent += kBatch) {
        updates.sendBatch();
    }
    bench::endCount("update to notify", kCounted);
}

}  // namespace

int main(int count, char** arguments) {
    bench::border::stayOnOneProcessor();
    bench::Desk desk(homeloom::test::apartment());
    desk.show();
    desk.waitForSubscription("washer");
    bench::Desk::waitForRest();
    Updates updates;
    if (bench::isCountingInstructions(count, arguments)) {
        countInstructions(updates);
        return 0;
    }
    measureSingles(updates, measureSustained(updates));
    return bench::exitStatus();
}
