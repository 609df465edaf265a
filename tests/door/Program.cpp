#include "Program.h"

#include <glib.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>

using VMFramework::json::JsonValue;

namespace {

constexpr char kLoopback[] = "127.0.0.1";
constexpr char kUrl[] = "http://127.0.0.1:";

}  // namespace

Program::Program(const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{HOMELOOM_TV_PROGRAM, "--serve", "0"};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& text : texts) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    int output = -1;
    if (g_spawn_async_with_pipes(nullptr, argv.data(), nullptr, G_SPAWN_DO_NOT_REAP_CHILD, nullptr, nullptr, &_process,
                                 nullptr, &output, nullptr, nullptr) == FALSE) {
        throw std::runtime_error("the program can't be started");
    }
    _output = fdopen(output, "r");
    std::string line;
    for (int c = 0; _port == 0 && (c = std::fgetc(_output)) != EOF;) {
        line += static_cast<char>(c);
        if (c == '\n') {
            const std::size_t at = line.find(kUrl);
            _port = at != std::string::npos ? std::stoi(line.substr(at + sizeof kUrl - 1)) : 0;
            line.clear();
        }
    }
}

Program::~Program() {
    end(SIGKILL);
}

int Program::end(int signal) {
    if (_process < 0) {
        return -1;
    }
    kill(_process, signal);
    // What it still has to say must not fill the pipe.
    char bytes[4096];
    while (std::fread(bytes, 1, sizeof bytes, _output) > 0) {
    }
    std::fclose(_output);
    int status = 0;
    waitpid(_process, &status, 0);
    _process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

httplib::Client Program::client() const {
    return httplib::Client(kLoopback, _port);
}

JsonValue Program::post(const std::string& body, const std::string& type) const {
    const auto result = client().Post("/v1/commands", body, type);
    return result ? JsonValue::Create(result->body) : JsonValue();
}

bool takeEvent(std::string& text, Event& event) {
    const std::size_t end = text.find("\n\n");
    if (end == std::string::npos) {
        return false;
    }
    event = {};
    const std::string message = text.substr(0, end + 1);
    text.erase(0, end + 2);
    for (std::size_t at = 0; at < message.size();) {
        const std::size_t lineEnd = message.find('\n', at);
        const std::string line = message.substr(at, lineEnd - at);
        at = lineEnd + 1;
        if (line.rfind("id: ", 0) == 0) {
            event.id = line.substr(4);
        } else if (line.rfind("event: ", 0) == 0) {
            event.type = line.substr(7);
        } else if (line.rfind("data: ", 0) == 0) {
            event.data = JsonValue::Create(line.substr(6));
        }
    }
    return true;
}

Listener::Listener(const Program& program, const std::string& lastId) : _client(program.client()) {
    _thread = std::thread([this, lastId] {
        const httplib::Headers headers =
            lastId.empty() ? httplib::Headers() : httplib::Headers{{"Last-Event-ID", lastId}};
        _client.Get("/v1/events", headers, [this](const char* data, std::size_t size) { return take(data, size); });
        const std::lock_guard<std::mutex> lock(_mutex);
        _ended = true;
        _came.notify_one();
    });
}

Listener::~Listener() {
    _client.stop();
    _thread.join();
}

bool Listener::take(const char* data, std::size_t size) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _text.append(data, size);
    _came.notify_one();
    return true;
}

Event Listener::next(const std::string& type) {
    std::unique_lock<std::mutex> lock(_mutex);
    Event event;
    do {
        bool isThere = false;
        _came.wait(lock, [&] { return (isThere = takeEvent(_text, event)) || _ended; });
        if (!isThere) {
            return {};
        }
    } while (event.type.empty() || event.type == "sim" ? type != event.type : !type.empty() && event.type != type);
    return event;
}
