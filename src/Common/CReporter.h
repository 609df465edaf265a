#ifndef HOMELOOM_COMMON_CREPORTER_H
#define HOMELOOM_COMMON_CREPORTER_H

#include <memory>
#include <string>
#include <utility>

#include "Common/HLNames.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class IPropertyListHelper;

/// What kind of report a parameter is for. The numbers are fixed; 1 is none.
enum class ReportType : int {
    DoMainAction = 0,
    GetAvpCameraUrl = 2,
    GetNoneAvpCameraUrl = 3,
    GetRingDoorbellUrl = 4,
    GetRefrigeratorInnerviewUrl = 5,
    GetDeviceIcons = 6,
    GetFavorites = 7,
    GetHubInfo = 8,
    StartHubOnboarding = 9,
    StopHubOnboarding = 10,
    ResetDongle = 11,
    ResetHub = 12,
    StartHubDeviceDiscovery = 13,
    StopHubDeviceDiscovery = 14,
    SetCameraNotificationType = 15,
    UnsetCameraNotificationType = 16,
    SetThirdPartyNotification = 17,
    GetThirdPartyNotification = 18,
    SetThirdPartyNotificationStatus = 19,
    GetThirdPartyNotificationStatus = 20,
    ThirdPartyNotificationStatusUpdated = 21,
    GetInstalledServiceAppInfo = 22,
    GetEnergyInfo = 23,
    GetWifiLockerUserSetting = 24,
    SetWifiLockerUserSetting = 25,
    GetFavoriteMigrationStatus = 26,
    UpdateFavoriteMigrationStatus = 27,
    RoomUpdated = 28,
    ChangeDeviceName = 29,
    MoveDevices = 30,
    CreateFavorite = 31,
    DeleteFavorite = 32,
    ReplaceFavorite = 33,
    ExecuteScene = 34,
    CreateScene = 35,
    UpdateScene = 36,
    DeleteScene = 37,
    GetSceneIcons = 38,
    CreateRoutine = 39,
    UpdateRoutine = 40,
    DeleteRoutine = 41,
    UpdateRoutineEnableStatus = 42,
    OnboardIRDevice = 43,
    DeleteDevice = 44,
    SendActiveUserEvent = 45,
    GetCapabilityStatus = 46,
    ExecuteCommand = 47,
    CreateLocksmithKeyValue = 48,
    GetLocksmithKeyValue = 49,
    UpdateLocksmithKeyValue = 50,
    DeleteLocksmithKeyValue = 51,
    SetServerEnv = 52,
    GetAccessTokenUid = 53
};

/// What is to be reported: a kind, the request that it answers, and the values of the derived class. Without a
/// transaction it is an update that arose by itself.
struct ReportParam {
    ReportParam(ReportType reportType, std::shared_ptr<CTransaction> request)
        : type(reportType), transaction(std::move(request)) {}
    virtual ~ReportParam() = default;

    const ReportType type;
    const std::shared_ptr<CTransaction> transaction;
};

