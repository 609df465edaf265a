#ifndef HOMELOOM_HOMELOOM_NETWORK_CHUBREQUESTER_H
#define HOMELOOM_HOMELOOM_NETWORK_CHUBREQUESTER_H

#include <string>

#include "Homeloom/Network/CGeneralRequester.h"

namespace VMFramework::HomeLoom {

/// Asks the cloud about this TV's hub.
class CHubRequester : public CGeneralRequester {
public:
    /// Whether the cloud knows the hub. True also when that can't be found out: a hub is reset on a false, and must
    /// never be reset on a guess. Blocks for up to 15 seconds.
    bool RequestIsHubExist(const std::string& accessToken, const std::string& hubDeviceId);
};

}  // namespace VMFramework::HomeLoom

#endif
