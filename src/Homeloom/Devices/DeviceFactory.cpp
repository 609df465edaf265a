// Chooses the class of a device by its type.
#include "Homeloom/Devices/DeviceFactory.h"

#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Devices/HubDevice.h"
#include "Homeloom/Devices/RefrigeratorDevice.h"

namespace VMFramework::HomeLoom {

std::shared_ptr<Device> DeviceFactory::Create(const Device::_deviceInfo& info, ITesselHandler& agent) {
    if (info.device_type == "oic.d.camera" || info.device_type == "x.com.hl.d.doorbell") {
        return std::make_shared<CameraDevice>(info, agent);
    }
    if (info.device_type == "oic.d.refrigerator") {
        return std::make_shared<RefrigeratorDevice>(info, agent);
    }
    if (info.device_type == "x.com.hl.d.hub") {
        return std::make_shared<HubDevice>(info);
    }
    return std::make_shared<Device>(info);
}

}  // namespace VMFramework::HomeLoom
