#include "json/JsonWriter.h"

#include <charconv>
#include <cmath>
#include <string_view>
#include <vector>

namespace homeloom::desktop {

namespace {

namespace bj = boost::json;

void writeInteger(std::string& out, long long value) {
    char buffer[24];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

void writeInteger(std::string& out, unsigned long long value) {
    char buffer[24];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

// The shortest text that reads back the same. Between these bounds people write no exponent.
void writeDouble(std::string& out, double value) {
    constexpr double SMALLEST_PLAIN = 1e-6;
    constexpr double FIRST_WITH_EXPONENT = 1e21;
    if (std::isnan(value)) {
        out += "null";  // JSON has no word for it
        return;
    }
    if (std::isinf(value)) {
        out += value < 0 ? "-1e999" : "1e999";  // which reads back as infinite
        return;
    }
    if (value == 0) {
        out += '0';
        return;
    }
    const double size = std::fabs(value);
    const bool plain = size >= SMALLEST_PLAIN && size < FIRST_WITH_EXPONENT;
    char buffer[40];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value,
                                     plain ? std::chars_format::fixed : std::chars_format::scientific)
                           .ptr);
}

void writeEscaped(std::string& out, unsigned char character) {
    static constexpr char HEX[] = "0123456789abcdef";
    switch (character) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            out += "\\u00";
            out += HEX[character >> 4];
            out += HEX[character & 0xF];
    }
}

void writeText(std::string& out, std::string_view text) {
    out += '"';
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto character = static_cast<unsigned char>(text[i]);
        if (character < 0x20 || character == '"' || character == '\\') {
            out.append(text, written, i - written);
            writeEscaped(out, character);
            written = i + 1;
        }
    }
    out.append(text, written);
    out += '"';
}

std::string_view view(bj::string_view text) {
    return {text.data(), text.size()};
}

// An array or object that is being written, and how far.
struct Level {
    const bj::value* container;
    std::size_t next = 0;
};

class Writer {
public:
    std::string write(const bj::value& root) {
        begin(root);
        while (!_levels.empty()) {
            step();
        }
        return std::move(_out);
    }

private:
    void begin(const bj::value& value) {
        switch (value.kind()) {
            case bj::kind::null:
                _out += "null";
                break;
            case bj::kind::bool_:
                _out += value.get_bool() ? "true" : "false";
                break;
            case bj::kind::int64:
                writeInteger(_out, static_cast<long long>(value.get_int64()));
                break;
            case bj::kind::uint64:
                writeInteger(_out, static_cast<unsigned long long>(value.get_uint64()));
                break;
            case bj::kind::double_:
                writeDouble(_out, value.get_double());
                break;
            case bj::kind::string:
                writeText(_out, view(value.get_string()));
                break;
            case bj::kind::array:
                _out += '[';
                _levels.push_back({&value});
                break;
            case bj::kind::object:
                _out += '{';
                _levels.push_back({&value});
                break;
        }
    }

    // Writes the next entry of the innermost container, or ends it.
    void step() {
        Level& level = _levels.back();
        const std::size_t index = level.next++;
        if (const bj::object* object = level.container->if_object()) {
            if (index == object->size()) {
                end('}');
                return;
            }
            const bj::key_value_pair& member = object->begin()[index];
            separate(index);
            writeText(_out, view(member.key()));
            _out += ':';
            begin(member.value());
        } else {
            const bj::array& array = level.container->get_array();
            if (index == array.size()) {
                end(']');
                return;
            }
            separate(index);
            begin(array[index]);
        }
    }

    void separate(std::size_t index) {
        if (index != 0) {
            _out += ',';
        }
    }

    void end(char bracket) {
        _out += bracket;
        _levels.pop_back();
    }

    std::string _out;
    std::vector<Level> _levels;
};

}  // namespace

std::string writeJson(const bj::value& root) {
    return Writer().write(root);
}

}  // namespace homeloom::desktop
