#include "Json.h"

#include <charconv>
#include <cmath>

namespace simulator {

namespace {

void append(std::string& out, const json::value& value);

void appendNumber(std::string& out, double number) {
    char buffer[64];
    const double size = std::abs(number);
    const auto format =
        number == 0 || (size >= 1e-6 && size < 1e16) ? std::chars_format::fixed : std::chars_format::general;
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, format);
    out.append(buffer, end.ptr);
}

void appendObject(std::string& out, const json::object& object) {
    out += '{';
    bool first = true;
    for (const auto& member : object) {
        if (!first) {
            out += ',';
        }
        first = false;
        out += quoted({member.key().data(), member.key().size()});
        out += ':';
        append(out, member.value());
    }
    out += '}';
}

void appendArray(std::string& out, const json::array& array) {
    out += '[';
    bool first = true;
    for (const json::value& element : array) {
        if (!first) {
            out += ',';
        }
        first = false;
        append(out, element);
    }
    out += ']';
}

void append(std::string& out, const json::value& value) {
    switch (value.kind()) {
        case json::kind::object:
            appendObject(out, value.get_object());
            break;
        case json::kind::array:
            appendArray(out, value.get_array());
            break;
        case json::kind::double_:
            appendNumber(out, value.get_double());
            break;
        default:
            out += json::serialize(value);
    }
}

}  // namespace

std::string toText(const json::value& value) {
    std::string out;
    append(out, value);
    return out;
}

std::string quoted(std::string_view text) {
    return json::serialize(json::string_view(text.data(), text.size()));
}

json::value parsed(std::string_view text) {
    json::error_code error;
    json::value value = json::parse({text.data(), text.size()}, error);
    return error ? json::value() : value;
}

std::string plain(const std::string& jsonText) {
    const json::value value = parsed(jsonText);
    return value.is_string() ? std::string(value.get_string()) : jsonText;
}

std::string textMember(const json::value& value, std::string_view name) {
    const json::object* object = value.if_object();
    const json::value* member = object == nullptr ? nullptr : object->if_contains({name.data(), name.size()});
    return member != nullptr && member->is_string() ? std::string(member->get_string()) : std::string();
}

const json::value* memberOf(const json::value* value, std::string_view name) {
    const json::object* object = value == nullptr ? nullptr : value->if_object();
    return object == nullptr ? nullptr : object->if_contains(name);
}

}  // namespace simulator
