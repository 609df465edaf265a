// Launches, connects and watches the hub control application, and turns its events into notifications.
#include "Homeloom/IoTHub/HubIPCProxy.h"

#include <exception>
#include <string_view>
#include <utility>

#include <VMFramework/JsonValue.h>
#include <app_manager.h>
#include <system_info.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Common/WayOut.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/IoTHub/HubEventHandler.h"

namespace VMFramework::HomeLoom {

namespace proxy = rpc_port::IPCProxyBase::proxy;

namespace {

constexpr char kHubAppId[] = "com.norvane.tv.iot-hub-control";
// No delegate has this tag, so that disposing of it does nothing: a disconnected port has no delegates any more.
constexpr char kOwnTag[] = "com.norvane.tv.velmora-app";
constexpr char kHubFeature[] = "com.norvane/featureconf/iot_hub.support";

// The thirteenth rejection gives up.
constexpr int kMaxRetryCount = 13;

constexpr int kFailedProgress = -999;

// The hub control application's events. Others are none of the UI's business.
enum HubEvent {
    kOnboardingProgress = 0,
    kOnboardingSuccess = 1,
    kOnboardingFailure = 3,
    kResetSuccess = 4,
    kResetFailure = 5,
    kAgentInstallStarted = 9,
    kDongleStatusChanged = 10
};

// Inside a catch block: what went wrong, in the name of who made the call. Only the last of them is a std::exception.
void LogHubFailure(const Log::Place& caller = HL_CALLER) {
    try {
        throw;
    } catch (const proxy::InvalidIOException&) {
        HL_LOG_AT(DLOG_ERROR, caller, "RPC PORT InvalidIOException");
    } catch (const proxy::PermissionDeniedException&) {
        HL_LOG_AT(DLOG_ERROR, caller, "RPC PORT PermissionDeniedException");
    } catch (const proxy::NotConnectedSocketException&) {
        HL_LOG_AT(DLOG_ERROR, caller, "RPC PORT NotConnectedSocketException");
    } catch (const proxy::InvalidProtocolException&) {
        HL_LOG_AT(DLOG_ERROR, caller, "RPC PORT InvalidProtocolException");
    } catch (const proxy::InvalidIDException&) {
        HL_LOG_AT(DLOG_ERROR, caller, "RPC PORT InvalidIDException");
    } catch (const std::exception& e) {
        Log::WriteException(caller, e);
    }
}

std::shared_ptr<IPropertyListHelper> MakeNotify(const char* name) {
    auto list = IPropertyListHelper::Create();
    list->SetName(name);
    return list;
}

void NotifyProgress(int progress) {
    const auto list = MakeNotify(Names::HL_HUB_ONBOARDING_PROGRESS);
    list->PushIntData(Names::HL_HUB_PROGRESS, progress);
    IWayOut::Get().ReportServiceNotify(list);
}

void NotifyText(const char* name, const char* key, const std::string& text) {
    const auto list = MakeNotify(name);
    list->PushStringData(key, text);
    IWayOut::Get().ReportServiceNotify(list);
}

std::unique_ptr<HubEventHandler> MakeDelegate() {
    return std::make_unique<HubEventHandler>();
}

}  // namespace

// ---- Start and stop ----

void HubIPCProxy::Start() {
    if (!isHubSupport()) {
        HL_LOGI("hub is not support, do not proceed");
        return;
    }
    if (!makeHubControl()) {
        return;
    }
    {
        const MutexLock lock(_retryMutex);
        _isStarted = true;
    }
    setPackageManagerEvent();
    if (!isInstalledHubApp()) {
        HL_LOGI("hub control app is not installed, do not proceed.");
        return;
    }
    resetRetries();
    ConnectHub();
}

void HubIPCProxy::Stop() {
    HL_LOGI("Stop START");
    {
        // Before the timer goes: a rejection that comes just now must not arm it again.
        const MutexLock lock(_retryMutex);
        _isStarted = false;
    }
    stopHubConnectionTimer();
    _timer.Cancel();
    unsetPackageManagerEvent();
    HandleDisconnectedHub();
    std::unique_ptr<IHubControl> ended;
    {
        const Locked<SharedMutex> lock(_hubControlMutex);
        ended = std::move(_hubControl);
    }
    // Waits for the listener or a delegate that is running: not under the lock, which that one may want.
    ended.reset();
    // It may have connected in the meantime.
    SetHubControlEnable(false);
    HL_LOGI("Stop END");
}

bool HubIPCProxy::isHubSupport() {
    bool isSupported = false;
    if (system_info_get_custom_bool(kHubFeature, &isSupported) != 0) {
        HL_LOGE("Fail to get system info %s", kHubFeature);
        return false;
    }
    return isSupported;
}

bool HubIPCProxy::isInstalledHubApp() {
    app_info_h info = nullptr;
    if (app_manager_get_app_info(kHubAppId, &info) != 0) {
        return false;
    }
    app_info_destroy(info);
    return true;
}

bool HubIPCProxy::makeHubControl() {
    const Locked<SharedMutex> lock(_hubControlMutex);
    if (_hubControl) {
        return true;
    }
    try {
        _hubControl = std::make_unique<IHubControl>(&_listener, kHubAppId);
        return true;
    } catch (...) {
        LogHubFailure();
        return false;
    }
}

// ---- The application's package ----

void HubIPCProxy::setPackageManagerEvent() {
    if (_packageManager != nullptr) {
        HL_LOGI("already has package manager handle, do not proceed.");
        return;
    }
    package_manager_h manager = nullptr;
    int result = package_manager_create(&manager);
    if (result != PACKAGE_MANAGER_ERROR_NONE) {
        HL_LOGE("fail to create package manager, result : %d", result);
        return;
    }
    result = package_manager_set_event_cb(manager, onPackageEventHandler, this);
    if (result != PACKAGE_MANAGER_ERROR_NONE) {
        HL_LOGE("fail to set package event handler, result : %d", result);
        package_manager_destroy(manager);
        return;
    }
    _packageManager = manager;
}

void HubIPCProxy::unsetPackageManagerEvent() {
    const package_manager_h manager = std::exchange(_packageManager, nullptr);
    if (manager == nullptr) {
        HL_LOGI("package manager handle doesn't exist, do not proceed.");
        return;
    }
    package_manager_unset_event_cb(manager);
    package_manager_destroy(manager);
}

void HubIPCProxy::onPackageEventHandler(const char*, const char* package, package_manager_event_type_e eventType,
                                        package_manager_event_state_e eventState, int, package_manager_error_e error,
                                        void* userData) {
    const bool isNew =
        eventType == PACKAGE_MANAGER_EVENT_TYPE_INSTALL || eventType == PACKAGE_MANAGER_EVENT_TYPE_UPDATE;
    if (!isNew || eventState != PACKAGE_MANAGER_EVENT_STATE_COMPLETED || error != PACKAGE_MANAGER_ERROR_NONE ||
        userData == nullptr || package == nullptr || std::string_view(package) != kHubAppId) {
        return;
    }
    auto& self = *static_cast<HubIPCProxy*>(userData);
    if (self._isConnected) {
        HL_LOGI("hub control app is already connected, do not proceed.");
        return;
    }
    HL_LOGI("iot-hub-control app is installed or updated, try to connect");
    self.HandleHubConnection();
}

// ---- Connection ----

void HubIPCProxy::ConnectHub() {
    callHub([](IHubControl& hub) { hub.Connect(false); });
}

void HubIPCProxy::SetHubControlEnable(bool isConnected) {
    _isConnected = isConnected;
}

void HubIPCProxy::HandleHubConnection() {
    const MutexLock lock(_retryMutex);
    if (!_isStarted) {
        return;
    }
    // The id stays set after a retry: if that one is rejected too, it was the last.
    if (_timerId != 0) {
        HL_LOGI("already has timer, do not proceed.");
        return;
    }
    if (++_retryCount >= kMaxRetryCount) {
        HL_LOGI("retry count is max, do not proceed.");
        return;
    }
    HL_LOGI("%d sec delayed, will connect hub", _connectionInterval / 1000);
    _timerId = _timer.Start(static_cast<unsigned>(_connectionInterval), [this] { onHubConnectionTimerCallback(); });
    if (_timerId == 0) {
        HL_LOGE("invalid timer for hub connection updated");
    }
}

void HubIPCProxy::onHubConnectionTimerCallback() {
    if (_isConnected) {
        HL_LOGI("already connected");
        stopHubConnectionTimer();
    } else {
        ConnectHub();
    }
}

void HubIPCProxy::stopHubConnectionTimer() {
    const MutexLock lock(_retryMutex);
    _timerId = 0;
    _timer.Disarm();
}

// Doesn't connect again: the next connection comes with the application's next package.
void HubIPCProxy::HandleDisconnectedHub() {
    callHub([](IHubControl& hub) { hub.DisposeCallback(kOwnTag); });
    HL_LOGI("called dispose callback");
    SetHubControlEnable(false);
    resetRetries();
}

void HubIPCProxy::resetRetries() {
    const MutexLock lock(_retryMutex);
    _connectionInterval = kConnectionIntervalMs;
    _retryCount = 0;
}

template <typename Call>
bool HubIPCProxy::callHub(const Call& call, const Log::Place& caller) {
    try {
        const SharedLock lock(_hubControlMutex);
        if (!_hubControl) {
            return false;
        }
        call(*_hubControl);
        return true;
    } catch (...) {
        LogHubFailure(caller);
        return false;
    }
}

void HubIPCProxy::SetEventCallback() {
    callHub([](IHubControl& hub) { hub.SetEventCallback(MakeDelegate()); });
}

// ---- Requests. A call that fails leaves its request without an answer ----

bool HubIPCProxy::isHubIPCConnected(ReportParam& param) const {
    if (_isConnected) {
        return true;
    }
    HL_LOGI("hub control app is not connected, do not proceed.");
    Reporter::Report(param);
    return false;
}

void HubIPCProxy::StartOnboarding(const std::shared_ptr<CTransaction>& transaction, const std::string& accessToken,
                                  const std::string& locationId, const std::string& roomId) {
    StartHubOnboardingParam param(transaction);
    if (!isHubIPCConnected(param)) {
        return;
    }
    HL_LOGI("StartOnboarding location_id : %s, room_id : %s", locationId.c_str(), roomId.c_str());
    if (locationId.empty()) {
        HL_LOGE("location id is empty, onboarding failed");
        onHubOnboardingFailed();
        return;
    }
    if (callHub([&](IHubControl& hub) { hub.StartOnboarding(accessToken, locationId, roomId, MakeDelegate()); })) {
        Reporter::Report(param);
    }
}

void HubIPCProxy::ask(ReportParam&& param, void (IHubControl::*method)(std::unique_ptr<proxy::OnEvent>),
                      const Log::Place& caller) {
    if (isHubIPCConnected(param) && callHub([method](IHubControl& hub) { (hub.*method)(MakeDelegate()); }, caller)) {
        Reporter::Report(param);
    }
}

void HubIPCProxy::StopOnboarding(const std::shared_ptr<CTransaction>& transaction) {
    ask(StopHubOnboardingParam(transaction), &IHubControl::StopOnboarding);
}

void HubIPCProxy::ResetHub(const std::shared_ptr<CTransaction>& transaction) {
    ask(ResetHubParam(transaction), &IHubControl::ResetHub);
}

void HubIPCProxy::ResetDongle(const std::shared_ptr<CTransaction>& transaction) {
    ask(ResetDongleParam(transaction), &IHubControl::ResetDongle);
}

void HubIPCProxy::GetHubInfo(const std::shared_ptr<CTransaction>& transaction) {
    GetHubInfoParam param(transaction);
    if (isHubIPCConnected(param)) {
        sendHubInfo(transaction, getHubInfo());
    }
}

// ---- Hub info ----

std::string HubIPCProxy::getHubInfo() {
    std::string info;
    const bool isRead = callHub([&info](IHubControl& hub) {
        hub.GetHubInfo(info);
        HL_LOGI("Hub Info : %s", info.c_str());
    });
    return isRead ? info : "";
}

void HubIPCProxy::saveHubInfo(const std::string& info) {
    Guarded([&] {
        const json::JsonValue document = json::JsonValue::Create(info);
        if (!document.isObject()) {
            HL_LOGE("hub info is no JSON object");
            return;
        }
        const std::string loginId = document["user_id"].asString();
        const std::string hubDeviceId = document["hub_di"].asString();
        setIds(loginId, hubDeviceId);
        HL_LOGI("hub onboarded login id : %s, hub device id : %s", loginId.c_str(), hubDeviceId.c_str());
    });
}

void HubIPCProxy::sendHubInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& info) {
    GetHubInfoParam param(transaction);
    param.hlHubInfo = info;
    Reporter::Report(param);
}

