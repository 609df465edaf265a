#ifndef HOMELOOM_SIMULATOR_CALLBACKTHREAD_H
#define HOMELOOM_SIMULATOR_CALLBACKTHREAD_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace simulator {

/// The one thread on which a party calls back. Jobs run one at a time, in the order in which they were
/// posted, or when their delay is over. The thread starts with the first job and never ends.
class CallbackThread {
public:
    using Job = std::function<void()>;

    /// `owner` stands for whoever the job calls back; 0 for nobody.
    void post(int owner, Job job, std::chrono::milliseconds delay = {});
    /// Forgets the owner's jobs, and finishes the one that is running.
    void drop(int owner);
    /// Waits for the owner's job that is running, unless it is the caller.
    void finish(int owner);
    /// Waits until no job is running or due. False when that wasn't reached within the limit.
    bool waitIdle(std::optional<std::chrono::milliseconds> limit = std::nullopt);
    /// Whether no job is running or posted, not even for later.
    bool isEmpty() const;
    /// Whether the caller runs on this thread.
    bool isCurrent() const;

private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        int owner;
        Job job;
    };
    using Key = std::pair<Clock::time_point, std::uint64_t>;

    void run();
    bool isIdle() const;

    mutable std::mutex _mutex;
    std::condition_variable _wake;     // for the thread: the queue changed
    std::condition_variable _changed;  // for those who wait: a job ended
    std::map<Key, Entry> _entries;
    std::uint64_t _posted = 0;
    bool _isRunning = false;
    int _runningOwner = 0;
    std::thread _thread;
};

}  // namespace simulator

#endif
