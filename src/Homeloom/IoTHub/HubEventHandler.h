#ifndef HOMELOOM_HOMELOOM_IOTHUB_HUBEVENTHANDLER_H
#define HOMELOOM_HOMELOOM_IOTHUB_HUBEVENTHANDLER_H

#include <string>

#include "Homeloom/IoTHub/IPCProxyBase.h"

namespace VMFramework::HomeLoom {

/// What every call gives the hub control application to answer to: a whole series of events.
class HubEventHandler : public rpc_port::IPCProxyBase::proxy::OnEvent {
public:
    void OnReceived(int event, std::string data) override;
};

}  // namespace VMFramework::HomeLoom

#endif
