// The framework's requests. Most check one guard and forward to the handler that owns the subject.

#include <memory>
#include <mutex>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/CText.h"
#include "Common/CTransaction.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/ActiveUserEvent/ActiveUserEventHandler.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Favorite/FavoriteHandler.h"
#include "Homeloom/HomeloomClient.h"
#include "Homeloom/IoTHub/CHubHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kSuccess[] = "true";
constexpr char kFailure[] = "false";

/// What waits for the agent's answer to a main action.
struct PendingAction {
    HomeloomClient* session;
    std::shared_ptr<CTransaction> transaction;
};

}  // namespace

// The guards. A request that is refused gets no answer: the load status has told the framework not to ask.

bool HomeloomClient::isRefusedWithoutAgent() const {
    if (isHomeLoomClientAvailable()) {
        return false;
    }
    HL_LOGI("hl-client is not available");
    return true;
}

bool HomeloomClient::isSkippedWithoutAgent() const {
    if (getIsAgentConnected()) {
        return false;
    }
    HL_LOGI("agent not connected. skip!");
    return true;
}

// ---- The main action ----

void HomeloomClient::SetProperty(const Transaction& transaction, const std::string& deviceId,
                                 const std::string& actionUrl) {
    requireClientAvailable();
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    const auto device = devices ? devices->FindDevice(deviceId) : nullptr;
    if (!device) {
        HL_LOGE("failed to find device");
        notifyFailedResult(transaction, deviceId);
        return;
    }
    if (_hubHandler->IsLocalHubConnectedDevice(deviceId)) {
        HL_LOGI("execute local hub connected device");
        executeCapabilityDevice(transaction, deviceId, devices->GetVid(deviceId));
        return;
    }
    std::string url = actionUrl;
    std::string rcpString;
    bool isReady = false;
    {
        // The device's values are read under its handler's mutex, which is given up before the agent is called.
        const auto deviceLock = devices->Lock();
        isReady = makeMainAction(device, url, rcpString);
    }
    if (isReady) {
        setValue(transaction, deviceId, url, rcpString);
    } else {
        notifyFailedResult(transaction, deviceId);
    }
}

bool HomeloomClient::makeMainAction(const std::shared_ptr<Device>& device, std::string& url, std::string& rcpString) {
    const auto& metadata = Metadata::GetInstance();
    std::string property;
    std::string value;
    metadata.GetDeviceMainAction(device, url, property, value);
    HL_LOGI("Action Url: %s Property: %s Value: %s", url.c_str(), property.c_str(), value.c_str());
    if (url.empty() || property.empty() || value.empty()) {
        metadata.SetDeviceStateText(device);
        metadata.UpdateDeviceIconUrl(device);
        HL_LOGE("Action Url or Property or Value => one of them is empty. Error! sending failed to app");
        return false;
    }
    if (!device->GetRcpValue(url, property, value, rcpString)) {
        HL_LOGE("Failed to get rcp_string");
        return false;
    }
    return true;
}

void HomeloomClient::setValue(const Transaction& transaction, const std::string& deviceId, const std::string& uri,
                              const std::string& rcpString) {
    if (isRefusedWithoutAgent()) {
        return;
    }
    if (uri.empty() || rcpString.empty()) {
        HL_LOGE("uri or rcp_string is empty");
        notifyFailedResult(transaction, deviceId);
        return;
    }
    HL_LOGI("device_id: %s URI: %s rcp_string: %s", deviceId.c_str(), uri.c_str(), rcpString.c_str());
    const auto devices = _deviceHandler.Get();
    if (!devices || !devices->FindDevice(deviceId)) {
        HL_LOGE("device is null!");
        notifyFailedResult(transaction, deviceId);
        return;
    }
    void* token = CallbackTokens::Keep(std::make_shared<PendingAction>(PendingAction{this, transaction}));
    const int result =
        _agent.SetRemoteAttributes(deviceId, uri, rcpString, _HomeLoomClientDeviceRemoteRepresentationChanged, token);
    if (result != 0) {
        HL_LOGE("set remote attributes failed ret : %d", result);
        CallbackTokens::Take<PendingAction>(token);
        notifyFailedResult(transaction, deviceId);
    }
}

