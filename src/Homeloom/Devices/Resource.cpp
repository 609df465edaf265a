// Merges an update into a resource's values and tells what changed.
#include "Homeloom/Devices/Resource.h"

#include "Common/DeviceInfoStructs.h"
#include "Common/HLLog.h"
#include "Homeloom/Devices/Property.h"

namespace VMFramework::HomeLoom {

Resource::Resource(const std::string& uri) : _uri(uri) {}

void Resource::AddProperty(const std::shared_ptr<Property>& property) {
    if (property) {
        _properties.emplace(property->GetName(), property);
    }
}

std::shared_ptr<Property> Resource::FindProperty(const std::string& name, bool createNamed) const {
    const auto found = _properties.find(name);
    if (found != _properties.end()) {
        return found->second;
    }
    return createNamed ? std::make_shared<Property>(name) : std::make_shared<Property>();
}

const Property* Resource::LookUp(const std::string& name) const {
    const auto found = _properties.find(name);
    return found != _properties.end() ? found->second.get() : nullptr;
}

void Resource::DeleteProperty(const std::string& name) {
    _properties.erase(name);
}

void Resource::DeleteProperties() {
    _properties.clear();
}

void Resource::BuildDetailInfo(const device_resource_info_struct& info) {
    if (!info.uri.empty() && info.uri != _uri) {
        _uri = info.uri;
    }
    for (const auto& [name, property] : _properties) {
        property->ResetValue();
    }
    for (const auto& propertyInfo : info.properties) {
        auto& property = _properties[propertyInfo.property_name];
        if (!property || !property->IsValidObject()) {
            property = std::make_shared<Property>(propertyInfo.property_name);
        }
        property->BuildDetailInfo(propertyInfo);
    }
}

void Resource::ApplyChanges(const Resource* other) {
    if (other == nullptr) {
        return;
    }
    if (other->_uri != _uri) {
        HL_LOGE("different resource: _URI: %s   New URI: %s ", _uri.c_str(), other->_uri.c_str());
        return;
    }
    for (const auto& [name, property] : other->_properties) {
        const auto found = _properties.find(name);
        if (found == _properties.end() || !found->second->IsValidObject()) {
            AddProperty(property);
        } else {
            found->second->ApplyChanges(property->GetName(), property->GetValue());
        }
    }
}

void Resource::GetRcpString(std::string& rcpString, const std::string& propertyName, const std::string& value) const {
    const auto found = _properties.find(propertyName);
    if (found != _properties.end() && found->second->IsValidObject()) {
        found->second->GetRcpString(rcpString, value);
        return;
    }
    // A property that was never received has no type yet. Waking an inactive TV writes one of these.
    Property(propertyName).GetRcpString(rcpString, value);
}

}  // namespace VMFramework::HomeLoom
