// homes/README.md names the members that a home document has, and marks those that must be there.

#include <functional>
#include <set>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <gmock/gmock.h>
#include <simulator/HomeSchema.h>

#include "Page.h"

namespace {

using VMFramework::json::JsonValue;

/// The schema of the object that stands at the place, or of each one in a list.
JsonValue objectOf(const JsonValue& schema) {
    const JsonValue items = schema["items"];
    return items.isObject() ? items : schema;
}

std::set<std::string> namesOf(const JsonValue& object) {
    const JsonValue properties = object["properties"];
    std::set<std::string> names;
    if (properties.isObject()) {
        const auto all = properties.getMemberNames();
        names.insert(all.begin(), all.end());
        names.erase("_comment");
    }
    return names;
}

/// What must be there, also within the object's own members.
void addRequired(const JsonValue& object, std::set<std::string>& names) {
    const JsonValue required = object["required"];
    for (std::size_t i = 0; i < required.size(); ++i) {
        names.insert(required[i].asString());
    }
    for (const auto& name : namesOf(object)) {
        addRequired(objectOf(object["properties"][name]), names);
    }
}

}  // namespace

TEST(HomesPage, NamesEveryMemberAndMarksThoseThatMustBeThere) {
    const JsonValue home = JsonValue::Create(simulator::homeSchema());
    std::set<std::string> documented{"$schema"};
    for (const auto& member : documentedMembers()) {
        documented.insert(member.names.begin(), member.names.end());
        if (member.names.size() > 1 || member.names[0] == "models") {
            continue;  // as the cloud has it, or in a chapter of its own
        }
        const JsonValue object = objectOf(home["properties"][member.names[0]]);
        for (const auto& name : namesOf(object)) {
            EXPECT_THAT(member.parts, testing::Contains(name)) << member.names[0];
        }
        std::set<std::string> required;
        addRequired(object, required);
        if (member.names[0] == "account") {
            required.insert("account");
        }
        EXPECT_EQ(std::set<std::string>(member.required.begin(), member.required.end()), required) << member.names[0];
    }
    EXPECT_EQ(documented, namesOf(home));
}
