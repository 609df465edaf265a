#include "Door.h"

#include <pthread.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include <VMFramework/JsonValue.h>
#include <clock/Clock.h>
#include <fmt/format.h>
#include <httplib.h>

#include "simulator/Cloud.h"
#include "simulator/ConnectionThreads.h"

#include "Catalogue.h"
#include "Inbox.h"
#include "Schemas.h"
#include "door/CommandBody.h"
#include "door/DoorOutput.h"
#include "door/EventStream.h"
#include "door/SimDocument.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

// Who listens to the events holds a thread; there are always some for the others.
constexpr int kMostListeners = 128;
constexpr int kOtherConnections = 32;
constexpr int kBacklog = 128;
constexpr std::size_t kRequestsPerConnection = 100000;
constexpr std::chrono::seconds kKeepAlive{15};
constexpr std::chrono::seconds kWriteLimit{10};
constexpr char kJson[] = "application/json";
constexpr char kPolicy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'; "
    "font-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

std::string errorDocument(int status, const std::string& reason) {
    return fmt::format("{{\"error\":{{\"status\":{},\"reason\":{}}}}}", status, JsonValue(reason).toString());
}

void refuse(const Refusal& refusal, httplib::Response& response) {
    response.status = refusal.status;
    response.set_content(errorDocument(refusal.status, refusal.what()), kJson);
    if (refusal.status == 401) {
        response.set_header("WWW-Authenticate", "Bearer");
    }
}

EventId parseEventId(const std::string& text) {
    if (text.empty() || text.size() > 18 || text.find_first_not_of("0123456789") != std::string::npos) {
        throw Refusal(400, "the last event's id is no number");
    }
    return std::stoull(text);
}

// The header is what a browser sends when it comes back by itself, and so newer than the address that it was given.
EventStream::Position positionOf(const httplib::Request& request) {
    if (request.has_header("Last-Event-ID")) {
        return EventStream::Position(parseEventId(request.get_header_value("Last-Event-ID")));
    }
    if (request.has_param("last_event_id")) {
        return EventStream::Position(parseEventId(request.get_param_value("last_event_id")));
    }
    return {};
}

}  // namespace

class Door::Impl {
public:
    Impl(const Options& options, Inbox& inbox, Output& console);
    ~Impl();

    std::string open();
    Output& output() { return _output; }

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void bind();
    void setUpServer();
    void setUpRoutes();
    void sendEvents(const Request& request, Response& response);
    std::string runCommand(const CommandBody& body);

    Inbox& _inbox;
    DoorAddress _address;
    EventStream _events;
    DoorOutput _output;
    std::optional<Gate> _gate;
    int _socket = -1;
    httplib::Server _server;
    std::thread _thread;
    std::atomic<int> _listeners{0};

    std::mutex _mutex;  // guards the answers that clients wait for, and the next one
    bool _closes = false;
    std::condition_variable _changed;
};

Door::Impl::Impl(const Options& options, Inbox& inbox, Output& console)
    : _inbox(inbox), _address(options.address), _output(console, _events, options.consoleFollows) {
    setUpServer();
    bind();
    _gate.emplace(_address, options.token);
    setUpRoutes();
    if (!options.web.empty()) {
        _server.set_mount_point("/", options.web.string());
        _server.set_mount_point("/client", options.client.string());
        // Icons stay where their package has put them; without it the page does without.
        _server.set_mount_point("/fonts", HOMELOOM_ICON_FONT_DIR);
    }
}

Door::Impl::~Impl() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _closes = true;
    }
    _changed.notify_all();
    _events.close();
    _server.stop();
    if (_thread.joinable()) {
        _thread.join();
    }
}

