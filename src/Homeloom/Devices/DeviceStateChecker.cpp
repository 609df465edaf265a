// One rule for each device type of what counts as running.
#include "Homeloom/Devices/DeviceStateChecker.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include <VMFramework/JsonValue.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

using Texts = std::initializer_list<std::string_view>;

constexpr char kOperationalStateUri[] = "/operational/state/vs/0";
constexpr char kPowerUri[] = "/power/vs/0";
constexpr char kStateProperty[] = "x.com.norvane.da.state";
constexpr char kPowerProperty[] = "x.com.norvane.da.power";

bool isAnyOf(std::string_view text, Texts texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// Any URI of a rule goes with any of its properties.
bool concerns(const device_operation_info_struct& info, Texts uris, Texts properties) {
    return isAnyOf(info.property_name, properties) && isAnyOf(info.uri, uris);
}

RunningState judge(const std::string& value, Texts runningValues) {
    return isAnyOf(value, runningValues) ? RUNNING_STATE_RUNNING : RUNNING_STATE_STOPPED;
}

RunningState judgeUpdate(const device_operation_info_struct& info, Texts uris, Texts properties, Texts runningValues) {
    return concerns(info, uris, properties) ? judge(info.property_value, runningValues) : RUNNING_STATE_UNKNOWN;
}

// For values that come as a JSON array: one without the element says nothing.
RunningState judgeElement(const std::string& element, Texts runningValues) {
    return element.empty() ? RUNNING_STATE_UNKNOWN : judge(element, runningValues);
}

std::string elementOf(const std::string& text, int index) {
    return GuardedOr(std::string(), [&]() -> std::string {
        const auto document = json::JsonValue::Create(text);
        if (document.isNull()) {
            HL_LOGE("json parsing failed");
            return "";
        }
        return document[index].asString();
    });
}

}  // namespace

const DeviceStateChecker::TypeRule DeviceStateChecker::kTypeRules[] = {
    {"x.com.hl.d.garmentcareshoes", GetGarmentcareShoesRunningState},
    {"oic.d.dishwasher", GetDishwasherRunningState},
    {"oic.d.washer", GetWasherRunningState},
    {"oic.d.dryer", GetDryerRunningState},
    {"x.com.hl.d.steamcloset", GetSteamClosetRunningState},
    {"oic.d.oven", GetOvenRunningState},
    {"oic.d.robotcleaner", GetRobotCleanerRunningState},
    {"oic.d.airconditioner", GetAirconditionerRunningState},
    {"oic.d.airpurifier", GetAirpurifierRunningState},
    {"oic.d.cooktop", GetCooktopRunningState},
    {"oic.d.hood", GetHoodRunningState},
    // Microwaves that run have this type; the sub device types know "oic.d.microoven". Both are devices' own words.
    {"oic.d.microwave", GetMicrowaveRunningState},
    {"oic.d.networkaudio", GetNetworkSpeakerRunningState},
    {"x.com.hl.d.networkaudio", GetNetworkAudioRunningState},
    {"oic.d.fan", GetFanRunningState},
    {"oic.d.tv", GetTVRunningState},
};

RunningState DeviceStateChecker::GetRunningState(const Info& info) {
    HL_LOGI("GetRunningState device_type : %s, uri : %s, property_name : %s, property_value : %s",
            info.device_type.c_str(), info.uri.c_str(), info.property_name.c_str(), info.property_value.c_str());
    for (const auto& [deviceType, rule] : kTypeRules) {
        if (info.device_type == deviceType) {
            return rule(info);
        }
    }
    return RUNNING_STATE_UNKNOWN;
}

RunningState DeviceStateChecker::GetGarmentcareShoesRunningState(const Info& info) {
    return judgeUpdate(info, {kOperationalStateUri}, {kStateProperty}, {"Run"});
}

RunningState DeviceStateChecker::GetDishwasherRunningState(const Info& info) {
    return judgeUpdate(info, {kOperationalStateUri, "/capability/norvanece.dishwasherOperation/main/0"},
                       {kStateProperty, "operatingState"}, {"Run", "running"});
}

