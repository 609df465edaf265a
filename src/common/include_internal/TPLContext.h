#ifndef HOMELOOM_COMMON_INCLUDE_INTERNAL_TPLCONTEXT_H
#define HOMELOOM_COMMON_INCLUDE_INTERNAL_TPLCONTEXT_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <typeinfo>
#include <utility>

#include "Common/HLLog.h"

namespace VMFramework::TPL {

inline constexpr char kContextTag[] = "VMF_TPL_CONTEXT";

// What each job goes through is for who debugs the queue itself: at info level three lines a job would hide the rest.
#define TPL_LOGD(...) HL_LOG_TAGGED(DLOG_DEBUG, VMFramework::TPL::kContextTag, __VA_ARGS__)
#define TPL_LOGI(...) HL_LOG_TAGGED(DLOG_INFO, VMFramework::TPL::kContextTag, __VA_ARGS__)
#define TPL_LOGE(...) HL_LOG_TAGGED(DLOG_ERROR, VMFramework::TPL::kContextTag, __VA_ARGS__)

/// A serial job queue without a thread of its own, and base of the class T that works through it.
///
/// The first caller that finds the context idle runs jobs for as long as there are any. So a caller's job may run on
/// its own thread before the call returns, or on the thread of another caller that is just running jobs; and a caller
/// may come to run other callers' jobs. Whoever holds a lock across a call must think of that.
///
/// No lock is held while a job runs. A job may post to its own context; that job runs after it.
template <typename T>
class CContext {
public:
    using Task = std::function<void(const std::shared_ptr<T>&)>;

    virtual ~CContext() = default;

    /// Tasks before this are dropped without a word.
    template <typename Invoker>
    void Initiate(Invoker& invoker);

    /// Queues a task. False means that it will not run: the context is terminated.
    template <typename Invoker>
    bool InvokeTask(Invoker& invoker, Task task);

    /// Ends the context: tasks that are still queued are dropped. Waits for the job that is to do so, at most 20
    /// seconds, except when another thread is in the middle of a job: then it is done at once, without a wait. There is
    /// no way back.
    template <typename Invoker>
    void TerminateSync(Invoker& invoker);

protected:
    CContext() = default;

    /// To be called once, right after T was made.
    void _SetOwner(const std::shared_ptr<T>& owner) { _owner = owner; }

private:
    static constexpr std::chrono::seconds kTerminateLimit{20};

    class CJob {
    public:
        virtual ~CJob() = default;
        virtual void Run(CContext* context) = 0;
    };

    class CInitiateJob : public CJob {
    public:
        CInitiateJob() { TPL_LOGD("InitiateJob created"); }
        ~CInitiateJob() override { TPL_LOGD("InitiateJob destroyed"); }
        void Run(CContext* context) override { context->_Initiate(); }
    };

    class CTaskJob : public CJob {
    public:
        explicit CTaskJob(Task task) : _task(std::move(task)) { TPL_LOGD("TaskJob created"); }
        ~CTaskJob() override { TPL_LOGD("TaskJob destroyed"); }
        void Run(CContext* context) override { context->_ProcessTask(_task); }

    private:
        const Task _task;
    };

    class CTerminateJob : public CJob {
    public:
        CTerminateJob() { TPL_LOGD("TerminateJob created"); }
        ~CTerminateJob() override { TPL_LOGD("TerminateJob destroyed"); }
        void Run(CContext* context) override { context->_Terminate(); }
    };

    class CSynchronizer {
    public:
        virtual ~CSynchronizer() = default;

        void SetDone() {
            const std::lock_guard<std::mutex> lock(_mutex);
            _done = true;
            _condition.notify_one();
        }
        bool WaitUntil(std::chrono::steady_clock::time_point deadline) {
            std::unique_lock<std::mutex> lock(_mutex);
            return _condition.wait_until(lock, deadline, [this] { return _done; });
        }

    private:
        std::mutex _mutex;
        std::condition_variable _condition;
        bool _done = false;
    };

    class CTerminateJobSync final : public CTerminateJob {
    public:
        CTerminateJobSync() { TPL_LOGD("CTerminateJobSync created"); }
        ~CTerminateJobSync() override { TPL_LOGD("CTerminateJobSync destroyed"); }
        void Run(CContext* context) override {
            context->_Terminate();
            _synchronizer.SetDone();
        }
        CSynchronizer& GetSynchronizer() { return _synchronizer; }

    private:
        CSynchronizer _synchronizer;
    };

    template <typename Invoker>
    bool _InvokeJob(const std::shared_ptr<CJob>& job, Invoker& invoker);
    void _ProcessJob();
    void _Initiate();
    void _ProcessTask(const Task& task);
    void _Terminate();

