// From the agent's device details to the framework's device list.

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>

#include <vconf.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Common/WayOut.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/CoreDevices/CoreDeviceHandler.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/HomeloomClient.h"
#include "Homeloom/IoTHub/CHubHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Network/CHubRequester.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "Homeloom/Tessel/AgentList.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kUnknownDeviceType[] = "unknown";

enum class Text { Optional, Required };

// Empty on failure, which is logged. What a device can't be without fails when it is empty, too.
std::string DetailText(ITesselHandler& agent, homeloom_client_device_detail_h detail, int property, const char* failure,
                       Text kind = Text::Optional, const Log::Place& caller = HL_CALLER) {
    std::string text;
    if (agent.DeviceDetailGetString(detail, property, text) != 0 || (kind == Text::Required && text.empty())) {
        HL_LOG_AT(DLOG_ERROR, caller, "%s", failure);
        text.clear();
    }
    return text;
}

std::vector<std::string> DetailTexts(ITesselHandler& agent, homeloom_client_device_detail_h detail, int property,
                                     const char* failure, const Log::Place& caller = HL_CALLER) {
    std::vector<std::string> texts;
    if (agent.DeviceDetailGetStringArray(detail, property, texts) != 0) {
        HL_LOG_AT(DLOG_ERROR, caller, "%s", failure);
        texts.clear();
    }
    return texts;
}

void SetCoreFields(Device::_deviceInfo& info, const std::unordered_map<std::string, core_device_type_info>& types,
                   const std::unordered_map<std::string, core_device_icon_info>& icons) {
    const auto type = types.find(info.device_id);
    if (type != types.end()) {
        info.core_device_type = type->second.device_type;
        info.core_device_network_type = type->second.network_type;
        info.core_device_parent_device_id = type->second.parent_device_id;
    }
    const auto icon = icons.find(info.device_id);
    if (icon != icons.end()) {
        info.core_device_animation_icon_url = icon->second.animation_icon;
        info.core_device_activated_icon_url = icon->second.activated_icon;
        info.core_device_inactivated_icon_url = icon->second.inactivated_icon;
        info.core_device_disconnected_icon_url = icon->second.disconnected_icon;
        info.core_device_icon_key = icon->second.icon_key;
        info.core_device_icon_date = icon->second.last_update_date;
    }
}

}  // namespace

// ---- Building ----

void HomeloomClient::buildNewDeviceMap(std::unique_lock<std::recursive_mutex> sessionLock) {
    requireClientAvailable();
    HL_LOGI("start build devices");
    deleteDevices();
    if (!GetDevicesInfo()) {
        return;
    }
    // Again: a build that was abandoned half-way lacks devices, and the user's hub must not be reset for that.
    requireClientAvailable();
    sessionLock.unlock();
    resetHubIf(NeedHubReset());
    OnProfileUpdateEvent(UpdateList::MapRebuilt);
}

bool HomeloomClient::GetDevicesInfo() {
    if (!getIsAgentConnected()) {
        HL_LOGI("GetDevicesInfo agent not connected. skip!");
        return false;
    }
    return GuardedOr(false, [&] {
        AgentList<homeloom_client_device_detail_h> details(_agent, &ITesselHandler::DeviceDetailDestroy);
        const int result = _agent.GetDeviceDetailList(details.list, details.count);
        HL_LOGI("ret of get_device_detail_list: %d, detail_cnt: %d", result, details.count);
        if (result != 0 && result != HOMELOOM_CLIENT_ERROR_NO_DATA) {
            HL_LOGE("get device detail list error!");
            return false;
        }
        if (details.count < 0) {
            HL_LOGE("device detail list count < 0");
            return false;
        }
        if (result == 0 && details.list == nullptr && details.count > 0) {
            // Not to be taken for an empty home: the devices are there, only not told.
            HL_LOGE("device detail list does not hold what it says, count : %d", details.count);
            return false;
        }
        buildDeviceDetailList(details.list, details.count);
        return true;
    });
}

