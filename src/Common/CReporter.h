#ifndef HOMELOOM_COMMON_CREPORTER_H
#define HOMELOOM_COMMON_CREPORTER_H

#include <memory>
#include <string>
#include <utility>

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

// Main action

struct DoMainActionReportParam : ReportParam {
    explicit DoMainActionReportParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::DoMainAction, std::move(request)) {}
    bool result = false;
    std::string deviceId;
};

// Cameras and refrigerator

struct GetAvpCameraUrlParam : ReportParam {
    explicit GetAvpCameraUrlParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetAvpCameraUrl, std::move(request)) {}
    std::string deviceId;
    std::string cameraStreamUrl;
    std::string accessToken;
};

struct GetNoneAvpCameraUrlParam : ReportParam {
    explicit GetNoneAvpCameraUrlParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetNoneAvpCameraUrl, std::move(request)) {}
    std::string deviceId;
    std::string cameraStreamUrl;
};

struct GetRingDoorbellUrlParam : ReportParam {
    explicit GetRingDoorbellUrlParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetRingDoorbellUrl, std::move(request)) {}
    std::string deviceId;
    std::string cameraStreamUrl;
};

struct GetRefrigeratorInnerViewUrlParam : ReportParam {
    explicit GetRefrigeratorInnerViewUrlParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetRefrigeratorInnerviewUrl, std::move(request)) {}
    bool isSuccess = false;
    std::string innerViewUrl;
    std::string datetime;
};

struct SetCameraNotificationTypeParam : ReportParam {
    explicit SetCameraNotificationTypeParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::SetCameraNotificationType, std::move(request)) {}
    bool result = false;
    std::string deviceId;
    int cameraNotificationType = 0;
};

struct UnsetCameraNotificationTypeParam : ReportParam {
    explicit UnsetCameraNotificationTypeParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::UnsetCameraNotificationType, std::move(request)) {}
    bool result = false;
    std::string deviceId;
    int cameraNotificationType = 0;
};

// Icons

struct GetDeviceIconsParam : ReportParam {
    explicit GetDeviceIconsParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetDeviceIcons, std::move(request)) {}
    bool result = false;
    std::string deviceIconInfo;
};

// Favorites

struct GetFavoritesParam : ReportParam {
    explicit GetFavoritesParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetFavorites, std::move(request)) {}
    bool result = false;
    std::string locationId;
    int favoriteSize = 0;
    std::string favoriteInfoArray;
};

struct CreateFavoriteParam : ReportParam {
    explicit CreateFavoriteParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::CreateFavorite, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string favoriteInfo;
};

struct DeleteFavoriteParam : ReportParam {
    explicit DeleteFavoriteParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::DeleteFavorite, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string favoriteId;
};

struct ReplaceFavoriteParam : ReportParam {
    explicit ReplaceFavoriteParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ReplaceFavorite, std::move(request)) {}
    bool result = false;
    std::string locationId;
};

struct GetFavoriteMigrationStatusParam : ReportParam {
    explicit GetFavoriteMigrationStatusParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetFavoriteMigrationStatus, std::move(request)) {}
    bool result = false;
    std::string locationId;
    bool isMigrated = false;
    std::string lastUpdatedDate;
    std::string deviceModel;
};

struct UpdateFavoriteMigrationStatusParam : ReportParam {
    explicit UpdateFavoriteMigrationStatusParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::UpdateFavoriteMigrationStatus, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string favoriteMigrationStatusInfo;
    std::string statusResult;
};

// Hub

struct GetHubInfoParam : ReportParam {
    explicit GetHubInfoParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetHubInfo, std::move(request)) {}
    std::string hlHubInfo;
};

struct StartHubOnboardingParam : ReportParam {
    explicit StartHubOnboardingParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::StartHubOnboarding, std::move(request)) {}
};

struct StopHubOnboardingParam : ReportParam {
    explicit StopHubOnboardingParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::StopHubOnboarding, std::move(request)) {}
};

struct ResetDongleParam : ReportParam {
    explicit ResetDongleParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ResetDongle, std::move(request)) {}
};

struct ResetHubParam : ReportParam {
    explicit ResetHubParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ResetHub, std::move(request)) {}
};

struct StartHubDeviceDiscoveryParam : ReportParam {
    explicit StartHubDeviceDiscoveryParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::StartHubDeviceDiscovery, std::move(request)) {}
    bool result = false;
    std::string hlHubDi;
};

struct StopHubDeviceDiscoveryParam : ReportParam {
    explicit StopHubDeviceDiscoveryParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::StopHubDeviceDiscovery, std::move(request)) {}
    bool result = false;
    std::string hlHubDi;
};

// Push notification

struct SetThirdPartyNotificationParam : ReportParam {
    explicit SetThirdPartyNotificationParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::SetThirdPartyNotification, std::move(request)) {}
    bool result = false;
};

struct GetThirdPartyNotificationParam : ReportParam {
    explicit GetThirdPartyNotificationParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetThirdPartyNotification, std::move(request)) {}
    bool result = false;
    std::string pushProvider;
    std::string pushRegId;
    std::string pushAppId;
    std::string locale;
};

struct SetThirdPartyNotificationStatusParam : ReportParam {
    explicit SetThirdPartyNotificationStatusParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::SetThirdPartyNotificationStatus, std::move(request)) {}
    bool result = false;
};

struct GetThirdPartyNotificationStatusParam : ReportParam {
    explicit GetThirdPartyNotificationStatusParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetThirdPartyNotificationStatus, std::move(request)) {}
    bool result = false;
    std::string blockDeviceIds;
};

struct ThirdPartyNotificationStatusUpdatedParam : ReportParam {
    explicit ThirdPartyNotificationStatusUpdatedParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ThirdPartyNotificationStatusUpdated, std::move(request)) {}
};

