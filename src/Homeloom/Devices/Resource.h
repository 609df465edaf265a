#ifndef HOMELOOM_HOMELOOM_DEVICES_RESOURCE_H
#define HOMELOOM_HOMELOOM_DEVICES_RESOURCE_H

#include <memory>
#include <string>
#include <vector>

#include "Common/SharedText.h"

namespace VMFramework::HomeLoom {

class Property;
struct device_resource_info_struct;

/// The last known values of one resource of a device, by property name. Not locked: see Device.
class Resource {
public:
    Resource() = default;
    explicit Resource(const std::string& uri);
    virtual ~Resource() = default;

    bool IsValidObject() const { return !GetURI().empty(); }
    const std::string& GetURI() const { return _uri.get(); }
    void SetURI(const std::string& uri) { _uri = uri; }

    /// Adds the property unless one of that name is held.
    void AddProperty(const std::shared_ptr<Property>& property);
    /// The property of that name. A miss gives a new one that the resource doesn't hold: named like it if
    /// 'createNamed', an invalid one if not.
    std::shared_ptr<Property> FindProperty(const std::string& name, bool createNamed) const;
    /// The same without a share in it; null on a miss.
    const Property* LookUp(const std::string& name) const;
    void DeleteProperty(const std::string& name);
    void DeleteProperties();

    /// Takes over an update. It is a full picture of the resource: what it doesn't mention becomes empty.
    void BuildDetailInfo(const device_resource_info_struct& info);
    /// Merges the properties of a resource of the same URI.
    void ApplyChanges(const Resource* other);
    /// Writes the JSON text that sets the property to 'value'.
    void GetRcpString(std::string& rcpString, const std::string& propertyName, const std::string& value) const;

private:
    using Properties = std::vector<std::shared_ptr<Property>>;
    Properties::const_iterator find(const std::string& name) const;

    SharedText _uri;
    Properties _properties;  // few, so that they are looked through
};

}  // namespace VMFramework::HomeLoom

#endif
