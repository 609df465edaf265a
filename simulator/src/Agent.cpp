#include "simulator/Agent.h"

#include <algorithm>

#include "Functions.h"
#include "Json.h"
#include "World.h"

namespace simulator {

namespace {

// The limit of a call whose caller waits for the answer: after that, nobody waits for one that was left out.
constexpr std::chrono::seconds kLongestWait{30};

/// The world, locked.
class Locked {
public:
    Locked() : _lock(World::instance().mutex) {}
    World* operator->() const { return &World::instance(); }
    World& operator*() const { return World::instance(); }

private:
    std::unique_lock<std::mutex> _lock;
};

Room* findRoom(Home& home, const std::string& id) {
    for (Location& location : home.locations) {
        for (Room& room : location.rooms) {
            if (room.id == id) {
                return &room;
            }
        }
    }
    return nullptr;
}

}  // namespace

Agent& Agent::instance() {
    static Agent& agent = *new Agent;
    return agent;
}

// ---- The home ----

void Agent::load(Home home) {
    Locked()->load(std::move(home));
}

Home Agent::home() const {
    return Locked()->home;
}

std::optional<Device> Agent::device(const std::string& id) const {
    const Locked world;
    const Device* found = world->device(id);
    return found == nullptr ? std::nullopt : std::optional<Device>(*found);
}

std::string Agent::value(const std::string& deviceId, const std::string& uri, const std::string& property) const {
    const Locked world;
    const Device* device = world->device(deviceId);
    const Resource* resource = device == nullptr ? nullptr : device->find(uri);
    const Property* found = resource == nullptr ? nullptr : resource->find(property);
    return found == nullptr ? "" : found->value;
}

// ---- Session ----

void Agent::setConnectOutcome(Connection outcome) {
    const Locked world;
    world->connectOutcome = outcome;
    world->changed();
}

Agent::Connection Agent::connectOutcome() const {
    return Locked()->connectOutcome;
}

void Agent::changeConnection(Connection state) {
    const Locked world;
    if (state == Connection::Updating || world->connectOutcome == Connection::Updating) {
        world->connectOutcome = state == Connection::Updating ? state : Connection::Connected;
    }
    for (const auto& [handle, client] : world->clients) {
        world->postConnection(client, outcomeOf(state));
    }
}

void Agent::announceConnection(int state) {
    const Locked world;
    for (const auto& [handle, client] : world->clients) {
        world->postConnection(
            client, {HOMELOOM_CLIENT_ERROR_NONE, static_cast<homeloom_client_connection_state_e>(state), client.state});
    }
}

bool Agent::isConnected() const {
    const Locked world;
    return std::any_of(world->clients.begin(), world->clients.end(),
                       [](const auto& client) { return client.second.state == Client::State::Connected; });
}

void Agent::setState(int state) {
    Locked()->state = state;
}

void Agent::signOut() {
    const Locked world;
    world->isSignedIn = false;
    world->postSignIn();
}

void Agent::signIn() {
    const Locked world;
    world->isSignedIn = true;
    world->postSignIn();
}

void Agent::signIn(const Account& account) {
    const Locked world;
    Account& present = world->home.account;
    present.loginId = account.loginId;
    present.userId = account.userId;
    present.accessToken = account.accessToken.empty() ? present.accessToken : account.accessToken;
    present.deviceId = account.deviceId.empty() ? present.deviceId : account.deviceId;
    world->isSignedIn = true;
    world->postSignIn();
}

bool Agent::isSignedIn() const {
    return Locked()->isSignedIn;
}

// ---- Devices ----

bool Agent::set(const std::string& deviceId, const std::string& uri, const std::string& property,
                const std::string& value) {
    return set(deviceId, {{uri, property, value}});
}

bool Agent::set(const std::string& deviceId, const std::vector<Change>& changes) {
    const Locked world;
    Device* device = world->device(deviceId);
    return device != nullptr && world->change(*device, changes);
}

void Agent::sendUpdate(const std::string& deviceId, const std::string& uri, const std::string& representation,
                       const std::string& dataTypes, const std::string& errorCode) {
    Locked()->postUpdate(deviceId, uri, representation, dataTypes, errorCode);
}

bool Agent::setStatus(const std::string& deviceId, int status) {
    const Locked world;
    Device* device = world->device(deviceId);
    if (device == nullptr) {
        return false;
    }
    world->setStatus(*device, status);
    return true;
}

bool Agent::addDevice(const Device& device) {
    return addDevices({device});
}

bool Agent::addDevices(std::vector<Device> devices) {
    return Locked()->addDevices(std::move(devices));
}

bool Agent::removeDevice(const std::string& deviceId) {
    return Locked()->removeDevice(deviceId);
}

bool Agent::renameDevice(const std::string& deviceId, const std::string& name) {
    const Locked world;
    Device* device = world->device(deviceId);
    if (device == nullptr) {
        return false;
    }
    device->nick = name;
    world->changed();
    world->postDetails({device});
    return true;
}

bool Agent::moveDevice(const std::string& deviceId, const std::string& locationId, const std::string& roomId) {
    const Locked world;
    if (!world->moveDevice(deviceId, locationId, roomId)) {
        return false;
    }
    world->postDetails({world->device(deviceId)});
    return true;
}

bool Agent::updateDevice(const Device& device) {
    const Locked world;
    Device* present = world->device(device.id);
    if (present == nullptr) {
        return false;
    }
    *present = device;
    world->changed();
    world->postDetails({present});
    return true;
}

void Agent::setHub(const Hub& hub) {
    Locked()->home.hub = hub;
}

void Agent::setModel(const Model& model) {
    Locked()->home.models[model.vid] = model;
}

void Agent::sendDeviceList(const std::vector<std::string>& deviceIds) {
    const Locked world;
    for (const auto& [handle, client] : world->clients) {
        if (client.deviceList) {
            world->postDeviceList(client, deviceIds);
        }
    }
}

void Agent::sendDeviceDetailList(const std::vector<Device>& devices) {
    const Locked world;
    Records details;
    for (const Device& device : devices) {
        details.push_back(detailRecord(device));
    }
    for (const auto& [handle, client] : world->clients) {
        if (client.detailList) {
            world->postDetailList(client, details);
        }
    }
}

// ---- Programs behind devices ----

bool Agent::setDriver(const std::string& deviceId, Driver driver) {
    const Locked world;
    if (world->device(deviceId) == nullptr) {
        return false;
    }
    if (driver) {
        world->drivers[deviceId] = std::move(driver);
    } else {
        world->removeDriver(deviceId);
    }
    world->changed();
    return true;
}

void Agent::removeDrivers() {
    const Locked world;
    world->removeDrivers();
    world->changed();
}

std::vector<std::string> Agent::driven() const {
    const Locked world;
    std::vector<std::string> ids;
    for (const auto& [id, driver] : world->drivers) {
        ids.push_back(id);
    }
    return ids;
}

std::vector<DeviceCommand> Agent::openCommands() const {
    const Locked world;
    std::vector<DeviceCommand> commands;
    for (const auto& [number, open] : world->openCommands) {
        commands.push_back(open.command);
    }
    return commands;
}

bool Agent::accept(long long number) {
    return Locked()->endCommand(number, false, {});
}

bool Agent::confirm(long long number, std::vector<Change> values) {
    const Locked world;
    const auto found = world->openCommands.find(number);
    if (found == world->openCommands.end()) {
        return false;
    }
    if (values.empty()) {
        values = found->second.command.changes;
    }
    return world->endCommand(number, false, values);
}

bool Agent::refuse(long long number) {
    return Locked()->endCommand(number, true, {});
}

void Agent::setCommandObserver(std::function<void(const DeviceCommand&)> observer) {
    Locked()->commandObserver = std::move(observer);
}

// ---- Locations and rooms ----

std::string Agent::addLocation(const std::string& name) {
    const Locked world;
    Location location;
    location.id = world->newId("location");
    location.name = name;
    location.ownerId = world->home.account.userId;
    world->home.locations.push_back(location);
    world->postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION, location.id);
    return location.id;
}

