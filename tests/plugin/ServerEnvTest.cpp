// The server environments, from the request to the agent, and back into where the plug-in asks.

#include <map>
#include <string>

#include <gmock/gmock.h>
#include <homeloom_client.h>

#include "desktop/CallFaults.h"
#include "desktop/Launches.h"
#include "support/Desk.h"

namespace launches = homeloom::desktop::launches;
using simulator::Fault;

namespace {

constexpr char kTrue[] = "notify hl_set_server_env result=true";
constexpr char kFalse[] = "notify hl_set_server_env result=false";
constexpr char kGetter[] = "homeloom_client_internal_get_server_env";
constexpr const char* kNames[] = {"STG", "PROD", "ACC"};

class ServerEnvRequest : public testing::Test {
protected:
    ServerEnvRequest() { desk.startAndShow(); }

    std::string Ask(int iotCloud, int uiMeta) {
        launches::forget();
        return toText(*desk.ask("hl_set_server_env", {{"env_iot_cloud", iotCloud}, {"env_ui_meta", uiMeta}}));
    }
    // What the agent's application was launched with.
    static std::string Launched() {
        std::string parameters;
        for (const auto& launch : launches::all()) {
            parameters += launch.extras.at("server") + ";";
        }
        return parameters;
    }

    Desk desk{Desk::apartmentWith({"washer"})};
};

}  // namespace

TEST_F(ServerEnvRequest, LaunchesTheAgentForEachChangeAndOnlyThen) {
    std::map<int, int> now{{0, 1}, {1, 1}};
    for (int iotCloud = 0; iotCloud < 3; ++iotCloud) {
        for (int uiMeta = 0; uiMeta < 3; ++uiMeta) {
            SCOPED_TRACE(std::to_string(iotCloud) + " " + std::to_string(uiMeta));
            const std::map<int, int> wanted{{0, iotCloud}, {1, uiMeta}};
            const std::string names = std::string(kNames[iotCloud]) + "@" + kNames[uiMeta] + ";";
            EXPECT_EQ(Ask(iotCloud, uiMeta), kTrue);
            EXPECT_EQ(Launched(), wanted == now ? "" : names);
            EXPECT_EQ(desk.agent.home().serverEnvironments, wanted);
            now = wanted;
            // The second time there is nothing to change.
            EXPECT_EQ(Ask(iotCloud, uiMeta), kTrue);
            EXPECT_EQ(Launched(), "");
        }
    }
}

TEST_F(ServerEnvRequest, AsksForProductionTooWhenTheAgentDoesNotSayWhatItHas) {
    desk.agent.fault(kGetter, Fault::fail(HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER));
    EXPECT_EQ(Ask(1, 1), kTrue);
    EXPECT_EQ(Launched(), "PROD@PROD;");

    // Nor is what it does not say equal to an environment that is none.
    EXPECT_EQ(Ask(-1, -1), kFalse);
    EXPECT_TRUE(desk.log.contains("Exception !! - no such server environment : -1(error:2)"));
}

TEST_F(ServerEnvRequest, FailsWithTheLaunch) {
    homeloom::desktop::failCalls("app_control_send_launch_request", -1);
    EXPECT_EQ(Ask(0, 1), kFalse);
    homeloom::desktop::passCalls();
    launches::setApp("com.norvane.solenne.homeloom-client", nullptr);
    EXPECT_EQ(Ask(0, 1), kFalse);
    EXPECT_EQ(desk.agent.home().serverEnvironments, (std::map<int, int>{{0, 1}, {1, 1}}));
}
