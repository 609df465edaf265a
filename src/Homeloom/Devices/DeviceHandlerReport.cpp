// Devices as the framework sees them: endpoints of the device list, and icons.

#include <type_traits>

#include <VMFramework/JsonValue.h>
#include <vmf_endpoint.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kWebrtcUri[] = "/capability/webrtc/main/0";

json::JsonValue getIconsInfo(const json::JsonValue& item) {
    auto icons = json::JsonValue::CreateObject();
    icons.set(Names::ICON_DEVICE_ID, item[Names::ICON_DEVICE_ID].asString());
    for (const char* name : {Names::ICONS, Names::POSSIBLE_ICONS, Names::BADGE_ICONS}) {
        const auto member = item[name];
        icons.set(name, member.isNull() ? json::JsonValue("") : member);
    }
    return icons;
}

}  // namespace

DeviceHandler::DeviceLock DeviceHandler::GetDeviceData(const std::shared_ptr<IEndpointListHelper>& list) const {
    const auto notificationValues = readCameraNotificationValues();
    auto lock = Lock();
    for (const auto& [id, device] : _deviceMap) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            break;
        }
        if (!device) {
            continue;
        }
        const auto endpoint = IEndpointHelper::Create();
        UnlistedEndpoint unlisted(endpoint->GetHandle());
        // A camera that came in between reports again with its own update.
        const auto value = notificationValues.find(id);
        fillEndpoint(*endpoint, device, value != notificationValues.end() ? value->second : 0);
        endpoint->PrintData(device);
        list->Push(unlisted.release(), VMF_ERROR_NONE);
    }
    return lock;
}

std::unordered_map<std::string, int> DeviceHandler::readCameraNotificationValues() const {
    struct Camera {
        std::shared_ptr<CameraDevice> device;
        CameraDevice::NotificationSet supported;
    };
    std::vector<Camera> cameras;
    {
        const auto lock = Lock();
        for (const auto& [id, device] : _deviceMap) {
            if (const auto camera = std::dynamic_pointer_cast<CameraDevice>(device)) {
                cameras.push_back({camera, camera->GetSupportedNotifications()});
            }
        }
    }
    std::unordered_map<std::string, int> values;
    for (const auto& camera : cameras) {
        if (IsQuit()) {
            HL_LOGI("already quit");
            break;
        }
        values.emplace(camera.device->GetId(), camera.device->QueryCameraNotificationValue(camera.supported));
    }
    return values;
}

