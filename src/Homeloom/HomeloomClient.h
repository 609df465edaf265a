#ifndef HOMELOOM_HOMELOOM_HOMELOOMCLIENT_H
#define HOMELOOM_HOMELOOM_HOMELOOMCLIENT_H

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <homeloom_client.h>
#include <homeloom_core.h>
#include <vconf.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/Mutex.h"
#include "Homeloom/Canvas/Canvas.h"
#include "Homeloom/Common/HandlerSlot.h"
#include "Homeloom/Common/MainLoopTimer.h"
#include "Homeloom/Connector.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/RetryCounter.h"
#include "Homeloom/Tessel/CTesselUpdateChecker.h"

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

class ActiveUserEventHandler;
class CHubHandler;
class CTransaction;
class CameraDevice;
class CoreDeviceHandler;
class DeviceHandler;
class ExternalServiceHandler;
class FavoriteHandler;
class IPropertyListHelper;
class IRHandler;
class ITesselHandler;
class LifeHandler;
class LocationHandler;
class RoutineHandler;
class SceneHandler;
class WifiLockerHandler;
struct device_resource_info_struct;

/// The session with the client agent: connects, follows the user's sign-in and the privacy disclaimer, owns the
/// handlers, builds the device list, routes events and carries out requests.
///
/// Two notions of "available" are to be kept apart: isHomeLoomClientAvailable() is the agent's connection,
/// isClientAvailable() is a signed-in user in a session that is not ending.
///
/// Locks, in this order: the session's mutex, the facade's; the session's mutex, the device handler's, the metadata's.
/// The agent's callback threads take none of these: they copy, queue and return.
///
/// Its sources, by concern: HomeloomClient.cpp (connection, sign-in, start and stop),
/// HomeloomClientUpdate.cpp (an update of the agent), HomeloomClientDeviceList.cpp, HomeloomClientEvents.cpp,
/// HomeloomClientRequests.cpp, HomeloomClientMediaRequests.cpp (cameras and refrigerator),
/// HomeloomClientServiceRequests.cpp.
class HomeloomClient : public Connector {
public:
    /// Makes the handlers. Connects nothing.
    explicit HomeloomClient(ITesselHandler& agent);
    ~HomeloomClient() override;
    HomeloomClient(const HomeloomClient&) = delete;
    HomeloomClient& operator=(const HomeloomClient&) = delete;

    void Init();
    void Deinit() { deinitClient(); }

    // ---- Device list ----

    /// What the framework's device list request does: the whole list if there is none yet, otherwise fresh texts.
    void StartScan();
    /// Refreshes one device's values; the answer is a state notification. False if they can't be asked for.
    bool GetProperty(const std::string& deviceId);
    /// Tells other processes, by a setting, whether there is anything to show.
    void SetCostEfficiency();

    // ---- Requests. A guard that refuses leaves the request without an answer; everything else answers through
    // Reporter ----

    using Transaction = std::shared_ptr<CTransaction>;

    /// The main action of a device. 'actionUrl' picks one action, for a sub device card; empty picks the first that
    /// is visible.
    void SetProperty(const Transaction& transaction, const std::string& deviceId, const std::string& actionUrl);
    void ChangeDeviceName(const Transaction& transaction, const std::string& deviceId, const std::string& name);
    void DeleteDevice(const Transaction& transaction, const std::shared_ptr<IPropertyListHelper>& list);
    void GetDeviceIcons(const Transaction& transaction, const std::string& deviceId);
    void OnboardIrDevice(const Transaction& transaction, const std::shared_ptr<IPropertyListHelper>& list);

    void CreateRoom(const Transaction& transaction, const std::string& locationId, const std::string& roomName);
    void RemoveRoom(const Transaction& transaction, const std::string& locationId, const std::string& roomId);
    void ChangeRoomName(const Transaction& transaction, const std::string& locationId, const std::string& roomId,
                        const std::string& roomName);
    void MoveDevices(const Transaction& transaction, int count, const std::string& deviceIds,
                     const std::string& locationId, const std::string& roomId);

