#include "CallbackThread.h"

#include <vector>

namespace simulator {

void CallbackThread::post(int owner, Job job, std::chrono::milliseconds delay) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _entries.emplace(Key(Clock::now() + delay, _posted++), Entry{owner, std::move(job)});
    if (!_thread.joinable()) {
        _thread = std::thread(&CallbackThread::run, this);
    }
    _wake.notify_one();
}

void CallbackThread::drop(int owner) {
    std::vector<Entry> dropped;  // destroyed without the lock
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        for (auto entry = _entries.begin(); entry != _entries.end();) {
            if (entry->second.owner == owner) {
                dropped.push_back(std::move(entry->second));
                entry = _entries.erase(entry);
            } else {
                ++entry;
            }
        }
        _changed.notify_all();
    }
    finish(owner);
}

void CallbackThread::finish(int owner) {
    std::unique_lock<std::mutex> lock(_mutex);
    if (_thread.get_id() != std::this_thread::get_id()) {
        _changed.wait(lock, [&] { return !_isRunning || _runningOwner != owner; });
    }
}

bool CallbackThread::waitIdle(std::optional<std::chrono::milliseconds> limit) {
    std::unique_lock<std::mutex> lock(_mutex);
    const auto idle = [this] { return isIdle(); };
    if (limit) {
        return _changed.wait_for(lock, *limit, idle);
    }
    _changed.wait(lock, idle);
    return true;
}

bool CallbackThread::isEmpty() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return !_isRunning && _entries.empty();
}

bool CallbackThread::isCurrent() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _thread.get_id() == std::this_thread::get_id();
}

bool CallbackThread::isIdle() const {
    return !_isRunning && (_entries.empty() || _entries.begin()->first.first > Clock::now());
}

void CallbackThread::run() {
    std::unique_lock<std::mutex> lock(_mutex);
    for (;;) {
        if (_entries.empty()) {
            _wake.wait(lock);
            continue;
        }
        const auto due = _entries.begin()->first.first;
        if (due > Clock::now()) {
            _wake.wait_until(lock, due);
            continue;
        }
        Entry entry = std::move(_entries.begin()->second);
        _entries.erase(_entries.begin());
        _isRunning = true;
        _runningOwner = entry.owner;
        lock.unlock();
        entry.job();
        entry.job = nullptr;
        lock.lock();
        _isRunning = false;
        _changed.notify_all();
    }
}

}  // namespace simulator