    // Recursive, since a job may post a job on the same thread.
    std::recursive_mutex _mutex;
    std::deque<std::shared_ptr<CJob>> _jobs;
    std::weak_ptr<T> _owner;
    std::function<void(const std::shared_ptr<T>&)> _terminateHook = [](const std::shared_ptr<T>&) {};
    bool _initiated = false;
    bool _terminated = false;
    bool _invoked = false;  // some thread is running jobs
    std::string _name;
};

template <typename T>
template <typename Invoker>
void CContext<T>::Initiate(Invoker& invoker) {
    {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        _name = typeid(T).name();
    }
    TPL_LOGI("[%s] Initiate", typeid(T).name());
    _InvokeJob(std::make_shared<CInitiateJob>(), invoker);
}

template <typename T>
template <typename Invoker>
bool CContext<T>::InvokeTask(Invoker& invoker, Task task) {
    return _InvokeJob(std::make_shared<CTaskJob>(std::move(task)), invoker);
}

template <typename T>
template <typename Invoker>
void CContext<T>::TerminateSync(Invoker& invoker) {
    TPL_LOGI("[%s] TerminateSync", typeid(T).name());
    const auto job = std::make_shared<CTerminateJobSync>();
    // Run in place, or refused: there is nothing to wait for, and the flag tells which it was.
    const auto limit = _InvokeJob(job, invoker) ? kTerminateLimit : std::chrono::seconds::zero();
    const bool done = job->GetSynchronizer().WaitUntil(std::chrono::steady_clock::now() + limit);
    TPL_LOGD("Sync result(%d)", done);
}

template <typename T>
template <typename Invoker>
bool CContext<T>::_InvokeJob(const std::shared_ptr<CJob>& job, Invoker& invoker) {
    std::unique_lock<std::recursive_mutex> lock(_mutex);
    if (_terminated) {
        TPL_LOGE("context is terminated [%p]", static_cast<void*>(this));
        return false;
    }
    _jobs.push_back(job);
    TPL_LOGD("[%s] task is queued, qcnt:[%zu]", _name.c_str(), _jobs.size());
    if (_invoked) {
        TPL_LOGD("already invoked [%p]", static_cast<void*>(this));
        const CJob& queued = *job;
        if (typeid(queued) == typeid(CTerminateJobSync)) {
            TPL_LOGI("already invoked but do terminate job [%p]", static_cast<void*>(this));
            _Terminate();
            return false;
        }
        return true;
    }
    _invoked = true;
    TPL_LOGD("[%s] task is invoked [%p], qcnt:[%zu]", _name.c_str(), static_cast<void*>(this), _jobs.size());
    lock.unlock();

    bool entered = false;
    try {
        const std::shared_ptr<T> owner(_owner);
        const auto run = [this, &entered] {
            entered = true;
            _ProcessJob();
        };
        invoker.Invoke(std::cref(run));  // a function of that size would have to be allocated
    } catch (...) {
        if (!entered) {
            // Once entered, _ProcessJob has cleared the flag itself. Clearing it twice could take it from a
            // thread that has become the worker meanwhile, and two would run jobs at once.
            lock.lock();
            _invoked = false;
        }
        throw;
    }
    return true;
}

template <typename T>
void CContext<T>::_ProcessJob() {
    std::unique_lock<std::recursive_mutex> lock(_mutex);
    struct ClearInvoked {
        CContext& context;
        std::unique_lock<std::recursive_mutex>& lock;
        ~ClearInvoked() {
            if (!lock.owns_lock()) {
                lock.lock();
            }
            context._invoked = false;
        }
    } clearInvoked{*this, lock};

    if (_terminated) {
        TPL_LOGD("context is terminated [%p]", static_cast<void*>(this));
        // Terminated between this caller's queuing and now: nobody else will drop what it has queued.
        _jobs.clear();
        return;
    }
    while (!_jobs.empty()) {
        // Held beyond Run: whatever it captured is released without the lock as well.
        std::shared_ptr<CJob> job = std::move(_jobs.front());
        _jobs.pop_front();
        TPL_LOGD("[%s] task is poped, qcnt:[%zu]", _name.c_str(), _jobs.size());
        lock.unlock();
        job->Run(this);
        job.reset();
        lock.lock();
        TPL_LOGD("[%s] task is done, qcnt:[%zu]", _name.c_str(), _jobs.size());
        if (_terminated) {
            _jobs.clear();
            return;
        }
    }
}

template <typename T>
void CContext<T>::_Initiate() {
    TPL_LOGD("Initiating");
    const std::lock_guard<std::recursive_mutex> lock(_mutex);
    _initiated = true;
    _terminated = false;
}

template <typename T>
void CContext<T>::_ProcessTask(const Task& task) {
    {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        if (!_initiated || _terminated) {
            TPL_LOGD("[%s] task is dropped, initiated:%d terminated:%d", _name.c_str(), _initiated, _terminated);
            return;
        }
    }
    TPL_LOGD("Processing Task");
    task(std::shared_ptr<T>(_owner));
}

template <typename T>
void CContext<T>::_Terminate() {
    {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        _initiated = false;
        _terminated = true;
    }
    _terminateHook(std::shared_ptr<T>(_owner));
}

}  // namespace VMFramework::TPL

#endif
