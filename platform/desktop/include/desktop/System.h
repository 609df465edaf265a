#ifndef HOMELOOM_DESKTOP_SYSTEM_H
#define HOMELOOM_DESKTOP_SYSTEM_H

#include <optional>
#include <string>

/// Facts about the application, as the desk sets them. All operations are thread-safe.
namespace homeloom::desktop::system {

/// What app_get_name and app_get_version answer; none makes them fail. "homeloom-tv" and its version at the start.
void setAppName(std::optional<std::string> name);
void setAppVersion(std::optional<std::string> version);

}  // namespace homeloom::desktop::system

#endif
