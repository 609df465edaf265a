// Home services: energy, service apps, the Wi-Fi locker's setting and the server environments, whatever the agent
// answers.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CTransaction.h"
#include "Homeloom/Life/LifeHandler.h"
#include "Homeloom/Tessel/CServerEnvMgr.h"
#include "Homeloom/WifiLocker/WifiLockerHandler.h"
#include "desktop/CallFaults.h"
#include "desktop/Launches.h"
#include "desktop/Log.h"
#include "handlers/HandlersTest.h"

using namespace VMFramework::HomeLoom;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using VMFramework::json::JsonValue;
namespace desktop = homeloom::desktop;

namespace {

constexpr char kAgentApp[] = "com.norvane.solenne.homeloom-client";
constexpr char kNoSuccess[][32] = {R"({"message":"FAILED"})", R"({"message":["SUCCESS"]})", "{}", "[]", "SUCCESS", ""};

class Services : public HandlersTest {
protected:
    /// A request whose answer goes the way of the updates.
    std::shared_ptr<CTransaction> Request() {
        const auto answer = [this](const auto& list) { frame.ReportServiceNotify(list); };
        return CTransaction::Create(nullptr, answer, answer);
    }
};

class EnergyService : public Services {
protected:
    /// "DEVICE CONSUMPTION SAVING ..." of each report that a request or, without one, an update causes.
    std::vector<std::string> Ask(bool isRequest = true) {
        life.GetEnergyInfo(isRequest ? Request() : nullptr, "installed");
        Settle();
        std::vector<std::string> texts;
        for (const auto& report : frame.Take()) {
            const auto json = JsonValue::Create(report->properties.text("installed_service_app_info_json"));
            const JsonValue info = json["energyInfoJson"];
            std::string text = report->properties.flag("result") ? report->name + ":" : report->name + " failed";
            for (std::size_t i = 0; i < info.size(); ++i) {
                const JsonValue device = info[i];
                text += " " + device["device_id"].asString() + " " + device["consumed_energy"].asString() + " " +
                        device["energy_saving_mode"].asString();
            }
            texts.push_back(text);
        }
        return texts;
    }

    LifeHandler life{agent};
};

class ServiceApps : public Services {
protected:
    ServiceApps() { Install({}); }

    /// The one app that is installed, with these fields in place of the good ones.
    void Install(const std::map<int, std::string>& fields) {
        AgentStub::Record app{fields, {}};
        app.texts.insert({{HOMELOOM_CORE_INSTALLED_APP_ID, "installed"},
                          {HOMELOOM_CORE_INSTALLED_APP_DISPLAY_NAME, "Name"},
                          {HOMELOOM_CORE_INSTALLED_APP_STATUS, "AUTHORIZED"},
                          {HOMELOOM_CORE_INSTALLED_APP_APP_ID, "app"},
                          {HOMELOOM_CORE_INSTALLED_APP_LOCATION_ID, "home"},
                          {HOMELOOM_CORE_INSTALLED_APP_UI, R"({"pluginId":"plugin"})"}});
        agent.lists["GetInstalledAppList"] = {app};
    }
    void SetCatalog(const std::string& text, int ret = 0) { agent.answers["GetCatalogAppList"] = {ret, {text}, {}}; }
    std::string Ask() {
        LifeHandler(agent).GetInstalledServiceAppInfo(nullptr, "home");
        const auto reports = frame.Take();
        EXPECT_THAT(reports, SizeIs(1));
        return reports.at(0)->properties.text("installed_service_app_info_json");
    }

    desktop::log::Capture log{DLOG_ERROR};
};

constexpr char kCatalog[] = R"({"apps":[1,null,"x",[],{},{"serviceApp":"x"},
    {"serviceApp":{"serviceCode":["PUBLIC_DR"]},"endpointAppId":"app"},
    {"serviceApp":{"serviceCode":"OTHER"},"endpointAppId":"app","appServicePlugins":[{"uri":"other"}]},
    {"serviceApp":{"serviceCode":"PUBLIC_DR"},"endpointAppId":7,"appServicePlugins":[{"uri":"number"}]},
    {"serviceApp":{"serviceCode":"PUBLIC_DR"},"endpointAppId":"app","appServicePlugins":[
        {"uri":"first"},{"pluginType":"app","uri":"https://plugins.home.example/dr"}]},
    {"serviceApp":{"serviceCode":"PUBLIC_DR"},"endpointAppId":"app","appServicePlugins":"x"}]})";
constexpr char kAppJson[] =
    R"([{"installedAppId":"installed","endpointAppId":"app","appInternalName":"Name","serviceCode":"PUBLIC_DR",)"
    R"("pluginUri":"https://plugins.home.example/dr","locationId":"home","pluginId":"plugin","renderingData":""}])";

class WifiLocker : public Services {
protected:
    /// The report once the agent has answered; the second answer finds nobody.
    std::string Answered(const char* operation, const std::string& text) {
        EXPECT_THAT(Reported(), IsEmpty());
        for (int answer = 0; answer < 2; ++answer) {
            agent.CallBack<homeloom_core_json_cb>(operation, 0, nullptr, text.c_str());
        }
        const auto lines = Reported();
        EXPECT_THAT(lines, SizeIs(1));
        return lines.at(0);
    }

