#include "Gate.h"

#include <arpa/inet.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>

#include <fmt/format.h>
#include <httplib.h>

#include "Text.h"
#include "Words.h"
#include "door/CommandBody.h"

namespace homeloom::tv {

namespace {

constexpr std::size_t kLongestBody = std::size_t{64} << 10;
constexpr std::size_t kMostHeaders = 64;
constexpr std::size_t kShortestToken = 8;
constexpr std::size_t kLongestToken = 256;
constexpr int kHttpPort = 80;
constexpr int kMostPort = 65535;
constexpr char kCommands[] = "/v1/commands";

bool isAddress(int family, const std::string& text) {
    unsigned char bytes[sizeof(in6_addr)];
    return inet_pton(family, text.c_str(), bytes) == 1;
}

bool isAddress(const std::string& text) {
    return isAddress(AF_INET, text) || isAddress(AF_INET6, text);
}

std::string machineName() {
    char name[HOST_NAME_MAX + 1] = "";
    return gethostname(name, sizeof name) == 0 ? lowered(name) : "";
}

std::optional<int> parsePort(const std::string& text) {
    const bool isNumber =
        !text.empty() && text.size() <= 5 && text.find_first_not_of("0123456789") == std::string::npos;
    const auto port = isNumber ? parseInt(text) : std::nullopt;
    return port && *port <= kMostPort ? port : std::nullopt;
}

/// "name", "name:port", "[address]:port". None if it is nothing like that.
std::optional<DoorAddress> parseAuthority(const std::string& text, int portIfNone) {
    DoorAddress address{"", portIfNone};
    std::string rest;
    if (!text.empty() && text[0] == '[') {
        const std::size_t end = text.find(']');
        if (end == std::string::npos || !isAddress(AF_INET6, text.substr(1, end - 1))) {
            return std::nullopt;
        }
        address.host = text.substr(1, end - 1);
        rest = text.substr(end + 1);
    } else {
        const std::size_t end = std::min(text.find(':'), text.size());
        address.host = text.substr(0, end);
        rest = text.substr(end);
    }
    if (!rest.empty()) {
        const auto port = rest[0] == ':' ? parsePort(rest.substr(1)) : std::nullopt;
        if (!port) {
            return std::nullopt;
        }
        address.port = *port;
    }
    return address.host.empty() ? std::nullopt : std::optional(address);
}

// Takes the same time for every wrong token of the same length.
bool isSame(const std::string& token, const std::string& shown) {
    if (token.size() != shown.size()) {
        return false;
    }
    unsigned difference = 0;
    for (std::size_t i = 0; i < token.size(); ++i) {
        difference |= static_cast<unsigned char>(token[i] ^ shown[i]);
    }
    return difference == 0;
}

std::string cookieOf(const httplib::Request& request, const std::string& name) {
    std::string cookies = request.get_header_value("Cookie");
    for (std::size_t at = 0; at < cookies.size();) {
        const std::size_t end = std::min(cookies.find(';', at), cookies.size());
        const std::size_t start = std::min(cookies.find_first_not_of(' ', at), end);
        if (const auto pair = splitAssignment(cookies.substr(start, end - start)); pair && pair->first == name) {
            return pair->second;
        }
        at = end + 1;
    }
    return "";
}

void checkMethod(const httplib::Request& request) {
    const bool isCommand = request.path == kCommands;
    const bool fits = isCommand ? request.method == "POST" : request.method == "GET" || request.method == "HEAD";
    if (!fits) {
        throw Refusal(405, fmt::format("{} takes {} only", request.path, isCommand ? "POST" : "GET and HEAD"));
    }
}

// The library would read a body without an end, and unpack one without a limit.
void checkBody(const httplib::Request& request) {
    if (request.has_header("Transfer-Encoding") || request.has_header("Content-Encoding")) {
        throw Refusal(415, "a body comes as it is, with its length");
    }
    const std::string length = request.get_header_value("Content-Length");
    if (request.method == "POST" && length.empty()) {
        throw Refusal(411, "the body's length is missing");
    }
    if (request.get_header_value_count("Content-Length") > 1 ||
        length.find_first_not_of("0123456789") != std::string::npos) {
        throw Refusal(400, "the body's length is no number");
    }
    if (length.size() > 9 || (!length.empty() && std::stoul(length) > kLongestBody)) {
        throw Refusal(413, fmt::format("the body is longer than {} bytes", kLongestBody));
    }
}

}  // namespace

bool DoorAddress::isLoopback() const {
    return host == "localhost" || host == "::1" || (isAddress(AF_INET, host) && host.compare(0, 4, "127.") == 0);
}

std::string DoorAddress::authority() const {
    return fmt::format(isAddress(AF_INET6, host) ? "[{}]:{}" : "{}:{}", host, port);
}

std::optional<DoorAddress> parseDoorAddress(const std::string& text) {
    if (const auto port = parsePort(text)) {
        return DoorAddress{DoorAddress().host, *port};
    }
    const auto address = parseAuthority(text, -1);
    return address && address->port >= 0 ? address : std::nullopt;
}

bool isDoorToken(const std::string& text) {
    const auto isPlain = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '.' || c == '_' || c == '~';
    };
    return text.size() >= kShortestToken && text.size() <= kLongestToken &&
           std::all_of(text.begin(), text.end(), isPlain);
}

