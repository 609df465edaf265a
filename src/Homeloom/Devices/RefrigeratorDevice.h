#ifndef HOMELOOM_HOMELOOM_DEVICES_REFRIGERATORDEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_REFRIGERATORDEVICE_H

#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

class RefrigeratorDevice : public Device {
public:
    using Device::Device;
};

}  // namespace VMFramework::HomeLoom

#endif
