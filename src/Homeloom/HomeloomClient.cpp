// The session's life: connection, sign-in, disclaimer, registration of callbacks, and the end of it all.
#include "Homeloom/HomeloomClient.h"

#include <cstring>
#include <utility>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Common/WayOut.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/ActiveUserEvent/ActiveUserEventHandler.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/CoreDevices/CoreDeviceHandler.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/ExternalService/ExternalServiceHandler.h"
#include "Homeloom/Favorite/FavoriteHandler.h"
#include "Homeloom/IR/IRHandler.h"
#include "Homeloom/IoTHub/CHubHandler.h"
#include "Homeloom/Life/LifeHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "Homeloom/Tessel/CServerEnvMgr.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"
#include "Homeloom/WifiLocker/WifiLockerHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kDisclaimerKey[] = "db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree";
constexpr int kDisclaimerAccepted = 1;

// The thirteenth failure in a row gives up: twelve tries, a minute in all.
constexpr int kMaxRetryCount = 13;

// The eight kinds of homeloom_core_sse_e that HomeloomClientEvents.cpp handles.
constexpr int kSseMask = HOMELOOM_CORE_SSE_DEVICE_EVENT | HOMELOOM_CORE_SSE_DEVICE_LIFECYCLE |
                         HOMELOOM_CORE_SSE_DEVICE_HEALTH | HOMELOOM_CORE_SSE_SCENE_LIFECYCLE |
                         HOMELOOM_CORE_SSE_INSTALLED_APP_LIFECYCLE | HOMELOOM_CORE_SSE_SMART_APP_EVENT |
                         HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE | HOMELOOM_CORE_SSE_FAVORITE_LIFECYCLE;
static_assert(kSseMask == 0x49907);

// The agent's own state number for "still waiting for the cloud".
constexpr int kAgentStateWaiting = 2;

// The device handler ends its own two threads here; the others' loops run on the scheduler, which is joined after this.
void QuitHandler(DeviceHandler& handler) {
    handler.Deinit();
}
void QuitHandler(Handler& handler) {
    handler.Quit();
}

}  // namespace

HomeloomClient::HomeloomClient(ITesselHandler& agent)
    : _agent(agent),
      _hubHandler(std::make_unique<CHubHandler>(_agent)),
      _favoriteHandler(std::make_unique<FavoriteHandler>(_agent)),
      _sceneHandler(std::make_shared<SceneHandler>(_agent)),
      _routineHandler(std::make_shared<RoutineHandler>(_agent)),
      _irHandler(std::make_unique<IRHandler>(_agent)),
      _locationHandler(std::make_shared<LocationHandler>(_agent)),
      _activeUserEventHandler(std::make_unique<ActiveUserEventHandler>(_agent)),
      _externalServiceHandler(std::make_shared<ExternalServiceHandler>(_agent)),
      _deviceHandler(std::make_shared<DeviceHandler>(_agent)),
      _coreDeviceHandler(std::make_shared<CoreDeviceHandler>(_agent)),
      _lifeHandler(std::make_shared<LifeHandler>(_agent)),
      _wifiLockerHandler(std::make_shared<WifiLockerHandler>(_agent)) {
    CServerEnvMgr::GetInstance().SetAgent(&_agent);
}

HomeloomClient::~HomeloomClient() {
    _isTerminating = true;
    CServerEnvMgr::GetInstance().SetAgent(nullptr);
}

void HomeloomClient::makeReplaceableHandlers() {
    forEachReplaceable([this](auto& slot) {
        using Kind = typename std::decay_t<decltype(slot)>::Handler;
        if (!slot.Get()) {
            slot.Set(std::make_shared<Kind>(_agent));
        }
    });
}

void HomeloomClient::Init() {
    CHLUtil::PrintTimeStamp("PLUGIN LOADING REQUEST");
    const MutexLock lifecycle(_lifecycleMutex);
    initClient();
}

