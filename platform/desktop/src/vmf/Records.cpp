#include "desktop/Records.h"

namespace homeloom::desktop {

namespace {

template <typename T>
T valueOr(const Value* value, T otherwise) {
    const T* typed = value != nullptr ? std::get_if<T>(value) : nullptr;
    return typed != nullptr ? *typed : otherwise;
}

}  // namespace

Value& Fields::at(std::string_view key) {
    for (Field& field : _fields) {
        if (field.key == key) {
            return field.value;
        }
    }
    return _fields.emplace_back(Field{std::string(key), Value()}).value;
}

const Value* Fields::find(const std::string& key) const {
    for (const Field& field : _fields) {
        if (field.key == key) {
            return &field.value;
        }
    }
    return nullptr;
}

std::string Fields::text(const std::string& key) const {
    return valueOr(find(key), std::string());
}

int Fields::number(const std::string& key) const {
    return valueOr(find(key), 0);
}

bool Fields::flag(const std::string& key) const {
    return valueOr(find(key), false);
}

}  // namespace homeloom::desktop
