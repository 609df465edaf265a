#include "HomeDifference.h"

#include <algorithm>

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>

namespace homeloom::sweep {

namespace {

using VMFramework::json::JsonValue;

constexpr std::size_t kMost = 20;
constexpr std::size_t kLongestText = 120;

std::string shortened(const JsonValue& value) {
    std::string text = value.isNull() ? "nothing" : value.toString();
    if (text.size() > kLongestText) {
        text = text.substr(0, kLongestText) + "...";
    }
    return text;
}

class Comparison {
public:
    void compare(const std::string& path, const JsonValue& actual, const JsonValue& expected) {
        if (found.size() >= kMost || actual.toString() == expected.toString()) {
            return;
        }
        if (actual.isObject() && expected.isObject()) {
            compareMembers(path, actual, expected);
        } else if (actual.isArray() && expected.isArray()) {
            compareElements(path, actual, expected);
        } else {
            found.push_back(fmt::format("{}: {}, not {}", path, shortened(actual), shortened(expected)));
        }
    }

    std::vector<std::string> found;

private:
    void compareMembers(const std::string& path, const JsonValue& actual, const JsonValue& expected) {
        std::vector<std::string> names = actual.getMemberNames();
        for (const std::string& name : expected.getMemberNames()) {
            if (!actual.isMember(name)) {
                names.push_back(name);
            }
        }
        for (const std::string& name : names) {
            compare(path.empty() ? name : path + " " + name, actual[name], expected[name]);
        }
    }

    // Things are known by their id wherever they stand.
    void compareElements(const std::string& path, const JsonValue& actual, const JsonValue& expected) {
        const std::vector<std::string> ids = idsOf(actual);
        const std::vector<std::string> expectedIds = idsOf(expected);
        for (const std::string& id : ids) {
            compare(path + " " + id, elementOf(actual, id), elementOf(expected, id));
        }
        for (const std::string& id : expectedIds) {
            if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
                found.push_back(fmt::format("{} {} is missing", path, id));
            }
        }
        const bool areSame = std::is_permutation(ids.begin(), ids.end(), expectedIds.begin(), expectedIds.end());
        if (areSame && ids != expectedIds) {
            found.push_back(path + " stand in another order");
        }
    }

    static std::vector<std::string> idsOf(const JsonValue& list) {
        std::vector<std::string> ids;
        for (std::size_t i = 0; i < list.size(); ++i) {
            ids.push_back(list[i]["id"].asString());
        }
        return ids;
    }

    static JsonValue elementOf(const JsonValue& list, const std::string& id) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (list[i]["id"].asString() == id) {
                return list[i];
            }
        }
        return {};
    }
};

}  // namespace

std::vector<std::string> differences(const std::string& actual, const std::string& expected) {
    if (actual == expected) {
        return {};
    }
    Comparison comparison;
    comparison.compare("", JsonValue::Create(actual)["home"], JsonValue::Create(expected)["home"]);
    if (comparison.found.empty()) {
        comparison.found.push_back("the texts differ");
    }
    return comparison.found;
}

}  // namespace homeloom::sweep
