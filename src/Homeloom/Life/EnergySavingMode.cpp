// Reads the saving mode out of a device's status document.
#include "Homeloom/Life/EnergySavingMode.h"

#include <initializer_list>

#include <VMFramework/JsonValue.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

using json::JsonValue;

namespace {

constexpr char kLoadControl[] = "demandResponseLoadControl";
constexpr int kNoLevel = -1;
constexpr int kLeastSavingLevel = 1;

/// The value of a capability's attribute in the main component.
JsonValue ValueOf(const JsonValue& status, const char* capability, const char* attribute) {
    JsonValue value = status;
    for (const char* name : {"components", "main", capability, attribute, "value"}) {
        const JsonValue parent = value;
        value = parent[name];
    }
    return value;
}

}  // namespace

bool requestBuildEnergySavingMode(const std::string& deviceId, const std::string& status) {
    const JsonValue document = JsonValue::Create(status);
    if (!parsingEnergySavingSupported(document)) {
        HL_LOGI("this is not a supported device about energy saving mode, device_id : %s", deviceId.c_str());
        return false;
    }
    return parsingEnergySavingModeOperation(document);
}

bool parsingEnergySavingSupported(const JsonValue& status) {
    if (isDisabledCapability(status)) {
        HL_LOGI("demandResponseLoadControl is in disabled capabilities, do not support energy saving mode");
        return false;
    }
    if (getDrlcLevel(status) < 0) {
        HL_LOGI("drlc level is under 0, do not support energy saving mode");
        return false;
    }
    return true;
}

bool parsingEnergySavingModeOperation(const JsonValue& status) {
    return getEnergySavingOperationValue(status) || getDrlcLevel(status) >= kLeastSavingLevel;
}

int getDrlcLevel(const JsonValue& status) {
    return GuardedOr(kNoLevel, [&] {
        const JsonValue value = ValueOf(status, kLoadControl, "drlcStatus");
        const JsonValue level = value["drlcLevel"];
        if (!level.isNumber()) {
            HL_LOGI("drlc_level object is not found");
            return kNoLevel;
        }
        const int number = level.asInt();
        HL_LOGI("drlc level : %d", number);
        return number;
    });
}

bool getEnergySavingOperationValue(const JsonValue& status) {
    const JsonValue value = ValueOf(status, "custom.energyType", "energySavingOperation");
    if (!value.isBool()) {
        return false;
    }
    const bool isOn = value.asBool();
    HL_LOGI("energy saving operation value : %d", isOn);
    return isOn;
}

bool isDisabledCapability(const JsonValue& status) {
    const JsonValue disabled = ValueOf(status, "custom.disabledCapabilities", "disabledCapabilities");
    for (std::size_t i = 0; disabled.isArray() && i < disabled.size(); ++i) {
        const JsonValue capability = disabled[i];
        if (capability.isString() && capability.asString() == kLoadControl) {
            HL_LOGI("demandResponseLoadControl is in disabled capabilities");
            return true;
        }
    }
    return false;
}

}  // namespace VMFramework::HomeLoom
