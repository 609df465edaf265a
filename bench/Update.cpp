// How fast an update of a device becomes a notify: from the agent's call of the subscription's callback, through the
// scheduler and the evaluation of the UI metadata, to the plug-in's call of the framework.
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <homeloom_client.h>
#include <simulator/HomeLoader.h>
#include <vmf_service_handler.h>

#include "support/Desk.h"
#include "support/Figures.h"

using VMFramework::json::JsonValue;

namespace {

constexpr int kRounds = 101;
constexpr int kParses = 500;
constexpr int kBatches = 5;
constexpr int kBatch = 100;  // updates that wait at once
constexpr int kSingles = 10000;
constexpr double kWantedShare = 0.08;
constexpr bench::Seconds kWantedSlowest{0.020};

constexpr char kDevice[] = "washer";
constexpr char kUri[] = "/operational/state/vs/0";
constexpr char kTypes[] = R"({"x.com.norvane.da.state":"String","x.com.norvane.da.progress":"String",)"
                          R"("x.com.norvane.da.remainingMinutes":"Integer"})";
// Told in turn, so that each update changes the state text.
const std::string kRepresentations[] = {
    R"({"x.com.norvane.da.state":"Run","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})",
    R"({"x.com.norvane.da.state":"Pause","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})"};

// What the plug-in gave the agent for the washer.
std::atomic<homeloom_client_subscribe_cb> updateCallback{nullptr};
std::atomic<void*> updateUserData{nullptr};

/// Counts notifies at the plug-in's border.
class Notifies {
public:
    void take() {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (++_count == _wanted) {
            _reached.notify_one();
        }
    }

    void waitFor(int count) {
        std::unique_lock<std::mutex> lock(_mutex);
        _wanted = count;
        if (!_reached.wait_for(lock, std::chrono::minutes(1), [&] { return _count >= count; })) {
            bench::fail("notifies are missing");
        }
    }

private:
    std::mutex _mutex;
    std::condition_variable _reached;
    int _count = 0;
    int _wanted = 0;
};
Notifies notifies;
std::atomic<bool> isMeasuring{false};

void update(int number) {
    updateCallback.load()(kDevice, kUri, kRepresentations[number % 2].c_str(), kTypes, "", "", updateUserData);
}

void parseBoth() {
    const JsonValue representation = JsonValue::Create(kRepresentations[0]);
    const JsonValue types = JsonValue::Create(kTypes);
    if (representation.size() != types.size()) {
        bench::fail("the texts are no JSON");
    }
}

int sent = 0;

void updateBatch() {
    for (int i = 0; i < kBatch; ++i) {
        update(sent++);
    }
    notifies.waitFor(sent);
}

bench::Seconds measureSustained() {
    // In turn, so that both meet the same machine.
    std::vector<bench::Seconds> parses;
    std::vector<bench::Seconds> updates;
    for (int round = 0; round < kRounds; ++round) {
        parses.push_back(bench::timeOf(1, kParses, parseBoth));
        updates.push_back(bench::timeOf(1, kBatches, updateBatch) / kBatch);
    }
    const bench::Seconds parse = bench::median(parses);
    const bench::Seconds sustained = bench::median(updates);
    bench::print({"update to notify, sustained", bench::perSecond(1 / sustained.count()), "parsing the same two texts",
                  bench::perSecond(1 / parse.count()), sustained / parse, "at most 12.5 (8 %)",
                  parse / sustained >= kWantedShare});
    return parse;
}

void measureSingles(bench::Seconds parse) {
    std::vector<bench::Seconds> times;
    for (int i = 0; i < kSingles; ++i) {
        const auto start = bench::Clock::now();
        update(sent++);
        notifies.waitFor(sent);
        times.push_back(bench::Clock::now() - start);
    }
    const bench::Seconds slowest = *std::max_element(times.begin(), times.end());
    const bench::Seconds usual = bench::median(times);
    bench::print({"update to notify, one at a time, median", bench::text(usual), "parsing the same two texts",
                  bench::text(parse), usual / parse, "", true});
    bench::print({"update to notify, slowest of 10,000", bench::text(slowest), "the median of the same",
                  bench::text(usual), slowest / usual, "under 20 ms", slowest < kWantedSlowest});
}

}  // namespace

// These take the place of the libraries' for the plug-in.

int homeloom_client_subscribe(homeloom_client_h client, const char* deviceId, const char* uris,
                              homeloom_client_subscribe_cb callback, void* userData) {
    if (std::string(deviceId) == kDevice && std::string(uris).find(kUri) != std::string::npos) {
        updateCallback = callback;
        updateUserData = userData;
    }
    return bench::next(homeloom_client_subscribe, "homeloom_client_subscribe")(client, deviceId, uris, callback,
                                                                               userData);
}

int vmf_service_handler_notify(vmf_service_handler_h handler, vmf_string_t service, vmf_property_list_h list,
                               vmf_transaction_h transaction, int flags) {
    if (isMeasuring) {
        notifies.take();
        return VMF_ERROR_NONE;
    }
    return bench::next(vmf_service_handler_notify, "vmf_service_handler_notify")(handler, service, list, transaction,
                                                                                 flags);
}

// The processors of a virtual machine differ in speed, by a factor of two and from second to second. Floor and figure
// must meet the same one, so all threads stay where this one is.
void stayOnOneProcessor() {
    cpu_set_t here;
    CPU_ZERO(&here);
    CPU_SET(sched_getcpu(), &here);
    if (sched_setaffinity(0, sizeof here, &here) != 0) {
        bench::fail("the threads can't be kept on one processor");
    }
}

int main() {
    stayOnOneProcessor();
    bench::Desk desk(simulator::loadHome(HOMELOOM_HOMES_DIR "/apartment.json"));
    desk.show();
    // What the start still brings of its own accord.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    if (updateCallback.load() == nullptr) {
        bench::fail("the washer is not subscribed");
    }
    isMeasuring = true;
    measureSingles(measureSustained());
    return bench::exitStatus();
}
