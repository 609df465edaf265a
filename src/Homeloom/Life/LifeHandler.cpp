// Answers which service applications a location has, with what the platform's catalog says of them.
#include "Homeloom/Life/LifeHandler.h"

#include <system_info.h>
#include <system_settings.h>

#include <ctime>
#include <iomanip>
#include <locale>
#include <optional>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/CReporter.h"
#include "Common/CText.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Common/Mutex.h"
#include "Homeloom/Life/Energy.h"
#include "Homeloom/Tessel/AgentList.h"
#include "Homeloom/Utils/CFileUtil.h"

namespace VMFramework::HomeLoom {

using json::JsonValue;

namespace {

// A developer's menu writes it; it overrules the TV's own country.
constexpr char kCountryFile[] = "Country";

/// What the TV says of itself, read once.
struct Platform {
    std::string platformVersion;
    std::string localeLanguage;
};

std::string Take(int result, char* text) {
    const OwnedText owner(text);
    return result == 0 ? TextOf(owner) : std::string();
}

Platform ReadPlatform() {
    Platform platform;
    char* text = nullptr;
    int result = system_info_get_platform_string(SYSTEM_INFO_PLATFORM_VERSION, &text);
    platform.platformVersion = Take(result, std::exchange(text, nullptr));
    result = system_settings_get_value_string(SYSTEM_SETTINGS_KEY_LOCALE_LANGUAGE, &text);
    const std::string locale = Take(result, text);
    platform.localeLanguage = locale.substr(0, locale.find('_'));
    HL_LOGI("platform version : %s, language : %s", platform.platformVersion.c_str(), platform.localeLanguage.c_str());
    return platform;
}

const Platform& GetPlatform() {
    static const Platform platform = ReadPlatform();
    return platform;
}

bool IsSupported(const std::string& serviceCode) {
    static const std::unordered_set<std::string> supportedServiceCodes{"PUBLIC_DR"};
    return supportedServiceCodes.count(serviceCode) != 0;
}

/// A member that ought to be a text; empty for anything else.
std::string TextMember(const JsonValue& object, const char* name) {
    const JsonValue member = object[name];
    return member.isString() ? member.asString() : std::string();
}

}  // namespace

// ---- Catalog ----

/// What the catalog tells of each app. Requests of two threads may read the catalog at the same time: each fills a map
/// of its own, and swaps that in.
class LifeHandler::Catalog {
public:
    bool isUpdated() const {
        const MutexLock lock(_mutex);
        return _isUpdated;
    }
    void swapIn(AppsInfo& read) {
        const MutexLock lock(_mutex);
        _appsInfo.swap(read);
        _isUpdated = true;
    }
    std::optional<AppInfo> find(const std::string& appId) const {
        const MutexLock lock(_mutex);
        const auto found = _appsInfo.find(appId);
        return found != _appsInfo.end() ? std::optional<AppInfo>(found->second) : std::nullopt;
    }

private:
    mutable Mutex _mutex;  // a leaf
    AppsInfo _appsInfo GUARDED_BY(_mutex);
    bool _isUpdated GUARDED_BY(_mutex) = false;
};

LifeHandler::Catalog& LifeHandler::catalog() {
    static Catalog instance;
    return instance;
}

LifeHandler::LifeHandler(ITesselHandler& agent)
    : Handler("LifeHandler"), _energy(std::make_shared<Energy>(agent)), _agent(agent) {
    GetPlatform();
}

LifeHandler::~LifeHandler() = default;

void LifeHandler::Quit() {
    Handler::Quit();
    _energy->Deinit();
}

void LifeHandler::updateAppsInfo() {
    if (catalog().isUpdated()) {
        return;
    }
    HL_LOGI("apps info Not updated yet. will try to update it");
    const std::string request = makeCatalogRequest();
    if (IsQuit()) {
        return;
    }
    std::string answer;
    std::string errorMessage;
    if (_agent.GetCatalogAppList(request, answer, errorMessage) != 0) {
        HL_LOGE("failed to get catalog app list. msg: %s", errorMessage.c_str());
        return;
    }
    const JsonValue document = JsonValue::Create(answer);
    AppsInfo read;
    if (readApps(document["apps"], read)) {
        catalog().swapIn(read);
    }
}

std::string LifeHandler::makeCatalogRequest() {
    JsonValue request = JsonValue::CreateObject();
    request.set("appType", "serviceApp");
    request.set("visibility", "public");
    std::string country = getCountryCode();
    if (country == "AA") {
        HL_LOGI("country_code: %s. converting to KR", country.c_str());
        country = "KR";
    }
    if (!country.empty()) {
        request.set("country", country);
    }
    return request.toString();
}

std::string LifeHandler::getCountryCode() {
    std::string json;
    if (CFileUtil::Read(CFileUtil::GetDataFolder() + "/" + kCountryFile, json)) {
        HL_LOGI("Country file json : %s", json.c_str());
        const std::string code = TextMember(JsonValue::Create(json), "SelectedCountryCode");
        if (!code.empty()) {
            HL_LOGI("country code from debug menu : %s", code.c_str());
            return code;
        }
    }
    return CHLUtil::GetHLHubCountryCode();
}

// False unless the whole catalog was read.
bool LifeHandler::readApps(const JsonValue& apps, AppsInfo& read) const {
    if (!apps.isArray()) {
        HL_LOGE("no apps in the catalog");
        return false;
    }
    HL_LOGI("apps count: %zu", apps.size());
    for (std::size_t i = 0; i < apps.size(); ++i) {
        if (IsQuit()) {
            return false;
        }
        readApp(apps[i], read);
    }
    return true;
}

void LifeHandler::readApp(const JsonValue& app, AppsInfo& read) {
    const JsonValue serviceApp = app["serviceApp"];
    const std::string serviceCode = TextMember(serviceApp, "serviceCode");
    if (!IsSupported(serviceCode)) {
        HL_LOGI("NOT supported service code: %s", serviceCode.c_str());
        return;
    }
    HL_LOGI("supported service code: %s", serviceCode.c_str());
    const std::string appId = TextMember(app, "endpointAppId");
    if (appId.empty()) {
        return;
    }
    const JsonValue plugins = app["appServicePlugins"];
    for (std::size_t i = 0; plugins.isArray() && i < plugins.size(); ++i) {
        HL_LOGI("[R2] Do Not Check plugin type == server");
        const std::string uri = TextMember(plugins[i], "uri");
        HL_LOGI("serviceCode: %s, app_id: %s, uri: %s", serviceCode.c_str(), appId.c_str(), uri.c_str());
        read[appId] = {serviceCode, uri};
    }
}

// ---- Installed service apps ----

/// One that is authorised, known to the catalog, and has a plug-in of its own.
struct LifeHandler::InstalledApp {
    std::string locationId;
    std::string appId;
    std::string displayName;
    std::string installedAppId;
    std::string pluginId;
    AppInfo info;

