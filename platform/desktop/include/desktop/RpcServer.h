#ifndef HOMELOOM_DESKTOP_RPCSERVER_H
#define HOMELOOM_DESKTOP_RPCSERVER_H

#include <rpc_port.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace homeloom::desktop::rpc {

/// The application's side of a port, for programs that play one. Everything happens on the GLib main loop; all
/// functions belong to its thread.
class RpcServer {
public:
    using ClientId = int;  // never used again
    struct Events {
        /// Asked about each connection; none welcomes all.
        std::function<bool()> isWelcome;
        std::function<void(ClientId)> connected;
        /// A parcel on the main port, which belongs to the server.
        std::function<void(ClientId, rpc_port_parcel_h)> called;
        std::function<void(ClientId)> disconnected;
    };

    /// Listens until its end, at rpc::socketPath() of the process that wants to connect. Throws std::runtime_error if
    /// it can't.
    RpcServer(const std::string& path, Events events);
    ~RpcServer();
    RpcServer(const RpcServer&) = delete;
    RpcServer& operator=(const RpcServer&) = delete;

    int connections() const;
    /// False for one that is gone or doesn't take it.
    bool send(ClientId client, rpc_port_port_type_e port, rpc_port_parcel_h parcel);
    /// Bytes as they are: parts of parcels, and what is none.
    bool sendBytes(ClientId client, rpc_port_port_type_e port, std::string_view bytes);
    void disconnect(ClientId client);

    /// A parcel as it travels: the length of the values in four bytes, and the values.
    static std::string bytesOf(rpc_port_parcel_h parcel);
    /// The parcel that came when these values did. The caller destroys it.
    static rpc_port_parcel_h parcelOf(std::string_view values);

private:
    class Listener;
    const std::unique_ptr<Listener> _listener;
};

}  // namespace homeloom::desktop::rpc

#endif
