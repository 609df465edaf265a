#ifndef HOMELOOM_HOMELOOM_DEVICES_DEVICESTATECHECKER_H
#define HOMELOOM_HOMELOOM_DEVICES_DEVICESTATECHECKER_H

#include <string>
#include <string_view>

#include "Common/DeviceInfoStructs.h"

namespace VMFramework::HomeLoom {

/// Says for one property update whether the device is running, by a rule for each device type.
///
/// RUNNING_STATE_UNKNOWN, for an update that a rule doesn't look at and for a type without a rule, leaves
/// the device as it was. Texts are compared exactly. Never throws.
class DeviceStateChecker {
public:
    DeviceStateChecker() = delete;

    static RunningState GetRunningState(const device_operation_info_struct& info);

private:
    using Info = device_operation_info_struct;
    struct TypeRule {
        std::string_view deviceType;
        RunningState (*rule)(const Info& info);
    };
    static const TypeRule kTypeRules[];

    static RunningState GetGarmentcareShoesRunningState(const Info& info);
    static RunningState GetDishwasherRunningState(const Info& info);
    static RunningState GetWasherRunningState(const Info& info);
    static RunningState GetDryerRunningState(const Info& info);
    static RunningState GetSteamClosetRunningState(const Info& info);
    static RunningState GetOvenRunningState(const Info& info);
    static RunningState GetRobotCleanerRunningState(const Info& info);
    static RunningState GetAirconditionerRunningState(const Info& info);
    static RunningState GetAirpurifierRunningState(const Info& info);
    static RunningState GetCooktopRunningState(const Info& info);
    static RunningState GetHoodRunningState(const Info& info);
    static RunningState GetMicrowaveRunningState(const Info& info);
    static RunningState GetNetworkSpeakerRunningState(const Info& info);
    static RunningState GetNetworkAudioRunningState(const Info& info);
    static RunningState GetFanRunningState(const Info& info);
    static RunningState GetTVRunningState(const Info& info);

    static std::string getPlayerPropertyValue(const std::string& text);
    static std::string getRobotCleanerPropertyValue(const std::string& text);
};

}  // namespace VMFramework::HomeLoom

#endif
