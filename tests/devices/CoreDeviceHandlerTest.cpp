#include "Homeloom/CoreDevices/CoreDeviceHandler.h"
#include "Homeloom/Tessel/TesselHandler.h"

#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "HandlerFixture.h"

namespace VMFramework::HomeLoom {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class CoreDeviceHandlerTest : public HandlerFixture {
protected:
    CoreDeviceHandlerTest() {
        constexpr char DETAILS[] = R"({"dth":{"deviceNetworkType":"ZIGBEE"},"irOcf":{"parentDeviceId":"blaster"}})";
        core.SetParentDeviceIdGetter(CHLUtil::GetParentIdOfIRDevice);
        for (const auto& [id, type, details] : {std::tuple{"dth", "DTH", DETAILS},
                                                {"ocf", "OCF", DETAILS},
                                                {"ir", "IR_OCF", DETAILS},
                                                {"odd", "DTH", R"({"dth":{"deviceNetworkType":{}}})"},
                                                {"null", "DTH", R"({"dth":null})"},
                                                {"bare", "DTH", "no JSON"},
                                                {"odd-ir", "IR_OCF", R"({"irOcf":{"parentDeviceId":[]}})"},
                                                {"null-ir", "IR_OCF", R"({"irOcf":null})"},
                                                {"bare-ir", "IR_OCF", ""}}) {
            addCore(id, type, details);
        }
    }

    void addCore(const std::string& id, const std::string& type, const std::string& details) {
        simulator::Device device;
        device.id = id;
        device.name = "name of " + id;
        device.vid = "vid";
        device.types = {"oic.d.light"};
        device.location = "location";
        device.room = "room";
        device.core.type = type;
        device.core.details = details;
        device.core.presentationId = "presentation";
        device.core.manufacturerName = "maker";
        device.core.icons = R"({"animationIcon":"a","activatedIcon":"b","inactivatedIcon":"c","disconnectedIcon":"d",)"
                            R"("iconKey":"e","lastUpdateDate":"f"})";
        agent.addDevice(device);
    }

    CoreDeviceHandler core{TesselHandler::GetInstance()};
};

TEST_F(CoreDeviceHandlerTest, KeepsWhatTheListTells) {
    core.BuildCoreDeviceList();
    const auto devices = core.GetCoreDeviceInfo();
    ASSERT_THAT(devices, SizeIs(9));
    const auto& dth = devices.at("dth");
    EXPECT_EQ("dth, name of dth, DTH, location, room, presentation, maker, ZIGBEE",
              dth.device_id + ", " + dth.device_name + ", " + dth.device_type + ", " + dth.location_id + ", " +
                  dth.room_id + ", " + dth.presentation_id + ", " + dth.manufacturer_name + ", " + dth.network_type);
    EXPECT_EQ("ZIGBEE", core.GetCoreDeviceNetworkType("dth"));
    EXPECT_EQ("IR_OCF", core.GetCoreDeviceType("ir"));
    for (const char* id : {"ocf", "odd", "null", "bare", "nobody"}) {
        EXPECT_EQ("", core.GetCoreDeviceNetworkType(id)) << id;
    }
    EXPECT_EQ("", core.GetCoreDeviceType("nobody"));
    for (const auto& get : {&CoreDeviceHandler::GetCoreDeviceType, &CoreDeviceHandler::GetCoreDeviceNetworkType}) {
        try {
            (core.*get)("");
            FAIL() << "an empty id was taken";
        } catch (const CException& e) {
            EXPECT_EQ(4, e.GetErrorCode());
        }
    }
}

TEST_F(CoreDeviceHandlerTest, TellsTypesAndIcons) {
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
        EXPECT_EQ(networkType, types.at(id).network_type) << id;
        EXPECT_EQ(parent, types.at(id).parent_device_id) << id;
    }
    const auto icons = core.GetCoreDeviceIconList();
    ASSERT_THAT(icons, SizeIs(9));
    const auto& icon = icons.at("ocf");
    EXPECT_EQ("abcdef", icon.animation_icon + icon.activated_icon + icon.inactivated_icon + icon.disconnected_icon +
                            icon.icon_key + icon.last_update_date);
}

TEST_F(CoreDeviceHandlerTest, GivesEveryListBackWhateverHappens) {
    constexpr char GET_LIST[] = "homeloom_core_get_device_list_async";
    constexpr char GET_STRING[] = "homeloom_core_device_get_string";
    agent.fault(GET_STRING, simulator::Fault::fail(-5).after(8).times(1));
    core.BuildCoreDeviceList();
    EXPECT_THAT(core.GetCoreDeviceInfo(), SizeIs(1)) << "a field that fails ends the reading";
    agent.fault(GET_STRING, simulator::Fault::fail(-5).after(2).times(1));
    EXPECT_THAT(core.GetCoreDeviceIconList(), SizeIs(8)) << "a field that fails costs its device";
    agent.fault(GET_STRING, simulator::Fault::fail(-5).after(4).times(1));
    EXPECT_THAT(core.GetCoreDeviceTypeList(), SizeIs(8));

    agent.fault(GET_LIST, simulator::Fault::answer(-5));
    core.BuildCoreDeviceList();
    EXPECT_THAT(core.GetCoreDeviceInfo(), SizeIs(1)) << "a list that can't be read changes nothing";
    EXPECT_THAT(core.GetCoreDeviceIconList(), IsEmpty());
    EXPECT_THAT(core.GetCoreDeviceTypeList(), IsEmpty());
    agent.clearFaults();
    core.Quit();
    core.BuildCoreDeviceList();
    EXPECT_THAT(core.GetCoreDeviceInfo(), SizeIs(1));
    EXPECT_EQ(0, agent.holdings().records);
}

}  // namespace
}  // namespace VMFramework::HomeLoom
