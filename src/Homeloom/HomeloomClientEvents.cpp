// What the cloud tells: server-sent events, and the agent's device lists.
//
// The callbacks run on the agent's thread: they copy and queue, nothing else. Everything below them runs on
// the scheduler's thread, so that events are handled in the order in which they came.

#include <memory>
#include <mutex>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/CText.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Common/WayOut.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/CoreDevices/CoreDeviceHandler.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/HomeloomClient.h"
#include "Homeloom/IoTHub/CHubHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/Tessel/TesselReplies.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

// The type of a canvas state in which the device counts as active.
constexpr char kActive[] = "active";

std::vector<std::string> DeviceIds(ITesselHandler& agent, const ClientDeviceList& list) {
    std::vector<std::string> ids;
    ids.reserve(static_cast<std::size_t>(list.Count()));
    for (int i = 0; i < list.Count(); ++i) {
        std::string id;
        if (agent.DeviceGetString(list.List()[i], HOMELOOM_CLIENT_DEVICE_PROPERTY_ID, id) == 0 && !id.empty()) {
            HL_LOGI("_HomeLoomClientDeviceListChanged() [%d], device_id : %s", i, id.c_str());
            ids.push_back(std::move(id));
        }
    }
    return ids;
}

// A list without records is not to be taken for an empty home, which takes all devices away and perhaps the hub.
bool HoldsWhatItSays(const ClientDeviceList& list, int count) {
    if (list.Count() > 0) {
        return true;
    }
    HL_LOGE("device list does not hold what it says, count : %d", count);
    return false;
}

}  // namespace

// ---- Server-sent events ----

void HomeloomClient::_HomeLoomCoreSSEChanged(homeloom_core_sse_e type, long long, const char* json, void* userData) {
    Guarded([&] {
        queueJob(userData, "_HomeLoomCoreSSEChanged",
                 [type, text = TextOf(json)](HomeloomClient& session) { session.handleSseEvent(type, text); });
    });
}

void HomeloomClient::handleSseEvent(homeloom_core_sse_e type, const std::string& json) {
    // The kinds that kSseMask asks for.
    static constexpr std::pair<homeloom_core_sse_e, void (HomeloomClient::*)(const std::string&)> kHandlers[] = {
        {HOMELOOM_CORE_SSE_DEVICE_EVENT, &HomeloomClient::handleSseDeviceEvent},
        {HOMELOOM_CORE_SSE_DEVICE_LIFECYCLE, &HomeloomClient::handleSseDeviceLifecycleEvent},
        {HOMELOOM_CORE_SSE_DEVICE_HEALTH, &HomeloomClient::handleSseDeviceHealthEvent},
        {HOMELOOM_CORE_SSE_SCENE_LIFECYCLE, &HomeloomClient::handleSseSceneLifecycleEvent},
        {HOMELOOM_CORE_SSE_INSTALLED_APP_LIFECYCLE, &HomeloomClient::handleSseInstalledAppLifecycleEvent},
        {HOMELOOM_CORE_SSE_SMART_APP_EVENT, &HomeloomClient::handleSseSmartAppEvent},
        {HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE, &HomeloomClient::handleSseRoutineLifecycleEvent},
        {HOMELOOM_CORE_SSE_FAVORITE_LIFECYCLE, &HomeloomClient::handleSseFavoriteLifecycleEvent},
    };
    for (const auto& [kind, handle] : kHandlers) {
        if (kind == type) {
            (this->*handle)(json);
        }
    }
}

void HomeloomClient::handleSseDeviceEvent(const std::string& json) {
    const json::JsonValue event = json::JsonValue::Create(json);
    if (!event.isObject()) {
        HL_LOGE("parsing is failed.");
        return;
    }
    const std::string deviceId = event["deviceId"].asString();
    const std::string capability = event["capability"].asString();
    if (_hubHandler->IsLocalHubConnectedDevice(deviceId)) {
        handleLocalhubDeviceEvent(event);
    } else if (capability == "webrtc") {
        handleWebrtcDeviceEvent(deviceId, json);
    }
}

