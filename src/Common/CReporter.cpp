#include "Common/CReporter.h"

#include <functional>
#include <unordered_map>

#include "CPluginMgr.h"
#include "Common/CTransaction.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CPropertyListHelper.h"

namespace VMFramework::HomeLoom {

namespace {

/// Builds the property list of one report.
class Properties {
public:
    explicit Properties(const std::string& name) : _list(IPropertyListHelper::Create()) { _list->SetName(name); }

    Properties& Bool(const std::string& key, bool value) {
        _list->PushBooleanData(key, value);
        return *this;
    }
    Properties& Int(const std::string& key, int value) {
        _list->PushIntData(key, value);
        return *this;
    }
    Properties& String(const std::string& key, const std::string& value) {
        _list->PushStringData(key, value);
        return *this;
    }

    const std::shared_ptr<IPropertyListHelper>& List() const { return _list; }

private:
    const std::shared_ptr<IPropertyListHelper> _list;
};

// An answer carries the request's name; the same report without a request has a name of its own.
const char* NameOf(const ReportParam& param, const char* answer, const char* update) {
    return param.transaction ? answer : update;
}

void SendResult(const ReportParam& param, const Properties& properties) {
    Reporter::sendResult(param.transaction, properties.List());
}

void SendNotify(const ReportParam& param, const Properties& properties) {
    Reporter::sendNotify(param.transaction, properties.List());
}

void DoMainAction(ReportParam& base) {
    const auto& param = static_cast<DoMainActionReportParam&>(base);
    HL_LOGI("DoMainAction result : %d, device_id : %s", param.result, param.deviceId.c_str());
    SendResult(param, Properties(Names::HL_DO_MAIN_ACTION)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::DEVICE_ID, param.deviceId));
}

void GetAvpCameraUrl(ReportParam& base) {
    const auto& param = static_cast<GetAvpCameraUrlParam&>(base);
    HL_LOGI("GetAvpCameraUrl device_id : %s, camera_stream_url : %s, access_token : %s", param.deviceId.c_str(),
            param.cameraStreamUrl.c_str(), param.accessToken.c_str());
    SendNotify(param, Properties(Names::HL_GET_AVP_CAMERA_URL)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .String(Names::CAMERA_STREAM_URL, param.cameraStreamUrl)
                          .String(Names::ACCESS_TOKEN, param.accessToken));
}

void GetNoneAvpCameraUrl(ReportParam& base) {
    const auto& param = static_cast<GetNoneAvpCameraUrlParam&>(base);
    HL_LOGI("GetNoneAvpCameraUrl device_id : %s, camera_stream_url : %s", param.deviceId.c_str(),
            param.cameraStreamUrl.c_str());
    SendNotify(param, Properties(Names::HL_GET_NONE_AVP_CAMERA_URL)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .String(Names::CAMERA_STREAM_URL, param.cameraStreamUrl));
}

void GetRingDoorbellUrl(ReportParam& base) {
    const auto& param = static_cast<GetRingDoorbellUrlParam&>(base);
    HL_LOGI("GetRingDoorbellUrl device_id : %s, camera_stream_url : %s", param.deviceId.c_str(),
            param.cameraStreamUrl.c_str());
    SendNotify(param, Properties(Names::HL_GET_RING_DOORBELL_URL)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .String(Names::CAMERA_STREAM_URL, param.cameraStreamUrl));
}

void GetRefrigeratorInnerviewUrl(ReportParam& base) {
    const auto& param = static_cast<GetRefrigeratorInnerViewUrlParam&>(base);
    HL_LOGI("GetRefrigeratorInnerviewUrl is_success : %d, inner_view_url : %s, datetime : %s", param.isSuccess,
            param.innerViewUrl.c_str(), param.datetime.c_str());
    SendNotify(param, Properties(Names::HL_GET_REFRIGERATOR_INNERVIEW_URL)
                          .Bool(Names::IS_SUCCESS, param.isSuccess)
                          .String(Names::INNER_VIEW_URL, param.innerViewUrl)
                          .String(Names::DATETIME, param.datetime));
}

void GetDeviceIcons(ReportParam& base) {
    const auto& param = static_cast<GetDeviceIconsParam&>(base);
    HL_LOGI("GetDeviceIcons get_device_icon_info_result : %d, device_icon_info : %s", param.result,
            param.deviceIconInfo.c_str());
    SendNotify(param, Properties(Names::HL_GET_DEVICE_ICON_INFO)
                          .Bool(Names::GET_DEVICE_ICON_INFO_RESULT, param.result)
                          .String(Names::DEVICE_ICON_INFO, param.deviceIconInfo));
}

void GetFavorites(ReportParam& base) {
    const auto& param = static_cast<GetFavoritesParam&>(base);
    HL_LOGI("GetFavorites get_favorite_result : %d, location_id : %s, favorite_size : %d, favorite_info_array : %s",
            param.result, param.locationId.c_str(), param.favoriteSize, param.favoriteInfoArray.c_str());
    SendNotify(param, Properties(NameOf(param, Names::HL_GET_FAVORITE, Names::HL_FAVORITE_UPDATED))
                          .Bool(Names::GET_FAVORITE_RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .Int(Names::FAVORITE_SIZE, param.favoriteSize)
                          .String(Names::FAVORITE_INFO_ARRAY, param.favoriteInfoArray));
}

void GetHubInfo(ReportParam& base) {
    const auto& param = static_cast<GetHubInfoParam&>(base);
    HL_LOGI("GetHubInfo hl_hub_info : %s", param.hlHubInfo.c_str());
    SendNotify(param, Properties(Names::HL_GET_HUB_INFO).String(Names::HL_HUB_INFO, param.hlHubInfo));
}

void StartHubOnboarding(ReportParam& base) {
    const auto& param = static_cast<StartHubOnboardingParam&>(base);
    HL_LOGI("StartHubOnboarding");
    SendResult(param, Properties(Names::HL_START_HUB_ONBOARDING));
}

void StopHubOnboarding(ReportParam& base) {
    const auto& param = static_cast<StopHubOnboardingParam&>(base);
    HL_LOGI("StopHubOnboarding");
    SendResult(param, Properties(Names::HL_STOP_HUB_ONBOARDING));
}

void ResetDongle(ReportParam& base) {
    const auto& param = static_cast<ResetDongleParam&>(base);
    HL_LOGI("ResetDongle");
    SendResult(param, Properties(Names::HL_RESET_DONGLE));
}

void ResetHub(ReportParam& base) {
    const auto& param = static_cast<ResetHubParam&>(base);
    HL_LOGI("ResetHub");
    SendResult(param, Properties(Names::HL_RESET_HUB));
}

void StartHubDeviceDiscovery(ReportParam& base) {
    const auto& param = static_cast<StartHubDeviceDiscoveryParam&>(base);
    HL_LOGI("StartHubDeviceDiscovery result : %d, hl_hub_di : %s", param.result, param.hlHubDi.c_str());
    SendResult(param, Properties(Names::HL_START_HUB_DEVICE_DISCOVERY)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::HL_HUB_DI, param.hlHubDi));
}

void StopHubDeviceDiscovery(ReportParam& base) {
    const auto& param = static_cast<StopHubDeviceDiscoveryParam&>(base);
    HL_LOGI("StopHubDeviceDiscovery result : %d, hl_hub_di : %s", param.result, param.hlHubDi.c_str());
    SendResult(param, Properties(Names::HL_STOP_HUB_DEVICE_DISCOVERY)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::HL_HUB_DI, param.hlHubDi));
}

