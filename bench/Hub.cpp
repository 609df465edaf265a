// What asking the hub control application costs: both ends of the port and the sockets between two processes.
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>
#include <string>

#include <desktop/MainLoop.h>
#include <desktop/RpcServer.h>
#include <rpc_port.h>
#include <simulator/HubApp.h>

#include "Homeloom/IoTHub/IPCProxyBase.h"
#include "support/Desk.h"
#include "support/Figures.h"

namespace {

using rpc_port::IPCProxyBase::proxy::IEventListener;
using rpc_port::IPCProxyBase::proxy::IHubControl;
using simulator::HubApp;

constexpr int kRounds = 21;
constexpr int kCalls = 1000;
// As long as the info of a hub that was onboarded.
constexpr char kInfo[] = R"({"hub_di":"tv-hub","user_id":"mina@home.example"})";

class Listener final : public IEventListener {
public:
    void OnConnected() override { _connected.set_value(true); }
    void OnDisconnected() override {}
    void OnRejected() override { _connected.set_value(false); }
    bool waitForConnection() { return _connected.get_future().get(); }

private:
    std::promise<bool> _connected;
};

/// How long a call and its answer are as parcels.
struct Sizes {
    std::size_t call = sizeOf(6, "", false);
    std::size_t answer = sizeOf(0, kInfo, true);

    static std::size_t sizeOf(int method, const char* text, bool hasResult) {
        rpc_port_parcel_h parcel = nullptr;
        rpc_port_parcel_create(&parcel);
        rpc_port_parcel_write_int32(parcel, method);
        rpc_port_parcel_write_string(parcel, text);
        if (hasResult) {
            rpc_port_parcel_write_bool(parcel, true);
        }
        const std::size_t size = homeloom::desktop::rpc::RpcServer::bytesOf(parcel).size();
        rpc_port_parcel_destroy(parcel);
        return size;
    }
};

bool exchange(int socket, const std::string& out, std::string& in) {
    return send(socket, out.data(), out.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(out.size()) &&
           recv(socket, in.data(), in.size(), MSG_WAITALL) == static_cast<ssize_t>(in.size());
}

/// A process that answers bytes with bytes and does nothing else. To be made before there are threads.
class Echo {
public:
    explicit Echo(const Sizes& sizes) : _call(sizes.call, 'c'), _answer(sizes.answer, 'a') {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            bench::fail("no sockets");
        }
        _process = fork();
        if (_process == 0) {
            close(ends[0]);
            while (recv(ends[1], _call.data(), _call.size(), MSG_WAITALL) > 0) {
                send(ends[1], _answer.data(), _answer.size(), MSG_NOSIGNAL);
            }
            _exit(0);
        }
        close(ends[1]);
        _socket = ends[0];
    }
    ~Echo() {
        close(_socket);
        waitpid(_process, nullptr, 0);
    }
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

    void ask() {
        if (!exchange(_socket, _call, _answer)) {
            bench::fail("no echo");
        }
    }

private:
    std::string _call;
    std::string _answer;
    pid_t _process = 0;
    int _socket = -1;
};

}  // namespace

int main() {
    Echo echo{Sizes()};
    const homeloom::desktop::MainLoop loop;
    HubApp& app = HubApp::instance();
    app.start();
    app.setHubInfo(kInfo);
    Listener listener;
    IHubControl control(&listener, HubApp::kAppId);
    control.Connect(false);
    if (!listener.waitForConnection()) {
        bench::fail("no connection to the hub control application");
    }

    const bench::Seconds trip = bench::timeOf(kRounds, kCalls, [&] {
        std::string info;
        if (!control.GetHubInfo(info) || info != kInfo) {
            bench::fail("a wrong hub info");
        }
    });
    const bench::Seconds bare = bench::timeOf(kRounds, kCalls, [&] { echo.ask(); });
    bench::print({"hub info, round trips", bench::perSecond(1 / trip.count()), "as many bytes over a bare socket",
                  bench::perSecond(1 / bare.count()), trip / bare, "", true});
    return bench::exitStatus();
}
