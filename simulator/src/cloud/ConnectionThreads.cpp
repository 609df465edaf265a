#include "simulator/ConnectionThreads.h"

#include <pthread.h>

#include <utility>

namespace simulator {

ConnectionThreads::ConnectionThreads(std::size_t limit, std::string name, std::function<void(const Connection&)> serve)
    : _limit(limit), _name(std::move(name)), _serve(std::move(serve)) {}

void ConnectionThreads::enqueue(Connection connection) {
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
    pthread_setname_np(pthread_self(), _name.c_str());
    std::unique_lock<std::mutex> lock(_mutex);
    while (true) {
        ++_free;
        _changed.wait(lock, [this] { return _ends || !_waiting.empty(); });
        --_free;
        if (_waiting.empty()) {
            return;
        }
        const Connection connection = std::move(_waiting.front());
        _waiting.pop_front();
        lock.unlock();
        _serve(connection);
        lock.lock();
    }
}

}  // namespace simulator
