#include "Proxy.h"

#include <glib-unix.h>

#include <utility>
#include <variant>

#include "Connection.h"
#include "Controls.h"
#include "Parcel.h"
#include "desktop/Guard.h"

namespace homeloom::desktop::rpc {

namespace {

// Around what a source has and another thread made: the thread sanitizer doesn't know GLib's own locks.
std::mutex watchMutex;

}  // namespace

struct Proxy::Watch {
    std::shared_ptr<Proxy> proxy;
    Step step;

    static Watch* make(const Watch& watch) {
        const std::lock_guard<std::mutex> lock(watchMutex);
        return new Watch(watch);
    }
    static void free(gpointer watch) {
        const std::lock_guard<std::mutex> lock(watchMutex);
        delete static_cast<Watch*>(watch);
    }
    static Watch copyOf(gpointer watch) {
        const std::lock_guard<std::mutex> lock(watchMutex);
        return *static_cast<Watch*>(watch);
    }
};

void Proxy::change(const std::function<void(Callbacks&)>& function) {
    const std::lock_guard<std::mutex> lock(_mutex);
    function(_callbacks);
}

int Proxy::open(const std::string& appId, const std::string& portName) {
    if (_state != State::Idle) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    _appId = appId;
    _portName = portName;
    auto opened = connectTo(pathOfSocket(appId, portName));
    if (const int* const error = std::get_if<int>(&opened)) {
        return *error;
    }
    _connection = std::get<std::shared_ptr<Connection>>(std::move(opened));
    _connection->callback.beginOffering();
    _state = State::Connecting;
    return RPC_PORT_ERROR_NONE;
}

int Proxy::connect(const std::string& appId, const std::string& portName) {
    const std::lock_guard<std::mutex> lock(_mutex);
    const bool isIdle = _state == State::Idle;
    const int result = open(appId, portName);
    if (result == RPC_PORT_ERROR_NONE) {
        watchSocket(_connection->main.descriptor(), G_IO_IN, &Proxy::takeAnswer);
        watch(g_timeout_source_new(RPC_PORT_TIME_LIMIT_MS), nullptr, &Proxy::reject);
    } else if (isIdle && result == RPC_PORT_ERROR_IO_ERROR) {
        // Nobody is there: that is told as it is when somebody doesn't want to.
        _state = State::Connecting;
        watch(g_idle_source_new(), nullptr, &Proxy::reject);
        return RPC_PORT_ERROR_NONE;
    }
    return result;
}

int Proxy::connectSync(const std::string& appId, const std::string& portName) {
    std::shared_ptr<Connection> opened;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (const int result = open(appId, portName); result != RPC_PORT_ERROR_NONE) {
            return result;
        }
        opened = _connection;
    }
    const auto answer = opened->main.receive();
    if (answer && isWelcome(*answer)) {
        becomeConnected();
        return RPC_PORT_ERROR_NONE;
    }
    const std::lock_guard<std::mutex> lock(_mutex);
    takeConnection();
    return answer ? RPC_PORT_ERROR_PERMISSION_DENIED : RPC_PORT_ERROR_IO_ERROR;
}

int Proxy::getPort(rpc_port_port_type_e type, rpc_port_h* port) {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_state != State::Connected) {
        return RPC_PORT_ERROR_IO_ERROR;
    }
    *port = type == RPC_PORT_PORT_MAIN ? &_connection->main : &_connection->callback;
    return RPC_PORT_ERROR_NONE;
}

void Proxy::end() {
    std::unique_lock<std::mutex> lock(_mutex);
    const auto ended = takeConnection();
    _state = State::Ended;
    if (ended) {
        ended->shutDown();
    }
    _stepEnded.wait(lock,
                    [this] { return _stepThread == std::thread::id() || _stepThread == std::this_thread::get_id(); });
}

std::shared_ptr<Connection> Proxy::takeConnection() {
    unwatch();
    if (_state != State::Ended) {
        _state = State::Idle;
    }
    return std::move(_connection);
}

// ---- Sources ----

void Proxy::watch(GSource* source, GSourceFunc function, Step step) {
    const GSourceFunc plain = [](gpointer data) -> gboolean {
        run(Watch::copyOf(data));
        return G_SOURCE_CONTINUE;
    };
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, function != nullptr ? function : plain, Watch::make({shared_from_this(), step}),
                          Watch::free);
    g_source_attach(source, nullptr);
    _sources.push_back(source);
}

