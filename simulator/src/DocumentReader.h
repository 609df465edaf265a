#ifndef HOMELOOM_SIMULATOR_DOCUMENTREADER_H
#define HOMELOOM_SIMULATOR_DOCUMENTREADER_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Json.h"

namespace simulator {

/// Members of this name say what people like; they are nowhere to be seen.
inline constexpr char kComment[] = "_comment";

/// A place in a document that people write, read with what is expected there; anything else throws a HomeError that
/// names file and place. A member that isn't there is missing: a place as well, so that it can be named.
class Node {
public:
    Node(const json::value* value, const std::string& file, std::string place)
        : _value(value), _file(file), _place(std::move(place)) {}

    const std::string& file() const { return _file; }
    /// "document" for the whole.
    std::string place() const { return _place.empty() ? "document" : _place; }
    bool isMissing() const { return _value == nullptr; }
    bool isNull() const { return _value != nullptr && _value->is_null(); }
    bool isText() const { return _value != nullptr && _value->is_string(); }
    bool isObject() const { return _value != nullptr && _value->is_object(); }
    /// Whether it's a whole number that an int can hold.
    bool isNumber() const;
    const json::value& value() const { return *_value; }
    /// "a text", "nothing", ...
    const char* kindName() const;

    /// A member of an object, or of what is missing.
    Node operator[](const char* name) const;
    /// The members of an object; none of what is missing.
    std::vector<std::pair<std::string, Node>> members() const;
    /// The elements of an array; none of what is missing.
    std::vector<Node> elements() const;

    std::string text() const;
    std::string text(const std::string& otherwise) const;
    int number(int otherwise) const;
    bool flag(bool otherwise) const;
    std::vector<std::string> texts() const;
    /// Any value, as JSON text.
    std::string document() const;
    std::string document(const std::string& otherwise) const;

    /// The number that belongs to one of these words.
    template <std::size_t Count>
    int oneOf(const std::pair<const char*, int> (&words)[Count]) const {
        std::string expected;
        const std::string word = text();
        for (const auto& [name, number] : words) {
            if (word == name) {
                return number;
            }
            expected += (expected.empty() ? "" : ", ") + std::string(name);
        }
        fail("expected one of " + expected + ", found \"" + word + "\"");
    }

    [[noreturn]] void fail(const std::string& reason) const;

private:
    [[noreturn]] void expected(const char* what) const;

    const json::value* _value;
    const std::string& _file;
    std::string _place;
};

/// A document, parsed; its nodes must not outlive it.
class Document {
public:
    /// Throws a HomeError with line and column for what is no JSON.
    Document(std::string_view text, std::string file);

    const Node& root() const { return _root; }

    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

private:
    std::string _file;
    json::value _value;
    Node _root;
};

}  // namespace simulator

#endif
