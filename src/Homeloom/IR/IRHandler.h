#ifndef HOMELOOM_HOMELOOM_IR_IRHANDLER_H
#define HOMELOOM_HOMELOOM_IR_IRHANDLER_H

#include <string>

namespace VMFramework::HomeLoom {

/// Devices that can only be reached by infrared, through the TV's own blaster.
class IRHandler {
public:
    /// From a core device's detail text; empty for a device that is no infrared device.
    std::string GetParentIdOfIRDevice(const std::string& deviceJson) const;
};

}  // namespace VMFramework::HomeLoom

#endif
