#ifndef HOMELOOM_TV_DOOR_CONNECTIONTHREADS_H
#define HOMELOOM_TV_DOOR_CONNECTIONTHREADS_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <httplib.h>

namespace homeloom::tv {

/// A thread for each connection, started when there is none that is free, and kept then. Connections beyond the limit
/// wait for one that ends.
class ConnectionThreads : public httplib::TaskQueue {
public:
    explicit ConnectionThreads(std::size_t limit) : _limit(limit) {}

    void enqueue(std::function<void()> connection) override;
    /// Serves those that wait, and ends the threads.
    void shutdown() override;

private:
    void run();

    const std::size_t _limit;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<std::function<void()>> _waiting;
    std::vector<std::thread> _threads;
    std::size_t _free = 0;
    bool _ends = false;
};

}  // namespace homeloom::tv

#endif
