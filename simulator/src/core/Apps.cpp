// The agent's functions: installed and catalog apps, and the energy service behind one of them.
#include <algorithm>

#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

const std::string energyUri = "/v3/tv/consumped-energy-devices";  // the server's spelling

SharedRecord appRecord(const InstalledApp& app) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CORE_INSTALLED_APP_ID, app.id},
                     {HOMELOOM_CORE_INSTALLED_APP_DISPLAY_NAME, app.displayName},
                     {HOMELOOM_CORE_INSTALLED_APP_STATUS, app.status},
                     {HOMELOOM_CORE_INSTALLED_APP_APP_ID, app.appId},
                     {HOMELOOM_CORE_INSTALLED_APP_LOCATION_ID, app.location},
                     {HOMELOOM_CORE_INSTALLED_APP_UI, app.ui}};
    return record;
}

const InstalledApp* findApp(const World& world, const std::string& id) {
    const auto& apps = world.home.installedApps;
    const auto found = std::find_if(apps.begin(), apps.end(), [&](const InstalledApp& app) { return app.id == id; });
    return found == apps.end() ? nullptr : &*found;
}

json::object energyOf(const World& world, const InstalledApp& app) {
    json::array devices;
    for (const Device& device : world.home.devices) {
        if (device.location == app.location && device.energyThisMonth >= 0) {
            // The server's spelling again.
            devices.push_back({{"deviceId", device.id}, {"consumpedEnergy", device.energyThisMonth}});
        }
    }
    return {{"statusCode", 200}, {"body", devices}};
}

}  // namespace

int homeloom_core_get_installed_app_list_async(homeloom_client_h client, homeloom_core_installed_app_list_cb callback,
                                               void* user_data) {
    static Function& function = functionNamed(__func__);
    return answerList(Call(function, client, {}, Needs::SignIn), callback, user_data, [](World& world) {
        Records records;
        for (const InstalledApp& app : world.home.installedApps) {
            records.push_back(appRecord(app));
        }
        return records;
    });
}

int homeloom_core_installed_app_get_string(homeloom_core_installed_app_h app, int field, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, app, field, value);
}

int homeloom_core_installed_app_destroy(homeloom_core_installed_app_h app) {
    static Function& function = functionNamed(__func__);
    return destroy(function, app);
}

int homeloom_core_get_installed_app_dashboard_json_async_v2(homeloom_client_h client, const char* installed_app_id,
                                                            const char* request_body, homeloom_core_json_cb callback,
                                                            void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {installed_app_id, request_body}, Needs::SignIn);
    return answerJson(call, callback, user_data, [id = Argument(installed_app_id).text()](World& world) {
        const InstalledApp* app = findApp(world, id);
        return app == nullptr || app->dashboard.empty()
                   ? failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no dashboard of an installed app " + id)
                   : success(app->dashboard);
    });
}

int homeloom_core_get_catalog_app_list_async(homeloom_client_h client, const char* request_json,
                                             homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {request_json}, Needs::SignIn);
    return answerJson(call, callback, user_data, [request = Argument(request_json).text()](World& world) {
        if (!parsed(request).is_object()) {
            return failure(HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER, "the request is no JSON object");
        }
        return success(world.home.catalog.empty() ? R"({"apps":[]})" : world.home.catalog);
    });
}

int homeloom_core_execute_installed_app(homeloom_client_h client, const char* installed_app_id,
                                        const char* request_json, char** response_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {installed_app_id, request_json}, Needs::SignIn, response_json)
        .now([&](World& world, Client&) {
            const InstalledApp* app = findApp(world, installed_app_id);
            const json::value request = parsed(request_json);
            if (response_json == nullptr || !request.is_object()) {
                return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
            }
            const bool asksForEnergy = textMember(request, "method") == "GET" &&
                                       textMember(request, "uri").compare(0, energyUri.size(), energyUri) == 0;
            if (app == nullptr || !asksForEnergy) {
                return HOMELOOM_CLIENT_ERROR_NO_DATA;
            }
            *response_json = handOut(toText(energyOf(world, *app)));
            return HOMELOOM_CLIENT_ERROR_NONE;
        });
}
