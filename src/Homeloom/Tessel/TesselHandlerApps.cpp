// Facade: installed applications, the catalog, and usage events.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetInstalledAppList(homeloom_core_installed_app_h*& list, int& count) {
    return _AwaitList<GetInstalledAppListParam>({}, list, count, homeloom_core_get_installed_app_list_async,
                                                _CoreInstalledAppListCb);
}

int TesselHandler::GetInstalledAppDashboardJson(const std::string& installedAppId, const std::string& requestBody,
                                                std::string& resultJson) {
    return _AwaitText<GetInstalledAppDashboardJsonParam>(
        {{installedAppId, "installed_app_id is empty"}, {requestBody, "request_body is empty"}}, resultJson,
        homeloom_core_get_installed_app_dashboard_json_async_v2, installedAppId, requestBody,
        _CoreInstalledAppDashboardJsonCb);
}

int TesselHandler::GetCatalogAppList(const std::string& requestJson, std::string& resultJson,
                                     std::string& errorMessage) {
    return _AwaitText<GetCatalogAppListParam>({{requestJson, "request_json is empty"}}, resultJson, errorMessage,
                                              homeloom_core_get_catalog_app_list_async, requestJson,
                                              _CoreGetCatalogAppListCb);
}

int TesselHandler::GetInstalledAppString(homeloom_core_installed_app_h app, int field, std::string& value) {
    return _AccessText("installed_app_h is null", homeloom_core_installed_app_get_string, app, field, value);
}

int TesselHandler::DestroyInstalledApp(homeloom_core_installed_app_h* list, int count) {
    return _DestroyList("installed_app_list_h is null", homeloom_core_installed_app_destroy, list, count);
}

int TesselHandler::ExecuteInstalledApp(const std::string& installedAppId, const std::string& requestJson,
                                       std::string& responseJson) {
    return _CallForText({{installedAppId, "installed_app_id is empty"}, {requestJson, "request_json is empty"}},
                        responseJson, homeloom_core_execute_installed_app, installedAppId, requestJson);
}

int TesselHandler::SendActiveUserEvent(int category, int action, const std::string& label,
                                       const std::string& metadata) {
    return _Call({{metadata, "metadata is empty"}}, homeloom_core_send_active_user_event,
                 static_cast<homeloom_core_user_event_category_e>(category),
                 static_cast<homeloom_core_user_event_action_e>(action), label, metadata);
}

}  // namespace VMFramework::HomeLoom
