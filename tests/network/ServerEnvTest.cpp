// Which server environment applies, who goes where in it, and how another one is asked for.

#include <map>
#include <string>
#include <vector>

#include "Common/CException.h"
#include "Homeloom/Network/CHubRequester.h"
#include "Homeloom/Tessel/CServerEnvMgr.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "NetworkTest.h"
#include "desktop/CallFaults.h"
#include "desktop/Launches.h"

using namespace VMFramework::HomeLoom;
using simulator::CloudFault;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace desktop = homeloom::desktop;

namespace {

constexpr char kKey[] = "db/homeloom/server/env";

class ServerEnv : public NetworkTest {
protected:
    CServerEnvMgr& servers = CServerEnvMgr::GetInstance();
};

class HubRequester : public NetworkTest {
protected:
    bool IsHubThere() { return requester.RequestIsHubExist(Token(), "washer"); }

    CHubRequester requester;
};

}  // namespace

TEST_F(ServerEnv, IsProductionWhereverTheSettingSaysNothingElse) {
    struct Row {
        const char* setting;
        int iotCloud;
        int uiMeta;
        const char* complaint;
    };
    const Row rows[] = {
        {R"({"IoTCloud":"STG","UiMeta":"DEV"})", 2, 3, ""},
        {R"({"IoTCloud":"ACC","UiMeta":"PROD"})", 1, 0, ""},
        {R"({"IoTCloud":"ACC"})", 1, 0, "Exception !! - no server type name(error:2)(error_code:2)"},
        {R"({"UiMeta":"STG"})", 0, 2, "SERVER_ENV_PROD will be set"},
        {R"({"IoTCloud":"stg","UiMeta":""})", 0, 0, ""},
        {R"({"IoTCloud":{},"UiMeta":[]})", 0, 0, "SERVER_ENV_PROD will be set"},
        {"[]", 0, 0, "SERVER_ENV_PROD will be set"},
        {"STG", 0, 0, "SERVER_ENV_PROD will be set"},
        {"", 0, 0, "SERVER_ENV_PROD will be set"},
        {nullptr, 0, 0, "Exception !! - Can't get Server Setting vconf"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.setting != nullptr ? row.setting : "absent");
        row.setting != nullptr ? desktop::settings::setString(kKey, row.setting) : desktop::settings::unset(kKey);
        log.clear();
        EXPECT_EQ(servers.GetIoTCloudServerEnv(), row.iotCloud);
        EXPECT_EQ(servers.GetUImetaServerEnv(), row.uiMeta);
        if (*row.complaint == '\0') {
            EXPECT_THAT(Errors(), IsEmpty());
        } else {
            EXPECT_THAT(Errors(), Contains(row.complaint));
        }
    }
    EXPECT_THROW(servers.get_server_env(SERVER_TYPE_IOTCLOUD), std::runtime_error);
    EXPECT_THROW(servers.get_server_type_name(static_cast<e_server_type_>(2)), std::runtime_error);
    EXPECT_EQ(servers.get_server_env_name(static_cast<e_server_env_>(4)), "PROD");
}

TEST_F(ServerEnv, AChangeLaunchesTheAgentsApplication) {
    // Without a connection nobody knows what the agent has, so even production is asked for.
    EXPECT_TRUE(servers.SetServerEnv(TesselHandler::GetInstance(), 1, 1));
    EXPECT_TRUE(servers.SetServerEnv(TesselHandler::GetInstance(), 0, 2));
    servers.set_server_setting(R"({"IoTCloud":"ACC","UiMeta":"DEV"})");
    servers.change_server_env();
    std::vector<std::string> parameters;
    for (const auto& launch : desktop::launches::all()) {
        EXPECT_EQ(launch.appId, "com.norvane.solenne.homeloom-client");
        ASSERT_THAT(launch.extras, SizeIs(1));
        parameters.push_back(launch.extras.at("server"));
    }
    EXPECT_THAT(parameters, ElementsAre("PROD@PROD", "STG@ACC", "ACC@DEV"));

    desktop::launches::forget();
    for (const auto& [iotCloud, uiMeta] : std::map<int, int>{{3, 1}, {1, 3}, {-1, 1}, {0, -1}}) {
        EXPECT_THROW(servers.SetServerEnv(TesselHandler::GetInstance(), iotCloud, uiMeta), CException);
    }
    const std::vector<std::pair<const char*, const char*>> failures = {
        {"app_control_create", "fail to create"},
        {"app_control_set_app_id", "fail to set app id"},
        {"app_control_add_extra_data", "fail to add data"},
        {"app_control_send_launch_request", "fail to launch"}};
    for (const auto& [function, words] : failures) {
        desktop::failCalls(function, -1);
        log.clear();
        EXPECT_FALSE(servers.SetServerEnv(TesselHandler::GetInstance(), 0, 0));
        EXPECT_THAT(Errors(), Contains(words));
        desktop::passCalls();
    }
    EXPECT_THAT(desktop::launches::all(), IsEmpty());
}

TEST_F(HubRequester, AsksTheHostOfItsEnvironment) {
    const std::map<std::string, std::string> hosts = {{"PROD", "api.homeloom.example"},
                                                      {"ACC", "api.acc.homeloom.example"},
                                                      {"STG", "api.dev.homeloom.example"},
                                                      {"DEV", "api.homeloom.example"}};
    for (const auto& [name, host] : hosts) {
        SCOPED_TRACE(name);
        desktop::settings::setString(kKey, R"({"IoTCloud":")" + name + R"("})");
        log.clear();
        cloud.resetRequests();
        EXPECT_TRUE(requester.RequestIsHubExist("t ok/en", "washer"));
        ASSERT_EQ(cloud.requests().size(), 1u);
        EXPECT_EQ(cloud.requests()[0].host, host);
        EXPECT_EQ(cloud.requests()[0].method, "GET");
        EXPECT_EQ(cloud.requests()[0].target, "/v1/devices/washer");
        EXPECT_EQ(cloud.requests()[0].header("Authorization"), "Bearer t ok/en");
        EXPECT_EQ(log.contains("invalid server type!, it will be set to PROD server url by default"), name == "DEV");
    }
}

TEST_F(HubRequester, HoldsTheHubGoneOnlyOnA403) {
    EXPECT_TRUE(IsHubThere());
    EXPECT_FALSE(requester.RequestIsHubExist(Token(), "no-device-of-the-account"));
    for (const int code : {400, 401, 404, 410, 500, 503, 301, 204, 403}) {
        cloud.fault("devices", CloudFault::status(code));
        EXPECT_EQ(IsHubThere(), code != 403) << code;
    }
    for (const auto& fault : {CloudFault::never(), CloudFault::endless(), CloudFault::cut(), CloudFault::body("")}) {
        desktop::web::setSecond(std::chrono::milliseconds(fault.hasNoEnd() ? 50 : 1000));
        cloud.fault("devices", fault);
        EXPECT_TRUE(IsHubThere());
    }
    // All of these are a 403, if they came that far.
    cloud.fault("devices", CloudFault::status(403));
    EXPECT_TRUE(requester.RequestIsHubExist("two\r\nlines", "washer"));
    EXPECT_TRUE(requester.RequestIsHubExist(Token(), "a hub with blanks"));
    desktop::web::fail("send");
    EXPECT_TRUE(IsHubThere());
    desktop::web::pass();
    EXPECT_FALSE(IsHubThere());
    cloud.stop();
    EXPECT_TRUE(IsHubThere());
}
