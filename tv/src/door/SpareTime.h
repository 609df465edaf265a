#ifndef HOMELOOM_TV_DOOR_SPARETIME_H
#define HOMELOOM_TV_DOOR_SPARETIME_H

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace homeloom::tv {

/// Lets threads work while a processor has nothing else to do, one after the other: for what is worth less than all
/// else, but mustn't starve where all processors are busy for long. All operations are thread-safe.
class SpareTime {
public:
    SpareTime();
    ~SpareTime();
    SpareTime(const SpareTime&) = delete;
    SpareTime& operator=(const SpareTime&) = delete;

    /// Returns as soon as a processor has time to spare, at the latest after `patience`.
    void wait(std::chrono::milliseconds patience);

private:
    struct Waiting {
        std::condition_variable turn;
        bool hasTurn = false;
    };

    void run();

    std::mutex _mutex;  // guards the next two; held for a few lines
    std::list<Waiting*> _waiting;
    bool _ends = false;
    std::condition_variable _came;
    std::thread _thread;
};

}  // namespace homeloom::tv

#endif
