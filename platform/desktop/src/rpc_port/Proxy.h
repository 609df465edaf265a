#ifndef HOMELOOM_DESKTOP_RPC_PORT_PROXY_H
#define HOMELOOM_DESKTOP_RPC_PORT_PROXY_H

#include <glib.h>
#include <rpc_port.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace homeloom::desktop::rpc {

struct Connection;

/// What a proxy's handle stands for. Its sources on the main loop share it, so that one that goes off late finds it.
class Proxy : public std::enable_shared_from_this<Proxy> {
public:
    template <typename Function>
    struct Callback {
        Function function = nullptr;
        void* userData = nullptr;
    };
    struct Callbacks {
        Callback<rpc_port_proxy_connected_event_cb> connected;
        Callback<rpc_port_proxy_disconnected_event_cb> disconnected;
        Callback<rpc_port_proxy_rejected_event_cb> rejected;
        Callback<rpc_port_proxy_received_event_cb> received;
    };

    void change(const std::function<void(Callbacks&)>& function);
    int connect(const std::string& appId, const std::string& portName);
    int connectSync(const std::string& appId, const std::string& portName);
    int getPort(rpc_port_port_type_e type, rpc_port_h* port);
    /// Nobody is called any more when it returns, unless the caller is in such a call.
    void end();

private:
    enum class State { Idle, Connecting, Connected, Ended };
    using Step = void (Proxy::*)();
    struct Watch;

    // Called with the mutex held.
    int open(const std::string& appId, const std::string& portName);
    void watch(GSource* source, GSourceFunc function, Step step);
    void watchSocket(int descriptor, GIOCondition condition, Step step);
    void unwatch();
    std::shared_ptr<Connection> takeConnection();

    // What the sources do, one at a time.
    static void run(const Watch& watch);
    void takeAnswer();
    void reject();
    void takeEvents();
    void disconnect();

    void becomeConnected();
    /// False when the connection ended meanwhile.
    bool deliverEvents(const std::shared_ptr<Connection>& connection);
    std::shared_ptr<Connection> connection();
    using Call = std::function<void(const Callbacks&, const char* endpoint, const char* portName)>;
    void tell(const char* callback, const Call& call);

    std::mutex _mutex;  // never held across a call of the plug-in
    std::condition_variable _stepEnded;
    std::thread::id _stepThread;  // while a step runs
    State _state = State::Idle;
    Callbacks _callbacks;
    std::string _appId;
    std::string _portName;
    std::shared_ptr<Connection> _connection;
    std::vector<GSource*> _sources;
};

}  // namespace homeloom::desktop::rpc

#endif
