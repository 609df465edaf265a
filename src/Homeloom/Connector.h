#ifndef HOMELOOM_HOMELOOM_CONNECTOR_H
#define HOMELOOM_HOMELOOM_CONNECTOR_H

#include <string>
#include <unordered_map>

#include "Homeloom/Common/UpdateList.h"
#include "Homeloom/Location/CoreLocationInfo.h"

namespace VMFramework::HomeLoom {

// The ways back from the handlers into the session. Each handler gets them as callables, bound in
// HomeloomClient::bindHandlers; ARCHITECTURE.md tells why.

class LocationHandlerConnector {
public:
    virtual ~LocationHandlerConnector() = default;
    virtual bool processGetDevicesInfo() = 0;
    virtual void processOnProfileUpdateEvent(UpdateList reason) = 0;
    virtual std::string processGetFavorites(const std::string& locationId) = 0;
    virtual std::unordered_map<std::string, core_location_info_struct> processGetLocations() = 0;
};

class SceneHandlerConnector {
public:
    virtual ~SceneHandlerConnector() = default;
    virtual std::unordered_map<std::string, core_location_info_struct> processGetLocations() = 0;
};

class RoutineHandlerConnector {
public:
    virtual ~RoutineHandlerConnector() = default;
    virtual std::unordered_map<std::string, core_location_info_struct> processGetLocations() = 0;
};

class DeviceHandlerConnector {
public:
    virtual ~DeviceHandlerConnector() = default;
    virtual std::string processGetAccessToken() = 0;
    /// Takes leaf locks only: it is asked on the agent's threads.
    virtual bool processIsLocalHubConnectedDevice(const std::string& deviceId) = 0;
};

class CoreDeviceHandlerConnector {
public:
    virtual ~CoreDeviceHandlerConnector() = default;
    /// Takes the detail text of a core device, as the agent tells it.
    virtual std::string processGetParentIdOfIRDevice(const std::string& deviceJson) = 0;
};

class Connector : public LocationHandlerConnector,
                  public SceneHandlerConnector,
                  public RoutineHandlerConnector,
                  public DeviceHandlerConnector,
                  public CoreDeviceHandlerConnector {
public:
    // One answer serves the three that ask for it.
    std::unordered_map<std::string, core_location_info_struct> processGetLocations() override = 0;
};

}  // namespace VMFramework::HomeLoom

#endif
