#ifndef HOMELOOM_TV_REPORTTABLE_H
#define HOMELOOM_TV_REPORTTABLE_H

#include <string>
#include <vector>

#include "FieldSpec.h"

namespace homeloom::tv {

/// A notification that comes without a request, or not only with one.
struct NotifySpec {
    std::string name;
    std::string when;  // for people
    std::vector<FieldSpec> fields;
};

/// An entry of the device list. Entries are told apart by their three names; one that is empty here is absent.
struct EndpointSpec {
    std::string entry;  // "device", "location", "scene" or "routine"
    std::string serviceName;
    std::string interfaceType;
    std::string deviceType;
    std::vector<FieldSpec> extraData;
};

/// All notifications that the plug-in sends of its own accord.
const std::vector<NotifySpec>& notifyTable();
const NotifySpec* findNotify(const std::string& name);

/// All kinds of entries in the device list.
const std::vector<EndpointSpec>& endpointTable();

}  // namespace homeloom::tv

#endif
