#ifndef HOMELOOM_HOMELOOM_TESSEL_TESSELHANDLER_H
#define HOMELOOM_HOMELOOM_TESSEL_TESSELHANDLER_H

#include <string>
#include <vector>

#include "Common/CSingleton.h"
#include "Homeloom/Network/CRestHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/Tessel/TesselCall.h"

namespace VMFramework::HomeLoom {

/// The one place that calls the agent, but for the record accessors. See ITesselHandler for what the operations do.
class TesselHandler : public ITesselHandler, public CSingleton<TesselHandler>, public CRestHandler, private TesselCall {
public:
    // ---- Session ----

    homeloom_client_h GetHandle() override { return _clientHandle; }
    void Init() override { _contextRunning = true; }
    void Quit() override { _contextRunning = false; }

    int SetSignInStateChangeCb(homeloom_client_sign_in_state_changed_cb cb, void* userData) override;
    int UnsetSignInStateChangeCb() override;
    int IsSignedIn(bool& isSignedIn) override;
    int GetLoginID(std::string& loginId) override;
    int GetClientDeviceID(std::string& deviceId) override;
    int Connect(homeloom_client_connection_state_changed_cb cb, void* userData) override;
    int Disconnect() override;
    int RefreshDeviceInformation() override;

    // ---- Subscriptions, devices and groups of the client family ----

    int Subscribe(const std::string& deviceId, const std::string& uris, homeloom_client_subscribe_cb cb,
                  void* userData) override;
    int Unsubscribe(const std::string& deviceId, const std::string& uris) override;

    int DeviceGetString(homeloom_client_device_h device, int propertyId, std::string& value) override;
    int DeviceDestroy(homeloom_client_device_h* list, int count) override;
    int SetDeviceListUpdatedCb(homeloom_client_device_list_updated_cb cb, void* userData) override;
    int UnsetDeviceListUpdatedCb() override;

    int GetDeviceDetailList(homeloom_client_device_detail_h*& list, int& count) override;
    int DeviceDetailGetString(homeloom_client_device_detail_h detail, int propertyId, std::string& value) override;
    int DeviceDetailGetStringArray(homeloom_client_device_detail_h detail, int propertyId,
                                   std::vector<std::string>& values) override;
    int DeviceDetailGetInt(homeloom_client_device_detail_h detail, int propertyId, int& value) override;
    int DeviceDetailDestroy(homeloom_client_device_detail_h* list, int count) override;
    int SetDeviceDetailListUpdatedCb(homeloom_client_device_detail_list_updated_cb cb, void* userData) override;
    int UnsetDeviceDetailListUpdatedCb() override;

    int GetUIMetadata(const std::string& vid, std::string& document) override;

    int GetGroupList(homeloom_client_group_h*& list, int type, int& count) override;
    int GroupGetString(homeloom_client_group_h group, int propertyId, std::string& value) override;
    int GroupDestroy(homeloom_client_group_h* list, int count) override;
    int SetGroupListUpdatedCb(homeloom_client_group_list_updated_cb cb, void* userData) override;
    int UnsetGroupListUpdatedCb() override;

    int ChangeDeviceName(const std::string& deviceId, const std::string& name) override;
    int MoveDeviceToOtherRoom(const std::string& deviceId, const std::string& locationId, const std::string& roomId,
                              homeloom_client_move_devices_cb cb, void* userData) override;
    int MoveDevicesToOtherRoom(const std::string& deviceIds, int count, const std::string& locationId,
                               const std::string& roomId, homeloom_client_move_devices_cb cb, void* userData) override;

    int SetRemoteRepresentation(const std::string& deviceId, const std::string& uri, const std::string& payload,
                                homeloom_client_remote_cb cb, void* userData) override;
    int SetRemoteAttributes(const std::string& deviceId, const std::string& uri, const std::string& payload,
                            homeloom_client_remote_cb cb, void* userData) override;
    int GetRemoteRepresentation(const std::string& deviceId, const std::string& uri, homeloom_client_remote_cb cb,
                                void* userData) override;
    int GetRemoteAttributes(const std::string& deviceId, const std::string& uri, homeloom_client_remote_cb cb,
                            void* userData) override;

    // ---- App launch conditions ----

    int AppLaunchConditionCreate(homeloom_client_app_launch_condition_h* condition) override;
    int AddAppLaunchCondition(homeloom_client_app_launch_condition_h condition) override;
    int RemoveAppLaunchCondition(homeloom_client_app_launch_condition_h condition) override;
    int IsAppLaunchConditionAdded(homeloom_client_app_launch_condition_h condition, bool& isAdded) override;
    int AppLaunchConditionDestroy(homeloom_client_app_launch_condition_h* condition) override;
    int AppLaunchConditionSetString(homeloom_client_app_launch_condition_h condition, int propertyId,
                                    const std::string& value) override;

