// Maps the cloud's type names to types, and writes a value back as the type wants it.
#include "Homeloom/Devices/Property.h"

#include <string_view>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

// The position in the table is the type's number.
constexpr std::string_view kTypeNames[] = {"Boolean",     "Integer",     "String",       "Object",       "Float",
                                           "Double",      "DoubleArray", "BooleanArray", "IntegerArray", "StringArray",
                                           "ObjectArray", "FloatArray",  "Array"};

}  // namespace

Property::Property(const std::string& name) : _name(name) {}

Property::Property(const std::string& name, PropertyType type) : _name(name), _type(type) {}

PropertyType Property::StringToPropertyType(const std::string& typeName) {
    int type = 0;
    for (const std::string_view known : kTypeNames) {
        if (typeName == known) {
            return static_cast<PropertyType>(type);
        }
        ++type;
    }
    return PROPERTY_TYPE_STRING;
}

std::string Property::GetType() const {
    return std::to_string(_type);
}

void Property::BuildDetailInfo(const device_property_info_struct& info) {
    if (!info.property_name.empty()) {
        _name = info.property_name;
    }
    if (!info.property_type.empty()) {
        _type = StringToPropertyType(info.property_type);
    }
    if (!info.property_value.empty()) {
        _value = info.property_value;
    }
}

void Property::ApplyChanges(const std::string& name, const std::string& value) {
    if (name != GetName()) {
        HL_LOGE("different property: Curent: %s   New: %s ", GetName().c_str(), name.c_str());
        return;
    }
    if (!value.empty()) {
        _value = value;
    }
}

void Property::GetRcpString(std::string& rcpString, const std::string& value) const {
    // Nothing is escaped: metadata and agent agree on values that need none, and those of arrays and objects come as
    // JSON text already.
    if (_type == PROPERTY_TYPE_STRING) {
        rcpString = "{\"" + GetName() + "\":\"" + value + "\"}";
    } else if (_type >= PROPERTY_TYPE_BOOLEAN && _type <= PROPERTY_TYPE_ARRAY) {
        rcpString = "{\"" + GetName() + "\":" + value + "}";
    }
}

}  // namespace VMFramework::HomeLoom
