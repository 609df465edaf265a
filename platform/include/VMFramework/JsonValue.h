#ifndef HOMELOOM_PLATFORM_VMFRAMEWORK_JSONVALUE_H
#define HOMELOOM_PLATFORM_VMFRAMEWORK_JSONVALUE_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json/fwd.hpp>

namespace VMFramework::json {

class JsonMember;

/// A JSON value: a document, or a part of one.
///
/// A JsonValue shares the document that it is part of, so that taking a member or an element copies
/// nothing, and no value can dangle: the document lives as long as any part of it. Copying a JsonValue is cheap.
/// Writing to a value that others share copies it first, so nobody sees another's change.
///
/// Members keep the order in which they came or were set. Different values may be used on different
/// threads, also when they are parts of one document; one value is used by one thread at a time.
///
/// Conversions:
///
///              null    bool            number                   text                 array, object
///   asString   ""      "true"/"false"  as people write it       the text             throws
///   asInt      0       0, 1            cut to whole; throws     throws               throws
///                                      outside int
///   asDouble   0.0     0.0, 1.0        the number               throws               throws
///   asBool     false   the bool        not 0                    throws               throws
///
/// What throws, throws std::runtime_error and leaves the value as it was.
class JsonValue {
public:
    /// Null.
    JsonValue() noexcept;
    JsonValue(bool value);
    JsonValue(int value);
    JsonValue(long long value);
    JsonValue(double value);
    JsonValue(const char* value);  // null pointer gives ""
    JsonValue(const std::string& value);
    JsonValue(std::string_view value);

    JsonValue(const JsonValue& other) noexcept;
    JsonValue(JsonValue&& other) noexcept;
    JsonValue& operator=(const JsonValue& other) noexcept;
    JsonValue& operator=(JsonValue&& other) noexcept;
    ~JsonValue();

    /// Parses a document. Never throws: a malformed text, one nested deeper than 64 levels, or one with bytes after
    /// its value gives null. An exhausted memory gives null as well.
    static JsonValue Create(std::string_view text) noexcept;
    /// An empty object or array to build on. (Setting a member or appending to null makes one as well.)
    static JsonValue CreateObject();
    static JsonValue CreateArray();

    bool isNull() const noexcept;
    bool isBool() const noexcept;
    bool isNumber() const noexcept;
    bool isString() const noexcept;
    bool isArray() const noexcept;
    bool isObject() const noexcept;

    /// Number of elements or members; 0 for everything that is neither array nor object.
    std::size_t size() const noexcept;

    /// The member of that name, or null when there is none, or when this is no object. Never adds one.
    JsonValue operator[](std::string_view name) const noexcept;
    JsonValue operator[](const char* name) const noexcept;
    JsonValue operator[](const std::string& name) const noexcept;
    /// The same for reading; assigning to the result sets the member: `object["name"] = value`.
    JsonMember operator[](std::string_view name) noexcept;
    JsonMember operator[](const char* name) noexcept;
    JsonMember operator[](const std::string& name) noexcept;
    /// The element at that index, or null when there is none, or when this is no array.
    JsonValue operator[](std::size_t index) const noexcept;
    JsonValue operator[](int index) const noexcept;
    JsonValue operator[](std::size_t index) noexcept;
    JsonValue operator[](int index) noexcept;  // or a literal 0 could be taken for a name

    /// Whether there is a member of that name. Throws unless this is an object.
    bool isMember(std::string_view name) const;
    /// The names in document order. Throws unless this is an object.
    std::vector<std::string> getMemberNames() const;

    std::string asString() const;
    int asInt() const;
    double asDouble() const;
    bool asBool() const;

    /// Sets a member, replacing one of that name in its place. Null becomes an object; anything else but
    /// an object throws.
    void set(std::string_view name, JsonValue value);
    /// Adds an element at the end. Null becomes an array; anything else but an array throws.
    JsonValue& append(JsonValue value);

    /// Compact text; numbers print as the shortest text that reads back the same, without an exponent
    /// where people would write none (24.5). Null gives "null".
    std::string toString() const;

private:
    explicit JsonValue(std::shared_ptr<boost::json::value> node) noexcept;
    boost::json::value& makeWritable();

    // Null values hold no node. A part of a document aliases the document's ownership.
    std::shared_ptr<boost::json::value> _node;
};

/// What indexing a value that is not const gives: the member's value, which can also be assigned to.
/// The assignment works only on the expression itself (`object["name"] = value`), so a JsonMember that
/// was kept under a name is an ordinary value.
class JsonMember : public JsonValue {
public:
    JsonMember(const JsonMember&) = default;
    JsonMember& operator=(const JsonMember&) & = delete;

    void operator=(JsonValue value) &&;
    void operator=(const JsonMember& value) &&;

    /// Reading only: a value set two levels down would be lost in a copy.
    JsonValue operator[](std::string_view name) const noexcept;
    JsonValue operator[](const char* name) const noexcept;
    JsonValue operator[](const std::string& name) const noexcept;
    JsonValue operator[](std::size_t index) const noexcept;
    JsonValue operator[](int index) const noexcept;

private:
    friend class JsonValue;
    JsonMember(JsonValue value, JsonValue& parent, std::string_view name) noexcept;

    JsonValue* _parent;
    std::string_view _name;
};

}  // namespace VMFramework::json

#endif