void HomeloomClient::_HomeLoomClientDeviceRemoteRepresentationChanged(int error, const char* deviceId,
                                                                      const char* attributes, const char* uri,
                                                                      const char* resDataType, void* userData) {
    Guarded([&] {
        if (userData == nullptr) {
            HL_LOGE("user_data is null");
            return;
        }
        const auto pending = CallbackTokens::Take<PendingAction>(userData);
        if (!pending) {
            // A second answer to one question.
            return;
        }
        if (pending->session->_isTerminating || error != 0) {
            HL_LOGE("main action of %s ended with error : %d", TextOf(deviceId).c_str(), error);
            return;
        }
        queueJob(pending->session, "_HomeLoomClientDeviceRemoteRepresentationChanged",
                 [transaction = pending->transaction, id = TextOf(deviceId), text = TextOf(attributes),
                  resource = TextOf(uri), type = TextOf(resDataType)](HomeloomClient& session) {
                     session.onRemoteRepresentationChanged(transaction, id, text, resource, type);
                 });
    });
}

void HomeloomClient::onRemoteRepresentationChanged(const Transaction& transaction, const std::string& deviceId,
                                                   const std::string& attributes, const std::string& uri,
                                                   const std::string& resDataType) {
    HL_LOGI(
        "_HomeLoomClientDeviceRemoteRepresentationChanged(): Device Id: %s, Attributes: %s, URI: %s, Res_data_type: %s",
        deviceId.c_str(), attributes.c_str(), uri.c_str(), resDataType.c_str());
    device_resource_info_struct info;
    info.device_id = deviceId;
    info.uri = uri;
    bool isBuilt = false;
    // A malformed text is an answer too.
    Guarded([&] {
        const auto devices = _deviceHandler.Get();
        isBuilt = devices && devices->BuildResourceData(deviceId, uri, attributes, resDataType, info.properties);
    });
    OnSetPropertyEvent(transaction, isBuilt ? kSuccess : kFailure, info);
}

void HomeloomClient::OnSetPropertyEvent(const Transaction& transaction, const std::string& result,
                                        const device_resource_info_struct& info) {
    requireClientAvailable();
    DoMainActionReportParam param(transaction);
    param.deviceId = info.device_id;
    if (result == kFailure) {
        Reporter::Report(param);
        return;
    }
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    const auto device = devices ? devices->FindDevice(info.device_id) : nullptr;
    if (device) {
        const auto deviceLock = devices->Lock();
        device->UpdateValue(info);
        Metadata::GetInstance().SetDeviceStateText(device);
        Metadata::GetInstance().UpdateDeviceIconUrl(device);
    }
    param.result = device != nullptr;
    Reporter::Report(param);
}

void HomeloomClient::notifyFailedResult(const Transaction& transaction, const std::string& deviceId) {
    device_resource_info_struct info;
    info.device_id = deviceId;
    OnSetPropertyEvent(transaction, kFailure, info);
}

// A device of the local hub has no UI metadata: its canvas tells what to send.
void HomeloomClient::executeCapabilityDevice(const Transaction& transaction, const std::string& deviceId,
                                             const std::string& vid) {
    std::string component;
    std::string capability;
    std::string displayType;
    _canvas.GetActionsParam(vid, component, capability, displayType);

    std::string status;
    int result = _agent.GetCoreDeviceCapabilityStatus(deviceId, component, capability, status);
    if (result != 0) {
        HL_LOGE("Get Capability Device Status is failed ret : %d", result);
        notifyFailedResult(transaction, deviceId);
        return;
    }
    HL_LOGI("vid : %s, current capability status : %s", vid.c_str(), status.c_str());
    const std::string current = _canvas.GetCurrentStateValue(status, capability);
    const std::string command = _canvas.GetCommandValue(vid, displayType, current);
    std::string request;
    _canvas.MakeActionJsonValue(component, capability, command, request);

    std::string response;
    result = _agent.ExecuteCoreDevice(deviceId, request, response);
    if (result != 0) {
        HL_LOGE("Execute Capability Device is failed ret : %d", result);
        notifyFailedResult(transaction, deviceId);
        return;
    }
    HL_LOGI("result execute device : %s", response.c_str());
    DoMainActionReportParam param(transaction);
    param.result = true;
    param.deviceId = deviceId;
    Reporter::Report(param);
}

// ---- Devices ----

void HomeloomClient::ChangeDeviceName(const Transaction& transaction, const std::string& deviceId,
                                      const std::string& name) {
    ChangeDeviceNameParam param(transaction);
    param.deviceId = deviceId;
    param.deviceName = name;
    if (deviceId.empty() || name.empty()) {
        HL_LOGE("device_id or device_name is empty, do not proceed");
    } else {
        param.result = _agent.ChangeDeviceName(deviceId, name) == 0;
    }
    Reporter::Report(param);
}