void HomeloomClient::initClient() {
    LogThrown([&] {
        const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
        if (getIsAgentConnected()) {
            HL_LOGI("TesselClient is already created, and agent connected");
            reportPluginReady(true);
            return;
        }
        setAgentStatusUpdateCallback();
        setDisclaimerAgreeChangedCallback();
        boostTesselClient();
        connectClient();
        // A connected event that has arrived meanwhile is a job that waits for the session's mutex.
        bindHandlers();
    });
}

void HomeloomClient::bindHandlers() {
    if (const auto location = _locationHandler.Get()) {
        location->SetGetDevicesInfoCallback([this] { return processGetDevicesInfo(); });
        location->SetProfileUpdateCallback([this](UpdateList reason) { processOnProfileUpdateEvent(reason); });
        location->SetGetFavoritesCallback([this](const std::string& id) { return processGetFavorites(id); });
    }
    if (const auto device = _deviceHandler.Get()) {
        device->SetAccessTokenGetter([this] { return processGetAccessToken(); });
        device->SetIsHubConnectedDevice([this](const std::string& id) { return processIsLocalHubConnectedDevice(id); });
    }
    if (const auto core = _coreDeviceHandler.Get()) {
        core->SetParentDeviceIdGetter([this](const std::string& json) { return processGetParentIdOfIRDevice(json); });
    }
    if (const auto scene = _sceneHandler.Get()) {
        scene->SetGetLocationsCallback([this] { return processGetLocations(); });
    }
    if (const auto routine = _routineHandler.Get()) {
        routine->SetGetLocationsCallback([this] { return processGetLocations(); });
    }
}

// The session's mutex is not held here: teardown joins threads that take it.
void HomeloomClient::deinitClient() {
    LogThrown([&] {
        HL_LOGI("deinitClient Start");
        _isLifecycleOver = true;
        {
            // An update of the agent that is being handled just now comes to its end first.
            const MutexLock barrier(_lifecycleMutex);
        }
        _isTerminating = true;
        _agent.Quit();
        quitHandlers();
        SGTMsgDispatcher::GetInstance().Quit();
        if (const auto location = _locationHandler.Get()) {
            location->UpdatePermission("");
        }
        _retryCounter.Reset();
        setIsAgentConnected(false);
        unsetAgentStatusUpdateCallback();
        unsetDisclaimerAgreeChangedCallback();
        if (const auto location = _locationHandler.Get()) {
            location->CleanUpTimer();
        }
        stopConnectionRetryTimer();
        _connectTimer.Cancel();
        _agent.UnsetSignInStateChangeCb();
        deregisterCallbacks();
        disconnectClient();
        // Nothing of the plug-in outlives this.
        if (const auto device = _deviceHandler.Get()) {
            device->ClearTimers();
        }
        // With the devices go the requests that still wait for an event.
        _deviceHandler.Reset();
        Metadata::GetInstance().StopLanguageWatch();
        _hubHandler->Stop();
        // Also for the timer of a device that had left the list.
        MainLoopTimer::WaitForCallbacks();
        HL_LOGI("deinitClient End");
    });
}

void HomeloomClient::quitHandlers() {
    forEachReplaceable([](auto& slot) {
        if (const auto handler = slot.Get()) {
            QuitHandler(*handler);
        }
    });
}

// ---- Connection ----

