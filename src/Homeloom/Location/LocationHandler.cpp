// Reads locations and rooms from the agent, makes endpoints of them, and follows the agent's group changes.
#include "Homeloom/Location/LocationHandler.h"

#include <algorithm>
#include <exception>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Tessel/AgentList.h"

namespace VMFramework::HomeLoom {

namespace {

// A burst of group changes ends in one reload, this long after the last.
constexpr unsigned kReloadDelayMs = 500;

LocationHandler::GroupList MakeGroupList(ITesselHandler& agent, homeloom_client_group_h* list, int count) {
    if (list == nullptr) {
        return nullptr;
    }
    return LocationHandler::GroupList(
        list, [&agent, count](homeloom_client_group_h* groups) { agent.GroupDestroy(groups, count); });
}

// A home without rooms is no error.
bool checkErrorWithRoomEmptyCase(int ret) {
    return ret == HOMELOOM_CLIENT_ERROR_NONE || ret == HOMELOOM_CLIENT_ERROR_NO_DATA;
}

std::string ReadGroup(ITesselHandler& agent, homeloom_client_group_h group,
                      homeloom_client_group_property_id_e property, const char* complaint) {
    std::string value;
    if (agent.GroupGetString(group, property, value) != HOMELOOM_CLIENT_ERROR_NONE) {
        throw CException(complaint, kErrorNoData);
    }
    return value;
}

/// What the log says where a kind of group can't be read.
struct Complaints {
    const char* emptyId;
    const char* id;
    const char* name;
};
constexpr Complaints kLocation{"locationId is empty", "get location id failed", "get location name failed"};
constexpr Complaints kRoom{"roomID is empty", "get room id failed", "get room name failed"};

/// The name of the first group of that id; empty if there is none.
std::string FindGroupName(ITesselHandler& agent, const std::string& id, const LocationHandler::GroupList& list,
                          int count, const Complaints& complaints, const Log::Place& caller = HL_CALLER) {
    const auto find = [&]() -> std::string {
        if (id.empty()) {
            throw CException(complaints.emptyId, kErrorEmptyArgument);
        }
        for (int i = 0; list && i < count; ++i) {
            if (ReadGroup(agent, list.get()[i], HOMELOOM_CLIENT_GROUP_PROPERTY_ID, complaints.id) == id) {
                return ReadGroup(agent, list.get()[i], HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, complaints.name);
            }
        }
        return {};
    };
    return GuardedOr(std::string(), find, caller);
}

// Empty for a location that is not in the map. An owner without a name is the user, so a location whose owner
// was not found counts as the user's own.
std::string getLocationOwnerName(const std::unordered_map<std::string, std::string>& owners, const std::string& id) {
    const auto found = owners.find(id);
    return found != owners.end() ? found->second : std::string();
}

std::string getLocationPermission(const std::unordered_map<std::string, core_location_info_struct>& locations,
                                  const std::string& id) {
    const auto found = locations.find(id);
    return found != locations.end() ? found->second.location_permission : std::string();
}

}  // namespace

LocationHandler::LocationHandler(ITesselHandler& agent) : Handler("LocationHandler"), _agent(agent) {}

LocationHandler::~LocationHandler() {
    CleanUpTimer();
    CallbackTokens::Unwatch(_token);
}

void LocationHandler::SetGetDevicesInfoCallback(std::function<bool()> callback) {
    const MutexLock lock(_mutex);
    _getDevicesInfoCallback = std::move(callback);
}

void LocationHandler::SetProfileUpdateCallback(std::function<void(UpdateList)> callback) {
    const MutexLock lock(_mutex);
    _profileUpdateCallback = std::move(callback);
}

void LocationHandler::SetGetFavoritesCallback(std::function<std::string(const std::string&)> callback) {
    const MutexLock lock(_mutex);
    _getFavoritesCallback = std::move(callback);
}

void LocationHandler::SetGroupListUpdateCallback() {
    _agent.SetGroupListUpdatedCb(_HomeLoomClientLocationListUpdated, getToken());
}

void LocationHandler::UnsetGroupListUpdateCallback() {
    _agent.UnsetGroupListUpdatedCb();
}

int LocationHandler::UpdatePermission(const std::string& locationId) {
    const int ret = _agent.CoreNotifyPermissionUpdate(locationId);
    HL_LOGI("UpdatePermission ret : %d", ret);
    return ret;
}

void* LocationHandler::getToken() {
    const MutexLock lock(_mutex);
    if (_token == nullptr) {
        _token = CallbackTokens::Watch(weak_from_this());
    }
    return _token;
}

// ---- Change of the groups ----

// On the agent's thread. The list stays the agent's and is not read: everything is read anew.
void LocationHandler::_HomeLoomClientLocationListUpdated(int notiType, int groupType, homeloom_client_group_h*,
                                                         int count, const char*, void* userData) {
    HL_LOGI("location noti_type: %d, location type: %d, location size: %d", notiType, groupType, count);
    if (notiType == 0) {
        HL_LOGI("skip group noti_type_default");
        return;
    }
    if (userData == nullptr) {
        return;
    }
    const auto job = [userData] {
        HL_LOGI("location list updated");
        if (const auto self = CallbackTokens::Find<LocationHandler>(userData)) {
            self->handleLocationListUpdated();
        }
    };
    Guarded([&] { EnqueueOnScheduler(job, "_HomeLoomClientLocationListUpdated"); });
}

void LocationHandler::handleLocationListUpdated() {
    CleanUpTimer();
    void* const token = getToken();
    const MutexLock lock(_mutex);
    _locationTimerId = _locationTimer.Start(kReloadDelayMs, [token] { _LocationTimerCallback(token); });
    if (_locationTimerId == 0) {
        HL_LOGE("g_timeout_add failed!");
    }
}

// On the main loop. Leaves the spent id to the next clean-up.
void LocationHandler::_LocationTimerCallback(void* token) {
    HL_LOGI("_LocationTimerCallback() start");
    EnqueueOnScheduler(
        [token] {
            if (const auto self = CallbackTokens::Find<LocationHandler>(token)) {
                self->reloadDevices();
            }
        },
        "");
}

void LocationHandler::reloadDevices() {
    std::function<bool()> getDevicesInfo;
    std::function<void(UpdateList)> profileUpdate;
    {
        const MutexLock lock(_mutex);
        getDevicesInfo = _getDevicesInfoCallback;
        profileUpdate = _profileUpdateCallback;
    }
    if (getDevicesInfo && getDevicesInfo() && profileUpdate) {
        HL_LOGI("profileUpdate will be called");
        profileUpdate(UpdateList::LocationChanged);
    }
}

void LocationHandler::CleanUpTimer() {
    {
        const MutexLock lock(_mutex);
        if (std::exchange(_locationTimerId, 0U) == 0) {
            return;
        }
    }
    // Also for one that has fired already.
    HL_LOGI("already has timer, remove previous one");
    _locationTimer.Cancel();
}

// ---- Reading ----

LocationHandler::GroupList LocationHandler::GetLocationList(int& count) {
    return LogThrown([&] {
        homeloom_client_group_h* list = nullptr;
        const int ret = _agent.GetGroupList(list, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION, count);
        auto locations = MakeGroupList(_agent, list, count);
        if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
            throw CException("get location list failed", kErrorNoData);
        }
        if (!locations) {
            throw CException("location handle is null", kErrorNoData);
        }
        return locations;
    });
}

