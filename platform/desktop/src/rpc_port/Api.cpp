// The functions of rpc_port.h but for what parcels hold.
#include <rpc_port.h>

#include <memory>

#include "Controls.h"
#include "Parcel.h"
#include "Port.h"
#include "Proxy.h"
#include "vmf/CallFaults.h"

struct rpc_port_proxy_s {
    const std::shared_ptr<homeloom::desktop::rpc::Proxy> proxy = std::make_shared<homeloom::desktop::rpc::Proxy>();
};

namespace {

using homeloom::desktop::rpc::failureOf;
using homeloom::desktop::rpc::Operation;
using homeloom::desktop::rpc::Proxy;

template <typename Slot, typename Function>
int setCallback(rpc_port_proxy_h proxy, Slot slot, Function function, void* userData) {
    if (proxy == nullptr || function == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    proxy->proxy->change([&](Proxy::Callbacks& callbacks) { callbacks.*slot = {function, userData}; });
    return RPC_PORT_ERROR_NONE;
}

using Connect = int (Proxy::*)(const std::string& appId, const std::string& portName);

// The code with which a function fails, by its name or by what the desk has set for all of its kind.
int failureAt(const char* function, Operation operation) {
    const int fault = homeloom::desktop::takeFault(function);
    return fault != 0 ? fault : failureOf(operation);
}

int connectWith(const char* function, Connect connect, rpc_port_proxy_h proxy, const char* appId,
                const char* portName) {
    const bool isAddress = appId != nullptr && *appId != '\0' && portName != nullptr && *portName != '\0';
    if (proxy == nullptr || !isAddress) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    const int failure = failureAt(function, Operation::Connect);
    return failure != 0 ? failure : ((*proxy->proxy).*connect)(appId, portName);
}

}  // namespace

int rpc_port_proxy_create(rpc_port_proxy_h* proxy) {
    if (proxy == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    if (const int failure = failureAt(__func__, Operation::Create)) {
        return failure;
    }
    *proxy = new rpc_port_proxy_s();
    homeloom::desktop::rpc::countProxy(1);
    return RPC_PORT_ERROR_NONE;
}

int rpc_port_proxy_destroy(rpc_port_proxy_h proxy) {
    if (proxy == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    proxy->proxy->end();
    delete proxy;
    homeloom::desktop::rpc::countProxy(-1);
    return RPC_PORT_ERROR_NONE;
}

int rpc_port_proxy_add_connected_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_connected_event_cb callback,
                                          void* user_data) {
    return setCallback(proxy, &Proxy::Callbacks::connected, callback, user_data);
}

int rpc_port_proxy_add_disconnected_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_disconnected_event_cb callback,
                                             void* user_data) {
    return setCallback(proxy, &Proxy::Callbacks::disconnected, callback, user_data);
}

int rpc_port_proxy_add_rejected_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_rejected_event_cb callback,
                                         void* user_data) {
    return setCallback(proxy, &Proxy::Callbacks::rejected, callback, user_data);
}

int rpc_port_proxy_add_received_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_received_event_cb callback,
                                         void* user_data) {
    return setCallback(proxy, &Proxy::Callbacks::received, callback, user_data);
}

int rpc_port_proxy_connect(rpc_port_proxy_h proxy, const char* app_id, const char* port_name) {
    return connectWith(__func__, &Proxy::connect, proxy, app_id, port_name);
}

int rpc_port_proxy_connect_sync(rpc_port_proxy_h proxy, const char* app_id, const char* port_name) {
    return connectWith(__func__, &Proxy::connectSync, proxy, app_id, port_name);
}

int rpc_port_proxy_get_port(rpc_port_proxy_h proxy, rpc_port_port_type_e type, rpc_port_h* port) {
    if (proxy == nullptr || port == nullptr || (type != RPC_PORT_PORT_MAIN && type != RPC_PORT_PORT_CALLBACK)) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    return proxy->proxy->getPort(type, port);
}

int rpc_port_parcel_create_from_port(rpc_port_parcel_h* parcel, rpc_port_h port) {
    if (parcel == nullptr || port == nullptr) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    auto received = port->isOffering() ? port->takeOffered() : port->receive();
    if (!received) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    *parcel = received.release();
    return RPC_PORT_ERROR_NONE;
}

int rpc_port_parcel_send(rpc_port_parcel_h parcel, rpc_port_h port) {
    if (parcel == nullptr || port == nullptr || !parcel->isWhole()) {
        return RPC_PORT_ERROR_INVALID_PARAMETER;
    }
    if (const int failure = failureAt(__func__, Operation::Send)) {
        return failure;
    }
    return port->send(parcel->bytes()) ? RPC_PORT_ERROR_NONE : RPC_PORT_ERROR_IO_ERROR;
}
