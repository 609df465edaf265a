#ifndef HOMELOOM_DESKTOP_MAINLOOP_H
#define HOMELOOM_DESKTOP_MAINLOOP_H

#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

typedef struct _GMainLoop GMainLoop;

namespace homeloom::desktop {

/// Runs the GLib main loop, on which timers and settings callbacks come, on a thread of its own for as long as it
/// lives. For programs that have something better to do with their main thread; one at a time.
class MainLoop {
public:
    MainLoop();
    ~MainLoop();
    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;

    /// Runs the function on the loop and returns when it is done. Not from the loop itself.
    void call(const std::function<void()>& function);

private:
    void runNext();

    GMainLoop* const _loop;
    std::mutex _mutex;
    std::deque<std::packaged_task<void()>> _calls;  // one idle source on the loop for each
    std::thread _thread;
};

}  // namespace homeloom::desktop

#endif
