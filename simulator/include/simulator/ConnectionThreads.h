#ifndef HOMELOOM_SIMULATOR_CONNECTIONTHREADS_H
#define HOMELOOM_SIMULATOR_CONNECTIONTHREADS_H

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <httplib.h>

namespace simulator {

/// The threads of a web server: one for each connection, started when there is none that is free, and kept then.
/// Connections beyond the limit wait for one that ends.
class ConnectionThreads : public httplib::TaskQueue {
public:
    using Connection = std::function<void()>;

    /// `name` is that of the threads, of 15 letters at most; `serve` is called on them with each connection, and calls
    /// it.
    ConnectionThreads(std::size_t limit, std::string name, std::function<void(const Connection&)> serve);

    void enqueue(Connection connection) override;
    /// Serves those that wait, and ends the threads.
    void shutdown() override;

private:
    void run();

    const std::size_t _limit;
    const std::string _name;
    const std::function<void(const Connection&)> _serve;
    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Connection> _waiting;
    std::vector<std::thread> _threads;
    std::size_t _free = 0;
    bool _ends = false;
};

}  // namespace simulator

#endif
