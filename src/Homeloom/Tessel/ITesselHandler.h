#ifndef HOMELOOM_HOMELOOM_TESSEL_ITESSELHANDLER_H
#define HOMELOOM_HOMELOOM_TESSEL_ITESSELHANDLER_H

#include <set>
#include <string>
#include <vector>

#include <homeloom_client.h>
#include <homeloom_core.h>

namespace VMFramework::HomeLoom {

/// Everything that the plug-in asks of the agent.
///
/// Results. Unless told otherwise an operation returns the agent's code: 0 on success. The facade's own codes:
/// -22 for an argument that is missing or for no connection, -999999 (kAsyncJobTimeout) when
/// a blocking operation ended without a reply. Operations never throw. Out arguments are written on success only; those
/// of a blocking operation also by a failed reply that carries text or records.
///
/// Ownership. A list or record handed out belongs to the caller, who gives it back to the matching Destroy operation.
///
/// Threads. Every operation may be called from any thread but the agent's: calls are serialised, and an
/// operation marked "blocking" waits for its reply for up to 30 seconds and lets all others wait as long.
///
/// User data of callbacks is handed through to the agent, which may call late and, when it is broken, twice: give it
/// a token of CallbackTokens and no address.
class ITesselHandler {
public:
    // ---- Session ----

    /// The handle for direct use with the record accessors; null without connection.
    virtual homeloom_client_h GetHandle() = 0;
    /// Allows blocking operations, and ends them: waiting ones within 100 milliseconds, later ones after as long.
    virtual void Init() = 0;
    virtual void Quit() = 0;

    virtual int SetSignInStateChangeCb(homeloom_client_sign_in_state_changed_cb cb, void* userData) = 0;
    virtual int UnsetSignInStateChangeCb() = 0;
    virtual int IsSignedIn(bool& isSignedIn) = 0;
    virtual int GetLoginID(std::string& loginId) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int GetClientDeviceID(std::string& deviceId) = 0;
    virtual int Connect(homeloom_client_connection_state_changed_cb cb, void* userData) = 0;
    /// HOMELOOM_CLIENT_ERROR_NOT_CONNECTED without connection. Drops every registration and subscription.
    virtual int Disconnect() = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int RefreshDeviceInformation() = 0;

    // ---- Subscriptions, devices and groups of the client family ----

    /// 'uris' is the text of a JSON array; a subscription is identified by the device and this exact text.
    virtual int Subscribe(const std::string& deviceId, const std::string& uris, homeloom_client_subscribe_cb cb,
                          void* userData) = 0;
    virtual int Unsubscribe(const std::string& deviceId, const std::string& uris) = 0;

    virtual int DeviceGetString(homeloom_client_device_h device, int propertyId, std::string& value) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int DeviceDestroy(homeloom_client_device_h* list, int count) = 0;
    virtual int SetDeviceListUpdatedCb(homeloom_client_device_list_updated_cb cb, void* userData) = 0;
    virtual int UnsetDeviceListUpdatedCb() = 0;

    virtual int GetDeviceDetailList(homeloom_client_device_detail_h*& list, int& count) = 0;
    virtual int DeviceDetailGetString(homeloom_client_device_detail_h detail, int propertyId, std::string& value) = 0;
    virtual int DeviceDetailGetStringArray(homeloom_client_device_detail_h detail, int propertyId,
                                           std::vector<std::string>& values) = 0;
    virtual int DeviceDetailGetInt(homeloom_client_device_detail_h detail, int propertyId, int& value) = 0;
    virtual int DeviceDetailDestroy(homeloom_client_device_detail_h* list, int count) = 0;
    virtual int SetDeviceDetailListUpdatedCb(homeloom_client_device_detail_list_updated_cb cb, void* userData) = 0;
    virtual int UnsetDeviceDetailListUpdatedCb() = 0;

    virtual int GetUIMetadata(const std::string& vid, std::string& document) = 0;

    /// 'type' is a homeloom_client_group_type_e. A call that gives no list gives -61 for rooms and -22 for
    /// locations, unless the agent has a code of its own.
    virtual int GetGroupList(homeloom_client_group_h*& list, int type, int& count) = 0;
    virtual int GroupGetString(homeloom_client_group_h group, int propertyId, std::string& value) = 0;
    virtual int GroupDestroy(homeloom_client_group_h* list, int count) = 0;
    virtual int SetGroupListUpdatedCb(homeloom_client_group_list_updated_cb cb, void* userData) = 0;
    virtual int UnsetGroupListUpdatedCb() = 0;

