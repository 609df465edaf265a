// Reads the platform's server environment from the TV's setting.
#include "Homeloom/Network/ServerSetting.h"

#include <array>
#include <exception>
#include <stdexcept>

#include <VMFramework/JsonValue.h>
#include <vconf.h>

#include "Common/CException.h"
#include "Common/CText.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kServerEnvKey[] = "db/homeloom/server/env";

// By e_server_env_.
constexpr std::array<const char*, 4> kEnvNames{"PROD", "ACC", "STG", "DEV"};

}  // namespace

e_server_env_ ServerSetting::GetOrProduction(e_server_type_ type) {
    try {
        return get_server_env(type);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        HL_LOGE("SERVER_ENV_PROD will be set");
        return SERVER_ENV_PROD;
    }
}

e_server_env_ ServerSetting::get_server_env(e_server_type_ type) {
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

std::string ServerSetting::get_server_setting() {
    const OwnedText setting(vconf_get_str(kServerEnvKey));
    if (!setting) {
        throw std::runtime_error("Can't get Server Setting vconf");
    }
    return setting.get();
}

void ServerSetting::set_server_setting(const std::string& setting) {
    if (vconf_set_str(kServerEnvKey, setting.c_str()) != 0) {
        HL_LOGE("Can't set Server Setting vconf");
    }
}

e_server_env_ ServerSetting::get_server_env(const std::string& name) {
    for (std::size_t env = 0; env < kEnvNames.size(); ++env) {
        if (name == kEnvNames[env]) {
            HL_LOGI("server env is %s", kEnvNames[env]);
            return static_cast<e_server_env_>(env);
        }
    }
    return SERVER_ENV_PROD;
}

std::string ServerSetting::get_server_env_name(e_server_env_ env) {
    const auto index = static_cast<std::size_t>(env);
    return index < kEnvNames.size() ? kEnvNames[index] : kEnvNames[SERVER_ENV_PROD];
}

std::string ServerSetting::get_server_type_name(e_server_type_ type) {
    switch (type) {
        case SERVER_TYPE_IOTCLOUD:
            return "IoTCloud";
        case SERVER_TYPE_UIMETA:
            return "UiMeta";
    }
    throw std::runtime_error("Wrong Server type param");
}

}  // namespace VMFramework::HomeLoom
