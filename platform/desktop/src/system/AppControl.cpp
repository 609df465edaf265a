#include <app_control.h>

#include <mutex>
#include <new>
#include <utility>

#include "desktop/Launches.h"
#include "vmf/CallFaults.h"

using homeloom::desktop::takeFault;
using homeloom::desktop::launches::Launch;

struct app_control_s {
    Launch launch;
};

namespace homeloom::desktop::launches {

namespace {

using App = std::function<void(const Launch&)>;

struct State {
    std::mutex mutex;
    std::vector<Launch> launches;
    std::map<std::string, App> apps;
};

State& state() {
    static State* const instance = new State();
    return *instance;
}

int launchApp(const Launch& launch) {
    App app;
    {
        const std::lock_guard lock(state().mutex);
        const auto found = state().apps.find(launch.appId);
        if (found == state().apps.end()) {
            return APP_CONTROL_ERROR_APP_NOT_FOUND;
        }
        app = found->second;
        state().launches.push_back(launch);
    }
    app(launch);
    return APP_CONTROL_ERROR_NONE;
}

}  // namespace

std::vector<Launch> all() {
    const std::lock_guard lock(state().mutex);
    return state().launches;
}

void forget() {
    const std::lock_guard lock(state().mutex);
    state().launches.clear();
}

void setApp(const std::string& appId, std::function<void(const Launch&)> start) {
    const std::lock_guard lock(state().mutex);
    if (start) {
        state().apps[appId] = std::move(start);
    } else {
        state().apps.erase(appId);
    }
}

}  // namespace homeloom::desktop::launches

int app_control_create(app_control_h* app_control) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    if (app_control == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    *app_control = new (std::nothrow) app_control_s();
    return *app_control != nullptr ? APP_CONTROL_ERROR_NONE : APP_CONTROL_ERROR_OUT_OF_MEMORY;
}

int app_control_destroy(app_control_h app_control) {
    if (app_control == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    delete app_control;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_set_app_id(app_control_h app_control, const char* app_id) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    if (app_control == nullptr || app_id == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    app_control->launch.appId = app_id;
    return APP_CONTROL_ERROR_NONE;
}

int app_control_add_extra_data(app_control_h app_control, const char* key, const char* value) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    if (app_control == nullptr || key == nullptr || value == nullptr) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    app_control->launch.extras[key] = value;
    return APP_CONTROL_ERROR_NONE;
}

// The desk's applications send no replies.
int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb, void*) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    if (app_control == nullptr || app_control->launch.appId.empty()) {
        return APP_CONTROL_ERROR_INVALID_PARAMETER;
    }
    return homeloom::desktop::launches::launchApp(app_control->launch);
}
