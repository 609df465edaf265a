#include "desktop/Packages.h"

#include <app_manager.h>
#include <glib.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "desktop/Guard.h"

struct app_info_s {
    std::string appId;
};

struct package_manager_s {};

namespace homeloom::desktop::packages {

namespace {

struct Watch {
    package_manager_event_cb callback;
    void* userData;
};

struct Packages {
    std::mutex mutex;
    std::condition_variable callbackEnded;
    std::set<std::string> installed;
    // Each handle with its watch, null while it has none.
    std::map<package_manager_h, std::shared_ptr<const Watch>> managers;
    std::map<std::string, int> failures{
        {"app_manager_get_app_info", 0}, {"package_manager_create", 0}, {"package_manager_set_event_cb", 0}};
    int appInfos = 0;
    std::deque<Event> due;  // that the main loop has to deliver

    // The watch whose callback runs now, and on which thread.
    const Watch* running = nullptr;
    std::thread::id runningThread;
};

// Never destroyed: the main loop may still deliver when statics go.
Packages& packages() {
    static Packages* const instance = new Packages();
    return *instance;
}

// Called with the mutex held.
bool isWatching(const std::shared_ptr<const Watch>& watch) {
    const auto& managers = packages().managers;
    return std::any_of(managers.begin(), managers.end(), [&](const auto& entry) { return entry.second == watch; });
}

void deliver(const std::shared_ptr<const Watch>& watch, const Event& event) {
    {
        const std::lock_guard lock(packages().mutex);
        if (!isWatching(watch)) {
            return;
        }
        packages().running = watch.get();
        packages().runningThread = std::this_thread::get_id();
    }
    callPlugin("package event", [&] {
        watch->callback("package", event.package.c_str(), event.type, event.state, event.progress, event.error,
                        watch->userData);
    });
    const std::lock_guard lock(packages().mutex);
    packages().running = nullptr;
    packages().callbackEnded.notify_all();
}

// On the main loop: tells everybody one event.
gboolean deliverNext(gpointer) {
    Event event;
    std::vector<std::shared_ptr<const Watch>> watches;
    {
        const std::lock_guard lock(packages().mutex);
        event = std::move(packages().due.front());
        packages().due.pop_front();
        for (const auto& entry : packages().managers) {
            if (entry.second) {
                watches.push_back(entry.second);
            }
        }
    }
    for (const auto& watch : watches) {
        deliver(watch, event);
    }
    return G_SOURCE_REMOVE;
}

void tellAll(const std::string& appId, package_manager_event_type_e type) {
    tell({appId, type, PACKAGE_MANAGER_EVENT_STATE_STARTED, 0});
    tell({appId, type, PACKAGE_MANAGER_EVENT_STATE_PROCESSING, 50});
    tell({appId, type, PACKAGE_MANAGER_EVENT_STATE_COMPLETED, 100});
}

// Called with the mutex held; the watch must have been taken out already.
void waitUntilEnded(std::unique_lock<std::mutex>& lock, const std::shared_ptr<const Watch>& watch) {
    packages().callbackEnded.wait(lock, [&] {
        return !watch || packages().running != watch.get() || packages().runningThread == std::this_thread::get_id();
    });
}

}  // namespace

void setInstalled(const std::string& appId, bool installed) {
    const std::lock_guard lock(packages().mutex);
    if (installed) {
        packages().installed.insert(appId);
    } else {
        packages().installed.erase(appId);
    }
}

bool isInstalled(const std::string& appId) {
    const std::lock_guard lock(packages().mutex);
    return packages().installed.count(appId) > 0;
}

void tell(const Event& event) {
    const std::lock_guard lock(packages().mutex);
    packages().due.push_back(event);
    g_idle_add_full(G_PRIORITY_DEFAULT, deliverNext, nullptr, nullptr);
}

void install(const std::string& appId) {
    const bool isUpdate = isInstalled(appId);
    setInstalled(appId);
    tellAll(appId, isUpdate ? PACKAGE_MANAGER_EVENT_TYPE_UPDATE : PACKAGE_MANAGER_EVENT_TYPE_INSTALL);
}

void uninstall(const std::string& appId) {
    setInstalled(appId, false);
    tellAll(appId, PACKAGE_MANAGER_EVENT_TYPE_UNINSTALL);
}

void fail(const std::string& function, int code) {
    const std::lock_guard lock(packages().mutex);
    const auto found = packages().failures.find(function);
    if (found == packages().failures.end()) {
        throw std::invalid_argument("no function that can fail: " + function);
    }
    found->second = code;
}

int managerCount() {
    const std::lock_guard lock(packages().mutex);
    return static_cast<int>(packages().managers.size());
}

int watchCount() {
    const std::lock_guard lock(packages().mutex);
    const auto& managers = packages().managers;
    return static_cast<int>(
        std::count_if(managers.begin(), managers.end(), [](const auto& entry) { return entry.second != nullptr; }));
}

int appInfoCount() {
    const std::lock_guard lock(packages().mutex);
    return packages().appInfos;
}

}  // namespace homeloom::desktop::packages

