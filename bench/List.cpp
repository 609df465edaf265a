// How long the home's list takes: from the device details that the agent hands over to the second list sent, the one
// with all state texts. The floor is a copy of both lists by the framework's functions alone.
#include <atomic>
#include <string>
#include <vector>

#include <homeloom_client.h>
#include <simulator/HomeLoader.h>
#include <vmf_endpoint.h>
#include <vmf_service_handler.h>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Instructions.h"

namespace {

constexpr double kWantedGrowth = 13;
constexpr int kCounted = 10000;
bool isCounting = false;

// Written by the agent's thread and the plug-in's, read when both are done.
struct Run {
    bench::Clock::time_point begun;
    bench::Clock::time_point sent;  // the second list
    bench::Seconds framework{0};    // what the framework and this program did with the first list
    bench::Seconds copying{0};
    int lists = 0;
};
Run run;
std::atomic<homeloom_client_device_detail_list_updated_cb> detailsCallback{nullptr};

void takeDetails(homeloom_client_device_detail_h* list, int count, void* userData) {
    if (isCounting) {
        bench::beginCount();
    }
    run.begun = bench::Clock::now();
    detailsCallback.load()(list, count, userData);
}

void copy(vmf_endpoint_list_h list) {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_endpoint_list_h copied = vmf_endpoint_list_create(&error);
    for (void* cursor = vmf_endpoint_list_get_first(list); cursor != nullptr;
         cursor = vmf_endpoint_list_get_next(list, cursor)) {
        vmf_endpoint_list_push_endpoint(copied, vmf_endpoint_copy(static_cast<vmf_endpoint_h>(cursor)));
    }
    vmf_endpoint_list_destroy(copied);
}

bench::Seconds measure(int devices, bench::Seconds& copying) {
    std::vector<bench::Seconds> times;
    const int rounds = devices >= 10000 ? 3 : 7;
    for (int round = 0; round < rounds; ++round) {
        run = {};
        bench::Desk desk(simulator::generateHome(devices));
        desk.show();
        times.push_back(run.sent - run.begun - run.framework);
        copying = run.copying;
    }
    return bench::median(times);
}

}  // namespace

// These take the place of the libraries' for the plug-in.

int homeloom_client_set_device_detail_list_updated_cb(homeloom_client_h client,
                                                      homeloom_client_device_detail_list_updated_cb callback,
                                                      void* userData) {
    detailsCallback = callback;
    return bench::next(homeloom_client_set_device_detail_list_updated_cb,
                       "homeloom_client_set_device_detail_list_updated_cb")(client, takeDetails, userData);
}

int vmf_service_handler_report_device_list(vmf_service_handler_h handler, vmf_endpoint_list_h list) {
    const auto start = bench::Clock::now();
    if (++run.lists == 2) {
        run.sent = start;
        if (isCounting) {
            bench::endCount("list, for each of 10,000 devices", kCounted);
        }
    }
    const bench::CountPause pause;
    copy(list);
    run.copying += bench::Clock::now() - start;
    const int result =
        bench::next(vmf_service_handler_report_device_list, "vmf_service_handler_report_device_list")(handler, list);
    if (run.lists == 1) {
        run.framework = bench::Clock::now() - start;
    }
    return result;
}

int main(int count, char** arguments) {
    isCounting = bench::isCountingInstructions(count, arguments);
    if (isCounting) {
        bench::Desk desk(simulator::generateHome(kCounted));
        desk.show();
        return 0;
    }
    bench::Seconds thousand{0};
    for (const int devices : {10, 100, 1000, 10000}) {
        bench::Seconds copying{0};
        const bench::Seconds time = measure(devices, copying);
        bench::print({"device list, " + std::to_string(devices) + " devices", bench::text(time), "copying both lists",
                      bench::text(copying), time / copying, "", true});
        if (devices == 1000) {
            thousand = time;
        } else if (devices == 10000) {
            bench::print({"device list, 10000 devices", bench::text(time), "the same of 1000 devices",
                          bench::text(thousand), time / thousand, "at most 13", time / thousand <= kWantedGrowth});
        }
    }
    return bench::exitStatus();
}
