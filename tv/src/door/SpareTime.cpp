#include "SpareTime.h"

#include <pthread.h>
#include <sched.h>

#include <clock/Clock.h>

namespace homeloom::tv {

SpareTime::SpareTime() : _thread([this] { run(); }) {}

SpareTime::~SpareTime() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _ends = true;
    }
    _came.notify_one();
    _thread.join();
}

void SpareTime::wait(std::chrono::milliseconds patience) {
    Waiting waiting;
    std::unique_lock<std::mutex> lock(_mutex);
    _waiting.push_back(&waiting);
    _came.notify_one();
    if (!waiting.turn.wait_for(lock, patience, [&waiting] { return waiting.hasTurn; })) {
        _waiting.remove(&waiting);
    }
}

// Runs only while no other thread wants its processor, whichever that is; that it runs is what the others wait for.
void SpareTime::run() {
    const clock::Exempt exempt;
    pthread_setname_np(pthread_self(), "door spare time");
    const sched_param parameter{};
    pthread_setschedparam(pthread_self(), SCHED_IDLE, &parameter);
    std::unique_lock<std::mutex> lock(_mutex);
    while (!_ends) {
        if (_waiting.empty()) {
            _came.wait(lock);
            continue;
        }
        _waiting.front()->hasTurn = true;
        _waiting.front()->turn.notify_one();
        _waiting.pop_front();
        // Who has the turn now comes before this thread.
        lock.unlock();
        lock.lock();
    }
}

}  // namespace homeloom::tv
