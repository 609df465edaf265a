#ifndef HOMELOOM_HOMELOOM_NETWORK_CGENERALREQUESTER_H
#define HOMELOOM_HOMELOOM_NETWORK_CGENERALREQUESTER_H

#include <string>

#include "Homeloom/Network/CRestHandler.h"

namespace VMFramework::HomeLoom {

/// Base of requests to the platform's API.
class CGeneralRequester : public CRestHandler {
protected:
    /// The API's address in the environment that is set, with "/v1/" at its end.
    std::string _GetServerUrl();
    /// _RequestHttp with a log line.
    long _Request(std::string& responseBody);
};

}  // namespace VMFramework::HomeLoom

#endif