RunningState DeviceStateChecker::GetWasherRunningState(const Info& info) {
    return judgeUpdate(info, {kOperationalStateUri}, {kStateProperty}, {"Run"});
}

RunningState DeviceStateChecker::GetDryerRunningState(const Info& info) {
    return judgeUpdate(info, {kOperationalStateUri}, {kStateProperty}, {"Run"});
}

RunningState DeviceStateChecker::GetSteamClosetRunningState(const Info& info) {
    return judgeUpdate(info, {kOperationalStateUri}, {kStateProperty}, {"Run"});
}

RunningState DeviceStateChecker::GetOvenRunningState(const Info& info) {
    return judgeUpdate(info, {kOperationalStateUri}, {kStateProperty}, {"Run"});
}

RunningState DeviceStateChecker::GetRobotCleanerRunningState(const Info& info) {
    if (!concerns(info, {"/mode/vs/0"}, {"x.com.norvane.da.modes"})) {
        return RUNNING_STATE_UNKNOWN;
    }
    return judgeElement(getRobotCleanerPropertyValue(info.property_value),
                        {"Control_Cleaning", "Control_Homing", "Control_Creating"});
}

RunningState DeviceStateChecker::GetAirconditionerRunningState(const Info& info) {
    return judgeUpdate(info, {kPowerUri, "/power/dhw/vs/0", "/power/zone2/vs/0"}, {kPowerProperty}, {"On"});
}

RunningState DeviceStateChecker::GetAirpurifierRunningState(const Info& info) {
    return judgeUpdate(info, {kPowerUri}, {kPowerProperty}, {"On"});
}

RunningState DeviceStateChecker::GetCooktopRunningState(const Info& info) {
    return judgeUpdate(info, {kPowerUri, "/cooktop/status/vs/0"}, {kPowerProperty, "power"}, {"On", "on"});
}

RunningState DeviceStateChecker::GetHoodRunningState(const Info& info) {
    return judgeUpdate(info, {kPowerUri}, {kPowerProperty}, {"On"});
}

RunningState DeviceStateChecker::GetMicrowaveRunningState(const Info& info) {
    return judgeUpdate(info, {"/oven/vs/0"}, {kStateProperty}, {"Cooking", "Preheat", "Cleaning", "Warming"});
}

RunningState DeviceStateChecker::GetNetworkSpeakerRunningState(const Info& info) {
    if (!concerns(info, {"/capability/mediaPlayback/0", "/capability/mediaPlayback/main/0"}, {"modes"})) {
        return RUNNING_STATE_UNKNOWN;
    }
    return judgeElement(getPlayerPropertyValue(info.property_value), {"play"});
}

RunningState DeviceStateChecker::GetNetworkAudioRunningState(const Info& info) {
    if (!concerns(info, {"/capability/mediaPlayback/0", "/capability/mediaPlayback/main/0", "/capability/musicPlayer"},
                  {"modes", "status"})) {
        return RUNNING_STATE_UNKNOWN;
    }
    return judgeElement(getPlayerPropertyValue(info.property_value), {"play", "playing"});
}

RunningState DeviceStateChecker::GetFanRunningState(const Info& info) {
    return judgeUpdate(info, {"/capability/switch/0"}, {"value"}, {"true"});
}

RunningState DeviceStateChecker::GetTVRunningState(const Info& info) {
    return judgeUpdate(info, {"/nvn/tv/contentinfo"}, {"x.com.norvane.tv.subtitle"}, {"wall"});
}

std::string DeviceStateChecker::getPlayerPropertyValue(const std::string& text) {
    return elementOf(text, 0);
}

// The first element of a robot cleaner's value is something else; its state comes second.
std::string DeviceStateChecker::getRobotCleanerPropertyValue(const std::string& text) {
    return elementOf(text, 1);
}

}  // namespace VMFramework::HomeLoom
