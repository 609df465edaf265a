#ifndef HOMELOOM_RECORDER_RECORDER_H
#define HOMELOOM_RECORDER_RECORDER_H

#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "recorder/Blanking.h"
#include "recorder/Forms.h"

namespace recorder {

/// A callback that was given to the agent, and the call that gave it.
struct Registration {
    const char* function;
    long long call;
    void (*callback)();
    void* userData;
};

/// Writes the tape: one JSON document a line, each in one piece as soon as it happened, so that a process that dies
/// takes nothing with it.
///
///     {"agent_tape":1,"began":"2026-05-01T12:00:00Z","names":false}
///     {"at":0.000120,"thread":1,"call":1,"function":"homeloom_client_connect","in":[null]}
///     {"at":0.000150,"thread":1,"answer":1,"code":0,"out":["client"]}
///     {"at":0.000210,"thread":2,"callback":1,"in":[0,0]}
///
/// Times are seconds since the first line. The environment tells the file (HOMELOOM_AGENT_TAPE), and whether names and
/// tokens stay (HOMELOOM_AGENT_TAPE_NAMES=1). Any thread may call; nothing here calls back.
class Recorder : public Speller {
public:
    /// Never destroyed: the agent calls as late as in the destructors of others.
    static Recorder& instance();

    /// False without a file: then nothing is recorded.
    bool isOn() const { return _file >= 0; }

    /// Keeps it for ever: nobody can know whether the agent calls once more.
    Registration* keep(const Registration& registration);

    long long call(const char* function, const std::string& in);
    void answer(long long call, int code, const std::string& out);
    void callback(const Registration& registration, const std::string& in);

    std::string handle(const void* handle, bool isNew) override;
    std::string text(const Place& place, const std::string& text) override;

private:
    Recorder();

    /// A line that begins with time and thread. Needs the mutex.
    void write(const std::string& rest);

    std::mutex _mutex;
    int _file = -1;
    bool _hasNames = false;
    std::chrono::steady_clock::time_point _start;
    long long _calls = 0;
    int _handles = 0;
    std::map<const void*, int> _numbers;  // of handles; one that is handed out again at the same place has a new one
    Blanking _blanking;
    std::deque<Registration> _registrations;  // which stay in their places
};

}  // namespace recorder

#endif
