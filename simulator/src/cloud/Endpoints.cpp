#include "Endpoints.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>

#include "../Commands.h"
#include "../Json.h"
#include "../World.h"

namespace simulator {

namespace {

const std::string devicesPath = "/v1/devices/";
const std::string commandsEnding = "/commands";
const std::string streamPath = "/v1/stream";
const std::string fileLinksPath = "/udo/file_links/";
const std::string filesPath = "/udo/files/";

bool startsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

bool endsWith(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

WebAnswer document(const json::value& value) {
    WebAnswer answer;
    answer.body = toText(value);
    return answer;
}

/// Of a file's address, the same in each run. It keeps nothing secret.
std::string signatureOf(const std::string& path) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char letter : path) {
        hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001b3;
    }
    std::string text;
    for (; hash != 0; hash /= 36) {
        text += "0123456789abcdefghijklmnopqrstuvwxyz"[hash % 36];
    }
    return text;
}

bool hasImage(const Device& device, const std::string& file) {
    return std::find(device.images.begin(), device.images.end(), file) != device.images.end();
}

WebAnswer describeDevice(World& world, const WebRequest& request) {
    const Device* device = world.device(request.path.substr(devicesPath.size()));
    if (device == nullptr) {
        return Endpoints::error(403, "the account has no such device");
    }
    return document(json::object{
        {"deviceId", device->id}, {"label", device->nick}, {"name", device->name}, {"locationId", device->location}});
}

WebAnswer command(World& world, std::unique_lock<std::mutex>& lock, const WebRequest& request) {
    const std::size_t length = request.path.size() - devicesPath.size() - commandsEnding.size();
    Device* device = world.device(request.path.substr(devicesPath.size(), length));
    if (device == nullptr) {
        return Endpoints::error(403, "the account has no such device");
    }
    json::object reply;
    const int code = executeCommands(world, lock, *device, request.body, reply);
    if (code == HOMELOOM_CLIENT_ERROR_IO) {
        return Endpoints::error(504, "the device says nothing");
    }
    if (code != HOMELOOM_CLIENT_ERROR_NONE) {
        return Endpoints::error(422, "the device doesn't know such a command");
    }
    return document(reply);
}

WebAnswer openStream(World& world, const WebRequest& request) {
    const std::string source = request.parameter("source_id");
    const Device* device = world.device(source);
    if (device == nullptr || device->stream.empty()) {
        return Endpoints::error(404, "there is no such source");
    }
    return document(json::object{{"stream", {{"gateway_url", device->stream}, {"source_id", source}}}});
}

WebAnswer linkFile(World& world, const WebRequest& request) {
    const std::string file = request.path.substr(fileLinksPath.size());
    const Device* device = world.device(request.parameter("di"));
    if (request.parameter("cid").empty() || device == nullptr || !hasImage(*device, file)) {
        return Endpoints::error(404, "there is no such file");
    }
    WebAnswer answer;
    answer.status = 302;
    const std::string path = filesPath + device->id + "/" + file + ".svg";
    answer.location = "https://" + request.host + path + "?signature=" + signatureOf(path);
    return answer;
}

std::string escaped(const std::string& text) {
    std::string safe;
    for (const char c : text) {
        safe += c == '<' ? "&lt;" : c == '&' ? "&amp;" : std::string(1, c);
    }
    return safe;
}

/// What a camera inside a refrigerator might see: two boards with jars, other ones for each file, and its name.
std::string picture(const std::string& file) {
    static const std::array<const char*, 6> colors{"#c8553d", "#f2b134", "#6a994e", "#4f86c6", "#9d6fb0", "#e9e3d5"};
    std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 400 300">)"
                      R"(<rect width="400" height="300" fill="#dfe8ee"/>)"
                      R"(<path d="M0 130h400v8H0zM0 262h400v8H0z" fill="#9fb3c1"/>)";
    std::size_t seed = 7;
    for (const char c : file) {
        seed = seed * 31 + static_cast<unsigned char>(c);
    }
    for (int i = 0; i < 12; ++i) {
        seed = seed * 1103515245 + 12345;
        const std::size_t height = 40 + (seed >> 16) % 60;
        const std::string x = std::to_string(14 + i % 6 * 64);
        const std::string y = std::to_string((i < 6 ? 130 : 262) - height);
        svg += "<rect x=\"" + x + "\" y=\"" + y + "\" width=\"48\" height=\"" + std::to_string(height) +
               R"(" rx="8" fill=")" + colors[(seed >> 24) % colors.size()] + "\"/>";
    }
    return svg + R"(<text x="14" y="292" font-size="20" fill="#33424d">)" + escaped(file) + "</text></svg>";
}

WebAnswer showFile(World& world, const WebRequest& request) {
    const std::string rest = request.path.substr(filesPath.size());
    const std::string id = rest.substr(0, rest.find('/'));
    const std::size_t begin = std::min(id.size() + 1, rest.size());
    const std::string file = rest.substr(begin, rest.rfind('.') - begin);
    const Device* device = world.device(id);
    if (device == nullptr || !hasImage(*device, file) || request.parameter("signature") != signatureOf(request.path)) {
        return Endpoints::error(403, "the address isn't signed");
    }
    WebAnswer answer;
    answer.contentType = "image/svg+xml";
    answer.body = picture(file);
    return answer;
}

}  // namespace

std::string WebRequest::parameter(const std::string& name) const {
    const auto found = parameters.find(name);
    return found == parameters.end() ? "" : found->second;
}

std::string Endpoints::nameOf(const std::string& method, const std::string& path) {
    if (startsWith(path, devicesPath)) {
        const bool isCommand = endsWith(path, commandsEnding);
        return method == "GET" && !isCommand ? "devices" : method == "POST" && isCommand ? "commands" : "";
    }
    if (path == streamPath && method == "POST") {
        return "stream";
    }
    if (startsWith(path, fileLinksPath) && method == "GET") {
        return "file_links";
    }
    return startsWith(path, filesPath) && method == "GET" ? "files" : "";
}

WebAnswer Endpoints::answer(const std::string& name, const WebRequest& request) {
    World& world = World::instance();
    std::unique_lock<std::mutex> lock(world.mutex);
    if (name.empty()) {
        return error(404, "there is nothing");
    }
    // Addresses of files are signed in its place.
    if (name == "files") {
        return showFile(world, request);
    }
    if (request.authorization != "Bearer " + world.home.account.accessToken) {
        return error(401, "the token is not the account's");
    }
    if (name == "devices") {
        return describeDevice(world, request);
    }
    if (name == "commands") {
        return command(world, lock, request);
    }
    return name == "stream" ? openStream(world, request) : linkFile(world, request);
}

WebAnswer Endpoints::error(int status, const std::string& reason) {
    WebAnswer answer = document(json::object{{"error", {{"message", reason}}}});
    answer.status = status;
    return answer;
}

}  // namespace simulator
