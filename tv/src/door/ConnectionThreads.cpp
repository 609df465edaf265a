#include "ConnectionThreads.h"

#include <pthread.h>

#include <utility>

namespace homeloom::tv {

void ConnectionThreads::enqueue(std::function<void()> connection) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _waiting.push_back(std::move(connection));
    if (_waiting.size() > _free && _threads.size() < _limit) {
        _threads.emplace_back([this] { run(); });
    }
    _changed.notify_one();
}

void ConnectionThreads::shutdown() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _ends = true;
    }
    _changed.notify_all();
    for (std::thread& thread : _threads) {
        thread.join();
    }
}

void ConnectionThreads::run() {
    pthread_setname_np(pthread_self(), "door client");
    std::unique_lock<std::mutex> lock(_mutex);
    while (true) {
        ++_free;
        _changed.wait(lock, [this] { return _ends || !_waiting.empty(); });
        --_free;
        if (_waiting.empty()) {
            return;
        }
        const std::function<void()> connection = std::move(_waiting.front());
        _waiting.pop_front();
        lock.unlock();
        connection();
        lock.lock();
    }
}

}  // namespace homeloom::tv
