// The body that registers an infrared device: function codes by device type and key map, the air conditioner's state,
// and what is refused.

#include <set>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <gtest/gtest.h>

#include "Common/CException.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/IR/CIROnboardingInfo.h"
#include "desktop/IrKeyMaps.h"

using namespace VMFramework::HomeLoom;
using VMFramework::json::JsonValue;
namespace ir = homeloom::desktop::ir;

namespace {

constexpr char kAirConditioner[] = "oic.d.airconditioner";
constexpr char kState[] = R"({"currentMode":"cool","currentPower":"on","availPowers":[],"availModes":[]})";
constexpr char kSetpoint[] = R"("thermostatCoolingSetpoint.setCoolingSetpoint":{"fixedTargetTemperature":"0"})";

/// The body for a device of that type, with a code set of these keys.
JsonValue Body(const std::string& deviceType, const std::string& keyMap, const std::string& state = "") {
    ir::setKeyMap("set", keyMap);
    const auto list = IPropertyListHelper::Create();
    for (const char* key : {"brand", "display_name", "parent_id", "location_id", "room_id"}) {
        list->PushStringData(key, key);
    }
    list->PushStringData("codeset", "set");
    list->PushStringData("device_type", deviceType);
    list->PushStringData("aircon_state", state);
    return JsonValue::Create(CIrOnboardingInfo(list).GenerateRequestBody());
}

std::string FunctionCodes(const std::string& deviceType, const std::string& keyMap, const std::string& state = "") {
    return JsonValue(Body(deviceType, keyMap, state)["functionCodes"]).toString();
}

std::string RefusalOf(const std::string& state) {
    try {
        Body(kAirConditioner, "", state);
        return "none";
    } catch (const CException& e) {
        return e.what();
    }
}

}  // namespace