void HomeloomClient::connectClient() {
    if (!getDisclaimerAgree()) {
        // No status either: the plug-in stays silent until the setting changes.
        HL_LOGI("disclaimer agree is false, do not connect client");
        return;
    }
    int result = 0;
    {
        const MutexLock gate(_connectGate);
        if (_isTerminating) {
            HL_LOGI("terminating routine is progressing or done");
            return;
        }
        HL_LOGI("try to call homeloom_client_connect");
        _isConnectionWanted = true;
        result = _agent.Connect(_HomeLoomClientConnectionStateChanged, this);
    }
    switch (result) {
        case HOMELOOM_CLIENT_ERROR_NONE:
            HL_LOGI("homeloom_client_connect() requested");
            break;
        case HOMELOOM_CLIENT_ERROR_ALREADY_CONNECTED:
        case HOMELOOM_CLIENT_ERROR_CONNECTION_IN_PROGRESS:
            HL_LOGI("Agent is already connected or in progress");
            break;
        default:
            HL_LOGE("homeloom_client_connect() failed, ret : %d", result);
            startConnectionRetryTimer();
            break;
    }
}

// Only the facade's handle goes: the session counts as connected until the agent says otherwise.
void HomeloomClient::disconnectClient() {
    const MutexLock gate(_connectGate);
    _isConnectionWanted = false;
    const int result = _agent.Disconnect();
    HL_LOGI("homeloom_client_disconnect() ret : %d", result);
    // The agent has dropped its pending calls: what waits for their answers would wait for ever.
    CallbackTokens::DropKept();
}

void HomeloomClient::startConnectionRetryTimer() {
    {
        const MutexLock lock(_retryTimerMutex);
        if (_isTerminating) {
            HL_LOGI("terminating routine is progressing or done");
            return;
        }
        if (_connectTimerId != 0) {
            HL_LOGI("timer exist. skip add timer!");
            return;
        }
        if (_retryCounter.Increase() < kMaxRetryCount) {
            const int interval = _retryCounter.GetInterval();
            HL_LOGI("%d sec delayed, will start Reinit", interval / 1000);
            _connectTimerId = _connectTimer.Start(static_cast<unsigned>(interval), [this] { _ConnectTimerCallback(); });
            if (_connectTimerId == 0) {
                HL_LOGE("g_timeout_add failed");
            } else {
                HL_LOGI("timer:[%u] added", _connectTimerId);
            }
            return;
        }
    }
    HL_LOGE("retry count is max, do not execute retry logic");
    reportPluginReady(false);
}

void HomeloomClient::stopConnectionRetryTimer() {
    const MutexLock lock(_retryTimerMutex);
    if (std::exchange(_connectTimerId, 0U) == 0) {
        HL_LOGI("no timer handle. do nothing");
        return;
    }
    // Its callback is not waited for: it may be in a call of the agent, and the session's mutex is
    // held here.
    _connectTimer.Disarm();
}

void HomeloomClient::_ConnectTimerCallback() {
    stopConnectionRetryTimer();
    if (getIsAgentConnected()) {
        HL_LOGI("already connected");
        reportPluginReady(true);
    } else {
        connectClient();
    }
}

void HomeloomClient::reportPluginReady(bool ready) {
    PluginStatus status = ready ? PluginStatus::Available : PluginStatus::Unavailable;
    if (getConnectionStatus() == kAgentStateWaiting) {
        status = PluginStatus::Waiting;
    }
    HL_LOGI("plugin status : %d", static_cast<int>(status));
    IWayOut::Get().ReportPluginStatus(status);
    CHLUtil::PrintTimeStamp("PLUGIN STATUS REPORTED");
}

int HomeloomClient::getConnectionStatus() {
    if (!getIsAgentConnected()) {
        HL_LOGI("agent not connected. skip!");
        return 0;
    }
    return _agent.GetState();
}

void HomeloomClient::setIsAgentConnected(bool isConnected) {
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    _isAgentConnected = isConnected;
}

bool HomeloomClient::isClientAvailable() const {
    if (_isTerminating) {
        HL_LOGI("manager already deinitialized or not initialized yet");
        return false;
    }
    if (!_isSignedIn) {
        HL_LOGI("account not signed in");
        return false;
    }
    return true;
}

void HomeloomClient::requireClientAvailable() const {
    if (!isClientAvailable()) {
        throw CException("manager not available", kErrorFailed);
    }
}

