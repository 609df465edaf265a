#include <atomic>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include <VMFramework/JsonValue.h>
#include <boost/json/value.hpp>

#include "json/JsonParser.h"
#include "json/JsonWriter.h"

namespace VMFramework::json {

namespace {

namespace bj = boost::json;
using Node = std::shared_ptr<bj::value>;

template <typename T>
Node makeNode(T&& content) {
    return std::make_shared<bj::value>(std::forward<T>(content));
}

bj::string_view view(std::string_view text) {
    return {text.data(), text.size()};
}

// Whether nobody else can see the document that the node is part of.
bool isAlone(const Node& node) {
    if (node.use_count() != 1) {
        return false;
    }
    // What others read before they let go happened before what is written next.
#ifdef __SANITIZE_THREAD__
    Node(node).reset();  // the sanitizer follows the counter, but knows no fences
#else
    std::atomic_thread_fence(std::memory_order_acquire);
#endif
    return true;
}

// Parsed documents live in memory that only grows, so they are never written to; a copy is.
bool isWritable(const Node& node) {
    return node->storage().get() == bj::storage_ptr().get() && isAlone(node);
}

// The content of a value that is given away: moved if nobody else sees it.
bj::value take(Node node) {
    if (!node) {
        return nullptr;
    }
    return isWritable(node) ? bj::value(std::move(*node)) : bj::value(*node);
}

[[noreturn]] void refuse(const bj::value* node, const char* wanted) {
    const bj::string_view kind = bj::to_string(node ? node->kind() : bj::kind::null);
    throw std::runtime_error("JSON: " + std::string(kind.data(), kind.size()) + " is no " + wanted);
}

// Where a container's part is null, there is no node.
Node part(const Node& owner, bj::value* value) noexcept {
    return value && !value->is_null() ? Node(owner, value) : Node();
}

}  // namespace

JsonValue::JsonValue() noexcept = default;
JsonValue::JsonValue(bool value) : _node(makeNode(value)) {}
JsonValue::JsonValue(int value) : _node(makeNode(value)) {}
JsonValue::JsonValue(long long value) : _node(makeNode(value)) {}
JsonValue::JsonValue(double value) : _node(makeNode(value)) {}
JsonValue::JsonValue(const char* value) : JsonValue(std::string_view(value ? value : "")) {}
JsonValue::JsonValue(const std::string& value) : JsonValue(std::string_view(value)) {}
JsonValue::JsonValue(std::string_view value) : _node(makeNode(view(value))) {}
JsonValue::JsonValue(Node node) noexcept : _node(std::move(node)) {}

JsonValue::JsonValue(const JsonValue& other) noexcept = default;
JsonValue::JsonValue(JsonValue&& other) noexcept = default;
JsonValue& JsonValue::operator=(const JsonValue& other) noexcept = default;
JsonValue& JsonValue::operator=(JsonValue&& other) noexcept = default;
JsonValue::~JsonValue() = default;

JsonValue JsonValue::Create(std::string_view text) noexcept {
    try {
        Node root = homeloom::desktop::parseJson(text);
        return JsonValue(part(root, root.get()));
    } catch (const std::exception&) {
        return {};  // no memory, or a text beyond what the library can hold
    }
}

JsonValue JsonValue::CreateObject() {
    return JsonValue(makeNode(bj::object_kind));
}
JsonValue JsonValue::CreateArray() {
    return JsonValue(makeNode(bj::array_kind));
}

bool JsonValue::isNull() const noexcept {
    return !_node;
}
bool JsonValue::isBool() const noexcept {
    return _node && _node->is_bool();
}
bool JsonValue::isNumber() const noexcept {
    return _node && _node->is_number();
}
bool JsonValue::isString() const noexcept {
    return _node && _node->is_string();
}
bool JsonValue::isArray() const noexcept {
    return _node && _node->is_array();
}
bool JsonValue::isObject() const noexcept {
    return _node && _node->is_object();
}

std::size_t JsonValue::size() const noexcept {
    if (isObject()) {
        return _node->get_object().size();
    }
    return isArray() ? _node->get_array().size() : 0;
}

JsonValue JsonValue::operator[](std::string_view name) const noexcept {
    return JsonValue(isObject() ? part(_node, _node->get_object().if_contains(view(name))) : nullptr);
}
JsonValue JsonValue::operator[](const char* name) const noexcept {
    return (*this)[std::string_view(name)];
}
JsonValue JsonValue::operator[](const std::string& name) const noexcept {
    return (*this)[std::string_view(name)];
}

JsonMember JsonValue::operator[](std::string_view name) noexcept {
    return {std::as_const(*this)[name], *this, name};
}
JsonMember JsonValue::operator[](const char* name) noexcept {
    return (*this)[std::string_view(name)];
}
JsonMember JsonValue::operator[](const std::string& name) noexcept {
    return (*this)[std::string_view(name)];
}

JsonValue JsonValue::operator[](std::size_t index) const noexcept {
    return JsonValue(isArray() ? part(_node, _node->get_array().if_contains(index)) : nullptr);
}
JsonValue JsonValue::operator[](int index) const noexcept {
    return index < 0 ? JsonValue() : (*this)[static_cast<std::size_t>(index)];
}

JsonValue JsonValue::operator[](std::size_t index) noexcept {
    return std::as_const(*this)[index];
}
JsonValue JsonValue::operator[](int index) noexcept {
    return std::as_const(*this)[index];
}

bool JsonValue::isMember(std::string_view name) const {
    if (!isObject()) {
        refuse(_node.get(), "object");
    }
    return _node->get_object().contains(view(name));
}

std::vector<std::string> JsonValue::getMemberNames() const {
    if (!isObject()) {
        refuse(_node.get(), "object");
    }
    std::vector<std::string> names;
    names.reserve(size());
    for (const bj::key_value_pair& member : std::as_const(*_node).get_object()) {
        names.emplace_back(member.key().data(), member.key().size());
    }
    return names;
}

std::string JsonValue::asString() const {
    if (!_node) {
        return {};
    }
    if (const bj::string* text = _node->if_string()) {
        return {text->data(), text->size()};
    }
    if (_node->is_structured()) {
        refuse(_node.get(), "text");
    }
    return homeloom::desktop::writeJson(*_node);
}

int JsonValue::asInt() const {
    constexpr double MIN = std::numeric_limits<int>::min();
    constexpr double MAX = std::numeric_limits<int>::max();
    const double value = std::trunc(asDouble());
    if (!(value >= MIN && value <= MAX)) {
        throw std::runtime_error("JSON: number outside int");
    }
    return static_cast<int>(value);
}

double JsonValue::asDouble() const {
    if (!_node) {
        return 0;
    }
    switch (_node->kind()) {
        case bj::kind::bool_:
            return _node->get_bool() ? 1 : 0;
        case bj::kind::int64:
            return static_cast<double>(_node->get_int64());
        case bj::kind::uint64:
            return static_cast<double>(_node->get_uint64());
        case bj::kind::double_:
            return _node->get_double();
        default:
            refuse(_node.get(), "number");
    }
}

bool JsonValue::asBool() const {
    return asDouble() != 0;
}

bj::value& JsonValue::makeWritable() {
    if (!_node) {
        _node = makeNode(nullptr);
    } else if (!isWritable(_node)) {
        _node = makeNode(std::as_const(*_node));
    }
    return *_node;
}

void JsonValue::set(std::string_view name, JsonValue value) {
    if (_node && !isObject()) {
        refuse(_node.get(), "object");
    }
    bj::value& node = makeWritable();
    bj::object& object = node.is_null() ? node.emplace_object() : node.get_object();
    object.insert_or_assign(view(name), take(std::move(value._node)));
}

JsonValue& JsonValue::append(JsonValue value) {
    if (_node && !isArray()) {
        refuse(_node.get(), "array");
    }
    bj::value& node = makeWritable();
    bj::array& array = node.is_null() ? node.emplace_array() : node.get_array();
    array.push_back(take(std::move(value._node)));
    return *this;
}

std::string JsonValue::toString() const {
    return _node ? homeloom::desktop::writeJson(*_node) : "null";
}

JsonMember::JsonMember(JsonValue value, JsonValue& parent, std::string_view name) noexcept
    : JsonValue(std::move(value)), _parent(&parent), _name(name) {}

void JsonMember::operator=(JsonValue value) && {
    // Lets go of the old member first, or the parent would look shared and be copied.
    static_cast<JsonValue&>(*this) = JsonValue();
    _parent->set(_name, std::move(value));
}

void JsonMember::operator=(const JsonMember& value) && {
    std::move(*this) = static_cast<const JsonValue&>(value);
}

JsonValue JsonMember::operator[](std::string_view name) const noexcept {
    return static_cast<const JsonValue&>(*this)[name];
}
JsonValue JsonMember::operator[](const char* name) const noexcept {
    return static_cast<const JsonValue&>(*this)[name];
}
JsonValue JsonMember::operator[](const std::string& name) const noexcept {
    return static_cast<const JsonValue&>(*this)[name];
}
JsonValue JsonMember::operator[](std::size_t index) const noexcept {
    return static_cast<const JsonValue&>(*this)[index];
}
JsonValue JsonMember::operator[](int index) const noexcept {
    return static_cast<const JsonValue&>(*this)[index];
}

}  // namespace VMFramework::json
