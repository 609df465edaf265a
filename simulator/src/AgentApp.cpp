#include "AgentApp.h"

#include <map>
#include <mutex>
#include <string>

#include "World.h"
#include "desktop/Launches.h"
#include "desktop/Settings.h"

namespace simulator {

namespace {

constexpr char kAppId[] = "com.norvane.solenne.homeloom-client";
constexpr char kServerEnvKey[] = "db/homeloom/server/env";

const std::map<std::string, int>& environmentNumbers() {
    static const std::map<std::string, int> numbers{{"STG", 0}, {"PROD", 1}, {"ACC", 2}};
    return numbers;
}

// "IOTCLOUD@UIMETA". With a name that it doesn't know the application does nothing.
void changeServers(const std::string& parameter) {
    const std::size_t at = parameter.find('@');
    const std::string iotCloud = parameter.substr(0, at);
    const std::string uiMeta = at != std::string::npos ? parameter.substr(at + 1) : "";
    const auto& numbers = environmentNumbers();
    if (numbers.count(iotCloud) == 0 || numbers.count(uiMeta) == 0) {
        return;
    }
    World& world = World::instance();
    {
        const std::lock_guard<std::mutex> lock(world.mutex);
        world.home.serverEnvironments = {{0, numbers.at(iotCloud)}, {1, numbers.at(uiMeta)}};
    }
    homeloom::desktop::settings::setString(kServerEnvKey,
                                           R"({"IoTCloud":")" + iotCloud + R"(","UiMeta":")" + uiMeta + R"("})");
}

}  // namespace

void installAgentApp() {
    homeloom::desktop::launches::setApp(kAppId, [](const homeloom::desktop::launches::Launch& launch) {
        const auto server = launch.extras.find("server");
        if (server != launch.extras.end()) {
            changeServers(server->second);
        }
    });
}

}  // namespace simulator
