// The two request maps: which name is served by which method of the session, with which arguments.

#include <functional>
#include <tuple>
#include <utility>

#include "CHomeLoomClient.h"
#include "Common/CTransaction.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CPropertyListHelper.h"

namespace VMFramework::HomeLoom {

namespace {

using Transaction = std::shared_ptr<CTransaction>;

// One argument of a request: its key, read with the getter of its type.
struct Text {
    const char* key;
    std::string Read(const std::shared_ptr<IPropertyListHelper>& list) const { return list->GetString(key); }
};
struct Number {
    const char* key;
    int Read(const std::shared_ptr<IPropertyListHelper>& list) const { return list->GetInt(key); }
};
struct Flag {
    const char* key;
    bool Read(const std::shared_ptr<IPropertyListHelper>& list) const { return list->GetBool(key); }
};
// The method reads the list itself.
struct WholeList {
    std::shared_ptr<IPropertyListHelper> Read(const std::shared_ptr<IPropertyListHelper>& list) const { return list; }
};

/// A handler that logs the request's name, reads the arguments in the order given and calls the method.
template <typename... Parameters, typename... Arguments>
std::function<void(const Transaction&)> Serve(HomeloomClient& client, const char* name,
                                              void (HomeloomClient::*method)(const Transaction&, Parameters...),
                                              Arguments... arguments) {
    // Of the place and not of the handler, whose signature has all the arguments' types.
    const Log::Place place{__FILE__, __func__, __LINE__};
    return [&client, place, name, method, arguments...](const Transaction& transaction) {
        HL_LOG_AT(DLOG_INFO, place, "%s", name);
        [[maybe_unused]] const auto list = transaction->GetRequestPropertyList();
        // Braces, so that the arguments are read from left to right.
        const std::tuple<decltype(arguments.Read(list))...> values{arguments.Read(list)...};
        std::apply([&](const auto&... value) { (client.*method)(transaction, value...); }, values);
    };
}

}  // namespace

void CHomeLoomClient::_MakePriorRequestHandlerMap() {
    HL_TRACE(this);
    const auto add = [this](const char* name, auto method, auto... arguments) {
        _priorRequestHandlers[name] = Serve(_client, name, method, arguments...);
    };
    using Client = HomeloomClient;
    using namespace Names;

    add(SET_THIRD_PARTY_NOTIFICATION, &Client::SetThirdPartyNotification, Text{PUSH_PROVIDER}, Text{PUSH_REG_ID},
        Text{PUSH_APP_ID}, Text{LOCALE});
    add(GET_THIRD_PARTY_NOTIFICATION, &Client::GetThirdPartyNotification);
    add(SET_THIRD_PARTY_NOTIFICATION_STATUS, &Client::SetThirdPartyNotificationStatus, Text{BLOCK_DEVICE_IDS});
    add(GET_THIRD_PARTY_NOTIFICATION_STATUS, &Client::GetThridPartyNotificationStatus);
    add(HL_GET_INSTALLED_SERVICE_APP_INFO, &Client::GetInstalledServiceAppInfo, Text{LOCATION_ID});
}

void CHomeLoomClient::_MakeRequestHandlerMap() {
    HL_TRACE(this);
    const auto add = [this](const char* name, auto method, auto... arguments) {
        _requestHandlers[name] = Serve(_client, name, method, arguments...);
    };
    using Client = HomeloomClient;
    using namespace Names;

    // Rooms and devices
    add(HL_CREATE_ROOM, &Client::CreateRoom, Text{LOCATION_ID}, Text{ROOM_NAME});
    add(HL_REMOVE_ROOM, &Client::RemoveRoom, Text{LOCATION_ID}, Text{ROOM_ID});
    add(HL_CHANGE_ROOM_NAME, &Client::ChangeRoomName, Text{LOCATION_ID}, Text{ROOM_ID}, Text{ROOM_NAME});
    add(HL_CHANGE_DEVICE_NAME, &Client::ChangeDeviceName, Text{DEVICE_ID}, Text{DEVICE_NAME});
    add(HL_MOVE_DEVICES, &Client::MoveDevices, Number{DEVICES_SIZE}, Text{DEV_IDS}, Text{LOCATION_ID}, Text{ROOM_ID});
    add(HL_DELETE_DEVICE, &Client::DeleteDevice, WholeList{});
    add(HL_GET_DEVICE_ICON_INFO, &Client::GetDeviceIcons, Text{DEVICE_ID});
    add(HL_ONBOARD_IR_DEVICE, &Client::OnboardIrDevice, WholeList{});

    // Device control
    add(HL_DO_MAIN_ACTION, &Client::SetProperty, Text{DEVICE_ID}, Text{ACTION_URL});
    _requestHandlers[HL_GET_DEVICE_INFO] = [this](const Transaction& transaction) {
        HL_LOGI("%s", HL_GET_DEVICE_INFO);
        // The answer is the state notification that the reading causes; the request itself gets none.
        _client.GetProperty(transaction->GetRequestPropertyList()->GetString(DEVICE_ID));
    };
    add(GET_CAPABILITY_STATUS, &Client::RequestGetStatusOfCapability, Text{DEVICE_ID}, Text{COMPONENT},
        Text{CAPABILITY});
    add(EXECUTE_COMMAND, &Client::RequestExecuteCommand, Text{DEVICE_ID}, Text{COMPONENT}, Text{CAPABILITY},
        Text{COMMAND}, Text{ARGUMENT});

    // Favorites
    add(HL_CREATE_FAVORITE, &Client::CreateFavorite, Text{LOCATION_ID}, Text{FAVORITE_INFO});
    add(HL_DELETE_FAVORITE, &Client::DeleteFavorite, Text{LOCATION_ID}, Text{FAVORITE_ID});
    add(HL_REPLACE_FAVORITE_LIST, &Client::ReplaceFavorites, Text{LOCATION_ID}, Text{FAVORITE_INFO_ARRAY});
    add(HL_GET_FAVORITE, &Client::GetFavorites, Text{LOCATION_ID});
    add(HL_GET_FAVORITE_MIGRATION_STATUS, &Client::GetFavoriteMigrationStatus, Text{LOCATION_ID});
    add(HL_UPDATE_FAVORITE_MIGRATION_STATUS, &Client::UpdateFavoriteMigrationStatus, Text{LOCATION_ID},
        Text{FAVORITE_MIGRATION_STATUS_INFO});

    // Scenes and routines
    add(HL_GET_SCENE_ICON_INFO, &Client::GetSceneIconInfo);
    add(HL_EXECUTE_SCENE, &Client::ExecuteScene, Text{LOCATION_ID}, Text{SCENE_ID});
    add(HL_CREATE_SCENE, &Client::CreateScene, Text{LOCATION_ID}, Text{SCENE_JSON});
    add(HL_UPDATE_SCENE, &Client::UpdateScene, Text{LOCATION_ID}, Text{SCENE_ID}, Text{SCENE_JSON});
    add(HL_DELETE_SCENE, &Client::DeleteScene, Text{LOCATION_ID}, Text{SCENE_ID});
    add(HL_UPDATE_ROUTINE_ENABLE_STATUS, &Client::UpdateRoutineStatus, Text{LOCATION_ID}, Text{ROUTINE_ID},
        Flag{ENABLE});

    // Hub
    add(HL_START_HUB_ONBOARDING, &Client::RequestStartHubOnboarding, Text{HL_HUB_LOCATION_ID}, Text{HL_HUB_ROOM_ID});
    add(HL_STOP_HUB_ONBOARDING, &Client::RequestStopHubOnboarding);
    add(HL_RESET_HUB, &Client::RequestResetHub);
    add(HL_RESET_DONGLE, &Client::RequestResetDongle);
    add(HL_GET_HUB_INFO, &Client::RequestGetHubInfo);
    add(HL_START_HUB_DEVICE_DISCOVERY, &Client::StartHubDeviceDiscovery, Text{LOCATION_ID}, Text{HL_HUB_DI},
        Number{HL_HUB_DISCOVERY_TIMEOUT});
    add(HL_STOP_HUB_DEVICE_DISCOVERY, &Client::StopHubDeviceDiscovery, Text{LOCATION_ID}, Text{HL_HUB_DI});

    // Cameras and refrigerator
    add(HL_GET_AVP_CAMERA_URL, &Client::GetAvpCameraUrl, Text{DEVICE_ID});
    add(HL_GET_NONE_AVP_CAMERA_URL, &Client::GetNoneAvpCameraUrl, Text{DEVICE_ID});
    add(HL_GET_RING_DOORBELL_URL, &Client::GetRingDoorBellUrl, Text{DEVICE_ID});
    add(HL_SET_CAMERA_NOTIFICATION, &Client::SetCameraNotification, Text{DEVICE_ID}, Number{CAMERA_NOTIFICATION_TYPE});
    add(HL_UNSET_CAMERA_NOTIFICATION, &Client::UnsetCameraNotification, Text{DEVICE_ID},
        Number{CAMERA_NOTIFICATION_TYPE});
    add(HL_GET_REFRIGERATOR_INNERVIEW_URL, &Client::GetRefrigeratorInnerviewUrl, Text{DEVICE_ID});

    // Home services and access
    _requestHandlers[SET_COST_EFFICIENCY] = [this](const Transaction&) {
        HL_LOGI("%s", SET_COST_EFFICIENCY);
        _client.SetCostEfficiency();
    };
    add(HL_SEND_ACTIVE_USER_EVENT, &Client::SendActiveUserEvent, Number{ACTIVE_USER_EVENT_CATEGORY},
        Number{ACTIVE_USER_EVENT_ACTION}, Text{ACTIVE_USER_EVENT_LABEL}, Text{ACTIVE_USER_EVENT_METADATA});
    add(HL_GET_ENERGY_INFO, &Client::GetEnergyInfo, Text{INSTALLED_APP_ID});
    add(GET_WIFI_LOCKER_USER_SETTING, &Client::GetWifiLockerUserSetting);
    add(SET_WIFI_LOCKER_USER_SETTING, &Client::SetWifiLockerUserSetting, Text{WIFI_LOCKER_USER_SETTING_INFO_JSON});
    add(CREATE_LOCKSMITH_KEY_VALUE, &Client::CreateLocksmithKeyValue, Text{LOCKSMITH_KEY}, Text{LOCKSMITH_VALUE});
    add(GET_LOCKSMITH_KEY_VALUE, &Client::GetLocksmithKeyValue, Text{LOCKSMITH_KEY});
    add(UPDATE_LOCKSMITH_KEY_VALUE, &Client::UpdateLocksmithKeyValue, Text{LOCKSMITH_KEY}, Text{LOCKSMITH_VALUE});
    add(DELETE_LOCKSMITH_KEY_VALUE, &Client::DeleteLocksmithKeyValue, Text{LOCKSMITH_KEY});
    add(HL_SET_SERVER_ENV, &Client::SetServerEnv, Number{ENV_IOT_CLOUD}, Number{ENV_UI_META});
    add(HL_GET_ACCESSTOKEN_UID, &Client::GetAccessTokenUid);
}

}  // namespace VMFramework::HomeLoom