    virtual int ChangeDeviceName(const std::string& deviceId, const std::string& name) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int MoveDeviceToOtherRoom(const std::string& deviceId, const std::string& locationId,
                                      const std::string& roomId, homeloom_client_move_devices_cb cb,
                                      void* userData) = 0;
    /// 'deviceIds' are the first 'count' of a comma-separated list. -22 if there are fewer, or if one is empty or
    /// has 40 bytes or more.
    virtual int MoveDevicesToOtherRoom(const std::string& deviceIds, int count, const std::string& locationId,
                                       const std::string& roomId, homeloom_client_move_devices_cb cb,
                                       void* userData) = 0;

    virtual int SetRemoteRepresentation(const std::string& deviceId, const std::string& uri, const std::string& payload,
                                        homeloom_client_remote_cb cb, void* userData) = 0;
    virtual int SetRemoteAttributes(const std::string& deviceId, const std::string& uri, const std::string& payload,
                                    homeloom_client_remote_cb cb, void* userData) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int GetRemoteRepresentation(const std::string& deviceId, const std::string& uri,
                                        homeloom_client_remote_cb cb, void* userData) = 0;
    virtual int GetRemoteAttributes(const std::string& deviceId, const std::string& uri, homeloom_client_remote_cb cb,
                                    void* userData) = 0;

    // ---- App launch conditions ----

    virtual int AppLaunchConditionCreate(homeloom_client_app_launch_condition_h* condition) = 0;
    virtual int AddAppLaunchCondition(homeloom_client_app_launch_condition_h condition) = 0;
    virtual int RemoveAppLaunchCondition(homeloom_client_app_launch_condition_h condition) = 0;
    virtual int IsAppLaunchConditionAdded(homeloom_client_app_launch_condition_h condition, bool& isAdded) = 0;
    /// Sets *condition to null.
    virtual int AppLaunchConditionDestroy(homeloom_client_app_launch_condition_h* condition) = 0;
    virtual int AppLaunchConditionSetString(homeloom_client_app_launch_condition_h condition, int propertyId,
                                            const std::string& value) = 0;

    // ---- Third-party notification, state and server ----

    virtual int SetThirdPartyNotification(const std::string& provider, const std::string& regId,
                                          const std::string& appId, const std::string& locale,
                                          homeloom_client_third_party_notification_cb cb, void* userData) = 0;
    /// Blocks the notifications of these devices; an empty list blocks none.
    virtual int SetThirdPartyNotificationStatus(const std::vector<std::string>& deviceIds,
                                                homeloom_client_third_party_notification_cb cb, void* userData) = 0;
    virtual int GetThirdPartyNotificationStatus(homeloom_client_third_party_notification_status_cb cb,
                                                void* userData) = 0;
    virtual int SetThirdPartyNotificationStatusUpdatedCb(homeloom_client_third_party_notification_status_updated_cb cb,
                                                         void* userData) = 0;
    virtual int UnsetThirdPartyNotificationStatusUpdatedCb() = 0;

    /// The agent's state number; 0 on failure.
    virtual int GetState() = 0;
    virtual int GetAccessToken(std::string& accessToken) = 0;
    /// Types and environments are the agent's, see homeloom_client.h.
    virtual int GetServerEnv(int type, int& env) = 0;
    virtual int SetServerEnv(int type, int env) = 0;
    /// Writes the sign-in summary for other processes of the TV; nothing without a signed-in user.
    virtual void StoreSigninInfo() = 0;
    /// Empty on failure.
    virtual std::string GetUserId() = 0;
    virtual int GetCanvas(const std::string& presentationId, const std::string& manufacturerName,
                          std::string& document) = 0;

    // ---- Core locations, rooms and devices ----

