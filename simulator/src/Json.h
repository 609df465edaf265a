#ifndef HOMELOOM_SIMULATOR_JSON_H
#define HOMELOOM_SIMULATOR_JSON_H

#include <string>
#include <string_view>

#include <boost/json.hpp>

namespace simulator {

namespace json = boost::json;

/// Compact text, with numbers as people write them: 24.5, where the library writes 2.45E1.
std::string toText(const json::value& value);
/// The text as a JSON string, quotes included.
std::string quoted(std::string_view text);
/// Null for what is no JSON.
json::value parsed(std::string_view text);
/// The text of a JSON string; for anything else its JSON text.
std::string plain(const std::string& jsonText);
/// The member's text; "" when it is no object, has no such member, or not as a text.
std::string textMember(const json::value& value, std::string_view name);
/// The member; null when it is no object, or has no such member.
const json::value* memberOf(const json::value* value, std::string_view name);

}  // namespace simulator

#endif
