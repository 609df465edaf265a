#ifndef HOMELOOM_FUZZ_SUPPORT_PLUGIN_H
#define HOMELOOM_FUZZ_SUPPORT_PLUGIN_H

#include <string>
#include <vector>

#include <desktop/MainLoop.h>
#include <simulator/Agent.h>

namespace fuzz {

/// The plug-in on a desk TV, with a few devices of the apartment behind it. Started by the first input and stopped when
/// the program ends.
class Plugin {
public:
    static Plugin& running();

    /// Waits until what the agent told has been handled.
    void waitForEvents();
    /// Waits until the requests that were sent have been handled.
    void waitForRequests();

    simulator::Agent& agent = simulator::Agent::instance();
    const simulator::Home home;

    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

private:
    Plugin();
    ~Plugin();

    homeloom::desktop::MainLoop _loop;
};

}  // namespace fuzz

#endif
