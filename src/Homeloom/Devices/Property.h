#ifndef HOMELOOM_HOMELOOM_DEVICES_PROPERTY_H
#define HOMELOOM_HOMELOOM_DEVICES_PROPERTY_H

#include <string>

#include "Common/DeviceInfoStructs.h"
#include "Common/SharedText.h"

namespace VMFramework::HomeLoom {

enum PropertyType : int {
    PROPERTY_TYPE_BOOLEAN = 0,
    PROPERTY_TYPE_INTEGER = 1,
    PROPERTY_TYPE_STRING = 2,
    PROPERTY_TYPE_OBJECT = 3,
    PROPERTY_TYPE_FLOAT = 4,
    PROPERTY_TYPE_DOUBLE = 5,
    PROPERTY_TYPE_DOUBLE_ARRAY = 6,
    PROPERTY_TYPE_BOOLEAN_ARRAY = 7,
    PROPERTY_TYPE_INTEGER_ARRAY = 8,
    PROPERTY_TYPE_STRING_ARRAY = 9,
    PROPERTY_TYPE_OBJECT_ARRAY = 10,
    PROPERTY_TYPE_FLOAT_ARRAY = 11,
    PROPERTY_TYPE_ARRAY = 12
};

/// One named value of a resource. The value is text whatever its type; the type only decides how a value is
/// written back to the agent. Not locked: see Device.
class Property {
public:
    Property() = default;
    explicit Property(const std::string& name);
    Property(const std::string& name, PropertyType type);
    virtual ~Property() = default;

    /// The type of that name in the cloud's schema; every other name is a string.
    static PropertyType StringToPropertyType(const std::string& typeName);

    bool IsValidObject() const { return !GetName().empty(); }
    const std::string& GetName() const { return _name.get(); }
    void SetName(const std::string& name) { _name = name; }
    const std::string& GetValue() const { return _value; }
    void SetValue(const std::string& value) { _value = value; }
    /// The type's number as decimal text.
    std::string GetType() const;
    void SetType(int type) { _type = type; }
    void ResetValue() { _value.clear(); }

    /// Takes over what the record brings; its empty texts leave the old ones.
    void BuildDetailInfo(const device_property_info_struct& info);
    /// Replaces the value by one that isn't empty, if the name is this property's own.
    void ApplyChanges(const std::string& name, const std::string& value);
    /// Writes the JSON text that sets this property to 'value' (not to the stored value).
    void GetRcpString(std::string& rcpString, const std::string& value) const;

private:
    SharedText _name;
    int _type = PROPERTY_TYPE_STRING;
    std::string _value;
};

}  // namespace VMFramework::HomeLoom

#endif