/// The values that reports are made of: each a key, a type and the member that a handler fills.
namespace Value {

template <const char* Key = Names::RESULT>
struct Result {
    static constexpr const char* kKey = Key;
    bool result = false;
};

#define HL_REPORT_VALUE(Name, key, Type, member) \
    struct Name {                                \
        static constexpr const char* kKey = key; \
        Type member{};                           \
    };

HL_REPORT_VALUE(DeviceId, Names::DEVICE_ID, std::string, deviceId)
HL_REPORT_VALUE(CameraStreamUrl, Names::CAMERA_STREAM_URL, std::string, cameraStreamUrl)
HL_REPORT_VALUE(AccessToken, Names::ACCESS_TOKEN, std::string, accessToken)
HL_REPORT_VALUE(IsSuccess, Names::IS_SUCCESS, bool, isSuccess)
HL_REPORT_VALUE(InnerViewUrl, Names::INNER_VIEW_URL, std::string, innerViewUrl)
HL_REPORT_VALUE(Datetime, Names::DATETIME, std::string, datetime)
HL_REPORT_VALUE(DeviceIconInfo, Names::DEVICE_ICON_INFO, std::string, deviceIconInfo)
HL_REPORT_VALUE(LocationId, Names::LOCATION_ID, std::string, locationId)
HL_REPORT_VALUE(FavoriteSize, Names::FAVORITE_SIZE, int, favoriteSize)
HL_REPORT_VALUE(FavoriteInfoArray, Names::FAVORITE_INFO_ARRAY, std::string, favoriteInfoArray)
HL_REPORT_VALUE(HlHubInfo, Names::HL_HUB_INFO, std::string, hlHubInfo)
HL_REPORT_VALUE(HlHubDi, Names::HL_HUB_DI, std::string, hlHubDi)
HL_REPORT_VALUE(CameraNotificationType, Names::CAMERA_NOTIFICATION_TYPE, int, cameraNotificationType)
HL_REPORT_VALUE(PushProvider, Names::PUSH_PROVIDER, std::string, pushProvider)
HL_REPORT_VALUE(PushRegId, Names::PUSH_REG_ID, std::string, pushRegId)
HL_REPORT_VALUE(PushAppId, Names::PUSH_APP_ID, std::string, pushAppId)
HL_REPORT_VALUE(Locale, Names::LOCALE, std::string, locale)
HL_REPORT_VALUE(BlockDeviceIds, Names::BLOCK_DEVICE_IDS, std::string, blockDeviceIds)
HL_REPORT_VALUE(InstalledServiceAppInfoJson, Names::INSTALLED_SERVICE_APP_INFO_JSON, std::string,
                installedServiceAppInfoJson)
HL_REPORT_VALUE(WifiLockerUserSettingEnabled, Names::WIFI_LOCKER_USER_SETTING_ENABLED, int,
                wifiLockerUserSettingEnabled)
HL_REPORT_VALUE(IsMigrated, Names::IS_MIGRATED, bool, isMigrated)
HL_REPORT_VALUE(LastUpdatedDate, Names::LAST_UPDATED_DATE, std::string, lastUpdatedDate)
HL_REPORT_VALUE(DeviceModel, Names::DEVICE_MODEL, std::string, deviceModel)
HL_REPORT_VALUE(FavoriteMigrationStatusInfo, Names::FAVORITE_MIGRATION_STATUS_INFO, std::string,
                favoriteMigrationStatusInfo)
HL_REPORT_VALUE(StatusResult, Names::STATUS_RESULT, std::string, statusResult)
HL_REPORT_VALUE(RoomId, Names::ROOM_ID, std::string, roomId)
HL_REPORT_VALUE(DeviceName, Names::DEVICE_NAME, std::string, deviceName)
HL_REPORT_VALUE(DevIds, Names::DEV_IDS, std::string, devIds)
HL_REPORT_VALUE(DevicesSize, Names::DEVICES_SIZE, int, devicesSize)
HL_REPORT_VALUE(FavoriteInfo, Names::FAVORITE_INFO, std::string, favoriteInfo)
HL_REPORT_VALUE(FavoriteId, Names::FAVORITE_ID, std::string, favoriteId)
HL_REPORT_VALUE(SceneId, Names::SCENE_ID, std::string, sceneId)
HL_REPORT_VALUE(ResultValue, Names::RESULT_VALUE, std::string, resultValue)
HL_REPORT_VALUE(SceneJson, Names::SCENE_JSON, std::string, sceneJson)
HL_REPORT_VALUE(SceneIconInfo, Names::SCENE_ICON_INFO, std::string, sceneIconInfo)
HL_REPORT_VALUE(RoutineId, Names::ROUTINE_ID, std::string, routineId)
HL_REPORT_VALUE(RoutineJson, Names::ROUTINE_JSON, std::string, routineJson)
HL_REPORT_VALUE(Codeset, Names::CODESET, std::string, codeset)
HL_REPORT_VALUE(Data, Names::DATA, std::string, data)
HL_REPORT_VALUE(LocksmithInfoJson, Names::LOCKSMITH_INFO_JSON, std::string, locksmithInfoJson)
HL_REPORT_VALUE(Uid, Names::UID, std::string, uid)

#undef HL_REPORT_VALUE

}  // namespace Value

/// A report of one kind. Its values are logged and sent in the order in which they stand here.
template <ReportType Type, typename... Values>
struct ReportOf : ReportParam, Values... {
    static constexpr ReportType kType = Type;

    explicit ReportOf(std::shared_ptr<CTransaction> request) : ReportParam(Type, std::move(request)) {}
};

// Main action
using DoMainActionReportParam = ReportOf<ReportType::DoMainAction, Value::Result<>, Value::DeviceId>;

// Cameras and refrigerator
using GetAvpCameraUrlParam =
    ReportOf<ReportType::GetAvpCameraUrl, Value::DeviceId, Value::CameraStreamUrl, Value::AccessToken>;
using GetNoneAvpCameraUrlParam = ReportOf<ReportType::GetNoneAvpCameraUrl, Value::DeviceId, Value::CameraStreamUrl>;
using GetRingDoorbellUrlParam = ReportOf<ReportType::GetRingDoorbellUrl, Value::DeviceId, Value::CameraStreamUrl>;
using GetRefrigeratorInnerViewUrlParam =
    ReportOf<ReportType::GetRefrigeratorInnerviewUrl, Value::IsSuccess, Value::InnerViewUrl, Value::Datetime>;
