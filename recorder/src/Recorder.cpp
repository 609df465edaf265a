#include "Recorder.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace recorder {

namespace {

// In the order in which they were first seen.
int threadNumber() {
    static std::atomic<int> threads{0};
    thread_local const int number = ++threads;
    return number;
}

bool writeAll(int file, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(file, data, size);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        if (written > 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

std::string now() {
    const std::time_t time = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&time, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

}  // namespace

Recorder& Recorder::instance() {
    static Recorder& recorder = *new Recorder;
    return recorder;
}

// Made at the first call, so that other programs which inherit the environment touch no file.
Recorder::Recorder() : _start(std::chrono::steady_clock::now()) {
    const char* const path = std::getenv("HOMELOOM_AGENT_TAPE");
    if (path == nullptr || *path == '\0') {
        return;
    }
    const char* const names = std::getenv("HOMELOOM_AGENT_TAPE_NAMES");
    _hasNames = names != nullptr && std::strcmp(names, "1") == 0;
    _file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const std::string head =
        "{\"agent_tape\":1,\"began\":\"" + now() + "\",\"names\":" + (_hasNames ? "true" : "false") + "}\n";
    if (_file < 0 || !writeAll(_file, head.data(), head.size())) {
        std::fprintf(stderr, "homeloom-agent-recorder: %s: %s\n", path, std::strerror(errno));
    }
}

Registration* Recorder::keep(const Registration& registration) {
    const std::lock_guard<std::mutex> lock(_mutex);
    return &_registrations.emplace_back(registration);
}

long long Recorder::call(const char* function, const std::string& in) {
    const std::lock_guard<std::mutex> lock(_mutex);
    const long long number = ++_calls;
    write("\"call\":" + std::to_string(number) + ",\"function\":\"" + function + "\",\"in\":" + in);
    return number;
}

void Recorder::answer(long long call, int code, const std::string& out) {
    const std::lock_guard<std::mutex> lock(_mutex);
    write("\"answer\":" + std::to_string(call) + ",\"code\":" + std::to_string(code) +
          (out.empty() ? "" : ",\"out\":" + out));
}

void Recorder::callback(const Registration& registration, const std::string& in) {
    const std::lock_guard<std::mutex> lock(_mutex);
    write("\"callback\":" + std::to_string(registration.call) + ",\"in\":" + in);
}

std::string Recorder::handle(const void* handle, bool isNew) {
    const std::lock_guard<std::mutex> lock(_mutex);
    int& number = _numbers[handle];
    if (isNew || number == 0) {
        number = ++_handles;
    }
    return '#' + std::to_string(number);
}

std::string Recorder::text(const Place& place, const std::string& text) {
    if (_hasNames) {
        return text;
    }
    const std::lock_guard<std::mutex> lock(_mutex);
    return _blanking.shown(place, text);
}

void Recorder::write(const std::string& rest) {
    using std::chrono::microseconds;
    const long long time = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - _start).count();
    char begin[64];
    std::snprintf(begin, sizeof begin, "{\"at\":%lld.%06lld,\"thread\":%d,", time / 1000000, time % 1000000,
                  threadNumber());
    const std::string line = begin + rest + "}\n";
    if (_file >= 0 && !writeAll(_file, line.data(), line.size())) {
        std::fprintf(stderr, "homeloom-agent-recorder: the tape ends here: %s\n", std::strerror(errno));
        close(_file);
        _file = -1;
    }
}

}  // namespace recorder
