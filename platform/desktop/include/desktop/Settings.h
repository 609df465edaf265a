#ifndef HOMELOOM_DESKTOP_SETTINGS_H
#define HOMELOOM_DESKTOP_SETTINGS_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

/// The desk's settings from the other side: what the TV's menus would set. All operations are thread-safe; watchers are
/// told on the GLib main loop.
namespace homeloom::desktop::settings {

using Value = std::variant<int, std::string>;

void setInt(const std::string& key, int value);
void setString(const std::string& key, const std::string& value);
/// Removes the key and tells its watchers.
void unset(const std::string& key);
std::optional<Value> get(const std::string& key);
std::vector<std::string> keys();

/// Keeps the keys that begin with "db/" in this JSON file from now on, and reads what it holds. Throws
/// std::runtime_error, with nothing changed, if it is no such file or can't be written. An empty path stops it.
void keepIn(const std::string& path);

/// Lets the coming operations of a kind on a key fail as if the store were broken, until told otherwise.
enum class Operation { Get, Set, Notify };
void fail(Operation operation, const std::string& key, bool fails = true);

/// How many watches the plug-in has.
int watchCount();

/// No keys, no file, no failures. Watches stay.
void reset();

}  // namespace homeloom::desktop::settings

#endif
