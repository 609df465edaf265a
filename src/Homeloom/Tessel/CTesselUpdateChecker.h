#ifndef HOMELOOM_HOMELOOM_TESSEL_CTESSELUPDATECHECKER_H
#define HOMELOOM_HOMELOOM_TESSEL_CTESSELUPDATECHECKER_H

#include <functional>
#include <mutex>

#include <norvane_svcmgr.h>

namespace VMFramework::HomeLoom {

enum class _EReqType : int {
    Connect = 0,    ///< the update is over, connect again
    Disconnect = 1  ///< an update has started, let go
};

/// Listens for updates of the agent that the service manager announces.
class CTesselUpdateChecker {
public:
    CTesselUpdateChecker() = default;
    virtual ~CTesselUpdateChecker() = default;
    CTesselUpdateChecker(const CTesselUpdateChecker&) = delete;
    CTesselUpdateChecker& operator=(const CTesselUpdateChecker&) = delete;

    /// The function runs on a thread of the service manager, with no lock of this class held.
    void SubscribeCallback(std::function<void(_EReqType)> callback);
    /// When it returns the function is not running, unless the caller is that function itself.
    void UnsubscribeCallback();

private:
    static void _AgentUpdateStatusCb(norvane_svcmgr_update_status_e status, void* userData);
    void _HandleAgentUpdateStatusChanged(norvane_svcmgr_update_status_e status);
    void _NotifyAgentDeinit();
    void _NotifyAgentInit();

    std::recursive_mutex _mutex;
    bool _isUpdating = false;
    std::function<void(_EReqType)> _callback;
};

}  // namespace VMFramework::HomeLoom

#endif
