#include "desktop/RpcServer.h"

#include <glib-unix.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <stdexcept>
#include <utility>

#include "Connection.h"
#include "Descriptor.h"
#include "Parcel.h"

namespace homeloom::desktop::rpc {

namespace {

/// A function that is called when there is something to be read from a descriptor, for as long as the object lives.
class Readable {
public:
    Readable(int descriptor, std::function<void()> function)
        : _function(std::move(function)), _source(g_unix_fd_source_new(descriptor, G_IO_IN)) {
        const GUnixFDSourceFunc call = [](gint, GIOCondition, gpointer self) -> gboolean {
            const auto read = static_cast<Readable*>(self)->_function;  // which may end the object
            read();
            return G_SOURCE_CONTINUE;
        };
        g_source_set_callback(_source, G_SOURCE_FUNC(call), this, nullptr);
        g_source_attach(_source, nullptr);
    }
    ~Readable() {
        g_source_destroy(_source);
        g_source_unref(_source);
    }
    Readable(const Readable&) = delete;
    Readable& operator=(const Readable&) = delete;

private:
    const std::function<void()> _function;
    GSource* const _source;
};

constexpr int kBacklog = 16;

Descriptor listenAt(const std::string& path) {
    unlink(path.c_str());  // what one that was killed has left
    const auto address = addressOf(path);
    Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!address || bind(listener.number(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0 ||
        listen(listener.number(), kBacklog) != 0) {
        throw std::runtime_error(path + ": " + std::strerror(address ? errno : ENAMETOOLONG));
    }
    return listener;
}

}  // namespace

class RpcServer::Listener {
public:
    Listener(std::string path, Events events)
        : _path(std::move(path)),
          _events(std::move(events)),
          _socket(listenAt(_path)),
          _readable(_socket.number(), [this] { accept(); }) {}

    ~Listener() { unlink(_path.c_str()); }

    int connections() const {
        int count = 0;
        for (const auto& [id, client] : _clients) {
            count += client.connection ? 1 : 0;
        }
        return count;
    }

    bool sendBytes(ClientId id, rpc_port_port_type_e type, std::string_view bytes) {
        const auto found = _clients.find(id);
        if (found == _clients.end() || !found->second.connection) {
            return false;
        }
        Connection& connection = *found->second.connection;
        return (type == RPC_PORT_PORT_MAIN ? connection.main : connection.callback).send(bytes);
    }

    void disconnect(ClientId id) {
        const auto found = _clients.find(id);
        if (found == _clients.end()) {
            return;
        }
        const bool wasConnected = found->second.connection != nullptr;
        _clients.erase(found);
        if (wasConnected && _events.disconnected) {
            _events.disconnected(id);
        }
    }

private:
    struct Client {
        Descriptor socket;                       // until the client has introduced itself
        std::shared_ptr<Connection> connection;  // from then on
        std::unique_ptr<Readable> readable;
    };

    void accept() {
        Descriptor socket(accept4(_socket.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket) {
            return;
        }
        const ClientId id = ++_lastId;
        auto readable = std::make_unique<Readable>(socket.number(), [this, id] { read(id); });
        _clients[id] = Client{std::move(socket), nullptr, std::move(readable)};
    }

    void read(ClientId id) {
        Client& client = _clients.at(id);
        if (client.connection) {
            takeCalls(id, client.connection);
        } else if (!introduce(client)) {
            disconnect(id);
        } else if (_events.connected) {
            _events.connected(id);
        }
    }

    bool introduce(Client& client) const {
        const auto connection = acceptFrom(std::move(client.socket));
        if (!connection) {
            return false;
        }
        const bool isWanted = !_events.isWelcome || _events.isWelcome();
        rpc_port_parcel_s answer;
        answer.writeInt32(isWanted ? Connection::kWelcome : Connection::kUnwanted);
        if (!connection->main.send(answer.bytes()) || !isWanted) {
            return false;
        }
        client.connection = connection;
        return true;
    }

    // By value: the client may go in the middle.
    void takeCalls(ClientId id, std::shared_ptr<Connection> connection) {
        const auto came = connection->main.fill();
        while (const auto parcel = connection->main.next()) {
            if (_events.called) {
                _events.called(id, parcel.get());
            }
        }
        if (came == rpc_port_s::Came::End) {
            disconnect(id);
        }
    }

    const std::string _path;
    const Events _events;
    const Descriptor _socket;
    ClientId _lastId = 0;
    std::map<ClientId, Client> _clients;
    const Readable _readable;
};

RpcServer::RpcServer(const std::string& path, Events events)
    : _listener(std::make_unique<Listener>(path, std::move(events))) {}

RpcServer::~RpcServer() = default;

int RpcServer::connections() const {
    return _listener->connections();
}

bool RpcServer::send(ClientId client, rpc_port_port_type_e port, rpc_port_parcel_h parcel) {
    return sendBytes(client, port, parcel->bytes());
}

bool RpcServer::sendBytes(ClientId client, rpc_port_port_type_e port, std::string_view bytes) {
    return _listener->sendBytes(client, port, bytes);
}

void RpcServer::disconnect(ClientId client) {
    _listener->disconnect(client);
}

rpc_port_parcel_h RpcServer::parcelOf(std::string_view values) {
    return new rpc_port_parcel_s(values);
}

std::string RpcServer::bytesOf(rpc_port_parcel_h parcel) {
    return parcel->bytes();
}

}  // namespace homeloom::desktop::rpc