void SetCameraNotificationType(ReportParam& base) {
    const auto& param = static_cast<SetCameraNotificationTypeParam&>(base);
    HL_LOGI("SetCameraNotificationType result : %d, device_id : %s, camera_notification_type : %d", param.result,
            param.deviceId.c_str(), param.cameraNotificationType);
    SendNotify(param, Properties(Names::HL_SET_CAMERA_NOTIFICATION)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .Int(Names::CAMERA_NOTIFICATION_TYPE, param.cameraNotificationType));
}

void UnsetCameraNotificationType(ReportParam& base) {
    const auto& param = static_cast<UnsetCameraNotificationTypeParam&>(base);
    HL_LOGI("UnsetCameraNotificationType result : %d, device_id : %s, camera_notification_type : %d", param.result,
            param.deviceId.c_str(), param.cameraNotificationType);
    SendNotify(param, Properties(Names::HL_UNSET_CAMERA_NOTIFICATION)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .Int(Names::CAMERA_NOTIFICATION_TYPE, param.cameraNotificationType));
}

void SetThirdPartyNotification(ReportParam& base) {
    const auto& param = static_cast<SetThirdPartyNotificationParam&>(base);
    HL_LOGI("SetThirdPartyNotification result : %d", param.result);
    SendResult(param, Properties(Names::SET_THIRD_PARTY_NOTIFICATION).Bool(Names::RESULT, param.result));
}

