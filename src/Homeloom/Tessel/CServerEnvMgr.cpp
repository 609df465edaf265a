#include "Homeloom/Tessel/CServerEnvMgr.h"

#include <array>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include <VMFramework/JsonValue.h>
#include <app_control.h>
#include <vconf.h>

#include "Common/CException.h"
#include "Common/HLLog.h"
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kServerEnvKey[] = "db/homeloom/server/env";
constexpr char kAgentAppId[] = "com.norvane.solenne.homeloom-client";
constexpr char kServerExtra[] = "server";

// By e_server_env_.
constexpr std::array<const char*, 4> kEnvNames{"PROD", "ACC", "STG", "DEV"};
// By the agent's own numbers.
constexpr std::array<const char*, 3> kAgentEnvNames{"STG", "PROD", "ACC"};

std::string AgentEnvName(int env) {
    // A negative number is out of the array's range as well.
    return kAgentEnvNames.at(static_cast<std::size_t>(env));
}

struct AppControlDestroyer {
    void operator()(app_control_h handle) const { app_control_destroy(handle); }
};
using AppControl = std::unique_ptr<std::remove_pointer_t<app_control_h>, AppControlDestroyer>;

}  // namespace

e_server_env_ CServerEnvMgr::GetIoTCloudServerEnv() {
    try {
        return get_server_env(SERVER_TYPE_IOTCLOUD);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        HL_LOGE("SERVER_ENV_PROD will be set");
        return SERVER_ENV_PROD;
    }
}

e_server_env_ CServerEnvMgr::GetUImetaServerEnv() {
    try {
        return get_server_env(SERVER_TYPE_UIMETA);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        HL_LOGE("SERVER_ENV_PROD will be set");
        return SERVER_ENV_PROD;
    }
}

bool CServerEnvMgr::SetServerEnv(int iotCloud, int uiMeta) {
    int currentIotCloud = -1;
    int currentUiMeta = -1;
    auto& agent = TesselHandler::GetInstance();
    const bool isIotCloudKnown = agent.GetServerEnv(SERVER_TYPE_IOTCLOUD, currentIotCloud) == 0;
    const bool isUiMetaKnown = agent.GetServerEnv(SERVER_TYPE_UIMETA, currentUiMeta) == 0;
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
            return std::string(kEnvNames[SERVER_ENV_PROD]);
        }
        return name;
    };
    send_to_server_env_to_hl_client(nameOf(GetIoTCloudServerEnv()) + "@" + nameOf(GetUImetaServerEnv()));
}

e_server_env_ CServerEnvMgr::get_server_env(e_server_type_ type) {
    const auto setting = json::JsonValue::Create(get_server_setting());
    const auto name = setting[get_server_type_name(type)];
    if (name.isNull()) {
        throw CException("no server type name", kErrorFailed);
    }
    const std::string text = name.asString();
    const e_server_env_ env = get_server_env(text);
    HL_LOGI("server_env : %s, env : %d", text.c_str(), static_cast<int>(env));
    return env;
}

std::string CServerEnvMgr::get_server_setting() {
    const std::unique_ptr<char, void (*)(void*)> setting(vconf_get_str(kServerEnvKey), std::free);
    if (!setting) {
        throw std::runtime_error("Can't get Server Setting vconf");
    }
    return setting.get();
}

void CServerEnvMgr::set_server_setting(const std::string& setting) {
    if (vconf_set_str(kServerEnvKey, setting.c_str()) != 0) {
        HL_LOGE("Can't set Server Setting vconf");
    }
}

e_server_env_ CServerEnvMgr::get_server_env(const std::string& name) {
    for (std::size_t env = 0; env < kEnvNames.size(); ++env) {
        if (name == kEnvNames[env]) {
            HL_LOGI("server env is %s", kEnvNames[env]);
            return static_cast<e_server_env_>(env);
        }
    }
    return SERVER_ENV_PROD;
}

std::string CServerEnvMgr::get_server_env_name(e_server_env_ env) {
    const auto index = static_cast<std::size_t>(env);
    return index < kEnvNames.size() ? kEnvNames[index] : kEnvNames[SERVER_ENV_PROD];
}

std::string CServerEnvMgr::get_server_type_name(e_server_type_ type) {
    switch (type) {
        case SERVER_TYPE_IOTCLOUD:
            return "IoTCloud";
        case SERVER_TYPE_UIMETA:
            return "UiMeta";
    }
    throw std::runtime_error("Wrong Server type param");
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
