// Merges an update into a resource's values and tells what changed.
#include "Homeloom/Devices/Resource.h"

#include <algorithm>

#include "Common/DeviceInfoStructs.h"
#include "Common/HLLog.h"
#include "Homeloom/Devices/Property.h"

namespace VMFramework::HomeLoom {

Resource::Resource(const std::string& uri) : _uri(uri) {}

Resource::Properties::const_iterator Resource::find(const std::string& name) const {
    return std::find_if(_properties.begin(), _properties.end(),
                        [&](const auto& property) { return property->GetName() == name; });
}

void Resource::AddProperty(const std::shared_ptr<Property>& property) {
    if (property && LookUp(property->GetName()) == nullptr) {
        _properties.push_back(property);
    }
}

std::shared_ptr<Property> Resource::FindProperty(const std::string& name, bool createNamed) const {
    const auto found = find(name);
    if (found != _properties.end()) {
        return *found;
    }
    return createNamed ? std::make_shared<Property>(name) : std::make_shared<Property>();
}

const Property* Resource::LookUp(const std::string& name) const {
    const auto found = find(name);
    return found != _properties.end() ? found->get() : nullptr;
}

void Resource::DeleteProperty(const std::string& name) {
    const auto found = find(name);
    if (found != _properties.end()) {
        _properties.erase(found);
    }
}

void Resource::DeleteProperties() {
    _properties.clear();
}

void Resource::BuildDetailInfo(const device_resource_info_struct& info) {
    if (!info.uri.empty()) {
        _uri = info.uri;
    }
    for (const auto& property : _properties) {
        property->ResetValue();
    }
    for (const auto& propertyInfo : info.properties) {
        auto found = find(propertyInfo.property_name);
        if (found == _properties.end()) {
            found = _properties.insert(found, std::make_shared<Property>(propertyInfo.property_name));
        }
        (*found)->BuildDetailInfo(propertyInfo);
    }
}

void Resource::ApplyChanges(const Resource* other) {
    if (other == nullptr) {
        return;
    }
    if (other->GetURI() != GetURI()) {
        HL_LOGE("different resource: _URI: %s   New URI: %s ", GetURI().c_str(), other->GetURI().c_str());
        return;
    }
    for (const auto& property : other->_properties) {
        const auto found = find(property->GetName());
        if (found == _properties.end()) {
            _properties.push_back(property);
        } else {
            (*found)->ApplyChanges(property->GetName(), property->GetValue());
        }
    }
}

void Resource::GetRcpString(std::string& rcpString, const std::string& propertyName, const std::string& value) const {
    const Property* const found = LookUp(propertyName);
    if (found != nullptr && found->IsValidObject()) {
        found->GetRcpString(rcpString, value);
        return;
    }
    // A property that was never received has no type yet. Waking an inactive TV writes one of these.
    Property(propertyName).GetRcpString(rcpString, value);
}

}  // namespace VMFramework::HomeLoom
