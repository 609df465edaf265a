#ifndef HOMELOOM_BENCH_SUPPORT_DESK_H
#define HOMELOOM_BENCH_SUPPORT_DESK_H

#include <condition_variable>
#include <mutex>
#include <string>

#include <desktop/Framework.h>
#include <desktop/MainLoop.h>
#include <dlfcn.h>
#include <simulator/Home.h>

namespace bench {

/// A desk TV with a home behind it; the plug-in is loaded with dlopen, as a TV does it. One at a time.
class Desk {
public:
    explicit Desk(simulator::Home home);
    /// close(), and an empty desk.
    ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void create();
    void destroy();
    /// create(), and waits until the home was reported with all its state texts.
    void show();
    /// Waits until that many device lists were reported since create() or forgetLists(). Ends the program if they
    /// don't come.
    void waitForLists(int count);
    void forgetLists();
    /// Waits until the agent tells the plug-in of the device's changes. Lists don't wait for that: a device is
    /// subscribed after its metadata was parsed, on a thread of its own.
    void waitForSubscription(const std::string& deviceId);
    /// Waits until no thread of this program has anything to do any more: also what the start brings of its own accord.
    static void waitForRest();
    /// destroy(), and closes the library: nothing of the plug-in is left.
    void close();
    /// Opens the library again after close(). The home is as it was.
    void open();

private:
    void* _library = nullptr;
    bool (*_createPlugin)() = nullptr;
    bool (*_destroyPlugin)() = nullptr;
    bool _isRunning = false;
    homeloom::desktop::MainLoop _mainLoop;
    std::mutex _mutex;
    std::condition_variable _listArrived;
    int _lists = 0;
    int _listener = 0;
};

/// The library's function behind one that a benchmark defines in its place.
template <typename Function>
Function* next(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Says why, and ends the program.
[[noreturn]] void fail(const std::string& reason);

}  // namespace bench

#endif