    void CreateFavorite(const Transaction& transaction, const std::string& locationId, const std::string& info);
    void DeleteFavorite(const Transaction& transaction, const std::string& locationId, const std::string& favoriteId);
    void ReplaceFavorites(const Transaction& transaction, const std::string& locationId, const std::string& infoArray);
    void GetFavorites(const Transaction& transaction, const std::string& locationId);
    void GetFavoriteMigrationStatus(const Transaction& transaction, const std::string& locationId);
    void UpdateFavoriteMigrationStatus(const Transaction& transaction, const std::string& locationId,
                                       const std::string& statusInfo);

    void ExecuteScene(const Transaction& transaction, const std::string& locationId, const std::string& sceneId);
    void CreateScene(const Transaction& transaction, const std::string& locationId, const std::string& sceneJson);
    void UpdateScene(const Transaction& transaction, const std::string& locationId, const std::string& sceneId,
                     const std::string& sceneJson);
    void DeleteScene(const Transaction& transaction, const std::string& locationId, const std::string& sceneId);
    void GetSceneIconInfo(const Transaction& transaction);
    void UpdateRoutineStatus(const Transaction& transaction, const std::string& locationId,
                             const std::string& routineId, bool enable);

    void RequestStartHubOnboarding(const Transaction& transaction, const std::string& locationId,
                                   const std::string& roomId);
    void RequestStopHubOnboarding(const Transaction& transaction);
    void RequestResetHub(const Transaction& transaction);
    void RequestResetDongle(const Transaction& transaction);
    void RequestGetHubInfo(const Transaction& transaction);
    void StartHubDeviceDiscovery(const Transaction& transaction, const std::string& locationId,
                                 const std::string& hubId, int timeout);
    void StopHubDeviceDiscovery(const Transaction& transaction, const std::string& locationId,
                                const std::string& hubId);

    void GetAvpCameraUrl(const Transaction& transaction, const std::string& deviceId);
    void GetNoneAvpCameraUrl(const Transaction& transaction, const std::string& deviceId);
    void GetRingDoorBellUrl(const Transaction& transaction, const std::string& deviceId);
    void SetCameraNotification(const Transaction& transaction, const std::string& deviceId, int type);
    void UnsetCameraNotification(const Transaction& transaction, const std::string& deviceId, int type);
    void GetRefrigeratorInnerviewUrl(const Transaction& transaction, const std::string& deviceId);
    void RequestExecuteCommand(const Transaction& transaction, const std::string& deviceId,
                               const std::string& component, const std::string& capability, const std::string& command,
                               const std::string& argument);
    void RequestGetStatusOfCapability(const Transaction& transaction, const std::string& deviceId,
                                      const std::string& component, const std::string& capability);

    void SetThirdPartyNotification(const Transaction& transaction, const std::string& provider,
                                   const std::string& regId, const std::string& appId, const std::string& locale);
    void GetThirdPartyNotification(const Transaction& transaction);
    void SetThirdPartyNotificationStatus(const Transaction& transaction, const std::string& blockDeviceIds);
    // Spelt so.
    void GetThridPartyNotificationStatus(const Transaction& transaction);

    void GetInstalledServiceAppInfo(const Transaction& transaction, const std::string& locationId);
    void GetEnergyInfo(const Transaction& transaction, const std::string& installedAppId);
    void SendActiveUserEvent(const Transaction& transaction, int category, int action, const std::string& label,
                             const std::string& metadata);
    void GetWifiLockerUserSetting(const Transaction& transaction);
    void SetWifiLockerUserSetting(const Transaction& transaction, const std::string& settingJson);
    void CreateLocksmithKeyValue(const Transaction& transaction, const std::string& key, const std::string& value);
    void GetLocksmithKeyValue(const Transaction& transaction, const std::string& key);
    void UpdateLocksmithKeyValue(const Transaction& transaction, const std::string& key, const std::string& value);
    void DeleteLocksmithKeyValue(const Transaction& transaction, const std::string& key);
    void SetServerEnv(const Transaction& transaction, int iotCloud, int uiMeta);
    void GetAccessTokenUid(const Transaction& transaction);

private:
    // ---- Session (HomeloomClient.cpp) ----

