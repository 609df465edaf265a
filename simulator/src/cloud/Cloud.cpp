#include "simulator/Cloud.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include <httplib.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Certificates.h"
#include "Endpoints.h"
#include "simulator/ConnectionThreads.h"

namespace simulator {

namespace {

// Requests at a time: those that wait on purpose, and plenty of others.
constexpr std::size_t kConnections = 256;
// The library's own is so short that of eight requests at once some would be tried anew a second later.
constexpr int kBacklog = 128;
constexpr std::size_t kHugeBytes = std::size_t{32} << 20;
constexpr std::size_t kBlockBytes = std::size_t{16} << 10;
constexpr std::size_t kLongestBody = std::size_t{1} << 20;  // far above what the plug-in sends
constexpr std::chrono::milliseconds kTrickle{20};
constexpr char kLoopback[] = "127.0.0.1";

const std::vector<std::string> endpoints{"commands", "devices", "file_links", "files", "stream"};

void checkEndpoint(const std::string& endpoint) {
    if (!std::binary_search(endpoints.begin(), endpoints.end(), endpoint)) {
        throw std::invalid_argument("the cloud has no endpoint \"" + endpoint + "\"");
    }
}

/// A file with a certificate in it, as long as it is held.
class CaFile {
public:
    explicit CaFile(const std::string& pem) {
        const char* const folder = std::getenv("TMPDIR");
        _path = std::string(folder == nullptr ? "/tmp" : folder) + "/homeloom-ca-XXXXXX";
        const int file = mkstemp(_path.data());
        if (file < 0) {
            throw std::runtime_error("the cloud can't write " + _path);
        }
        close(file);
        std::ofstream(_path) << pem;
    }
    ~CaFile() { std::remove(_path.c_str()); }
    CaFile(const CaFile&) = delete;
    CaFile& operator=(const CaFile&) = delete;

    const std::string& path() const { return _path; }

private:
    std::string _path;
};

// OpenSSL keeps the errors of a connection that failed for the next one on the same thread.
void serve(const ConnectionThreads::Connection& connection) {
    ERR_clear_error();
    connection();
}

WebRequest decoded(const httplib::Request& request) {
    return {request.method,
            request.get_header_value("Host"),
            request.path,
            {request.params.begin(), request.params.end()},
            request.get_header_value("Authorization"),
            request.body};
}

Cloud::Request recorded(const std::string& endpoint, const httplib::Request& request) {
    return {endpoint,
            request.method,
            request.get_header_value("Host"),
            request.target,
            {request.headers.begin(), request.headers.end()},
            request.body};
}

}  // namespace

/// One run of the server on top of what outlives it.
class Cloud::Server {
public:
    void start();
    void stop();

    mutable std::mutex mutex;  // guards the next ones; held across nothing
    std::multimap<std::string, CloudFault> faults;
    std::vector<Request> requests;
    int clears = 0;
    int pending = 0;
    int port = 0;
    std::string caPath;
    std::condition_variable changed;

    std::atomic<bool> isForeign{false};

private:
    bool showCertificate(SSL* connection);
    static void send(const WebAnswer& answer, httplib::Response& response);
    void handle(const httplib::Request& request, httplib::Response& response);
    std::optional<CloudFault> hit(const std::string& endpoint, const std::string& target);
    void hold(const CloudFault& fault);
    bool isStopped() const;
    void misbehave(const CloudFault& fault, const httplib::Request& request, const WebAnswer& good,
                   httplib::Response& response);
    void trickle(httplib::Response& response);

