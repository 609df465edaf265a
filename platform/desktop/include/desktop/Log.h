#ifndef HOMELOOM_DESKTOP_LOG_H
#define HOMELOOM_DESKTOP_LOG_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <dlog.h>

/// The desk's log: where lines go, and which. Everything is off at the start, and a line that nobody takes costs no
/// more than a look at a number. All operations are thread-safe.
namespace homeloom::desktop::log {

struct Line {
    log_priority priority;
    std::string tag;
    std::string message;
};

/// Lines of this priority and above go to standard error.
void toStderr(log_priority least);
/// Or to the end of a file. False if it can't be opened; nothing changes then.
bool toFile(const std::string& path, log_priority least);
/// Neither standard error nor a file.
void off();
/// Only lines of these tags are written to standard error and file; an empty list means all tags.
void setTags(std::vector<std::string> tags);

/// The name of a priority in any case, or its number. False for anything else.
bool parsePriority(const std::string& text, log_priority& priority);

/// Takes lines while it lives, of all tags.
class Capture {
public:
    explicit Capture(log_priority least = DLOG_DEBUG);
    ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    std::vector<Line> lines() const;
    /// How many lines contain that text.
    int count(const std::string& text) const;
    bool contains(const std::string& text) const { return count(text) > 0; }
    /// Waits for a line that contains that text; false when the time is over.
    bool waitFor(const std::string& text, std::chrono::milliseconds limit = std::chrono::seconds(10)) const;
    void clear();

private:
    struct State;
    const std::shared_ptr<State> _state;
};

/// The trace sink's marks go to this function, on the threads that write them; null, the default, switches the sink
/// off.
void setTraceSink(std::function<void(const char*)> sink);

}  // namespace homeloom::desktop::log

#endif