void HubIPCProxy::GetAndSaveHubInfo() {
    if (!_isConnected) {
        HL_LOGI("hub control app is not connected, do not proceed.");
        return;
    }
    const std::string info = getHubInfo();
    saveHubInfo(info);
    sendHubInfo(nullptr, info);
}

void HubIPCProxy::setIds(const std::string& loginId, const std::string& hubDeviceId) {
    const MutexLock lock(_idMutex);
    _loginIdHubOnboarded = loginId;
    _hubDeviceId = hubDeviceId;
}

std::string HubIPCProxy::GetLoginIDHubOnboarded() const {
    const MutexLock lock(_idMutex);
    return _loginIdHubOnboarded;
}

std::string HubIPCProxy::GetHubDeviceID() const {
    const MutexLock lock(_idMutex);
    return _hubDeviceId;
}

// ---- Events ----

void HubIPCProxy::SendEvent(int event, const std::string& data) {
    switch (event) {
        case kOnboardingProgress:
            onHubOnboardingChanged(data);
            break;
        case kOnboardingSuccess:
            onHubOnboardingSuccess(data);
            break;
        case kOnboardingFailure:
            onHubOnboardingFailed();
            break;
        case kResetSuccess:
        case kResetFailure:
            onHubResetResult(event);
            break;
        case kAgentInstallStarted:
            onHubAgentInstallStarted();
            break;
        case kDongleStatusChanged:
            onHubDongleStatusChanged(data);
            break;
        default:
            break;
    }
}

