// Facade: the operations that do more than to pass on what they are given.
#include <algorithm>

#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

// Room for one id in a move, its end included: ids are UUIDs.
constexpr std::size_t kMaxDeviceIdBytes = 40;

/// The first 'count' ids of a comma-separated list; empty if they aren't all there.
std::vector<std::string> SplitDeviceIds(const std::string& deviceIds, int count) {
    std::vector<std::string> ids;
    std::size_t begin = 0;
    for (int i = 0; i < count; ++i) {
        const std::size_t end = std::min(deviceIds.find(',', begin), deviceIds.size());
        if (begin >= end || end - begin >= kMaxDeviceIdBytes) {
            return {};
        }
        ids.push_back(deviceIds.substr(begin, end - begin));
        begin = end + 1;
    }
    return ids;
}

/// An array of texts that the agent handed out for us to free.
template <typename Use>
void TakeTexts(char** texts, int count, Use use) {
    for (int i = 0; texts != nullptr && i < count; ++i) {
        std::string text;
        TakeText(texts[i], text);
        use(std::move(text));
    }
    std::free(texts);
}

}  // namespace

int TesselHandler::DeviceDetailGetStringArray(homeloom_client_device_detail_h detail, int propertyId,
                                              std::vector<std::string>& values) {
    char** texts = nullptr;
    int count = 0;
    const int ret = _Access("device_detail_h is null", homeloom_client_device_detail_get_string_array, detail,
                            propertyId, &texts, &count);
    TakeTexts(texts, count, [&values](std::string text) { values.push_back(std::move(text)); });
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("getting RESOURCES array failed");
    }
    return ret;
}

int TesselHandler::ChangeDeviceName(const std::string& deviceId, const std::string& name) {
    char* resultJson = nullptr;
    const int ret = _Call({{deviceId, "device_id is empty"}, {name, "device_name is empty"}},
                          homeloom_core_change_device_name, deviceId, name, &resultJson);
    const OwnedText owner(resultJson);
    if (resultJson == nullptr) {
        HL_LOGE("result json value is null ret : %d, device_id : %s, device_name : %s", ret, deviceId.c_str(),
                name.c_str());
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    return ret;
}

// An empty room id takes the devices out of their rooms.
int TesselHandler::MoveDevicesToOtherRoom(const std::string& deviceIds, int count, const std::string& locationId,
                                          const std::string& roomId, homeloom_client_move_devices_cb cb,
                                          void* userData) {
    std::vector<std::string> texts = SplitDeviceIds(deviceIds, count);
    std::vector<char*> ids;
    ids.reserve(texts.size());
    for (std::string& text : texts) {
        ids.push_back(text.data());
    }
    const char* const complaint =
        deviceIds.empty() ? "device_ids is empty" : "device_ids does not hold as many ids as told, or one is too long";
    return _Call({{!ids.empty(), complaint}, {locationId, "location_id is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_move_devices, ids.data(), static_cast<int>(ids.size()), locationId, roomId, cb,
                 userData);
}

int TesselHandler::GetLocalHubDeviceIDList(std::set<std::string>& deviceIds) {
    char** texts = nullptr;
    int count = 0;
    const int ret = _Call({}, homeloom_core_get_hub_device_id_list, &texts, &count);
    TakeTexts(texts, count, [&deviceIds](std::string text) { deviceIds.insert(std::move(text)); });
    return ret;
}

int TesselHandler::GetGroupList(homeloom_client_group_h*& list, int type, int& count) {
    homeloom_client_group_h* groups = nullptr;
    int size = 0;
    const int ret = _Call({}, homeloom_client_get_group_list, &groups, type, &size);
    if (groups != nullptr && size > 0) {
        list = groups;
        count = size;
        return ret;
    }
    HL_LOGE("%s", groups == nullptr ? "group handle is null" : "group_h count <= 0");
    std::free(groups);
    list = nullptr;
    count = 0;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        return ret;
    }
    // A home without rooms is an ordinary one, a home without locations is not.
    return type == HOMELOOM_CLIENT_GROUP_TYPE_ROOM ? HOMELOOM_CLIENT_ERROR_NO_DATA
                                                   : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
}

int TesselHandler::AppLaunchConditionDestroy(homeloom_client_app_launch_condition_h* condition) {
    const homeloom_client_app_launch_condition_h record =
        condition != nullptr ? std::exchange(*condition, nullptr) : nullptr;
    return _Access("condition_h is null", homeloom_client_app_launch_condition_destroy, record);
}

int TesselHandler::SetThirdPartyNotificationStatus(const std::vector<std::string>& deviceIds,
                                                   homeloom_client_third_party_notification_cb cb, void* userData) {
    std::vector<const char*> ids;
    ids.reserve(deviceIds.size());
    for (const std::string& id : deviceIds) {
        ids.push_back(id.c_str());
    }
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_third_party_notification_status, ids.data(),
                 static_cast<int>(ids.size()), cb, userData);
}

int TesselHandler::GetNotificationProfile(std::string& errorMessage, std::string& provider, std::string& regId,
                                          std::string& appId, std::string& locale) {
    auto reply = _Await<GetCoreNotificationProfileParam>({}, homeloom_core_get_notification_profile,
                                                         _CoreGetNotificationProfileCb);
    errorMessage = std::move(reply.errorMessage);
    provider = std::move(reply.provider);
    regId = std::move(reply.regId);
    appId = std::move(reply.appId);
    locale = std::move(reply.locale);
    HL_LOGI("ret: %d, error_message: %s", reply.ret, errorMessage.c_str());
    return reply.ret;
}

// The one blocking operation that does not look for a connection: without one it runs into the time limit.
int TesselHandler::GetCoreLocationUsers(const std::string& locationId, std::string& resultJson) {
    const Locked<FairMutex> lock(_mutex);
    TextReply reply;
    if (locationId.empty()) {
        reply = AsyncJob<GetAllLocationUsers>().Await(_contextRunning, homeloom_core_get_all_location_users_async,
                                                      _clientHandle.load(), _CoreGetAllLocationUsersCb);
    } else {
        reply = AsyncJob<GetLocationUsers>().Await(_contextRunning, homeloom_core_get_location_users_async,
                                                   _clientHandle.load(), locationId.c_str(), _CoreGetLocationUsersCb);
    }
    resultJson = std::move(reply.resultJson);
    HL_LOGI("ret: %d, error_message: %s", reply.ret, reply.errorMessage.c_str());
    return reply.ret;
}

int TesselHandler::DeleteFavorite(const std::string& locationId, const std::string& favoriteId) {
    if (favoriteId.empty()) {
        return _Call({{locationId, "location_id is empty"}}, homeloom_core_delete_favorites, locationId);
    }
    return _Call({{locationId, "location_id is empty"}}, homeloom_core_delete_favorite, locationId, favoriteId);
}

int TesselHandler::GetFavoriteMigrationStatus(const std::string& locationId, bool& isMigrated,
                                              std::string& lastUpdatedDate, std::string& deviceModel) {
    char* date = nullptr;
    char* model = nullptr;
    const int ret = _Call({{locationId, "location_id is empty"}}, homeloom_core_get_favorite_migration_status,
                          locationId, &isMigrated, &date, &model);
    TakeText(date, lastUpdatedDate);
    TakeText(model, deviceModel);
    return ret;
}

}  // namespace VMFramework::HomeLoom