// Service apps, energy, locker

struct GetInstalledServiceAppInfoParam : ReportParam {
    explicit GetInstalledServiceAppInfoParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetInstalledServiceAppInfo, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string installedServiceAppInfoJson;
};

struct GetEnergyInfoParam : ReportParam {
    explicit GetEnergyInfoParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetEnergyInfo, std::move(request)) {}
    bool result = false;
    std::string installedServiceAppInfoJson;
};

struct GetWifiLockerUserSettingParam : ReportParam {
    explicit GetWifiLockerUserSettingParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetWifiLockerUserSetting, std::move(request)) {}
    bool result = false;
    int wifiLockerUserSettingEnabled = 0;
};

struct SetWifiLockerUserSettingParam : ReportParam {
    explicit SetWifiLockerUserSettingParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::SetWifiLockerUserSetting, std::move(request)) {}
    bool result = false;
};

// Rooms and devices

struct RoomUpdatedParam : ReportParam {
    explicit RoomUpdatedParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::RoomUpdated, std::move(request)) {}
    bool result = false;
    /// The name of the report, and the key of its result.
    std::string property_result;
    std::string result_key;
    std::string locationId;
    std::string roomId;
    /// Kept for the log: the report does not carry it.
    std::string roomName;
};

struct ChangeDeviceNameParam : ReportParam {
    explicit ChangeDeviceNameParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ChangeDeviceName, std::move(request)) {}
    bool result = false;
    std::string deviceId;
    std::string deviceName;
};

struct MoveDevicesParam : ReportParam {
    explicit MoveDevicesParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::MoveDevices, std::move(request)) {}
    bool result = false;
    std::string devIds;
    int devicesSize = 0;
};

struct DeleteDeviceParam : ReportParam {
    explicit DeleteDeviceParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::DeleteDevice, std::move(request)) {}
    bool result = false;
    std::string deviceId;
};

// Scenes

struct ExecuteSceneParam : ReportParam {
    explicit ExecuteSceneParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ExecuteScene, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string sceneId;
    std::string resultValue;
};

struct CreateSceneParam : ReportParam {
    explicit CreateSceneParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::CreateScene, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string sceneId;
    std::string sceneJson;
};

struct UpdateSceneParam : ReportParam {
    explicit UpdateSceneParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::UpdateScene, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string sceneId;
    std::string sceneJson;
};

struct DeleteSceneParam : ReportParam {
    explicit DeleteSceneParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::DeleteScene, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string sceneId;
};

struct GetSceneIconsParam : ReportParam {
    explicit GetSceneIconsParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetSceneIcons, std::move(request)) {}
    bool result = false;
    std::string sceneIconInfo;
};

// Routines

struct CreateRoutineParam : ReportParam {
    explicit CreateRoutineParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::CreateRoutine, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string routineId;
    std::string routineJson;
};

struct UpdateRoutineParam : ReportParam {
    explicit UpdateRoutineParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::UpdateRoutine, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string routineId;
    std::string routineJson;
};

struct DeleteRoutineParam : ReportParam {
    explicit DeleteRoutineParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::DeleteRoutine, std::move(request)) {}
    bool result = false;
    std::string locationId;
    std::string routineId;
};

struct UpdateRoutineStatusParam : ReportParam {
    explicit UpdateRoutineStatusParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::UpdateRoutineEnableStatus, std::move(request)) {}
    bool result = false;
    std::string resultValue;
};

// Infrared devices

struct OnboardIRDeviceParam : ReportParam {
    explicit OnboardIRDeviceParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::OnboardIRDevice, std::move(request)) {}
    bool result = false;
    std::string codeset;
    std::string deviceId;
};

// User events

struct SendActiveUserEventParam : ReportParam {
    explicit SendActiveUserEventParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::SendActiveUserEvent, std::move(request)) {}
    bool result = false;
};

// Capabilities

struct GetCapabilityStatusParam : ReportParam {
    explicit GetCapabilityStatusParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetCapabilityStatus, std::move(request)) {}
    bool result = false;
    std::string deviceId;
    std::string data;
};

struct ExecuteCommandParam : ReportParam {
    explicit ExecuteCommandParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::ExecuteCommand, std::move(request)) {}
    bool result = false;
    std::string deviceId;
    std::string data;
};

// Key-value store

struct CreateLocksmithKeyValueParam : ReportParam {
    explicit CreateLocksmithKeyValueParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::CreateLocksmithKeyValue, std::move(request)) {}
    bool result = false;
    std::string locksmithInfoJson;
};

struct GetLocksmithKeyValueParam : ReportParam {
    explicit GetLocksmithKeyValueParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetLocksmithKeyValue, std::move(request)) {}
    bool result = false;
    std::string locksmithInfoJson;
};

struct UpdateLocksmithKeyValueParam : ReportParam {
    explicit UpdateLocksmithKeyValueParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::UpdateLocksmithKeyValue, std::move(request)) {}
    bool result = false;
    std::string locksmithInfoJson;
};

struct DeleteLocksmithKeyValueParam : ReportParam {
    explicit DeleteLocksmithKeyValueParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::DeleteLocksmithKeyValue, std::move(request)) {}
    bool result = false;
    std::string locksmithInfoJson;
};

// Server environment and access

struct SetServerEnvParam : ReportParam {
    explicit SetServerEnvParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::SetServerEnv, std::move(request)) {}
    bool result = false;
};

struct GetAccessTokenUidParam : ReportParam {
    explicit GetAccessTokenUidParam(std::shared_ptr<CTransaction> request)
        : ReportParam(ReportType::GetAccessTokenUid, std::move(request)) {}
    std::string accessToken;
    std::string uid;
};

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
