#ifndef HOMELOOM_DESKTOP_SYSTEM_H
#define HOMELOOM_DESKTOP_SYSTEM_H

#include <optional>
#include <string>

/// Facts about the application and the TV, as the desk sets them. All operations are thread-safe.
namespace homeloom::desktop::system {

/// What app_get_name and app_get_version answer; none makes them fail. "homeloom-tv" and its version at the start.
void setAppName(std::optional<std::string> name);
void setAppVersion(std::optional<std::string> version);

/// What system_info_get_custom_bool answers for a key; none makes it fail, as it does for every key at the start.
void setFeature(const std::string& key, std::optional<bool> value);
std::optional<bool> feature(const std::string& key);

/// What system_info_get_platform_string answers for a key; none makes it fail. At the start there is a version.
void setPlatformText(const std::string& key, std::optional<std::string> text);

}  // namespace homeloom::desktop::system

#endif
