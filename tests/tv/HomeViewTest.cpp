#include <gmock/gmock.h>

#include "HomeView.h"
#include "JsonOutput.h"
#include "Settled.h"

using namespace homeloom::tv;

namespace {

Report list() {
    EndpointRecord room;
    room.deviceId = "home";
    room.deviceType = "homeloom-dummy";
    room.extraData = {{"location_id", "home"}, {"room_info", R"([{"room_id":"r1","room_name":"Kitchen"}])"}};
    EndpointRecord washer;
    washer.deviceId = "washer";
    washer.deviceType = "homeloom-device";
    washer.subDeviceType = "oic.d.washer";
    washer.extraData = {{"nick", "Washer"}, {"state_text", "Ready"}, {"active_state", 0}, {"action_state", "play"}};
    EndpointRecord scene;
    scene.deviceId = "s1";
    scene.interfaceType = "homeloom-scene";
    scene.extraData = {{"scene_json_data", R"({"name":"Good Night","locationId":"home"})"}};
    Report report;
    report.kind = Report::Kind::DeviceList;
    report.endpoints = {scene, room, washer};
    return report;
}

Report notify(const std::string& name, Fields properties) {
    Report report;
    report.name = name;
    report.properties = std::move(properties);
    return report;
}

TEST(HomeView, SortsAListAndFollowsStates) {
    HomeView home;
    home.apply(list());
    ASSERT_EQ(home.locations().size(), 1u);
    EXPECT_EQ(home.locations()[0].rooms[0].name, "Kitchen");
    EXPECT_EQ(home.scenes()[0].name, "Good Night");
    ASSERT_NE(home.device("washer"), nullptr);
    EXPECT_EQ(home.device("washer")->look(), "off");

    home.apply(
        notify("hl_device_state_updated",
               {{"device_id", "washer"}, {"state_text", "Washing"}, {"active_state", 1}, {"running_state", true}}));
    EXPECT_EQ(home.device("washer")->stateText(), "Washing");
    EXPECT_EQ(home.device("washer")->look(), "on, running");
    // Empty texts aren't sent: a key that is absent has become empty.
    EXPECT_EQ(home.device("washer")->mainAction(), "");
    // Those of a hub's devices are shorter: they don't tell of all.
    home.apply(notify("hl_device_state_updated",
                      {{"device_id", "washer"}, {"context_value", "Spin"}, {"num_of_sub_device_cards", 0}}));
    home.apply(notify("hl_device_state_updated", {{"device_id", "washer"}}));
    EXPECT_EQ(home.device("washer")->fields.text("context_value"), "Spin");
    home.apply(notify("hl_device_state_updated", {{"device_id", "washer"}, {"num_of_sub_device_cards", 0}}));
    EXPECT_EQ(home.device("washer")->fields.text("context_value"), "");
    home.apply(notify("hl_device_state_updated", {{"device_id", "stranger"}}));
    EXPECT_EQ(home.devices().size(), 1u);

    const auto names = [&home] {
        std::string all;
        for (const auto& scene : home.scenes()) {
            all += scene.name + " at " + scene.location + ";";
        }
        return all;
    };
    home.apply(notify(
        "hl_create_scene",
        {{"result", true}, {"location_id", "home"}, {"scene_id", "s0"}, {"scene_json", R"({"name":"Cinema"})"}}));
    EXPECT_EQ(names(), "Cinema at home;Good Night at home;");
    home.apply(
        notify("hl_update_scene", {{"result", true}, {"scene_id", "s1"}, {"scene_json", R"({"name":"Sleep"})"}}));
    home.apply(notify("hl_delete_scene", {{"result", false}, {"scene_id", "s0"}}));
    EXPECT_EQ(names(), "Cinema at home;Sleep at home;");
    home.apply(notify("hl_delete_scene", {{"result", true}, {"scene_id", "s0"}}));
    EXPECT_EQ(names(), "Sleep at home;");

    home.apply(notify("sign_in_state_changed", {{"is_sign_in", true}}));
    EXPECT_TRUE(home.isKnown());
    home.apply(notify("sign_in_state_changed", {{"is_sign_in", false}}));
    EXPECT_FALSE(home.isKnown());
    EXPECT_TRUE(home.devices().empty());
}

TEST(SettledStep, PutsTheDevicesOfAnEnergyServiceInOrder) {
    const auto settled = [](const std::string& devices) {
        SettledStep step;
        step.add(
            notify("hl_energy_info_updated", {{"result", true}, {"info", R"({"energyInfoJson":)" + devices + "}"}}));
        return step.take(HomeView());
    };
    EXPECT_EQ(settled(R"([{"device_id":"b"},{"device_id":"a"}])"), settled(R"([{"device_id":"a"},{"device_id":"b"}])"));
    EXPECT_NE(settled(R"([{"device_id":"b"}])"), settled(R"([{"device_id":"a"}])"));
}

TEST(JsonLine, KeepsOrderTypesAndRepeatedKeys) {
    // What is no UTF-8 would be no JSON.
    const Report report = notify("hl_x", {{"b", true}, {"a", 7}, {"t", "7 \"°\" \xff\xc3"}, {"a", "again"}});
    EXPECT_EQ(jsonLine(report),
              R"({"call":"notify","name":"hl_x","properties":{"b":true,"a":7,"t":"7 \"°\" ��","a":"again"}})");
    EXPECT_THAT(jsonLine(list()), ::testing::StartsWith(R"({"call":"device_list","endpoints":[{"interface_type":)"
                                                        R"("homeloom-scene","device_id":"s1","extra_data":)"));
}

}  // namespace
