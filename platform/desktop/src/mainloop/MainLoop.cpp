#include "desktop/MainLoop.h"

#include <glib.h>

namespace homeloom::desktop {

MainLoop::MainLoop() : _loop(g_main_loop_new(nullptr, FALSE)), _thread([this] { g_main_loop_run(_loop); }) {}

MainLoop::~MainLoop() {
    call([this] { g_main_loop_quit(_loop); });  // from within: before the loop runs, it would be lost
    _thread.join();
    g_main_loop_unref(_loop);
}

void MainLoop::call(const std::function<void()>& function) {
    std::packaged_task<void()> task(function);
    std::future<void> done = task.get_future();
    {
        const std::lock_guard lock(_mutex);
        _calls.push_back(std::move(task));
    }
    // Not g_main_context_invoke: while the loop has not started, that would run the function here.
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer loop) -> gboolean {
            static_cast<MainLoop*>(loop)->runNext();
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
    done.get();
}

void MainLoop::runNext() {
    std::packaged_task<void()> task;
    {
        const std::lock_guard lock(_mutex);
        task = std::move(_calls.front());
        _calls.pop_front();
    }
    task();
}

}  // namespace homeloom::desktop