void HomeloomClient::handleLocalhubDeviceEvent(const json::JsonValue& event) {
    if (!CHLUtil::GetMemberBool(event, "stateChange")) {
        HL_LOGI("state is not changed, do not proceed");
        return;
    }
    if (CHLUtil::GetMemberString(event, "valueType") != "string") {
        HL_LOGI("value type is not string type, do not proceed");
        return;
    }
    const std::string deviceId = CHLUtil::GetMemberString(event, "deviceId");
    const auto devices = _deviceHandler.Get();
    const std::string vid = devices ? devices->GetVid(deviceId) : std::string();
    const std::string value = CHLUtil::GetMemberString(event, "value");
    std::string text;
    std::string type;
    _canvas.GetShownState(vid, value, text, type);
    if (text.empty()) {
        HL_LOGI("there is not matched state text, do not proceed, device id : %s, capability : %s, state : %s",
                deviceId.c_str(), CHLUtil::GetMemberString(event, "capability").c_str(), value.c_str());
        return;
    }
    const bool active = type == kActive;
    HL_LOGI("device id : %s, state : %s, state text : %s, active : %d", deviceId.c_str(), value.c_str(), text.c_str(),
            active);
    OnCapabilityUpdateEvent(deviceId, value, text, active ? 1 : 0);
}

void HomeloomClient::handleWebrtcDeviceEvent(const std::string& deviceId, const std::string& json) {
    if (const auto camera = findCamera(deviceId)) {
        camera->HandleWebrtcDeviceEvent(json);
    }
}

void HomeloomClient::handleSseDeviceHealthEvent(const std::string& json) {
    const json::JsonValue event = json::JsonValue::Create(json);
    const std::string deviceId = CHLUtil::GetMemberString(event, "deviceId");
    if (!_hubHandler->IsLocalHubConnectedDevice(deviceId)) {
        HL_LOGI("this device is not a local hub connected device, do not proceed");
        return;
    }
    const std::string health = CHLUtil::GetMemberString(event, "status");
    // Whatever is neither online nor offline hides the device.
    DeviceStatus status = DEVICE_STATUS_HIDDEN;
    if (health == "ONLINE") {
        status = DEVICE_STATUS_CONNECTED;
    } else if (health == "OFFLINE") {
        status = DEVICE_STATUS_DISCONNECTED;
    } else {
        HL_LOGI("Do not handle this status : %s", health.c_str());
    }
    OnDeviceStatusUpdateEvent(deviceId, status);
}

void HomeloomClient::handleSseDeviceLifecycleEvent(const std::string& json) {
    HL_LOGI("json : %s", json.c_str());
    const json::JsonValue event = json::JsonValue::Create(json);
    if (event.isNull()) {
        HL_LOGE("parsing is failed.");
        return;
    }
    if (needUpdateSseDeviceList(event)) {
        OnProfileUpdateEvent(UpdateList::LifecycleEvent);
    } else {
        HL_LOGI("do not need sse device list update");
    }
}

bool HomeloomClient::needUpdateSseDeviceList(const json::JsonValue& event) {
    const std::string lifecycle = CHLUtil::GetMemberString(event, "lifecycle");
    if (lifecycle == Names::LIFECYCLE_CREATE) {
        // The agent's own list callback brings the device.
        return true;
    }
    return lifecycle == Names::LIFECYCLE_UPDATE && handleSseDeviceListUpdated(event);
}

bool HomeloomClient::handleSseDeviceListUpdated(const json::JsonValue& event) {
    if (!CHLUtil::GetMemberString(event, "update").empty()) {
        return false;
    }
    HL_LOGI("sse device list updated, need to build device list and canvas map");
    if (const auto coreDevices = _coreDeviceHandler.Get()) {
        coreDevices->BuildCoreDeviceList();
    }
    _hubHandler->CreateLocalHubDevicesSet();
    createCanvasMap();
    GetDevicesInfo();
    return true;
}

void HomeloomClient::handleSseSceneLifecycleEvent(const std::string& json) {
    HL_LOGI("json : %s", json.c_str());
    forward(false, _sceneHandler, &SceneHandler::HandleSSEScene, json);
}

