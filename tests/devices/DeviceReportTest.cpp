#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "HandlerFixture.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "support/Screen.h"

namespace VMFramework::HomeLoom {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr char WASHER[] = R"({"message":"SUCCESS","data":{"version":"1","iconUrl":{"mid":"preload://washer.png"},
  "dpInfo":[{"os":"solenne","serverDpUri":"dp://washer"}],
  "ms":[{"label":{"label":"<st>","arguments":[{"n":"st","href":"/u","property":"p"}]}},
    {"order":1,"group":"upper","label":{"label":"Upper"}},
    {"order":2,"group":"upper","label":{"label":"<st>","arguments":[{"n":"st","href":"/upper","property":"p"}]}}],
  "ma":[{"controlType":"ToggleSwitch","link":{"href":"/u"},"property":"p",
    "alternatives":[{"key":"a","type":"on"},{"key":"b","type":"off"}]}]}})";

class DeviceReportTest : public HandlerFixture {};

TEST_F(DeviceReportTest, AnEndpointTellsAllOfADevice) {
    parse("washer-vid", WASHER);
    const Device::_deviceInfo info{
        "washer",    "Washer",   "washer-vid", "oic.d.washer", "Home", "Bath", DEVICE_STATUS_CONNECTED,
        "My washer", "location", "room",       "prefix",       "OCF",  "WIFI", "parent",
        "animation", "on",       "off",        "gone",         "key",  "date"};
    handler->HandleDeviceInfo(info, {"/u", "/upper"}, {"/capability/webrtc/main/0"});
    handler->FindDevice("washer")->SetControllableDevice(true);
    handler->OnResourceUpdateEvent({"washer", "/upper", {{"p", "b", "String"}}});
    handler->OnResourceUpdateEvent({"washer", "/u", {{"p", "a", "String"}}});
    const std::string context = R"({"uri":"/u","property":"p","value":"a"})";
    EXPECT_EQ(context, takeNotifications().back()->properties.text("context_value")) << "of the state, not of a card";
    handler->UpdateStateText();
    const auto list = sendDeviceList();
    ASSERT_THAT(list->endpoints, SizeIs(1));
    const auto& endpoint = list->endpoints.front();
    EXPECT_EQ("washer", endpoint.deviceId);
    EXPECT_EQ("Washer", endpoint.deviceName);
    EXPECT_EQ("homeloom", endpoint.serviceName);
    EXPECT_EQ("homeloom-interfacetype", endpoint.interfaceType);
    EXPECT_EQ("homeloom-device", endpoint.deviceType);
    EXPECT_EQ("oic.d.washer", endpoint.subDeviceType);
    EXPECT_EQ(
        "nick='My washer' state_text='a' vid='washer-vid' location='Home' location_id='location' room='Bath' "
        "room_id='room' cloud_device_status=0 active_state=0 running_state=false controllable=1 "
        "control_type='ToggleSwitch' solenne_server_dp_uri='dp://washer' action_state='' action_url='/u' "
        "context_value='" +
            context +
            "' icon_url='washer.png' subdevtype_enum=10 webrtc_support=1 "
            "sub_device_card_list_info='[{\"device_name\":\"Upper\","
            "\"state_text\":\"b\",\"icon_url\":\"\",\"active_state\":false,\"control_type\":\"\","
            "\"action_state\":\"\",\"action_url\":\"\"}]' num_of_sub_device_cards=1 core_device_type='OCF' "
            "core_device_network_type='WIFI' core_device_parent_device_id='parent' core_device_icon_key='key' "
            "core_device_icon_date='date' core_device_animation_icon_url='animation' "
            "core_device_activated_icon_url='on' core_device_inactivated_icon_url='off' "
            "core_device_disconnected_icon_url='gone'",
        toText(endpoint.extraData));
}

TEST_F(DeviceReportTest, CamerasAndRefrigeratorsTellMore) {
    const struct {
        const char* id;
        const char* vid;
        const char* type;
        std::vector<std::string> uris;
        const char* more;
    } cases[] = {{"camera",
                  "vid",
                  "oic.d.camera",
                  {"/capability/soundSensor/0", "/capability/button/main/0"},
                  "camera_notification_type=10 camera_notification_value=8"},
                 {"doorbell",
                  "a-RING-b",
                  "x.com.hl.d.doorbell",
                  {},
                  "camera_notification_type=0 camera_notification_value=0 2waytalk_support=1"},
                 {"other-model",
                  "sercomm_rc8335",
                  "oic.d.camera",
                  {"/capability/objectDetection/main/0"},
                  "camera_notification_type=4 camera_notification_value=0"},
                 {"fridge", "vid", "oic.d.refrigerator", {"/udo/contents/provider/vs/0"}, "refrigerator_inside_view=1"},
                 {"plain-fridge", "vid", "oic.d.refrigerator", {}, "refrigerator_inside_view=0"},
                 {"light", "ring", "oic.d.light", {"/capability/button/0"}, ""},
                 {"late-camera", "ring", "oic.d.light", {"/capability/button/0"}, ""}};
    for (const auto& c : cases) {
        add(c.id, c.vid, c.type, c.uris);
    }
    handler->HandleDeviceInfo(infoOf("late-camera", "ring", "oic.d.camera"), {}, {});
    for (const char* id : {"camera", "doorbell"}) {  // the doorbell hasn't the resource
        std::dynamic_pointer_cast<CameraDevice>(handler->FindDevice(id))->SetCameraNotification(nullptr, 8);
    }
    const auto moreOf = [](const ReportPtr& list, const std::string& id) {
        homeloom::desktop::Fields more;
        for (const auto& [key, value] : list->endpoint(id)->extraData) {
            if (key.find("camera_") == 0 || key == "2waytalk_support" || key == "refrigerator_inside_view") {
                more.add(key, value);
            }
        }
        return toText(more);
    };
    const auto list = sendDeviceList();
    for (const auto& c : cases) {
        EXPECT_EQ(c.more, moreOf(list, c.id)) << c.id;
    }
    EXPECT_THAT(list->endpoints, SizeIs(std::size(cases)));

    // A notification that the agent can't tell counts as off.
    for (const char* function :
         {"homeloom_client_is_app_launch_condition_added", "homeloom_client_app_launch_condition_create"}) {
        agent.fault(function, simulator::Fault::fail(-5));
        EXPECT_EQ("camera_notification_type=10 camera_notification_value=0", moreOf(sendDeviceList(), "camera"));
        agent.clearFaults();
    }
    handler->Quit();
    EXPECT_THAT(sendDeviceList()->endpoints, IsEmpty());
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
    const std::string prefix = "notify hl_get_device_icon_info get_device_icon_info_result=";
    const auto report = [this](const std::string& id) {
        handler->GetDeviceIcons(nullptr, id);
        const auto reports = takeNotifications();
        return reports.size() == 1 ? toText(*reports.front()) : "";
    };
    EXPECT_EQ(prefix + "true device_icon_info='" + icons + "'", report("washer"));
    EXPECT_EQ(prefix + "true device_icon_info='[" + icons + "]'", report(""));
    agent.fault("homeloom_core_get_device_json_async", simulator::Fault::answer(-5));
    agent.fault("homeloom_core_get_device_list_json_async", simulator::Fault::answer(-5));
    EXPECT_EQ(prefix + "false", report("washer"));
    EXPECT_EQ(prefix + "false", report(""));
}

}  // namespace
}  // namespace VMFramework::HomeLoom
