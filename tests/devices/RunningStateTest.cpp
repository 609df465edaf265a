#include <string>

#include <gtest/gtest.h>

#include "Homeloom/Devices/DeviceStateChecker.h"

namespace VMFramework::HomeLoom {
namespace {

struct Case {
    const char* type;
    const char* uri;
    const char* property;
    const char* value;
    RunningState expected;
};

constexpr auto UNKNOWN = RUNNING_STATE_UNKNOWN;
constexpr auto STOPPED = RUNNING_STATE_STOPPED;
constexpr auto RUNNING = RUNNING_STATE_RUNNING;

constexpr char OPERATION[] = "/operational/state/vs/0";
constexpr char STATE[] = "x.com.norvane.da.state";
constexpr char POWER_URI[] = "/power/vs/0";
constexpr char POWER[] = "x.com.norvane.da.power";
constexpr char PLAYBACK[] = "/capability/mediaPlayback/0";
constexpr char PLAYBACK_MAIN[] = "/capability/mediaPlayback/main/0";
constexpr char MODES[] = "x.com.norvane.da.modes";

const Case CASES[] = {
    {"oic.d.washer", OPERATION, STATE, "Run", RUNNING},
    {"oic.d.washer", OPERATION, STATE, "run", STOPPED},
    {"oic.d.washer", OPERATION, "x.com.norvane.da.remainingTime", "Run", UNKNOWN},
    {"oic.d.washer", "/operational/state/vs/1", STATE, "Run", UNKNOWN},
    {"oic.d.dryer", OPERATION, STATE, "Run", RUNNING},
    {"oic.d.oven", OPERATION, STATE, "Pause", STOPPED},
    {"x.com.hl.d.garmentcareshoes", OPERATION, STATE, "Run", RUNNING},
    {"x.com.hl.d.steamcloset", OPERATION, STATE, "Run", RUNNING},
    // Any URI of a rule goes with any of its properties.
    {"oic.d.dishwasher", OPERATION, "operatingState", "running", RUNNING},
    {"oic.d.dishwasher", "/capability/norvanece.dishwasherOperation/main/0", STATE, "ready", STOPPED},
    {"oic.d.airconditioner", "/power/zone2/vs/0", POWER, "On", RUNNING},
    {"oic.d.airconditioner", "/power/dhw/vs/0", POWER, "on", STOPPED},
    {"oic.d.airpurifier", POWER_URI, POWER, "On", RUNNING},
    {"oic.d.airpurifier", "/power/zone2/vs/0", POWER, "On", UNKNOWN},
    {"oic.d.hood", POWER_URI, POWER, "Off", STOPPED},
    {"oic.d.cooktop", POWER_URI, POWER, "On", RUNNING},
    {"oic.d.cooktop", "/cooktop/status/vs/0", "power", "on", RUNNING},
    {"oic.d.microwave", "/oven/vs/0", STATE, "Warming", RUNNING},
    {"oic.d.microwave", "/oven/vs/0", STATE, "Ready", STOPPED},
    {"oic.d.microoven", "/oven/vs/0", STATE, "Warming", UNKNOWN},
    {"oic.d.fan", "/capability/switch/0", "value", "true", RUNNING},
    {"oic.d.fan", "/capability/switch/0", "value", "True", STOPPED},
    {"oic.d.tv", "/nvn/tv/contentinfo", "x.com.norvane.tv.subtitle", "wall", RUNNING},
    {"oic.d.networkaudio", PLAYBACK, "modes", R"(["play"])", RUNNING},
    {"oic.d.networkaudio", PLAYBACK_MAIN, "modes", R"(["playing"])", STOPPED},
    {"oic.d.networkaudio", PLAYBACK, "modes", "play", UNKNOWN},
    {"oic.d.networkaudio", PLAYBACK, "modes", R"([["play"]])", UNKNOWN},
    {"oic.d.networkaudio", PLAYBACK, "status", R"(["play"])", UNKNOWN},
    {"x.com.hl.d.networkaudio", "/capability/musicPlayer", "status", R"(["playing"])", RUNNING},
    {"x.com.hl.d.networkaudio", PLAYBACK_MAIN, "modes", R"(["paused"])", STOPPED},
    {"oic.d.robotcleaner", "/mode/vs/0", MODES, R"(["Power_On","Control_Homing"])", RUNNING},
    {"oic.d.robotcleaner", "/mode/vs/0", MODES, R"(["Control_Cleaning","Control_Idle"])", STOPPED},
    {"oic.d.robotcleaner", "/mode/vs/0", MODES, R"(["Control_Cleaning"])", UNKNOWN},
    {"oic.d.light", POWER_URI, POWER, "On", UNKNOWN},
};

TEST(RunningStateTest, IsJudgedByTypeUriPropertyAndValue) {
    for (const auto& [type, uri, property, value, expected] : CASES) {
        EXPECT_EQ(expected, DeviceStateChecker::GetRunningState({type, uri, property, value}))
            << type << " " << uri << " " << property << " " << value;
    }
}

}  // namespace
}  // namespace VMFramework::HomeLoom
