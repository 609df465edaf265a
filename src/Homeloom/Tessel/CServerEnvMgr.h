#ifndef HOMELOOM_HOMELOOM_TESSEL_CSERVERENVMGR_H
#define HOMELOOM_HOMELOOM_TESSEL_CSERVERENVMGR_H

#include <string>

#include "Common/CSingleton.h"

namespace VMFramework::HomeLoom {

enum e_server_type_ : int { SERVER_TYPE_IOTCLOUD = 0, SERVER_TYPE_UIMETA = 1 };

/// As the setting names them. The agent numbers its environments differently.
enum e_server_env_ : int { SERVER_ENV_PROD = 0, SERVER_ENV_ACC = 1, SERVER_ENV_STG = 2, SERVER_ENV_DEV = 3 };

/// Tells which of the platform's server environments applies, and asks the agent for another one. The setting belongs
/// to the agent: nothing here writes it unasked. May be used on any thread.
class CServerEnvMgr : public CSingleton<CServerEnvMgr> {
public:
    /// Read from the setting anew each time. Production if that fails.
    e_server_env_ GetIoTCloudServerEnv();
    e_server_env_ GetUImetaServerEnv();

    /// Asks the agent's application for other environments, in the agent's numbering: 0 staging, 1 production, 2
    /// acceptance. True when it was asked, or when nothing would change. Throws std::out_of_range for another number.
    bool SetServerEnv(int iotCloud, int uiMeta);
    /// Tells the agent's application what the setting says.
    void change_server_env();

    /// These throw when the setting can't be read.
    e_server_env_ get_server_env(e_server_type_ type);
    std::string get_server_setting();
    void set_server_setting(const std::string& setting);

    /// A name that is none counts as production, and so does a value.
    e_server_env_ get_server_env(const std::string& name);
    std::string get_server_env_name(e_server_env_ env);
    /// Throws for a type that is none.
    std::string get_server_type_name(e_server_type_ type);

    /// Launches the agent's application with "IOTCLOUD@UIMETA", the names of two environments.
    bool send_to_server_env_to_hl_client(const std::string& parameter);
};

}  // namespace VMFramework::HomeLoom

#endif