bool Agent::removeLocation(const std::string& locationId) {
    const Locked world;
    auto& locations = world->home.locations;
    const auto found = std::find_if(locations.begin(), locations.end(),
                                    [&](const Location& location) { return location.id == locationId; });
    if (found == locations.end()) {
        return false;
    }
    locations.erase(found);
    world->postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION, locationId);
    return true;
}

bool Agent::renameLocation(const std::string& locationId, const std::string& name) {
    const Locked world;
    Location* location = world->home.location(locationId);
    if (location == nullptr) {
        return false;
    }
    location->name = name;
    world->postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION, locationId);
    return true;
}

std::string Agent::addRoom(const std::string& locationId, const std::string& name) {
    const Locked world;
    Location* location = world->home.location(locationId);
    if (location == nullptr) {
        return {};
    }
    const std::string id = world->newId("room");
    location->rooms.push_back({id, name});
    world->postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM, id);
    return id;
}

bool Agent::removeRoom(const std::string& roomId) {
    const Locked world;
    for (Location& location : world->home.locations) {
        const auto room = std::find_if(location.rooms.begin(), location.rooms.end(),
                                       [&](const Room& candidate) { return candidate.id == roomId; });
        if (room != location.rooms.end()) {
            location.rooms.erase(room);
            world->leaveRoom(roomId);
            world->postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM, roomId);
            return true;
        }
    }
    return false;
}

bool Agent::renameRoom(const std::string& roomId, const std::string& name) {
    const Locked world;
    Room* room = findRoom(world->home, roomId);
    if (room == nullptr) {
        return false;
    }
    room->name = name;
    world->postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM, roomId);
    return true;
}

void Agent::sendGroupChange(int notiType, int groupType) {
    Locked()->postGroups(notiType, groupType, "");
}

// ---- Events ----

void Agent::sendEvent(int kind, const std::string& json) {
    Locked()->postEvent(kind, json);
}

