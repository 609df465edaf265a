#ifndef HOMELOOM_HOMELOOM_DEVICES_DEVICEFACTORY_H
#define HOMELOOM_HOMELOOM_DEVICES_DEVICEFACTORY_H

#include <memory>

#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

class ITesselHandler;

/// Turns a record into a device of the class that its type calls for.
class DeviceFactory {
public:
    DeviceFactory() = delete;

    static std::shared_ptr<Device> Create(const Device::_deviceInfo& info, ITesselHandler& agent);
};

}  // namespace VMFramework::HomeLoom

#endif
