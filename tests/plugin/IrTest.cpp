// A device that is reached by infrared: what the agent gets to register it, what the screen gets, and what is refused.

#include <string>
#include <tuple>
#include <utility>

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

    /// The arguments for a fan, but for one.
    static Desk::Fields With(const std::string& key, const std::string& value) {
        Desk::Fields arguments = {{"codeset", "1234"},         {"brand", "Norvane"},       {"device_type", "oic.d.fan"},
                                  {"display_name", "New One"}, {"parent_id", "tv-living"}, {"location_id", "home"},
                                  {"room_id", "living"}};
        arguments.set(key, value);
        return arguments;
    }

    Desk desk{Desk::apartmentWith({"tv-living", "ir-fan"})};
};

}  // namespace

TEST_F(Ir, ADeviceIsRegisteredAndShown) {
    const auto answer = desk.ask(kRequest, With("brand", "Norvane"));
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
    Desk::Fields arguments = With("device_type", "oic.d.airconditioner");
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
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"location_id", "", "location id empty!(error:4)"},
        {"codeset", "", "codeset is empty(error:4)"},
        {"brand", "", "brand is empty(error:4)"},
        {"device_type", "", "device_type is empty(error:4)"},
        {"display_name", "", "display_name is empty(error:4)"},
        {"parent_id", "", "parent_id is empty(error:4)"},
        {"room_id", "", "room_id is empty(error:4)"},
        {"codeset", "9999", "qsp_get_supported_keymap_hcodeset returned NULL!!(error:8)"},
        {"device_type", "oic.d.airconditioner", "mode not found in map!(error:2)"},
    };
    for (const auto& [key, value, complaint] : cases) {
        const auto request = framework::request(kRequest, With(key, value));
        EXPECT_TRUE(desk.log.waitFor(complaint)) << complaint;
        desk.settle();
        EXPECT_FALSE(desk.isAnswered(request)) << complaint;
    }
    EXPECT_EQ(desk.agent.callCount(kCreate), 0);
}

TEST_F(Ir, TheAgentsAnswerDecides) {
    const std::pair<Fault, std::string> cases[] = {
        {Fault::say(R"({"deviceId":"new"})"), "result=true codeset='1234' device_id='new'"},
        {Fault::say(R"({"deviceId":"new","errorCode":null})"), "result=true codeset='1234' device_id='new'"},
        {Fault::say(R"({"errorCode":"Busy"})"), "result=false codeset='1234'"},
        {Fault::say(R"({"errorCode":"Busy","deviceId":"half"})"), "result=false codeset='1234' device_id='half'"},
        {Fault::say(R"({"deviceId":null})"), "result=false codeset='1234'"},
        {Fault::say(R"({"deviceId":["new"]})"), "result=false codeset='1234'"},
        {Fault::say("{}"), "result=false codeset='1234'"},
        {Fault::say("[]"), "result=false codeset='1234'"},
        {Fault::say("no JSON"), "result=false codeset='1234'"},
        {Fault::say(""), "result=false codeset='1234'"},
        {Fault::say(std::string(100000, '[')), "result=false codeset='1234'"},
        {Fault::say(R"({"deviceId":")" + std::string(10 << 20, 'x')), "result=false codeset='1234'"},
        {Fault::fail(-5), "result=false codeset='1234'"},
    };
    for (const auto& [fault, answer] : cases) {
        desk.agent.fault(kCreate, fault);
        EXPECT_EQ(toText(*desk.ask(kRequest, With("brand", "Norvane"))), "notify hl_onboard_ir_device " + answer)
            << fault.text.substr(0, 100);
    }
}