    // ---- Third-party notification, state and server ----

    int SetThirdPartyNotification(const std::string& provider, const std::string& regId, const std::string& appId,
                                  const std::string& locale, homeloom_client_third_party_notification_cb cb,
                                  void* userData) override;
    int SetThirdPartyNotificationStatus(const std::vector<std::string>& deviceIds,
                                        homeloom_client_third_party_notification_cb cb, void* userData) override;
    int GetThirdPartyNotificationStatus(homeloom_client_third_party_notification_status_cb cb, void* userData) override;
    int SetThirdPartyNotificationStatusUpdatedCb(homeloom_client_third_party_notification_status_updated_cb cb,
                                                 void* userData) override;
    int UnsetThirdPartyNotificationStatusUpdatedCb() override;

    int GetState() override;
    int GetAccessToken(std::string& accessToken) override;
    int GetServerEnv(int type, int& env) override;
    int SetServerEnv(int type, int env) override;
    void StoreSigninInfo() override;
    std::string GetUserId() override;
    int GetCanvas(const std::string& presentationId, const std::string& manufacturerName,
                  std::string& document) override;

    // ---- Core locations, rooms and devices ----

    int GetCoreLocationList(homeloom_core_location_h*& list, int& count) override;
    int GetCoreLocationString(homeloom_core_location_h location, int field, std::string& value) override;
    int CoreLocationDestroy(homeloom_core_location_h* list, int count) override;
    int GetCoreLocationUsers(const std::string& locationId, std::string& resultJson) override;
    int CoreNotifyPermissionUpdate(const std::string& locationId) override;
    int CreateCoreRoom(const std::string& locationId, const std::string& roomName, std::string& resultJson,
                       std::string& errorMessage) override;
    int ChangeCoreRoomName(const std::string& locationId, const std::string& roomId, const std::string& roomName,
                           std::string& resultJson, std::string& errorMessage) override;
    int DeleteCoreRoom(const std::string& locationId, const std::string& roomId, std::string& resultJson,
                       std::string& errorMessage) override;

    int GetCoreDeviceList(homeloom_core_device_h*& list, int& count) override;
    int GetCoreDeviceString(homeloom_core_device_h device, int field, std::string& value) override;
    int CoreDeviceListDestroy(homeloom_core_device_h* list, int count) override;
    int GetCoreDeviceJson(const std::string& deviceId, std::string& resultJson) override;
    int GetCoreDeviceListJson(const std::string& filter, std::string& resultJson) override;
    int ExecuteCoreDevice(const std::string& deviceId, const std::string& jsonCommand,
                          std::string& responseJson) override;
    int GetCoreDeviceStatus(const std::string& deviceId, std::string& statusJson) override;
    int GetCoreDeviceComponentStatus(const std::string& deviceId, const std::string& component,
                                     std::string& statusJson) override;
    int GetCoreDeviceCapabilityStatus(const std::string& deviceId, const std::string& component,
                                      const std::string& capability, std::string& statusJson) override;
    int GetLocalHubDeviceIDList(std::set<std::string>& deviceIds) override;
    int SetCoreSSECb(int mask, homeloom_core_sse_cb cb, void* userData) override;
    int UnsetCoreSSECb() override;

    // ---- Scenes ----

    int GetCoreSceneList(const std::string& locationId, homeloom_core_scene_h*& list, int& count) override;
    int GetCoreScene(const std::string& locationId, const std::string& sceneId, homeloom_core_scene_h& scene) override;
    int GetCoreSceneString(homeloom_core_scene_h scene, int field, std::string& value) override;
    int DestroyCoreSceneList(homeloom_core_scene_h* list, int count) override;
    int DestroyCoreSingleScene(homeloom_core_scene_h scene) override;
    int ExecuteCoreScene(const std::string& locationId, const std::string& sceneId, std::string& resultJson) override;
    int CreateCoreScene(const std::string& locationId, const std::string& sceneJson, std::string& resultJson) override;
    int UpdateCoreScene(const std::string& locationId, const std::string& sceneId, const std::string& sceneJson,
                        std::string& resultJson) override;
    int DeleteCoreScene(const std::string& locationId, const std::string& sceneId, std::string& resultJson) override;
    int GetCoreSceneIconInfoJson(std::string& resultJson) override;