using SetCameraNotificationTypeParam =
    ReportOf<ReportType::SetCameraNotificationType, Value::Result<>, Value::DeviceId, Value::CameraNotificationType>;
using UnsetCameraNotificationTypeParam =
    ReportOf<ReportType::UnsetCameraNotificationType, Value::Result<>, Value::DeviceId, Value::CameraNotificationType>;

// Icons
using GetDeviceIconsParam =
    ReportOf<ReportType::GetDeviceIcons, Value::Result<Names::GET_DEVICE_ICON_INFO_RESULT>, Value::DeviceIconInfo>;

// Favorites
using GetFavoritesParam = ReportOf<ReportType::GetFavorites, Value::Result<Names::GET_FAVORITE_RESULT>,
                                   Value::LocationId, Value::FavoriteSize, Value::FavoriteInfoArray>;
using CreateFavoriteParam = ReportOf<ReportType::CreateFavorite, Value::Result<Names::CREATE_FAVORITE_RESULT>,
                                     Value::LocationId, Value::FavoriteInfo>;
using DeleteFavoriteParam = ReportOf<ReportType::DeleteFavorite, Value::Result<Names::DELETE_FAVORITE_RESULT>,
                                     Value::LocationId, Value::FavoriteId>;
using ReplaceFavoriteParam =
    ReportOf<ReportType::ReplaceFavorite, Value::Result<Names::REPLACE_FAVORITE_RESULT>, Value::LocationId>;
using GetFavoriteMigrationStatusParam =
    ReportOf<ReportType::GetFavoriteMigrationStatus, Value::Result<Names::GET_FAVORITE_MIGRATION_STATUS_RESULT>,
             Value::LocationId, Value::IsMigrated, Value::LastUpdatedDate, Value::DeviceModel>;
using UpdateFavoriteMigrationStatusParam =
    ReportOf<ReportType::UpdateFavoriteMigrationStatus, Value::Result<Names::UPDATE_FAVORITE_MIGRATION_STATUS_RESULT>,
             Value::LocationId, Value::FavoriteMigrationStatusInfo, Value::StatusResult>;

// Hub
using GetHubInfoParam = ReportOf<ReportType::GetHubInfo, Value::HlHubInfo>;
using StartHubOnboardingParam = ReportOf<ReportType::StartHubOnboarding>;
using StopHubOnboardingParam = ReportOf<ReportType::StopHubOnboarding>;
using ResetDongleParam = ReportOf<ReportType::ResetDongle>;
using ResetHubParam = ReportOf<ReportType::ResetHub>;
using StartHubDeviceDiscoveryParam = ReportOf<ReportType::StartHubDeviceDiscovery, Value::Result<>, Value::HlHubDi>;
using StopHubDeviceDiscoveryParam = ReportOf<ReportType::StopHubDeviceDiscovery, Value::Result<>, Value::HlHubDi>;

// Push notification
using SetThirdPartyNotificationParam = ReportOf<ReportType::SetThirdPartyNotification, Value::Result<>>;
using GetThirdPartyNotificationParam = ReportOf<ReportType::GetThirdPartyNotification, Value::Result<>,
                                                Value::PushProvider, Value::PushRegId, Value::PushAppId, Value::Locale>;
using SetThirdPartyNotificationStatusParam = ReportOf<ReportType::SetThirdPartyNotificationStatus, Value::Result<>>;
using GetThirdPartyNotificationStatusParam =
    ReportOf<ReportType::GetThirdPartyNotificationStatus, Value::Result<>, Value::BlockDeviceIds>;
using ThirdPartyNotificationStatusUpdatedParam = ReportOf<ReportType::ThirdPartyNotificationStatusUpdated>;

// Service apps, energy, locker
using GetInstalledServiceAppInfoParam = ReportOf<ReportType::GetInstalledServiceAppInfo, Value::Result<>,
                                                 Value::LocationId, Value::InstalledServiceAppInfoJson>;
// The data goes out under the key of the app info: the screens read it there.
using GetEnergyInfoParam = ReportOf<ReportType::GetEnergyInfo, Value::Result<>, Value::InstalledServiceAppInfoJson>;
using GetWifiLockerUserSettingParam =
    ReportOf<ReportType::GetWifiLockerUserSetting, Value::Result<>, Value::WifiLockerUserSettingEnabled>;
using SetWifiLockerUserSettingParam = ReportOf<ReportType::SetWifiLockerUserSetting, Value::Result<>>;

