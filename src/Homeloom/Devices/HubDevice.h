#ifndef HOMELOOM_HOMELOOM_DEVICES_HUBDEVICE_H
#define HOMELOOM_HOMELOOM_DEVICES_HUBDEVICE_H

#include <string>

#include "Homeloom/Devices/Device.h"
#include "Homeloom/Network/CHubRequester.h"

namespace VMFramework::HomeLoom {

class HubDevice : public Device {
public:
    using Device::Device;

    /// Whether the cloud knows this hub; see CHubRequester. Waits for the answer on the calling thread.
    bool RequestIsHubExist(const std::string& accessToken);

private:
    CHubRequester _requester;
};

}  // namespace VMFramework::HomeLoom

#endif