void DeviceHandler::fillEndpoint(IEndpointHelper& endpoint, const std::shared_ptr<Device>& device,
                                 int cameraNotificationValue) const {
    const auto presentation = Metadata::GetInstance().GetPresentation(device);
    const std::string id = device->GetId();
    const std::string vid = device->GetVid();
    const std::string type = device->GetDeviceType();

    endpoint.SetDeviceId(id);
    endpoint.SetDeviceName(device->GetName());
    endpoint.SetServiceName(Names::HOMELOOM);
    endpoint.SetInterfaceType(Names::HOMELOOM_INTERFACETYPE);
    endpoint.SetDeviceType(Names::HOMELOOM_DEVICE);
    endpoint.SetSubDeviceType(type);

    endpoint.SetExtraData(Names::NICK, device->GetNickName());
    endpoint.SetExtraData(Names::STATE_TEXT, device->GetStateText());
    endpoint.SetExtraData(Names::VID, vid);
    endpoint.SetExtraData(Names::LOCATION, device->GetLocation());
    endpoint.SetExtraData(Names::LOCATION_ID, device->GetLocationID());
    endpoint.SetExtraData(Names::ROOM, device->GetRoom());
    endpoint.SetExtraData(Names::ROOM_ID, device->GetRoomID());

    endpoint.SetExtraDataInt(Names::CLOUD_DEVICE_STATUS, GetDeviceStatus(device));
    endpoint.SetExtraDataInt(Names::ACTIVE_STATE, device->IsInactive() ? 0 : 1);
    endpoint.SetExtraDataBool(Names::RUNNING_STATE, device->GetRunningState());
    endpoint.SetExtraDataInt(Names::CONTROLLABLE, device->IsControllableDevice() ? 1 : 0);

    endpoint.SetExtraData(Names::CONTROL_TYPE, presentation.control_type);
    endpoint.SetExtraData(Names::SOLENNE_SERVER_DP_URI, presentation.solenne_server_dp_uri);
    endpoint.SetExtraData(Names::ACTION_STATE, presentation.action_state);
    endpoint.SetExtraData(Names::ACTION_URL, presentation.action_url);
    endpoint.SetExtraData(Names::CONTEXT_VALUE, presentation.context_value);
    endpoint.SetExtraData(Names::ICON_URL, device->GetIconUrl());

    endpoint.SetExtraDataInt(Names::SUBDEVTYPE_ENUM, SubDeviceType(type));

    // A device whose type has changed since it was made may be of another class.
    const auto camera = std::dynamic_pointer_cast<CameraDevice>(device);
    if (camera && device->IsCameraDevice()) {
        endpoint.SetExtraDataInt(Names::CAMERA_NOTIFICATION_TYPE, camera->IsSupportCameraNotificationType());
        endpoint.SetExtraDataInt(Names::CAMERA_NOTIFICATION_VALUE, cameraNotificationValue);
        if (camera->IsSupport2WayTalk()) {
            endpoint.SetExtraDataInt(Names::SUPPORT_2WAYTALK, 1);
            HL_LOGI("support 2way talk vid : %s ", vid.c_str());
        }
    }
    if (type == "oic.d.refrigerator") {
        endpoint.SetExtraDataInt(Names::REFRIGERATOR_INSIDE_VIEW, device->HasResource(Device::kInsideViewUri) ? 1 : 0);
    }
    endpoint.SetExtraDataInt(Names::WEBRTC_SUPPORT, device->HasDeviceUri(kWebrtcUri) ? 1 : 0);

    if (presentation.has_cards) {
        endpoint.SetExtraData(Names::SUB_DEVICE_CARD_LIST_INFO, device->GetSubDeviceCardJsonInfo());
    }
    endpoint.SetExtraDataInt(Names::NUM_OF_SUB_DEVICE_CARDS, presentation.card_count);
    HL_LOGI("device id : %s, valid_num_of_sub_device_cards : %d", id.c_str(), presentation.card_count);

    endpoint.SetExtraData(Names::CORE_DEVICE_TYPE, device->GetCoreDeviceType());
    endpoint.SetExtraData(Names::CORE_DEVICE_NETWORK_TYPE, device->GetCoreDeviceNetworkType());
    endpoint.SetExtraData(Names::CORE_DEVICE_PARENT_DEVICE_ID, device->GetCoreDeviceParentDeviceId());
    endpoint.SetExtraData(Names::CORE_DEVICE_ICON_KEY, device->GetCoreDeviceIconKey());
    endpoint.SetExtraData(Names::CORE_DEVICE_ICON_DATE, device->GetCoreDeviceIconDate());
    endpoint.SetExtraData(Names::CORE_DEVICE_ANIMATION_ICON_URL, device->GetCoreDeviceAnimationIconUrl());
    endpoint.SetExtraData(Names::CORE_DEVICE_ACTIVATED_ICON_URL, device->GetCoreDeviceActivatedIconUrl());
    endpoint.SetExtraData(Names::CORE_DEVICE_INACTIVATED_ICON_URL, device->GetCoreDeviceInactivatedIconUrl());
    endpoint.SetExtraData(Names::CORE_DEVICE_DISCONNECTED_ICON_URL, device->GetCoreDeviceDisconnectedIconUrl());
}

void DeviceHandler::GetDeviceIcons(const std::shared_ptr<CTransaction>& transaction,
                                   const std::string& deviceId) const {
    GetDeviceIconsParam param(transaction);
    Guarded([&] {
        param.deviceIconInfo = deviceId.empty() ? getDevicesIconsWithJson() : getDeviceIconsWithJson(deviceId);
    });
    param.result = !param.deviceIconInfo.empty();
    Reporter::Report(param);
}

std::string DeviceHandler::getDeviceIconsWithJson(const std::string& id) const {
    std::string text;
    const int ret = _agent.GetCoreDeviceJson(id, text);
    if (ret != 0) {
        HL_LOGE("didn't get core device json info, ret : %d", ret);
        return "";
    }
    const auto document = json::JsonValue::Create(text);
    if (document.isNull()) {
        HL_LOGE("json parsing failed");
        return "";
    }
    return getIconsInfo(document).toString();
}

std::string DeviceHandler::getDevicesIconsWithJson() const {
    std::string text;
    const int ret = _agent.GetCoreDeviceListJson("", text);
    if (ret != 0) {
        HL_LOGE("didn't get core device list json info, ret : %d", ret);
        return "";
    }
    const auto document = json::JsonValue::Create(text);
    if (document.isNull()) {
        HL_LOGE("json parsing failed");
        return "";
    }
    const auto items = document["items"];
    if (items.isNull()) {
        HL_LOGE("items parsing failed");
        return "";
    }
    auto array = json::JsonValue::CreateArray();
    for (std::size_t i = 0; i < items.size(); ++i) {
        array.append(getIconsInfo(items[i]));
    }
    return array.toString();
}

}  // namespace VMFramework::HomeLoom
