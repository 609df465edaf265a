#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "HandlerFixture.h"

namespace VMFramework::HomeLoom {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr char WASHER[] = R"({"message":"SUCCESS","data":{"version":"1","iconUrl":{"mid":"preload://washer.png"},
  "dpInfo":[{"os":"solenne","serverDpUri":"dp://washer"}],
  "ms":[{"label":{"label":"<st>","arguments":[{"n":"st","href":"/u","property":"p"}]}},
    {"order":1,"group":"upper","label":{"label":"Upper"}},
    {"order":2,"group":"upper","label":{"label":"<st>","arguments":[{"n":"st","href":"/u","property":"p"}]}}],
  "ma":[{"controlType":"ToggleSwitch","link":{"href":"/u"},"property":"p",
    "alternatives":[{"key":"a","type":"on"},{"key":"b","type":"off"}]}]}})";

class DeviceReportTest : public HandlerFixture {};

TEST_F(DeviceReportTest, AnEndpointTellsAllOfADevice) {
    parse("washer-vid", WASHER);
    auto info = infoOf("washer", "washer-vid", "oic.d.washer");
    info.device_name = "Washer";
    info.nick_name = "My washer";
    info.location_name = "Home";
    info.location_id = "location";
    info.room_name = "Bath";
    info.room_id = "room";
    info.core_device_type = "OCF";
    info.core_device_network_type = "WIFI";
    info.core_device_parent_device_id = "parent";
    info.core_device_icon_key = "key";
    info.core_device_icon_date = "date";
    info.core_device_animation_icon_url = "animation";
    info.core_device_activated_icon_url = "on";
    info.core_device_inactivated_icon_url = "off";
    info.core_device_disconnected_icon_url = "gone";
    handler->HandleDeviceInfo(info, {"/u"}, {"/capability/webrtc/main/0"});
    handler->FindDevice("washer")->SetControllableDevice(true);
    handler->OnResourceUpdateEvent({"washer", "/u", {{"p", "a", "String"}}});
    EXPECT_THAT(
        sendDeviceList(),
        ElementsAre(UnorderedElementsAre(
            Pair("device_id()", "washer"), Pair("device_name()", "Washer"), Pair("service_name()", "homeloom"),
            Pair("interface_type()", "homeloom-interfacetype"), Pair("device_type()", "homeloom-device"),
            Pair("sub_device_type()", "oic.d.washer"), Pair("nick", "My washer"), Pair("state_text", "a"),
            Pair("vid", "washer-vid"), Pair("location", "Home"), Pair("location_id", "location"), Pair("room", "Bath"),
            Pair("room_id", "room"), Pair("cloud_device_status", "0"), Pair("active_state", "0"),
            Pair("running_state", "false"), Pair("controllable", "1"), Pair("control_type", "ToggleSwitch"),
            Pair("solenne_server_dp_uri", "dp://washer"), Pair("action_state", ""), Pair("action_url", "/u"),
            Pair("context_value", R"({"uri":"/u","property":"p","value":"a"})"), Pair("icon_url", "washer.png"),
            Pair("subdevtype_enum", "10"), Pair("webrtc_support", "1"),
            Pair("sub_device_card_list_info",
                 R"([{"device_name":"Upper","state_text":"a","icon_url":"","active_state":false,"control_type":"",)"
                 R"("action_state":"","action_url":""}])"),
            Pair("num_of_sub_device_cards", "1"), Pair("core_device_type", "OCF"),
            Pair("core_device_network_type", "WIFI"), Pair("core_device_parent_device_id", "parent"),
            Pair("core_device_icon_key", "key"), Pair("core_device_icon_date", "date"),
            Pair("core_device_animation_icon_url", "animation"), Pair("core_device_activated_icon_url", "on"),
            Pair("core_device_inactivated_icon_url", "off"), Pair("core_device_disconnected_icon_url", "gone"))));
}