void GetThirdPartyNotification(ReportParam& base) {
    const auto& param = static_cast<GetThirdPartyNotificationParam&>(base);
    HL_LOGI(
        "GetThirdPartyNotification result : %d, push_provider : %s, push_reg_id : %s, push_app_id : %s, locale : %s",
        param.result, param.pushProvider.c_str(), param.pushRegId.c_str(), param.pushAppId.c_str(),
        param.locale.c_str());
    SendResult(param, Properties(Names::GET_THIRD_PARTY_NOTIFICATION)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::PUSH_PROVIDER, param.pushProvider)
                          .String(Names::PUSH_REG_ID, param.pushRegId)
                          .String(Names::PUSH_APP_ID, param.pushAppId)
                          .String(Names::LOCALE, param.locale));
}

void SetThirdPartyNotificationStatus(ReportParam& base) {
    const auto& param = static_cast<SetThirdPartyNotificationStatusParam&>(base);
    HL_LOGI("SetThirdPartyNotificationStatus result : %d", param.result);
    SendNotify(param, Properties(Names::SET_THIRD_PARTY_NOTIFICATION_STATUS).Bool(Names::RESULT, param.result));
}

void GetThirdPartyNotificationStatus(ReportParam& base) {
    const auto& param = static_cast<GetThirdPartyNotificationStatusParam&>(base);
    HL_LOGI("GetThirdPartyNotificationStatus result : %d, block_device_ids : %s", param.result,
            param.blockDeviceIds.c_str());
    SendNotify(param, Properties(Names::GET_THIRD_PARTY_NOTIFICATION_STATUS)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::BLOCK_DEVICE_IDS, param.blockDeviceIds));
}

void ThirdPartyNotificationStatusUpdated(ReportParam& base) {
    const auto& param = static_cast<ThirdPartyNotificationStatusUpdatedParam&>(base);
    HL_LOGI("ThirdPartyNotificationStatusUpdated");
    SendNotify(param, Properties(Names::THIRD_PARTY_NOTIFICATION_STATUS_UPDATED));
}

void GetInstalledServiceAppInfo(ReportParam& base) {
    const auto& param = static_cast<GetInstalledServiceAppInfoParam&>(base);
    HL_LOGI("GetInstalledServiceAppInfo result : %d, location_id : %s, installed_service_app_info_json : %s",
            param.result, param.locationId.c_str(), param.installedServiceAppInfoJson.c_str());
    SendNotify(param, Properties(NameOf(param, Names::HL_GET_INSTALLED_SERVICE_APP_INFO,
                                        Names::HL_INSTALLED_SERVICE_APP_INFO_UPDATED))
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::INSTALLED_SERVICE_APP_INFO_JSON, param.installedServiceAppInfoJson));
}

void GetEnergyInfo(ReportParam& base) {
    const auto& param = static_cast<GetEnergyInfoParam&>(base);
    HL_LOGI("GetEnergyInfo result : %d, installed_service_app_info_json : %s", param.result,
            param.installedServiceAppInfoJson.c_str());
    // The data goes out under the key of the app info: the screens read it there.
    SendNotify(param, Properties(NameOf(param, Names::HL_GET_ENERGY_INFO, Names::HL_ENERGY_INFO_UPDATED))
                          .Bool(Names::RESULT, param.result)
                          .String(Names::INSTALLED_SERVICE_APP_INFO_JSON, param.installedServiceAppInfoJson));
}

