#ifndef HOMELOOM_TV_DOOR_SPARETIME_H
#define HOMELOOM_TV_DOOR_SPARETIME_H

#include <atomic>
#include <chrono>
#include <thread>

namespace homeloom::tv {

/// Lets threads work while a processor has nothing else to do, one after the other: for what is worth less than all
/// else, but mustn't starve where all processors are busy for long. All operations are thread-safe.
class SpareTime {
public:
    /// Throws std::system_error if there are no descriptors left.
    SpareTime();
    ~SpareTime();
    SpareTime(const SpareTime&) = delete;
    SpareTime& operator=(const SpareTime&) = delete;

    /// Returns as soon as a processor has time to spare, at the latest after `patience`.
    void wait(std::chrono::milliseconds patience);

private:
    void run();

    // Counters of the kernel, and no mutex: the thread of the lowest class could be kept from its processor while it
    // holds one, and all who wait would wait for it.
    const int _wishes;
    const int _turns;
    std::atomic<bool> _ends{false};
    std::thread _thread;
};

}  // namespace homeloom::tv

#endif