    bool isClientAvailable() const;
    bool isHomeLoomClientAvailable() const { return getIsAgentConnected(); }
    bool getIsAgentConnected() const { return _isAgentConnected; }
    std::string GetAccessToken() const;

    // Connector
    bool processGetDevicesInfo() override;
    void processOnProfileUpdateEvent(UpdateList reason) override;
    std::string processGetFavorites(const std::string& locationId) override;
    std::unordered_map<std::string, core_location_info_struct> processGetLocations() override;
    std::string processGetAccessToken() override { return GetAccessToken(); }
    bool processIsLocalHubConnectedDevice(const std::string& deviceId) override;
    std::string processGetParentIdOfIRDevice(const std::string& deviceJson) override;

    void initClient();
    void deinitClient();
    void makeReplaceableHandlers();
    void bindHandlers();
    void connectClient();
    void disconnectClient();
    void startConnectionRetryTimer();
    void stopConnectionRetryTimer();
    void reportPluginReady(bool ready);
    int getConnectionStatus();
    void setIsAgentConnected(bool isConnected);
    /// Throws CException "manager not available" unless isClientAvailable().
    void requireClientAvailable() const;

    bool getDisclaimerAgree();
    void checkDisclaimerAgree();
    void setDisclaimerAgreeChangedCallback();
    void unsetDisclaimerAgreeChangedCallback();

    void onConnectionStateChanged(homeloom_client_error_e result, homeloom_client_connection_state_e state);
    void handleAgentConnected();
    void handleAgentDisconnection();
    void onSignInStateChanged(bool isSignedIn);
    void OnSignInStateChangeEvent(bool isSignedIn);
    void deleteDevices();
    void updateAccessToken(bool isSignedIn);
    void setCurrentLoginId();
    bool isLoginIdChanged();

    void registerCallbacks();
    void deregisterCallbacks();
    void registerOCFCallback();
    void deregisterOCFCallback();
    void registerSSECallback();
    void deregisterSSECallback();

    /// Neither throws: an agent callback must not end in an exception.
    void AddJobToScheduler(std::function<void()> job, const std::string& name);
    /// What the agent's callbacks do: queues the job, which gets the session. Neither queues nor runs it once the
    /// session is ending.
    template <typename Job>
    static void queueJob(void* userData, const char* name, Job job, const Log::Place& caller = HL_CALLER);
    void clearJobFromScheduler();

    void _ConnectTimerCallback();
    static void disclaimerAgreeChanged(keynode_t* node, void* userData);
    static void _HomeLoomClientConnectionStateChanged(homeloom_client_error_e result,
                                                      homeloom_client_connection_state_e state, void* userData);
    static void _HomeLoomClientSignInStateChanged(bool isSignedIn, void* userData);

    // ---- An update of the agent (HomeloomClientUpdate.cpp) ----

    void setAgentStatusUpdateCallback();
    void unsetAgentStatusUpdateCallback();
    void agentChangedCb(_EReqType type);
    void deinitClientByAgentUpdate();
    void initClientByAgentUpdate();
    void boostTesselClient();
    void quitHandlers();

    // ---- Device list (HomeloomClientDeviceList.cpp) ----

    bool GetDevicesInfo();
    bool GetProperty(const std::shared_ptr<Device>& device);
    void OnProfileUpdateEvent(UpdateList reason);
    void OnMetadataUpdateEvent();
    bool NeedHubReset();
    /// Takes over the session's lock, and gives it up when the devices are there: the cloud may be asked then.
    void buildNewDeviceMap(std::unique_lock<std::recursive_mutex> sessionLock);
    void buildDeviceDetailList(homeloom_client_device_detail_h* list, int count);
    /// False for a record that is to be skipped.
    bool readDeviceDetail(homeloom_client_device_detail_h detail, Device::_deviceInfo& info,
                          std::vector<std::string>& uris, std::vector<std::string>& osvUris);
    static std::string getDeviceType(const std::vector<std::string>& types);
    void createCanvas();
    void createCanvasMap();
    std::string getCoreCanvas(const std::string& presentationId, const std::string& manufacturerName);
    void sendDeviceInfoToUI();
    void tryGetMetadata(const std::string& vid);
    bool needHubResetWithDeviceList(const std::vector<std::string>& deviceIds);
    bool checkHubResetPreCondition(const std::string& hubId);
    bool requestIsHubExist(const std::string& hubId);
    void resetHubIf(bool isGone);

