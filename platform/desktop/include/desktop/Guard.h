#ifndef HOMELOOM_DESKTOP_GUARD_H
#define HOMELOOM_DESKTOP_GUARD_H

#include <functional>
#include <string>
#include <vector>

namespace homeloom::desktop {

/// The way from the desk into the plug-in: calls the function; an exception that it lets through is logged and kept,
/// and the desk goes on. `callback` names what was called.
void callPlugin(const char* callback, const std::function<void()>& function) noexcept;

/// The exceptions that came through since the start or the last call of forgetPluginExceptions(),
/// as "CALLBACK: WHAT".
std::vector<std::string> pluginExceptions();
void forgetPluginExceptions();

}  // namespace homeloom::desktop

#endif
