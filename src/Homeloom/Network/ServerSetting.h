#ifndef HOMELOOM_HOMELOOM_NETWORK_SERVERSETTING_H
#define HOMELOOM_HOMELOOM_NETWORK_SERVERSETTING_H

#include <string>

namespace VMFramework::HomeLoom {

enum e_server_type_ : int { SERVER_TYPE_IOTCLOUD = 0, SERVER_TYPE_UIMETA = 1 };

/// As the setting names them. The agent numbers its environments differently.
enum e_server_env_ : int { SERVER_ENV_PROD = 0, SERVER_ENV_ACC = 1, SERVER_ENV_STG = 2, SERVER_ENV_DEV = 3 };

/// Which of the platform's server environments the setting tells: the web requests go there. The setting belongs to
/// the agent: nothing here writes it unasked. May be used on any thread.
class ServerSetting {
public:
    /// Read from the setting anew each time. Production if that fails.
    e_server_env_ GetIoTCloudServerEnv() { return GetOrProduction(SERVER_TYPE_IOTCLOUD); }
    e_server_env_ GetUImetaServerEnv() { return GetOrProduction(SERVER_TYPE_UIMETA); }

    /// These throw when the setting can't be read.
    e_server_env_ get_server_env(e_server_type_ type);
    std::string get_server_setting();
    // Part of the interface; no caller in the plug-in.
    void set_server_setting(const std::string& setting);

    /// A name that is none counts as production, and so does a value.
    e_server_env_ get_server_env(const std::string& name);
    std::string get_server_env_name(e_server_env_ env);
    /// Throws for a type that is none.
    std::string get_server_type_name(e_server_type_ type);

private:
    e_server_env_ GetOrProduction(e_server_type_ type);
};

}  // namespace VMFramework::HomeLoom

#endif