void HomeloomClient::buildDeviceDetailList(homeloom_client_device_detail_h* list, int count) {
    LogThrown([&] {
        if (!getIsAgentConnected()) {
            throw CException("buildDeviceDetailList agent not connected. throw!", kErrorFailed);
        }
        const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
        HL_LOGI("device_detail_size: %d", count);
        const auto devices = _deviceHandler.Get();
        const auto coreDevices = _coreDeviceHandler.Get();
        const auto locations = _locationHandler.Get();
        if (!devices || !coreDevices || !locations) {
            HL_LOGE("handlers are gone, device list is not built");
            return;
        }

        const auto coreTypes = coreDevices->GetCoreDeviceTypeList();
        const auto coreIcons = coreDevices->GetCoreDeviceIconList();
        int locationCount = 0;
        const auto locationList = locations->GetLocationList(locationCount);
        int roomCount = 0;
        const auto roomList = locations->GetRoomList(roomCount);

        const std::size_t oldSize = devices->GetDeviceMapSize();
        HL_LOGI("old device map size: %zu", oldSize);

        for (int i = 0; list != nullptr && i < count; ++i) {
            if (!isClientAvailable()) {
                HL_LOGI("manager not available");
                return;
            }
            Device::_deviceInfo info;
            std::vector<std::string> uris;
            std::vector<std::string> osvUris;
            if (!readDeviceDetail(list[i], info, uris, osvUris)) {
                continue;
            }
            info.room_name = locations->GetRoomNameFromRoomID(info.room_id, roomList, roomCount);
            if (info.room_name.empty()) {
                HL_LOGI("room name is empty");
            }
            info.location_name =
                locations->GetLocationNameFromLocationID(info.location_id, locationList, locationCount);
            if (info.location_name.empty()) {
                HL_LOGI("location name is empty");
            }
            SetCoreFields(info, coreTypes, coreIcons);
            devices->HandleDeviceInfo(info, uris, osvUris);
        }

        const std::size_t newSize = devices->GetDeviceMapSize();
        if (newSize <= oldSize) {
            return;
        }
        HL_LOGI("UI metadata will be parsed. device map size(%zu->%zu)", oldSize, newSize);
        if (!isClientAvailable()) {
            HL_LOGI("manager not available");
            return;
        }
        devices->ParseMetadata();
        createCanvas();
    });
}

bool HomeloomClient::readDeviceDetail(homeloom_client_device_detail_h detail, Device::_deviceInfo& info,
                                      std::vector<std::string>& uris, std::vector<std::string>& osvUris) {
    // "geting" stands so in the log of every TV.
    info.device_id = DetailText(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_DEVICE_ID,
                                "geting device_id failed or device_id is null", Text::Required);
    if (info.device_id.empty()) {
        return false;
    }
    const auto devices = _deviceHandler.Get();
    info.device_name = devices ? devices->GetDeviceNameFromDeviceDetail(detail) : std::string();
    info.vid = DetailText(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_VID,
                          "geting vid failed or vid is null", Text::Required);
    if (info.vid.empty()) {
        return false;
    }
    std::vector<std::string> types;
    if (_agent.DeviceDetailGetStringArray(detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_DEVICE_TYPES, types) != 0 ||
        types.empty()) {
        HL_LOGE("geting device_type_array failed or size is 0");
        return false;
    }
    info.device_type = getDeviceType(types);
    uris =
        DetailTexts(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_RESOURCES, "getting RESOURCES array failed");
    osvUris = DetailTexts(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_OSV_RESOURCES,
                          "getting osv RESOURCES array failed");
    info.nick_name =
        DetailText(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_NICK_NAME, "getting nick name failed");
    info.prefix = DetailText(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_PREFIX, "getting prefix failed");
    int status = DEVICE_STATUS_CONNECTED;
    if (_agent.DeviceDetailGetInt(detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_CLOUD_STATUS, status) != 0) {
        HL_LOGE("getting cloud device state failed");
        status = DEVICE_STATUS_CONNECTED;
    }
    info.status = static_cast<DeviceStatus>(status);
    info.location_id =
        DetailText(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_LOCATION_ID, "getting location id failed");
    info.room_id = DetailText(_agent, detail, HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_ROOM_ID, "getting room id failed");
    return true;
}

std::string HomeloomClient::getDeviceType(const std::vector<std::string>& types) {
    // Every device is also a plain one.
    const auto type =
        std::find_if(types.begin(), types.end(), [](const auto& entry) { return entry != Names::OIC_WK_D; });
    return type != types.end() ? *type : kUnknownDeviceType;
}