void Agent::sendThirdPartyNotificationStatusChange() {
    Locked()->postThirdPartyStatus();
}

// ---- Faults ----

void Agent::fault(const std::string& function, const Fault& fault) {
    functionNamed(function).setFault(fault);
}

void Agent::clearFault(const std::string& function) {
    functionNamed(function).clearFault();
}

void Agent::clearFaults() {
    for (auto& [name, function] : allFunctions()) {
        function.clearFault();
    }
}

std::map<std::string, Fault> Agent::faults() const {
    std::map<std::string, Fault> faults;
    for (const auto& [name, function] : allFunctions()) {
        if (const auto fault = function.fault()) {
            faults[name] = *fault;
        }
    }
    return faults;
}

// ---- What the plug-in did ----

std::map<std::string, Agent::Calls> Agent::calls() const {
    std::map<std::string, Calls> calls;
    for (const auto& [name, function] : allFunctions()) {
        if (function.callCount() > 0) {
            calls[name] = function.calls();
        }
    }
    return calls;
}

int Agent::callCount(const std::string& function) const {
    return functionNamed(function).callCount();
}

void Agent::resetCalls() {
    for (auto& [name, function] : allFunctions()) {
        function.resetCalls();
    }
}

void Agent::setChangeObserver(std::function<void()> observer) {
    Locked()->changeObserver = std::move(observer);
}

int Agent::addCallObserver(CallObserver observer) {
    return simulator::addCallObserver(std::move(observer));
}

void Agent::removeCallObserver(int number) {
    simulator::removeCallObserver(number);
}

std::vector<Agent::LaunchCondition> Agent::conditions() const {
    return Locked()->conditions;
}

std::vector<Agent::Subscription> Agent::subscriptions() const {
    const Locked world;
    std::vector<Subscription> all;
    for (const auto& [handle, client] : world->clients) {
        for (const auto& [deviceId, subscriptions] : client.subscriptions) {
            for (const auto& subscription : subscriptions) {
                all.push_back({deviceId, subscription.text});
            }
        }
    }
    std::sort(all.begin(), all.end(), [](const Subscription& a, const Subscription& b) {
        return std::tie(a.deviceId, a.uris) < std::tie(b.deviceId, b.uris);
    });
    return all;
}

std::vector<Agent::UserEvent> Agent::userEvents() const {
    return Locked()->userEvents;
}

std::vector<std::string> Agent::escapedExceptions() const {
    return Locked()->escapedExceptions;
}

Agent::Holdings Agent::holdings() const {
    Holdings holdings;
    holdings.records = LiveRecord::count();
    const Locked world;
    for (const auto& [handle, client] : world->clients) {
        ++holdings.clients;
        holdings.registrations += client.registrations();
        holdings.pendingCalls += client.pendingCalls;
        for (const auto& [deviceId, subscriptions] : client.subscriptions) {
            holdings.subscriptions += static_cast<int>(subscriptions.size());
        }
    }
    return holdings;
}

bool Agent::isOwing() const {
    const auto now = std::chrono::steady_clock::now();
    const auto isRecent = [now](const auto& time) { return time && now - *time <= kLongestWait; };
    {
        const Locked world;
        if (isRecent(world->lastDropped) || (!world->openCommands.empty() && isRecent(world->lastHandedOver))) {
            return true;
        }
    }
    return !World::instance().thread.isEmpty() || holdsUpCallers();
}

bool Agent::holdsUpCallers() const {
    const auto& functions = allFunctions();
    return std::any_of(functions.begin(), functions.end(),
                       [](const auto& entry) { return entry.second.lateCallers() > 0; });
}

bool Agent::keepsCallers() const {
    const auto& functions = allFunctions();
    return std::any_of(functions.begin(), functions.end(),
                       [](const auto& entry) { return entry.second.stuckCallers() > 0; });
}

// ---- Time ----

void Agent::waitIdle() {
    World::instance().thread.waitIdle();
}

bool Agent::waitIdle(std::chrono::milliseconds limit) {
    return World::instance().thread.waitIdle(limit);
}

void Agent::reset() {
    clearFaults();
    std::vector<homeloom_client_h> handles;
    {
        const Locked world;
        for (const auto& [handle, client] : world->clients) {
            handles.push_back(handle);
        }
    }
    for (homeloom_client_h handle : handles) {
        World::removeClient(handle);
    }
    World::instance().thread.drop(0);
    const Locked world;
    world->load(Home());
    world->isSignedIn = true;
    world->state = 1;
    world->connectOutcome = Connection::Connected;
    world->conditions.clear();
    world->userEvents.clear();
    world->escapedExceptions.clear();
    resetCalls();
}

const std::vector<std::string>& Agent::functionNames() {
    static const std::vector<std::string>& names = *[] {
        auto* all = new std::vector<std::string>;
        for (const auto& [name, function] : allFunctions()) {
            all->push_back(name);
        }
        return all;
    }();
    return names;
}

}  // namespace simulator