void HomeloomClient::DeleteDevice(const Transaction& transaction, const std::shared_ptr<IPropertyListHelper>& list) {
    if (isRefusedWithoutAgent()) {
        return;
    }
    DeleteDeviceParam param(transaction);
    param.deviceId = list->GetString(Names::DEVICE_ID);
    const int result = _agent.DeleteDevice(param.deviceId);
    HL_LOGI("ret of Delete a Device: %d, device_id: %s", result, param.deviceId.c_str());
    param.result = result == 0;
    Reporter::Report(param);
}

void HomeloomClient::GetDeviceIcons(const Transaction& transaction, const std::string& deviceId) {
    forward(isRefusedWithoutAgent(), _deviceHandler, &DeviceHandler::GetDeviceIcons, transaction, deviceId);
}

// ---- Rooms ----

void HomeloomClient::CreateRoom(const Transaction& transaction, const std::string& locationId,
                                const std::string& roomName) {
    forward(isSkippedWithoutAgent(), _locationHandler, &LocationHandler::CreateRoom, transaction, locationId, roomName);
}

void HomeloomClient::RemoveRoom(const Transaction& transaction, const std::string& locationId,
                                const std::string& roomId) {
    forward(isSkippedWithoutAgent(), _locationHandler, &LocationHandler::RemoveRoom, transaction, locationId, roomId);
}

void HomeloomClient::ChangeRoomName(const Transaction& transaction, const std::string& locationId,
                                    const std::string& roomId, const std::string& roomName) {
    forward(isSkippedWithoutAgent(), _locationHandler, &LocationHandler::ChangeRoomName, transaction, locationId,
            roomId, roomName);
}

void HomeloomClient::MoveDevices(const Transaction& transaction, int count, const std::string& deviceIds,
                                 const std::string& locationId, const std::string& roomId) {
    forward(isSkippedWithoutAgent(), _locationHandler, &LocationHandler::MoveDevices, transaction, deviceIds, count,
            locationId, roomId);
}

// ---- Favorites ----

void HomeloomClient::CreateFavorite(const Transaction& transaction, const std::string& locationId,
                                    const std::string& info) {
    _favoriteHandler->CreateFavorite(transaction, locationId, info);
}

void HomeloomClient::DeleteFavorite(const Transaction& transaction, const std::string& locationId,
                                    const std::string& favoriteId) {
    _favoriteHandler->DeleteFavorite(transaction, locationId, favoriteId);
}

void HomeloomClient::ReplaceFavorites(const Transaction& transaction, const std::string& locationId,
                                      const std::string& infoArray) {
    _favoriteHandler->ReplaceFavorites(transaction, locationId, infoArray);
}

void HomeloomClient::GetFavorites(const Transaction& transaction, const std::string& locationId) {
    _favoriteHandler->GetFavorites(transaction, locationId);
}

void HomeloomClient::GetFavoriteMigrationStatus(const Transaction& transaction, const std::string& locationId) {
    _favoriteHandler->GetFavoriteMigrationStatus(transaction, locationId);
}

void HomeloomClient::UpdateFavoriteMigrationStatus(const Transaction& transaction, const std::string& locationId,
                                                   const std::string& statusInfo) {
    _favoriteHandler->UpdateFavoriteMigrationStatus(transaction, locationId, statusInfo);
}

// ---- Scenes and routines ----

void HomeloomClient::ExecuteScene(const Transaction& transaction, const std::string& locationId,
                                  const std::string& sceneId) {
    forward(isRefusedWithoutAgent(), _sceneHandler, &SceneHandler::ExecuteScene, transaction, locationId, sceneId);
}

void HomeloomClient::CreateScene(const Transaction& transaction, const std::string& locationId,
                                 const std::string& sceneJson) {
    forward(isRefusedWithoutAgent(), _sceneHandler, &SceneHandler::CreateScene, transaction, locationId, sceneJson);
}

void HomeloomClient::UpdateScene(const Transaction& transaction, const std::string& locationId,
                                 const std::string& sceneId, const std::string& sceneJson) {
    forward(isRefusedWithoutAgent(), _sceneHandler, &SceneHandler::UpdateScene, transaction, locationId, sceneId,
            sceneJson);
}

