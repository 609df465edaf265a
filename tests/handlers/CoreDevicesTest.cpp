// What the core device list tells of devices, whatever their details say.

#include <string>
#include <tuple>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Homeloom/CoreDevices/CoreDeviceHandler.h"
#include "handlers/HandlersTest.h"

using namespace VMFramework::HomeLoom;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class CoreDevices : public HandlersTest {
protected:
    CoreDevices() {
        constexpr char kDetails[] = R"({"dth":{"deviceNetworkType":"ZIGBEE"},"irOcf":{"parentDeviceId":"blaster"}})";
        core.SetParentDeviceIdGetter(CHLUtil::GetParentIdOfIRDevice);
        for (const auto& [id, type, details] : {std::tuple{"dth", "DTH", kDetails},
                                                {"ocf", "OCF", kDetails},
                                                {"ir", "IR_OCF", kDetails},
                                                {"odd", "DTH", R"({"dth":{"deviceNetworkType":{}}})"},
                                                {"null", "DTH", R"({"dth":null})"},
                                                {"bare", "DTH", "no JSON"},
                                                {"odd-ir", "IR_OCF", R"({"irOcf":{"parentDeviceId":[]}})"},
                                                {"null-ir", "IR_OCF", R"({"irOcf":null})"},
                                                {"bare-ir", "IR_OCF", ""}}) {
            agent.lists["GetCoreDeviceList"].push_back(
                {{{HOMELOOM_CORE_DEVICE_ID, id},
                  {HOMELOOM_CORE_DEVICE_NAME, "name of " + std::string(id)},
                  {HOMELOOM_CORE_DEVICE_TYPE, type},
                  {HOMELOOM_CORE_DEVICE_LOCATION_ID, "location"},
                  {HOMELOOM_CORE_DEVICE_ROOM_ID, "room"},
                  {HOMELOOM_CORE_DEVICE_PRESENTATION_ID, "presentation"},
                  {HOMELOOM_CORE_DEVICE_MANUFACTURER_NAME, "maker"},
                  {HOMELOOM_CORE_DEVICE_DETAILS, details},
                  {HOMELOOM_CORE_DEVICE_ICONS, R"({"animationIcon":"a","activatedIcon":"b","inactivatedIcon":"c",)"
                                               R"("disconnectedIcon":"d","iconKey":"e","lastUpdateDate":"f"})"}},
                 {}});
        }
    }

    CoreDeviceHandler core{agent};
};

}  // namespace

TEST_F(CoreDevices, AreKeptAsTheListTellsThem) {
    core.BuildCoreDeviceList();
    const auto devices = core.GetCoreDeviceInfo();
    ASSERT_THAT(devices, SizeIs(9));
    const auto& dth = devices.at("dth");
    EXPECT_EQ(dth.device_id + ", " + dth.device_name + ", " + dth.device_type + ", " + dth.location_id + ", " +
                  dth.room_id + ", " + dth.presentation_id + ", " + dth.manufacturer_name + ", " + dth.network_type,
              "dth, name of dth, DTH, location, room, presentation, maker, ZIGBEE");
    EXPECT_EQ(core.GetCoreDeviceNetworkType("dth"), "ZIGBEE");
    EXPECT_EQ(core.GetCoreDeviceType("ir"), "IR_OCF");
    for (const char* id : {"ocf", "odd", "null", "bare", "nobody"}) {
        EXPECT_EQ(core.GetCoreDeviceNetworkType(id), "") << id;
    }
    EXPECT_EQ(core.GetCoreDeviceType("nobody"), "");
    for (const auto& get : {&CoreDeviceHandler::GetCoreDeviceType, &CoreDeviceHandler::GetCoreDeviceNetworkType}) {
        try {
            (core.*get)("");
            FAIL() << "an empty id was taken";
        } catch (const CException& e) {
            EXPECT_EQ(e.GetErrorCode(), 4);
        }
    }
}

TEST_F(CoreDevices, HaveTypesAndIcons) {
    const auto types = core.GetCoreDeviceTypeList();
    const struct {
        const char* id;
        const char* networkType;
        const char* parent;
    } cases[] = {{"dth", "ZIGBEE", ""},    {"ocf", "OCF", ""},        {"ir", "IR_OCF", "blaster"},
                 {"odd", "DTH", ""},       {"null", "DTH", ""},       {"bare", "DTH", ""},
                 {"odd-ir", "IR_OCF", ""}, {"null-ir", "IR_OCF", ""}, {"bare-ir", "IR_OCF", ""}};
    ASSERT_THAT(types, SizeIs(std::size(cases)));
    for (const auto& [id, networkType, parent] : cases) {
        EXPECT_EQ(types.at(id).network_type, networkType) << id;
        EXPECT_EQ(types.at(id).parent_device_id, parent) << id;
    }
    const auto icons = core.GetCoreDeviceIconList();
    ASSERT_THAT(icons, SizeIs(9));
    const auto& icon = icons.at("ocf");
    EXPECT_EQ(icon.animation_icon + icon.activated_icon + icon.inactivated_icon + icon.disconnected_icon +
                  icon.icon_key + icon.last_update_date,
              "abcdef");
}

TEST_F(CoreDevices, GoBackToTheAgentWhateverHappens) {
    agent.FailOnce("GetCoreDeviceString", 8);
    core.BuildCoreDeviceList();
    EXPECT_THAT(core.GetCoreDeviceInfo(), SizeIs(1)) << "a field that fails ends the reading";
    agent.FailOnce("GetCoreDeviceString", 2);
    EXPECT_THAT(core.GetCoreDeviceIconList(), SizeIs(8)) << "a field that fails costs its device";
    agent.FailOnce("GetCoreDeviceString", 4);
    EXPECT_THAT(core.GetCoreDeviceTypeList(), SizeIs(8));

    agent.answers["GetCoreDeviceList"].ret = -5;  // with the list, as a failed call may
    core.BuildCoreDeviceList();
    EXPECT_THAT(core.GetCoreDeviceInfo(), SizeIs(1)) << "a list that can't be read changes nothing";
    EXPECT_THAT(core.GetCoreDeviceIconList(), IsEmpty());
    EXPECT_THAT(core.GetCoreDeviceTypeList(), IsEmpty());
    agent.answers.clear();
    core.Quit();
    core.BuildCoreDeviceList();
    EXPECT_THAT(core.GetCoreDeviceInfo(), SizeIs(1));
}
