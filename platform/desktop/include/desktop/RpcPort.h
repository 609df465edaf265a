#ifndef HOMELOOM_DESKTOP_RPCPORT_H
#define HOMELOOM_DESKTOP_RPCPORT_H

#include <string>

/// What is behind rpc_port.h on the desk: local stream sockets in a private folder. All operations are thread-safe.
namespace homeloom::desktop::rpc {

/// Where the application listens for connections to its port. The folder is made on the first call, can be entered by
/// this user only, and goes with the process. Throws std::runtime_error if it can't be made.
std::string socketPath(const std::string& appId, const std::string& portName);

/// From now on rpc_port_proxy_create returns this code; 0 lets it work.
void failCreate(int code);
/// The same for rpc_port_proxy_connect and rpc_port_proxy_connect_sync.
void failConnect(int code);
/// The same for rpc_port_parcel_send.
void failSend(int code);

/// Proxies and parcels that were not destroyed, and connections that stand or are opened.
struct Holdings {
    int proxies = 0;
    int connections = 0;
    int parcels = 0;
};
Holdings holdings();

}  // namespace homeloom::desktop::rpc

#endif
