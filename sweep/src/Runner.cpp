#include "Runner.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>

namespace homeloom::sweep {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kVerdictFile = 3;
constexpr std::chrono::milliseconds kLookInterval{200};
constexpr std::size_t kMostReportLines = 12;

/// A process that runs, in a group of its own with what it starts.
class Process {
public:
    Process(const Arguments& arguments, std::size_t number) : _number(number), _started(Clock::now()) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error(std::string("no pipe: ") + std::strerror(errno));
        }
        _verdicts = ends[0];
        _output = memfd_create("output", MFD_CLOEXEC);
        start(arguments, ends[1]);
        close(ends[1]);
    }
    ~Process() {
        if (_id > 0) {
            end();
            waitpid(_id, nullptr, 0);
        }
        close(_verdicts);
        close(_output);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    std::size_t number() const { return _number; }
    int file() const { return _verdicts; }
    Clock::duration age() const { return Clock::now() - _started; }

    // The hub control application goes with it.
    void end() {
        _ending.wasEnded = true;
        killpg(_id, SIGKILL);
    }

    /// False when nothing more will come.
    bool read() {
        char bytes[65536];
        const ssize_t count = ::read(_verdicts, bytes, sizeof bytes);
        if (count > 0) {
            _text.append(bytes, static_cast<std::size_t>(count));
        }
        return count > 0;
    }

    Ending finish() {
        waitpid(_id, &_ending.status, 0);
        killpg(_id, SIGKILL);  // a hub control application whose process crashed
        _id = 0;
        _ending.duration = std::chrono::duration_cast<std::chrono::milliseconds>(age());
        std::istringstream lines(_text);
        for (std::string line; std::getline(lines, line);) {
            _ending.verdicts.push_back(line);
        }
        lseek(_output, 0, SEEK_SET);
        char bytes[4096];
        for (ssize_t count = 0; (count = ::read(_output, bytes, sizeof bytes)) > 0;) {
            _ending.output.append(bytes, static_cast<std::size_t>(count));
        }
        return std::move(_ending);
    }

private:
    void start(const Arguments& arguments, int verdicts) {
        Arguments words{"homeloom-sweep", "--verdicts", std::to_string(kVerdictFile)};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        for (std::string& word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);

        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&files, _output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&files, _output, STDERR_FILENO);
        posix_spawn_file_actions_adddup2(&files, verdicts, kVerdictFile);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        const int error = posix_spawn(&_id, "/proc/self/exe", &files, &attributes, pointers.data(), environ);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&files);
        if (error != 0) {
            _id = 0;
            throw std::runtime_error(std::string("no process: ") + std::strerror(error));
        }
    }

    const std::size_t _number;
    const Clock::time_point _started;
    pid_t _id = 0;
    int _verdicts = -1;
    int _output = -1;
    std::string _text;
    Ending _ending;
};

// What a sanitizer or the C library had to say, without the stacks.
std::string reportIn(const std::string& output) {
    std::istringstream lines(output);
    std::string report;
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line) && count < kMostReportLines;) {
        for (const char* const mark : {"Sanitizer", "runtime error", "terminate called", "what():", "Assertion"}) {
            if (line.find(mark) != std::string::npos) {
                report += "; " + line;
                ++count;
                break;
            }
        }
    }
    return report;
}

bool isOrdinary(int status) {
    return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == 1);
}

}  // namespace

void Runner::run(const std::vector<Arguments>& processes,
                 const std::function<void(std::size_t, const Ending&)>& ended) const {
    std::vector<std::unique_ptr<Process>> running;
    std::size_t next = 0;
    while (next < processes.size() || !running.empty()) {
        while (next < processes.size() && running.size() < static_cast<std::size_t>(_jobs)) {
            running.push_back(std::make_unique<Process>(processes[next], next));
            ++next;
        }
        std::vector<pollfd> files;
        for (const auto& process : running) {
            files.push_back({process->file(), POLLIN, 0});
        }
        poll(files.data(), files.size(), static_cast<int>(kLookInterval.count()));
        for (std::size_t i = running.size(); i-- > 0;) {
            if (files[i].revents != 0 && !running[i]->read()) {
                const std::unique_ptr<Process> process = std::move(running[i]);
                running.erase(running.begin() + static_cast<std::ptrdiff_t>(i));
                ended(process->number(), process->finish());
            } else if (running[i]->age() > _limit) {
                running[i]->end();
            }
        }
    }
}

Verdict Runner::judge(const Ending& ending) const {
    Verdict verdict;
    if (ending.wasEnded) {
        verdict.problems.push_back({Judge::Time, fmt::format("it had not ended after {} s", _limit.count())});
        return verdict;
    }
    if (!ending.verdicts.empty()) {
        verdict = Verdict::fromJson(ending.verdicts.back());
    }
    if (ending.verdicts.empty() || !isOrdinary(ending.status)) {
        const std::string how = WIFSIGNALED(ending.status) ? fmt::format("by signal {}", WTERMSIG(ending.status))
                                                           : fmt::format("with status {}", WEXITSTATUS(ending.status));
        verdict.problems.push_back({Judge::Crash, "it ended " + how + reportIn(ending.output)});
    }
    return verdict;
}

void sendVerdict(int file, const Verdict& verdict) {
    const std::string line = verdict.toJson() + "\n";
    for (std::size_t sent = 0; sent < line.size();) {
        const ssize_t count = write(file, line.data() + sent, line.size() - sent);
        if (count <= 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

}  // namespace homeloom::sweep