// Rooms and devices

/// The kind of change gives the report's name and the key of its result.
struct RoomUpdatedParam : ReportOf<ReportType::RoomUpdated, Value::Result<>, Value::LocationId, Value::RoomId> {
    using ReportOf::ReportOf;
    std::string property_result;
    std::string result_key;
    /// Kept for the log: the report does not carry it.
    std::string roomName;
};
using ChangeDeviceNameParam = ReportOf<ReportType::ChangeDeviceName, Value::Result<Names::CHANGE_DEVICE_NAME_RESULT>,
                                       Value::DeviceId, Value::DeviceName>;
using MoveDevicesParam =
    ReportOf<ReportType::MoveDevices, Value::Result<Names::MOVE_DEVICES_RESULT>, Value::DevIds, Value::DevicesSize>;
using DeleteDeviceParam = ReportOf<ReportType::DeleteDevice, Value::Result<>, Value::DeviceId>;

// Scenes
using ExecuteSceneParam =
    ReportOf<ReportType::ExecuteScene, Value::Result<>, Value::LocationId, Value::SceneId, Value::ResultValue>;
using CreateSceneParam =
    ReportOf<ReportType::CreateScene, Value::Result<>, Value::LocationId, Value::SceneId, Value::SceneJson>;
using UpdateSceneParam =
    ReportOf<ReportType::UpdateScene, Value::Result<>, Value::LocationId, Value::SceneId, Value::SceneJson>;
using DeleteSceneParam = ReportOf<ReportType::DeleteScene, Value::Result<>, Value::LocationId, Value::SceneId>;
using GetSceneIconsParam = ReportOf<ReportType::GetSceneIcons, Value::Result<>, Value::SceneIconInfo>;

// Routines
using CreateRoutineParam =
    ReportOf<ReportType::CreateRoutine, Value::Result<>, Value::LocationId, Value::RoutineId, Value::RoutineJson>;
using UpdateRoutineParam =
    ReportOf<ReportType::UpdateRoutine, Value::Result<>, Value::LocationId, Value::RoutineId, Value::RoutineJson>;
using DeleteRoutineParam = ReportOf<ReportType::DeleteRoutine, Value::Result<>, Value::LocationId, Value::RoutineId>;
using UpdateRoutineStatusParam = ReportOf<ReportType::UpdateRoutineEnableStatus, Value::Result<>, Value::ResultValue>;

// Infrared devices
using OnboardIRDeviceParam = ReportOf<ReportType::OnboardIRDevice, Value::Result<>, Value::Codeset, Value::DeviceId>;

// User events
using SendActiveUserEventParam = ReportOf<ReportType::SendActiveUserEvent, Value::Result<>>;

// Capabilities
using GetCapabilityStatusParam =
    ReportOf<ReportType::GetCapabilityStatus, Value::Result<>, Value::DeviceId, Value::Data>;
using ExecuteCommandParam = ReportOf<ReportType::ExecuteCommand, Value::Result<>, Value::DeviceId, Value::Data>;

// Key-value store
using CreateLocksmithKeyValueParam =
    ReportOf<ReportType::CreateLocksmithKeyValue, Value::Result<>, Value::LocksmithInfoJson>;
using GetLocksmithKeyValueParam = ReportOf<ReportType::GetLocksmithKeyValue, Value::Result<>, Value::LocksmithInfoJson>;
using UpdateLocksmithKeyValueParam =
    ReportOf<ReportType::UpdateLocksmithKeyValue, Value::Result<>, Value::LocksmithInfoJson>;
using DeleteLocksmithKeyValueParam =
    ReportOf<ReportType::DeleteLocksmithKeyValue, Value::Result<>, Value::LocksmithInfoJson>;

// Server environment and access
using SetServerEnvParam = ReportOf<ReportType::SetServerEnv, Value::Result<>>;
using GetAccessTokenUidParam = ReportOf<ReportType::GetAccessTokenUid, Value::AccessToken, Value::Uid>;

/// Forms every answer of the plug-in: builds the property list of a report and sends it to the framework, as
/// the answer to the parameter's request or on its own. Runs on the caller's thread.
class Reporter {
public:
    /// An unknown type is logged and nothing else. Throws std::invalid_argument if the framework gives no list.
    static void Report(ReportParam& param);

    static void sendResult(const std::shared_ptr<CTransaction>& transaction,
                           const std::shared_ptr<IPropertyListHelper>& list);
    static void sendNotify(const std::shared_ptr<CTransaction>& transaction,
                           const std::shared_ptr<IPropertyListHelper>& list);
};

}  // namespace VMFramework::HomeLoom

#endif
