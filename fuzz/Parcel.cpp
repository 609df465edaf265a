// The values of a parcel that the hub control application sends as an event.

#include <desktop/RpcServer.h>
#include <rpc_port.h>

#include "Homeloom/IoTHub/IPCProxyBase.h"
#include "support/Input.h"

using homeloom::desktop::rpc::RpcServer;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const rpc_port_parcel_h event = RpcServer::parcelOf(fuzz::text(data, size));
    rpc_port::IPCProxyBase::proxy::OnEvent().OnReceivedEvent(event);
    rpc_port_parcel_destroy(event);
    return 0;
}
