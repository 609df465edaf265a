#include "simulator/ServiceManager.h"

#include <mutex>

#include <norvane_svcmgr.h>

#include "Functions.h"
#include "World.h"
#include "simulator/Agent.h"

namespace simulator {

namespace {

struct Manager {
    std::mutex mutex;
    CallbackThread thread;  // has a lock of its own
    Registration<norvane_svcmgr_update_status_cb> watcher;
    std::vector<ServiceManager::Boost> boosts;
};

const int watcherId = 1;

Manager& manager() {
    static Manager& manager = *new Manager;
    return manager;
}

void tell(int status) {
    Registration<norvane_svcmgr_update_status_cb> watcher;
    {
        const std::lock_guard<std::mutex> lock(manager().mutex);
        watcher = manager().watcher;
    }
    if (watcher) {
        World::instance().guarded("update_status_cb", [&] {
            watcher.function(static_cast<norvane_svcmgr_update_status_e>(status), watcher.userData);
        });
    }
}

void post(std::function<void()> job) {
    manager().thread.post(watcherId, std::move(job));
}

}  // namespace

ServiceManager& ServiceManager::instance() {
    static ServiceManager& instance = *new ServiceManager;
    return instance;
}

void ServiceManager::startUpdate() {
    post([] {
        tell(NORVANE_SVCMGR_UPDATE_STATUS_STARTED);
        Agent::instance().changeConnection(Agent::Connection::Updating);
    });
}

void ServiceManager::endUpdate() {
    post([] {
        Agent::instance().setConnectOutcome(Agent::Connection::Connected);
        tell(NORVANE_SVCMGR_UPDATE_STATUS_ENDED);
    });
}

void ServiceManager::announce(int status) {
    post([status] { tell(status); });
}

bool ServiceManager::isWatched() const {
    const std::lock_guard<std::mutex> lock(manager().mutex);
    return bool(manager().watcher);
}

std::vector<ServiceManager::Boost> ServiceManager::boosts() const {
    const std::lock_guard<std::mutex> lock(manager().mutex);
    return manager().boosts;
}

void ServiceManager::waitIdle() {
    manager().thread.waitIdle();
}

}  // namespace simulator

using namespace simulator;

int norvane_svcmgr_set_update_status_cb(norvane_svcmgr_update_status_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    if (const int code = function.enterAndHold()) {
        return code;
    }
    if (callback == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    const std::lock_guard<std::mutex> lock(manager().mutex);
    manager().watcher = {callback, user_data};
    return 0;
}

int norvane_svcmgr_unset_update_status_cb(void) {
    static Function& function = functionNamed(__func__);
    if (const int code = function.enterAndHold()) {
        return code;
    }
    {
        const std::lock_guard<std::mutex> lock(manager().mutex);
        manager().watcher = {};
    }
    manager().thread.finish(watcherId);
    return 0;
}

int norvane_svcmgr_request_boost(const char* app_id, int caller_pid, const norvane_svcmgr_boost_request_s* request) {
    static Function& function = functionNamed(__func__);
    if (const int code = function.enterAndHold({app_id == nullptr ? "" : app_id, std::to_string(caller_pid)})) {
        return code;
    }
    if (app_id == nullptr || request == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    const std::lock_guard<std::mutex> lock(manager().mutex);
    manager().boosts.push_back(
        {app_id, caller_pid, request->type, request->level, request->scope, request->option, request->duration_ms});
    return 0;
}
