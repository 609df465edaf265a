#include "Controls.h"

#include <glib.h>
#include <glib/gstdio.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <system_error>

#include "Parcel.h"
#include "desktop/RpcPort.h"

namespace homeloom::desktop::rpc {

namespace {

std::atomic<int> failures[3];
std::atomic<int> proxies{0};
std::atomic<int> connections{0};

/// The private folder of this run. Applications that are left lose their sockets with it.
class Folder {
public:
    ~Folder() {
        if (!_path.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(_path, ignored);
        }
    }

    std::string path() {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _path;
    }

    std::string make() {
        const std::lock_guard<std::mutex> lock(_mutex);
        if (_path.empty()) {
            GError* error = nullptr;
            gchar* const made = g_dir_make_tmp("homeloom-XXXXXX", &error);
            if (made == nullptr) {
                const std::string reason = error->message;
                g_error_free(error);
                throw std::runtime_error("no folder for the sockets of applications: " + reason);
            }
            _path = made;
            g_free(made);
        }
        return _path;
    }

private:
    std::mutex _mutex;
    std::string _path;
};

Folder& folder() {
    static Folder instance;
    return instance;
}

std::string fileName(const std::string& appId, const std::string& portName) {
    std::string name = appId + "." + portName;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

std::atomic<int>& failure(Operation operation) {
    return failures[static_cast<std::size_t>(operation)];
}

}  // namespace

std::string socketPath(const std::string& appId, const std::string& portName) {
    return folder().make() + "/" + fileName(appId, portName);
}

std::string pathOfSocket(const std::string& appId, const std::string& portName) {
    return folder().path() + "/" + fileName(appId, portName);
}

void failCreate(int code) {
    failure(Operation::Create) = code;
}

void failConnect(int code) {
    failure(Operation::Connect) = code;
}

void failSend(int code) {
    failure(Operation::Send) = code;
}

int failureOf(Operation operation) {
    return failure(operation);
}

void countProxy(int difference) {
    proxies += difference;
}

void countConnection(int difference) {
    connections += difference;
}

Holdings holdings() {
    return {proxies, connections, rpc_port_parcel_s::count()};
}

}  // namespace homeloom::desktop::rpc
