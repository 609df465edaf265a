#include "desktop/Records.h"

namespace homeloom::desktop {

namespace {

template <typename T>
T valueOr(const Value* value, T otherwise) {
    const T* typed = value != nullptr ? std::get_if<T>(value) : nullptr;
    return typed != nullptr ? *typed : otherwise;
}

}  // namespace

void Fields::set(std::string_view key, Value value) {
    for (Field& field : _fields) {
        if (field.key == key) {
            field.value = std::move(value);
            return;
        }
    }
    add(std::string(key), std::move(value));
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