// ---- Disclaimer ----

bool HomeloomClient::getDisclaimerAgree() {
    int value = 0;
    return vconf_get_int(kDisclaimerKey, &value) == 0 && value == kDisclaimerAccepted;
}

void HomeloomClient::checkDisclaimerAgree() {
    if (getDisclaimerAgree()) {
        connectClient();
    } else {
        disconnectClient();
        _isHomeStale = true;
    }
}

void HomeloomClient::disclaimerAgreeChanged(keynode_t* node, void* userData) {
    if (node == nullptr || userData == nullptr) {
        return;
    }
    Guarded([&] {
        const char* name = vconf_keynode_get_name(node);
        if (name != nullptr && std::strcmp(name, kDisclaimerKey) == 0) {
            static_cast<HomeloomClient*>(userData)->checkDisclaimerAgree();
        }
    });
}

void HomeloomClient::setDisclaimerAgreeChangedCallback() {
    const int result = vconf_notify_key_changed(kDisclaimerKey, disclaimerAgreeChanged, this);
    HL_LOGI("watch of the disclaimer ret : %d", result);
}

void HomeloomClient::unsetDisclaimerAgreeChangedCallback() {
    const int result = vconf_ignore_key_changed(kDisclaimerKey, disclaimerAgreeChanged);
    HL_LOGI("end of the disclaimer's watch ret : %d", result);
}

// ---- Connection state ----

void HomeloomClient::_HomeLoomClientConnectionStateChanged(homeloom_client_error_e result,
                                                           homeloom_client_connection_state_e state, void* userData) {
    HL_LOGI("_HomeLoomClientConnectionStateChanged(): Result [%d] , Status [%d]", static_cast<int>(result),
            static_cast<int>(state));
    if (userData == nullptr) {
        HL_LOGE("User Data is NULL");
        return;
    }
    auto* session = static_cast<HomeloomClient*>(userData);
    if (!session->_isTerminating && state == HOMELOOM_CLIENT_CONNECTION_STATE_IO_ERROR) {
        HL_LOGE("clear all job from sceduler right away");
        session->clearJobFromScheduler();
    }
    queueJob(userData, "_HomeLoomClientConnectionStateChanged",
             [result, state](HomeloomClient& self) { self.onConnectionStateChanged(result, state); });
}

void HomeloomClient::onConnectionStateChanged(homeloom_client_error_e result,
                                              homeloom_client_connection_state_e state) {
    switch (state) {
        case HOMELOOM_CLIENT_CONNECTION_STATE_CONNECTED:
            if (!_isConnectionWanted) {
                // Taken for a connection, it would stop the retry timer while nothing is connected.
                HL_LOGI("connection was let go of meanwhile. skip!");
                return;
            }
            CHLUtil::PrintTimeStamp("TESSEL CLIENT CONNECTED");
            handleAgentConnected();
            reportPluginReady(isClientAvailable());
            return;
        case HOMELOOM_CLIENT_CONNECTION_STATE_DISCONNECTED:
            if (result == HOMELOOM_CLIENT_ERROR_UPDATING) {
                HL_LOGI("Agent Updating - Should be reconnect after update completed");
                return;
            }
            handleAgentDisconnection();
            return;
        case HOMELOOM_CLIENT_CONNECTION_STATE_REJECTED:
            reportPluginReady(false);
            handleAgentDisconnection();
            return;
        case HOMELOOM_CLIENT_CONNECTION_STATE_IO_ERROR:
            disconnectClient();
            handleAgentDisconnection();
            return;
    }
    HL_LOGE("INVALID Status Received.");
}

