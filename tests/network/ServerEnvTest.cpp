// Which server environment applies, and who goes where in it.

#include <map>
#include <string>
#include <vector>

#include "Homeloom/Network/CHubRequester.h"
#include "Homeloom/Tessel/CServerEnvMgr.h"
#include "NetworkTest.h"
#include "clock/Turner.h"

using namespace VMFramework::HomeLoom;
using simulator::CloudFault;
using testing::Contains;
using testing::IsEmpty;
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
    const homeloom::clock::Turner turner;
    EXPECT_TRUE(IsHubThere());
    EXPECT_FALSE(requester.RequestIsHubExist(Token(), "no-device-of-the-account"));
    for (const int code : {400, 401, 404, 410, 500, 503, 301, 204, 403}) {
        cloud.fault("devices", CloudFault::status(code));
        EXPECT_EQ(IsHubThere(), code != 403) << code;
    }
    for (const auto& fault : {CloudFault::never(), CloudFault::endless(), CloudFault::cut(), CloudFault::body("")}) {
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
