// Requests for cameras and refrigerators. They check that a user is signed in, find the device, and leave the rest to
// it. A device that can't serve is answered at once with the request's own word of failure: an empty URL, or false.

#include <memory>

#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Devices/RefrigeratorDevice.h"
#include "Homeloom/HomeloomClient.h"

namespace VMFramework::HomeLoom {

namespace {

std::string vidOf(const Device& device) {
    const auto lock = device.Lock();
    return device.GetVid();
}

bool isCamera(const Device& device) {
    const auto lock = device.Lock();
    return device.IsCameraDevice();
}

bool supportsInnerView(const Device& device) {
    const auto lock = device.Lock();
    return device.IsSupportInnerView();
}

}  // namespace

template <typename Kind>
std::shared_ptr<Kind> HomeloomClient::findDeviceOf(const std::string& deviceId) const {
    const auto devices = _deviceHandler.Get();
    return devices ? std::dynamic_pointer_cast<Kind>(devices->FindDevice(deviceId)) : nullptr;
}

template <typename Param, typename Call>
void HomeloomClient::askCamera(Param failure, const std::string& deviceId, const Call& call) {
    if (const auto camera = findCamera(deviceId)) {
        call(camera);
        return;
    }
    failure.deviceId = deviceId;
    Reporter::Report(failure);
}

void HomeloomClient::GetAvpCameraUrl(const Transaction& transaction, const std::string& deviceId) {
    requireClientAvailable();
    GetAvpCameraUrlParam failure(transaction);
    failure.accessToken = GetAccessToken();
    askCamera(failure, deviceId, [&](const auto& camera) {
        tryGetMetadata(vidOf(*camera));
        camera->GetAvpUrl(transaction, camera, failure.accessToken);
    });
}

void HomeloomClient::GetNoneAvpCameraUrl(const Transaction& transaction, const std::string& deviceId) {
    requireClientAvailable();
    askCamera(GetNoneAvpCameraUrlParam(transaction), deviceId, [&](const auto& camera) {
        tryGetMetadata(vidOf(*camera));
        camera->GetNoneAvpUrl(transaction, camera);
    });
}

void HomeloomClient::GetRingDoorBellUrl(const Transaction& transaction, const std::string& deviceId) {
    requireClientAvailable();
    askCamera(GetRingDoorbellUrlParam(transaction), deviceId, [&](const auto& camera) {
        // This one takes the list and group callbacks away until they are next registered.
        deregisterOCFCallback();
        tryGetMetadata(vidOf(*camera));
        camera->GetRingDoorBellUrl(transaction);
    });
}

void HomeloomClient::SetCameraNotification(const Transaction& transaction, const std::string& deviceId, int type) {
    requireClientAvailable();
    SetCameraNotificationTypeParam failure(transaction);
    failure.cameraNotificationType = type;
    askCamera(failure, deviceId, [&](const auto& camera) { camera->SetCameraNotification(transaction, type); });
}

void HomeloomClient::UnsetCameraNotification(const Transaction& transaction, const std::string& deviceId, int type) {
    requireClientAvailable();
    UnsetCameraNotificationTypeParam failure(transaction);
    failure.cameraNotificationType = type;
    askCamera(failure, deviceId, [&](const auto& camera) { camera->UnsetCameraNotification(transaction, type); });
}

// The next two do not ask whether a user is signed in: without one there is no device.

void HomeloomClient::RequestExecuteCommand(const Transaction& transaction, const std::string& deviceId,
                                           const std::string& component, const std::string& capability,
                                           const std::string& command, const std::string& argument) {
    askCamera(ExecuteCommandParam(transaction), deviceId, [&](const auto& camera) {
        camera->RequestExecuteCommand(transaction, component, capability, command, argument);
    });
}

void HomeloomClient::RequestGetStatusOfCapability(const Transaction& transaction, const std::string& deviceId,
                                                  const std::string& component, const std::string& capability) {
    askCamera(GetCapabilityStatusParam(transaction), deviceId,
              [&](const auto& camera) { camera->RequestGetStatusOfCapability(transaction, component, capability); });
}

void HomeloomClient::GetRefrigeratorInnerviewUrl(const Transaction& transaction, const std::string& deviceId) {
    requireClientAvailable();
    const auto refrigerator = findDeviceOf<RefrigeratorDevice>(deviceId);
    if (refrigerator && supportsInnerView(*refrigerator)) {
        refrigerator->GetInnerviewUrl(transaction, deviceId, GetAccessToken());
        return;
    }
    HL_LOGE("device is NULL or device_id[%s] is not support innerview", deviceId.c_str());
    GetRefrigeratorInnerViewUrlParam param(transaction);
    Reporter::Report(param);
}

std::shared_ptr<CameraDevice> HomeloomClient::findCamera(const std::string& deviceId) const {
    auto camera = findDeviceOf<CameraDevice>(deviceId);
    // A device whose type has changed since it was made may be of another class.
    if (!camera || !isCamera(*camera)) {
        HL_LOGE("device is NULL or device_id[%s] is NOT CAMERA", deviceId.c_str());
        return nullptr;
    }
    return camera;
}

}  // namespace VMFramework::HomeLoom