void HomeloomClient::handleAgentConnected() {
    std::unique_lock<std::recursive_mutex> lock(_sessionMutex);
    if (_isTerminating) {
        throw CException("plugin already deinit!", kErrorFailed);
    }
    setIsAgentConnected(true);
    stopConnectionRetryTimer();
    setCurrentLoginId();

    _agent.UnsetSignInStateChangeCb();
    _agent.SetSignInStateChangeCb(_HomeLoomClientSignInStateChanged, this);

    bool isSignedIn = false;
    _agent.IsSignedIn(isSignedIn);
    updateAccessToken(isSignedIn);
    OnSignInStateChangeEvent(isSignedIn);
    if (!isSignedIn) {
        // The retry counter stays, so that earlier failures count on.
        HL_LOGI("not signed in status, handleAgentConnected End");
        return;
    }
    HL_LOGI("We DO REGISTER callback functions due to ALREADY SIGNED-IN status!");
    if (_isHomeStale.exchange(false)) {
        // The agent's list, which comes by itself, makes the devices anew, and with them their subscriptions.
        deleteDevices();
    }
    registerCallbacks();
    if (_retryCounter.GetCount() > 0) {
        HL_LOGI(
            "after tessel client connection failed, then tessel client connection success, need to get device detail "
            "list");
        buildNewDeviceMap(std::move(lock));
    }
    _retryCounter.Reset();
}

void HomeloomClient::handleAgentDisconnection() {
    setIsAgentConnected(false);
    // Refuses without a connected agent, so that the token survives a lost connection.
    updateAccessToken(false);
    startConnectionRetryTimer();
}

// ---- Sign-in ----

void HomeloomClient::_HomeLoomClientSignInStateChanged(bool isSignedIn, void* userData) {
    HL_LOGI("_HomeLoomClientSignInStateChanged(): isSignedIn: %d", isSignedIn);
    queueJob(userData, "_HomeLoomClientSignInStateChanged",
             [isSignedIn](HomeloomClient& session) { session.onSignInStateChanged(isSignedIn); });
}

void HomeloomClient::onSignInStateChanged(bool isSignedIn) {
    if (isLoginIdChanged()) {
        Metadata::GetInstance().ClearMetadataMaps();
        // Without a sign-out in between the old user's devices are still there. Only new ones get metadata.
        deleteDevices();
    }
    HL_LOGI("_HomeLoomClientSignInStateChanged(): sign in state changed, state : %d", isSignedIn);
    if (!isHomeLoomClientAvailable()) {
        HL_LOGI("not available");
        return;
    }
    if (isSignedIn) {
        registerCallbacks();
    } else {
        deregisterCallbacks();
    }
    OnSignInStateChangeEvent(isSignedIn);
    updateAccessToken(isSignedIn);
}

void HomeloomClient::OnSignInStateChangeEvent(bool isSignedIn) {
    if (_isTerminating) {
        throw CException("manager not available at OnSignInStateChangeEvent", kErrorFailed);
    }
    _isSignedIn = isSignedIn;
    const auto list = IPropertyListHelper::Create();
    list->SetName(Names::SIGN_IN_STATE_CHANGED);
    list->PushBooleanData(Names::IS_SIGN_IN, isSignedIn);
    IWayOut::Get().ReportServiceNotify(list);
    HL_LOGI("is_signed_in(%d) reported to UI", isSignedIn);
    if (!isSignedIn) {
        HL_LOGI("sign out! clear all devices info");
        deleteDevices();
    }
}

// A list build in progress ends first and can't leave a device behind that has gone meanwhile.
void HomeloomClient::deleteDevices() {
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    if (const auto devices = _deviceHandler.Get()) {
        devices->DeleteDeviceMap();
    }
}

void HomeloomClient::updateAccessToken(bool isSignedIn) {
    if (!getIsAgentConnected()) {
        HL_LOGI("agent not connected. skip!");
        return;
    }
    if (!isSignedIn) {
        const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
        const MutexLock account(_accountMutex);
        _accessToken.clear();
        HL_LOGI("NOT signed in state!");
        return;
    }
    Guarded([&] {
        _agent.StoreSigninInfo();
        std::string token;
        _agent.GetAccessToken(token);
        if (token.empty()) {
            throw CException("access token is empty!", kErrorNoData);
        }
        const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
        const MutexLock account(_accountMutex);
        _accessToken = std::move(token);
    });
}

