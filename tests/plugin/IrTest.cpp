// A device that is reached by infrared: what the agent gets to register it, what the screen gets, and what is refused.

#include <string>

#include <gmock/gmock.h>

#include "desktop/IrKeyMaps.h"
#include "simulator/Fault.h"
#include "support/Desk.h"
#include "support/Screen.h"

namespace framework = homeloom::desktop::framework;
using simulator::Fault;
using testing::ElementsAre;

namespace {

constexpr char kRequest[] = "hl_onboard_ir_device";
constexpr char kCreate[] = "homeloom_core_create_ir_device";

class Ir : public testing::Test {
protected:
    Ir() {
        desk.startAndShow();
        desk.settle();
        desk.mark();
    }

    static Desk::Fields Arguments(const std::string& deviceType) {
        return {{"codeset", "1234"},         {"brand", "Norvane"},       {"device_type", deviceType},
                {"display_name", "New One"}, {"parent_id", "tv-living"}, {"location_id", "home"},
                {"room_id", "living"}};
    }
    /// The arguments without the one.
    static Desk::Fields Without(const std::string& key) {
        Desk::Fields fields;
        for (const auto& field : Arguments("oic.d.fan")) {
            if (field.key != key) {
                fields.add(field.key, field.value);
            }
        }
        return fields;
    }

    Desk desk{Desk::apartmentWith({"tv-living", "ir-fan"})};
};

}  // namespace

TEST_F(Ir, ADeviceIsRegisteredAndShown) {
    const auto answer = desk.ask(kRequest, Arguments("oic.d.fan"));
    const std::string id = answer->properties.text("device_id");
    EXPECT_EQ(toText(*answer), "notify hl_onboard_ir_device result=true codeset='1234' device_id='" + id + "'");
    EXPECT_THAT(
        desk.agent.calls().at(kCreate).arguments,
        ElementsAre("home",
                    R"({"ocfDeviceType":"oic.d.fan","irCodeId":"1234","parentDeviceId":"tv-living","label":"New One",)"
                    R"("brandName":"Norvane","locationId":"home","roomId":"living","mnId":"HomeLoom","functionCodes":{)"
                    R"("statelessPowerToggleButton.powerToggle":"10","statelessPowerButton.powerOff":"11",)"
                    R"("statelessPowerButton.powerOn":"12","statelessCustomButton.fanspeed":"76",)"
                    R"("statelessFanspeedButton.fanspeedUp":"13","statelessFanspeedButton.fanspeedDown":"14"},)"
                    R"("metadata":{"irSensor":"Tx","vendor":"UEI","deviceIntegrationType":"IR_OCF",)"
                    R"("parentOcfDeviceType":"oic.d.tv"}})"));
    EXPECT_EQ(desk.waitFor("the new device", [&](const Screen& shown) { return shown.has(id); }).text(id, "nick"),
              "New One");
}

TEST_F(Ir, AnAirConditionerBringsItsState) {
    Desk::Fields arguments = Arguments("oic.d.airconditioner");
    arguments.add("aircon_state", R"({"currentMode":"dry","currentPower":"on","currentTemperature":"23","unit":"C",)"
                                  R"("availTemperatures":["18","30"],"availModes":["dry"],"availFanSpeeds":["low"],)"
                                  R"("availPowers":["single"]})");
    arguments.set("codeset", "2200");
    EXPECT_TRUE(desk.ask(kRequest, arguments)->properties.flag("result"));
    EXPECT_THAT(
        desk.agent.calls().at(kCreate).arguments.at(1),
        testing::HasSubstr(R"("mnId":"HomeLoom","acState":{"coolingSetpoint":23,"mode":"DEHUMI","powerState":"OFF",)"
                           R"("windspeed":"MEDIUM","maxTemp":30,"minTemp":18,"unit":"C"},"functionCodes":{)"
                           R"("switch.on":{"powerState":"ON"},"switch.off":{"powerState":"OFF"},)"
                           R"("airConditionerMode.dry":{"mode":"DEHUMI"},)"
                           R"("airConditionerFanMode.low":{"windSpeed":"LOW"},)"
                           R"("thermostatCoolingSetpoint.setCoolingSetpoint":{"fixedTargetTemperature":"0"},)"
                           R"("statelessTemperatureButton.temperatureDown":"3",)"
                           R"("statelessTemperatureButton.temperatureUp":"2",)"
                           R"("statelessFanspeedButton.fanspeedUp":"78"},"metadata":)"));
}

TEST_F(Ir, ARequestThatSaysTooLittleEndsWithoutAnAnswer) {
    Desk::Fields unknown = Without("codeset");
    unknown.add("codeset", "9999");
    Desk::Fields wordless = Arguments("oic.d.airconditioner");
    const std::pair<Desk::Fields, const char*> cases[] = {
        {Without("location_id"), "location id empty!(error:4)"},
        {Without("codeset"), "codeset is empty(error:4)"},
        {Without("brand"), "brand is empty(error:4)"},
        {Without("device_type"), "device_type is empty(error:4)"},
        {Without("display_name"), "display_name is empty(error:4)"},
        {Without("parent_id"), "parent_id is empty(error:4)"},
        {Without("room_id"), "room_id is empty(error:4)"},
        {unknown, "qsp_get_supported_keymap_hcodeset returned NULL!!(error:8)"},
        {wordless, "mode not found in map!(error:2)"},
    };
    for (const auto& [arguments, complaint] : cases) {
        const auto request = framework::request(kRequest, arguments);
        EXPECT_TRUE(desk.log.waitFor(complaint)) << complaint;
        desk.settle();
        EXPECT_FALSE(desk.isAnswered(request)) << complaint;
    }
    EXPECT_EQ(desk.agent.callCount(kCreate), 0);
}

TEST_F(Ir, TheAgentsAnswerDecides) {
    const std::string deep(100000, '[');
    const std::string large = R"({"deviceId":")" + std::string(10 << 20, 'x');
    const struct {
        Fault fault;
        bool result;
        const char* deviceId;
    } cases[] = {
        {Fault::say(R"({"deviceId":"new"})"), true, "new"},
        {Fault::say(R"({"deviceId":"new","errorCode":null})"), true, "new"},
        {Fault::say(R"({"errorCode":"Busy"})"), false, ""},
        {Fault::say(R"({"errorCode":"Busy","deviceId":"half"})"), false, "half"},
        {Fault::say(R"({"deviceId":null})"), false, ""},
        {Fault::say(R"({"deviceId":["new"]})"), false, ""},
        {Fault::say("{}"), false, ""},
        {Fault::say("[]"), false, ""},
        {Fault::say("no JSON"), false, ""},
        {Fault::say(""), false, ""},
        {Fault::say(deep), false, ""},
        {Fault::say(large), false, ""},
        {Fault::fail(-5), false, ""},
    };
    for (const auto& [fault, result, deviceId] : cases) {
        desk.agent.fault(kCreate, fault);
        const auto answer = desk.ask(kRequest, Arguments("oic.d.fan"));
        EXPECT_EQ(answer->properties.flag("result"), result) << fault.text.substr(0, 100);
        EXPECT_EQ(answer->properties.text("codeset"), "1234");
        EXPECT_EQ(answer->properties.text("device_id"), deviceId) << fault.text.substr(0, 100);
    }
}
