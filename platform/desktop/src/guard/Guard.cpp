#include "desktop/Guard.h"

#include <exception>
#include <mutex>

#include <dlog.h>

namespace homeloom::desktop {

namespace {

std::mutex exceptionsMutex;
std::vector<std::string>& exceptions() {
    static std::vector<std::string> texts;
    return texts;
}

void keep(const char* callback, const char* what) {
    dlog_print(DLOG_ERROR, "HOMELOOM_DESK", "the plug-in let an exception through %s: %s", callback, what);
    const std::lock_guard lock(exceptionsMutex);
    exceptions().push_back(std::string(callback) + ": " + what);
}

}  // namespace

void callPlugin(const char* callback, const std::function<void()>& function) noexcept {
    try {
        function();
    } catch (const std::exception& e) {
        keep(callback, e.what());
    } catch (...) {
        keep(callback, "no std::exception");
    }
}

std::vector<std::string> pluginExceptions() {
    const std::lock_guard lock(exceptionsMutex);
    return exceptions();
}

void forgetPluginExceptions() {
    const std::lock_guard lock(exceptionsMutex);
    exceptions().clear();
}

}  // namespace homeloom::desktop
