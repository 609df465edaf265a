// Every request by its name: the answer or the silence with everything in place, without the agent, and signed out.

#include <string>
#include <variant>

#include <gmock/gmock.h>

#include "desktop/Framework.h"
#include "support/Desk.h"
#include "support/Screen.h"

namespace framework = homeloom::desktop::framework;
using testing::StartsWith;

namespace {

using Value = homeloom::desktop::Value;

// No answer.
constexpr char kSilence[] = "";
// The same answer as with everything in place, but for its beginning: "NAME KEY=false".
constexpr char kFails[] = "=false";

struct Row {
    const char* name;
    Desk::Fields arguments;
    const char* answer;  // the beginning of the line
    const char* withoutAgent;
    const char* signedOut;
};

const Value kHome = "home";

const Row kRows[] = {
    // Guarded by the agent's connection.
    {"hl_create_room",
     {{"location_id", kHome}, {"room_name", "Attic"}},
     "notify hl_create_room_result create_room_result=true location_id='home' room_id='",
     kSilence,
     kFails},
    {"hl_create_room", {{"location_id", kHome}}, kSilence, kSilence, kSilence},
    {"hl_remove_room",
     {{"location_id", kHome}, {"room_id", "nowhere"}},
     "notify hl_remove_room_result remove_room_result=false location_id='home' room_id='nowhere'",
     kSilence,
     kFails},
    {"hl_change_room_name",
     {{"location_id", kHome}, {"room_id", "kitchen"}, {"room_name", "Galley"}},
     "notify hl_change_room_name_result change_room_name_result=true location_id='home' room_id='kitchen'",
     kSilence,
     kFails},
    {"hl_move_devices",
     {{"devices_size", 2}, {"dev_ids", "washer"}, {"location_id", kHome}, {"room_id", "kitchen"}},
     "notify hl_move_devices move_devices_result=false dev_ids='washer' devices_size=2",
     kSilence,
     kFails},
    {"hl_move_devices",
     {{"devices_size", 0}, {"location_id", kHome}, {"room_id", "kitchen"}},
     "notify hl_move_devices move_devices_result=false devices_size=0",
     kSilence,
     kFails},
    {"hl_delete_device",
     {{"device_id", "nobody"}},
     "notify hl_delete_device result=false device_id='nobody'",
     kSilence,
     kFails},
    {"hl_get_device_icon_info",
     {{"device_id", "washer"}},
     "notify hl_get_device_icon_info get_device_icon_info_result=true device_icon_info='{",
     kSilence,
     kFails},
    {"hl_execute_scene",
     {{"location_id", kHome}, {"scene_id", "movie-time"}},
     "notify hl_execute_scene result=true location_id='home' scene_id='movie-time' result_value='{",
     kSilence,
     kFails},
    {"hl_create_scene",
     {{"location_id", kHome}, {"scene_json", "no JSON"}},
     "notify hl_create_scene result=false location_id='home'",
     kSilence,
     kFails},
    {"hl_update_scene",
     {{"location_id", kHome}, {"scene_id", "nothing"}, {"scene_json", "{}"}},
     "notify hl_update_scene result=false location_id='home'",
     kSilence,
     kFails},
    {"hl_delete_scene",
     {{"location_id", kHome}, {"scene_id", "nothing"}},
     "notify hl_delete_scene result=false location_id='home'",
     kSilence,
     kFails},
    {"hl_get_scene_icon_info", {}, "notify hl_get_scene_icon_info result=true scene_icon_info='", kSilence, kFails},
    {"hl_update_routine_enable_status",
     {{"location_id", kHome}, {"routine_id", "night-watch"}, {"enable", true}},
     "notify hl_update_routine_enable_status result=true result_value='",
     kSilence,
     kFails},
    {"hl_start_hub_device_discovery",
     {{"hl_hub_di", "tv-hub"}, {"hl_hub_discovery_timeout", -1}},
     kSilence,
     kSilence,
     kSilence},
    {"hl_start_hub_device_discovery",
     {{"hl_hub_di", "tv-hub"}, {"hl_hub_discovery_timeout", 0}},
     "result hl_start_hub_device_discovery result=true hl_hub_di='tv-hub'",
     kSilence,
     kFails},
    {"hl_stop_hub_device_discovery",
     {{"hl_hub_di", "tv-hub"}},
     "result hl_stop_hub_device_discovery result=true hl_hub_di='tv-hub'",
     kSilence,
     kFails},
    {"hl_onboard_ir_device",
     {{"codeset", "1234"},
      {"brand", "Norvane"},
      {"device_type", "oic.d.fan"},
      {"display_name", "Fan"},
      {"parent_id", "nobody"},
      {"location_id", kHome},
      {"room_id", "living"}},
     "notify hl_onboard_ir_device result=false codeset='1234'",
     kSilence,
     kFails},
    {"hl_onboard_ir_device", {{"location_id", kHome}}, kSilence, kSilence, kSilence},
    {"create_locksmith_key_value",
     {{"locksmith_key", "k"}, {"locksmith_value", "v"}},
     "notify create_locksmith_key_value result=true locksmith_info_json='",
     kSilence,
     kFails},
    {"update_locksmith_key_value",
     {{"locksmith_key", "k"}, {"locksmith_value", "w"}},
     "notify update_locksmith_key_value result=true locksmith_info_json='",
     kSilence,
     kFails},
    {"get_locksmith_key_value",
     {{"locksmith_key", "other"}},
     "notify get_locksmith_key_value result=false",
     kSilence,
     kFails},
    {"delete_locksmith_key_value",
     {{"locksmith_key", "k"}},
     "notify delete_locksmith_key_value result=true",
     kSilence,
     kFails},
    {"set_third_party_notification_status",
     {{"block_device_ids", "no JSON"}},
     "notify set_third_party_notification_status result=false",
     kSilence,
     kFails},
    {"set_third_party_notification_status",
     {{"block_device_ids", "[]"}},
     "notify set_third_party_notification_status result=true",
     kSilence,
     kFails},
    {"get_third_party_notification", {}, "result get_third_party_notification result=", kSilence, kFails},
    {"set_third_party_notification",
     {{"push_provider", "p"}, {"push_reg_id", "r"}, {"push_app_id", "a"}, {"locale", "en"}},
     "result set_third_party_notification result=true",
     kSilence,
     kFails},
    // Guarded by a signed-in user.
    {"hl_get_ring_doorbell_url",
     {{"device_id", "washer"}},
     "notify hl_get_ring_doorbell_url device_id='washer'",
     "notify hl_get_ring_doorbell_url device_id='washer'",
     kSilence},
    {"hl_do_main_action",
     {{"device_id", "nobody"}},
     "result hl_do_main_action result=false device_id='nobody'",
     kFails,
     kSilence},
    {"hl_get_device_info", {{"device_id", "nobody"}}, kSilence, kSilence, kSilence},
    {"hl_get_avp_camera_url",
     {{"device_id", "washer"}},
     "notify hl_get_avp_camera_url device_id='washer' access_token='token-of-mina'",
     "notify hl_get_avp_camera_url device_id='washer'",
     kSilence},
    {"hl_get_none_avp_camera_url",
     {{"device_id", "washer"}},
     "notify hl_get_none_avp_camera_url device_id='washer'",
     "notify hl_get_none_avp_camera_url device_id='washer'",
     kSilence},
    {"hl_set_camera_notification",
     {{"device_id", "porch-camera"}, {"camera_notification_type", 0}},
     "notify hl_set_camera_notification result=false device_id='porch-camera' camera_notification_type=0",
     kFails,
     kSilence},
    {"hl_unset_camera_notification",
     {{"device_id", "washer"}, {"camera_notification_type", 1}},
     "notify hl_unset_camera_notification result=false device_id='washer' camera_notification_type=1",
     kFails,
     kSilence},
    {"hl_get_refrigerator_innerview_url",
     {{"device_id", "washer"}},
     "notify hl_get_refrigerator_innerview_url is_success=false",
     kFails,
     kSilence},
    {"get_third_party_notification_status",
     {},
     "notify get_third_party_notification_status result=true",
     kFails,
     kSilence},
    {"hl_set_server_env",
     {{"env_iot_cloud", 1}, {"env_ui_meta", 2}},
     "notify hl_set_server_env result=true",
     "notify hl_set_server_env result=true",
     kSilence},
    {"hl_set_server_env",
     {{"env_iot_cloud", 7}, {"env_ui_meta", 1}},
     "notify hl_set_server_env result=false",
     kFails,
     kSilence},
    {"hl_get_accesstoken_uid",
     {},
     "notify hl_get_accesstoken_uid access_token='token-of-mina' uid='user-mina'",
     "notify hl_get_accesstoken_uid access_token='token-of-mina'",
     kSilence},
    {"set_cost_efficiency", {}, kSilence, kSilence, kSilence},
    // Without a guard.
    {"hl_change_device_name",
     {{"device_id", "washer"}},
     "notify hl_change_device_name change_device_name_result=false device_id='washer'",
     kFails,
     kFails},
    {"get_capability_status",
     {{"device_id", "porch-camera"}, {"component", "main"}, {"capability", "switch"}},
     "notify get_capability_status result=true device_id='porch-camera' data='{",
     kFails,
     kFails},
    {"get_capability_status",
     {{"device_id", "porch-camera"}},
     "notify get_capability_status result=false device_id='porch-camera'",
     kFails,
     kFails},
    {"execute_command",
     {{"device_id", "porch-camera"}, {"component", "main"}, {"capability", "webrtc"}},
     "result execute_command result=false device_id='porch-camera'",
     kFails,
     kFails},
    {"hl_create_favorite",
     {{"location_id", kHome}, {"favorite_info", "no JSON"}},
     "notify hl_create_favorite create_favorite_result=false location_id='home'",
     kFails,
     kFails},
    {"hl_delete_favorite",
     {{"location_id", kHome}, {"favorite_id", "nothing"}},
     "notify hl_delete_favorite delete_favorite_result=false location_id='home' favorite_id='nothing'",
     kFails,
     kFails},
    {"hl_replace_favorite_list",
     {{"location_id", kHome}, {"favorite_info_array", "{}"}},
     "notify hl_replace_favorite_list replace_favorite_result=false location_id='home'",
     kFails,
     kFails},
    {"hl_get_favorite",
     {{"location_id", kHome}},
     "notify hl_get_favorite get_favorite_result=true location_id='home' favorite_size=",
     kFails,
     kFails},
    {"hl_get_favorite_migration_status",
     {{"location_id", kHome}},
     "notify hl_get_favorite_migration_status get_favorite_migration_status_result=true location_id='home' isMigrated=",
     kFails,
     kFails},
    {"hl_get_hub_info", {}, "notify hl_get_hub_info", "notify hl_get_hub_info", "notify hl_get_hub_info"},
    {"hl_start_hub_onboarding",
     {},
     "result hl_start_hub_onboarding",
     "result hl_start_hub_onboarding",
     "result hl_start_hub_onboarding"},
    {"hl_reset_hub", {}, "result hl_reset_hub", "result hl_reset_hub", "result hl_reset_hub"},
    {"get_wifi_locker_user_setting",
     {},
     "notify get_wifi_locker_user_setting result=true wifi_locker_user_setting_enabled=",
     kFails,
     kFails},
    {"hl_update_favorite_migration_status",
     {{"location_id", kHome}, {"favorite_migration_status_info", "{\"isMigrated\":true}"}},
     "notify hl_update_favorite_migration_status update_favorite_migration_status_result=true",
     kFails,
     kFails},
    {"hl_stop_hub_onboarding",
     {},
     "result hl_stop_hub_onboarding",
     "result hl_stop_hub_onboarding",
     "result hl_stop_hub_onboarding"},
    {"hl_reset_dongle", {}, "result hl_reset_dongle", "result hl_reset_dongle", "result hl_reset_dongle"},
    {"set_wifi_locker_user_setting",
     {{"wifi_locker_user_setting_info_json", "{\"enabled\":1}"}},
     "notify set_wifi_locker_user_setting result=true",
     kFails,
     kFails},
    {"hl_send_active_user_event",
     {{"active_user_event_category", 1},
      {"active_user_event_action", 2},
      {"active_user_event_label", "home"},
      {"active_user_event_metadata", "{}"}},
     "notify hl_send_active_user_event result=true",
     kFails,
     "notify hl_send_active_user_event result=true"},
    {"hl_get_energy_info",
     {{"installed_app_id", "installed-energy"}},
     "notify hl_get_energy_info result=true installed_service_app_info_json='{",
     kFails,
     kFails},
    {"hl_get_energy_info",
     {{"installed_app_id", "nothing"}},
     "notify hl_get_energy_info result=false installed_service_app_info_json='{",
     kFails,
     kFails},
    {"hl_get_installed_service_app_info",
     {{"location_id", kHome}},
     "notify hl_get_installed_service_app_info result=true location_id='home' installed_service_app_info_json='[",
     kFails,
     kFails},
    {"hl_get_installed_service_app_info",
     {{"location_id", "nowhere"}},
     "notify hl_get_installed_service_app_info result=true location_id='nowhere'",
     kFails,
     kFails},
    // Known as a word, but no request.
    {"hl_get_scene_info", {}, kSilence, kSilence, kSilence},
};

class Request : public testing::Test {
protected:
    Request() {
        desk.startAndShow();
        desk.waitForState("washer", "Ready");
        desk.settle();
    }

