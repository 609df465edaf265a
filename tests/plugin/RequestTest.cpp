// Every request by its name: the answer or the silence with everything in place, without the agent, and signed out.

#include <algorithm>
#include <iterator>
#include <string>
#include <variant>

#include <gmock/gmock.h>

#include "desktop/Framework.h"
#include "support/Desk.h"
#include "support/Screen.h"

namespace framework = homeloom::desktop::framework;
using testing::ContainsRegex;
using testing::StartsWith;

namespace {

using Value = homeloom::desktop::Value;

// No answer, whatever is in place.
constexpr char kSilence[] = "";

struct Row {
    const char* name;
    Desk::Fields arguments;
    const char* answer;  // the beginning of the line, with everything in place
};

const Value kHome = "home";

// Silent without the agent, and failing for a user who is not signed in.
const Row kNeedingTheAgent[] = {
    {"hl_create_room",
     {{"location_id", kHome}, {"room_name", "Attic"}},
     "notify hl_create_room_result create_room_result=true location_id='home' room_id='"},
    {"hl_remove_room",
     {{"location_id", kHome}, {"room_id", "nowhere"}},
     "notify hl_remove_room_result remove_room_result=false location_id='home' room_id='nowhere'"},
    {"hl_change_room_name",
     {{"location_id", kHome}, {"room_id", "kitchen"}, {"room_name", "Galley"}},
     "notify hl_change_room_name_result change_room_name_result=true location_id='home' room_id='kitchen'"},
    {"hl_move_devices",
     {{"devices_size", 2}, {"dev_ids", "washer"}, {"location_id", kHome}, {"room_id", "kitchen"}},
     "notify hl_move_devices move_devices_result=false dev_ids='washer' devices_size=2"},
    {"hl_delete_device", {{"device_id", "nobody"}}, "notify hl_delete_device result=false device_id='nobody'"},
    {"hl_get_device_icon_info",
     {{"device_id", "washer"}},
     "notify hl_get_device_icon_info get_device_icon_info_result=true device_icon_info='{"},
    {"hl_execute_scene",
     {{"location_id", kHome}, {"scene_id", "movie-time"}},
     "notify hl_execute_scene result=true location_id='home' scene_id='movie-time' result_value='{"},
    {"hl_create_scene",
     {{"location_id", kHome}, {"scene_json", "no JSON"}},
     "notify hl_create_scene result=false location_id='home'"},
    {"hl_update_scene",
     {{"location_id", kHome}, {"scene_id", "nothing"}, {"scene_json", "{}"}},
     "notify hl_update_scene result=false location_id='home'"},
    {"hl_delete_scene",
     {{"location_id", kHome}, {"scene_id", "nothing"}},
     "notify hl_delete_scene result=false location_id='home'"},
    {"hl_get_scene_icon_info", {}, "notify hl_get_scene_icon_info result=true scene_icon_info='"},
    {"hl_update_routine_enable_status",
     {{"location_id", kHome}, {"routine_id", "night-watch"}, {"enable", true}},
     "notify hl_update_routine_enable_status result=true result_value='"},
    {"hl_start_hub_device_discovery", {{"hl_hub_di", "tv-hub"}, {"hl_hub_discovery_timeout", -1}}, kSilence},
    {"hl_start_hub_device_discovery",
     {{"hl_hub_di", "tv-hub"}, {"hl_hub_discovery_timeout", 0}},
     "result hl_start_hub_device_discovery result=true hl_hub_di='tv-hub'"},
    {"hl_stop_hub_device_discovery",
     {{"hl_hub_di", "tv-hub"}},
     "result hl_stop_hub_device_discovery result=true hl_hub_di='tv-hub'"},
    {"hl_onboard_ir_device",
     {{"codeset", "1234"},
      {"brand", "Norvane"},
      {"device_type", "oic.d.fan"},
      {"display_name", "Fan"},
      {"parent_id", "nobody"},
      {"location_id", kHome},
      {"room_id", "living"}},
     "notify hl_onboard_ir_device result=false codeset='1234'"},
    {"create_locksmith_key_value",
     {{"locksmith_key", "k"}, {"locksmith_value", "v"}},
     "notify create_locksmith_key_value result=true locksmith_info_json='"},
    {"update_locksmith_key_value",
     {{"locksmith_key", "k"}, {"locksmith_value", "w"}},
     "notify update_locksmith_key_value result=true locksmith_info_json='"},
    {"get_locksmith_key_value", {{"locksmith_key", "other"}}, "notify get_locksmith_key_value result=false"},
    {"delete_locksmith_key_value", {{"locksmith_key", "k"}}, "notify delete_locksmith_key_value result=true"},
    {"set_third_party_notification_status",
     {{"block_device_ids", "[]"}},
     "notify set_third_party_notification_status result=true"},
    {"get_third_party_notification", {}, "result get_third_party_notification result="},
    {"set_third_party_notification",
     {{"push_provider", "p"}, {"push_reg_id", "r"}, {"push_app_id", "a"}, {"locale", "en"}},
     "result set_third_party_notification result=true"},
};

// Failing without the agent, and silent for a user who is not signed in.
const Row kNeedingAUser[] = {
    {"hl_do_main_action", {{"device_id", "nobody"}}, "result hl_do_main_action result=false device_id='nobody'"},
    {"hl_get_device_info", {{"device_id", "nobody"}}, kSilence},
    {"hl_set_camera_notification",
     {{"device_id", "porch-camera"}, {"camera_notification_type", 0}},
     "notify hl_set_camera_notification result=false device_id='porch-camera' camera_notification_type=0"},
    {"hl_unset_camera_notification",
     {{"device_id", "washer"}, {"camera_notification_type", 1}},
     "notify hl_unset_camera_notification result=false device_id='washer' camera_notification_type=1"},
    {"hl_get_refrigerator_innerview_url",
     {{"device_id", "washer"}},
     "notify hl_get_refrigerator_innerview_url is_success=false"},
    {"get_third_party_notification_status", {}, "notify get_third_party_notification_status result=true"},
    {"hl_set_server_env", {{"env_iot_cloud", 7}, {"env_ui_meta", 1}}, "notify hl_set_server_env result=false"},
    {"set_cost_efficiency", {}, kSilence},
};

// Without a guard: failing without either.
const Row kUnguarded[] = {
    {"hl_change_device_name",
     {{"device_id", "washer"}},
     "notify hl_change_device_name change_device_name_result=false device_id='washer'"},
    {"get_capability_status",
     {{"device_id", "porch-camera"}, {"component", "main"}, {"capability", "switch"}},
     "notify get_capability_status result=true device_id='porch-camera' data='{"},
    {"get_capability_status",
     {{"device_id", "porch-camera"}},
     "notify get_capability_status result=false device_id='porch-camera'"},
    {"execute_command",
     {{"device_id", "porch-camera"}, {"component", "main"}, {"capability", "webrtc"}},
     "result execute_command result=false device_id='porch-camera'"},
    {"hl_create_favorite",
     {{"location_id", kHome}, {"favorite_info", "no JSON"}},
     "notify hl_create_favorite create_favorite_result=false location_id='home'"},
    {"hl_delete_favorite",
     {{"location_id", kHome}, {"favorite_id", "nothing"}},
     "notify hl_delete_favorite delete_favorite_result=false location_id='home' favorite_id='nothing'"},
    {"hl_replace_favorite_list",
     {{"location_id", kHome}, {"favorite_info_array", "{}"}},
     "notify hl_replace_favorite_list replace_favorite_result=false location_id='home'"},
    {"hl_get_favorite",
     {{"location_id", kHome}},
     "notify hl_get_favorite get_favorite_result=true location_id='home' favorite_size="},
    {"hl_get_favorite_migration_status",
     {{"location_id", kHome}},
     "notify hl_get_favorite_migration_status get_favorite_migration_status_result=true location_id='home'"},
    {"hl_update_favorite_migration_status",
     {{"location_id", kHome}, {"favorite_migration_status_info", "{\"isMigrated\":true}"}},
     "notify hl_update_favorite_migration_status update_favorite_migration_status_result=true"},
    {"get_wifi_locker_user_setting",
     {},
     "notify get_wifi_locker_user_setting result=true wifi_locker_user_setting_enabled="},
    {"set_wifi_locker_user_setting",
     {{"wifi_locker_user_setting_info_json", "{\"enabled\":1}"}},
     "notify set_wifi_locker_user_setting result=true"},
    {"hl_get_energy_info",
     {{"installed_app_id", "installed-energy"}},
     "notify hl_get_energy_info result=true installed_service_app_info_json='{"},
    {"hl_get_installed_service_app_info",
     {{"location_id", kHome}},
     "notify hl_get_installed_service_app_info result=true location_id='home' installed_service_app_info_json='["},
    // Known as a word, but no request.
    {"hl_get_scene_info", {}, kSilence},
};

struct OddRow : Row {
    const char* withoutAgent;
    const char* signedOut;
};

// What can be answered, or is, without what others need.
const OddRow kOdd[] = {
    {{"hl_get_ring_doorbell_url", {{"device_id", "washer"}}, "notify hl_get_ring_doorbell_url device_id='washer'"},
     "notify hl_get_ring_doorbell_url device_id='washer'",
     kSilence},
    {{"hl_get_none_avp_camera_url", {{"device_id", "washer"}}, "notify hl_get_none_avp_camera_url device_id='washer'"},
     "notify hl_get_none_avp_camera_url device_id='washer'",
     kSilence},
    {{"hl_get_avp_camera_url",
      {{"device_id", "washer"}},
      "notify hl_get_avp_camera_url device_id='washer' access_token='token-of-mina'"},
     "notify hl_get_avp_camera_url device_id='washer'",
     kSilence},
    {{"hl_get_accesstoken_uid", {}, "notify hl_get_accesstoken_uid access_token='token-of-mina' uid='user-mina'"},
     "notify hl_get_accesstoken_uid access_token='token-of-mina'",
     kSilence},
    {{"hl_set_server_env", {{"env_iot_cloud", 1}, {"env_ui_meta", 2}}, "notify hl_set_server_env result=true"},
     "notify hl_set_server_env result=true",
     kSilence},
    {{"hl_send_active_user_event",
      {{"active_user_event_category", 1},
       {"active_user_event_action", 2},
       {"active_user_event_label", "home"},
       {"active_user_event_metadata", "{}"}},
      "notify hl_send_active_user_event result=true"},
     "notify hl_send_active_user_event result=false",
     "notify hl_send_active_user_event result=true"},
};

// The hub does not ask the agent.
const Row kHubRequests[] = {
    {"hl_get_hub_info", {}, "notify hl_get_hub_info"},
    {"hl_start_hub_onboarding", {}, "result hl_start_hub_onboarding"},
    {"hl_stop_hub_onboarding", {}, "result hl_stop_hub_onboarding"},
    {"hl_reset_hub", {}, "result hl_reset_hub"},
    {"hl_reset_dongle", {}, "result hl_reset_dongle"},
};

class Request : public testing::Test {
protected:
    Request() {
        desk.startAndShow();
        desk.waitForState("washer", "Ready");
        desk.settle();
    }