void Proxy::watchSocket(int descriptor, GIOCondition condition, Step step) {
    const GUnixFDSourceFunc function = [](gint, GIOCondition, gpointer data) -> gboolean {
        run(Watch::copyOf(data));
        return G_SOURCE_CONTINUE;
    };
    watch(g_unix_fd_source_new(descriptor, condition), G_SOURCE_FUNC(function), step);
}

void Proxy::unwatch() {
    for (GSource* const source : std::exchange(_sources, {})) {
        g_source_destroy(source);
        g_source_unref(source);
    }
}

void Proxy::run(const Watch& watch) {
    Proxy& proxy = *watch.proxy;
    {
        const std::lock_guard<std::mutex> lock(proxy._mutex);
        if (g_source_is_destroyed(g_main_current_source())) {
            return;
        }
        proxy._stepThread = std::this_thread::get_id();
    }
    (proxy.*watch.step)();
    const std::lock_guard<std::mutex> lock(proxy._mutex);
    proxy._stepThread = {};
    proxy._stepEnded.notify_all();
}

// ---- Steps ----

std::shared_ptr<Connection> Proxy::connection() {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _connection;
}

void Proxy::tell(const char* callback, const Call& call) {
    std::unique_lock<std::mutex> lock(_mutex);
    if (_state == State::Ended) {
        return;
    }
    const Callbacks callbacks = _callbacks;
    const std::string appId = _appId;
    const std::string portName = _portName;
    lock.unlock();
    callPlugin(callback, [&] { call(callbacks, appId.c_str(), portName.c_str()); });
}

void Proxy::takeAnswer() {
    const auto asked = connection();
    if (!asked) {
        return;
    }
    const auto came = asked->main.fill();
    if (const auto answer = asked->main.next()) {
        isWelcome(*answer) ? becomeConnected() : reject();
    } else if (came == rpc_port_s::Came::End) {
        reject();
    }
}

void Proxy::reject() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        takeConnection();
    }
    tell("IPC rejected callback", [](const Callbacks& callbacks, const char* endpoint, const char* portName) {
        if (callbacks.rejected.function != nullptr) {
            callbacks.rejected.function(endpoint, portName, callbacks.rejected.userData);
        }
    });
}

void Proxy::becomeConnected() {
    std::shared_ptr<Connection> connected;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_state != State::Connecting) {
            return;
        }
        unwatch();
        _state = State::Connected;
        connected = _connection;
    }
    tell("IPC connected callback", [&](const Callbacks& callbacks, const char* endpoint, const char* portName) {
        if (callbacks.connected.function != nullptr) {
            callbacks.connected.function(endpoint, portName, &connected->main, callbacks.connected.userData);
        }
    });
    // Not before: no event overtakes the word that there is a connection.
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_connection == connected) {
        watchSocket(connected->callback.descriptor(), G_IO_IN, &Proxy::takeEvents);
        watchSocket(connected->main.descriptor(), G_IO_HUP, &Proxy::disconnect);
    }
}

bool Proxy::deliverEvents(const std::shared_ptr<Connection>& from) {
    while (auto parcel = from->callback.next()) {
        from->callback.offer(std::move(parcel));
        tell("IPC received callback", [](const Callbacks& callbacks, const char* endpoint, const char* portName) {
            if (callbacks.received.function != nullptr) {
                callbacks.received.function(endpoint, portName, callbacks.received.userData);
            }
        });
        from->callback.takeOffered();  // what nobody took
        if (connection() != from) {
            return false;
        }
    }
    return true;
}

void Proxy::takeEvents() {
    const auto from = connection();
    if (!from) {
        return;
    }
    const auto came = from->callback.fill();
    if (deliverEvents(from) && came == rpc_port_s::Came::End) {
        disconnect();
    }
}

void Proxy::disconnect() {
    const auto ended = connection();
    if (!ended) {
        return;
    }
    ended->shutDown();
    // What the application said before it went still counts.
    while (ended->callback.fill() == rpc_port_s::Came::Something) {
        if (!deliverEvents(ended)) {
            return;
        }
    }
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_connection != ended) {
            return;
        }
        takeConnection();
    }
    // The ports stay until the callback returns.
    tell("IPC disconnected callback", [](const Callbacks& callbacks, const char* endpoint, const char* portName) {
        if (callbacks.disconnected.function != nullptr) {
            callbacks.disconnected.function(endpoint, portName, callbacks.disconnected.userData);
        }
    });
}

}  // namespace homeloom::desktop::rpc