    // ---- Events (HomeloomClientEvents.cpp) ----

    static void _HomeLoomCoreSSEChanged(homeloom_core_sse_e type, long long timestamp, const char* json,
                                        void* userData);
    static void _HomeLoomClientDeviceListChanged(homeloom_client_device_h* list, int count, void* userData);
    static void _HomeLoomClientDeviceDetailListChanged(homeloom_client_device_detail_h* list, int count,
                                                       void* userData);
    void handleSseEvent(homeloom_core_sse_e type, const std::string& json);
    void handleSseDeviceEvent(const std::string& json);
    void handleSseDeviceLifecycleEvent(const std::string& json);
    void handleSseDeviceHealthEvent(const std::string& json);
    void handleSseSceneLifecycleEvent(const std::string& json);
    void handleSseRoutineLifecycleEvent(const std::string& json);
    void handleSseFavoriteLifecycleEvent(const std::string& json);
    void handleSseInstalledAppLifecycleEvent(const std::string& json);
    void handleSseSmartAppEvent(const std::string& json);
    void handleLocalhubDeviceEvent(const json::JsonValue& event);
    void handleWebrtcDeviceEvent(const std::string& deviceId, const std::string& json);
    bool needUpdateSseDeviceList(const json::JsonValue& event);
    bool handleSseDeviceListUpdated(const json::JsonValue& event);
    std::string getCapabilityStateText(const std::string& vid, const std::string& state);
    bool getCapabilityActiveState(const std::string& vid, const std::string& state);
    void OnCapabilityUpdateEvent(const std::string& deviceId, const std::string& state, const std::string& stateText,
                                 int activeState);
    void setCoreButtonStandbyTimer(const std::shared_ptr<Device>& device, const std::string& state);
    void OnDeviceStatusUpdateEvent(const std::string& deviceId, int status);
    void OnDeviceListUpdateEvent(const std::vector<std::string>& deviceIds);
    void onDeviceListChanged(const std::vector<std::string>& deviceIds);
    void onDeviceListEmpty();

    // ---- Requests (HomeloomClientRequests.cpp) ----

    static void _HomeLoomClientDeviceRemoteRepresentationChanged(int error, const char* deviceId,
                                                                 const char* attributes, const char* uri,
                                                                 const char* resDataType, void* userData);
    void setValue(const Transaction& transaction, const std::string& deviceId, const std::string& uri,
                  const std::string& rcpString);
    void onRemoteRepresentationChanged(const Transaction& transaction, const std::string& deviceId,
                                       const std::string& attributes, const std::string& uri,
                                       const std::string& resDataType);
    void OnSetPropertyEvent(const Transaction& transaction, const std::string& result,
                            const device_resource_info_struct& info);
    void notifyFailedResult(const Transaction& transaction, const std::string& deviceId);
    void executeCapabilityDevice(const Transaction& transaction, const std::string& deviceId, const std::string& vid);
    static bool makeMainAction(const std::shared_ptr<Device>& device, std::string& url, std::string& rcpString);
    bool isRefusedWithoutAgent() const;
    bool isSkippedWithoutAgent() const;
    /// Null, and logged, for a device that is none.
    std::shared_ptr<CameraDevice> findCamera(const std::string& deviceId) const;
    /// Hands a request that is not refused, or an event, to the handler's method. Logs when there is no handler: what
    /// arrives during an update of the agent ends there, a request without an answer.
    template <typename Handler, typename Method, typename... Args>
    static void forward(bool isRefused, const HandlerSlot<Handler>& slot, Method method, const Args&... args);
    /// Hands a request to the camera. Where none has that id, the answer is 'failure', with the id.
    template <typename Param, typename Call>
    void askCamera(Param failure, const std::string& deviceId, const Call& call);
    /// Calls an operation of the agent's key-value store and answers with what it tells.
    template <typename Param, typename Operation, typename... Args>
    void askLocksmith(const Transaction& transaction, Operation operation, const Args&... args);
    /// Calls the function with each slot whose handler an update of the agent replaces, the devices' first.
    template <typename Function>
    void forEachReplaceable(const Function& function);
    /// The device, if it is one of that class.
    template <typename Kind>
    std::shared_ptr<Kind> findDeviceOf(const std::string& deviceId) const;

