#ifndef HOMELOOM_HOMELOOM_IOTHUB_HUBIPCPROXY_H
#define HOMELOOM_HOMELOOM_IOTHUB_HUBIPCPROXY_H

#include <package_manager.h>

#include <atomic>
#include <memory>
#include <string>

#include "Common/CSingleton.h"
#include "Common/HLLog.h"
#include "Common/Mutex.h"
#include "Homeloom/Common/MainLoopTimer.h"
#include "Homeloom/IoTHub/HUBEventListener.h"

namespace VMFramework::HomeLoom {

class CTransaction;
struct ReportParam;

/// The connection to the hub control application: makes and keeps it, passes requests on, and turns the hub's events
/// into notifications. It keeps no state of an onboarding: the hub decides, and each event stands for itself.
///
/// Requests come on job threads, everything of the connection on the main loop. Nothing is thrown but what a bad
/// event's data throws, to be logged by the platform. What fails without a connection is acknowledged all the same.
class HubIPCProxy : public CSingleton<HubIPCProxy> {
public:
    /// On a TV that can be a hub: waits for the hub control application to be installed, or connects to it.
    void Start();
    /// Lets go of the application, its package and the timer, and waits for a callback that is running. Any number of
    /// times; until the next Start() the hub counts as unconnected.
    void Stop();

    void StartOnboarding(const std::shared_ptr<CTransaction>& transaction, const std::string& accessToken,
                         const std::string& locationId, const std::string& roomId);
    void StopOnboarding(const std::shared_ptr<CTransaction>& transaction);
    void ResetHub(const std::shared_ptr<CTransaction>& transaction);
    void ResetDongle(const std::shared_ptr<CTransaction>& transaction);
    void GetHubInfo(const std::shared_ptr<CTransaction>& transaction);

    /// Whose hub this TV is, and its device id; empty when it is nobody's.
    std::string GetLoginIDHubOnboarded() const;
    std::string GetHubDeviceID() const;

    // ---- For the listener and the event handlers ----

    void SetHubControlEnable(bool isConnected);
    void SetEventCallback();
    void GetAndSaveHubInfo();
    void HandleHubConnection();
    void HandleDisconnectedHub();
    void SendEvent(int event, const std::string& data);

private:
    using IHubControl = rpc_port::IPCProxyBase::proxy::IHubControl;

    friend class CSingleton<HubIPCProxy>;
    HubIPCProxy() = default;
    ~HubIPCProxy() = default;

    static bool isHubSupport();
    static bool isInstalledHubApp();
    bool makeHubControl();
    void setPackageManagerEvent();
    void unsetPackageManagerEvent();
    static void onPackageEventHandler(const char* type, const char* package, package_manager_event_type_e eventType,
                                      package_manager_event_state_e eventState, int progress,
                                      package_manager_error_e error, void* userData);
    void ConnectHub();
    void onHubConnectionTimerCallback();
    void stopHubConnectionTimer();
    void resetRetries();

    /// Runs the call with the hub control; its failures are logged in the caller's name. False if it failed, or there
    /// is none.
    template <typename Call>
    bool callHub(const Call& call, const Log::Place& caller = HL_CALLER);
    /// Answers the request when it is false.
    bool isHubIPCConnected(ReportParam& param) const;
    /// A request that needs no argument, answered once the application has taken it.
    void ask(ReportParam&& param,
             void (IHubControl::*method)(std::unique_ptr<rpc_port::IPCProxyBase::proxy::OnEvent> callback),
             const Log::Place& caller = HL_CALLER);
    std::string getHubInfo();
    void saveHubInfo(const std::string& info);
    static void sendHubInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& info);
    void setIds(const std::string& loginId, const std::string& hubDeviceId);

    static void onHubOnboardingChanged(const std::string& data);
    void onHubOnboardingSuccess(const std::string& data);
    static void onHubOnboardingFailed();
    void onHubResetResult(int event);
    static void onHubAgentInstallStarted();
    void onHubDongleStatusChanged(const std::string& data);

    // Shared over each call, so that Stop() cannot free it while in use; never held over a report. A call for the
    // hub info may keep Stop() waiting, for as long as the IPC lets an answer be late.
    SharedMutex _hubControlMutex;
    HUBEventListener _listener;
    std::unique_ptr<IHubControl> _hubControl GUARDED_BY(_hubControlMutex);
    std::atomic<bool> _isConnected{false};

    mutable Mutex _idMutex;  // a leaf
    std::string _hubDeviceId GUARDED_BY(_idMutex);
    std::string _loginIdHubOnboarded GUARDED_BY(_idMutex);

    package_manager_h _packageManager = nullptr;  // touched by Start() and Stop() only

    mutable Mutex _retryMutex;  // a leaf: also over the timer's arming
    bool _isStarted GUARDED_BY(_retryMutex) = false;
    unsigned _timerId GUARDED_BY(_retryMutex) = 0;  // stays when the timer's callback reconnects
    int _connectionInterval GUARDED_BY(_retryMutex) = kConnectionIntervalMs;
    int _retryCount GUARDED_BY(_retryMutex) = 0;

    MainLoopTimer _timer;

    static constexpr int kConnectionIntervalMs = 5000;
};

}  // namespace VMFramework::HomeLoom

#endif
