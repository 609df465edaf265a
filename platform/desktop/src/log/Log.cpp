#include "desktop/Log.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

namespace homeloom::desktop::log {

namespace {

// Above every priority: takes nothing.
constexpr int kNothing = 100;

}  // namespace

struct Capture::State {
    explicit State(log_priority leastTaken) : least(leastTaken) {}

    const log_priority least;
    mutable std::mutex mutex;
    mutable std::condition_variable arrived;
    std::vector<Line> lines;
};

namespace {

// What is asked before each line: the least priority that some sink takes, whether the priority alone does not tell,
// and whether there is a trace sink.
std::atomic<int> leastTaken{kNothing};
std::atomic<bool> filtersTags{false};
std::atomic<bool> hasTrace{false};

struct CaptureEntry {
    const void* owner;
    int least;
    std::function<void(const Line&)> take;
};

struct Sinks {
    std::mutex mutex;
    int stderrLeast = kNothing;
    int fileLeast = kNothing;
    std::FILE* file = nullptr;
    std::vector<std::string> tags;
    std::vector<CaptureEntry> captures;
    std::function<void(const char*)> trace;

    void update() {
        int lowest = std::min(stderrLeast, fileLeast);
        for (const auto& capture : captures) {
            lowest = std::min(lowest, capture.least);
        }
        leastTaken = lowest;
        filtersTags = !tags.empty();
    }
    bool takes(int priority, const char* tag) const {
        return (takesTag(tag) && priority >= std::min(stderrLeast, fileLeast)) ||
               std::any_of(captures.begin(), captures.end(),
                           [=](const CaptureEntry& capture) { return priority >= capture.least; });
    }
    bool takesTag(const char* tag) const {
        return tags.empty() || std::find(tags.begin(), tags.end(), tag) != tags.end();
    }
    void closeFile() {
        if (file != nullptr) {
            std::fclose(file);
            file = nullptr;
        }
    }
};

// Never destroyed: threads may log until the process is gone.
Sinks& sinks() {
    static Sinks* const instance = new Sinks();
    return *instance;
}

char letterOf(int priority) {
    switch (priority) {
        case DLOG_DEBUG:
            return 'D';
        case DLOG_INFO:
            return 'I';
        case DLOG_WARN:
            return 'W';
        default:
            return 'E';
    }
}

std::string format(const char* text, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, text, measured);
    va_end(measured);
    if (length < 0) {
        return {};
    }
    std::string line(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(line.data(), line.size() + 1, text, arguments);
    return line;
}

}  // namespace

void toStderr(log_priority least) {
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    sinks().stderrLeast = least;
    sinks().update();
}

bool toFile(const std::string& path, log_priority least) {
    std::FILE* file = std::fopen(path.c_str(), "a");
    if (file == nullptr) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    sinks().closeFile();
    sinks().file = file;
    sinks().fileLeast = least;
    sinks().update();
    return true;
}

void off() {
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    sinks().closeFile();
    sinks().stderrLeast = kNothing;
    sinks().fileLeast = kNothing;
    sinks().update();
}

void setTags(std::vector<std::string> tags) {
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    sinks().tags = std::move(tags);
    sinks().update();
}

bool parsePriority(const std::string& text, log_priority& priority) {
    static const std::pair<const char*, log_priority> kNames[] = {
        {"debug", DLOG_DEBUG}, {"3", DLOG_DEBUG}, {"info", DLOG_INFO},   {"4", DLOG_INFO},
        {"warn", DLOG_WARN},   {"5", DLOG_WARN},  {"error", DLOG_ERROR}, {"6", DLOG_ERROR}};
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const auto& [name, value] : kNames) {
        if (lower == name) {
            priority = value;
            return true;
        }
    }
    return false;
}

Capture::Capture(log_priority least) : _state(std::make_shared<State>(least)) {
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    // The entry shares the state, so that a line on its way finds it also while the capture ends.
    sinks().captures.push_back({_state.get(), least, [state = _state](const Line& line) {
                                    const std::lock_guard<std::mutex> stateLock(state->mutex);
                                    state->lines.push_back(line);
                                    state->arrived.notify_all();
                                }});
    sinks().update();
}

Capture::~Capture() {
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    auto& captures = sinks().captures;
    captures.erase(std::remove_if(captures.begin(), captures.end(),
                                  [this](const CaptureEntry& entry) { return entry.owner == _state.get(); }),
                   captures.end());
    sinks().update();
}

std::vector<Line> Capture::lines() const {
    const std::lock_guard<std::mutex> lock(_state->mutex);
    return _state->lines;
}

int Capture::count(const std::string& text) const {
    const std::lock_guard<std::mutex> lock(_state->mutex);
    return static_cast<int>(std::count_if(_state->lines.begin(), _state->lines.end(), [&](const Line& line) {
        return line.message.find(text) != std::string::npos;
    }));
}

bool Capture::waitFor(const std::string& text, std::chrono::milliseconds limit) const {
    std::unique_lock<std::mutex> lock(_state->mutex);
    std::size_t looked = 0;
    return _state->arrived.wait_for(lock, limit, [&] {
        for (; looked < _state->lines.size(); ++looked) {
            if (_state->lines[looked].message.find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    });
}

void Capture::clear() {
    const std::lock_guard<std::mutex> lock(_state->mutex);
    _state->lines.clear();
}

void setTraceSink(std::function<void(const char*)> sink) {
    const std::lock_guard<std::mutex> lock(sinks().mutex);
    sinks().trace = std::move(sink);
    hasTrace = static_cast<bool>(sinks().trace);
}

}  // namespace homeloom::desktop::log

namespace log_impl = homeloom::desktop::log;

bool dlog_is_enabled(log_priority priority, const char* tag) {
    if (priority < log_impl::leastTaken.load(std::memory_order_relaxed)) {
        return false;
    }
    if (!log_impl::filtersTags.load(std::memory_order_relaxed)) {
        return true;
    }
    auto& sinks = log_impl::sinks();
    const std::lock_guard<std::mutex> lock(sinks.mutex);
    return sinks.takes(priority, tag != nullptr ? tag : "");
}

int dlog_print(log_priority priority, const char* tag, const char* format, ...) {
    if (format == nullptr) {
        return -1;
    }
    if (!dlog_is_enabled(priority, tag)) {
        return 0;
    }
    va_list arguments;
    va_start(arguments, format);
    log_impl::Line line{priority, tag != nullptr ? tag : "", log_impl::format(format, arguments)};
    va_end(arguments);

    auto& sinks = log_impl::sinks();
    const std::lock_guard<std::mutex> lock(sinks.mutex);
    if (sinks.takesTag(line.tag.c_str())) {
        for (const auto& [file, least] :
             {std::pair(stderr, sinks.stderrLeast), std::pair(sinks.file, sinks.fileLeast)}) {
            if (file != nullptr && priority >= least) {
                std::fprintf(file, "%c/%s: %s\n", log_impl::letterOf(priority), line.tag.c_str(), line.message.c_str());
                std::fflush(file);
            }
        }
    }
    for (const auto& capture : sinks.captures) {
        if (priority >= capture.least) {
            capture.take(line);
        }
    }
    return static_cast<int>(line.message.size());
}

bool dlog_trace_is_active(void) {
    return log_impl::hasTrace.load(std::memory_order_relaxed);
}

void dlog_trace_write(const char* text) {
    std::function<void(const char*)> sink;
    {
        const std::lock_guard<std::mutex> lock(log_impl::sinks().mutex);
        sink = log_impl::sinks().trace;
    }
    if (sink) {
        sink(text);
    }
}