// Data that is no number throws, out of the event: nobody here could make anything of it.
void HubIPCProxy::onHubOnboardingChanged(const std::string& data) {
    NotifyProgress(std::stoi(data));
}

void HubIPCProxy::onHubOnboardingSuccess(const std::string& data) {
    NotifyText(Names::HL_HUB_ONBOARDING_PROGRESS, Names::HL_HUB_ONBOARDING_SUCCESS_DATA, data);
    GetAndSaveHubInfo();
}

void HubIPCProxy::onHubOnboardingFailed() {
    NotifyProgress(kFailedProgress);
}

void HubIPCProxy::onHubResetResult(int event) {
    switch (event) {
        case kResetSuccess:
            NotifyText(Names::HL_RESET_HUB_RESULT, Names::HL_RESET_HUB_RESULT_DATA, "success");
            setIds("", "");
            break;
        case kResetFailure:
            NotifyText(Names::HL_RESET_HUB_RESULT, Names::HL_RESET_HUB_RESULT_DATA, "fail");
            break;
        default:
            HL_LOGE("Wrong Hub reset event");
            break;
    }
}

void HubIPCProxy::onHubAgentInstallStarted() {
    NotifyText(Names::HL_HUB_ONBOARDING_PROGRESS, Names::HL_HUB_AGENT_INSTALL_STARTED, "hub_agent_install_started");
}

void HubIPCProxy::onHubDongleStatusChanged(const std::string& data) {
    HL_LOGI("dongle status : %s", data.c_str());
    sendHubInfo(nullptr, getHubInfo());
}

}  // namespace VMFramework::HomeLoom
