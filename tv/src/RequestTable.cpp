#include "RequestTable.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "CommandError.h"
#include "DeviceNames.h"
#include "Text.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

using Type = RequestSpec::Type;
using Answer = RequestSpec::Answer;

RequestSpec::Argument text(const char* key) {
    return {key, Type::Text};
}
RequestSpec::Argument number(const char* key) {
    return {key, Type::Number};
}
RequestSpec::Argument flag(const char* key) {
    return {key, Type::Flag};
}

constexpr bool kOvertakes = true;
constexpr char kStreamUrl[] = "camera_stream_url";

std::vector<RequestSpec> makeTable() {
    return {
        // Rooms and devices
        {"hl_create_room",
         {text("location_id"), text("room_name")},
         Answer::Tied,
         false,
         "",
         "location_id=home room_name=Study"},
        {"hl_remove_room",
         {text("location_id"), text("room_id")},
         Answer::Tied,
         false,
         "",
         "location_id=home room_id=laundry"},
        {"hl_change_room_name",
         {text("location_id"), text("room_id"), text("room_name")},
         Answer::Tied,
         false,
         "",
         "location_id=home room_id=laundry room_name=Washhouse"},
        {"hl_move_devices",
         {number("devices_size"), text("dev_ids"), text("location_id"), text("room_id")},
         Answer::Tied,
         false,
         "",
         "devices_size=2 dev_ids=washer,dryer location_id=home room_id=kitchen"},
        {"hl_change_device_name",
         {text("device_id"), text("device_name")},
         Answer::Tied,
         false,
         "",
         "device_id=washer device_name=\"New Washer\""},
        {"hl_delete_device", {text("device_id")}, Answer::Tied, false, "", "device_id=tag"},
        {"hl_do_main_action", {text("action_url"), text("device_id")}, Answer::Tied, false, "", "device_id=washer"},
        {"hl_get_device_info", {text("device_id")}, Answer::State, false, "", "device_id=washer"},
        {"hl_get_device_icon_info", {text("device_id")}, Answer::Tied, false, "", "device_id=washer"},
        {"execute_command",
         {text("device_id"), text("component"), text("capability"), text("command"), text("argument")},
         Answer::Tied,
         false,
         "",
         "device_id=living-camera component=main capability=switch command=on argument=[]"},
        {"get_capability_status",
         {text("device_id"), text("component"), text("capability")},
         Answer::Tied,
         false,
         "",
         "device_id=living-camera component=main capability=switch"},
        {"set_cost_efficiency", {}, Answer::None, false, "", ""},

        // Scenes, routines, favorites
        {"hl_get_scene_icon_info", {}, Answer::Tied, false, "", ""},
        {"hl_execute_scene",
         {text("location_id"), text("scene_id")},
         Answer::Tied,
         false,
         "",
         "location_id=home scene_id=good-night"},
        {"hl_create_scene",
         {text("location_id"), text("scene_json")},
         Answer::Tied,
         false,
         "",
         R"(location_id=home scene_json={"name": "Reading"})"},
        {"hl_update_scene",
         {text("location_id"), text("scene_id"), text("scene_json")},
         Answer::Tied,
         false,
         "",
         R"(location_id=home scene_id=good-night scene_json={"name": "Sleep well"})"},
        {"hl_delete_scene",
         {text("location_id"), text("scene_id")},
         Answer::Tied,
         false,
         "",
         "location_id=home scene_id=good-night"},
        {"hl_update_routine_enable_status",
         {text("location_id"), text("routine_id"), flag("enable")},
         Answer::Tied,
         false,
         "",
         "location_id=home routine_id=night-watch enable=true"},
        {"hl_create_favorite",
         {text("location_id"), text("favorite_info")},
         Answer::Tied,
         false,
         "",
         R"(location_id=home favorite_info={"memberId": "robot", "memberType": "DEVICE"})"},
        {"hl_delete_favorite",
         {text("location_id"), text("favorite_id")},
         Answer::Tied,
         false,
         "",
         "location_id=home favorite_id=fav-light"},
        {"hl_replace_favorite_list",
         {text("location_id"), text("favorite_info_array")},
         Answer::Tied,
         false,
         "",
         R"(location_id=home favorite_info_array=[{"memberId": "robot", "memberType": "DEVICE"}])"},
        {"hl_get_favorite", {text("location_id")}, Answer::Tied, false, "", "location_id=home"},
        {"hl_get_favorite_migration_status", {text("location_id")}, Answer::Tied, false, "", "location_id=home"},
        {"hl_update_favorite_migration_status",
         {text("location_id"), text("favorite_migration_status_info")},
         Answer::Tied,
         false,
         "",
         R"(location_id=home favorite_migration_status_info={"isMigrated": true, "deviceModel": "QN55"})"},

        // Cameras and the refrigerator
        {"hl_get_avp_camera_url", {text("device_id")}, Answer::Tied, false, kStreamUrl, "device_id=living-camera"},
        {"hl_get_none_avp_camera_url", {text("device_id")}, Answer::Tied, false, kStreamUrl, "device_id=porch-camera"},
        {"hl_get_ring_doorbell_url", {text("device_id")}, Answer::Tied, false, kStreamUrl, "device_id=doorbell"},
        {"hl_set_camera_notification",
         {text("device_id"), number("camera_notification_type")},
         Answer::Tied,
         false,
         "",
         "device_id=living-camera camera_notification_type=1"},
        {"hl_unset_camera_notification",
         {text("device_id"), number("camera_notification_type")},
         Answer::Tied,
         false,
         "",
         "device_id=living-camera camera_notification_type=1"},
        {"hl_get_refrigerator_innerview_url", {text("device_id")}, Answer::Tied, false, "", "device_id=fridge"},

        // The hub
        {"hl_start_hub_onboarding",
         {text("hl_hub_location_id"), text("hl_hub_room_id")},
         Answer::Tied,
         false,
         "",
         "hl_hub_location_id=home hl_hub_room_id=living"},
        {"hl_stop_hub_onboarding", {}, Answer::Tied, false, "", ""},
        {"hl_reset_hub", {}, Answer::Tied, false, "", ""},
        {"hl_reset_dongle", {}, Answer::Tied, false, "", ""},
        {"hl_get_hub_info", {}, Answer::Tied, false, "", ""},
        {"hl_start_hub_device_discovery",
         {text("location_id"), text("hl_hub_di"), number("hl_hub_discovery_timeout")},
         Answer::Tied,
         false,
         "",
         "location_id=home hl_hub_di=tv-hub hl_hub_discovery_timeout=30"},
        {"hl_stop_hub_device_discovery",
         {text("location_id"), text("hl_hub_di")},
         Answer::Tied,
         false,
         "",
         "location_id=home hl_hub_di=tv-hub"},

        // Services of the home
        {"hl_get_energy_info",
         {text("installed_app_id")},
         Answer::Tied,
         false,
         "",
         "installed_app_id=installed-energy"},
        {"hl_send_active_user_event",
         {number("active_user_event_category"), number("active_user_event_action"), text("active_user_event_label"),
          text("active_user_event_metadata")},
         Answer::Tied,
         false,
         "",
         "active_user_event_category=1 active_user_event_action=2 active_user_event_label=home"},
        {"hl_onboard_ir_device",
         {text("codeset"), text("brand"), text("device_type"), text("display_name"), text("parent_id"),
          text("aircon_state"), text("location_id"), text("room_id")},
         Answer::Tied,
         false,
         "",
         "codeset=1234 brand=Norvane device_type=oic.d.fan display_name=Fan parent_id=tv-living location_id=home "
         "room_id=living"},
        {"get_wifi_locker_user_setting", {}, Answer::Tied, false, "", ""},
        {"set_wifi_locker_user_setting",
         {text("wifi_locker_user_setting_info_json")},
         Answer::Tied,
         false,
         "",
         R"(wifi_locker_user_setting_info_json={"enabled": 1})"},
        {"create_locksmith_key_value",
         {text("locksmith_key"), text("locksmith_value")},
         Answer::Tied,
         false,
         "",
         "locksmith_key=color locksmith_value=blue"},
        {"get_locksmith_key_value", {text("locksmith_key")}, Answer::Tied, false, "", "locksmith_key=theme"},
        {"update_locksmith_key_value",
         {text("locksmith_key"), text("locksmith_value")},
         Answer::Tied,
         false,
         "",
         "locksmith_key=theme locksmith_value=light"},
        {"delete_locksmith_key_value", {text("locksmith_key")}, Answer::Tied, false, "", "locksmith_key=theme"},
        {"hl_set_server_env",
         {number("env_iot_cloud"), number("env_ui_meta")},
         Answer::Tied,
         false,
         "",
         "env_iot_cloud=0 env_ui_meta=1"},
        {"hl_get_accesstoken_uid", {}, Answer::Tied, false, "access_token", ""},

        // Served ahead of the others
        {"set_third_party_notification",
         {text("push_provider"), text("push_reg_id"), text("push_app_id"), text("locale")},
         Answer::Tied,
         kOvertakes,
         "",
         "push_provider=norvane-push push_reg_id=7 push_app_id=com.norvane.tv.velmora locale=en_US"},
        {"get_third_party_notification", {}, Answer::Tied, kOvertakes, "", ""},
        {"set_third_party_notification_status",
         {text("block_device_ids")},
         Answer::Tied,
         kOvertakes,
         "",
         R"(block_device_ids=["hall-motion"])"},
        {"get_third_party_notification_status", {}, Answer::Tied, kOvertakes, "", ""},
        {"hl_get_installed_service_app_info", {text("location_id")}, Answer::Tied, kOvertakes, "", "location_id=home"},
    };
}

