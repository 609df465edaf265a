#include "HubProgram.h"

#include <dlfcn.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace simulator {

namespace {

constexpr char kFileName[] = "homeloom-hub-app";
// Far above what any command takes.
constexpr std::chrono::seconds kAnswerLimit{20};

// Beside this library.
std::string findProgram() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&findProgram), &info) == 0 || info.dli_fname == nullptr) {
        throw std::runtime_error("the folder of the simulator can't be found");
    }
    const auto path = std::filesystem::absolute(info.dli_fname).parent_path() / kFileName;
    if (!std::filesystem::exists(path)) {
        throw std::runtime_error("there is no hub control application at " + path.string());
    }
    return path.string();
}

// Its standard input is the line; output and errors are the desk's. A group of its own, so that a Ctrl-C that is meant
// for the desk leaves it alone.
pid_t spawn(const std::string& program, int line, const std::string& socketPath, const std::string& infoFile) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, line, STDIN_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    const char* const arguments[] = {kFileName, socketPath.c_str(), infoFile.c_str(), nullptr};
    pid_t process = 0;
    const int result =
        posix_spawn(&process, program.c_str(), &actions, &attributes, const_cast<char* const*>(arguments), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0) {
        throw std::runtime_error(program + ": " + std::strerror(result));
    }
    return process;
}

}  // namespace

HubProgram::~HubProgram() {
    kill();
}

void HubProgram::start(const std::string& socketPath, const std::string& infoFile) {
    const std::string program = findProgram();
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::runtime_error(std::string("no line to the hub control application: ") + std::strerror(errno));
    }
    try {
        _process = spawn(program, ends[1], socketPath, infoFile);
    } catch (...) {
        close(ends[0]);
        close(ends[1]);
        throw;
    }
    close(ends[1]);
    _line = ends[0];
}

bool HubProgram::isRunning() {
    if (_process != 0 && waitpid(_process, nullptr, WNOHANG) == _process) {
        _process = 0;
        forget();
    }
    return _process != 0;
}

HubProgram::JsonValue HubProgram::ask(const JsonValue& command) {
    if (!isRunning() || _isPaused) {
        throw std::runtime_error(_isPaused ? "the hub control application is paused"
                                           : "the hub control application doesn't run");
    }
    send(command.toString() + "\n");
    const JsonValue answer = JsonValue::Create(readLine());
    if (!answer["error"].isNull()) {
        throw std::runtime_error(answer["error"].asString());
    }
    return answer["value"];
}

void HubProgram::send(std::string text) const {
    while (!text.empty()) {
        const ssize_t sent = ::send(_line, text.data(), text.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            throw std::runtime_error("the hub control application is gone");
        }
        text.erase(0, static_cast<std::size_t>(sent));
    }
}

// Commands and answers take turns, so nothing stands behind the line.
std::string HubProgram::readLine() const {
    std::string text;
    const int limit = static_cast<int>(std::chrono::milliseconds(kAnswerLimit).count());
    while (text.empty() || text.back() != '\n') {
        char bytes[4096];
        pollfd readable{_line, POLLIN, 0};
        const ssize_t size = poll(&readable, 1, limit) > 0 ? recv(_line, bytes, sizeof bytes, 0) : 0;
        if (size <= 0) {
            throw std::runtime_error("the hub control application doesn't answer");
        }
        text.append(bytes, static_cast<std::size_t>(size));
    }
    return text;
}

int HubProgram::forget() {
    int status = 0;
    if (_process != 0) {
        waitpid(std::exchange(_process, 0), &status, 0);
    }
    if (_line >= 0) {
        close(std::exchange(_line, -1));
    }
    _isPaused = false;
    return status;
}

void HubProgram::stop() {
    if (!isRunning()) {
        return;
    }
    resume();
    shutdown(_line, SHUT_WR);
    if (const int status = forget(); !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("the hub control application came to a bad end");
    }
}

void HubProgram::kill() {
    if (isRunning()) {
        ::kill(_process, SIGKILL);
        forget();
    }
}

void HubProgram::pause() {
    if (isRunning() && !_isPaused) {
        ::kill(_process, SIGSTOP);
        waitpid(_process, nullptr, WUNTRACED);
        _isPaused = true;
    }
}

void HubProgram::resume() {
    if (isRunning() && _isPaused) {
        ::kill(_process, SIGCONT);
        _isPaused = false;
    }
}

}  // namespace simulator
