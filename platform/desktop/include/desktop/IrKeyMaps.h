#ifndef HOMELOOM_DESKTOP_IRKEYMAPS_H
#define HOMELOOM_DESKTOP_IRKEYMAPS_H

#include <map>
#include <optional>
#include <set>
#include <string>

/// The code sets of the desk's infrared blaster. All operations are thread-safe.
namespace homeloom::desktop::ir {

/// Key maps by code set, as qsp_get_supported_keymap_hcodeset answers them. At the start there are a code set with all
/// keys, "1234", and four that lack some.
std::map<std::string, std::string> keyMaps();
/// Adds or replaces a code set; none takes it away.
void setKeyMap(const std::string& codeSet, std::optional<std::string> keyMap);

/// The key map that has these keys.
std::string keyMapOf(const std::set<unsigned>& keys);

}  // namespace homeloom::desktop::ir

#endif
