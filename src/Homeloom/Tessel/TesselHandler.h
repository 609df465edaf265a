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
/// Those that do more than to pass on what they are given are in TesselHandler.cpp, the session's in
/// TesselHandlerSession.cpp.
class TesselHandler : public ITesselHandler, public CSingleton<TesselHandler>, public CRestHandler, private TesselCall {
public:
    // ---- Session ----

    homeloom_client_h GetHandle() override { return _clientHandle; }
    void Init() override { _contextRunning = true; }
    void Quit() override { _contextRunning = false; }

    int SetSignInStateChangeCb(homeloom_client_sign_in_state_changed_cb cb, void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_sign_in_state_changed_cb, cb, userData);
    }
    int UnsetSignInStateChangeCb() override { return _Call({}, homeloom_client_unset_sign_in_state_changed_cb); }
    int IsSignedIn(bool& isSignedIn) override { return _Call({}, homeloom_client_is_signed_in, &isSignedIn); }
    int GetLoginID(std::string& loginId) override { return _CallForText({}, loginId, homeloom_client_get_login_id); }
    int GetClientDeviceID(std::string& deviceId) override;
    int Connect(homeloom_client_connection_state_changed_cb cb, void* userData) override;
    int Disconnect() override;
    int RefreshDeviceInformation() override { return _Call({}, homeloom_client_refresh_device_information); }

    // ---- Subscriptions, devices and groups of the client family ----

    int Subscribe(const std::string& deviceId, const std::string& uris, homeloom_client_subscribe_cb cb,
                  void* userData) override {
        return _Call(
            {{deviceId, "device id is empty"}, {uris, "jsonResUri is empty"}, {cb != nullptr, "cbFunc is null"}},
            homeloom_client_subscribe, deviceId, uris, cb, userData);
    }
    int Unsubscribe(const std::string& deviceId, const std::string& uris) override {
        return _Call({{deviceId, "device id is empty"}, {uris, "jsonResUri is empty"}}, homeloom_client_unsubscribe,
                     deviceId, uris);
    }

    int DeviceGetString(homeloom_client_device_h device, int propertyId, std::string& value) override {
        return _AccessText("device_h is null", homeloom_client_device_get_string, device, propertyId, value);
    }
    int DeviceDestroy(homeloom_client_device_h* list, int count) override {
        return _DestroyList("device_list_h is null", homeloom_client_device_destroy, list, count);
    }
    int SetDeviceListUpdatedCb(homeloom_client_device_list_updated_cb cb, void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_device_list_updated_cb, cb, userData);
    }
    int UnsetDeviceListUpdatedCb() override { return _Call({}, homeloom_client_unset_device_list_updated_cb); }

    int GetDeviceDetailList(homeloom_client_device_detail_h*& list, int& count) override {
        return _Call({}, homeloom_client_get_device_detail_list, &list, &count);
    }
    int DeviceDetailGetString(homeloom_client_device_detail_h detail, int propertyId, std::string& value) override {
        return _AccessText("device_detail_h is null", homeloom_client_device_detail_get_string, detail, propertyId,
                           value);
    }
    int DeviceDetailGetStringArray(homeloom_client_device_detail_h detail, int propertyId,
                                   std::vector<std::string>& values) override;
    int DeviceDetailGetInt(homeloom_client_device_detail_h detail, int propertyId, int& value) override {
        return _Access("device_detail_h is null", homeloom_client_device_detail_get_int, detail, propertyId, &value);
    }
    int DeviceDetailDestroy(homeloom_client_device_detail_h* list, int count) override {
        return _DestroyList("device_detail_list_h is null", homeloom_client_device_detail_destroy, list, count);
    }
    int SetDeviceDetailListUpdatedCb(homeloom_client_device_detail_list_updated_cb cb, void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_device_detail_list_updated_cb, cb,
                     userData);
    }
    int UnsetDeviceDetailListUpdatedCb() override {
        return _Call({}, homeloom_client_unset_device_detail_list_updated_cb);
    }

    int GetUIMetadata(const std::string& vid, std::string& document) override {
        return _CallForText({{vid, "vid is empty"}}, document, homeloom_client_get_ui_metadata, vid);
    }

    int GetGroupList(homeloom_client_group_h*& list, int type, int& count) override;
    int GroupGetString(homeloom_client_group_h group, int propertyId, std::string& value) override {
        return _AccessText("group_h is null", homeloom_client_group_get_string, group, propertyId, value);
    }
    int GroupDestroy(homeloom_client_group_h* list, int count) override {
        return _DestroyList("group_list_h is null", homeloom_client_group_destroy, list, count);
    }
    int SetGroupListUpdatedCb(homeloom_client_group_list_updated_cb cb, void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_group_list_updated_cb, cb, userData);
    }
    int UnsetGroupListUpdatedCb() override { return _Call({}, homeloom_client_unset_group_list_updated_cb); }

    int ChangeDeviceName(const std::string& deviceId, const std::string& name) override;
    int MoveDeviceToOtherRoom(const std::string& deviceId, const std::string& locationId, const std::string& roomId,
                              homeloom_client_move_devices_cb cb, void* userData) override {
        return MoveDevicesToOtherRoom(deviceId, 1, locationId, roomId, cb, userData);
    }
    int MoveDevicesToOtherRoom(const std::string& deviceIds, int count, const std::string& locationId,
                               const std::string& roomId, homeloom_client_move_devices_cb cb, void* userData) override;

    int SetRemoteRepresentation(const std::string& deviceId, const std::string& uri, const std::string& payload,
                                homeloom_client_remote_cb cb, void* userData) override {
        return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                     homeloom_client_set_remote_representation, deviceId, uri, payload, cb, userData);
    }
    int SetRemoteAttributes(const std::string& deviceId, const std::string& uri, const std::string& payload,
                            homeloom_client_remote_cb cb, void* userData) override {
        return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                     homeloom_client_set_remote_attributes, deviceId, uri, payload, cb, userData);
    }
    int GetRemoteRepresentation(const std::string& deviceId, const std::string& uri, homeloom_client_remote_cb cb,
                                void* userData) override {
        return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                     homeloom_client_get_remote_representation, deviceId, uri, cb, userData);
    }
    int GetRemoteAttributes(const std::string& deviceId, const std::string& uri, homeloom_client_remote_cb cb,
                            void* userData) override {
        return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                     homeloom_client_get_remote_attributes, deviceId, uri, cb, userData);
    }

    // ---- App launch conditions ----

    int AppLaunchConditionCreate(homeloom_client_app_launch_condition_h* condition) override {
        return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_app_launch_condition_create,
                     condition);
    }
    int AddAppLaunchCondition(homeloom_client_app_launch_condition_h condition) override {
        return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_add_app_launch_condition,
                     condition);
    }
    int RemoveAppLaunchCondition(homeloom_client_app_launch_condition_h condition) override {
        return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_remove_app_launch_condition,
                     condition);
    }
    int IsAppLaunchConditionAdded(homeloom_client_app_launch_condition_h condition, bool& isAdded) override {
        return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_is_app_launch_condition_added,
                     condition, &isAdded);
    }
    int AppLaunchConditionDestroy(homeloom_client_app_launch_condition_h* condition) override;
    int AppLaunchConditionSetString(homeloom_client_app_launch_condition_h condition, int propertyId,
                                    const std::string& value) override {
        return _Access("condition_h is null", homeloom_client_app_launch_condition_set_string, condition, propertyId,
                       value);
    }

    // ---- Third-party notification, state and server ----

    int SetThirdPartyNotification(const std::string& provider, const std::string& regId, const std::string& appId,
                                  const std::string& locale, homeloom_client_third_party_notification_cb cb,
                                  void* userData) override {
        return _Call({{provider, "push provider is empty"},
                      {regId, "push reg id is empty"},
                      {appId, "push app id is empty"},
                      {locale, "locale is empty"},
                      {cb != nullptr, "cbFunc is null"}},
                     homeloom_client_set_third_party_notification, provider, regId, appId, locale, cb, userData);
    }
    int SetThirdPartyNotificationStatus(const std::vector<std::string>& deviceIds,
                                        homeloom_client_third_party_notification_cb cb, void* userData) override;
    int GetThirdPartyNotificationStatus(homeloom_client_third_party_notification_status_cb cb,
                                        void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_get_third_party_notification_status, cb,
                     userData);
    }
    int SetThirdPartyNotificationStatusUpdatedCb(homeloom_client_third_party_notification_status_updated_cb cb,
                                                 void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}},
                     homeloom_client_set_third_party_notification_status_updated_cb, cb, userData);
    }
    int UnsetThirdPartyNotificationStatusUpdatedCb() override {
        return _Call({}, homeloom_client_unset_third_party_notification_status_updated_cb);
    }

    int GetState() override;
    int GetAccessToken(std::string& accessToken) override;
    int GetServerEnv(int type, int& env) override;
    int SetServerEnv(int type, int env) override {
        return _Call({}, homeloom_client_internal_set_server_env, type, env);
    }
    void StoreSigninInfo() override;
    std::string GetUserId() override;
    int GetCanvas(const std::string& presentationId, const std::string& manufacturerName,
                  std::string& document) override {
        return _CallForText(
            {{presentationId, "presentation_id is empty"}, {manufacturerName, "manufacturer_name is empty"}}, document,
            homeloom_core_get_device_presentation, presentationId, manufacturerName);
    }

    // ---- Core locations, rooms and devices ----

    int GetCoreLocationList(homeloom_core_location_h*& list, int& count) override {
        return _AwaitList<GetLocationListParam>({}, list, count, homeloom_core_get_location_list_async,
                                                _CoreLocationListCb);
    }
    int GetCoreLocationString(homeloom_core_location_h location, int field, std::string& value) override {
        return _AccessText("location_h is null", homeloom_core_location_get_string, location, field, value);
    }
    int CoreLocationDestroy(homeloom_core_location_h* list, int count) override {
        return _DestroyList("location_list_h is null", homeloom_core_location_destroy, list, count);
    }
    int GetCoreLocationUsers(const std::string& locationId, std::string& resultJson) override;
    int CoreNotifyPermissionUpdate(const std::string& locationId) override {
        return _Call({}, homeloom_core_notify_permission_update, locationId);
    }
    int CreateCoreRoom(const std::string& locationId, const std::string& roomName, std::string& resultJson,
                       std::string& errorMessage) override {
        return _AwaitText<CreateCoreRoomParam>({{locationId, "location_id is empty"}, {roomName, "room_name is empty"}},
                                               resultJson, errorMessage, homeloom_core_create_room_async, locationId,
                                               roomName, _CoreCreateRoomCb);
    }
    int ChangeCoreRoomName(const std::string& locationId, const std::string& roomId, const std::string& roomName,
                           std::string& resultJson, std::string& errorMessage) override {
        return _AwaitText<ChangeCoreRoomNameParam>(
            {{locationId, "location_id is empty"}, {roomId, "room_id is empty"}, {roomName, "room_name is empty"}},
            resultJson, errorMessage, homeloom_core_change_room_name_async, locationId, roomId, roomName,
            _CoreChangeRoomNameCb);
    }
    int DeleteCoreRoom(const std::string& locationId, const std::string& roomId, std::string& resultJson,
                       std::string& errorMessage) override {
        return _AwaitText<DeleteCoreRoomParam>({{locationId, "location_id is empty"}, {roomId, "room_id is empty"}},
                                               resultJson, errorMessage, homeloom_core_delete_room_async, locationId,
                                               roomId, _CoreDeleteRoomCb);
    }

    int GetCoreDeviceList(homeloom_core_device_h*& list, int& count) override {
        return _AwaitList<GetCoreDeviceListParam>({}, list, count, homeloom_core_get_device_list_async,
                                                  _CoreDeviceListCb);
    }
    int GetCoreDeviceString(homeloom_core_device_h device, int field, std::string& value) override {
        return _AccessText("device_h is null", homeloom_core_device_get_string, device, field, value);
    }
    int CoreDeviceListDestroy(homeloom_core_device_h* list, int count) override {
        return _DestroyList("device_list_h is null", homeloom_core_device_destroy, list, count);
    }
    int GetCoreDeviceJson(const std::string& deviceId, std::string& resultJson) override {
        return _AwaitText<GetCoreDeviceJsonParam>({{deviceId, "device_id is empty"}}, resultJson,
                                                  homeloom_core_get_device_json_async, deviceId, _CoreDeviceJsonCb);
    }
    int GetCoreDeviceListJson(const std::string& filter, std::string& resultJson) override {
        return _AwaitText<GetCoreDeviceListJsonParam>({}, resultJson, homeloom_core_get_device_list_json_async, filter,
                                                      _CoreDeviceListJsonCb);
    }
    int ExecuteCoreDevice(const std::string& deviceId, const std::string& jsonCommand,
                          std::string& responseJson) override {
        return _CallForText({{deviceId, "device_id is empty"}, {jsonCommand, "json_str_command is empty"}},
                            responseJson, homeloom_core_execute_device, deviceId, jsonCommand);
    }
    int GetCoreDeviceStatus(const std::string& deviceId, std::string& statusJson) override {
        return _CallForText({{deviceId, "device_id is empty"}}, statusJson, homeloom_core_get_device_status, deviceId);
    }
    int GetCoreDeviceComponentStatus(const std::string& deviceId, const std::string& component,
                                     std::string& statusJson) override {
        return _CallForText({{deviceId, "device_id is empty"}, {component, "component_id is empty"}}, statusJson,
                            homeloom_core_get_device_component_status, deviceId, component);
    }
    int GetCoreDeviceCapabilityStatus(const std::string& deviceId, const std::string& component,
                                      const std::string& capability, std::string& statusJson) override {
        return _CallForText({{deviceId, "device_id is empty"},
                             {component, "component_id is empty"},
                             {capability, "capability_id is empty"}},
                            statusJson, homeloom_core_get_device_capability_status, deviceId, component, capability);
    }
    int GetLocalHubDeviceIDList(std::set<std::string>& deviceIds) override;
    int SetCoreSSECb(int mask, homeloom_core_sse_cb cb, void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_core_set_sse_cb, mask, cb, userData);
    }
    int UnsetCoreSSECb() override { return _Call({}, homeloom_core_unset_sse_cb); }

    // ---- Scenes ----

    int GetCoreSceneList(const std::string& locationId, homeloom_core_scene_h*& list, int& count) override {
        return _AwaitList<GetSceneListParam>({{locationId, "location_id is empty"}}, list, count,
                                             homeloom_core_get_scene_list_async, locationId, _CoreSceneListCb);
    }
    int GetCoreScene(const std::string& locationId, const std::string& sceneId, homeloom_core_scene_h& scene) override {
        return _AwaitRecord<GetSceneParam>({{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}},
                                           scene, homeloom_core_get_scene_async, locationId, sceneId, _CoreSceneCb);
    }
    int GetCoreSceneString(homeloom_core_scene_h scene, int field, std::string& value) override {
        return _AccessText("scene_h is null", homeloom_core_scene_get_string, scene, field, value);
    }
    int DestroyCoreSceneList(homeloom_core_scene_h* list, int count) override {
        return _DestroyList("scene_list_h is null", homeloom_core_scene_destroy, list, count);
    }
    int DestroyCoreSingleScene(homeloom_core_scene_h scene) override {
        return _Access("scene_h is null", homeloom_core_scene_destroy, scene);
    }
    int ExecuteCoreScene(const std::string& locationId, const std::string& sceneId, std::string& resultJson) override {
        return _AwaitText<ExecuteCoreSceneParam>({{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}},
                                                 resultJson, homeloom_core_execute_scene_async, locationId, sceneId,
                                                 _CoreExecuteSceneCb);
    }
    int CreateCoreScene(const std::string& locationId, const std::string& sceneJson, std::string& resultJson) override {
        return _AwaitText<CreateCoreSceneParam>(
            {{locationId, "location_id is empty"}, {sceneJson, "scene_json is empty"}}, resultJson,
            homeloom_core_create_scene_async, locationId, sceneJson, _CoreCreateSceneCb);
    }
    int UpdateCoreScene(const std::string& locationId, const std::string& sceneId, const std::string& sceneJson,
                        std::string& resultJson) override {
        return _AwaitText<UpdateCoreSceneParam>(
            {{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}, {sceneJson, "scene_json is empty"}},
            resultJson, homeloom_core_update_scene_async, locationId, sceneId, sceneJson, _CoreUpdateSceneCb);
    }
    int DeleteCoreScene(const std::string& locationId, const std::string& sceneId, std::string& resultJson) override {
        return _AwaitText<DeleteCoreSceneParam>({{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}},
                                                resultJson, homeloom_core_delete_scene_async, locationId, sceneId,
                                                _CoreDeleteSceneCb);
    }
    int GetCoreSceneIconInfoJson(std::string& resultJson) override {
        return _AwaitText<GetCoreSceneIconListParam>({}, resultJson, homeloom_core_get_scene_icon_list_async,
                                                     _CoreSceneIconListCb);
    }

    // ---- Routines, which the agent calls rules ----

    int GetCoreRoutineList(const std::string& locationId, homeloom_core_rule_h*& list, int& count) override {
        return _AwaitList<GetRoutineListParam>({{locationId, "location_id is empty"}}, list, count,
                                               homeloom_core_get_rule_list_async, locationId, _CoreRoutineListCb);
    }
    int GetCoreRoutine(const std::string& locationId, const std::string& routineId,
                       homeloom_core_rule_h& routine) override {
        return _AwaitRecord<GetRoutineParam>({{locationId, "location_id is empty"}, {routineId, "routine_id is empty"}},
                                             routine, homeloom_core_get_rule_async, locationId, routineId,
                                             _CoreRoutineCb);
    }
    int UpdateCoreRoutineStatus(const std::string& locationId, const std::string& routineId, bool enable,
                                std::string& resultJson) override {
        return _AwaitText<UpdateCoreRoutineStatusParam>(
            {{locationId, "location_id is empty"}, {routineId, "routine_id is empty"}}, resultJson,
            homeloom_core_update_rule_status_async, locationId, routineId, enable, _CoreRoutineStatusCb);
    }
    int GetCoreRoutineString(homeloom_core_rule_h routine, int field, std::string& value) override {
        return _AccessText("routine_h is null", homeloom_core_rule_get_string, routine, field, value);
    }
    int DestroyCoreRoutineList(homeloom_core_rule_h* list, int count) override {
        return _DestroyList("routine_list_h is null", homeloom_core_rule_destroy, list, count);
    }
    int DestroyCoreSingleRoutine(homeloom_core_rule_h routine) override {
        return _Access("routine_h is null", homeloom_core_rule_destroy, routine);
    }

    // ---- Infrared devices, deletion, hub ----

    int CreateIRDevice(const std::string& locationId, const std::string& requestBody,
                       std::string& responseJson) override {
        return _CallForText({{locationId, "location_id is empty"}, {requestBody, "request_body is empty"}},
                            responseJson, homeloom_core_create_ir_device, locationId, requestBody);
    }
    int GetIRDevice(const std::string& deviceId, std::string& responseJson) override {
        return _CallForText({{deviceId, "device_id is empty"}}, responseJson, homeloom_core_get_ir_device, deviceId);
    }
    int DeleteDevice(const std::string& deviceId) override {
        return _Call({{deviceId, "device_id is empty"}}, homeloom_core_delete_device, deviceId);
    }
    int StartHubDeviceDiscover(const std::string& deviceId, int timeout, bool flagA, bool flagB, int extra) override {
        return _Call({{deviceId, "device_id is empty"}}, homeloom_core_start_hub_device_discover, deviceId, timeout,
                     flagA, flagB, extra);
    }
    int StopHubDeviceDiscover(const std::string& deviceId) override {
        return _Call({{deviceId, "device_id is empty"}}, homeloom_core_stop_hub_device_discover, deviceId);
    }

    // ---- Favorites ----

    int CreateFavorite(const std::string& locationId, const std::string& favoriteInfo,
                       homeloom_core_favorite_h& favorite) override {
        return _Call({{locationId, "location_id is empty"}, {favoriteInfo, "favorite_info is empty"}},
                     homeloom_core_create_favorite, locationId, favoriteInfo, &favorite);
    }
    int DeleteFavorite(const std::string& locationId, const std::string& favoriteId) override;
    int ReplaceFavorites(const std::string& locationId, const std::string& favoriteInfoArray,
                         homeloom_core_favorite_h*& list, int& count) override {
        return _Call({{locationId, "location_id is empty"}, {favoriteInfoArray, "favorite_info_array is empty"}},
                     homeloom_core_replace_favorites, locationId, favoriteInfoArray, &list, &count);
    }
    int GetFavoriteList(const std::string& locationId, homeloom_core_favorite_h*& list, int& count) override {
        return _AwaitList<GetFavoriteListParam>({{locationId, "location_id is empty"}}, list, count,
                                                homeloom_core_get_favorite_list_async, locationId, _CoreFavoriteListCb);
    }
    int GetFavoriteInt(homeloom_core_favorite_h favorite, int field, int& value) override {
        return _Access("favorite_h is null", homeloom_core_favorite_get_int, favorite, field, &value);
    }
    int GetFavoriteString(homeloom_core_favorite_h favorite, int field, std::string& value) override {
        return _AccessText("favorite_h is null", homeloom_core_favorite_get_string, favorite, field, value);
    }
    int DestroyFavoriteList(homeloom_core_favorite_h* list, int count) override {
        return _DestroyList("favorite_list_h is null", homeloom_core_favorite_destroy, list, count);
    }
    int DestroySingleFavorite(homeloom_core_favorite_h favorite) override {
        return _Access("favorite_h is null", homeloom_core_favorite_destroy, favorite);
    }
    int GetFavoriteMigrationStatus(const std::string& locationId, bool& isMigrated, std::string& lastUpdatedDate,
                                   std::string& deviceModel) override;
    int UpdateFavoriteMigrationStatus(const std::string& locationId, const std::string& statusInfo,
                                      std::string& statusResult) override {
        return _CallForText({{locationId, "location_id is empty"}, {statusInfo, "status_info is empty"}}, statusResult,
                            homeloom_core_update_favorite_migration_status, locationId, statusInfo);
    }

    // ---- User events, apps, settings kept by the platform ----

    int SendActiveUserEvent(int category, int action, const std::string& label, const std::string& metadata) override {
        return _Call({{metadata, "metadata is empty"}}, homeloom_core_send_active_user_event,
                     static_cast<homeloom_core_user_event_category_e>(category),
                     static_cast<homeloom_core_user_event_action_e>(action), label, metadata);
    }

    int GetInstalledAppList(homeloom_core_installed_app_h*& list, int& count) override {
        return _AwaitList<GetInstalledAppListParam>({}, list, count, homeloom_core_get_installed_app_list_async,
                                                    _CoreInstalledAppListCb);
    }
    int GetInstalledAppDashboardJson(const std::string& installedAppId, const std::string& requestBody,
                                     std::string& resultJson) override {
        return _AwaitText<GetInstalledAppDashboardJsonParam>(
            {{installedAppId, "installed_app_id is empty"}, {requestBody, "request_body is empty"}}, resultJson,
            homeloom_core_get_installed_app_dashboard_json_async_v2, installedAppId, requestBody,
            _CoreInstalledAppDashboardJsonCb);
    }
    int GetCatalogAppList(const std::string& requestJson, std::string& resultJson, std::string& errorMessage) override {
        return _AwaitText<GetCatalogAppListParam>({{requestJson, "request_json is empty"}}, resultJson, errorMessage,
                                                  homeloom_core_get_catalog_app_list_async, requestJson,
                                                  _CoreGetCatalogAppListCb);
    }
    int GetInstalledAppString(homeloom_core_installed_app_h app, int field, std::string& value) override {
        return _AccessText("installed_app_h is null", homeloom_core_installed_app_get_string, app, field, value);
    }
    int DestroyInstalledApp(homeloom_core_installed_app_h* list, int count) override {
        return _DestroyList("installed_app_list_h is null", homeloom_core_installed_app_destroy, list, count);
    }
    int ExecuteInstalledApp(const std::string& installedAppId, const std::string& requestJson,
                            std::string& responseJson) override {
        return _CallForText({{installedAppId, "installed_app_id is empty"}, {requestJson, "request_json is empty"}},
                            responseJson, homeloom_core_execute_installed_app, installedAppId, requestJson);
    }

    int GetWifiLockerUserSetting(homeloom_core_json_cb cb, void* userData) override {
        return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_core_get_wifilocker_user_setting, cb, userData);
    }
    int SetWifiLockerUserSetting(const std::string& settingJson, homeloom_core_json_cb cb, void* userData) override {
        return _Call({{settingJson, "setting_json is empty"}, {cb != nullptr, "cbFunc is null"}},
                     homeloom_core_set_wifilocker_user_setting, settingJson, cb, userData);
    }

    int CreateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) override {
        return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_create_keyvalue, key, value);
    }
    int GetLocksmithKeyValue(const std::string& key, std::string& resultJson) override {
        return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_get_keyvalue, key);
    }
    int UpdateLocksmithKeyValue(const std::string& key, const std::string& value, std::string& resultJson) override {
        return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_update_keyvalue, key, value);
    }
    int DeleteLocksmithKeyValue(const std::string& key, std::string& resultJson) override {
        return _CallForText({{key, "key is empty"}}, resultJson, homeloom_core_locksmith_delete_keyvalue, key);
    }

    int SetNotificationProfile(const std::string& provider, const std::string& regId, const std::string& appId,
                               const std::string& locale, std::string& errorMessage, std::string& resultJson) override {
        return _AwaitText<SetCoreNotificationProfileParam>({{provider, "push provider is empty"},
                                                            {regId, "push reg id is empty"},
                                                            {appId, "push app id is empty"},
                                                            {locale, "locale is empty"}},
                                                           resultJson, errorMessage,
                                                           homeloom_core_update_notification_profile, provider, regId,
                                                           appId, locale, _CoreSetNotificationProfileCb);
    }
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