void Door::Impl::setUpServer() {
    _server.new_task_queue = [] {
        return new simulator::ConnectionThreads(kMostListeners + kOtherConnections, "door client",
                                                [](const std::function<void()>& connection) {
                                                    const clock::Exempt exempt;  // clients live in the machine's time
                                                    connection();
                                                });
    };
    _server.set_tcp_nodelay(true);
    _server.set_keep_alive_max_count(kRequestsPerConnection);
    _server.set_write_timeout(kWriteLimit);
    _server.set_default_headers({{"Content-Security-Policy", kPolicy},
                                 {"X-Content-Type-Options", "nosniff"},
                                 {"Referrer-Policy", "no-referrer"},
                                 {"Cross-Origin-Resource-Policy", "same-origin"},
                                 {"Cache-Control", "no-store"}});
    // The library's own options would let a second program share the port.
    _server.set_socket_options([this](int file) {
        const int yes = 1;
        setsockopt(file, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        _socket = file;
    });
    _server.set_exception_handler([](const Request&, Response& response, const std::exception_ptr& exception) {
        try {
            std::rethrow_exception(exception);
        } catch (const Refusal& refusal) {
            refuse(refusal, response);
        } catch (const std::exception& e) {
            refuse(Refusal(500, e.what()), response);
        }
    });
    // What the library itself refuses.
    _server.set_error_handler([](const Request& request, Response& response) {
        if (response.body.empty()) {
            refuse(Refusal(response.status, response.status == 404 ? fmt::format("there is no {}", request.path)
                                                                   : "the request can't be read"),
                   response);
        }
    });
}

void Door::Impl::bind() {
    if (_address.port == 0) {
        _address.port = _server.bind_to_any_port(_address.host);
    } else if (!_server.bind_to_port(_address.host, _address.port)) {
        _address.port = -1;
    }
    if (_address.port <= 0) {
        throw std::runtime_error("--serve: the address can't be had, or another program has its port");
    }
    // Many clients come at once when a server comes back; the library's own backlog is short.
    listen(_socket, kBacklog);
}

void Door::Impl::setUpRoutes() {
    _server.set_pre_routing_handler([this](const Request& request, Response& response) {
        try {
            _gate->check(request);
        } catch (const Refusal& refusal) {
            refuse(refusal, response);
            // Its body, if it has one, stays unread.
            response.set_header("Connection", "close");
            return httplib::Server::HandlerResponse::Handled;
        }
        if (const std::string cookie = _gate->cookieFor(request); !cookie.empty()) {
            response.set_header("Set-Cookie", cookie);
        }
        return httplib::Server::HandlerResponse::Unhandled;
    });
    _server.Get("/healthz", [](const Request&, Response& response) {
        response.set_content(fmt::format("{{\"status\":\"ok\",\"version\":\"{}\"}}", HOMELOOM_VERSION), kJson);
    });
    _server.Get("/v1/home",
                [this](const Request&, Response& response) { response.set_content(_events.home(), kJson); });
    _server.Get("/v1/devices/(.+)", [this](const Request& request, Response& response) {
        const std::string id = request.matches[1];
        const auto device = _events.device(id);
        if (!device) {
            throw Refusal(404, fmt::format("there is no device \"{}\"", id));
        }
        response.set_content(*device, kJson);
    });
    // The page can't reach the cloud by its name, so it gets the files that the cloud has signed from here.
    _server.Get("/v1/cloud(/udo/files/.+)", [](const Request& request, Response& response) {
        const auto file = simulator::Cloud::instance().file(request.matches[1], request.get_param_value("signature"));
        if (!file) {
            throw Refusal(403, "the address isn't signed");
        }
        response.set_content(*file, "image/svg+xml");
    });
    _server.Get("/v1/sim", [](const Request&, Response& response) { response.set_content(simDocument(), kJson); });
    _server.Get("/v1/catalogue",
                [](const Request&, Response& response) { response.set_content(catalogueJson(), kJson); });
    _server.Get("/v1/schema/(.+)", [](const Request& request, Response& response) {
        const std::string name = request.matches[1];
        const auto& names = schemaNames();
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            throw Refusal(404, fmt::format("there is no schema \"{}\"", name));
        }
        response.set_content(schemaJson(name), kJson);
    });
    _server.Get("/v1/events", [this](const Request& request, Response& response) { sendEvents(request, response); });
    _server.Post("/v1/commands", [this](const Request& request, Response& response) {
        const CommandBody body = readCommandBody(request.get_header_value("Content-Type"), request.body);
        response.set_content(runCommand(body), kJson);
    });
}

void Door::Impl::sendEvents(const Request& request, Response& response) {
    const auto position = std::make_shared<EventStream::Position>(positionOf(request));
    // Counted until the library lets go of the functions below.
    const std::shared_ptr<void> listener(&_listeners, [](std::atomic<int>* listeners) { --*listeners; });
    if (++_listeners > kMostListeners) {
        throw Refusal(503, fmt::format("{} clients listen already", kMostListeners));
    }
    response.set_chunked_content_provider("text/event-stream",
                                          [this, position, listener](std::size_t, httplib::DataSink& sink) {
                                              const auto text = _events.next(*position, kKeepAlive);
                                              if (!text) {
                                                  sink.done();
                                                  return true;
                                              }
                                              return sink.write(text->data(), text->size());
                                          });
}

std::string Door::Impl::runCommand(const CommandBody& body) {
    if (auto document = _output.runAtOnce(body)) {
        return std::move(*document);
    }
    const auto answer = std::make_shared<std::optional<std::string>>();
    _inbox.post([this, body, answer](Desk& desk) {
        std::string document = _output.run(desk, body);
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            *answer = std::move(document);
        }
        _changed.notify_all();
    });
    std::unique_lock<std::mutex> lock(_mutex);
    _changed.wait(lock, [this, &answer] { return *answer || _closes; });
    if (!*answer) {
        throw Refusal(503, "the TV is being switched off");
    }
    return std::move(**answer);
}

std::string Door::Impl::open() {
    _thread = std::thread([this] {
        const clock::Exempt exempt;
        pthread_setname_np(pthread_self(), "door accept");
        _server.listen_after_bind();
    });
    // Before that a stop would go unheard.
    while (!_server.is_running()) {
        std::this_thread::yield();
    }
    return fmt::format("http://{}/", _address.authority());
}

Door::Door(const Options& options, Inbox& inbox, Output& console)
    : _impl(std::make_unique<Impl>(options, inbox, console)) {}

Door::~Door() = default;

std::string Door::open() {
    return _impl->open();
}

Output& Door::output() {
    return _impl->output();
}

}  // namespace homeloom::tv
