#ifndef HOMELOOM_CLOCK_TURNER_H
#define HOMELOOM_CLOCK_TURNER_H

#include <condition_variable>
#include <mutex>
#include <thread>

namespace homeloom::clock {

/// While it lives, the clock stands, and a thread moves it to the next deadline whenever the program rests: whoever
/// waits for a time to come waits only as long as somebody works. For programs in which no one waits for a person.
class Turner {
public:
    Turner();
    /// The clock goes on as it did before.
    ~Turner();
    Turner(const Turner&) = delete;
    Turner& operator=(const Turner&) = delete;

    /// While one lives, no turner turns the clock: its thread does, or wants it to stand.
    class Pause {
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
    };

private:
    void turn();

    const bool _wasStanding;
    std::mutex _mutex;
    std::condition_variable _wake;
    bool _isOver = false;
    std::thread _thread;
};

}  // namespace homeloom::clock

#endif