void GetWifiLockerUserSetting(ReportParam& base) {
    const auto& param = static_cast<GetWifiLockerUserSettingParam&>(base);
    HL_LOGI("GetWifiLockerUserSetting result : %d, wifi_locker_user_setting_enabled : %d", param.result,
            param.wifiLockerUserSettingEnabled);
    SendNotify(param,
               Properties(NameOf(param, Names::GET_WIFI_LOCKER_USER_SETTING, Names::WIFI_LOCKER_USER_SETTING_UPDATED))
                   .Bool(Names::RESULT, param.result)
                   .Int(Names::WIFI_LOCKER_USER_SETTING_ENABLED, param.wifiLockerUserSettingEnabled));
}

void SetWifiLockerUserSetting(ReportParam& base) {
    const auto& param = static_cast<SetWifiLockerUserSettingParam&>(base);
    HL_LOGI("SetWifiLockerUserSetting result : %d", param.result);
    SendNotify(param, Properties(Names::SET_WIFI_LOCKER_USER_SETTING).Bool(Names::RESULT, param.result));
}

void GetFavoriteMigrationStatus(ReportParam& base) {
    const auto& param = static_cast<GetFavoriteMigrationStatusParam&>(base);
    HL_LOGI(
        "GetFavoriteMigrationStatus get_favorite_migration_status_result : %d, location_id : %s, isMigrated : %d, "
        "lastUpdatedDate : %s, deviceModel : %s",
        param.result, param.locationId.c_str(), param.isMigrated, param.lastUpdatedDate.c_str(),
        param.deviceModel.c_str());
    SendNotify(param, Properties(Names::HL_GET_FAVORITE_MIGRATION_STATUS)
                          .Bool(Names::GET_FAVORITE_MIGRATION_STATUS_RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .Bool(Names::IS_MIGRATED, param.isMigrated)
                          .String(Names::LAST_UPDATED_DATE, param.lastUpdatedDate)
                          .String(Names::DEVICE_MODEL, param.deviceModel));
}

void UpdateFavoriteMigrationStatus(ReportParam& base) {
    const auto& param = static_cast<UpdateFavoriteMigrationStatusParam&>(base);
    HL_LOGI(
        "UpdateFavoriteMigrationStatus update_favorite_migration_status_result : %d, location_id : %s, "
        "favorite_migration_status_info : %s, status_result : %s",
        param.result, param.locationId.c_str(), param.favoriteMigrationStatusInfo.c_str(), param.statusResult.c_str());
    SendNotify(param, Properties(Names::HL_UPDATE_FAVORITE_MIGRATION_STATUS)
                          .Bool(Names::UPDATE_FAVORITE_MIGRATION_STATUS_RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::FAVORITE_MIGRATION_STATUS_INFO, param.favoriteMigrationStatusInfo)
                          .String(Names::STATUS_RESULT, param.statusResult));
}

void RoomUpdated(ReportParam& base) {
    const auto& param = static_cast<RoomUpdatedParam&>(base);
    HL_LOGI("RoomUpdated %s : %d, location_id : %s, room_id : %s, room_name : %s", param.result_key.c_str(),
            param.result, param.locationId.c_str(), param.roomId.c_str(), param.roomName.c_str());
    SendNotify(param, Properties(param.property_result)
                          .Bool(param.result_key, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::ROOM_ID, param.roomId));
}

void ChangeDeviceName(ReportParam& base) {
    const auto& param = static_cast<ChangeDeviceNameParam&>(base);
    HL_LOGI("ChangeDeviceName change_device_name_result : %d, device_id : %s, device_name : %s", param.result,
            param.deviceId.c_str(), param.deviceName.c_str());
    SendNotify(param, Properties(Names::HL_CHANGE_DEVICE_NAME)
                          .Bool(Names::CHANGE_DEVICE_NAME_RESULT, param.result)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .String(Names::DEVICE_NAME, param.deviceName));
}

void MoveDevices(ReportParam& base) {
    const auto& param = static_cast<MoveDevicesParam&>(base);
    HL_LOGI("MoveDevices move_devices_result : %d, dev_ids : %s, devices_size : %d", param.result, param.devIds.c_str(),
            param.devicesSize);
    SendNotify(param, Properties(Names::HL_MOVE_DEVICES)
                          .Bool(Names::MOVE_DEVICES_RESULT, param.result)
                          .String(Names::DEV_IDS, param.devIds)
                          .Int(Names::DEVICES_SIZE, param.devicesSize));
}

void CreateFavorite(ReportParam& base) {
    const auto& param = static_cast<CreateFavoriteParam&>(base);
    HL_LOGI("CreateFavorite create_favorite_result : %d, location_id : %s, favorite_info : %s", param.result,
            param.locationId.c_str(), param.favoriteInfo.c_str());
    SendNotify(param, Properties(Names::HL_CREATE_FAVORITE)
                          .Bool(Names::CREATE_FAVORITE_RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::FAVORITE_INFO, param.favoriteInfo));
}

void DeleteFavorite(ReportParam& base) {
    const auto& param = static_cast<DeleteFavoriteParam&>(base);
    HL_LOGI("DeleteFavorite delete_favorite_result : %d, location_id : %s, favorite_id : %s", param.result,
            param.locationId.c_str(), param.favoriteId.c_str());
    SendNotify(param, Properties(Names::HL_DELETE_FAVORITE)
                          .Bool(Names::DELETE_FAVORITE_RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::FAVORITE_ID, param.favoriteId));
}

void ReplaceFavorite(ReportParam& base) {
    const auto& param = static_cast<ReplaceFavoriteParam&>(base);
    HL_LOGI("ReplaceFavorite replace_favorite_result : %d, location_id : %s", param.result, param.locationId.c_str());
    SendNotify(param, Properties(Names::HL_REPLACE_FAVORITE_LIST)
                          .Bool(Names::REPLACE_FAVORITE_RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId));
}

void ExecuteScene(ReportParam& base) {
    const auto& param = static_cast<ExecuteSceneParam&>(base);
    HL_LOGI("ExecuteScene result : %d, location_id : %s, scene_id : %s, result_value : %s", param.result,
            param.locationId.c_str(), param.sceneId.c_str(), param.resultValue.c_str());
    SendNotify(param, Properties(Names::HL_EXECUTE_SCENE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::SCENE_ID, param.sceneId)
                          .String(Names::RESULT_VALUE, param.resultValue));
}

void CreateScene(ReportParam& base) {
    const auto& param = static_cast<CreateSceneParam&>(base);
    HL_LOGI("CreateScene result : %d, location_id : %s, scene_id : %s, scene_json : %s", param.result,
            param.locationId.c_str(), param.sceneId.c_str(), param.sceneJson.c_str());
    SendNotify(param, Properties(Names::HL_CREATE_SCENE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::SCENE_ID, param.sceneId)
                          .String(Names::SCENE_JSON, param.sceneJson));
}

void UpdateScene(ReportParam& base) {
    const auto& param = static_cast<UpdateSceneParam&>(base);
    HL_LOGI("UpdateScene result : %d, location_id : %s, scene_id : %s, scene_json : %s", param.result,
            param.locationId.c_str(), param.sceneId.c_str(), param.sceneJson.c_str());
    SendNotify(param, Properties(Names::HL_UPDATE_SCENE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::SCENE_ID, param.sceneId)
                          .String(Names::SCENE_JSON, param.sceneJson));
}

void DeleteScene(ReportParam& base) {
    const auto& param = static_cast<DeleteSceneParam&>(base);
    HL_LOGI("DeleteScene result : %d, location_id : %s, scene_id : %s", param.result, param.locationId.c_str(),
            param.sceneId.c_str());
    SendNotify(param, Properties(Names::HL_DELETE_SCENE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::SCENE_ID, param.sceneId));
}

void GetSceneIcons(ReportParam& base) {
    const auto& param = static_cast<GetSceneIconsParam&>(base);
    HL_LOGI("GetSceneIcons result : %d, scene_icon_info : %s", param.result, param.sceneIconInfo.c_str());
    SendNotify(param, Properties(Names::HL_GET_SCENE_ICON_INFO)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::SCENE_ICON_INFO, param.sceneIconInfo));
}