    std::mutex _runMutex;  // one start or stop at a time
    std::unique_ptr<CertificateAuthority> _authority;
    std::once_flag _foreignOnce;  // most runs never show it
    std::unique_ptr<CertificateAuthority> _foreignAuthority;
    std::unique_ptr<CaFile> _caFile;
    std::unique_ptr<httplib::SSLServer> _http;
    std::thread _thread;
};

void Cloud::Server::start() {
    const std::lock_guard<std::mutex> running(_runMutex);
    if (_http) {
        return;
    }
    _authority = std::make_unique<CertificateAuthority>();
    _caFile = std::make_unique<CaFile>(_authority->pem());
    auto http = std::make_unique<httplib::SSLServer>([this](SSL_CTX& context) {
        SSL_CTX_set_cert_cb(
            &context,
            [](SSL* connection, void* self) { return static_cast<Server*>(self)->showCertificate(connection) ? 1 : 0; },
            this);
        return true;
    });
    http->new_task_queue = [] { return new ConnectionThreads(kConnections, "cloud", serve); };
    // Head and body are written one by one. The second must not be under way while both ends sleep, or the desk would
    // take that for rest.
    http->set_tcp_nodelay(true);
    http->set_payload_max_length(kLongestBody);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        handle(request, response);
    };
    http->Get(".*", handler).Post(".*", handler).Put(".*", handler).Delete(".*", handler);
    int socket = -1;
    // The library's own options would let a second program share the port.
    http->set_socket_options([&socket](int file) { socket = file; });
    const int bound = http->bind_to_any_port(kLoopback);
    if (bound <= 0) {
        throw std::runtime_error("the cloud finds no port on loopback");
    }
    listen(socket, kBacklog);
    _http = std::move(http);
    _thread = std::thread([server = _http.get()] { server->listen_after_bind(); });
    // Before that a stop would go unheard.
    while (!_http->is_running()) {
        std::this_thread::yield();
    }
    const std::lock_guard<std::mutex> lock(mutex);
    port = bound;
    caPath = _caFile->path();
}

void Cloud::Server::stop() {
    const std::lock_guard<std::mutex> running(_runMutex);
    if (!_http) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex);
        port = 0;
        caPath.clear();
        changed.notify_all();
    }
    _http->stop();
    _thread.join();
    _http.reset();
    _caFile.reset();
}

bool Cloud::Server::showCertificate(SSL* connection) {
    const char* const name = SSL_get_servername(connection, TLSEXT_NAMETYPE_host_name);
    try {
        if (isForeign) {
            std::call_once(_foreignOnce, [this] { _foreignAuthority = std::make_unique<CertificateAuthority>(); });
        }
        CertificateAuthority& authority = isForeign ? *_foreignAuthority : *_authority;
        return authority.use(connection, name != nullptr ? name : "localhost");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "cloud: %s\n", e.what());
        return false;
    }
}

void Cloud::Server::handle(const httplib::Request& request, httplib::Response& response) {
    const std::string endpoint = Endpoints::nameOf(request.method, request.path);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        requests.push_back(recorded(endpoint, request));
    }
    const auto fault = hit(endpoint, request.target);
    if (fault && (fault->kind == CloudFault::Kind::Late || fault->kind == CloudFault::Kind::Never)) {
        hold(*fault);
    }
    const WebAnswer good = Endpoints::answer(endpoint, decoded(request));
    if (fault) {
        misbehave(*fault, request, good, response);
    } else {
        send(good, response);
    }
}

void Cloud::Server::send(const WebAnswer& answer, httplib::Response& response) {
    response.status = answer.status;
    if (!answer.location.empty()) {
        // In lower case, as the cloud's servers write it.
        response.set_header("location", answer.location);
    }
    response.set_content(answer.body, answer.contentType);
}

std::optional<CloudFault> Cloud::Server::hit(const std::string& endpoint, const std::string& target) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto [begin, end] = faults.equal_range(endpoint);
    auto found = end;
    for (auto fault = begin; fault != end; ++fault) {
        const std::string& filter = fault->second.filter;
        if (target.find(filter) != std::string::npos && (found == end || !filter.empty())) {
            found = fault;
        }
    }
    if (found == end) {
        return std::nullopt;
    }
    if (found->second.skip > 0) {
        --found->second.skip;
        return std::nullopt;
    }
    CloudFault fault = found->second;
    if (found->second.remaining > 0 && --found->second.remaining == 0) {
        faults.erase(found);
    }
    return fault;
}

// Keeps the answer back.
void Cloud::Server::hold(const CloudFault& fault) {
    std::unique_lock<std::mutex> lock(mutex);
    ++pending;
    if (fault.kind == CloudFault::Kind::Late) {
        changed.wait_for(lock, fault.delay, [this] { return port == 0; });
    } else {
        changed.wait(lock, [this, seen = clears] { return port == 0 || clears != seen; });
    }
    --pending;
}

bool Cloud::Server::isStopped() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return port == 0;
}

