#ifndef HOMELOOM_HOMELOOM_COMMON_FAIRMUTEX_H
#define HOMELOOM_HOMELOOM_COMMON_FAIRMUTEX_H

#include <mutex>

#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

/// A mutex for long holders that take it again and again: none gets it twice in a row while another waits. A plain
/// one goes to the thread that runs, before one that was just woken.
class HL_THREAD_SAFETY(capability("mutex")) FairMutex {
public:
    void lock() HL_THREAD_SAFETY(acquire_capability()) {
        // Who waits for the mutex keeps the gate shut, for the one that has just given it back as well.
        const std::lock_guard<std::mutex> gate(_gate);
        _mutex.lock();
    }
    void unlock() HL_THREAD_SAFETY(release_capability()) { _mutex.unlock(); }

private:
    std::mutex _gate;
    std::mutex _mutex;
};

}  // namespace VMFramework::HomeLoom

#endif