void CreateRoutine(ReportParam& base) {
    const auto& param = static_cast<CreateRoutineParam&>(base);
    HL_LOGI("CreateRoutine result : %d, location_id : %s, routine_id : %s, routine_json : %s", param.result,
            param.locationId.c_str(), param.routineId.c_str(), param.routineJson.c_str());
    SendNotify(param, Properties(Names::HL_CREATE_ROUTINE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::ROUTINE_ID, param.routineId)
                          .String(Names::ROUTINE_JSON, param.routineJson));
}

void UpdateRoutine(ReportParam& base) {
    const auto& param = static_cast<UpdateRoutineParam&>(base);
    HL_LOGI("UpdateRoutine result : %d, location_id : %s, routine_id : %s, routine_json : %s", param.result,
            param.locationId.c_str(), param.routineId.c_str(), param.routineJson.c_str());
    SendNotify(param, Properties(Names::HL_UPDATE_ROUTINE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::ROUTINE_ID, param.routineId)
                          .String(Names::ROUTINE_JSON, param.routineJson));
}

void DeleteRoutine(ReportParam& base) {
    const auto& param = static_cast<DeleteRoutineParam&>(base);
    HL_LOGI("DeleteRoutine result : %d, location_id : %s, routine_id : %s", param.result, param.locationId.c_str(),
            param.routineId.c_str());
    SendNotify(param, Properties(Names::HL_DELETE_ROUTINE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCATION_ID, param.locationId)
                          .String(Names::ROUTINE_ID, param.routineId));
}

