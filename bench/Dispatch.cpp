// What a request costs the framework's thread, and how soon its handler runs.
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include <desktop/Framework.h>
#include <simulator/Agent.h>
#include <vmf_property.h>
#include <vmf_service_handler.h>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"

namespace framework = homeloom::desktop::framework;

namespace {

constexpr int kRequests = 10000;
// Its handler goes straight to the agent.
constexpr char kRequest[] = "get_locksmith_key_value";
constexpr char kAgentCall[] = "homeloom_core_locksmith_get_keyvalue";

std::atomic<vmf_request_service_cb> requestCallback{nullptr};
// Written on the framework's thread, read when the answer is there.
bench::Clock::time_point called;
bench::Clock::time_point returned;
std::atomic<bench::Clock::time_point> handled;

void takeRequest(vmf_service_handler_h handler, vmf_transaction_h transaction, vmf_property_list_h list,
                 void* userData) {
    called = bench::Clock::now();
    requestCallback.load()(handler, transaction, list, userData);
    returned = bench::Clock::now();
}

/// Two threads that hand a number over and do nothing else: what waking a thread costs here.
bench::Seconds timeOfHandingOver() {
    std::mutex mutex;
    std::condition_variable changed;
    bench::Clock::time_point woken;
    bool isAsked = false;
    bool isOver = false;
    std::thread other([&] {
        std::unique_lock<std::mutex> lock(mutex);
        while (!isOver) {
            changed.wait(lock, [&] { return isAsked || isOver; });
            woken = bench::Clock::now();
            isAsked = false;
            changed.notify_all();
        }
    });
    std::vector<bench::Seconds> times;
    for (int i = 0; i < kRequests; ++i) {
        std::unique_lock<std::mutex> lock(mutex);
        const auto start = bench::Clock::now();
        isAsked = true;
        changed.notify_all();
        changed.wait(lock, [&] { return !isAsked; });
        times.push_back(woken - start);
    }
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    changed.notify_all();
    other.join();
    return bench::median(std::move(times));
}

bench::Seconds timeOfCopying() {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_list_h list = vmf_property_list_create(&error);
    vmf_property_list_set_name(list, kRequest);
    vmf_property_list_push_property(list, vmf_property_create_string("locksmith_key", "door", &error));
    const bench::Seconds time =
        bench::timeOf(21, 1000, [&] { vmf_property_list_destroy(vmf_property_list_copy(list, &error)); });
    vmf_property_list_destroy(list);
    return time;
}

}  // namespace

// Takes the place of the library's for the plug-in.
int vmf_service_handler_set_request_service_callback(vmf_service_handler_h handler, vmf_request_service_cb callback,
                                                     void* userData) {
    requestCallback = callback;
    return bench::next(vmf_service_handler_set_request_service_callback,
                       "vmf_service_handler_set_request_service_callback")(handler, takeRequest, userData);
}

int main() {
    bench::Desk desk(homeloom::test::apartment());
    desk.show();
    framework::keepReports(100);
    simulator::Agent::instance().addCallObserver([](const std::string& function, const std::vector<std::string>&) {
        if (function == kAgentCall) {
            handled = bench::Clock::now();
        }
    });

    std::vector<bench::Seconds> returns;
    std::vector<bench::Seconds> starts;
    for (int i = 0; i < kRequests; ++i) {
        const std::size_t from = framework::reportCount();
        const auto id = framework::request(kRequest, {{"locksmith_key", std::string("door")}});
        if (!framework::waitFor([id](const framework::Report& report) { return report.transaction == id; },
                                std::chrono::seconds(10), from) ||
            !framework::waitIdle()) {
            bench::fail("a request was not answered");
        }
        returns.push_back(returned - called);
        starts.push_back(handled.load() - called);
    }

    const bench::Seconds copying = timeOfCopying();
    const bench::Seconds call = bench::median(returns);
    bench::print({"request, from call to return, median", bench::text(call), "copying its property list",
                  bench::text(copying), call / copying, "", true});
    const bench::Seconds handing = timeOfHandingOver();
    const bench::Seconds start = bench::median(starts);
    bench::print({"request, from call to its handler's work, median", bench::text(start), "waking another thread",
                  bench::text(handing), start / handing, "", true});
    const bench::Seconds slowest = *std::max_element(starts.begin(), starts.end());
    bench::print({"request, from call to its handler's work, slowest", bench::text(slowest), "the median of the same",
                  bench::text(start), slowest / start, "", true});
    return bench::exitStatus();
}