    /// Blocking.
    virtual int GetCoreLocationList(homeloom_core_location_h*& list, int& count) = 0;
    virtual int GetCoreLocationString(homeloom_core_location_h location, int field, std::string& value) = 0;
    virtual int CoreLocationDestroy(homeloom_core_location_h* list, int count) = 0;
    /// Blocking. An empty location id asks for the users of all locations.
    virtual int GetCoreLocationUsers(const std::string& locationId, std::string& resultJson) = 0;
    /// An empty location id stands for all.
    virtual int CoreNotifyPermissionUpdate(const std::string& locationId) = 0;
    /// These three are blocking.
    virtual int CreateCoreRoom(const std::string& locationId, const std::string& roomName, std::string& resultJson,
                               std::string& errorMessage) = 0;
    virtual int ChangeCoreRoomName(const std::string& locationId, const std::string& roomId,
                                   const std::string& roomName, std::string& resultJson, std::string& errorMessage) = 0;
    virtual int DeleteCoreRoom(const std::string& locationId, const std::string& roomId, std::string& resultJson,
                               std::string& errorMessage) = 0;

    /// Blocking.
    virtual int GetCoreDeviceList(homeloom_core_device_h*& list, int& count) = 0;
    virtual int GetCoreDeviceString(homeloom_core_device_h device, int field, std::string& value) = 0;
    virtual int CoreDeviceListDestroy(homeloom_core_device_h* list, int count) = 0;
    /// These two are blocking. An empty filter selects all devices.
    virtual int GetCoreDeviceJson(const std::string& deviceId, std::string& resultJson) = 0;
    virtual int GetCoreDeviceListJson(const std::string& filter, std::string& resultJson) = 0;
    virtual int ExecuteCoreDevice(const std::string& deviceId, const std::string& jsonCommand,
                                  std::string& responseJson) = 0;
    virtual int GetCoreDeviceStatus(const std::string& deviceId, std::string& statusJson) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int GetCoreDeviceComponentStatus(const std::string& deviceId, const std::string& component,
                                             std::string& statusJson) = 0;
    virtual int GetCoreDeviceCapabilityStatus(const std::string& deviceId, const std::string& component,
                                              const std::string& capability, std::string& statusJson) = 0;
    /// Adds to the set.
    virtual int GetLocalHubDeviceIDList(std::set<std::string>& deviceIds) = 0;
    /// 'mask' is the sum of the homeloom_core_sse_e wanted.
    virtual int SetCoreSSECb(int mask, homeloom_core_sse_cb cb, void* userData) = 0;
    virtual int UnsetCoreSSECb() = 0;

    // ---- Scenes ----

    /// Both blocking.
    virtual int GetCoreSceneList(const std::string& locationId, homeloom_core_scene_h*& list, int& count) = 0;
    virtual int GetCoreScene(const std::string& locationId, const std::string& sceneId,
                             homeloom_core_scene_h& scene) = 0;
    virtual int GetCoreSceneString(homeloom_core_scene_h scene, int field, std::string& value) = 0;
    virtual int DestroyCoreSceneList(homeloom_core_scene_h* list, int count) = 0;
    virtual int DestroyCoreSingleScene(homeloom_core_scene_h scene) = 0;
    /// These five are blocking.
    virtual int ExecuteCoreScene(const std::string& locationId, const std::string& sceneId,
                                 std::string& resultJson) = 0;
    virtual int CreateCoreScene(const std::string& locationId, const std::string& sceneJson,
                                std::string& resultJson) = 0;
    virtual int UpdateCoreScene(const std::string& locationId, const std::string& sceneId, const std::string& sceneJson,
                                std::string& resultJson) = 0;
    virtual int DeleteCoreScene(const std::string& locationId, const std::string& sceneId, std::string& resultJson) = 0;
    virtual int GetCoreSceneIconInfoJson(std::string& resultJson) = 0;

    // ---- Routines, which the agent calls rules ----

    /// These three are blocking.
    virtual int GetCoreRoutineList(const std::string& locationId, homeloom_core_rule_h*& list, int& count) = 0;
    virtual int GetCoreRoutine(const std::string& locationId, const std::string& routineId,
                               homeloom_core_rule_h& routine) = 0;
    virtual int UpdateCoreRoutineStatus(const std::string& locationId, const std::string& routineId, bool enable,
                                        std::string& resultJson) = 0;
    virtual int GetCoreRoutineString(homeloom_core_rule_h routine, int field, std::string& value) = 0;
    virtual int DestroyCoreRoutineList(homeloom_core_rule_h* list, int count) = 0;
    virtual int DestroyCoreSingleRoutine(homeloom_core_rule_h routine) = 0;

