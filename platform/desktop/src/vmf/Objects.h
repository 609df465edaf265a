#ifndef HOMELOOM_DESKTOP_VMF_OBJECTS_H
#define HOMELOOM_DESKTOP_VMF_OBJECTS_H

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <vmf_endpoint.h>
#include <vmf_property.h>

#include "desktop/Records.h"
#include "vmf/HandleTable.h"

namespace homeloom::desktop {

struct PropertyList;
struct EndpointList;

struct Property {
    Property() = default;
    Property(std::string name, Value data) : key(std::move(name)), value(std::move(data)) {}

    vmf_property_h handle = nullptr;
    std::string key;
    Value value;
    PropertyList* list = nullptr;  // that owns it
    std::size_t position = 0;      // there
};

struct PropertyList {
    vmf_property_list_h handle = nullptr;
    bool isNamed = false;
    std::string name;
    std::vector<Property*> properties;
    std::size_t first = 0;  // those before it were popped; they end with the list all the same
};

struct Endpoint {
    vmf_endpoint_h handle = nullptr;
    EndpointRecord record;
    EndpointList* list = nullptr;
    std::size_t position = 0;
};

struct EndpointList {
    vmf_endpoint_list_h handle = nullptr;
    std::vector<Endpoint*> endpoints;
    std::size_t first = 0;  // those before it were popped, and are their takers'
};

using PropertyTable = HandleTable<Property, vmf_property_h, HandleKind::Property>;
using PropertyListTable = HandleTable<PropertyList, vmf_property_list_h, HandleKind::PropertyList>;
using EndpointTable = HandleTable<Endpoint, vmf_endpoint_h, HandleKind::Endpoint>;
using EndpointListTable = HandleTable<EndpointList, vmf_endpoint_list_h, HandleKind::EndpointList>;

// The tables are never destroyed: threads may use handles until the process is gone.
PropertyTable& properties();
PropertyListTable& propertyLists();
EndpointTable& endpoints();
EndpointListTable& endpointLists();

/// A list that the framework hands to the plug-in; it ends with the pointer.
struct PropertyListEnd {
    void operator()(PropertyList* list) const;
};
std::unique_ptr<PropertyList, PropertyListEnd> makePropertyList(const std::string& name, const Fields& fields);
Fields fieldsOf(const PropertyList& list);

struct EndpointEnd {
    void operator()(Endpoint* endpoint) const;
};
std::unique_ptr<Endpoint, EndpointEnd> makeEndpoint(EndpointRecord record);

}  // namespace homeloom::desktop

#endif
