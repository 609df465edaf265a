#ifndef HOMELOOM_SIMULATOR_COMMANDS_H
#define HOMELOOM_SIMULATOR_COMMANDS_H

#include <string>

#include <mutex>

#include "Json.h"
#include "World.h"

namespace simulator {

/// Has a device carry out all the commands of a request, {"commands":[...]}, or, when one of them isn't known, none.
/// Where it has a driver, waits for what that has to say. `reply` is what the cloud says to it. The agent's codes.
int executeCommands(World& world, std::unique_lock<std::mutex>& lock, Device& device, const std::string& request,
                    json::object& reply);

}  // namespace simulator

#endif