void UpdateRoutineEnableStatus(ReportParam& base) {
    const auto& param = static_cast<UpdateRoutineStatusParam&>(base);
    HL_LOGI("UpdateRoutineEnableStatus result : %d, result_value : %s", param.result, param.resultValue.c_str());
    SendNotify(param, Properties(Names::HL_UPDATE_ROUTINE_ENABLE_STATUS)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::RESULT_VALUE, param.resultValue));
}

void OnboardIRDevice(ReportParam& base) {
    const auto& param = static_cast<OnboardIRDeviceParam&>(base);
    HL_LOGI("OnboardIRDevice result : %d, codeset : %s, device_id : %s", param.result, param.codeset.c_str(),
            param.deviceId.c_str());
    SendNotify(param, Properties(Names::HL_ONBOARD_IR_DEVICE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::CODESET, param.codeset)
                          .String(Names::DEVICE_ID, param.deviceId));
}

void DeleteDevice(ReportParam& base) {
    const auto& param = static_cast<DeleteDeviceParam&>(base);
    HL_LOGI("DeleteDevice result : %d, device_id : %s", param.result, param.deviceId.c_str());
    SendNotify(
        param,
        Properties(Names::HL_DELETE_DEVICE).Bool(Names::RESULT, param.result).String(Names::DEVICE_ID, param.deviceId));
}

void SendActiveUserEvent(ReportParam& base) {
    const auto& param = static_cast<SendActiveUserEventParam&>(base);
    HL_LOGI("SendActiveUserEvent result : %d", param.result);
    SendNotify(param, Properties(Names::HL_SEND_ACTIVE_USER_EVENT).Bool(Names::RESULT, param.result));
}

void GetCapabilityStatus(ReportParam& base) {
    const auto& param = static_cast<GetCapabilityStatusParam&>(base);
    HL_LOGI("GetCapabilityStatus result : %d, device_id : %s, data : %s", param.result, param.deviceId.c_str(),
            param.data.c_str());
    SendNotify(param, Properties(Names::GET_CAPABILITY_STATUS)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .String(Names::DATA, param.data));
}

void ExecuteCommand(ReportParam& base) {
    const auto& param = static_cast<ExecuteCommandParam&>(base);
    HL_LOGI("ExecuteCommand result : %d, device_id : %s, data : %s", param.result, param.deviceId.c_str(),
            param.data.c_str());
    SendResult(param, Properties(Names::EXECUTE_COMMAND)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::DEVICE_ID, param.deviceId)
                          .String(Names::DATA, param.data));
}