std::pair<std::string, std::string> assignment(const std::string& word) {
    const auto parts = splitAssignment(word);
    if (!parts) {
        throw CommandError(fmt::format("\"{}\" is no key=value", word));
    }
    return *parts;
}

Value typedValue(const RequestSpec::Argument& argument, const std::string& value) {
    if (argument.type == Type::Number) {
        if (const auto whole = parseInt(value)) {
            return *whole;
        }
        throw CommandError(fmt::format("{} takes a whole number, not \"{}\"", argument.key, value));
    }
    if (argument.type == Type::Flag) {
        if (value == "true" || value == "false") {
            return value == "true";
        }
        throw CommandError(fmt::format("{} takes true or false, not \"{}\"", argument.key, value));
    }
    return value;
}

const char* typeWord(Type type) {
    return type == Type::Text ? "TEXT" : type == Type::Number ? "NUMBER" : "true|false";
}

}  // namespace

const std::vector<RequestSpec>& requestTable() {
    static const std::vector<RequestSpec> table = makeTable();
    return table;
}

const RequestSpec* findRequest(const std::string& name) {
    const auto& table = requestTable();
    const auto found =
        std::find_if(table.begin(), table.end(), [&name](const RequestSpec& spec) { return spec.name == name; });
    return found != table.end() ? &*found : nullptr;
}

