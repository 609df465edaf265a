#ifndef HOMELOOM_SIMULATOR_COMMANDS_H
#define HOMELOOM_SIMULATOR_COMMANDS_H

#include <string>

#include "Json.h"
#include "World.h"

namespace simulator {

/// Carries out all the commands of a request, {"commands":[...]}, or, when one of them isn't known, none. `reply` is
/// what the cloud says to it. The agent's codes.
int executeCommands(World& world, Device& device, const std::string& request, json::object& reply);

}  // namespace simulator

#endif
