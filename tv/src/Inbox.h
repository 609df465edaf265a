#ifndef HOMELOOM_TV_INBOX_H
#define HOMELOOM_TV_INBOX_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

#include "Report.h"

namespace homeloom::tv {

class Desk;

/// What comes in from other threads for the one that runs the commands: the plug-in's reports, commands from other
/// programs, and the wish of the person at the keyboard to stop. One for the process.
class Inbox {
public:
    Inbox();
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    /// The reports that came since the last call; waits that long for the first one, or for an interruption.
    std::vector<ReportPtr> take(std::chrono::microseconds wait = std::chrono::microseconds(0));

    /// Becomes readable when something came. takeWakeups() makes it unreadable again.
    int wakeupFile() const { return _wakeupFile; }
    void takeWakeups();

    /// Leaves something to be done by the thread that runs the commands, between two of them.
    using Job = std::function<void(Desk& desk)>;
    void post(Job job);
    /// The job that has waited longest; null if there is none.
    Job takeJob();

    /// Ends the waiting of the command that runs.
    void interrupt();
    /// Whether there was an interruption since the last call.
    bool takeInterruption() { return _interrupted.exchange(false); }
    bool isInterrupted() const { return _interrupted; }

    /// The program shall end: interrupts everything from now on.
    void stop();
    bool isStopped() const { return _stopped; }

    /// Grows with every report and with every call that the plug-in makes to the agent.
    std::uint64_t activity() const { return _activity; }

private:
    void wakeUp();

    const int _wakeupFile;
    int _listener = 0;
    int _callObserver = 0;
    std::mutex _mutex;
    std::condition_variable _came;
    std::vector<ReportPtr> _reports;
    std::deque<Job> _jobs;
    std::atomic<bool> _interrupted{false};
    std::atomic<bool> _stopped{false};
    std::atomic<std::uint64_t> _activity{0};
};

}  // namespace homeloom::tv

#endif