Fields typedArguments(const RequestSpec& spec, const std::vector<std::string>& words) {
    Fields properties;
    for (const std::string& word : words) {
        const auto [key, value] = assignment(word);
        const auto argument = std::find_if(spec.arguments.begin(), spec.arguments.end(),
                                           [&name = key](const RequestSpec::Argument& a) { return a.key == name; });
        if (argument == spec.arguments.end()) {
            std::vector<std::string> keys;
            for (const auto& known : spec.arguments) {
                keys.push_back(known.key);
            }
            throw CommandError(fmt::format("{} has no argument {}{}", spec.name, key, nearHint(nearTo(key, keys))));
        }
        properties.add(key, typedValue(*argument, value));
    }
    return properties;
}

Fields guessedArguments(const std::vector<std::string>& words) {
    Fields properties;
    for (const std::string& word : words) {
        const auto [key, value] = assignment(word);
        if (value == "true" || value == "false") {
            properties.add(key, value == "true");
        } else if (const auto whole = parseInt(value)) {
            properties.add(key, *whole);
        } else {
            properties.add(key, value);
        }
    }
    return properties;
}

bool tellsSuccess(const RequestSpec* spec, const Report& answer) {
    // An answer that tells of success does so first; one that has a text to give succeeded if it has it.
    if (!answer.properties.empty()) {
        if (const bool* const told = std::get_if<bool>(&answer.properties[0].value)) {
            return *told;
        }
    }
    return spec == nullptr || spec->needs.empty() || !answer.properties.text(spec->needs).empty();
}

std::string usageOf(const RequestSpec& spec) {
    std::string usage = spec.name;
    for (const auto& argument : spec.arguments) {
        usage += fmt::format(" {}={}", argument.key, typeWord(argument.type));
    }
    return usage;
}

}  // namespace homeloom::tv
