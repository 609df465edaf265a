#ifndef HOMELOOM_HOMELOOM_COMMON_FAIRMUTEX_H
#define HOMELOOM_HOMELOOM_COMMON_FAIRMUTEX_H

#include <mutex>

namespace VMFramework::HomeLoom {

/// A mutex for long holders that take it again and again: none gets it twice in a row while another waits. A plain
/// one goes to whoever runs, and a thread that was just woken comes too late for that.
class FairMutex {
public:
    void lock() {
        // Who waits for the mutex keeps the gate shut, for the one that has just given it back as well.
        const std::lock_guard<std::mutex> gate(_gate);
        _mutex.lock();
    }
    void unlock() { _mutex.unlock(); }

private:
    std::mutex _gate;
    std::mutex _mutex;
};

}  // namespace VMFramework::HomeLoom

#endif