void Cloud::Server::misbehave(const CloudFault& fault, const httplib::Request& request, const WebAnswer& good,
                              httplib::Response& response) {
    response.status = 200;
    switch (fault.kind) {
        case CloudFault::Kind::Status:
            send(Endpoints::error(fault.code, "told to fail"), response);
            break;
        case CloudFault::Kind::Body:
            response.set_content(fault.text, good.contentType);
            break;
        case CloudFault::Kind::Header: {
            const std::size_t colon = std::min(fault.text.find(": "), fault.text.size());
            response.status = 302;
            response.set_header(fault.text.substr(0, colon), fault.text.substr(std::min(colon + 2, fault.text.size())));
            break;
        }
        case CloudFault::Kind::Cut:
            response.set_content_provider(good.body.size() + 2, good.contentType,
                                          [text = good.body](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                                              const std::size_t half = text.size() / 2;
                                              return offset == 0 && half > 0 && sink.write(text.data(), half);
                                          });
            break;
        case CloudFault::Kind::Huge:
            response.set_content_provider(kHugeBytes, good.contentType,
                                          [](std::size_t, std::size_t length, httplib::DataSink& sink) {
                                              const std::string block(std::min(length, kBlockBytes), 'x');
                                              return sink.write(block.data(), block.size());
                                          });
            break;
        case CloudFault::Kind::Endless:
            trickle(response);
            break;
        case CloudFault::Kind::RedirectLoop:
            response.status = 302;
            response.set_header("location", "https://" + request.get_header_value("Host") + request.target);
            break;
        case CloudFault::Kind::Chunks:
            response.status = good.status;
            response.set_chunked_content_provider(
                good.contentType, [text = good.body](std::size_t offset, httplib::DataSink& sink) {
                    const std::size_t half = (text.size() + 1) / 2;
                    if (offset >= text.size()) {
                        sink.done();
                        return true;
                    }
                    return sink.write(text.data() + offset, std::min(half, text.size() - offset));
                });
            break;
        case CloudFault::Kind::Late:
        case CloudFault::Kind::Never:
            send(good, response);
            break;
    }
}

void Cloud::Server::trickle(httplib::Response& response) {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ++pending;
    }
    const auto ended = [this](bool) {
        const std::lock_guard<std::mutex> lock(mutex);
        --pending;
    };
    const auto provide = [this](std::size_t, httplib::DataSink& sink) {
        if (isStopped() || !sink.write("[[[[", 4)) {
            return false;
        }
        std::this_thread::sleep_for(kTrickle);
        return true;
    };
    response.set_content_provider("application/json", provide, ended);
}

Cloud::Cloud() : _server(std::make_unique<Server>()) {}

Cloud& Cloud::instance() {
    static Cloud& cloud = *new Cloud;
    return cloud;
}

void Cloud::start() {
    _server->start();
}

void Cloud::stop() {
    _server->stop();
}

std::optional<std::string> Cloud::file(const std::string& path, const std::string& signature) {
    WebRequest request;
    request.path = path;
    request.parameters.emplace("signature", signature);
    const WebAnswer answer = Endpoints::answer("files", request);
    return answer.status == 200 ? std::optional(answer.body) : std::nullopt;
}

int Cloud::port() const {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    return _server->port;
}

std::string Cloud::caFile() const {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    return _server->caPath;
}

void Cloud::setForeignCertificates(bool isForeign) {
    _server->isForeign = isForeign;
}

void Cloud::fault(const std::string& endpoint, const CloudFault& fault) {
    checkEndpoint(endpoint);
    const std::lock_guard<std::mutex> lock(_server->mutex);
    const auto [begin, end] = _server->faults.equal_range(endpoint);
    const auto same = std::find_if(begin, end, [&](const auto& entry) { return entry.second.filter == fault.filter; });
    if (same != end) {
        same->second = fault;
    } else {
        _server->faults.emplace(endpoint, fault);
    }
}

void Cloud::clearFault(const std::string& endpoint) {
    checkEndpoint(endpoint);
    const std::lock_guard<std::mutex> lock(_server->mutex);
    _server->faults.erase(endpoint);
    ++_server->clears;
    _server->changed.notify_all();
}

void Cloud::clearFaults() {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    _server->faults.clear();
    ++_server->clears;
    _server->changed.notify_all();
}

std::multimap<std::string, CloudFault> Cloud::faults() const {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    return _server->faults;
}

int Cloud::pendingRequests() const {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    return _server->pending;
}

const std::vector<std::string>& Cloud::endpointNames() {
    return endpoints;
}

std::string Cloud::Request::header(const std::string& name) const {
    for (const auto& [key, value] : headers) {
        if (strcasecmp(key.c_str(), name.c_str()) == 0) {
            return value;
        }
    }
    return "";
}

std::vector<Cloud::Request> Cloud::requests() const {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    return _server->requests;
}

void Cloud::resetRequests() {
    const std::lock_guard<std::mutex> lock(_server->mutex);
    _server->requests.clear();
}

}  // namespace simulator