    void Expect(const Row& row, const char* answer) {
        SCOPED_TRACE(row.name + (" " + toText(row.arguments)));
        const auto request = framework::request(row.name, row.arguments);
        if (answer == kSilence) {
            desk.settle();
            EXPECT_FALSE(desk.isAnswered(request));
            return;
        }
        const auto report =
            framework::waitFor([request](const framework::Report& sent) { return sent.transaction == request; });
        ASSERT_NE(report, nullptr);
        const std::string line = toText(*report);
        if (answer == kFails) {
            EXPECT_THAT(line, testing::ContainsRegex("^[a-z]+ [a-z_]+ [a-z_]+=false"));
        } else {
            EXPECT_THAT(line, StartsWith(answer));
        }
    }

    Desk desk;
};

}  // namespace

TEST_F(Request, IsAnsweredOrSilentAsItsRowSays) {
    for (const Row& row : kRows) {
        Expect(row, row.answer);
    }
}

TEST_F(Request, WithoutTheAgentIsSilentIfGuardedAndFailsIfNot) {
    desk.agent.setConnectOutcome(simulator::Agent::Connection::IoError);
    desk.agent.changeConnection(simulator::Agent::Connection::IoError);
    desk.settle();
    for (const Row& row : kRows) {
        Expect(row, row.withoutAgent);
    }
}

TEST_F(Request, SignedOutIsSilentIfGuardedAndFailsIfNot) {
    desk.agent.signOut();
    desk.settle();
    for (const Row& row : kRows) {
        Expect(row, row.signedOut);
    }
}

TEST_F(Request, WithWrongArgumentsHarmsNothing) {
    const std::string huge(100000, 'x');
    for (const Row& row : kRows) {
        Desk::Fields wrongTypes;
        Desk::Fields longTexts;
        for (const auto& field : row.arguments) {
            const bool isText = std::holds_alternative<std::string>(field.value);
            wrongTypes.add(field.key, isText ? Value(1) : Value(huge));
            longTexts.add(field.key, isText ? Value(huge) : field.value);
        }
        for (const auto& arguments : {Desk::Fields{}, wrongTypes, longTexts}) {
            framework::request(row.name, arguments);
        }
    }
    desk.settle();
    EXPECT_EQ(toText(*desk.ask("hl_do_main_action", {{"device_id", "washer"}})),
              "result hl_do_main_action result=true device_id='washer'");
    desk.waitForState("washer", "Washing · 42 min left");
}