    // ---- Routines, which the agent calls rules ----

    int GetCoreRoutineList(const std::string& locationId, homeloom_core_rule_h*& list, int& count) override;
    int GetCoreRoutine(const std::string& locationId, const std::string& routineId,
                       homeloom_core_rule_h& routine) override;
    int UpdateCoreRoutineStatus(const std::string& locationId, const std::string& routineId, bool enable,
                                std::string& resultJson) override;
    int GetCoreRoutineString(homeloom_core_rule_h routine, int field, std::string& value) override;
    int DestroyCoreRoutineList(homeloom_core_rule_h* list, int count) override;
    int DestroyCoreSingleRoutine(homeloom_core_rule_h routine) override;

    // ---- Infrared devices, deletion, hub ----

    int CreateIRDevice(const std::string& locationId, const std::string& requestBody,
                       std::string& responseJson) override;
    int GetIRDevice(const std::string& deviceId, std::string& responseJson) override;
    int DeleteDevice(const std::string& deviceId) override;
    int StartHubDeviceDiscover(const std::string& deviceId, int timeout, bool flagA, bool flagB, int extra) override;
    int StopHubDeviceDiscover(const std::string& deviceId) override;

    // ---- Favorites ----

    int CreateFavorite(const std::string& locationId, const std::string& favoriteInfo,
                       homeloom_core_favorite_h& favorite) override;
    int DeleteFavorite(const std::string& locationId, const std::string& favoriteId) override;
    int ReplaceFavorites(const std::string& locationId, const std::string& favoriteInfoArray,
                         homeloom_core_favorite_h*& list, int& count) override;
    int GetFavoriteList(const std::string& locationId, homeloom_core_favorite_h*& list, int& count) override;
    int GetFavoriteInt(homeloom_core_favorite_h favorite, int field, int& value) override;
    int GetFavoriteString(homeloom_core_favorite_h favorite, int field, std::string& value) override;
    int DestroyFavoriteList(homeloom_core_favorite_h* list, int count) override;
    int DestroySingleFavorite(homeloom_core_favorite_h favorite) override;
    int GetFavoriteMigrationStatus(const std::string& locationId, bool& isMigrated, std::string& lastUpdatedDate,
                                   std::string& deviceModel) override;
    int UpdateFavoriteMigrationStatus(const std::string& locationId, const std::string& statusInfo,
                                      std::string& statusResult) override;

    // ---- User events, apps, settings kept by the platform ----

    int SendActiveUserEvent(int category, int action, const std::string& label, const std::string& metadata) override;

    int GetInstalledAppList(homeloom_core_installed_app_h*& list, int& count) override;
    int GetInstalledAppDashboardJson(const std::string& installedAppId, const std::string& requestBody,
                                     std::string& resultJson) override;
    int GetCatalogAppList(const std::string& requestJson, std::string& resultJson, std::string& errorMessage) override;
    int GetInstalledAppString(homeloom_core_installed_app_h app, int field, std::string& value) override;
    int DestroyInstalledApp(homeloom_core_installed_app_h* list, int count) override;
    int ExecuteInstalledApp(const std::string& installedAppId, const std::string& requestJson,
                            std::string& responseJson) override;

    int GetWifiLockerUserSetting(homeloom_core_json_cb cb, void* userData) override;
    int SetWifiLockerUserSetting(const std::string& settingJson, homeloom_core_json_cb cb, void* userData) override;

    int CreateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) override;
    int GetLocksmithKeyValue(const std::string& key, std::string& resultJson) override;
    int UpdateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) override;
    int DeleteLocksmithKeyValue(const std::string& key, std::string& resultJson) override;

    int SetNotificationProfile(const std::string& provider, const std::string& regId, const std::string& appId,
                               const std::string& locale, std::string& errorMessage, std::string& resultJson) override;
    int GetNotificationProfile(std::string& errorMessage, std::string& provider, std::string& regId, std::string& appId,
                               std::string& locale) override;

private:
    friend class CSingleton<TesselHandler>;
    TesselHandler() = default;

    int _GetAccessToken(std::string& accessToken) const REQUIRES(_mutex);
    int _GetClientDeviceID(std::string& deviceId) const REQUIRES(_mutex);
    int _GetServerEnv(int type, int& env) const REQUIRES(_mutex);
    std::string _GetUserId() const REQUIRES(_mutex);
    std::string _GetServerEnvName(int type) const REQUIRES(_mutex);

    std::string _accessToken GUARDED_BY(_mutex);
};

}  // namespace VMFramework::HomeLoom

#endif
