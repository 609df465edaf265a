#ifndef HOMELOOM_HOMELOOM_IOTHUB_HUBEVENTLISTENER_H
#define HOMELOOM_HOMELOOM_IOTHUB_HUBEVENTLISTENER_H

#include "Homeloom/IoTHub/IPCProxyBase.h"

namespace VMFramework::HomeLoom {

/// Follows the connection to the hub control application, on the main loop.
class HUBEventListener final : public rpc_port::IPCProxyBase::proxy::IEventListener {
public:
    void OnConnected() override;
    void OnDisconnected() override;
    void OnRejected() override;
};

}  // namespace VMFramework::HomeLoom

#endif
