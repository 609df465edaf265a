#ifndef HOMELOOM_HOMELOOM_DEVICES_HUBDEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_HUBDEVICE_H

#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

class HubDevice : public Device {
public:
    using Device::Device;
};

}  // namespace VMFramework::HomeLoom

#endif