    JsonValue toJson() const {
        JsonValue json = JsonValue::CreateObject();
        json.set("installedAppId", installedAppId);
        json.set("endpointAppId", appId);
        json.set("appInternalName", displayName);
        json.set("serviceCode", info.serviceCode);
        json.set("pluginUri", info.pluginUri);
        json.set("locationId", locationId);
        json.set("pluginId", pluginId);
        json.set("renderingData", "");  // what the dashboard would give
        return json;
    }
};

void LifeHandler::GetInstalledServiceAppInfo(const std::shared_ptr<CTransaction>& transaction,
                                             const std::string& locationId) {
    HL_LOGI("GetInstalledServiceAppInfo location_id : %s", locationId.c_str());
    updateAppsInfo();
    GetInstalledServiceAppInfoParam param(transaction);
    param.locationId = locationId;
    param.result = getInstalledServiceAppInfo(locationId, param.installedServiceAppInfoJson) == 0;
    Reporter::Report(param);
}

int LifeHandler::getInstalledServiceAppInfo(const std::string& locationId, std::string& json) {
    AgentList<homeloom_core_installed_app_h> apps(_agent, &ITesselHandler::DestroyInstalledApp);
    const int ret = _agent.GetInstalledAppList(apps.list, apps.count);
    JsonValue array = JsonValue::CreateArray();
    for (const homeloom_core_installed_app_h app : apps) {
        if (IsQuit()) {
            throw CException("already quit", kErrorQuit);
        }
        InstalledApp installed;
        if (readInstalledApp(app, locationId, installed)) {
            HL_LOGI("[R2] Do Not Request DashboardJson");
            makeBodyOfDashboard(installed.info.serviceCode);
            array.append(installed.toJson());
        }
    }
    json = array.size() > 0 ? array.toString() : std::string();
    HL_LOGI("installed_service_app_info : %s", json.c_str());
    return ret;
}

// False for an app that is left out.
bool LifeHandler::readInstalledApp(homeloom_core_installed_app_h app, const std::string& locationId,
                                   InstalledApp& installed) {
    const auto read = [this, app](int field, std::string& value, const std::string& complaint) {
        const bool isRead = _agent.GetInstalledAppString(app, field, value) == 0;
        if (!isRead && !complaint.empty()) {
            HL_LOGE("%s", complaint.c_str());
        }
        return isRead;
    };
    if (!read(HOMELOOM_CORE_INSTALLED_APP_LOCATION_ID, installed.locationId, "get location_id failed") ||
        installed.locationId != locationId ||
        !read(HOMELOOM_CORE_INSTALLED_APP_APP_ID, installed.appId, "get app_id failed")) {
        return false;
    }
    const auto info = catalog().find(installed.appId);
    if (!info) {
        return false;
    }
    installed.info = *info;
    std::string status;
    if (!read(HOMELOOM_CORE_INSTALLED_APP_STATUS, status, installed.appId + " get app_status failed")) {
        return false;
    }
    if (status != "AUTHORIZED") {
        HL_LOGI("%s app not AUTHORIZED", installed.appId.c_str());
        return false;
    }
    // An app without a name is an app all the same.
    read(HOMELOOM_CORE_INSTALLED_APP_DISPLAY_NAME, installed.displayName, "");
    std::string ui;
    if (!read(HOMELOOM_CORE_INSTALLED_APP_ID, installed.installedAppId, "get installed_app_id failed") ||
        !read(HOMELOOM_CORE_INSTALLED_APP_UI, ui, installed.appId + " getting ui string failed")) {
        return false;
    }
    installed.pluginId = TextMember(JsonValue::Create(ui), "pluginId");
    if (installed.pluginId.empty()) {
        HL_LOGI("%s's plugin id empty! skip", installed.appId.c_str());
        return false;
    }
    HL_LOGI("[loc: %s], app_id: %s, installed_app_id: %s, plugin_id: %s, display_name: %s",
            installed.locationId.c_str(), installed.appId.c_str(), installed.installedAppId.c_str(),
            installed.pluginId.c_str(), installed.displayName.c_str());
    return true;
}

// The request of the dashboard, as it would go out. Only the log shows it.
std::string LifeHandler::makeBodyOfDashboard(const std::string& serviceCode) {
    JsonValue templates = JsonValue::CreateArray();
    templates.append("BASIC_V5");
    templates.append("BASIC_V6");
    JsonValue client = JsonValue::CreateObject();
    client.set("os", "solenneTV");
    client.set("version", CHLUtil::GetAppVersion());
    client.set("language", GetPlatform().localeLanguage);
    client.set("timeZoneOffset", getTimezoneOffset());
    client.set("supportedTemplates", templates);
    JsonValue outer = JsonValue::CreateObject();
    outer.set("client", client);
    std::string body = outer.toString();
    HL_LOGI("service: %s, body : %s", serviceCode.c_str(), body.c_str());
    return body;
}

std::string LifeHandler::getTimezoneOffset() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << std::put_time(&local, "UTC%z");
    std::string offset = stream.str();
    constexpr std::size_t kLeast = 3;
    constexpr std::size_t kMinutes = 2;
    if (offset.size() >= kLeast) {
        // The dashboard knows full hours only: a zone at five and a half hours counts as five.
        offset.replace(offset.size() - kMinutes, kMinutes, ":00");
    }
    return offset;
}

// ---- Energy ----

void LifeHandler::GetEnergyInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId) {
    _energy->GetEnergyInfo(transaction, installedAppId);
}

void LifeHandler::HandleSseSmartAppEvent(const std::string& json) {
    Guarded([&] {
        const JsonValue event = JsonValue::Create(json);
        const std::string name = CHLUtil::GetMemberString(event, "name");
        if (name != Names::HOMELOOM_ENERGY) {
            HL_LOGI("do not handle now, name : %s", name.c_str());
            return;
        }
        const std::string installedAppId = CHLUtil::GetMemberString(event, "installedAppId");
        HL_LOGI("updated installed app id : %s", installedAppId.c_str());
        _energy->EnergyInfoUpdated(installedAppId);
    });
}

}  // namespace VMFramework::HomeLoom
