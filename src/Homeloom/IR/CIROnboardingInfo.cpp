// Reads an infrared device's request and writes the body that registers the device, key codes and all.
#include "Homeloom/IR/CIROnboardingInfo.h"

#include <qsp_ir.h>

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CText.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CPropertyListHelper.h"

namespace VMFramework::HomeLoom {

using json::JsonValue;

namespace {

constexpr char kAirConditioner[] = "oic.d.airconditioner";
constexpr int kDefaultTemperature = 24;

// ---- Words of the screen, and what the platform makes of them ----

struct AcWord {
    std::string_view word;
    const char* command;
    const char* attribute;
    const char* value;
};

// In commands the attribute is "windSpeed", in the state "windspeed": the platform knows each in its place only.
constexpr AcWord kWindWords[] = {{"low", "airConditionerFanMode.low", "windSpeed", "LOW"},
                                 {"medium", "airConditionerFanMode.medium", "windSpeed", "MEDIUM"},
                                 {"high", "airConditionerFanMode.high", "windSpeed", "HIGH"}};
constexpr AcWord kModeWords[] = {{"auto", "airConditionerMode.auto", "mode", "AUTO"},
                                 {"cool", "airConditionerMode.cool", "mode", "COLD"},
                                 {"dry", "airConditionerMode.dry", "mode", "DEHUMI"},
                                 {"fan", "airConditionerMode.fanOnly", "mode", "VENT"},
                                 {"heat", "airConditionerMode.heat", "mode", "HEAT"}};
constexpr AcWord kPowerWords[] = {{"on", "switch.on", "powerState", "ON"}, {"off", "switch.off", "powerState", "OFF"}};

template <std::size_t Count>
const AcWord& Find(const AcWord (&words)[Count], const std::string& word, const char* complaint) {
    for (const AcWord& candidate : words) {
        if (candidate.word == word) {
            return candidate;
        }
    }
    throw CException(complaint, kErrorFailed);
}

const AcWord& FindWind(const std::string& word) {
    return Find(kWindWords, word, "fan speed not found in map!");
}

const AcWord& FindMode(const std::string& word) {
    return Find(kModeWords, word, "mode not found in map!");
}

const AcWord& FindPower(const std::string& word) {
    return Find(kPowerWords, word, "power state not found in map!");
}

void AddCommand(JsonValue& codes, const AcWord& word) {
    JsonValue value = JsonValue::CreateObject();
    value.set(word.attribute, word.value);
    codes.set(word.command, value);
}

// ---- Keys of the infrared remote control ----

struct KeyFunction {
    std::size_t key;
    const char* name;
};

constexpr KeyFunction kHumidifierKeys[] = {
    {10, "statelessPowerToggleButton.powerToggle"}, {11, "statelessPowerButton.powerOff"},
    {12, "statelessPowerButton.powerOn"},           {76, "statelessFanspeedModeButton.changeMode"},
    {13, "statelessFanspeedButton.fanspeedUp"},     {14, "statelessFanspeedButton.fanspeedDown"}};
constexpr KeyFunction kFanKeys[] = {
    {10, "statelessPowerToggleButton.powerToggle"}, {11, "statelessPowerButton.powerOff"},
    {12, "statelessPowerButton.powerOn"},           {76, "statelessCustomButton.fanspeed"},
    {13, "statelessFanspeedButton.fanspeedUp"},     {14, "statelessFanspeedButton.fanspeedDown"}};
constexpr KeyFunction kRobotCleanerKeys[] = {{10, "statelessPowerToggleButton.powerToggle"},
                                             {39, "statelessRobotCleanerToggleButton.actionToggle"},
                                             {28, "statelessRobotCleanerHomeButton.home"}};

constexpr std::size_t kTemperatureUpKey = 2;
constexpr std::size_t kTemperatureDownKey = 3;
constexpr std::size_t kFanKey = 5;
constexpr std::size_t kFanUpKey = 78;
constexpr std::size_t kFanDownKey = 79;

bool HasKey(const std::string& keyMap, std::size_t key) {
    return key < keyMap.size() && keyMap[key] == '1';
}

void AddKey(JsonValue& codes, const KeyFunction& function) {
    codes.set(function.name, std::to_string(function.key));
}

template <std::size_t Count>
JsonValue FunctionCodesOf(const KeyFunction (&functions)[Count], const std::string& keyMap) {
    JsonValue codes = JsonValue::CreateObject();
    for (const KeyFunction& function : functions) {
        if (HasKey(keyMap, function.key)) {
            AddKey(codes, function);
        }
    }
    return codes;
}

// ---- Reading ----

/// A text or number that is not there, or is something else, leaves the field as it is.
void ReadText(const JsonValue& value, std::string& text) {
    if (value.isString() || value.isNumber()) {
        text = value.asString();
    }
}

void ReadTexts(const JsonValue& array, std::vector<std::string>& texts) {
    if (!array.isArray()) {
        return;
    }
    texts.clear();
    for (std::size_t i = 0; i < array.size(); ++i) {
        ReadText(array[i], texts.emplace_back());
    }
}

/// The whole number that a text begins with.
int ToNumber(const std::string& text, int otherwise) {
    int number = otherwise;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string NonEmpty(std::string text, const char* complaint) {
    if (text.empty()) {
        throw CException(complaint, kErrorEmptyArgument);
    }
    return text;
}

}  // namespace

// ---- The air conditioner's state ----

void CIrOnboardingInfo::CAcState::ParseQseAcState(const std::string& json) {
    const JsonValue state = JsonValue::Create(json);
    ReadText(state["currentMode"], _currentMode);
    ReadText(state["currentPower"], _currentPower);
    ReadText(state["currentTemperature"], _currentTemperature);
    ReadText(state["unit"], _unit);
    std::vector<std::string> temperatures;
    ReadTexts(state["availTemperatures"], temperatures);
    if (!temperatures.empty()) {
        _minTemperature = temperatures.front();
        _maxTemperature = temperatures.back();
    }
    ReadTexts(state["availModes"], _availableModes);
    ReadTexts(state["availFanSpeeds"], _availableFanSpeeds);
    ReadTexts(state["availPowers"], _availablePowers);
    if (_availablePowers.size() == 1 && _availablePowers.front() == "single") {
        // One key that toggles: the device's state is unknown, so it starts out as off.
        _availablePowers = {"on", "off"};
        _currentPower = "off";
    }
}

JsonValue CIrOnboardingInfo::CAcState::GetAcStateObj() const {
    JsonValue state = JsonValue::CreateObject();
    state.set("coolingSetpoint", ToNumber(_currentTemperature, kDefaultTemperature));
    state.set("mode", FindMode(_currentMode).value);
    state.set("powerState", FindPower(_currentPower).value);
    state.set("windspeed", FindWind(_currentWindSpeed).value);
    state.set("maxTemp", ToNumber(_maxTemperature, 0));
    state.set("minTemp", ToNumber(_minTemperature, 0));
    state.set("unit", _unit);
    HL_LOGI("AcState: %s", state.toString().c_str());
    return state;
}

JsonValue CIrOnboardingInfo::CAcState::GetFunctionCodes(const std::string& keyMap) const {
    JsonValue codes = JsonValue::CreateObject();
    for (const std::string& power : _availablePowers) {
        AddCommand(codes, FindPower(power));
    }
    for (const std::string& mode : _availableModes) {
        AddCommand(codes, FindMode(mode));
    }
    for (const std::string& speed : _availableFanSpeeds) {
        AddCommand(codes, FindWind(speed));
    }
    JsonValue setpoint = JsonValue::CreateObject();
    setpoint.set("fixedTargetTemperature", "0");
    codes.set("thermostatCoolingSetpoint.setCoolingSetpoint", setpoint);

    const auto addIf = [&codes](bool isThere, const KeyFunction& function) {
        if (isThere) {
            AddKey(codes, function);
        }
    };
    addIf(HasKey(keyMap, kTemperatureDownKey), {kTemperatureDownKey, "statelessTemperatureButton.temperatureDown"});
    addIf(HasKey(keyMap, kTemperatureUpKey), {kTemperatureUpKey, "statelessTemperatureButton.temperatureUp"});
    // One key steps through the speeds: it stands in for both, under the numbers of the two that it replaces.
    const bool stepsThroughSpeeds = HasKey(keyMap, kFanKey);
    addIf(stepsThroughSpeeds || HasKey(keyMap, kFanDownKey), {kFanDownKey, "statelessFanspeedButton.fanspeedDown"});
    addIf(stepsThroughSpeeds || HasKey(keyMap, kFanUpKey), {kFanUpKey, "statelessFanspeedButton.fanspeedUp"});
    return codes;
}

// ---- The request ----

CIrOnboardingInfo::CIrOnboardingInfo(const std::shared_ptr<IPropertyListHelper>& list)
    : _codeset(NonEmpty(list->GetString(Names::CODESET), "codeset is empty")),
      _brand(NonEmpty(list->GetString(Names::BRAND), "brand is empty")),
      _deviceType(NonEmpty(list->GetString(Names::DEVICE_TYPE), "device_type is empty")),
      _displayName(NonEmpty(list->GetString(Names::DISPLAY_NAME), "display_name is empty")),
      _parentId(NonEmpty(list->GetString(Names::PARENT_ID), "parent_id is empty")),
      _locationId(NonEmpty(list->GetString(Names::LOCATION_ID), "location_id is empty")),
      _roomId(NonEmpty(list->GetString(Names::ROOM_ID), "room_id is empty")) {
    std::string state;
    if (_deviceType == kAirConditioner) {
        state = list->GetString(Names::AIRCON_STATE);
        _acState.ParseQseAcState(state);
    }
    HL_LOGI("%s, %s, %s, %s, parent:%s location:%s, room:%s, aircon_state:%s", _codeset.c_str(), _brand.c_str(),
            _deviceType.c_str(), _displayName.c_str(), _parentId.c_str(), _locationId.c_str(), _roomId.c_str(),
            state.c_str());
}

std::string CIrOnboardingInfo::GenerateRequestBody() const {
    JsonValue body = JsonValue::CreateObject();
    body.set("ocfDeviceType", _deviceType);
    body.set("irCodeId", _codeset);
    body.set("parentDeviceId", _parentId);
    body.set("label", _displayName);
    body.set("brandName", _brand);
    body.set("locationId", _locationId);
    body.set("roomId", _roomId);
    body.set("mnId", "HomeLoom");
    if (_deviceType == kAirConditioner) {
        body.set("acState", _acState.GetAcStateObj());
    }
    body.set("functionCodes", generateIrFunctionCodes());
    body.set("metadata", generateIrMetadata());
    std::string text = body.toString();
    HL_LOGI("request_body: %s", text.c_str());
    return text;
}

JsonValue CIrOnboardingInfo::generateIrFunctionCodes() const {
    const std::string keyMap = getKeyMap(_codeset);
    if (_deviceType == "x.com.hl.d.humidifier" || _deviceType == "oic.d.airpurifier") {
        return generateHumidiferFunctionCodes(keyMap);
    }
    if (_deviceType == "oic.d.robotcleaner") {
        return generateRobotCleanerFunctionCodes(keyMap);
    }
    if (_deviceType == "oic.d.fan") {
        return generateFanFunctionCodes(keyMap);
    }
    if (_deviceType == kAirConditioner) {
        return _acState.GetFunctionCodes(keyMap);
    }
    return JsonValue::CreateObject();
}

JsonValue CIrOnboardingInfo::generateHumidiferFunctionCodes(const std::string& keyMap) {
    return FunctionCodesOf(kHumidifierKeys, keyMap);
}

JsonValue CIrOnboardingInfo::generateFanFunctionCodes(const std::string& keyMap) {
    return FunctionCodesOf(kFanKeys, keyMap);
}

JsonValue CIrOnboardingInfo::generateRobotCleanerFunctionCodes(const std::string& keyMap) {
    return FunctionCodesOf(kRobotCleanerKeys, keyMap);
}

JsonValue CIrOnboardingInfo::generateIrMetadata() {
    JsonValue metadata = JsonValue::CreateObject();
    metadata.set("irSensor", "Tx");
    metadata.set("vendor", "UEI");
    metadata.set("deviceIntegrationType", "IR_OCF");
    metadata.set("parentOcfDeviceType", "oic.d.tv");
    return metadata;
}

std::string CIrOnboardingInfo::getKeyMap(const std::string& codeset) {
    const OwnedText keyMap(qsp_get_supported_keymap_hcodeset(codeset.c_str()));
    if (!keyMap) {
        throw CException("qsp_get_supported_keymap_hcodeset returned NULL!!", kErrorNoPlatformData);
    }
    return keyMap.get();
}

}  // namespace VMFramework::HomeLoom
