#include "World.h"

#include <algorithm>
#include <unordered_set>

#include "AgentApp.h"
#include "Json.h"

namespace simulator {

World::World() {
    installAgentApp();
}

World& World::instance() {
    // Never destroyed: its thread may be calling back while the process ends.
    static World& world = *new World;
    return world;
}

int Client::registrations() const {
    return static_cast<int>(bool(connection)) + static_cast<int>(bool(signIn)) + static_cast<int>(bool(deviceList)) +
           static_cast<int>(bool(detailList)) + static_cast<int>(bool(groupList)) + static_cast<int>(bool(thirdParty)) +
           static_cast<int>(bool(events));
}

void World::changed() const {
    if (changeObserver) {
        changeObserver();
    }
}

void World::leaveRoom(const std::string& roomId) {
    for (Device& resident : home.devices) {
        if (resident.room == roomId) {
            resident.room.clear();
        }
    }
}

void World::load(Home newHome) {
    removeDrivers();
    home = std::move(newHome);
    ++_homes;
    _ids = 0;
    devicesMoved();
    changed();
}

Device* World::device(const std::string& id) {
    if (_index.size() != home.devices.size()) {
        _index.clear();
        for (std::size_t i = 0; i < home.devices.size(); ++i) {
            _index[home.devices[i].id] = i;
        }
    }
    const auto found = _index.find(id);
    return found == _index.end() ? nullptr : &home.devices[found->second];
}

std::string World::newId(const std::string& kind) {
    return kind + "-new-" + std::to_string(++_ids);
}

void World::setStatus(Device& device, int status) {
    device.status = status;
    changed();
    if (!home.isServedByHub(device.id)) {
        postDetails({&device});
        return;
    }
    const char* health = status == Connected ? "ONLINE" : status == Disconnected ? "OFFLINE" : "UNKNOWN";
    postEvent(HOMELOOM_CORE_SSE_DEVICE_HEALTH,
              toText(json::object{{"deviceId", device.id}, {"locationId", device.location}, {"status", health}}));
}

bool World::addDevices(std::vector<Device> newDevices) {
    std::unordered_set<std::string> ids;
    for (const Device& newDevice : newDevices) {
        if (newDevice.id.empty() || device(newDevice.id) != nullptr || !ids.insert(newDevice.id).second) {
            return false;
        }
    }
    const std::size_t present = home.devices.size();
    for (Device& newDevice : newDevices) {
        const Model* model = home.model(newDevice.vid);
        if (newDevice.resources.empty() && model != nullptr) {
            newDevice.resources = model->resources;
        }
        home.devices.push_back(std::move(newDevice));
    }
    devicesMoved();
    changed();
    postDeviceListToAll();
    std::vector<const Device*> added;
    for (std::size_t i = present; i < home.devices.size(); ++i) {
        added.push_back(&home.devices[i]);
    }
    postDetails(added);
    return true;
}

bool World::removeDevice(const std::string& deviceId) {
    const Device* leaving = device(deviceId);
    if (leaving == nullptr) {
        return false;
    }
    home.devices.erase(home.devices.begin() + (leaving - home.devices.data()));
    devicesMoved();
    removeDriver(std::string(deviceId));
    changed();
    auto& serves = home.hub.serves;
    serves.erase(std::remove(serves.begin(), serves.end(), deviceId), serves.end());
    postDeviceListToAll();
    return true;
}

bool World::moveDevice(const std::string& deviceId, const std::string& locationId, const std::string& roomId) {
    Device* moving = device(deviceId);
    const Location* location = home.location(locationId);
    if (moving == nullptr || location == nullptr) {
        return false;
    }
    const bool inRoom = std::any_of(location->rooms.begin(), location->rooms.end(),
                                    [&](const Room& room) { return room.id == roomId; });
    if (!inRoom && !roomId.empty()) {
        return false;
    }
    moving->location = locationId;
    moving->room = roomId;
    changed();
    return true;
}

Client* World::client(int id) {
    for (auto& [handle, client] : clients) {
        if (client.id == id) {
            return &client;
        }
    }
    return nullptr;
}

Client& World::addClient(homeloom_client_h& handle) {
    handle = new homeloom_client_s;
    Client& client = clients[handle];
    client.id = ++_clients;
    return client;
}

void World::removeClient(homeloom_client_h handle) {
    World& world = instance();
    int id = 0;
    {
        const std::lock_guard<std::mutex> lock(world.mutex);
        const auto found = world.clients.find(handle);
        if (found == world.clients.end()) {
            return;
        }
        id = found->second.id;
        world.clients.erase(found);
    }
    world.thread.drop(id);
    delete handle;
}

std::vector<std::string> World::deviceIds() const {
    std::vector<std::string> ids;
    ids.reserve(home.devices.size());
    for (const Device& device : home.devices) {
        ids.push_back(device.id);
    }
    return ids;
}

Records World::allDetails() const {
    Records details;
    details.reserve(home.devices.size());
    for (const Device& device : home.devices) {
        details.push_back(detailRecord(device));
    }
    return details;
}

Records World::groups(int groupType) const {
    Records records;
    for (const Location& location : home.locations) {
        if (groupType == HOMELOOM_CLIENT_GROUP_TYPE_LOCATION) {
            records.push_back(groupRecord(location));
        } else if (groupType == HOMELOOM_CLIENT_GROUP_TYPE_ROOM) {
            for (const Room& room : location.rooms) {
                records.push_back(groupRecord(room, location));
            }
        }
    }
    return records;
}

Outcome outcomeOf(Agent::Connection connection) {
    switch (connection) {
        case Agent::Connection::Connected:
            return {HOMELOOM_CLIENT_ERROR_NONE, HOMELOOM_CLIENT_CONNECTION_STATE_CONNECTED, Client::State::Connected};
        case Agent::Connection::Rejected:
            return {HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED, HOMELOOM_CLIENT_CONNECTION_STATE_REJECTED,
                    Client::State::Idle};
        case Agent::Connection::IoError:
            return {HOMELOOM_CLIENT_ERROR_IO, HOMELOOM_CLIENT_CONNECTION_STATE_IO_ERROR, Client::State::Idle};
        case Agent::Connection::Updating:
            return {HOMELOOM_CLIENT_ERROR_UPDATING, HOMELOOM_CLIENT_CONNECTION_STATE_DISCONNECTED, Client::State::Idle};
        case Agent::Connection::Disconnected:
            break;
    }
    return {HOMELOOM_CLIENT_ERROR_IO, HOMELOOM_CLIENT_CONNECTION_STATE_DISCONNECTED, Client::State::Idle};
}

}  // namespace simulator
