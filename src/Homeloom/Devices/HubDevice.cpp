// A hub among the devices of the home: it can ask the cloud about itself.
#include "Homeloom/Devices/HubDevice.h"

namespace VMFramework::HomeLoom {

bool HubDevice::RequestIsHubExist(const std::string& accessToken) {
    return _requester.RequestIsHubExist(accessToken, GetId());
}

}  // namespace VMFramework::HomeLoom