LocationHandler::GroupList LocationHandler::GetRoomList(int& count) {
    return LogThrown([&] {
        homeloom_client_group_h* list = nullptr;
        const int ret = _agent.GetGroupList(list, HOMELOOM_CLIENT_GROUP_TYPE_ROOM, count);
        auto rooms = MakeGroupList(_agent, list, count);
        if (!checkErrorWithRoomEmptyCase(ret)) {
            throw CException("get room list failed", kErrorNoData);
        }
        return rooms;
    });
}

std::string LocationHandler::GetLocationNameFromLocationID(const std::string& locationId, const GroupList& list,
                                                           int count) {
    return FindGroupName(_agent, locationId, list, count, kLocation);
}

std::string LocationHandler::GetRoomNameFromRoomID(const std::string& roomId, const GroupList& list, int count) {
    return FindGroupName(_agent, roomId, list, count, kRoom);
}

// Each location once, in the agent's order, which the framework gets to see.
LocationHandler::NameById LocationHandler::getLocation() {
    NameById names;
    int count = 0;
    GroupList list;
    try {
        list = GetLocationList(count);
    } catch (const std::exception&) {
        HL_LOGE("Get Location List failed");
        return names;
    }
    for (int i = 0; i < count; ++i) {
        Guarded([&] {
            std::string id = ReadGroup(_agent, list.get()[i], HOMELOOM_CLIENT_GROUP_PROPERTY_ID, kLocation.id);
            std::string name = ReadGroup(_agent, list.get()[i], HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, kLocation.name);
            HL_LOGI("[%d] location id : %s, location name : %s", i, id.c_str(), name.c_str());
            const auto known =
                std::find_if(names.begin(), names.end(), [&](const auto& entry) { return entry.first == id; });
            if (known != names.end()) {
                known->second = std::move(name);
            } else {
                names.emplace_back(std::move(id), std::move(name));
            }
        });
    }
    return names;
}

