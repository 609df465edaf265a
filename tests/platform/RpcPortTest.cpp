#include <rpc_port.h>
#include <sys/stat.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "clock/Turner.h"
#include "desktop/Guard.h"
#include "desktop/MainLoop.h"
#include "desktop/RpcPort.h"
#include "desktop/RpcServer.h"
#include "support/Gate.h"

namespace {

using namespace homeloom::desktop;
using rpc::RpcServer;
using std::string_literals::operator""s;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kApp[] = "app";
constexpr char kPort[] = "port";
// Far above what anything takes.
constexpr std::chrono::seconds kLimit(30);

// Not those in which the clock reads who rests.
std::ptrdiff_t openFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::count_if(begin(files), end(files), [](const auto& file) {
        std::error_code isClosed;
        return read_symlink(file.path(), isClosed).string().rfind("/proc/", 0) != 0 && !isClosed;
    });
}

/// A parcel for as long as it is needed.
struct Parcel {
    Parcel() { rpc_port_parcel_create(&handle); }
    explicit Parcel(rpc_port_h port) : result(rpc_port_parcel_create_from_port(&handle, port)) {}
    ~Parcel() {
        if (handle != nullptr) {
            rpc_port_parcel_destroy(handle);
        }
    }
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;

    rpc_port_parcel_h handle = nullptr;
    int result = 0;
};

/// The next values by their letters, as text; "-" for one that isn't there.
std::string read(rpc_port_parcel_h parcel, const std::string& types) {
    std::string values;
    for (const char type : types) {
        int32_t number = 0;
        bool flag = false;
        char* text = nullptr;
        if (type == 'i' && rpc_port_parcel_read_int32(parcel, &number) == 0) {
            values += std::to_string(number);
        } else if (type == 'b' && rpc_port_parcel_read_bool(parcel, &flag) == 0) {
            values += flag ? "yes" : "no";
        } else if (type == 's' && rpc_port_parcel_read_string(parcel, &text) == 0) {
            values += text;
            std::free(text);
        } else {
            values += "-";
        }
        values += ' ';
    }
    return values;
}

std::string framed(const std::string& values) {
    return "\0\0\0"s + static_cast<char>(values.size()) + values;
}

/// Keeps the main loop, and with it the application, from doing anything while it lives.
class Busy {
public:
    explicit Busy(MainLoop& loop) : _thread([this, &loop] { loop.call([this] { _gate.pass(); }); }) {
        _gate.waitUntilEntered();
    }
    ~Busy() {
        _gate.open();
        _thread.join();
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    Gate _gate;
    std::thread _thread;
};

class RpcPort : public testing::Test {
protected:
    RpcPort() { rpc_port_proxy_create(&proxy); }

    ~RpcPort() override {
        if (proxy != nullptr) {
            EXPECT_EQ(rpc_port_proxy_destroy(proxy), 0);
        }
        stopApplication();
        EXPECT_EQ(rpc::holdings().proxies, 0);
        EXPECT_EQ(rpc::holdings().connections, 0);
        EXPECT_EQ(rpc::holdings().parcels, 0);
    }

    void startApplication() {
        loop.call([&] {
            RpcServer::Events told;
            told.connected = [this](int id) { client = id; };
            told.called = [this](int, rpc_port_parcel_h parcel) { note("called " + read(parcel, "is")); };
            told.disconnected = [this](int) { note("client gone"); };
            server = std::make_unique<RpcServer>(rpc::socketPath(kApp, kPort), told);
        });
    }

    void stopApplication() {
        loop.call([&] { server = nullptr; });
    }

    void addCallbacks() {
        rpc_port_proxy_add_connected_event_cb(
            proxy,
            [](const char* endpoint, const char* name, rpc_port_h port, void* self) {
                static_cast<RpcPort*>(self)->mainPort = port;
                static_cast<RpcPort*>(self)->note("connected to "s + endpoint + " " + name);
            },
            this);
        rpc_port_proxy_add_disconnected_event_cb(
            proxy,
            [](const char*, const char*, void* self) {
                static_cast<RpcPort*>(self)->duringDisconnected();
                static_cast<RpcPort*>(self)->note("disconnected");
            },
            this);
        rpc_port_proxy_add_rejected_event_cb(
            proxy, [](const char*, const char*, void* self) { static_cast<RpcPort*>(self)->note("rejected"); }, this);
        rpc_port_proxy_add_received_event_cb(
            proxy, [](const char*, const char*, void* self) { static_cast<RpcPort*>(self)->onReceived(); }, this);
    }

