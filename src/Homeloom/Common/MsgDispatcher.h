#ifndef HOMELOOM_HOMELOOM_COMMON_MSGDISPATCHER_H
#define HOMELOOM_HOMELOOM_COMMON_MSGDISPATCHER_H

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "Common/CSingleton.h"
#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

using ThreadJob = std::function<void()>;

/// A named first-in-first-out queue of jobs with one thread of its own. Jobs of one dispatcher never overlap; a job
/// that throws costs only itself. Every operation but Quit may be called from any thread, from a job too.
class MsgDispatcher {
public:
    /// A job with a name that has no meaning but in the log.
    struct Msg {
        ThreadJob job;
        std::string name;
    };

    class MsgQueue {
    public:
        MsgQueue();
        explicit MsgQueue(const std::string& name);

        // Part of the interface; no caller in the plug-in.
        void Push(const Msg& msg);
        void Push(Msg&& msg);
        // Part of the interface; no caller in the plug-in.
        void Pop();
        // Part of the interface; no caller in the plug-in.
        Msg& Front();
        std::size_t Size() const;
        bool IsEmpty() const;
        /// Drops all jobs unrun. They are destroyed outside the queue's lock.
        void Clear();
        /// While paused no job is run. Resume drops what is there and ends the pause in one step, so that a job pushed
        /// before it never runs and one pushed after it is never dropped.
        void Pause();
        void Resume();
        bool IsPaused() const;
        /// The same as Clear, unless the pause has ended in the meantime.
        void ClearIfPaused();
        void RunFirstJob();

    private:
        void clear(bool onlyIfPaused);

        mutable Mutex _mutex;
        std::deque<Msg> _queue GUARDED_BY(_mutex);
        bool _paused GUARDED_BY(_mutex) = false;
        const std::string _name;
    };

    /// Both start the thread at once.
    MsgDispatcher();
    explicit MsgDispatcher(const std::string& name);
    virtual ~MsgDispatcher();
    MsgDispatcher(const MsgDispatcher&) = delete;
    MsgDispatcher& operator=(const MsgDispatcher&) = delete;

    /// Adds a job; it is dropped, and logged, after Quit, and thrown away while paused.
    void EnqueueData(ThreadJob job, const std::string& name);
    /// While paused every queued and arriving job is thrown away: none that was queued before Resume runs, and every
    /// one that is queued after it has returned. A running job is not waited for.
    void Pause();
    void Resume();
    void ClearData();
    /// Waits for the running job, without a limit, and ends the thread; queued jobs never run. Not to be called
    /// from a job of this dispatcher. A dispatcher is not restarted.
    void Quit();
    // Part of the interface; no caller in the plug-in.
    bool isEmptyQueue() const;

private:
    void runDispatchingThread();
    void dispatchUntilQuit();
    void wake();

    std::condition_variable _condition;
    // Held by the thread throughout, also while a job runs; given up only inside the wait. So nothing that a job can
    // call may wait for it.
    std::mutex _mutex;
    MsgQueue _queue;
    std::atomic<bool> _running{true};
    // True from just before the thread looks at its queue for the last time until it has woken up.
    std::atomic<bool> _goingToSleep{false};
    const std::string _name;
    std::thread _thread;
};

/// The scheduler: takes work off agent callback threads.
class SGTMsgDispatcher : public MsgDispatcher, public CSingleton<SGTMsgDispatcher> {
    friend class CSingleton<SGTMsgDispatcher>;
    SGTMsgDispatcher() : MsgDispatcher("SGTMsgDispatcher") {}
};

/// Queues a job on the scheduler. Never throws: a job that can't be queued is logged and lost, and an agent callback
/// must not end in an exception.
void EnqueueOnScheduler(ThreadJob job, const std::string& name) noexcept;

}  // namespace VMFramework::HomeLoom

#endif