    // ---- Infrared devices, deletion, hub ----

    virtual int CreateIRDevice(const std::string& locationId, const std::string& requestBody,
                               std::string& responseJson) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int GetIRDevice(const std::string& deviceId, std::string& responseJson) = 0;
    virtual int DeleteDevice(const std::string& deviceId) = 0;
    /// 'timeout' in seconds. What the last three mean is the agent's.
    virtual int StartHubDeviceDiscover(const std::string& deviceId, int timeout, bool flagA, bool flagB, int extra) = 0;
    virtual int StopHubDeviceDiscover(const std::string& deviceId) = 0;

    // ---- Favorites ----

    virtual int CreateFavorite(const std::string& locationId, const std::string& favoriteInfo,
                               homeloom_core_favorite_h& favorite) = 0;
    /// An empty favorite id deletes all favorites of the location.
    virtual int DeleteFavorite(const std::string& locationId, const std::string& favoriteId) = 0;
    /// May hand out a list on failure as well.
    virtual int ReplaceFavorites(const std::string& locationId, const std::string& favoriteInfoArray,
                                 homeloom_core_favorite_h*& list, int& count) = 0;
    /// Blocking.
    virtual int GetFavoriteList(const std::string& locationId, homeloom_core_favorite_h*& list, int& count) = 0;
    virtual int GetFavoriteInt(homeloom_core_favorite_h favorite, int field, int& value) = 0;
    virtual int GetFavoriteString(homeloom_core_favorite_h favorite, int field, std::string& value) = 0;
    virtual int DestroyFavoriteList(homeloom_core_favorite_h* list, int count) = 0;
    virtual int DestroySingleFavorite(homeloom_core_favorite_h favorite) = 0;
    virtual int GetFavoriteMigrationStatus(const std::string& locationId, bool& isMigrated,
                                           std::string& lastUpdatedDate, std::string& deviceModel) = 0;
    virtual int UpdateFavoriteMigrationStatus(const std::string& locationId, const std::string& statusInfo,
                                              std::string& statusResult) = 0;

    // ---- User events, apps, settings kept by the platform ----

    virtual int SendActiveUserEvent(int category, int action, const std::string& label,
                                    const std::string& metadata) = 0;

    /// These three are blocking.
    virtual int GetInstalledAppList(homeloom_core_installed_app_h*& list, int& count) = 0;
    // Part of the interface; no caller in the plug-in.
    virtual int GetInstalledAppDashboardJson(const std::string& installedAppId, const std::string& requestBody,
                                             std::string& resultJson) = 0;
    virtual int GetCatalogAppList(const std::string& requestJson, std::string& resultJson,
                                  std::string& errorMessage) = 0;
    virtual int GetInstalledAppString(homeloom_core_installed_app_h app, int field, std::string& value) = 0;
    virtual int DestroyInstalledApp(homeloom_core_installed_app_h* list, int count) = 0;
    virtual int ExecuteInstalledApp(const std::string& installedAppId, const std::string& requestJson,
                                    std::string& responseJson) = 0;

    virtual int GetWifiLockerUserSetting(homeloom_core_json_cb cb, void* userData) = 0;
    virtual int SetWifiLockerUserSetting(const std::string& settingJson, homeloom_core_json_cb cb, void* userData) = 0;

    virtual int CreateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) = 0;
    virtual int GetLocksmithKeyValue(const std::string& key, std::string& resultJson) = 0;
    virtual int UpdateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) = 0;
    virtual int DeleteLocksmithKeyValue(const std::string& key, std::string& resultJson) = 0;

    /// Both blocking.
    virtual int SetNotificationProfile(const std::string& provider, const std::string& regId, const std::string& appId,
                                       const std::string& locale, std::string& errorMessage,
                                       std::string& resultJson) = 0;
    virtual int GetNotificationProfile(std::string& errorMessage, std::string& provider, std::string& regId,
                                       std::string& appId, std::string& locale) = 0;

    virtual ~ITesselHandler() = default;
};

}  // namespace VMFramework::HomeLoom

#endif