// ---- Canvas ----

void HomeloomClient::createCanvas() {
    AddJobToScheduler(
        [this] {
            if (!isClientAvailable()) {
                return;
            }
            HL_LOGI("createCanvas() start");
            if (const auto coreDevices = _coreDeviceHandler.Get()) {
                coreDevices->BuildCoreDeviceList();
            }
            _hubHandler->CreateLocalHubDevicesSet();
            createCanvasMap();
            HL_LOGI("createCanvas() completed");
            OnMetadataUpdateEvent();
        },
        "createCanvas");
}

// A presentation is fetched once, and only for devices that the local hub serves.
void HomeloomClient::createCanvasMap() {
    HL_LOGI("createCanvasMap()");
    const auto coreDevices = _coreDeviceHandler.Get();
    if (!coreDevices) {
        HL_LOGE("core device handler is gone");
        return;
    }
    for (const auto& [deviceId, info] : coreDevices->GetCoreDeviceInfo()) {
        if (_isTerminating) {
            return;
        }
        HL_LOGI("device_id : %s", deviceId.c_str());
        if (!_hubHandler->IsLocalHubConnectedDevice(deviceId) || _canvas.IsAddedCanvasMap(info.presentation_id)) {
            continue;
        }
        _canvas.CreateCanvasMap(info.presentation_id, getCoreCanvas(info.presentation_id, info.manufacturer_name));
    }
}

std::string HomeloomClient::getCoreCanvas(const std::string& presentationId, const std::string& manufacturerName) {
    std::string document;
    if (_agent.GetCanvas(presentationId, manufacturerName, document) != 0) {
        document.clear();
    }
    return document;
}

// ---- Sending ----

void HomeloomClient::OnMetadataUpdateEvent() {
    requireClientAvailable();
    // Held over both steps, so that no other list goes out between evaluation and this one.
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    if (const auto devices = _deviceHandler.Get()) {
        devices->UpdateAllDevicesByMetadata();
    }
    sendDeviceInfoToUI();
}

void HomeloomClient::OnProfileUpdateEvent(UpdateList reason) {
    requireClientAvailable();
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    if (reason != UpdateList::LocationChanged) {
        HL_LOGI("[reason:%d] need to update vconf for cost efficiency", static_cast<int>(reason));
        SetCostEfficiency();
    }
    sendDeviceInfoToUI();
}

void HomeloomClient::SetCostEfficiency() {
    requireClientAvailable();
    const auto scenes = _sceneHandler.Get();
    const auto devices = _deviceHandler.Get();
    const std::size_t sceneCount = scenes ? static_cast<std::size_t>(scenes->GetSceneCount()) : 0;
    const std::size_t deviceCount = devices ? static_cast<std::size_t>(devices->GetVisibleDeviceCount()) : 0;
    HL_LOGI("device_count: %zu, scene_count: %zu", deviceCount, sceneCount);
    if (deviceCount + sceneCount != 0) {
        if (vconf_set_str(Names::VCONF_DEVICE_EXIST, Names::DEVICE_EXIST_TRUE) != 0) {
            HL_LOGE("fail to set vconf device exist true");
        }
    } else if (vconf_set_str(Names::VCONF_DEVICE_EXIST, Names::DEVICE_EXIST_FALSE) != 0) {
        HL_LOGE("fail to set vconf device exist false");
    }
}

// Called with the session's mutex held. Whatever is thrown ends the sending: no half list goes out.
void HomeloomClient::sendDeviceInfoToUI() {
    Guarded([&] {
        const auto scenes = _sceneHandler.Get();
        const auto routines = _routineHandler.Get();
        const auto locations = _locationHandler.Get();
        const auto devices = _deviceHandler.Get();
        if (!scenes || !routines || !locations || !devices) {
            HL_LOGE("handlers are gone, device list is not sent");
            return;
        }
        const auto list = IEndpointListHelper::Create();
        requireClientAvailable();
        scenes->GetSceneData(list);
        requireClientAvailable();
        HL_LOGI("R2 Feature %s", "Enabled");
        routines->GetRoutineData(list);
        requireClientAvailable();
        locations->GetLocationData(list);
        requireClientAvailable();
        {
            // From the reading of the devices to the queued report, so that this list can't arrive after the
            // notification of a newer state.
            const auto lock = devices->GetDeviceData(list);
            requireClientAvailable();
            IWayOut::Get().ReportDeviceList(list);
        }
        CHLUtil::PrintTimeStamp("DEVICE LIST SENT");
    });
}

