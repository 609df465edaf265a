#ifndef HOMELOOM_SIMULATOR_DRIVER_H
#define HOMELOOM_SIMULATOR_DRIVER_H

#include <functional>
#include <string>
#include <vector>

#include "simulator/Home.h"

namespace simulator {

/// What the plug-in wants of a device that has a driver: values of one resource.
struct DeviceCommand {
    long long number = 0;  // of this command alone
    std::string deviceId;
    std::string uri;
    std::vector<Change> changes;  // all of that URI, each value as its property's type has it
};

/// What a driver says to a command. The plug-in's call is answered by it.
enum class Verdict {
    Accept,  // the call succeeds; the values change when somebody sets them, or never
    Refuse,  // the call fails
    Open,    // Agent::accept(), confirm() or refuse() tells, now or later; until then the call waits
};

/// Stands behind a device in place of its model. Called on the agent's callback thread, one command at a time; may call
/// anything of the agent but waitIdle(). A command whose driver throws is refused.
using Driver = std::function<Verdict(const DeviceCommand&)>;

}  // namespace simulator

#endif