    const std::shared_ptr<WifiLockerHandler> locker = std::make_shared<WifiLockerHandler>(agent);
};

class ServerEnv : public Services {
protected:
    ServerEnv() {
        servers.SetAgent(&agent);
        desktop::launches::setApp(kAgentApp, [](const auto&) {});
    }

    /// What the agent's application was launched with.
    std::string Launched() {
        std::string parameters;
        for (const auto& launch : desktop::launches::all()) {
            EXPECT_EQ(launch.appId, kAgentApp);
            parameters += launch.extras.at("server") + ";";
        }
        desktop::launches::forget();
        return parameters;
    }

    CServerEnvMgr& servers = CServerEnvMgr::GetInstance();
    desktop::log::Capture log{DLOG_ERROR};
};

}  // namespace

TEST_F(EnergyService, AnAnswerThatCannotBeReadIsAFailure) {
    const auto say = [&](const std::string& text) { agent.answers["ExecuteInstalledApp"] = {0, {text}, {}}; };
    for (const std::string& text : std::vector<std::string>{
             "no JSON", "", "{}", "[]", R"({"body":null})", R"({"body":{"deviceId":"washer"}})", R"({"body":"[]"})",
             R"({"body":[]})", R"({"body":[{"consumpedEnergy":1},7,null,"x"]})",
             R"({"body":[{"deviceId":"w","consumpedEnergy":"1"}]})",
             R"({"body":[{"deviceId":"w","consumpedEnergy":99999999999}]})",
             R"({"body":[{"deviceId":{},"consumpedEnergy":1}]})", std::string(100000, '['),
             R"({"body":[{"deviceId":")" + std::string(10 << 20, 'x')}) {
        say(text);
        EXPECT_THAT(Ask(), ElementsAre("hl_get_energy_info failed")) << "no second report: " << text.substr(0, 100);
    }
    EXPECT_THAT(agent.Calls("GetCoreDeviceStatus"), IsEmpty());
    say(R"({"body":[{"deviceId":"washer"},{"deviceId":"oven","consumpedEnergy":2.9}]})");
    EXPECT_THAT(Ask(), ElementsAre("hl_get_energy_info: oven 2 false washer 0 false",
                                   "hl_energy_info_updated: oven 2 false washer 0 false"));
    for (const auto& [ret, status] : {std::pair(-5, ""), {0, "no JSON"}, {0, "[]"}}) {
        agent.answers["GetCoreDeviceStatus"] = {ret, {status}, {}};
        EXPECT_THAT(Ask(false), ElementsAre("hl_energy_info_updated: oven 2 false washer 0 false"));
    }
    life.Quit();
    EXPECT_THAT(Ask(), IsEmpty());
}

TEST_F(ServiceApps, ACatalogThatCannotBeReadIsAskedForAgain) {
    std::size_t asked = 0;
    SetCatalog(kCatalog, -5);
    EXPECT_EQ(Ask(), "");
    for (const std::string& text :
         {std::string("no JSON"), std::string("[]"), std::string("{}"), std::string(R"({"apps":{}})"),
          std::string(R"({"apps":"x"})"), std::string(100000, '['),
          R"({"apps":[{"endpointAppId":")" + std::string(10 << 20, 'x')}) {
        SetCatalog(text);
        EXPECT_EQ(Ask(), "");
        EXPECT_EQ(agent.Calls("GetCatalogAppList").size(), ++asked + 1);
    }
    // An entry that is none leaves the others alone; of several plug-ins the last counts, whatever its type.
    SetCatalog(kCatalog);
    EXPECT_EQ(Ask(), kAppJson);
    // It stays, with another handler too.
    EXPECT_EQ(Ask(), kAppJson);
    EXPECT_EQ(agent.Calls("GetCatalogAppList").size(), asked + 2);
}

TEST_F(ServiceApps, AreLeftOutUnlessAuthorizedKnownAndWithAPlugin) {
    SetCatalog(kCatalog);
    EXPECT_EQ(Ask(), kAppJson);
    const std::pair<int, const char*> flaws[] = {
        {HOMELOOM_CORE_INSTALLED_APP_STATUS, "PENDING"},
        {HOMELOOM_CORE_INSTALLED_APP_STATUS, "authorized"},
        {HOMELOOM_CORE_INSTALLED_APP_APP_ID, "app-energy"},
        {HOMELOOM_CORE_INSTALLED_APP_APP_ID, ""},
        {HOMELOOM_CORE_INSTALLED_APP_LOCATION_ID, "parents"},
        {HOMELOOM_CORE_INSTALLED_APP_UI, "no JSON"},
        {HOMELOOM_CORE_INSTALLED_APP_UI, "{}"},
        {HOMELOOM_CORE_INSTALLED_APP_UI, R"({"pluginId":""})"},
        {HOMELOOM_CORE_INSTALLED_APP_UI, R"({"pluginId":{"x":1}})"},
        {HOMELOOM_CORE_INSTALLED_APP_UI, R"(["pluginId"])"},
    };
    for (const auto& [field, value] : flaws) {
        Install({{field, value}});
        EXPECT_EQ(Ask(), "") << value;
    }
    // What can't be read, in the order of reading: location, app id, status, name, id and plug-in.
    Install({});
    const char* const complaints[] = {"get location_id failed",      "get app_id failed",
                                      "app get app_status failed",   nullptr,
                                      "get installed_app_id failed", "app getting ui string failed"};
    for (int field = 0; field < 6; ++field) {
        agent.FailOnce("GetInstalledAppString", field);
        const std::string json = Ask();
        if (complaints[field] == nullptr) {
            EXPECT_THAT(json, HasSubstr(R"("appInternalName":"",)")) << "an app without a name is an app";
        } else {
            EXPECT_EQ(json, "");
            EXPECT_TRUE(log.contains(complaints[field])) << complaints[field];
        }
    }
}

