// Commands of the plug-in that a device's driver carries out in place of its model, and how a model confirms them.
#include <algorithm>

#include "World.h"

namespace simulator {

namespace {

// As long as the plug-in itself waits for an answer that comes later.
constexpr std::chrono::seconds kVerdictLimit{30};

const Confirmation* findConfirmation(const Model* model, const Change& change) {
    if (model == nullptr) {
        return nullptr;
    }
    const auto found =
        std::find_if(model->confirmations.begin(), model->confirmations.end(), [&](const Confirmation& candidate) {
            return candidate.uri == change.uri && candidate.property == change.property &&
                   (candidate.value.empty() || candidate.value == change.value);
        });
    return found == model->confirmations.end() ? nullptr : &*found;
}

}  // namespace

int World::command(Device& device, const std::vector<Change>& changes, const HandoverPtr& handover) {
    std::vector<Change> converted;
    if (!convert(device, changes, converted)) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    if (drivers.count(device.id) > 0) {
        handOver(device.id, converted, handover);
        return HOMELOOM_CLIENT_ERROR_NONE;
    }
    return carryOut(device, converted);
}

int World::carryOut(Device& device, const std::vector<Change>& changes) {
    std::vector<Change> now;
    std::vector<const Confirmation*> late;
    const Model* model = home.model(device.vid);
    for (const Change& change : changes) {
        const Confirmation* confirmation = findConfirmation(model, change);
        if (confirmation == nullptr) {
            now.push_back(change);
            continue;
        }
        if (confirmation->refuses) {
            return HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED;
        }
        std::vector<Change> result = confirmation->changes;
        if (result.empty()) {
            result.push_back(change);
        }
        if (confirmation->afterMilliseconds > 0) {
            postLater(device, confirmation->afterMilliseconds,
                      [this, result](Device& later) { this->change(later, result); });
        } else {
            now.insert(now.end(), result.begin(), result.end());
        }
    }
    return now.empty() || change(device, now) ? HOMELOOM_CLIENT_ERROR_NONE : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
}

// One command for each resource.
void World::handOver(const std::string& deviceId, const std::vector<Change>& changes, const HandoverPtr& handover) {
    std::vector<Change> left = changes;
    while (!left.empty()) {
        const std::string uri = left.front().uri;
        const auto others =
            std::stable_partition(left.begin(), left.end(), [&uri](const Change& change) { return change.uri == uri; });
        DeviceCommand command{++_commands, deviceId, uri, {left.begin(), others}};
        left.erase(left.begin(), others);
        ++handover->open;
        if (commandObserver) {
            commandObserver(command);
        }
        thread.post(0, [this, number = command.number] { askDriver(number); });
        openCommands.emplace(command.number, OpenCommand{std::move(command), handover});
    }
    lastHandedOver = std::chrono::steady_clock::now();
    changed();
}

void World::askDriver(long long number) {
    DeviceCommand command;
    Driver driver;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = openCommands.find(number);
        if (found == openCommands.end() || drivers.count(found->second.command.deviceId) == 0) {
            return;
        }
        command = found->second.command;
        driver = drivers[command.deviceId];
    }
    Verdict verdict = Verdict::Refuse;
    guarded("driver", [&] { verdict = driver(command); });
    if (verdict != Verdict::Open) {
        const std::lock_guard<std::mutex> lock(mutex);
        endCommand(number, verdict == Verdict::Refuse, {});
    }
}

bool World::endCommand(long long number, bool isRefused, const std::vector<Change>& values) {
    const auto found = openCommands.find(number);
    if (found == openCommands.end()) {
        return false;
    }
    Device* device = this->device(found->second.command.deviceId);
    std::vector<Change> converted;
    if (!values.empty() && (device == nullptr || !convert(*device, values, converted))) {
        return false;
    }
    const HandoverPtr handover = std::move(found->second.handover);
    openCommands.erase(found);
    handover->isRefused = handover->isRefused || isRefused;
    // The call's answer stands before the news that its values have, as without a driver.
    if (--handover->open == 0 && handover->ended) {
        handover->ended();
    }
    verdicts.notify_all();
    if (!converted.empty()) {
        change(*device, converted);
    }
    changed();
    return true;
}

void World::removeDriver(const std::string& deviceId) {
    drivers.erase(deviceId);
    std::vector<long long> open;
    for (const auto& [number, entry] : openCommands) {
        if (entry.command.deviceId == deviceId) {
            open.push_back(number);
        }
    }
    for (const long long number : open) {
        endCommand(number, true, {});
    }
}

void World::removeDrivers() {
    while (!drivers.empty()) {
        removeDriver(std::string(drivers.begin()->first));
    }
}

int World::await(std::unique_lock<std::mutex>& lock, const HandoverPtr& handover) {
    // On the thread that asks the drivers nobody can wait for them.
    if (!thread.isCurrent()) {
        verdicts.wait_for(lock, kVerdictLimit, [&handover] { return handover->open == 0; });
    }
    return handover->open > 0    ? HOMELOOM_CLIENT_ERROR_IO
           : handover->isRefused ? HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED
                                 : HOMELOOM_CLIENT_ERROR_NONE;
}

}  // namespace simulator
