#ifndef HOMELOOM_DESKTOP_RPC_PORT_CONNECTION_H
#define HOMELOOM_DESKTOP_RPC_PORT_CONNECTION_H

#include <sys/un.h>

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "Descriptor.h"
#include "Port.h"

namespace homeloom::desktop::rpc {

/// The two ports between a proxy and an application. The proxy connects a socket, which is the main port, and passes
/// one end of a pair of sockets over it, which is the callback port. The application answers with a parcel of one
/// int32.
struct Connection {
    static constexpr int kWelcome = 0;
    static constexpr int kUnwanted = 1;

    Connection(Descriptor mainSocket, Descriptor callbackSocket);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void shutDown();

    rpc_port_s main;
    rpc_port_s callback;
};

/// None for a path that no socket can have.
std::optional<sockaddr_un> addressOf(const std::string& path);

/// The proxy's side, without the answer; or the code of the failure.
std::variant<std::shared_ptr<Connection>, int> connectTo(const std::string& path);

/// The application's side: takes the other port from a connected socket that has something to be read. Null if that is
/// no proxy.
std::shared_ptr<Connection> acceptFrom(Descriptor socket);

/// What an application's first parcel says.
bool isWelcome(rpc_port_parcel_s& answer);

}  // namespace homeloom::desktop::rpc

#endif