void HomeloomClient::handleSseRoutineLifecycleEvent(const std::string& json) {
    HL_LOGI("json : %s", json.c_str());
    forward(false, _routineHandler, &RoutineHandler::HandleSSERoutine, json);
}

void HomeloomClient::handleSseFavoriteLifecycleEvent(const std::string& json) {
    HL_LOGI("json : %s", json.c_str());
    const std::string locationId = CHLUtil::GetMemberString(json::JsonValue::Create(json), "locationId");
    HL_LOGI("location_id : %s", locationId.c_str());
    GetFavorites(nullptr, locationId);
}

void HomeloomClient::handleSseInstalledAppLifecycleEvent(const std::string& json) {
    const json::JsonValue event = json::JsonValue::Create(json);
    const std::string lifecycle = CHLUtil::GetMemberString(event, "lifecycle");
    if (lifecycle != Names::LIFECYCLE_CREATE && lifecycle != Names::LIFECYCLE_DELETE) {
        return;
    }
    HL_LOGI("lifecylce type : %s case", lifecycle.c_str());
    GetInstalledServiceAppInfo(nullptr, CHLUtil::GetMemberString(event, "locationId"));
}

// ---- State of a device that the local hub serves ----

std::string HomeloomClient::getCapabilityStateText(const std::string& vid, const std::string& state) {
    return _canvas.GetStateText(vid, state);
}

bool HomeloomClient::getCapabilityActiveState(const std::string& vid, const std::string& state) {
    return _canvas.GetActiveState(vid, state) == kActive;
}

// Informs the user interface only: the device record stays as it is.
void HomeloomClient::OnCapabilityUpdateEvent(const std::string& deviceId, const std::string& state,
                                             const std::string& stateText, int activeState) {
    requireClientAvailable();
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    const auto device = devices ? devices->FindDevice(deviceId) : nullptr;
    if (!device) {
        return;
    }
    const auto deviceLock = devices->Lock();
    const std::string& type = device->GetDeviceType();
    if (CHLUtil::IsButtonDeviceType(type) && state != kButtonReady) {
        setCoreButtonStandbyTimer(device, state);
    }

    // The device handler has a list of the same name with other fields; the two are no twins.
    const auto action = Metadata::GetInstance().GetMainActionLook(*device);
    const auto list = IPropertyListHelper::Create();
    list->SetName(Names::HL_DEVICE_STATE_UPDATED);
    list->PushStringData(Names::DEVICE_ID, deviceId);
    list->PushStringData(Names::SUBDEVICE_TYPE, type);
    list->PushStringData(Names::STATE_TEXT, stateText);
    list->PushStringData(Names::ICON_URL, device->GetIconUrl());
    list->PushStringData(Names::CONTROL_TYPE, action.control_type);
    list->PushIntData(Names::ACTIVE_STATE, activeState);
    list->PushBooleanData(Names::RUNNING_STATE, device->GetRunningState());
    list->PushIntData(Names::SUBDEVTYPE_ENUM, devices->SubDeviceType(type));
    list->PushIntData(Names::CONTROLLABLE, device->IsControllableDevice() ? 1 : 0);
    list->PushStringData(Names::ACTION_STATE, action.action_state);
    list->PushStringData(Names::ACTION_URL, action.action_url);
    list->PushIntData(Names::CLOUD_DEVICE_STATUS, devices->GetDeviceStatus(device));
    HL_LOGI("capability update event device id : %s, state text : %s", deviceId.c_str(), stateText.c_str());
    IWayOut::Get().ReportServiceNotify(list);
}

// A press shows for a second, then the button is ready again.
void HomeloomClient::setCoreButtonStandbyTimer(const std::shared_ptr<Device>& device, const std::string& state) {
    requireClientAvailable();
    // The job does not keep the device whose timer it is; the session outlives every timer.
    device->SetTimer(kButtonStandbyMs, [this, weak = std::weak_ptr<Device>(device), state] {
        const auto pressed = weak.lock();
        if (!pressed) {
            return;
        }
        const auto devices = _deviceHandler.Get();
        if (!devices) {
            return;
        }
        std::string id;
        std::string vid;
        {
            const auto lock = devices->Lock();
            id = pressed->GetId();
            vid = pressed->GetVid();
        }
        // No test for an empty text: a document without "Ready" clears what the press has shown.
        const std::string text = getCapabilityStateText(vid, kButtonReady);
        const bool active = getCapabilityActiveState(vid, kButtonReady);
        HL_LOGI("setCoreButtonStandbyTimer() button timer expired [%s] : [%s]->[%s]", id.c_str(), state.c_str(),
                kButtonReady);
        OnCapabilityUpdateEvent(id, kButtonReady, text, active ? 1 : 0);
    });
}