std::string HomeloomClient::GetAccessToken() const {
    const MutexLock account(_accountMutex);
    return _accessToken;
}

void HomeloomClient::setCurrentLoginId() {
    std::string loginId;
    _agent.GetLoginID(loginId);
    const MutexLock account(_accountMutex);
    _loginId = std::move(loginId);
}

// An empty id on either side is no change, and is not stored.
bool HomeloomClient::isLoginIdChanged() {
    std::string loginId;
    _agent.GetLoginID(loginId);
    const MutexLock account(_accountMutex);
    if (loginId.empty() || _loginId.empty() || loginId == _loginId) {
        return false;
    }
    HL_LOGI("login id Changed : old(%s)->new(%s)", _loginId.c_str(), loginId.c_str());
    _loginId = std::move(loginId);
    return true;
}

// ---- Registration ----

void HomeloomClient::registerCallbacks() {
    registerOCFCallback();
    registerSSECallback();
}

void HomeloomClient::deregisterCallbacks() {
    deregisterOCFCallback();
    deregisterSSECallback();
}

void HomeloomClient::registerOCFCallback() {
    if (_isTerminating) {
        HL_LOGI("already quit. return!");
        return;
    }
    if (const auto location = _locationHandler.Get()) {
        location->SetGroupListUpdateCallback();
    }
    _agent.SetDeviceListUpdatedCb(_HomeLoomClientDeviceListChanged, this);
    _agent.SetDeviceDetailListUpdatedCb(_HomeLoomClientDeviceDetailListChanged, this);
}

void HomeloomClient::deregisterOCFCallback() {
    if (const auto location = _locationHandler.Get()) {
        location->UnsetGroupListUpdateCallback();
    }
    _agent.UnsetDeviceListUpdatedCb();
    _agent.UnsetDeviceDetailListUpdatedCb();
    _externalServiceHandler->UnsetThirdPartyNotificationUpdateCb();
}

void HomeloomClient::registerSSECallback() {
    if (_isTerminating) {
        HL_LOGI("already quit. return!");
        return;
    }
    _agent.SetCoreSSECb(kSseMask, _HomeLoomCoreSSEChanged, this);
}

void HomeloomClient::deregisterSSECallback() {
    _agent.UnsetCoreSSECb();
}

// ---- Scheduling ----

void HomeloomClient::AddJobToScheduler(std::function<void()> job, const std::string& name) {
    EnqueueOnScheduler(std::move(job), name);
}

void HomeloomClient::clearJobFromScheduler() {
    Guarded([&] { SGTMsgDispatcher::GetInstance().ClearData(); });
}

// ---- The handlers' ways back ----

bool HomeloomClient::processGetDevicesInfo() {
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    return GetDevicesInfo();
}

void HomeloomClient::processOnProfileUpdateEvent(UpdateList reason) {
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    OnProfileUpdateEvent(reason);
}

std::string HomeloomClient::processGetFavorites(const std::string& locationId) {
    return _favoriteHandler->GetFavoriteData(locationId);
}

std::unordered_map<std::string, core_location_info_struct> HomeloomClient::processGetLocations() {
    const auto location = _locationHandler.Get();
    return location ? location->GetCoreLocations() : std::unordered_map<std::string, core_location_info_struct>();
}

bool HomeloomClient::processIsLocalHubConnectedDevice(const std::string& deviceId) {
    return _hubHandler->IsLocalHubConnectedDevice(deviceId);
}

std::string HomeloomClient::processGetParentIdOfIRDevice(const std::string& deviceJson) {
    return _irHandler->GetParentIdOfIRDevice(deviceJson);
}

}  // namespace VMFramework::HomeLoom
