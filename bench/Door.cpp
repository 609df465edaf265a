// What the HTTP door costs the plug-in while 100 clients listen to a storm of events, and whether any of them loses an
// event without being told.
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <desktop/Framework.h>
#include <homeloom_core.h>
#include <simulator/Agent.h>

#include "Inbox.h"
#include "Output.h"
#include "door/Door.h"
#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"

namespace {

namespace framework = homeloom::desktop::framework;
namespace tv = homeloom::tv;

int kClients = 100;
constexpr int kStorm = 10000;
constexpr int kRounds = 7;
constexpr double kWantedRatio = 1.1;
// A state that nothing but the end of a storm has.
constexpr char kEnd[] = "Washing \xC2\xB7 977 min left";

// ---- The clients: a process of their own, as they would be ----

/// What the listeners of one round have to say, over a pipe.
struct Verdict {
    long long events = 0;
    long long told = 0;       // events that some lost, and were told of
    long long unnoticed = 0;  // and were not told of
};

class Client {
public:
    explicit Client(int port) : _socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const std::string request = "GET /v1/events HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n";
        if (connect(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            send(_socket, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size())) {
            std::_Exit(EXIT_FAILURE);
        }
    }
    ~Client() { close(_socket); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    int file() const { return _socket; }
    bool isGreeted() const { return _last > 0; }
    bool hasEnded() const { return _hasEnded; }
    const Verdict& verdict() const { return _verdict; }

    /// Takes what has come; false when the door is closed.
    bool read() {
        std::array<char, 1 << 16> bytes;
        const ssize_t count = recv(_socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (count <= 0) {
            return count < 0 && errno == EAGAIN;
        }
        _text.append(bytes.data(), static_cast<std::size_t>(count));
        std::size_t from = 0;
        for (std::size_t end = 0; (end = _text.find('\n', from)) != std::string::npos; from = end + 1) {
            take(std::string_view(_text).substr(from, end - from));
        }
        _text.erase(0, from);
        return true;
    }

private:
    // Lines of HTTP's chunks between those of the events don't look like these.
    void take(std::string_view line) {
        const auto behind = [line](std::string_view start) {
            return line.substr(0, start.size()) == start ? line.substr(start.size()) : std::string_view();
        };
        if (const auto id = behind("id: "); !id.empty()) {
            _id = std::strtoll(std::string(id).c_str(), nullptr, 10);
        } else if (const auto type = behind("event: "); !type.empty()) {
            event(type);
        } else if (const auto lost = behind("data: {\"lost\":"); !lost.empty()) {
            _lost = std::strtoll(std::string(lost).c_str(), nullptr, 10);
        } else if (line.find(kEnd) != std::string_view::npos) {
            _hasEnded = true;
        }
    }

    // Each event has the next number, but for the state of everything: at first, and after a gap that was told.
    void event(std::string_view type) {
        ++_verdict.events;
        if (type == "lost") {
            return;
        }
        if (type != "hello" || _last > 0) {
            const long long gap = _id - _last - (type == "hello" ? 0 : 1);
            _verdict.told += _lost;
            _verdict.unnoticed += gap == _lost ? 0 : 1;
            _lost = 0;
        }
        _last = _id;
    }

    int _socket;
    std::string _text;
    long long _id = 0;
    long long _last = 0;
    long long _lost = 0;
    bool _hasEnded = false;
    Verdict _verdict;
};

class Clients {
public:
    explicit Clients(int port) {
        for (int i = 0; i < kClients; ++i) {
            _clients.push_back(std::make_unique<Client>(port));
            _files.push_back({_clients.back()->file(), POLLIN, 0});
        }
    }

    /// Reads until all of them are so.
    void readUntil(bool (Client::*isSo)() const) {
        for (int left = kClients; left > 0;) {
            poll(_files.data(), _files.size(), -1);
            left = 0;
            for (std::size_t i = 0; i < _files.size(); ++i) {
                if (_files[i].revents != 0 && !_clients[i]->read()) {
                    std::_Exit(EXIT_FAILURE);
                }
                left += (*_clients[i].*isSo)() ? 0 : 1;
            }
        }
    }

    Verdict verdict() const {
        Verdict all;
        for (const auto& client : _clients) {
            all.events += client->verdict().events;
            all.told += client->verdict().told;
            all.unnoticed += client->verdict().unnoticed;
        }
        return all;
    }

private:
    std::vector<std::unique_ptr<Client>> _clients;
    std::vector<pollfd> _files;
};

template <typename Thing>
bool receive(int file, Thing& thing) {
    return read(file, &thing, sizeof thing) == sizeof thing;
}

template <typename Thing>
void tell(int file, const Thing& thing) {
    if (write(file, &thing, sizeof thing) != sizeof thing) {
        bench::fail("the clients are gone");
    }
}

/// The clients' process: for each port that it's told it says when all are greeted, and then what they heard.
class ClientProcess {
public:
    ClientProcess() {
        std::array<int, 2> there{};
        std::array<int, 2> back{};
        if (pipe(there.data()) != 0 || pipe(back.data()) != 0) {
            bench::fail("there are no pipes");
        }
        _process = fork();
        if (_process == 0) {
            // Where they are on other machines they take no time of the TV's.
            setpriority(PRIO_PROCESS, 0, 19);
            close(there[1]);
            close(back[0]);
            for (int port = 0; receive(there[0], port);) {
                Clients clients(port);
                clients.readUntil(&Client::isGreeted);
                tell(back[1], true);
                clients.readUntil(&Client::hasEnded);
                tell(back[1], clients.verdict());
            }
            std::_Exit(EXIT_SUCCESS);
        }
        close(there[0]);
        close(back[1]);
        _there = there[1];
        _back = back[0];
    }
    ~ClientProcess() {
        close(_there);
        close(_back);
        waitpid(_process, nullptr, 0);
    }
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

    void listen(int port) {
        tell(_there, port);
        hear<bool>();
    }
    Verdict verdict() { return hear<Verdict>(); }

private:
    template <typename Thing>
    Thing hear() {
        Thing thing{};
        if (!receive(_back, thing)) {
            bench::fail("a client was sent away");
        }
        return thing;
    }

    pid_t _process = -1;
    int _there = -1;
    int _back = -1;
};

// ---- The TV ----

/// Nobody reads what the console would say.
class NoOutput : public tv::Output {
public:
    NoOutput() : Output(tv::Style()) {}
    void endStart(const tv::HomeView&) override {}
    void beginCommand(const std::string&) override {}
    void endCommand(const std::string&, const tv::HomeView&) override {}
    void say(const std::string&) override {}
    void report(const tv::Report&, const tv::HomeView&) override {}
};

class Notifies {
public:
    Notifies() {
        _listener = framework::addListener([this](const framework::ReportPtr& report) {
            const std::lock_guard<std::mutex> lock(_mutex);
            _count += report->kind == framework::Report::Kind::Notify ? 1 : 0;
            _came.notify_all();
        });
    }
    ~Notifies() { framework::removeListener(_listener); }
    Notifies(const Notifies&) = delete;
    Notifies& operator=(const Notifies&) = delete;

    void waitFor(int count) {
        std::unique_lock<std::mutex> lock(_mutex);
        if (!_came.wait_for(lock, std::chrono::minutes(2), [&] { return _count >= count; })) {
            bench::fail("the plug-in lost events");
        }
    }

private:
    std::mutex _mutex;
    std::condition_variable _came;
    int _count = 0;
    int _listener = 0;
};

/// From the first event to the plug-in's last report.
bench::Seconds storm() {
    Notifies notifies;
    const auto start = bench::Clock::now();
    for (int i = 0; i < kStorm; ++i) {
        simulator::Agent::instance().sendEvent(
            HOMELOOM_CORE_SSE_DEVICE_EVENT,
            std::string(R"({"deviceId":"hub-plug","capability":"switch","stateChange":true,"valueType":"string",)") +
                (i % 2 == 0 ? R"("value":"on"})" : R"("value":"off"})"));
    }
    notifies.waitFor(kStorm);
    return bench::Clock::now() - start;
}

void end(const std::string& minutes) {
    simulator::Agent::instance().set("washer", "/operational/state/vs/0", "x.com.norvane.da.remainingMinutes", minutes);
}

void measure(ClientProcess& clients) {
    bench::Desk desk(homeloom::test::apartment());
    framework::keepReports(1);
    desk.show();
    desk.waitForSubscription("washer");
    simulator::Agent::instance().set("washer", "/operational/state/vs/0", "x.com.norvane.da.state", "Run");
    storm();  // warms up
    // The TV's own console listens with and without a door.
    tv::Inbox inbox;
    NoOutput output;

    Verdict all;
    std::vector<bench::Seconds> alone;
    std::vector<bench::Seconds> heard;
    for (int round = 0; round < kRounds; ++round) {
        alone.push_back(storm());
        inbox.take();
        tv::Door door({}, inbox, output);
        const std::string url = door.open();
        clients.listen(std::atoi(url.c_str() + url.rfind(':') + 1));
        heard.push_back(storm());
        inbox.take();
        end("977");
        const Verdict verdict = clients.verdict();
        all.events += verdict.events;
        all.told += verdict.told;
        all.unnoticed += verdict.unnoticed;
        end("42");
        simulator::Agent::instance().waitIdle();
    }
    const bench::Seconds with = bench::median(heard);
    const bench::Seconds without = bench::median(alone);
    bench::print({"storm of 10,000 events, 100 clients at the door", bench::text(with), "the same without a door",
                  bench::text(without), with / without, "at most 1.1", with <= kWantedRatio * without});
    const auto perRound = [](long long count) { return std::to_string(count / kRounds); };
    bench::print({"events lost by a client and not told", std::to_string(all.unnoticed), "events sent to clients",
                  perRound(all.events), static_cast<double>(all.unnoticed) / static_cast<double>(all.events), "none",
                  all.unnoticed == 0});
}

}  // namespace

int main() {
    std::signal(SIGPIPE, SIG_IGN);
    ClientProcess clients;
    measure(clients);
    return bench::exitStatus();
}