TEST(IrOnboardingInfo, FunctionCodesFollowTheKeyMap) {
    const std::string all(100, '1');
    const std::string humidifier =
        R"({"statelessPowerToggleButton.powerToggle":"10","statelessPowerButton.powerOff":"11",)"
        R"("statelessPowerButton.powerOn":"12","statelessFanspeedModeButton.changeMode":"76",)"
        R"("statelessFanspeedButton.fanspeedUp":"13","statelessFanspeedButton.fanspeedDown":"14"})";
    const std::string toggle = R"({"statelessPowerToggleButton.powerToggle":"10"})";
    const struct {
        const char* deviceType;
        std::string keyMap, codes;
    } cases[] = {
        {"x.com.hl.d.humidifier", all, humidifier},
        {"oic.d.airpurifier", all, humidifier},
        {"oic.d.robotcleaner", all,
         R"({"statelessPowerToggleButton.powerToggle":"10","statelessRobotCleanerToggleButton.actionToggle":"39",)"
         R"("statelessRobotCleanerHomeButton.home":"28"})"},
        {"oic.d.light", all, "{}"},
        {"oic.d.fan", ir::keyMapOf({10, 14}),
         R"({"statelessPowerToggleButton.powerToggle":"10","statelessFanspeedButton.fanspeedDown":"14"})"},
        {"oic.d.airpurifier", "00000000001", toggle},  // the map may be shorter than the numbers
        {"oic.d.airpurifier", "0000000000", "{}"},
        {"oic.d.robotcleaner", "", "{}"},
        {"oic.d.robotcleaner", std::string(100, 'x'), "{}"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(FunctionCodes(row.deviceType, row.keyMap), row.codes) << row.deviceType << " " << row.keyMap;
    }
}

TEST(IrOnboardingInfo, AnAirConditionerHasCommandsAndKeys) {
    const std::string setpoint = kSetpoint;
    const std::string down = R"("statelessFanspeedButton.fanspeedDown":"79")";
    const std::string up = R"("statelessFanspeedButton.fanspeedUp":"78")";
    const struct {
        std::set<unsigned> keys;
        std::string codes;
    } cases[] = {
        {{}, ""},
        {{2, 3}, R"("statelessTemperatureButton.temperatureDown":"3","statelessTemperatureButton.temperatureUp":"2")"},
        {{5}, down + "," + up},  // one key stands in for both
        {{78}, up},
        {{79}, down},
    };
    for (const auto& [keys, codes] : cases) {
        const std::string all = "{" + setpoint + (codes.empty() ? "" : "," + codes) + "}";
        EXPECT_EQ(FunctionCodes(kAirConditioner, ir::keyMapOf(keys), kState), all);
    }
    EXPECT_EQ(
        FunctionCodes(kAirConditioner, "",
                      R"({"currentMode":"auto","currentPower":"on","availPowers":["off","on"],)"
                      R"("availModes":["auto","cool","dry","fan","heat"],"availFanSpeeds":["high","low","medium"]})"),
        R"({"switch.off":{"powerState":"OFF"},"switch.on":{"powerState":"ON"},)"
        R"("airConditionerMode.auto":{"mode":"AUTO"},"airConditionerMode.cool":{"mode":"COLD"},)"
        R"("airConditionerMode.dry":{"mode":"DEHUMI"},"airConditionerMode.fanOnly":{"mode":"VENT"},)"
        R"("airConditionerMode.heat":{"mode":"HEAT"},"airConditionerFanMode.high":{"windSpeed":"HIGH"},)"
        R"("airConditionerFanMode.low":{"windSpeed":"LOW"},"airConditionerFanMode.medium":{"windSpeed":"MEDIUM"},)" +
            setpoint + "}");
}

TEST(IrOnboardingInfo, TheStateHasDefaultsForWhatIsNotThere) {
    const struct {
        const char *members, *unit;
        int setpoint, least, most;
    } cases[] = {
        {"", "", 24, 0, 0},
        {R"(,"availTemperatures":[],"unit":"C")", "C", 24, 0, 0},
        {R"(,"availTemperatures":["16","18",30],"unit":"F")", "F", 24, 16, 30},
        {R"(,"availTemperatures":[21])", "", 24, 21, 21},
        {R"(,"currentTemperature":{},"availTemperatures":{"0":1},"unit":[])", "", 24, 0, 0},
        {R"(,"currentTemperature":"99999999999")", "", 24, 0, 0},
        {R"(,"currentTemperature":27.5)", "", 27, 0, 0},
    };
    for (const auto& row : cases) {
        const auto body =
            Body(kAirConditioner, "", R"({"currentMode":"heat","currentPower":"on")" + std::string(row.members) + "}");
        EXPECT_EQ(JsonValue(body["acState"]).toString(),
                  R"({"coolingSetpoint":)" + std::to_string(row.setpoint) +
                      R"(,"mode":"HEAT","powerState":"ON","windspeed":"MEDIUM","maxTemp":)" + std::to_string(row.most) +
                      R"(,"minTemp":)" + std::to_string(row.least) + R"(,"unit":")" + row.unit + "\"}");
    }
}

TEST(IrOnboardingInfo, AnAirConditionersUnknownWordIsRefused) {
    const std::string mode = "mode not found in map!(error:2)";
    const std::string power = "power state not found in map!(error:2)";
    const std::pair<const char*, std::string> cases[] = {
        {"no JSON", mode},
        {R"({"currentMode":"freeze","currentPower":"on"})", mode},
        {R"({"currentMode":"cool"})", power},
        {R"({"currentMode":"cool","currentPower":"on","availPowers":["on","standby"]})", power},
        {R"({"currentMode":"cool","currentPower":"on","availModes":["cool",{}]})", mode},
        {R"({"currentMode":"cool","currentPower":"on","availFanSpeeds":["low","turbo"]})",
         "fan speed not found in map!(error:2)"},
        {R"({"currentMode":"cool","currentPower":"on","availModes":"cool"})", "none"},
    };
    // Twice: a look-up that fails leaves no entry behind.
    for (int round = 0; round < 2; ++round) {
        for (const auto& [state, complaint] : cases) {
            EXPECT_EQ(RefusalOf(state), complaint) << state;
        }
    }
}