void HomeloomClient::StartScan() {
    requireClientAvailable();
    CHLUtil::PrintTimeStamp("SCAN REQUEST");
    HL_LOGI("status: %d", getConnectionStatus());
    std::unique_lock<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    if (!devices || devices->GetDeviceMapSize() == 0) {
        buildNewDeviceMap(std::move(lock));
        return;
    }
    devices->UpdateStateText();
    sendDeviceInfoToUI();
}

// ---- One device ----

void HomeloomClient::tryGetMetadata(const std::string& vid) {
    HL_LOGI("try to get vid : %s", vid.c_str());
    auto& metadata = Metadata::GetInstance();
    if (metadata.IsParsedMetadata(vid)) {
        HL_LOGI("vid : %s metadata is already parsed", vid.c_str());
        return;
    }
    if (const auto devices = _deviceHandler.Get()) {
        metadata.ParseMetadata(vid, devices->GetUiMeta(vid));
    }
}

bool HomeloomClient::GetProperty(const std::string& deviceId) {
    requireClientAvailable();
    const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
    const auto devices = _deviceHandler.Get();
    return devices && devices->GetProperty(deviceId);
}

bool HomeloomClient::GetProperty(const std::shared_ptr<Device>& device) {
    requireClientAvailable();
    const auto devices = _deviceHandler.Get();
    return devices && devices->GetProperty(device);
}

// ---- Is the hub that this TV onboarded gone from the account? ----

bool HomeloomClient::NeedHubReset() {
    const std::string hubId = _hubHandler->GetHubDeviceID();
    if (!checkHubResetPreCondition(hubId)) {
        return false;
    }
    {
        // A list that is being built ends first: half of it may lack the hub. The cloud is asked without the lock.
        const std::lock_guard<std::recursive_mutex> lock(_sessionMutex);
        const auto devices = _deviceHandler.Get();
        if (!devices || devices->FindDevice(hubId)) {
            HL_LOGI("hub device is exist in device handler map, do not delete");
            return false;
        }
    }
    if (requestIsHubExist(hubId)) {
        HL_LOGI("hub device is exist on cloud, do not delete");
        return false;
    }
    HL_LOGI("No TV hub di in the detail info list");
    return true;
}

bool HomeloomClient::needHubResetWithDeviceList(const std::vector<std::string>& deviceIds) {
    const std::string hubId = _hubHandler->GetHubDeviceID();
    if (!checkHubResetPreCondition(hubId)) {
        return false;
    }
    if (std::find(deviceIds.begin(), deviceIds.end(), hubId) != deviceIds.end()) {
        HL_LOGI("hub device id is in device_list, do not delete");
        return false;
    }
    if (requestIsHubExist(hubId)) {
        HL_LOGI("hub device is exist on cloud, do not delete");
        return false;
    }
    HL_LOGI("No TV hub di in the device list");
    return true;
}

bool HomeloomClient::checkHubResetPreCondition(const std::string& hubId) {
    const std::string onboarded = _hubHandler->GetLoginIDHubOnboarded();
    std::string current;
    _agent.GetLoginID(current);
    HL_LOGI("hub onboarded login id : %s, cur login id : %s, hub device id : %s", onboarded.c_str(), current.c_str(),
            hubId.c_str());
    if (onboarded.empty()) {
        HL_LOGI("hub onboarded id is empty, do not delete");
        return false;
    }
    if (onboarded != current) {
        HL_LOGI("different hub onboarding id and login id, do not delete");
        return false;
    }
    if (hubId.empty()) {
        HL_LOGI("hub id is empty, do not delete");
        return false;
    }
    return true;
}

void HomeloomClient::resetHubIf(bool isGone) {
    if (isGone) {
        HL_LOGI("hub is deleted, go to reset hub");
        RequestResetHub(nullptr);
    }
}

bool HomeloomClient::requestIsHubExist(const std::string& hubId) {
    CHubRequester requester;
    return requester.RequestIsHubExist(GetAccessToken(), hubId);
}

}  // namespace VMFramework::HomeLoom