TEST_F(DeviceReportTest, CamerasAndRefrigeratorsTellMore) {
    struct {
        const char* id;
        const char* vid;
        const char* type;
        std::vector<std::string> uris;
        const char* notificationType;
        const char* notificationValue;
        const char* twoWayTalk;
        const char* insideView;
    } const cases[] = {
        {"camera",
         "vid",
         "oic.d.camera",
         {"/capability/soundSensor/0", "/capability/button/main/0"},
         "10",
         "8",
         "",
         ""},
        {"doorbell", "a-RING-b", "x.com.hl.d.doorbell", {}, "0", "0", "1", ""},
        {"fridge", "vid", "oic.d.refrigerator", {"/udo/contents/provider/vs/0"}, "", "", "", "1"},
        {"plain-fridge", "vid", "oic.d.refrigerator", {}, "", "", "", "0"},
        {"other-model", "sercomm_rc8335", "oic.d.camera", {"/capability/objectDetection/main/0"}, "4", "0", "", ""},
        {"light", "ring", "oic.d.light", {"/capability/button/0"}, "", "", "", ""},
        {"late-camera", "ring", "oic.d.light", {"/capability/button/0"}, "", "", "", ""}};
    for (const auto& c : cases) {
        add(c.id, c.vid, c.type, c.uris);
    }
    handler->HandleDeviceInfo(infoOf("late-camera", "ring", "oic.d.camera"), {}, {});
    addButtonCondition("camera", "/capability/button/main/0");
    addButtonCondition("doorbell", "/capability/button/0");  // not among its resources
    const auto reports = sendDeviceList();
    for (const auto& c : cases) {
        for (const auto& report : reports) {
            if (valueOf(report, "device_id()") == c.id) {
                EXPECT_EQ(c.notificationType, valueOf(report, "camera_notification_type")) << c.id;
                EXPECT_EQ(c.notificationValue, valueOf(report, "camera_notification_value")) << c.id;
                EXPECT_EQ(c.twoWayTalk, valueOf(report, "2waytalk_support")) << c.id;
                EXPECT_EQ(c.insideView, valueOf(report, "refrigerator_inside_view")) << c.id;
            }
        }
    }
    EXPECT_THAT(reports, SizeIs(std::size(cases)));

    // A notification that the agent can't tell counts as off.
    agent.fault("homeloom_client_is_app_launch_condition_added", simulator::Fault::fail(-5));
    EXPECT_EQ("0", valueOf(sendDeviceList().front(), "camera_notification_value"));
    agent.fault("homeloom_client_app_launch_condition_create", simulator::Fault::fail(-5));
    EXPECT_EQ("0", valueOf(sendDeviceList().front(), "camera_notification_value"));
    agent.clearFaults();
    handler->Quit();
    EXPECT_THAT(sendDeviceList(), IsEmpty());
}

TEST_F(DeviceReportTest, ReportsIconsAsTheyStand) {
    simulator::Device device;
    device.id = "washer";
    device.vid = "vid";
    device.types = {"oic.d.washer"};
    device.core.icons = R"({"on":"a"})";
    device.core.badgeIcons = R"(["b"])";
    agent.addDevice(device);
    const std::string icons = R"({"deviceId":"washer","icons":{"on":"a"},"possibleIcons":"","badgeIcons":["b"]})";
    const auto report = [this](const std::string& id) {
        handler->GetDeviceIcons(nullptr, id);
        const auto reports = takeNotifications();
        EXPECT_THAT(reports, SizeIs(1));
        return reports.empty() ? Report() : reports.front();
    };
    EXPECT_THAT(report("washer"),
                ElementsAre(Pair("()", "hl_get_device_icon_info"), Pair("get_device_icon_info_result", "true"),
                            Pair("device_icon_info", icons)));
    EXPECT_THAT(report(""),
                ElementsAre(Pair("()", "hl_get_device_icon_info"), Pair("get_device_icon_info_result", "true"),
                            Pair("device_icon_info", "[" + icons + "]")));
    agent.fault("homeloom_core_get_device_json_async", simulator::Fault::answer(-5));
    agent.fault("homeloom_core_get_device_list_json_async", simulator::Fault::answer(-5));
    EXPECT_THAT(report("washer"),
                ElementsAre(Pair("()", "hl_get_device_icon_info"), Pair("get_device_icon_info_result", "false")));
    EXPECT_THAT(report(""),
                ElementsAre(Pair("()", "hl_get_device_icon_info"), Pair("get_device_icon_info_result", "false")));
}

}  // namespace
}  // namespace VMFramework::HomeLoom
