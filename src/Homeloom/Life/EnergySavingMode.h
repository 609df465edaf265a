#ifndef HOMELOOM_HOMELOOM_LIFE_ENERGYSAVINGMODE_H
#define HOMELOOM_HOMELOOM_LIFE_ENERGYSAVINGMODE_H

#include <string>

namespace VMFramework::json {
class JsonValue;
}

/// Whether a device saves energy, by its status document (ITesselHandler::GetCoreDeviceStatus). What is missing there,
/// or is not what it should be, counts as not there.
namespace VMFramework::HomeLoom {

bool requestBuildEnergySavingMode(const std::string& deviceId, const std::string& status);

bool parsingEnergySavingSupported(const json::JsonValue& status);
bool parsingEnergySavingModeOperation(const json::JsonValue& status);

/// The level of the demand response load control; -1 for none.
int getDrlcLevel(const json::JsonValue& status);
bool getEnergySavingOperationValue(const json::JsonValue& status);
/// Whether the device has the load control, but switched off for good.
bool isDisabledCapability(const json::JsonValue& status);

}  // namespace VMFramework::HomeLoom

#endif