void HomeloomClient::OnDeviceStatusUpdateEvent(const std::string& deviceId, int status) {
    requireClientAvailable();
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    const auto device = devices ? devices->FindDevice(deviceId) : nullptr;
    HL_LOGI("device_id : %s status : %d", deviceId.c_str(), status);
    if (!device) {
        return;
    }
    {
        const auto deviceLock = devices->Lock();
        if (device->GetStatus() == status) {
            return;
        }
        device->SetStatus(static_cast<DeviceStatus>(status));
        DeviceHandler::UpdateControllable(device);
    }
    if (status == DEVICE_STATUS_CONNECTED) {
        GetProperty(device);
    }
    device_resource_info_struct info;
    info.device_id = deviceId;
    devices->OnResourceUpdateEvent(info);
}

// ---- The agent's lists ----

void HomeloomClient::_HomeLoomClientDeviceListChanged(homeloom_client_device_h* list, int count, void* userData) {
    Guarded([&] {
        auto job = [count,
                    records = std::make_shared<const ClientDeviceList>(list, count)](HomeloomClient& session) mutable {
            if (count == 0) {
                session.onDeviceListEmpty();
                return;
            }
            if (!HoldsWhatItSays(*records, count)) {
                return;
            }
            const std::vector<std::string> ids = DeviceIds(session._agent, *records);
            records.reset();
            session.onDeviceListChanged(ids);
        };
        queueJob(userData, "_HomeLoomClientDeviceListChanged", std::move(job));
    });
}

void HomeloomClient::onDeviceListChanged(const std::vector<std::string>& deviceIds) {
    HL_LOGI("device list size : %zu", deviceIds.size());
    OnDeviceListUpdateEvent(deviceIds);
    resetHubIf(needHubResetWithDeviceList(deviceIds));
}

void HomeloomClient::onDeviceListEmpty() {
    HL_LOGI("_HomeLoomClientDeviceListChanged device list is empty");
    deleteDevices();
    OnProfileUpdateEvent(UpdateList::ListEmpty);
    resetHubIf(NeedHubReset());
}

void HomeloomClient::OnDeviceListUpdateEvent(const std::vector<std::string>& deviceIds) {
    requireClientAvailable();
    // A list build in progress ends first, as for deleteDevices().
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    if (!devices) {
        return;
    }
    for (const std::string& id : devices->UpdateDeviceList(deviceIds)) {
        const auto device = devices->FindDevice(id);
        if (!device) {
            continue;
        }
        // The local hub's devices have no subscription.
        if (!_hubHandler->IsLocalHubConnectedDevice(id)) {
            devices->UnsubscribeResourceUri(device);
        }
        const std::string vid = devices->GetVid(id);
        devices->DeleteDevice(id);
        devices->DeleteVidDeviceMap(vid, id);
    }
}

void HomeloomClient::_HomeLoomClientDeviceDetailListChanged(homeloom_client_device_detail_h* list, int count,
                                                            void* userData) {
    Guarded([&] {
        auto job = [records =
                        std::make_shared<const ClientDeviceDetailList>(list, count)](HomeloomClient& session) mutable {
            HL_LOGI("_HomeLoomClientDeviceDetailListChanged(): device_detail_size: %d", records->Count());
            session.buildDeviceDetailList(records->List(), records->Count());
            records.reset();
            session.OnProfileUpdateEvent(UpdateList::DetailsChanged);
        };
        queueJob(userData, "_HomeLoomClientDeviceDetailListChanged", std::move(job));
    });
}

}  // namespace VMFramework::HomeLoom