void CreateLocksmithKeyValue(ReportParam& base) {
    const auto& param = static_cast<CreateLocksmithKeyValueParam&>(base);
    HL_LOGI("CreateLocksmithKeyValue result : %d, locksmith_info_json : %s", param.result,
            param.locksmithInfoJson.c_str());
    SendNotify(param, Properties(Names::CREATE_LOCKSMITH_KEY_VALUE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCKSMITH_INFO_JSON, param.locksmithInfoJson));
}

void GetLocksmithKeyValue(ReportParam& base) {
    const auto& param = static_cast<GetLocksmithKeyValueParam&>(base);
    HL_LOGI("GetLocksmithKeyValue result : %d, locksmith_info_json : %s", param.result,
            param.locksmithInfoJson.c_str());
    SendNotify(param, Properties(Names::GET_LOCKSMITH_KEY_VALUE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCKSMITH_INFO_JSON, param.locksmithInfoJson));
}

void UpdateLocksmithKeyValue(ReportParam& base) {
    const auto& param = static_cast<UpdateLocksmithKeyValueParam&>(base);
    HL_LOGI("UpdateLocksmithKeyValue result : %d, locksmith_info_json : %s", param.result,
            param.locksmithInfoJson.c_str());
    SendNotify(param, Properties(Names::UPDATE_LOCKSMITH_KEY_VALUE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCKSMITH_INFO_JSON, param.locksmithInfoJson));
}

void DeleteLocksmithKeyValue(ReportParam& base) {
    const auto& param = static_cast<DeleteLocksmithKeyValueParam&>(base);
    HL_LOGI("DeleteLocksmithKeyValue result : %d, locksmith_info_json : %s", param.result,
            param.locksmithInfoJson.c_str());
    SendNotify(param, Properties(Names::DELETE_LOCKSMITH_KEY_VALUE)
                          .Bool(Names::RESULT, param.result)
                          .String(Names::LOCKSMITH_INFO_JSON, param.locksmithInfoJson));
}

void SetServerEnv(ReportParam& base) {
    const auto& param = static_cast<SetServerEnvParam&>(base);
    // The twin has the same text: whoever searches the log for it finds both.
    HL_LOGI("SetServerEnv try to report!");
    SendNotify(param, Properties(Names::HL_SET_SERVER_ENV).Bool(Names::RESULT, param.result));
}

void GetAccessTokenUid(ReportParam& base) {
    const auto& param = static_cast<GetAccessTokenUidParam&>(base);
    // The twin has the same text: whoever searches the log for it finds both.
    HL_LOGI("SetServerEnv try to report!");
    SendNotify(param, Properties(Names::HL_GET_ACCESSTOKEN_UID)
                          .String(Names::ACCESS_TOKEN, param.accessToken)
                          .String(Names::UID, param.uid));
}

