#include "vmf/CallFaults.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <map>
#include <mutex>
#include <stdexcept>

#include "desktop/CallFaults.h"
#include "desktop/Web.h"
#include "vmf/ObserverSlot.h"

namespace homeloom::desktop {

namespace {

struct Fault {
    int code;
    CallRange range;
};

// Never destroyed: calls may come as late as from the destructors of statics.
ObserverSlot<const char*>& observers() {
    static ObserverSlot<const char*>& slot = *new ObserverSlot<const char*>;
    return slot;
}

// Guards the faults, and what callsAreWatched is made of.
std::mutex faultsMutex;
bool isObserved = false;
std::map<std::string, Fault, std::less<>>& faults() {
    static std::map<std::string, Fault, std::less<>> byFunction;
    return byFunction;
}

// Called with the mutex held.
void updateWatched() {
    callsAreWatched = isObserved || !faults().empty();
}

}  // namespace

std::atomic<bool> callsAreWatched{false};

bool CallRange::take() {
    if (skip > 0) {
        --skip;
        return false;
    }
    if (times == 0) {
        return false;
    }
    if (times > 0) {
        --times;
    }
    return true;
}

const std::vector<std::string>& failableFunctions() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all = {
            "app_control_add_extra_data",
            "app_control_create",
            "app_control_send_launch_request",
            "app_control_set_app_id",
            "rpc_port_parcel_send",
            "rpc_port_proxy_connect",
            "rpc_port_proxy_connect_sync",
            "rpc_port_proxy_create",
            "vconf_get_int",
            "vconf_get_str",
            "vconf_notify_key_changed",
            "vconf_set_str",
            "vmf_endpoint_copy",
            "vmf_endpoint_create",
            "vmf_endpoint_list_create",
            "vmf_endpoint_list_pop",
            "vmf_endpoint_list_push_endpoint",
            "vmf_endpoint_set_device_id",
            "vmf_endpoint_set_device_name",
            "vmf_endpoint_set_device_type",
            "vmf_endpoint_set_extra_data",
            "vmf_endpoint_set_extra_data_bool",
            "vmf_endpoint_set_extra_data_int",
            "vmf_endpoint_set_interface_type",
            "vmf_endpoint_set_service_name",
            "vmf_endpoint_set_sub_device_type",
            "vmf_plugin_send_load_result",
            "vmf_property_create_bool",
            "vmf_property_create_int",
            "vmf_property_create_string",
            "vmf_property_get_bool",
            "vmf_property_get_int",
            "vmf_property_get_string",
            "vmf_property_list_copy",
            "vmf_property_list_create",
            "vmf_property_list_pop",
            "vmf_property_list_push_property",
            "vmf_property_list_set_name",
            "vmf_service_handler_create",
            "vmf_service_handler_destroy",
            "vmf_service_handler_notify",
            "vmf_service_handler_report_device_found",
            "vmf_service_handler_report_device_list",
            "vmf_service_handler_send_request_result",
            "vmf_service_handler_set_active_search_callback",
            "vmf_service_handler_set_active_search_stop_callback",
            "vmf_service_handler_set_add_device_callback",
            "vmf_service_handler_set_passive_search_callback",
            "vmf_service_handler_set_passive_search_stop_callback",
            "vmf_service_handler_set_request_service_callback",
            "vmf_service_handler_set_search_all_callback",
            "vmf_service_handler_subscribe_service",
            "vmf_service_handler_unsubscribe_service",
        };
        for (const std::string& step : web::steps()) {
            all.push_back("KRCurlEasy." + step);
        }
        std::sort(all.begin(), all.end());
        return all;
    }();
    return names;
}

void failCalls(const std::string& function, int code, CallRange range) {
    const auto& known = failableFunctions();
    if (!std::binary_search(known.begin(), known.end(), function)) {
        throw std::invalid_argument("no function of the framework that can fail: " + function);
    }
    if (code == 0) {
        throw std::invalid_argument("0 is no failure: " + function);
    }
    const std::lock_guard lock(faultsMutex);
    faults()[function] = {code, range};
    updateWatched();
}

void passCalls() {
    const std::lock_guard lock(faultsMutex);
    faults().clear();
    updateWatched();
}

void passCalls(const std::string& function) {
    const std::lock_guard lock(faultsMutex);
    faults().erase(function);
    updateWatched();
}

std::map<std::string, int> failingCalls() {
    const std::lock_guard lock(faultsMutex);
    std::map<std::string, int> failing;
    for (const auto& [function, fault] : faults()) {
        if (fault.range.times != 0) {
            failing[function] = fault.code;
        }
    }
    return failing;
}

void setDeskCallObserver(std::function<void(const char*)> told) {
    const std::lock_guard lock(faultsMutex);
    isObserved = told != nullptr;
    updateWatched();
    observers().set(std::move(told));
}

int takeFaultOfWatched(const char* function) {
    observers().tell(function);
    // A function that asks for itself by a name that nobody could give would never fail.
    const std::lock_guard lock(faultsMutex);
    assert(faults().empty() || std::binary_search(failableFunctions().begin(), failableFunctions().end(), function));
    const auto found = faults().find(std::string_view(function));
    return found != faults().end() && found->second.range.take() ? found->second.code : 0;
}

}  // namespace homeloom::desktop
