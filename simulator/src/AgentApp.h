#ifndef HOMELOOM_SIMULATOR_AGENTAPP_H
#define HOMELOOM_SIMULATOR_AGENTAPP_H

namespace simulator {

/// Makes the agent's application one that can be launched: with the extra "server" it changes the server environments.
void installAgentApp();

}  // namespace simulator

#endif
