// What the UI metadata says about devices: which URIs to subscribe, and what to recompute when it arrives.

#include <VMFramework/JsonValue.h>

#include "Common/CHLUtil.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kTvContentInfoUri[] = "/nvn/tv/contentinfo";

}  // namespace

void DeviceHandler::SubscribeResourceUri(const std::shared_ptr<Device>& device) {
    std::string id;
    std::string uris;
    if (!findSubscription(device, id, uris)) {
        return;
    }
    HL_LOGI("device_id : %s, jsonResUri : %s", id.c_str(), uris.c_str());
    const int ret = _agent.Subscribe(id, uris, _HomeLoomClientSubscribeChanged, subscriptionToken());
    if (ret != 0) {
        HL_LOGE("ret: %d, device_id : %s", ret, id.c_str());
    }
}

void DeviceHandler::UnsubscribeResourceUri(const std::shared_ptr<Device>& device) {
    std::string id;
    std::string uris;
    if (!findSubscription(device, id, uris)) {
        return;
    }
    HL_LOGI("device_id : %s, jsonResUri : %s", id.c_str(), uris.c_str());
    const int ret = _agent.Unsubscribe(id, uris);
    if (ret != 0) {
        HL_LOGE("ret: %d, device_id : %s", ret, id.c_str());
    }
}

void DeviceHandler::SubscribeForAllDevices() {
    for (const auto& [id, device] : GetAllDevice()) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return;
        }
        if (!IsMyTV(id) && !isHubConnectedDevice(id)) {
            SubscribeResourceUri(device);
        }
    }
}

bool DeviceHandler::findSubscription(const std::shared_ptr<Device>& device, std::string& id, std::string& uris) const {
    if (!device) {
        HL_LOGE("device is null!");
        return false;
    }
    id = device->GetId();
    if (id.empty()) {
        HL_LOGE("device id is empty!");
        return false;
    }
    bool found = false;
    uris = getJsonUrifromDevID(device, found);
    if (uris.empty()) {
        HL_LOGE("jsonResUri is empty!");
        return false;
    }
    if (!found) {
        HL_LOGE("No subscribe uri found");
    }
    return found;
}

std::string DeviceHandler::getJsonUrifromDevID(const std::shared_ptr<Device>& device, bool& found) const {
    found = false;
    if (!device) {
        return "";
    }
    const auto lock = Lock();
    const std::string id = device->GetId();
    if (id.empty()) {
        HL_LOGE("device id is empty!");
        return "";
    }
    const std::string vid = device->GetVid();
    if (vid.empty()) {
        HL_LOGE("vid is empty!");
        return "";
    }
    if (Metadata::GetInstance().IsEmptyMetadataMap()) {
        HL_LOGE("ui meta is empty!");
        return "";
    }
    const std::string type = device->GetDeviceType();
    const DeviceStatus status = device->GetStatus();
    const bool isSleepingTV = CHLUtil::IsDeviceTypeTVForActionState(type) && status != DEVICE_STATUS_CONNECTED;
    auto array = json::JsonValue::CreateArray();
    for (const auto& uri : Metadata::GetInstance().GetSubscribeList(vid)) {
        if (!device->HasDeviceUri(uri)) {
            HL_LOGI("device_id : %s, url : %s is not included in device", id.c_str(), uri.c_str());
            continue;
        }
        if (isSleepingTV && uri == kTvContentInfoUri) {
            HL_LOGI("device id : %s, device type : %s, status : %d, do not subscribe contentinfo", id.c_str(),
                    type.c_str(), status);
            continue;
        }
        array.append(uri);
        found = true;
    }
    return array.toString();
}

void* DeviceHandler::subscriptionToken() {
    std::lock_guard<std::mutex> lock(_leafMutex);
    if (_subscriptionToken == nullptr) {
        _subscriptionToken = CallbackTokens::Watch(weak_from_this());
    }
    return _subscriptionToken;
}

void DeviceHandler::ParseMetadata() {
    std::vector<std::string> vids;
    {
        const auto lock = Lock();
        HL_LOGI("parseMetadata() parsing start! dev size: %zu, meta_map_size: %d", _deviceMap.size(),
                Metadata::GetInstance().GetMetadataSize());
        for (const auto& [vid, ids] : _vidDevicesMap) {
            vids.push_back(vid);
        }
    }
    for (const auto& vid : vids) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return;
        }
        addMetadataParsingJobToScheduler([this, vid] { parseMetadataOfVid(vid); }, "ParseMetadata");
    }
}

void DeviceHandler::parseMetadataOfVid(const std::string& vid) {
    if (IsQuit()) {
        HL_LOGI("already quit");
        return;
    }
    // The document that was stored before still serves the devices.
    Guarded([&] { Metadata::GetInstance().ParseMetadata(vid, GetUiMeta(vid)); });
    HL_LOGI("ParseMetadata() ui metadata parsing done for %s, need to GetProperty", vid.c_str());

    std::unordered_set<std::string> ids;
    {
        const auto lock = Lock();
        const auto found = _vidDevicesMap.find(vid);
        if (found == _vidDevicesMap.end()) {
            HL_LOGE("ParseMetadata() didn't get devices from vid_devicesMap");
        } else {
            ids = found->second;
        }
    }
    for (const auto& id : ids) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return;
        }
        // It costs this device's turn only.
        Guarded([&] { readAndSubscribe(id); });
    }
}

void DeviceHandler::readAndSubscribe(const std::string& id) {
    HL_LOGI("ParseMetadata() device id : %s, try to GetProperty and SubscribeResourceUri", id.c_str());
    {
        // First, so that it is told with what the reading brings.
        const auto lock = Lock();
        if (const auto device = FindDevice(id)) {
            UpdateControllable(device);
        }
    }
    GetProperty(id);
    const auto device = FindDevice(id);
    if (!device) {
        HL_LOGE("ParseMetadata() device is not found");
        return;
    }
    if (!IsMyTV(id) && !isHubConnectedDevice(id)) {
        SubscribeResourceUri(device);
    }
}

std::string DeviceHandler::GetUiMeta(const std::string& vid) const {
    HL_LOGI("vid for meta data : %s ", vid.c_str());
    std::string text;
    if (!vid.empty()) {
        _agent.GetUIMetadata(vid, text);
    }
    return text;
}

void DeviceHandler::UpdateStateText() {
    const auto lock = Lock();
    for (const auto& [id, device] : _deviceMap) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return;
        }
        Metadata::GetInstance().SetDeviceStateText(device);
    }
}

void DeviceHandler::UpdateAllDevicesByMetadata() {
    const auto& metadata = Metadata::GetInstance();
    const auto lock = Lock();
    for (const auto& [id, device] : _deviceMap) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            return;
        }
        metadata.SetDeviceStateText(device);
        metadata.UpdateDeviceIconUrl(device);
        UpdateControllable(device);
    }
}

void DeviceHandler::UpdateControllable(const std::shared_ptr<Device>& device) {
    if (Metadata::GetInstance().HasStreamResource(device)) {
        HL_LOGI("[%s] has stream resource, set controllable true", device->GetId().c_str());
        device->SetControllableDevice(true);
    }
    if (device->IsSupportInnerView()) {
        HL_LOGI("[%s] has inside view resource, set controllable true", device->GetId().c_str());
        device->SetControllableDevice(true);
    }
}

}  // namespace VMFramework::HomeLoom
