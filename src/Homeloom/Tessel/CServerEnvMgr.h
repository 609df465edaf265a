#ifndef HOMELOOM_HOMELOOM_TESSEL_CSERVERENVMGR_H
#define HOMELOOM_HOMELOOM_TESSEL_CSERVERENVMGR_H

#include <atomic>
#include <string>

#include "Common/CSingleton.h"
#include "Homeloom/Network/ServerSetting.h"

namespace VMFramework::HomeLoom {

class ITesselHandler;

/// Tells which of the platform's server environments applies, and asks the agent for another one. May be used on any
/// thread.
class CServerEnvMgr : public CSingleton<CServerEnvMgr>, public ServerSetting {
public:
    /// The agent to ask for its environments. The session sets it before the first request, and null before the agent
    /// goes away; without one the agent's environments are unknown.
    void SetAgent(ITesselHandler* agent) { _agent = agent; }

    /// Asks the agent's application for other environments, in the agent's numbering: 0 staging, 1 production, 2
    /// acceptance. True when it was asked, or when nothing would change. Throws CException for another number.
    bool SetServerEnv(int iotCloud, int uiMeta);
    // Part of the interface; no caller in the plug-in.
    /// Tells the agent's application what the setting says.
    void change_server_env();

    /// Launches the agent's application with "IOTCLOUD@UIMETA", the names of two environments.
    bool send_to_server_env_to_hl_client(const std::string& parameter);

private:
    std::atomic<ITesselHandler*> _agent{nullptr};
};

}  // namespace VMFramework::HomeLoom

#endif