TEST_F(WifiLocker, HasTheSettingThatThePlatformSays) {
    const std::string get = "notify get_wifi_locker_user_setting result=";
    const std::string set = "notify set_wifi_locker_user_setting result=";
    for (const auto& [text, answer] :
         {std::pair(R"({"message":"SUCCESS","data":{"enabled":2}})", "true wifi_locker_user_setting_enabled=2"),
          {R"({"message":"SUCCESS"})", "true wifi_locker_user_setting_enabled=0"},
          {R"({"message":"SUCCESS","data":[]})", "true wifi_locker_user_setting_enabled=0"},
          {R"({"message":"SUCCESS","data":{"enabled":"1"}})", "true wifi_locker_user_setting_enabled=0"},
          {R"({"message":"SUCCESS","data":{"enabled":99999999999}})", "true wifi_locker_user_setting_enabled=0"},
          {R"({"data":{"enabled":1}})", "false wifi_locker_user_setting_enabled=0"}}) {
        locker->GetWifiLockerUserSetting(Request());
        EXPECT_EQ(Answered("GetWifiLockerUserSetting", text), get + answer) << text;
    }
    locker->SetWifiLockerUserSetting(Request(), "{}");
    EXPECT_EQ(Answered("SetWifiLockerUserSetting", R"({"message":"SUCCESS"})"), set + "true");
    for (const char* text : kNoSuccess) {
        locker->SetWifiLockerUserSetting(Request(), "{}");
        EXPECT_EQ(Answered("SetWifiLockerUserSetting", text), set + "false") << text;
    }
    agent.answers = {{"GetWifiLockerUserSetting", {-5, {}, {}}}, {"SetWifiLockerUserSetting", {-5, {}, {}}}};
    locker->GetWifiLockerUserSetting(Request());
    locker->SetWifiLockerUserSetting(Request(), "{}");
    EXPECT_THAT(Reported(), ElementsAre(get + "false wifi_locker_user_setting_enabled=0", set + "false"));
}

TEST_F(ServerEnv, AChangeLaunchesTheAgentsApplicationAndOnlyThat) {
    agent.answers["GetServerEnv 0"].numbers = {0};
    agent.answers["GetServerEnv 1"].numbers = {2};
    EXPECT_TRUE(servers.SetServerEnv(0, 2));
    EXPECT_EQ(Launched(), "");
    EXPECT_TRUE(servers.SetServerEnv(1, 2));
    EXPECT_TRUE(servers.SetServerEnv(0, 1));
    EXPECT_EQ(Launched(), "PROD@ACC;STG@PROD;");
    for (const auto& [iotCloud, uiMeta] : std::map<int, int>{{3, 1}, {1, 3}, {-1, 1}, {0, -1}}) {
        EXPECT_THROW(servers.SetServerEnv(iotCloud, uiMeta), CException);
    }
    // What the agent doesn't tell equals nothing: neither what is asked for nor what is no environment.
    agent.answers["GetServerEnv 1"].ret = -5;
    EXPECT_TRUE(servers.SetServerEnv(0, 2));
    EXPECT_THROW(servers.SetServerEnv(-1, -1), CException);
    servers.SetAgent(nullptr);
    EXPECT_TRUE(servers.SetServerEnv(1, 1));
    EXPECT_EQ(Launched(), "STG@ACC;PROD@PROD;");
    servers.set_server_setting(R"({"IoTCloud":"ACC","UiMeta":"DEV"})");
    servers.change_server_env();
    EXPECT_EQ(Launched(), "ACC@DEV;");

    const std::vector<std::pair<const char*, const char*>> failures = {
        {"app_control_create", "fail to create"},
        {"app_control_set_app_id", "fail to set app id"},
        {"app_control_add_extra_data", "fail to add data"},
        {"app_control_send_launch_request", "fail to launch"}};
    for (const auto& [function, words] : failures) {
        desktop::failCalls(function, -1);
        EXPECT_FALSE(servers.SetServerEnv(0, 0));
        EXPECT_TRUE(log.contains(words)) << words;
        desktop::passCalls();
    }
    EXPECT_EQ(Launched(), "");
}
