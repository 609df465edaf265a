#ifndef HOMELOOM_TV_DEVICECHANGES_H
#define HOMELOOM_TV_DEVICECHANGES_H

#include <cstddef>
#include <string>
#include <vector>

#include <simulator/Driver.h>

#include "Words.h"

namespace homeloom::tv {

/// Changes of a device as somebody types them, from the word `at` on: "/uri property value", or "property=value" by the
/// last parts of the properties' names. Throws CommandError, and UsageError if there are none.
std::vector<simulator::Change> readChanges(const simulator::Device& device, const Words& words, std::size_t at);

/// {"number": 7, "device_id": "lamp", "uri": "/power/vs/0", "values": {...}}
std::string jsonLine(const simulator::DeviceCommand& command);

}  // namespace homeloom::tv

#endif
