// Queues of jobs with a thread each, and the one that takes work off the agent's callback thread.
#include "Homeloom/Common/MsgDispatcher.h"

#include <chrono>
#include <exception>
#include <utility>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

// A pusher wakes the thread sooner. This bounds the damage should a wake-up ever get lost.
constexpr std::chrono::milliseconds kIdleWait{500};

}  // namespace

MsgDispatcher::MsgQueue::MsgQueue() : MsgQueue(std::string()) {}

MsgDispatcher::MsgQueue::MsgQueue(const std::string& name) : _name(name) {
    HL_LOGI("[%s]", _name.c_str());
}

void MsgDispatcher::MsgQueue::Push(const Msg& msg) {
    Push(Msg(msg));
}

void MsgDispatcher::MsgQueue::Push(Msg&& msg) {
    const MutexLock lock(_mutex);
    _queue.push_back(std::move(msg));
}

void MsgDispatcher::MsgQueue::Pop() {
    const MutexLock lock(_mutex);
    _queue.pop_front();
}

MsgDispatcher::Msg& MsgDispatcher::MsgQueue::Front() {
    const MutexLock lock(_mutex);
    return _queue.front();
}

std::size_t MsgDispatcher::MsgQueue::Size() const {
    const MutexLock lock(_mutex);
    return _queue.size();
}

bool MsgDispatcher::MsgQueue::IsEmpty() const {
    const MutexLock lock(_mutex);
    return _queue.empty();
}

void MsgDispatcher::MsgQueue::Clear() {
    clear(false);
}

void MsgDispatcher::MsgQueue::ClearIfPaused() {
    clear(true);
}

void MsgDispatcher::MsgQueue::Pause() {
    const MutexLock lock(_mutex);
    _paused = true;
}

void MsgDispatcher::MsgQueue::Resume() {
    std::deque<Msg> dropped;  // destroyed after the lock is released
    const MutexLock lock(_mutex);
    if (std::exchange(_paused, false)) {
        dropped.swap(_queue);
    }
}

bool MsgDispatcher::MsgQueue::IsPaused() const {
    const MutexLock lock(_mutex);
    return _paused;
}

void MsgDispatcher::MsgQueue::clear(bool onlyIfPaused) {
    HL_LOGI("[%s] Clear Enter", _name.c_str());
    std::deque<Msg> dropped;
    {
        const MutexLock lock(_mutex);
        if (_paused || !onlyIfPaused) {
            dropped.swap(_queue);
        }
    }
    // What a job holds may push on this queue when it is destroyed.
    dropped.clear();
    HL_LOGI("[%s] Clear Exit", _name.c_str());
}

void MsgDispatcher::MsgQueue::RunFirstJob() {
    Msg msg;
    {
        const MutexLock lock(_mutex);
        if (_queue.empty() || _paused) {
            return;
        }
        msg = std::move(_queue.front());
        _queue.pop_front();
    }
    if (!msg.job) {
        HL_LOGI("[%s] job null!", _name.c_str());
        return;
    }
    HL_LOGI("[%s][%s] before job. Q count: %zu", _name.c_str(), msg.name.c_str(), Size());
    try {
        msg.job();
        HL_LOGI("[%s][%s] after job. Q count: %zu", _name.c_str(), msg.name.c_str(), Size());
    } catch (const std::exception& e) {
        HL_LOGE("[%s][%s] exception from job : %s", _name.c_str(), msg.name.c_str(), e.what());
    } catch (...) {
        HL_LOGE("[%s][%s] unknown exception from job", _name.c_str(), msg.name.c_str());
    }
}

MsgDispatcher::MsgDispatcher() : MsgDispatcher(std::string()) {}

MsgDispatcher::MsgDispatcher(const std::string& name)
    : _queue(name), _name(name), _thread(&MsgDispatcher::runDispatchingThread, this) {}

MsgDispatcher::~MsgDispatcher() {
    if (_thread.joinable()) {
        Quit();
    }
}

void MsgDispatcher::EnqueueData(ThreadJob job, const std::string& name) {
    if (!_running) {
        HL_LOGE("Thread already finished! Can not do enqueue!! [%s]", name.c_str());
        return;
    }
    _queue.Push(Msg{std::move(job), name});
    HL_LOGI("[%s][%s] enqueued. Q size:%zu", _name.c_str(), name.c_str(), _queue.Size());
    wake();
    if (!_running) {
        // The thread may have cleared its queue for the last time before this job came.
        _queue.Clear();
    }
}

// Between the thread's last look at the queue and its wait, a notify would be lost. There the thread holds the mutex
// for a few instructions only, so the pusher may wait for it; otherwise the thread is awake, perhaps inside a long job
// under that same mutex, and will look at the queue by itself.
void MsgDispatcher::wake() {
    while (_goingToSleep) {
        if (_mutex.try_lock()) {
            _mutex.unlock();
            _condition.notify_one();
            return;
        }
        std::this_thread::yield();
    }
}

void MsgDispatcher::Pause() {
    HL_LOGE("[%s] Enter. Q Count: %zu", _name.c_str(), _queue.Size());
    _queue.Pause();
    wake();
    HL_LOGI("[%s] Exit", _name.c_str());
}

void MsgDispatcher::Resume() {
    HL_LOGE("[%s] Enter. Q Count: %zu", _name.c_str(), _queue.Size());
    _queue.Resume();
    wake();
    HL_LOGI("[%s] Exit", _name.c_str());
}

void MsgDispatcher::ClearData() {
    HL_LOGI("[%s]", _name.c_str());
    _queue.Clear();
}

void MsgDispatcher::Quit() {
    HL_LOGE("[%s] Enter. Q Count: %zu", _name.c_str(), _queue.Size());
    _running = false;
    _queue.Resume();
    wake();
    if (_thread.joinable()) {
        HL_LOGI("[%s] before join", _name.c_str());
        _thread.join();
        HL_LOGI("[%s] after join", _name.c_str());
    } else {
        HL_LOGI("[%s] Not joinable", _name.c_str());
    }
    HL_LOGI("[%s] Exit", _name.c_str());
}

bool MsgDispatcher::isEmptyQueue() const {
    return _queue.IsEmpty();
}

void MsgDispatcher::runDispatchingThread() {
    HL_LOGI("[%s] thread started", _name.c_str());
    try {
        dispatchUntilQuit();
    } catch (const std::exception& e) {
        HL_LOGE("[%s] Exception: %s", _name.c_str(), e.what());
    }
    HL_LOGI("[%s] Finished thread running", _name.c_str());
}

void MsgDispatcher::dispatchUntilQuit() {
    std::unique_lock<std::mutex> lock(_mutex);
    while (true) {
        _goingToSleep = true;
        if (_running && _queue.IsEmpty()) {
            _condition.wait_for(lock, kIdleWait);
            _goingToSleep = false;
            continue;
        }
        _goingToSleep = false;
        // Asked first: a pause that comes after Quit must not keep the thread here for ever.
        if (!_running) {
            break;
        }
        if (_queue.IsPaused()) {
            HL_LOGE("[%s] PAUSED STATUS. clear all", _name.c_str());
            _queue.ClearIfPaused();
            continue;
        }
        _queue.RunFirstJob();
    }
    HL_LOGE("[%s] ESCAPE!, Q Count: %zu", _name.c_str(), _queue.Size());
    ClearData();
}

void EnqueueOnScheduler(ThreadJob job, const std::string& name) noexcept {
    Guarded([&] { SGTMsgDispatcher::GetInstance().EnqueueData(std::move(job), name); });
}

}  // namespace VMFramework::HomeLoom
