// The JSON class itself: any text parses to a value or to null, and what it prints reads back the same.

#include <stdexcept>

#include <VMFramework/JsonValue.h>

#include "support/Input.h"

using VMFramework::json::JsonValue;

namespace {

template <typename Function>
void orThrow(Function function) {
    try {
        function();
    } catch (const std::runtime_error&) {
        // As told in its header.
    }
}

void walk(const JsonValue& value) {
    orThrow([&] { value.asString(); });
    orThrow([&] { value.asInt(); });
    orThrow([&] { value.asDouble(); });
    orThrow([&] { value.asBool(); });
    if (value.isObject()) {
        for (const auto& name : value.getMemberNames()) {
            fuzz::require(value.isMember(name), "a name that is told names a member");
            walk(value[name]);
        }
    }
    for (std::size_t i = 0; value.isArray() && i < value.size(); ++i) {
        walk(value[i]);
    }
    fuzz::require(value["no such member"].isNull() || value.isObject(), "no member of what has none");
    fuzz::require(value[value.size()].isNull(), "nothing behind the end");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const JsonValue value = JsonValue::Create(fuzz::text(data, size));
    walk(value);
    const std::string printed = value.toString();
    fuzz::require(JsonValue::Create(printed).toString() == printed, "what is printed reads back the same");
    return 0;
}