    // ---- State ----

    ITesselHandler& _agent;

    // Written under the session's mutex.
    std::atomic<bool> _isAgentConnected{false};
    std::atomic<bool> _isTerminating{false};
    std::atomic<bool> _isSignedIn{false};
    // The user has withdrawn the disclaimer: the subscriptions went with the agent's handle, the devices stayed.
    std::atomic<bool> _isHomeStale{false};

    mutable Mutex _accountMutex;  // a leaf
    std::string _accessToken GUARDED_BY(_accountMutex);
    std::string _loginId GUARDED_BY(_accountMutex);

    // Outermost: start, and what an update of the agent does, one at a time. Teardown sets the latch and passes the
    // mutex once; from then on an update does nothing.
    Mutex _lifecycleMutex;
    std::atomic<bool> _isLifecycleOver{false};
    // Between the lifecycle's and the gate. Recursive, so that no compiler checks it.
    mutable std::recursive_mutex _sessionMutex;
    // Held around {still wanted? connect}: once teardown has disconnected, no timer and no setting connects again.
    Mutex _connectGate ACQUIRED_AFTER(_lifecycleMutex);
    mutable Mutex _retryTimerMutex ACQUIRED_AFTER(_connectGate);  // a leaf: also over the timer's arming
    unsigned _connectTimerId GUARDED_BY(_retryTimerMutex) = 0;
    MainLoopTimer _connectTimer;
    // From asking for a connection to letting go of it. Written under the gate. What was told of a connection in
    // between may still wait in the scheduler afterwards.
    std::atomic<bool> _isConnectionWanted{false};

    RetryCounter _retryCounter;
    CTesselUpdateChecker _updateChecker;

    // The handlers stand last and so go first, while all that they come back to is still there.
    Canvas _canvas;
    std::unique_ptr<CHubHandler> _hubHandler;
    std::unique_ptr<FavoriteHandler> _favoriteHandler;
    HandlerSlot<SceneHandler> _sceneHandler;
    HandlerSlot<RoutineHandler> _routineHandler;
    std::unique_ptr<IRHandler> _irHandler;
    HandlerSlot<LocationHandler> _locationHandler;
    std::unique_ptr<ActiveUserEventHandler> _activeUserEventHandler;
    std::shared_ptr<ExternalServiceHandler> _externalServiceHandler;
    HandlerSlot<DeviceHandler> _deviceHandler;
    HandlerSlot<CoreDeviceHandler> _coreDeviceHandler;
    HandlerSlot<LifeHandler> _lifeHandler;
    std::shared_ptr<WifiLockerHandler> _wifiLockerHandler;
};

template <typename Job>
void HomeloomClient::queueJob(void* userData, const char* name, Job job, const Log::Place& caller) {
    auto* const session = static_cast<HomeloomClient*>(userData);
    if (session == nullptr || session->_isTerminating) {
        return;
    }
    auto runUnlessEnding = [session, job = std::move(job)]() mutable {
        if (!session->_isTerminating) {
            job(*session);
        }
    };
    Guarded([&] { session->AddJobToScheduler(std::move(runUnlessEnding), name); }, caller);
}

template <typename Handler, typename Method, typename... Args>
void HomeloomClient::forward(bool isRefused, const HandlerSlot<Handler>& slot, Method method, const Args&... args) {
    if (isRefused) {
        return;
    }
    if (const auto handler = slot.Get()) {
        (*handler.*method)(args...);
    } else {
        HL_LOGE("handler is gone, what it was asked ends here");
    }
}

template <typename Function>
void HomeloomClient::forEachReplaceable(const Function& function) {
    function(_deviceHandler);
    function(_coreDeviceHandler);
    function(_routineHandler);
    function(_sceneHandler);
    function(_locationHandler);
    function(_lifeHandler);
}

}  // namespace VMFramework::HomeLoom

#endif