    /// Calls the function with every row.
    template <typename Function>
    static void ForEach(Function function) {
        const auto call = [&](const auto& rows) { std::for_each(std::begin(rows), std::end(rows), function); };
        call(kNeedingTheAgent);
        call(kNeedingAUser);
        call(kUnguarded);
        call(kOdd);
        call(kHubRequests);
    }

    void ExpectSilence(const Row& row) {
        const auto request = framework::request(row.name, row.arguments);
        desk.settle();
        EXPECT_FALSE(desk.isAnswered(request)) << row.name << " " << toText(row.arguments);
    }
    void Expect(const Row& row, const testing::Matcher<std::string>& answer) {
        if (row.answer == kSilence) {
            ExpectSilence(row);
        } else {
            EXPECT_THAT(toText(*desk.ask(row.name, row.arguments)), answer);
        }
    }
    /// The requests that are silent for lack of something, those that fail for it, and all the others.
    template <typename Silent, typename Failing>
    void ExpectAll(const Silent& silent, const Failing& failing, const char* OddRow::*odd) {
        // The first word of the answer is false.
        const auto isFailure = ContainsRegex("^[a-z]+ [a-z_]+ [a-z_]+=false");
        for (const Row& row : silent) {
            ExpectSilence(row);
        }
        for (const Row& row : failing) {
            Expect(row, isFailure);
        }
        for (const Row& row : kUnguarded) {
            Expect(row, isFailure);
        }
        for (const OddRow& row : kOdd) {
            row.*odd == kSilence ? ExpectSilence(row) : Expect(row, StartsWith(row.*odd));
        }
        for (const Row& row : kHubRequests) {
            Expect(row, StartsWith(row.answer));
        }
    }

    Desk desk;
};

}  // namespace

TEST_F(Request, IsAnsweredOrSilentAsItsRowSays) {
    ForEach([this](const Row& row) { Expect(row, StartsWith(row.answer)); });
}

TEST_F(Request, WithoutTheAgentIsSilentIfGuardedAndFailsIfNot) {
    desk.agent.setConnectOutcome(simulator::Agent::Connection::IoError);
    desk.agent.changeConnection(simulator::Agent::Connection::IoError);
    desk.settle();
    ExpectAll(kNeedingTheAgent, kNeedingAUser, &OddRow::withoutAgent);
}

TEST_F(Request, SignedOutIsSilentIfGuardedAndFailsIfNot) {
    desk.agent.signOut();
    desk.settle();
    ExpectAll(kNeedingAUser, kNeedingTheAgent, &OddRow::signedOut);
}

TEST_F(Request, WithWrongArgumentsHarmsNothing) {
    const std::string huge(100000, 'x');
    ForEach([&](const Row& row) {
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
    });
    desk.settle();
    EXPECT_EQ(toText(*desk.ask("hl_do_main_action", {{"device_id", "washer"}})),
              "result hl_do_main_action result=true device_id='washer'");
    desk.waitForState("washer", "Washing · 42 min left");
}