std::unordered_map<std::string, std::string> LocationHandler::GetLocations() {
    const NameById names = getLocation();
    return {names.begin(), names.end()};
}

std::unordered_map<std::string, core_location_info_struct> LocationHandler::GetCoreLocations() {
    AgentList<homeloom_core_location_h> records(_agent, &ITesselHandler::CoreLocationDestroy);
    const int ret = _agent.GetCoreLocationList(records.list, records.count);

    std::unordered_map<std::string, core_location_info_struct> locations;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("Get Location List failed");
        return locations;
    }
    const auto read = [this](homeloom_core_location_h record, homeloom_core_location_field_e field,
                             std::string& value) {
        return _agent.GetCoreLocationString(record, field, value) == HOMELOOM_CLIENT_ERROR_NONE;
    };
    for (int i = 0; records.list != nullptr && i < records.count; ++i) {
        const homeloom_core_location_h record = records.list[i];
        core_location_info_struct info;
        if (!read(record, HOMELOOM_CORE_LOCATION_ID, info.location_id)) {
            HL_LOGE("Get Location Id failed, continue");
            continue;
        }
        if (!read(record, HOMELOOM_CORE_LOCATION_NAME, info.location_name)) {
            HL_LOGE("Get Location Name failed, continue");
            continue;
        }
        if (!read(record, HOMELOOM_CORE_LOCATION_PERMISSION, info.location_permission)) {
            HL_LOGE("Get Location Permission failed, keep going");
        }
        HL_LOGI("[%d] core location id : %s, location name : %s, location permission : %s", i, info.location_id.c_str(),
                info.location_name.c_str(), info.location_permission.c_str());
        locations[info.location_id] = info;
    }
    return locations;
}