void HomeloomClient::DeleteScene(const Transaction& transaction, const std::string& locationId,
                                 const std::string& sceneId) {
    forward(isRefusedWithoutAgent(), _sceneHandler, &SceneHandler::DeleteScene, transaction, locationId, sceneId);
}

void HomeloomClient::GetSceneIconInfo(const Transaction& transaction) {
    forward(isRefusedWithoutAgent(), _sceneHandler, &SceneHandler::GetSceneIconInfo, transaction);
}

void HomeloomClient::UpdateRoutineStatus(const Transaction& transaction, const std::string& locationId,
                                         const std::string& routineId, bool enable) {
    forward(isRefusedWithoutAgent(), _routineHandler, &RoutineHandler::UpdateRoutineStatus, transaction, locationId,
            routineId, enable);
}

// ---- Hub ----

void HomeloomClient::RequestStartHubOnboarding(const Transaction& transaction, const std::string& locationId,
                                               const std::string& roomId) {
    _hubHandler->StartHubOnboarding(transaction, GetAccessToken(), locationId, roomId);
}

void HomeloomClient::RequestStopHubOnboarding(const Transaction& transaction) {
    _hubHandler->StopHubOnboarding(transaction);
}

void HomeloomClient::RequestResetHub(const Transaction& transaction) {
    _hubHandler->ResetHub(transaction);
}

void HomeloomClient::RequestResetDongle(const Transaction& transaction) {
    _hubHandler->ResetDongle(transaction);
}

void HomeloomClient::RequestGetHubInfo(const Transaction& transaction) {
    _hubHandler->GetHubInfo(transaction);
}

void HomeloomClient::StartHubDeviceDiscovery(const Transaction& transaction, const std::string& locationId,
                                             const std::string& hubId, int timeout) {
    if (isHomeLoomClientAvailable()) {
        _hubHandler->StartHubDeviceDiscovery(transaction, locationId, hubId, timeout);
    }
}

void HomeloomClient::StopHubDeviceDiscovery(const Transaction& transaction, const std::string& locationId,
                                            const std::string& hubId) {
    if (isHomeLoomClientAvailable()) {
        _hubHandler->StopHubDeviceDiscovery(transaction, locationId, hubId);
    }
}

// ---- User events, key-value store, access ----

void HomeloomClient::SendActiveUserEvent(const Transaction& transaction, int category, int action,
                                         const std::string& label, const std::string& metadata) {
    _activeUserEventHandler->SendActiveUserEvent(transaction, category, action, label, metadata);
}

template <typename Param, typename Operation, typename... Args>
void HomeloomClient::askLocksmith(const Transaction& transaction, Operation operation, const Args&... args) {
    if (isHomeLoomClientAvailable()) {
        Param param(transaction);
        param.result = (_agent.*operation)(args..., param.locksmithInfoJson) == 0;
        Reporter::Report(param);
    }
}

void HomeloomClient::CreateLocksmithKeyValue(const Transaction& transaction, const std::string& key,
                                             const std::string& value) {
    askLocksmith<CreateLocksmithKeyValueParam>(transaction, &ITesselHandler::CreateLocksmithKeyValue, key, value);
}

void HomeloomClient::GetLocksmithKeyValue(const Transaction& transaction, const std::string& key) {
    askLocksmith<GetLocksmithKeyValueParam>(transaction, &ITesselHandler::GetLocksmithKeyValue, key);
}

void HomeloomClient::UpdateLocksmithKeyValue(const Transaction& transaction, const std::string& key,
                                             const std::string& value) {
    askLocksmith<UpdateLocksmithKeyValueParam>(transaction, &ITesselHandler::UpdateLocksmithKeyValue, key, value);
}

void HomeloomClient::DeleteLocksmithKeyValue(const Transaction& transaction, const std::string& key) {
    askLocksmith<DeleteLocksmithKeyValueParam>(transaction, &ITesselHandler::DeleteLocksmithKeyValue, key);
}

void HomeloomClient::GetAccessTokenUid(const Transaction& transaction) {
    requireClientAvailable();
    HL_LOGI("try to send access token uid");
    GetAccessTokenUidParam param(transaction);
    param.accessToken = GetAccessToken();
    param.uid = _agent.GetUserId();
    Reporter::Report(param);
    HL_LOGI("access token uid sent");
}

}  // namespace VMFramework::HomeLoom
