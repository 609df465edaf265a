// Arms and cancels a one-shot source on the main loop, and waits for a callback that is already on its way.
#include "Homeloom/Common/MainLoopTimer.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <thread>
#include <utility>

#include <glib.h>
#include <semaphore.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

// What GLib calls when it lets go of a source's callback: after the dispatch, should there be one. It is no function of
// this library, which would still have to return while whoever waits for it goes on and closes the library.
const auto kPost = reinterpret_cast<GDestroyNotify>(reinterpret_cast<void (*)()>(sem_post));

std::atomic<unsigned long> lastId{0};

}  // namespace

// What GLib knows of a timer that was started once.
struct MainLoopTimer::Run {
    enum class State { Armed, Running, Over };

    // GLib hands one address to both functions: the semaphore comes first, so that it has the address of the whole.
    struct Hook {
        sem_t released;
        Run* run;
    };

    Run(unsigned long timer, unsigned milliseconds, std::function<void()> work)
        : owner(timer), callback(std::move(work)), source(g_timeout_source_new(milliseconds)) {
        sem_init(&hook.released, 0, 0);
        g_source_set_callback(source, onTimeout, &hook, kPost);
    }
    ~Run() {
        g_source_unref(source);
        sem_destroy(&hook.released);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    /// Answers what is to be destroyed when no lock is held.
    std::function<void()> disarm() {
        std::function<void()> dropped;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (state == State::Armed) {
                state = State::Over;
                dropped.swap(callback);
            }
        }
        g_source_destroy(source);
        return dropped;
    }

    bool isReleased() {
        int value = 0;
        sem_getvalue(&hook.released, &value);
        return value > 0;
    }

    void waitUntilReleased() {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (state == State::Armed || runner == std::this_thread::get_id()) {
                return;
            }
        }
        while (sem_wait(&hook.released) != 0) {
            // interrupted by a signal
        }
        sem_post(&hook.released);  // for the next who waits
    }

    Hook hook{{}, this};
    const unsigned long owner;
    std::mutex mutex;  // a leaf: guards the next three
    State state = State::Armed;
    std::thread::id runner;  // while it runs
    std::function<void()> callback;
    GSource* const source;  // owned
};

Mutex MainLoopTimer::runsMutex;
MainLoopTimer::Runs MainLoopTimer::runs;

MainLoopTimer::MainLoopTimer() : _id(++lastId) {}

MainLoopTimer::~MainLoopTimer() {
    Disarm();
}

unsigned MainLoopTimer::Start(unsigned milliseconds, std::function<void()> callback) {
    auto run = std::make_shared<Run>(_id, milliseconds, std::move(callback));
    {
        const MutexLock lock(runsMutex);
        runs.erase(std::remove_if(runs.begin(), runs.end(), [](const auto& old) { return old->isReleased(); }),
                   runs.end());
        runs.push_back(run);
    }
    std::function<void()> dropped;  // destroyed after the lock is released
    const MutexLock lock(_mutex);
    if (_run) {
        dropped = _run->disarm();
    }
    _run = run;
    return g_source_attach(run->source, nullptr);
}

void MainLoopTimer::Disarm() {
    std::shared_ptr<Run> run;
    {
        const MutexLock lock(_mutex);
        run.swap(_run);
    }
    if (run) {
        run->disarm();
    }
}

void MainLoopTimer::Cancel() {
    Disarm();
    Runs own;
    {
        const MutexLock lock(runsMutex);
        std::copy_if(runs.begin(), runs.end(), std::back_inserter(own),
                     [this](const auto& run) { return run->owner == _id; });
    }
    waitFor(own);
}

void MainLoopTimer::WaitForCallbacks() {
    Runs all;
    {
        const MutexLock lock(runsMutex);
        all = runs;
    }
    waitFor(all);
}

void MainLoopTimer::waitFor(const Runs& waited) {
    for (const auto& run : waited) {
        run->waitUntilReleased();
    }
}

int MainLoopTimer::onTimeout(void* userData) {
    if (userData == nullptr) {
        HL_LOGE("user_data null!!");
        return G_SOURCE_REMOVE;
    }
    // Kept among the runs until GLib lets go of it.
    Run& run = *static_cast<Run::Hook*>(userData)->run;
    std::function<void()> callback;
    {
        const std::lock_guard<std::mutex> lock(run.mutex);
        if (run.state != Run::State::Armed) {
            return G_SOURCE_REMOVE;
        }
        run.state = Run::State::Running;
        run.runner = std::this_thread::get_id();
        callback.swap(run.callback);
    }
    Guarded([&] { callback(); });
    // What the callback holds may be the last of its timer, and may cancel it.
    callback = nullptr;
    const std::lock_guard<std::mutex> lock(run.mutex);
    run.state = Run::State::Over;
    run.runner = {};
    return G_SOURCE_REMOVE;
}

}  // namespace VMFramework::HomeLoom
