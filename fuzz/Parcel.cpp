// The values of a parcel that the hub control application sends as an event.
#include <cstdlib>
#include <cstring>

#include <desktop/RpcServer.h>
#include <rpc_port.h>

#include "Homeloom/IoTHub/IPCProxyBase.h"
#include "support/Input.h"

namespace {

using homeloom::desktop::rpc::RpcServer;

/// Reads what the bits of a number say. After a failure nothing may be read.
void read(const std::string& values, unsigned plan) {
    const rpc_port_parcel_h parcel = RpcServer::parcelOf(values);
    bool hasFailed = false;
    for (int i = 0; i < 8; ++i, plan >>= 2) {
        int32_t number = 0;
        bool flag = false;
        char* text = nullptr;
        const int result = (plan & 3) == 0   ? rpc_port_parcel_read_int32(parcel, &number)
                           : (plan & 3) == 1 ? rpc_port_parcel_read_bool(parcel, &flag)
                                             : rpc_port_parcel_read_string(parcel, &text);
        fuzz::require(!hasFailed || result != RPC_PORT_ERROR_NONE, "after a failure nothing is read");
        fuzz::require(text == nullptr || std::strlen(text) <= values.size(), "a text is no longer than its parcel");
        hasFailed = result != RPC_PORT_ERROR_NONE;
        std::free(text);
    }
    rpc_port_parcel_destroy(parcel);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string values = fuzz::text(data, size);
    for (unsigned plan = 0; plan < 256; ++plan) {
        read(values, plan * 257);
    }
    const rpc_port_parcel_h event = RpcServer::parcelOf(values);
    rpc_port::IPCProxyBase::proxy::OnEvent().OnReceivedEvent(event);
    rpc_port_parcel_destroy(event);
    return 0;
}