Gate::Gate(DoorAddress address, std::string token) : _address(std::move(address)), _token(std::move(token)) {}

void Gate::check(const httplib::Request& request) const {
    if (request.headers.size() > kMostHeaders) {
        throw Refusal(431, fmt::format("the request has more than {} headers", kMostHeaders));
    }
    checkHost(request);
    checkOrigin(request);
    checkToken(request);
    checkMethod(request);
    checkBody(request);
}

bool Gate::isOurName(const std::string& host) const {
    if (host == "localhost" || host == lowered(_address.host)) {
        return true;
    }
    if (_address.isLoopback()) {
        return host == "127.0.0.1" || host == "::1";
    }
    // Nobody can let an address lead elsewhere.
    return isAddress(host) || host == machineName();
}

void Gate::checkHost(const httplib::Request& request) const {
    const auto host = parseAuthority(lowered(request.get_header_value("Host")), kHttpPort);
    if (request.get_header_value_count("Host") != 1 || !host) {
        throw Refusal(400, "the request tells no host");
    }
    if (host->port != _address.port || !isOurName(host->host)) {
        throw Refusal(403, "the request is for another host");
    }
}

void Gate::checkOrigin(const httplib::Request& request) const {
    const std::string own = "http://" + lowered(request.get_header_value("Host"));
    const std::size_t count = request.get_header_value_count("Origin");
    if (count > 1 || (count == 1 && lowered(request.get_header_value("Origin")) != own)) {
        throw Refusal(403, "the request comes from another site");
    }
}

void Gate::checkToken(const httplib::Request& request) const {
    if (_token.empty() || request.path == "/healthz") {
        return;
    }
    const std::string authorization = request.get_header_value("Authorization");
    constexpr char kBearer[] = "bearer ";
    const std::size_t bearerSize = sizeof kBearer - 1;
    const bool isShown =
        (lowered(authorization.substr(0, bearerSize)) == kBearer && isSame(_token, authorization.substr(bearerSize))) ||
        isSame(_token, cookieOf(request, cookieName())) || isSame(_token, request.get_param_value("token"));
    if (!isShown) {
        throw Refusal(401, "the token is missing or wrong");
    }
}

std::string Gate::cookieFor(const httplib::Request& request) const {
    const bool isInUrl = !_token.empty() && isSame(_token, request.get_param_value("token"));
    return isInUrl ? fmt::format("{}={}; Path=/; HttpOnly; SameSite=Strict", cookieName(), _token) : "";
}

// Browsers keep the cookies of all ports of a host together.
std::string Gate::cookieName() const {
    return fmt::format("homeloom-{}", _address.port);
}

}  // namespace homeloom::tv
