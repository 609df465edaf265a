#ifndef HOMELOOM_HOMELOOM_IR_IRHANDLER_H
#define HOMELOOM_HOMELOOM_IR_IRHANDLER_H

#include <memory>
#include <string>

namespace VMFramework::HomeLoom {

class CTransaction;
class IPropertyListHelper;
class ITesselHandler;

/// Devices that can only be reached by infrared, through the TV's own blaster.
class IRHandler {
public:
    explicit IRHandler(ITesselHandler& agent) : _agent(agent) {}
    /// Registers such a device on the platform; blocks until the agent has answered. Throws CException, and answers
    /// nothing, when the request says too little.
    void OnboardIRDevice(const std::shared_ptr<CTransaction>& transaction,
                         const std::shared_ptr<IPropertyListHelper>& list);
    /// From a core device's detail text; empty for a device that is no infrared device.
    std::string GetParentIdOfIRDevice(const std::string& deviceJson) const;

private:
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