    void connect() {
        addCallbacks();
        ASSERT_EQ(rpc_port_proxy_connect(proxy, kApp, kPort), 0);
        ASSERT_TRUE(waitFor("connected to app port"));
        loop.call([] {});  // the sources of the connection are there
        rpc_port_proxy_get_port(proxy, RPC_PORT_PORT_CALLBACK, &callbackPort);
    }

    bool sendBytes(rpc_port_port_type_e port, const std::string& bytes) {
        bool isSent = false;
        loop.call([&] { isSent = server->sendBytes(client, port, bytes); });
        return isSent;
    }

    void note(const std::string& event) {
        const std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
        changed.notify_all();
    }

    bool waitFor(const std::string& event) {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, kLimit, [&] { return std::count(events.begin(), events.end(), event) > 0; });
    }

    std::vector<std::string> takeEvents() {
        const std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(events, {});
    }

    homeloom::clock::Turner turner;  // limits end as soon as nobody works any more, and no sooner
    MainLoop loop;
    std::unique_ptr<RpcServer> server;
    int client = 0;
    rpc_port_proxy_h proxy = nullptr;
    rpc_port_h mainPort = nullptr;
    rpc_port_h callbackPort = nullptr;
    std::string types = "is";  // what events are read as
    std::function<void()> duringReceived = [] {};
    std::function<void()> duringDisconnected = [] {};

private:
    void onReceived() {
        const Parcel parcel(callbackPort);
        note("received " + read(parcel.handle, types));
        duringReceived();
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> events;
};

TEST_F(RpcPort, ParcelsKeepTheirValuesInOrder) {
    startApplication();
    connect();
    const Parcel call;
    EXPECT_EQ(rpc_port_parcel_write_int32(call.handle, -2147483647 - 1), 0);
    EXPECT_EQ(rpc_port_parcel_write_string(call.handle, "h\xc3\xa4user"), 0);
    EXPECT_EQ(rpc_port_parcel_send(call.handle, mainPort), 0);
    EXPECT_TRUE(waitFor("called -2147483648 h\xc3\xa4user "));

    // A parcel that is as long as one may be, and one that would be longer.
    const Parcel longest;
    const std::string text(RPC_PORT_PARCEL_MAX - 10, 'x');
    EXPECT_EQ(rpc_port_parcel_write_string(longest.handle, text.c_str()), 0);
    EXPECT_EQ(rpc_port_parcel_write_int32(longest.handle, 1), 0);
    EXPECT_EQ(rpc_port_parcel_send(longest.handle, mainPort), 0);
    EXPECT_EQ(rpc_port_parcel_write_bool(longest.handle, true), RPC_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(rpc_port_parcel_send(longest.handle, mainPort), RPC_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(waitFor("called - - "));  // it begins with no number
}

TEST_F(RpcPort, MalformedParcelsAreErrorsAndTheNextOneIsRead) {
    const struct {
        std::string values;
        std::string types;
        std::string read;
    } cases[] = {
        {"", "i", "- "},
        {"i\0\0\1"s, "i", "- "},
        {"i\0\0\0\7"s, "s", "- "},
        {"s\0\0\0\1x"s, "i", "- "},
        {"b\2"s, "b", "- "},
        {"x\0\0\0\7"s, "i", "- "},
        {"s\0\0"s, "s", "- "},
        {"s\0\0\0\2x"s, "s", "- "},
        {"s\xff\xff\xff\xff"s, "s", "- "},
        {"s\x7f\xff\xff\xffxyz"s, "s", "- "},
        {"s\0\0\0\3x\0y"s, "s", "- "},
        {"s\0\0\0\0"s, "s", " "},
        // After a failure nothing is read, even if it would fit.
        {"i\0\0\0\7b\1"s, "isb", "7 - - "},
        {"b\1i\0\0\0\7"s, "ii", "- - "},
        {"i\0\0\0\7i\0\0\0\x8"s, "iii", "7 8 - "},
    };
    startApplication();
    connect();
    for (const auto& [values, wanted, expected] : cases) {
        types = wanted;
        takeEvents();
        ASSERT_TRUE(sendBytes(RPC_PORT_PORT_CALLBACK, framed(values)));
        EXPECT_TRUE(waitFor("received " + expected)) << testing::PrintToString(values);
    }
    EXPECT_THAT(pluginExceptions(), IsEmpty());
}

TEST_F(RpcPort, ParcelsComeInPiecesAndTogether) {
    startApplication();
    connect();
    const std::string parcel = framed("i\0\0\0\5s\0\0\0\2ab"s);
    for (const char byte : parcel) {
        ASSERT_TRUE(sendBytes(RPC_PORT_PORT_CALLBACK, std::string(1, byte)));
    }
    EXPECT_TRUE(waitFor("received 5 ab "));
    takeEvents();
    ASSERT_TRUE(sendBytes(RPC_PORT_PORT_CALLBACK, parcel + framed("i\0\0\0\6s\0\0\0\1c"s)));
    EXPECT_TRUE(waitFor("received 6 c "));
    EXPECT_THAT(takeEvents(), ElementsAre("received 5 ab ", "received 6 c "));

    // The same over the main port, on the waiting thread.
    ASSERT_TRUE(sendBytes(RPC_PORT_PORT_MAIN, parcel + parcel.substr(0, 7)));
    EXPECT_EQ(read(Parcel(mainPort).handle, "is"), "5 ab ");
    ASSERT_TRUE(sendBytes(RPC_PORT_PORT_MAIN, parcel.substr(7)));
    EXPECT_EQ(read(Parcel(mainPort).handle, "is"), "5 ab ");
}

TEST_F(RpcPort, LengthsThatNoParcelHasEndTheConnection) {
    for (const auto port : {RPC_PORT_PORT_CALLBACK, RPC_PORT_PORT_MAIN}) {
        startApplication();
        connect();
        std::promise<void> isReceived;
        duringDisconnected = [&] { isReceived.get_future().wait(); };  // the port goes with the callback's end
        ASSERT_TRUE(sendBytes(port, "\xff\xff\xff\xff" + std::string(1000, 'x')));
        if (port == RPC_PORT_PORT_MAIN) {
            EXPECT_EQ(Parcel(mainPort).result, RPC_PORT_ERROR_IO_ERROR);
        }
        isReceived.set_value();
        EXPECT_TRUE(waitFor("disconnected"));
        EXPECT_TRUE(waitFor("client gone"));
        takeEvents();
        stopApplication();
    }
}

TEST_F(RpcPort, ConnectsOnceAndOnlyToApplications) {
    addCallbacks();
    loop.call([this] {
        EXPECT_EQ(rpc_port_proxy_connect(proxy, kApp, kPort), 0);  // nobody is there
        // As long as that is open there is no second one.
        EXPECT_EQ(rpc_port_proxy_connect(proxy, kApp, kPort), RPC_PORT_ERROR_IO_ERROR);
    });
    EXPECT_TRUE(waitFor("rejected"));
    takeEvents();
    for (const auto& [app, port] : {std::pair(static_cast<const char*>(nullptr), kPort), {"", kPort}, {kApp, ""}}) {
        EXPECT_EQ(rpc_port_proxy_connect(proxy, app, port), RPC_PORT_ERROR_INVALID_PARAMETER);
        EXPECT_EQ(rpc_port_proxy_connect_sync(proxy, app, port), RPC_PORT_ERROR_INVALID_PARAMETER);
    }
    // Neither a path out of the folder nor one that no socket can have leads anywhere.
    EXPECT_EQ(rpc_port_proxy_connect_sync(proxy, "../app", kPort), RPC_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(rpc_port_proxy_connect_sync(proxy, std::string(500, 'x').c_str(), kPort), RPC_PORT_ERROR_IO_ERROR);

    startApplication();
    EXPECT_EQ(rpc_port_proxy_connect_sync(proxy, kApp, kPort), 0);
    EXPECT_THAT(takeEvents(), ElementsAre("connected to app port"));
    EXPECT_EQ(rpc_port_proxy_connect(proxy, kApp, kPort), RPC_PORT_ERROR_IO_ERROR);
}

TEST_F(RpcPort, ApplicationThatDoesNotAnswerIsGivenUp) {
    addCallbacks();
    startApplication();
    {
        const Busy busy(loop);
        EXPECT_EQ(rpc_port_proxy_connect_sync(proxy, kApp, kPort), RPC_PORT_ERROR_IO_ERROR);
    }
    connect();
    EXPECT_EQ(Parcel(mainPort).result, RPC_PORT_ERROR_IO_ERROR);
    EXPECT_EQ(Parcel(callbackPort).result, RPC_PORT_ERROR_IO_ERROR);
    // What comes late is the next that is received.
    sendBytes(RPC_PORT_PORT_MAIN, framed("i\0\0\0\5"s));
    EXPECT_EQ(read(Parcel(mainPort).handle, "i"), "5 ");

    // One that doesn't read either: what can't be told from the next parcel ends the connection.
    const Parcel big;
    rpc_port_parcel_write_string(big.handle, std::string(RPC_PORT_PARCEL_MAX / 2, 'x').c_str());
    int result = 0;
    {
        const Busy busy(loop);
        for (int i = 0; i < 100 && result == 0; ++i) {
            result = rpc_port_parcel_send(big.handle, mainPort);
        }
    }
    EXPECT_EQ(result, RPC_PORT_ERROR_IO_ERROR);
    EXPECT_TRUE(waitFor("disconnected"));
}

TEST_F(RpcPort, WaitingForAnAnswerEndsWithTheConnection) {
    startApplication();
    connect();
    auto waiting = std::async(std::launch::async, [this] { return Parcel(mainPort).result; });
    // The port goes with the callback's end.
    duringDisconnected = [&] { EXPECT_EQ(waiting.wait_for(kLimit), std::future_status::ready); };
    // What it said before it went is delivered; then it is gone, and may come back.
    loop.call([&] {
        server->sendBytes(client, RPC_PORT_PORT_CALLBACK, framed("i\0\0\0\5s\0\0\0\2ab"s));
        server->disconnect(client);
    });
    EXPECT_TRUE(waitFor("disconnected"));
    duringDisconnected = [] {};
    EXPECT_EQ(waiting.get(), RPC_PORT_ERROR_IO_ERROR);
    EXPECT_THAT(takeEvents(), ElementsAre("connected to app port", "client gone", "received 5 ab ", "disconnected"));
    rpc_port_h port = nullptr;
    EXPECT_EQ(rpc_port_proxy_get_port(proxy, RPC_PORT_PORT_MAIN, &port), RPC_PORT_ERROR_IO_ERROR);
    connect();
}

TEST_F(RpcPort, NothingIsCalledAfterTheEnd) {
    const auto files = openFiles();
    for (const bool fromCallback : {false, true}) {
        startApplication();
        if (proxy == nullptr) {
            rpc_port_proxy_create(&proxy);
        }
        connect();
        Gate gate;
        duringReceived = [&] {
            if (fromCallback) {
                rpc_port_proxy_destroy(std::exchange(proxy, nullptr));
            }
            gate.pass();
            note("left");
        };
        // Two events, of which only the first is delivered.
        const std::string event = framed("i\0\0\0\5s\0\0\0\2ab"s);
        sendBytes(RPC_PORT_PORT_CALLBACK, event + event);
        gate.waitUntilEntered();
        takeEvents();
        const rpc_port_proxy_h ended = proxy;
        auto ending = std::async(std::launch::async, [&] {
            if (!fromCallback) {
                rpc_port_proxy_destroy(std::exchange(proxy, nullptr));
            }
            note("destroyed");
        });
        if (fromCallback) {
            EXPECT_TRUE(waitFor("destroyed"));
        } else {
            // It waits for the callback, and so the handle is still there.
            rpc_port_h port = nullptr;
            while (rpc_port_proxy_get_port(ended, RPC_PORT_PORT_MAIN, &port) == 0) {
                std::this_thread::yield();
            }
        }
        gate.open();
        ending.get();
        EXPECT_TRUE(waitFor("client gone"));
        const auto seen = takeEvents();
        EXPECT_EQ(std::count(seen.begin(), seen.end(), "received 5 ab "), 0);
        EXPECT_LT(std::find(seen.begin(), seen.end(), fromCallback ? "destroyed" : "left"),
                  std::find(seen.begin(), seen.end(), fromCallback ? "left" : "destroyed"));
        stopApplication();
    }
    EXPECT_EQ(openFiles(), files);
}

TEST_F(RpcPort, SocketsStandInAFolderOfTheUserAlone) {
    const std::filesystem::path path = rpc::socketPath("../app", kPort);
    struct stat folder {};
    ASSERT_EQ(stat(path.parent_path().c_str(), &folder), 0);
    EXPECT_EQ(folder.st_mode & 0777u, 0700u);
    EXPECT_EQ(path.parent_path(), std::filesystem::path(rpc::socketPath(kApp, kPort)).parent_path());
}

}  // namespace
