#include "Differences.h"

#include <map>

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

/// The parts of a value by their names; null if it is compared as a whole.
using Parts = std::optional<std::map<std::string, JsonValue>>;

Parts partsOf(const JsonValue& value) {
    std::map<std::string, JsonValue> parts;
    if (value.isObject()) {
        for (const std::string& name : value.getMemberNames()) {
            parts.emplace(name, value[name]);
        }
        return parts;
    }
    if (!value.isArray()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < value.size(); ++i) {
        const JsonValue element = value[i];
        if (!element["id"].isString() || !parts.emplace(element["id"].asString(), element).second) {
            return std::nullopt;
        }
    }
    return parts;
}

void compare(const std::string& place, const JsonValue& before, const JsonValue& after, std::vector<Difference>& found);

void compareParts(const std::string& place, const Parts& before, const Parts& after, std::vector<Difference>& found) {
    const auto placeOf = [&place](const std::string& name) { return place.empty() ? name : place + "/" + name; };
    for (const auto& [name, value] : *before) {
        if (const auto other = after->find(name); other != after->end()) {
            compare(placeOf(name), value, other->second, found);
        } else {
            found.push_back({placeOf(name), value.toString(), std::nullopt});
        }
    }
    for (const auto& [name, value] : *after) {
        if (before->count(name) == 0) {
            found.push_back({placeOf(name), std::nullopt, value.toString()});
        }
    }
}

void compare(const std::string& place, const JsonValue& before, const JsonValue& after,
             std::vector<Difference>& found) {
    const Parts left = partsOf(before);
    const Parts right = partsOf(after);
    if (left && right && before.isObject() == after.isObject()) {
        compareParts(place, left, right, found);
    } else if (const std::string is = before.toString(), becomes = after.toString(); is != becomes) {
        found.push_back({place, is, becomes});
    }
}

}  // namespace

std::vector<Difference> differences(const JsonValue& before, const JsonValue& after) {
    std::vector<Difference> found;
    compare("", before, after, found);
    return found;
}

}  // namespace homeloom::tv
