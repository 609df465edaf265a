#include "DocumentReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "simulator/HomeLoader.h"

namespace simulator {

namespace {

std::string placeAt(std::string_view text, std::size_t offset) {
    offset = std::min(offset, text.size());
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < offset; ++i) {
        ++column;
        if (text[i] == '\n') {
            ++line;
            column = 1;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

json::value parseDocument(std::string_view text, const std::string& file) {
    json::stream_parser parser;
    json::error_code error;
    const std::size_t used = parser.write_some({text.data(), text.size()}, error);
    if (!error && used < text.size()) {
        throw HomeError(file, placeAt(text, used), "no JSON: something stands behind the document");
    }
    if (!error) {
        parser.finish(error);
    }
    if (error) {
        throw HomeError(file, placeAt(text, used), "no JSON: " + error.message());
    }
    return parser.release();
}

void removeComments(json::value& value) {
    if (json::object* object = value.if_object()) {
        if (const auto found = object->find(kComment); found != object->end()) {
            object->stable_erase(found);  // keeps the order
        }
        for (auto& member : *object) {
            removeComments(member.value());
        }
    } else if (json::array* array = value.if_array()) {
        for (json::value& element : *array) {
            removeComments(element);
        }
    }
}

/// Names as people write them stand behind a dot; others, URIs for instance, in brackets.
std::string memberPlace(const std::string& place, const std::string& name) {
    const bool isPlain = !name.empty() && std::all_of(name.begin(), name.end(),
                                                      [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
    if (!isPlain) {
        return place + "[\"" + name + "\"]";
    }
    return place.empty() ? name : place + "." + name;
}

}  // namespace

Node Node::operator[](const char* name) const {
    const json::value* member = nullptr;
    if (_value != nullptr) {
        if (!_value->is_object()) {
            expected("an object");
        }
        member = _value->get_object().if_contains(name);
    }
    return {member, _file, memberPlace(_place, name)};
}

bool Node::isNumber() const {
    if (_value == nullptr || !_value->is_number()) {
        return false;
    }
    const double number = _value->to_number<double>();
    return number == std::floor(number) && number >= std::numeric_limits<int>::min() &&
           number <= std::numeric_limits<int>::max();
}

const char* Node::kindName() const {
    if (_value == nullptr) {
        return "nothing";
    }
    switch (_value->kind()) {
        case json::kind::null:
            return "null";
        case json::kind::bool_:
            return "true or false";
        case json::kind::string:
            return "a text";
        case json::kind::array:
            return "an array";
        case json::kind::object:
            return "an object";
        default:
            return "a number";
    }
}

std::vector<std::pair<std::string, Node>> Node::members() const {
    std::vector<std::pair<std::string, Node>> members;
    if (_value == nullptr) {
        return members;
    }
    if (!_value->is_object()) {
        expected("an object");
    }
    for (const auto& member : _value->get_object()) {
        const std::string name(member.key());
        members.emplace_back(name, Node(&member.value(), _file, memberPlace(_place, name)));
    }
    return members;
}

std::vector<Node> Node::elements() const {
    std::vector<Node> elements;
    if (_value == nullptr) {
        return elements;
    }
    if (!_value->is_array()) {
        expected("an array");
    }
    for (const json::value& element : _value->get_array()) {
        elements.emplace_back(&element, _file, _place + "[" + std::to_string(elements.size()) + "]");
    }
    return elements;
}

std::string Node::text() const {
    if (_value == nullptr || !_value->is_string()) {
        expected("a text");
    }
    return std::string(_value->get_string());
}

std::string Node::text(const std::string& otherwise) const {
    return _value == nullptr ? otherwise : text();
}

int Node::number(int otherwise) const {
    if (_value == nullptr) {
        return otherwise;
    }
    if (!isNumber()) {
        expected("a whole number");
    }
    return _value->to_number<int>();
}

bool Node::flag(bool otherwise) const {
    if (_value == nullptr) {
        return otherwise;
    }
    if (!_value->is_bool()) {
        expected("true or false");
    }
    return _value->get_bool();
}

std::vector<std::string> Node::texts() const {
    std::vector<std::string> texts;
    for (const Node& element : elements()) {
        texts.push_back(element.text());
    }
    return texts;
}

std::string Node::document() const {
    if (_value == nullptr) {
        expected("a value");
    }
    return toText(*_value);
}

std::string Node::document(const std::string& otherwise) const {
    return _value == nullptr ? otherwise : document();
}

void Node::fail(const std::string& reason) const {
    throw HomeError(_file, place(), reason);
}

void Node::expected(const char* what) const {
    fail(std::string("expected ") + what + ", found " + kindName());
}

Document::Document(std::string_view text, std::string file)
    : _file(std::move(file)), _value(parseDocument(text, _file)), _root(&_value, _file, "") {
    removeComments(_value);
}

}  // namespace simulator
