#ifndef HOMELOOM_DESKTOP_RECORDS_H
#define HOMELOOM_DESKTOP_RECORDS_H

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace homeloom::desktop {

/// A value of the framework: a text, a whole number or a yes or no.
using Value = std::variant<std::string, int, bool>;

/// Keys with their values, in the order in which they were given.
class Fields {
public:
    struct Field {
        std::string key;
        Value value;
        bool operator==(const Field& other) const { return key == other.key && value == other.value; }
    };

    Fields() = default;
    Fields(std::initializer_list<Field> fields) : _fields(fields) {}

    void add(std::string key, Value value) { _fields.push_back({std::move(key), std::move(value)}); }
    /// The first value of that key, which is made if there is none.
    Value& at(std::string_view key);
    void set(std::string_view key, Value value) { at(key) = std::move(value); }
    void reserve(std::size_t count) { _fields.reserve(count); }

    /// The first value of that key, or null.
    const Value* find(const std::string& key) const;
    bool has(const std::string& key) const { return find(key) != nullptr; }
    /// An absent key, as well as one of another type, gives the empty value.
    std::string text(const std::string& key) const;
    int number(const std::string& key) const;
    bool flag(const std::string& key) const;

    std::size_t size() const { return _fields.size(); }
    bool empty() const { return _fields.empty(); }
    auto begin() const { return _fields.begin(); }
    auto end() const { return _fields.end(); }
    const Field& operator[](std::size_t index) const { return _fields[index]; }
    bool operator==(const Fields& other) const { return _fields == other._fields; }

private:
    std::vector<Field> _fields;
};

/// An endpoint. A field that was never set is absent.
struct EndpointRecord {
    std::optional<std::string> serviceName;
    std::optional<std::string> interfaceType;
    std::optional<std::string> deviceId;
    std::optional<std::string> deviceName;
    std::optional<std::string> deviceType;
    std::optional<std::string> subDeviceType;
    Fields extraData;
};

}  // namespace homeloom::desktop

#endif
