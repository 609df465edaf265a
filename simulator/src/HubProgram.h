#ifndef HOMELOOM_SIMULATOR_HUBPROGRAM_H
#define HOMELOOM_SIMULATOR_HUBPROGRAM_H

#include <string>

#include <sys/types.h>

#include <VMFramework/JsonValue.h>

namespace simulator {

/// The process of the hub control application, and the line over which it is told what to do. Not thread-safe.
class HubProgram {
public:
    using JsonValue = VMFramework::json::JsonValue;

    ~HubProgram();

    /// Throws std::runtime_error if it can't be started or doesn't listen.
    void start(const std::string& socketPath, const std::string& infoFile);
    /// Whether it runs; takes note of its end if it came to one by itself.
    bool isRunning();
    pid_t processId() const { return _process; }
    bool isPaused() const { return _isPaused; }
    /// One command and its answer. Throws std::runtime_error with the program's error, or if it doesn't answer.
    JsonValue ask(const JsonValue& command);
    /// Ends it by closing the line; throws std::runtime_error if it failed in the end.
    void stop();
    void kill();
    void pause();
    void resume();

private:
    void send(std::string text) const;
    std::string readLine() const;
    int forget();  // the status of its end

    pid_t _process = 0;
    int _line = -1;
    bool _isPaused = false;
};

}  // namespace simulator

#endif
