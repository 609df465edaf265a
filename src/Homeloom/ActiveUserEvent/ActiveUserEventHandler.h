#ifndef HOMELOOM_HOMELOOM_ACTIVEUSEREVENT_ACTIVEUSEREVENTHANDLER_H
#define HOMELOOM_HOMELOOM_ACTIVEUSEREVENT_ACTIVEUSEREVENTHANDLER_H

#include <memory>
#include <string>

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// Passes usage events from the UI to the agent, so that the platform sees the TV's user as active.
class ActiveUserEventHandler {
public:
    explicit ActiveUserEventHandler(ITesselHandler& agent) : _agent(agent) {}
    /// Blocks until the agent has answered. A failure is reported and not tried again.
    void SendActiveUserEvent(const std::shared_ptr<CTransaction>& transaction, int category, int action,
                             const std::string& label, const std::string& metadata);

private:
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