const std::unordered_map<ReportType, std::function<void(ReportParam&)>> kReports = {
    {ReportType::DoMainAction, DoMainAction},
    {ReportType::GetAvpCameraUrl, GetAvpCameraUrl},
    {ReportType::GetNoneAvpCameraUrl, GetNoneAvpCameraUrl},
    {ReportType::GetRingDoorbellUrl, GetRingDoorbellUrl},
    {ReportType::GetRefrigeratorInnerviewUrl, GetRefrigeratorInnerviewUrl},
    {ReportType::GetDeviceIcons, GetDeviceIcons},
    {ReportType::GetFavorites, GetFavorites},
    {ReportType::GetHubInfo, GetHubInfo},
    {ReportType::StartHubOnboarding, StartHubOnboarding},
    {ReportType::StopHubOnboarding, StopHubOnboarding},
    {ReportType::ResetDongle, ResetDongle},
    {ReportType::ResetHub, ResetHub},
    {ReportType::StartHubDeviceDiscovery, StartHubDeviceDiscovery},
    {ReportType::StopHubDeviceDiscovery, StopHubDeviceDiscovery},
    {ReportType::SetCameraNotificationType, SetCameraNotificationType},
    {ReportType::UnsetCameraNotificationType, UnsetCameraNotificationType},
    {ReportType::SetThirdPartyNotification, SetThirdPartyNotification},
    {ReportType::GetThirdPartyNotification, GetThirdPartyNotification},
    {ReportType::SetThirdPartyNotificationStatus, SetThirdPartyNotificationStatus},
    {ReportType::GetThirdPartyNotificationStatus, GetThirdPartyNotificationStatus},
    {ReportType::ThirdPartyNotificationStatusUpdated, ThirdPartyNotificationStatusUpdated},
    {ReportType::GetInstalledServiceAppInfo, GetInstalledServiceAppInfo},
    {ReportType::GetEnergyInfo, GetEnergyInfo},
    {ReportType::GetWifiLockerUserSetting, GetWifiLockerUserSetting},
    {ReportType::SetWifiLockerUserSetting, SetWifiLockerUserSetting},
    {ReportType::GetFavoriteMigrationStatus, GetFavoriteMigrationStatus},
    {ReportType::UpdateFavoriteMigrationStatus, UpdateFavoriteMigrationStatus},
    {ReportType::RoomUpdated, RoomUpdated},
    {ReportType::ChangeDeviceName, ChangeDeviceName},
    {ReportType::MoveDevices, MoveDevices},
    {ReportType::CreateFavorite, CreateFavorite},
    {ReportType::DeleteFavorite, DeleteFavorite},
    {ReportType::ReplaceFavorite, ReplaceFavorite},
    {ReportType::ExecuteScene, ExecuteScene},
    {ReportType::CreateScene, CreateScene},
    {ReportType::UpdateScene, UpdateScene},
    {ReportType::DeleteScene, DeleteScene},
    {ReportType::GetSceneIcons, GetSceneIcons},
    {ReportType::CreateRoutine, CreateRoutine},
    {ReportType::UpdateRoutine, UpdateRoutine},
    {ReportType::DeleteRoutine, DeleteRoutine},
    {ReportType::UpdateRoutineEnableStatus, UpdateRoutineEnableStatus},
    {ReportType::OnboardIRDevice, OnboardIRDevice},
    {ReportType::DeleteDevice, DeleteDevice},
    {ReportType::SendActiveUserEvent, SendActiveUserEvent},
    {ReportType::GetCapabilityStatus, GetCapabilityStatus},
    {ReportType::ExecuteCommand, ExecuteCommand},
    {ReportType::CreateLocksmithKeyValue, CreateLocksmithKeyValue},
    {ReportType::GetLocksmithKeyValue, GetLocksmithKeyValue},
    {ReportType::UpdateLocksmithKeyValue, UpdateLocksmithKeyValue},
    {ReportType::DeleteLocksmithKeyValue, DeleteLocksmithKeyValue},
    {ReportType::SetServerEnv, SetServerEnv},
    {ReportType::GetAccessTokenUid, GetAccessTokenUid},
};

}  // namespace

void Reporter::Report(ReportParam& param) {
    const auto report = kReports.find(param.type);
    if (report == kReports.end()) {
        HL_LOGE("invalid report type : %d", static_cast<int>(param.type));
        return;
    }
    report->second(param);
}

void Reporter::sendResult(const std::shared_ptr<CTransaction>& transaction,
                          const std::shared_ptr<IPropertyListHelper>& list) {
    if (transaction) {
        HL_LOGI("use transaction send result");
        transaction->SendResult(list);
    } else {
        HL_LOGI("use report request result");
        CPluginMgr::GetInstance().ReportRequestResult(list);
    }
}

void Reporter::sendNotify(const std::shared_ptr<CTransaction>& transaction,
                          const std::shared_ptr<IPropertyListHelper>& list) {
    if (transaction) {
        HL_LOGI("use transaction send notify");
        transaction->SendNotify(list);
    } else {
        HL_LOGI("use report service notify");
        CPluginMgr::GetInstance().ReportServiceNotify(list);
    }
}

}  // namespace VMFramework::HomeLoom
