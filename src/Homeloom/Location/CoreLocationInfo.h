#ifndef HOMELOOM_HOMELOOM_LOCATION_CORELOCATIONINFO_H
#define HOMELOOM_HOMELOOM_LOCATION_CORELOCATIONINFO_H

#include <string>

namespace VMFramework::HomeLoom {

/// A location as the agent's core family knows it. What the permission's text means is the platform's.
struct core_location_info_struct {
    std::string location_id;
    std::string location_name;
    std::string location_permission;
};

}  // namespace VMFramework::HomeLoom

#endif
