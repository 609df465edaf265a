// Asks the agent's application to change to other server environments.
#include "Homeloom/Tessel/CServerEnvMgr.h"

#include <array>
#include <memory>
#include <string>
#include <type_traits>

#include <app_control.h>

#include "Common/CException.h"
#include "Common/HLLog.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kAgentAppId[] = "com.norvane.solenne.homeloom-client";
constexpr char kServerExtra[] = "server";

// By the agent's own numbers.
constexpr std::array<const char*, 3> kAgentEnvNames{"STG", "PROD", "ACC"};

std::string AgentEnvName(int env) {
    // A negative number is beyond the table as well.
    const auto index = static_cast<std::size_t>(env);
    if (index >= kAgentEnvNames.size()) {
        throw CException("no such server environment : " + std::to_string(env), kErrorFailed);
    }
    return kAgentEnvNames[index];
}

struct AppControlDestroyer {
    void operator()(app_control_h handle) const { app_control_destroy(handle); }
};
using AppControl = std::unique_ptr<std::remove_pointer_t<app_control_h>, AppControlDestroyer>;

}  // namespace

bool CServerEnvMgr::SetServerEnv(int iotCloud, int uiMeta) {
    int currentIotCloud = -1;
    int currentUiMeta = -1;
    ITesselHandler* const agent = _agent;
    const bool isIotCloudKnown = agent != nullptr && agent->GetServerEnv(SERVER_TYPE_IOTCLOUD, currentIotCloud) == 0;
    const bool isUiMetaKnown = agent != nullptr && agent->GetServerEnv(SERVER_TYPE_UIMETA, currentUiMeta) == 0;
    HL_LOGI("requested[iotCloud:%d, uiMeta:%d], tessel[iotCloud:%d, uiMeta:%d]", iotCloud, uiMeta, currentIotCloud,
            currentUiMeta);
    // A value that can't be read equals no request, not even one for the number that stands in its place.
    if (isIotCloudKnown && isUiMetaKnown && iotCloud == currentIotCloud && uiMeta == currentUiMeta) {
        HL_LOGI("nothing changed! do nothing. but return true");
        return true;
    }
    return send_to_server_env_to_hl_client(AgentEnvName(iotCloud) + "@" + AgentEnvName(uiMeta));
}

void CServerEnvMgr::change_server_env() {
    const auto nameOf = [this](e_server_env_ env) {
        const std::string name = get_server_env_name(env);
        if (name.empty()) {
            HL_LOGI("iot cloud env is empty. it will be set to PROD");
            return get_server_env_name(SERVER_ENV_PROD);
        }
        return name;
    };
    send_to_server_env_to_hl_client(nameOf(GetIoTCloudServerEnv()) + "@" + nameOf(GetUImetaServerEnv()));
}

bool CServerEnvMgr::send_to_server_env_to_hl_client(const std::string& parameter) {
    HL_LOGI("Try to Send Server Env Param %s", parameter.c_str());
    app_control_h handle = nullptr;
    if (app_control_create(&handle) != APP_CONTROL_ERROR_NONE) {
        HL_LOGE("fail to create");
        return false;
    }
    const AppControl control(handle);
    if (app_control_set_app_id(handle, kAgentAppId) != APP_CONTROL_ERROR_NONE) {
        HL_LOGE("fail to set app id");
        return false;
    }
    if (app_control_add_extra_data(handle, kServerExtra, parameter.c_str()) != APP_CONTROL_ERROR_NONE) {
        HL_LOGE("fail to add data");
        return false;
    }
    if (app_control_send_launch_request(handle, nullptr, nullptr) != APP_CONTROL_ERROR_NONE) {
        HL_LOGE("fail to launch");
        return false;
    }
    HL_LOGI("Complete to send SERVER CHANGE REQUEST to %s", kAgentAppId);
    return true;
}

}  // namespace VMFramework::HomeLoom