using homeloom::desktop::packages::packages;
using homeloom::desktop::packages::waitUntilEnded;
using homeloom::desktop::packages::Watch;

int app_manager_get_app_info(const char* app_id, app_info_h* app_info) {
    if (app_id == nullptr || app_info == nullptr) {
        return -1;
    }
    const std::lock_guard lock(packages().mutex);
    const int failure = packages().failures["app_manager_get_app_info"];
    if (failure != 0) {
        return failure;
    }
    if (packages().installed.count(app_id) == 0) {
        return -1;
    }
    *app_info = new app_info_s{app_id};
    ++packages().appInfos;
    return 0;
}

int app_info_destroy(app_info_h app_info) {
    if (app_info == nullptr) {
        return -1;
    }
    const std::lock_guard lock(packages().mutex);
    delete app_info;
    --packages().appInfos;
    return 0;
}

int package_manager_create(package_manager_h* manager) {
    if (manager == nullptr) {
        return PACKAGE_MANAGER_ERROR_INVALID_PARAMETER;
    }
    const std::lock_guard lock(packages().mutex);
    const int failure = packages().failures["package_manager_create"];
    if (failure != 0) {
        return failure;
    }
    *manager = new package_manager_s();
    packages().managers[*manager] = nullptr;
    return PACKAGE_MANAGER_ERROR_NONE;
}

int package_manager_destroy(package_manager_h manager) {
    std::unique_lock lock(packages().mutex);
    const auto found = packages().managers.find(manager);
    if (found == packages().managers.end()) {
        return PACKAGE_MANAGER_ERROR_INVALID_PARAMETER;
    }
    const auto ended = found->second;
    packages().managers.erase(found);
    waitUntilEnded(lock, ended);
    delete manager;
    return PACKAGE_MANAGER_ERROR_NONE;
}

int package_manager_set_event_cb(package_manager_h manager, package_manager_event_cb callback, void* user_data) {
    const std::lock_guard lock(packages().mutex);
    const int failure = packages().failures["package_manager_set_event_cb"];
    if (failure != 0) {
        return failure;
    }
    const auto found = packages().managers.find(manager);
    if (found == packages().managers.end() || callback == nullptr) {
        return PACKAGE_MANAGER_ERROR_INVALID_PARAMETER;
    }
    found->second = std::make_shared<const Watch>(Watch{callback, user_data});
    return PACKAGE_MANAGER_ERROR_NONE;
}

int package_manager_unset_event_cb(package_manager_h manager) {
    std::unique_lock lock(packages().mutex);
    const auto found = packages().managers.find(manager);
    if (found == packages().managers.end()) {
        return PACKAGE_MANAGER_ERROR_INVALID_PARAMETER;
    }
    const auto ended = std::exchange(found->second, nullptr);
    waitUntilEnded(lock, ended);
    return PACKAGE_MANAGER_ERROR_NONE;
}