// An empty name marks a location of the user's own.
std::unordered_map<std::string, std::string> LocationHandler::getLocationIdOwnerMap() {
    std::unordered_map<std::string, std::string> owners;
    const std::string userId = _agent.GetUserId();
    std::string text;
    if (_agent.GetCoreLocationUsers("", text) != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("get location users info failed");
        return owners;
    }
    const auto users = json::JsonValue::Create(text);
    if (users.isNull()) {
        HL_LOGE("parsing is failed.");
        return owners;
    }
    HL_LOGI("json array size : %zu, %s", users.size(), text.c_str());
    for (std::size_t i = 0; i < users.size(); ++i) {
        if (IsQuit()) {
            HL_LOGI("LocationeHandler Quit");
            break;
        }
        Guarded([&] {
            const auto location = users[i];
            if (location.isNull()) {
                HL_LOGE("current location element parsing failed");
                return;
            }
            const std::string id = location["locationId"].asString();
            const auto owner = location["owner"];
            if (owner.isNull()) {
                HL_LOGE("current owner element parsing failed");
                return;
            }
            const std::string accountId = owner["norvaneAccountId"].asString();
            const std::string name = owner["name"].asString();
            owners[id] = accountId == userId ? std::string() : name;
            HL_LOGI("locationd id : %s, location owner name : %s", id.c_str(), owners[id].c_str());
        });
    }
    return owners;
}

std::string LocationHandler::getRoomInfo(const GroupList& rooms, int count, const std::string& locationId,
                                         int& roomCount) {
    return GuardedOr(std::string(), [&]() -> std::string {
        auto array = json::JsonValue::CreateArray();
        for (int i = 0; rooms && i < count; ++i) {
            const homeloom_client_group_h room = rooms.get()[i];
            if (ReadGroup(_agent, room, HOMELOOM_CLIENT_GROUP_PROPERTY_PARENT_ID, "get room parent failed") !=
                locationId) {
                continue;
            }
            json::JsonValue info;
            info.set(Names::ROOM_ID, ReadGroup(_agent, room, HOMELOOM_CLIENT_GROUP_PROPERTY_ID, kRoom.id));
            info.set(Names::ROOM_NAME, ReadGroup(_agent, room, HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, kRoom.name));
            array.append(info);
            ++roomCount;
        }
        return array.toString();
    });
}

void LocationHandler::GetLocationData(const std::shared_ptr<IEndpointListHelper>& list) {
    int groupCount = 0;
    const GroupList rooms = GetRoomList(groupCount);
    const NameById locations = getLocation();
    const auto owners = getLocationIdOwnerMap();
    const auto coreLocations = GetCoreLocations();
    std::function<std::string(const std::string&)> getFavorites;
    {
        const MutexLock lock(_mutex);
        getFavorites = _getFavoritesCallback;
    }
    for (const auto& [id, name] : locations) {
        if (IsQuit()) {
            HL_LOGI("LocationeHandler Quit");
            return;
        }
        const std::string ownerName = getLocationOwnerName(owners, id);
        int roomCount = 0;
        const std::string roomInfo = getRoomInfo(rooms, groupCount, id, roomCount);
        const std::string favorites = getFavorites ? getFavorites(id) : std::string();

        const auto endpoint = IEndpointHelper::Create();
        UnlistedEndpoint unlisted(endpoint->GetHandle());
        endpoint->SetServiceName(Names::HOMELOOM);
        endpoint->SetDeviceType(Names::HOMELOOM_DUMMY);
        endpoint->SetDeviceId(id);
        endpoint->SetExtraData(Names::LOCATION_ID, id);
        endpoint->SetExtraData(Names::LOCATION_NAME, name);
        endpoint->SetExtraData(Names::LOCATION_OWNER_NAME, ownerName);
        endpoint->SetExtraDataBool(Names::LOCATION_IS_OWNER, ownerName.empty());
        endpoint->SetExtraData(Names::LOCATION_PERMISSION, getLocationPermission(coreLocations, id));
        endpoint->SetExtraDataInt(Names::ROOM_COUNT, roomCount);
        endpoint->SetExtraData(Names::ROOM_INFO, roomInfo);
        endpoint->SetExtraData(Names::FAVORITE_INFO_ARRAY, favorites);
        HL_LOGI("location id: %s, location name: %s, owner name : %s, room_cnt: %d, room_info : %s", id.c_str(),
                name.c_str(), ownerName.c_str(), roomCount, roomInfo.c_str());
        list->Push(unlisted.release(), VMF_ERROR_NONE);
    }
}

}  // namespace VMFramework::HomeLoom
