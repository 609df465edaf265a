#ifndef HOMELOOM_DESKTOP_LAUNCHES_H
#define HOMELOOM_DESKTOP_LAUNCHES_H

#include <functional>
#include <map>
#include <string>
#include <vector>

/// The applications that were launched through app_control.h. All operations are thread-safe. The functions of that
/// header can be made to fail with failCalls().
namespace homeloom::desktop::launches {

struct Launch {
    std::string appId;
    std::map<std::string, std::string> extras;
};

/// Those since the start or the last forget(), the oldest first.
std::vector<Launch> all();
void forget();

/// An application that can be launched: `start` is told of each launch, on the caller's thread, when it has been
/// recorded. A launch of any other application fails and is not recorded. A null function takes the application away.
void setApp(const std::string& appId, std::function<void(const Launch&)> start);

}  // namespace homeloom::desktop::launches

#endif
