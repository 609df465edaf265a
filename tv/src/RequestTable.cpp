#include "RequestTable.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "CommandError.h"
#include "DeviceNames.h"
#include "ReportTable.h"
#include "Text.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

using Type = FieldSpec::Type;
using Answer = RequestSpec::Answer;
using Need = RequestSpec::Need;

constexpr char kStreamUrl[] = "camera_stream_url";

/// A row of the table below, which says in words what is not as with most requests.
struct Row : RequestSpec {
    explicit Row(const char* requestName) {
        name = requestName;
        answerName = requestName;
    }

    Row& takes(const char* fields) { return arguments = fieldSpecs(fields), *this; }
    Row& notify(const char* fields = "", const char* otherName = nullptr) {
        return tied(Answer::Notify, fields, otherName);
    }
    Row& result(const char* fields = "") { return tied(Answer::Result, fields, nullptr); }
    Row& stateOfItsDevice() { return answer = Answer::State, answerName = "hl_device_state_updated", *this; }
    Row& notAnswered() { return answer = Answer::None, answerName.clear(), *this; }
    Row& provedBy(const char* key) { return proof = key, *this; }
    Row& overtaking() { return overtakes = true, *this; }
    Row& needs(Need what) { return need = what, *this; }
    Row& refuses(const char* what) { return refusals = what, *this; }
    Row& shownBy(const char* words) { return example = words, *this; }

private:
    Row& tied(Answer kind, const char* fields, const char* otherName) {
        answer = kind;
        answerName = otherName != nullptr ? otherName : answerName;
        answerFields = fieldSpecs(fields);
        return *this;
    }
};

std::vector<RequestSpec> makeTable() {
    return {
        // Rooms and devices
        Row("hl_create_room")
            .takes("location_id text, room_name text")
            .notify("create_room_result bool, location_id text, room_id text", "hl_create_room_result")
            .needs(Need::ConnectedAgent)
            .refuses("an empty argument")
            .shownBy("location_id=home room_name=Study"),
        Row("hl_remove_room")
            .takes("location_id text, room_id text")
            .notify("remove_room_result bool, location_id text, room_id text", "hl_remove_room_result")
            .needs(Need::ConnectedAgent)
            .refuses("an empty argument")
            .shownBy("location_id=home room_id=laundry"),
        Row("hl_change_room_name")
            .takes("location_id text, room_id text, room_name text")
            .notify("change_room_name_result bool, location_id text, room_id text", "hl_change_room_name_result")
            .needs(Need::ConnectedAgent)
            .refuses("an empty argument")
            .shownBy("location_id=home room_id=laundry room_name=Washhouse"),
        Row("hl_move_devices")
            .takes("devices_size int, dev_ids text, location_id text, room_id text")
            .notify("move_devices_result bool, dev_ids text, devices_size int")
            .needs(Need::ConnectedAgent)
            .shownBy("devices_size=2 dev_ids=washer,dryer location_id=home room_id=kitchen"),
        Row("hl_change_device_name")
            .takes("device_id text, device_name text")
            .notify("change_device_name_result bool, device_id text, device_name text")
            .shownBy("device_id=washer device_name=\"New Washer\""),
        Row("hl_delete_device")
            .takes("device_id text")
            .notify("result bool, device_id text")
            .needs(Need::ConnectedAgent)
            .shownBy("device_id=tag"),
        Row("hl_do_main_action")
            .takes("action_url text, device_id text")
            .result("result bool, device_id text")
            .needs(Need::SignedInUser)
            .refuses("an agent that is not connected; an error that the agent tells later")
            .shownBy("device_id=washer"),
        Row("hl_get_device_info")
            .takes("device_id text")
            .stateOfItsDevice()
            .needs(Need::SignedInUser)
            .shownBy("device_id=washer"),
        Row("hl_get_device_icon_info")
            .takes("device_id text")
            .notify("get_device_icon_info_result bool, device_icon_info text")
            .needs(Need::ConnectedAgent)
            .shownBy("device_id=washer"),
        Row("execute_command")
            .takes("device_id text, component text, capability text, command text, argument text")
            .result("result bool, device_id text, data text")
            .refuses("an empty argument, and a camera that sends no such event")
            .shownBy("device_id=living-camera component=main capability=switch command=on argument=[]"),
        Row("get_capability_status")
            .takes("device_id text, component text, capability text")
            .notify("result bool, device_id text, data text")
            .shownBy("device_id=living-camera component=main capability=switch"),
        Row("set_cost_efficiency").notAnswered().needs(Need::SignedInUser),

        // Scenes, routines, favorites
        Row("hl_get_scene_icon_info").notify("result bool, scene_icon_info text").needs(Need::ConnectedAgent),
        Row("hl_execute_scene")
            .takes("location_id text, scene_id text")
            .notify("result bool, location_id text, scene_id text, result_value text")
            .needs(Need::ConnectedAgent)
            .shownBy("location_id=home scene_id=good-night"),
        Row("hl_create_scene")
            .takes("location_id text, scene_json text")
            .notify("result bool, location_id text, scene_id text, scene_json text")
            .needs(Need::ConnectedAgent)
            .shownBy(R"(location_id=home scene_json={"name": "Reading"})"),
        Row("hl_update_scene")
            .takes("location_id text, scene_id text, scene_json text")
            .notify("result bool, location_id text, scene_id text, scene_json text")
            .needs(Need::ConnectedAgent)
            .shownBy(R"(location_id=home scene_id=good-night scene_json={"name": "Sleep well"})"),
        Row("hl_delete_scene")
            .takes("location_id text, scene_id text")
            .notify("result bool, location_id text, scene_id text")
            .needs(Need::ConnectedAgent)
            .shownBy("location_id=home scene_id=good-night"),
        Row("hl_update_routine_enable_status")
            .takes("location_id text, routine_id text, enable bool")
            .notify("result bool, result_value text")
            .needs(Need::ConnectedAgent)
            .shownBy("location_id=home routine_id=night-watch enable=true"),
        Row("hl_create_favorite")
            .takes("location_id text, favorite_info text")
            .notify("create_favorite_result bool, location_id text, favorite_info text")
            .shownBy(R"(location_id=home favorite_info={"memberId": "robot", "memberType": "DEVICE"})"),
        Row("hl_delete_favorite")
            .takes("location_id text, favorite_id text")
            .notify("delete_favorite_result bool, location_id text, favorite_id text")
            .shownBy("location_id=home favorite_id=fav-light"),
        Row("hl_replace_favorite_list")
            .takes("location_id text, favorite_info_array text")
            .notify("replace_favorite_result bool, location_id text")
            .shownBy(R"(location_id=home favorite_info_array=[{"memberId": "robot", "memberType": "DEVICE"}])"),
        Row("hl_get_favorite")
            .takes("location_id text")
            .notify("get_favorite_result bool, location_id text, favorite_size int, favorite_info_array text")
            .shownBy("location_id=home"),
        Row("hl_get_favorite_migration_status")
            .takes("location_id text")
            .notify("get_favorite_migration_status_result bool, location_id text, isMigrated bool, lastUpdatedDate "
                    "text, deviceModel text")
            .shownBy("location_id=home"),
        Row("hl_update_favorite_migration_status")
            .takes("location_id text, favorite_migration_status_info text")
            .notify("update_favorite_migration_status_result bool, location_id text, favorite_migration_status_info "
                    "text, status_result text")
            .shownBy(R"(location_id=home favorite_migration_status_info={"isMigrated": true, "deviceModel": "QN55"})"),

        // Cameras and the refrigerator
        Row("hl_get_avp_camera_url")
            .takes("device_id text")
            .notify("device_id text, camera_stream_url text, access_token text")
            .provedBy(kStreamUrl)
            .needs(Need::SignedInUser)
            .shownBy("device_id=living-camera"),
        Row("hl_get_none_avp_camera_url")
            .takes("device_id text")
            .notify("device_id text, camera_stream_url text")
            .provedBy(kStreamUrl)
            .needs(Need::SignedInUser)
            .refuses(
                "a camera that never begins, and a second such request for it before it did: the later one is answered")
            .shownBy("device_id=porch-camera"),
        Row("hl_get_ring_doorbell_url")
            .takes("device_id text")
            .notify("device_id text, camera_stream_url text")
            .provedBy(kStreamUrl)
            .needs(Need::SignedInUser)
            .refuses("as for other cameras")
            .shownBy("device_id=doorbell"),
        Row("hl_set_camera_notification")
            .takes("device_id text, camera_notification_type int")
            .notify("result bool, device_id text, camera_notification_type int")
            .needs(Need::SignedInUser)
            .shownBy("device_id=living-camera camera_notification_type=1"),
        Row("hl_unset_camera_notification")
            .takes("device_id text, camera_notification_type int")
            .notify("result bool, device_id text, camera_notification_type int")
            .needs(Need::SignedInUser)
            .shownBy("device_id=living-camera camera_notification_type=1"),
        Row("hl_get_refrigerator_innerview_url")
            .takes("device_id text")
            .notify("is_success bool, inner_view_url text, datetime text")
            .needs(Need::SignedInUser)
            .refuses("a refrigerator that publishes no new pictures, and a picture that the cloud does not give")
            .shownBy("device_id=fridge"),

        // The hub
        Row("hl_start_hub_onboarding")
            .takes("hl_hub_location_id text, hl_hub_room_id text")
            .result()
            .refuses("an empty hl_hub_location_id; the progress notify says -999 then")
            .shownBy("hl_hub_location_id=home hl_hub_room_id=living"),
        Row("hl_stop_hub_onboarding").result(),
        Row("hl_reset_hub").result(),
        Row("hl_reset_dongle").result(),
        Row("hl_get_hub_info").notify("hl_hub_info text"),
        Row("hl_start_hub_device_discovery")
            .takes("location_id text, hl_hub_di text, hl_hub_discovery_timeout int")
            .result("result bool, hl_hub_di text")
            .needs(Need::ConnectedAgent)
            .refuses("an empty hl_hub_di, and a timeout below 0")
            .shownBy("location_id=home hl_hub_di=tv-hub hl_hub_discovery_timeout=30"),
        Row("hl_stop_hub_device_discovery")
            .takes("location_id text, hl_hub_di text")
            .result("result bool, hl_hub_di text")
            .needs(Need::ConnectedAgent)
            .refuses("an empty hl_hub_di")
            .shownBy("location_id=home hl_hub_di=tv-hub"),

        // Services of the home
        Row("hl_get_energy_info")
            .takes("installed_app_id text")
            .notify("result bool, installed_service_app_info_json text")
            .shownBy("installed_app_id=installed-energy"),
        Row("hl_send_active_user_event")
            .takes("active_user_event_category int, active_user_event_action int, active_user_event_label text, "
                   "active_user_event_metadata text")
            .notify("result bool")
            .shownBy("active_user_event_category=1 active_user_event_action=2 active_user_event_label=home "
                     R"(active_user_event_metadata={"app": "home"})"),
        Row("hl_onboard_ir_device")
            .takes("codeset text, brand text, device_type text, display_name text, parent_id text, aircon_state text, "
                   "location_id text, room_id text")
            .notify("result bool, codeset text, device_id text")
            .needs(Need::ConnectedAgent)
            .refuses("an empty argument (but aircon_state), a word of an air conditioner that is not known, and a code "
                     "set that the TV has no keys for")
            .shownBy("codeset=1234 brand=Norvane device_type=oic.d.fan display_name=Fan parent_id=tv-living "
                     "location_id=home "
                     "room_id=living"),
        Row("get_wifi_locker_user_setting").notify("result bool, wifi_locker_user_setting_enabled int"),
        Row("set_wifi_locker_user_setting")
            .takes("wifi_locker_user_setting_info_json text")
            .notify("result bool")
            .shownBy(R"(wifi_locker_user_setting_info_json={"enabled": 1})"),
        Row("create_locksmith_key_value")
            .takes("locksmith_key text, locksmith_value text")
            .notify("result bool, locksmith_info_json text")
            .needs(Need::ConnectedAgent)
            .shownBy("locksmith_key=color locksmith_value=blue"),
        Row("get_locksmith_key_value")
            .takes("locksmith_key text")
            .notify("result bool, locksmith_info_json text")
            .needs(Need::ConnectedAgent)
            .shownBy("locksmith_key=theme"),
        Row("update_locksmith_key_value")
            .takes("locksmith_key text, locksmith_value text")
            .notify("result bool, locksmith_info_json text")
            .needs(Need::ConnectedAgent)
            .shownBy("locksmith_key=theme locksmith_value=light"),
        Row("delete_locksmith_key_value")
            .takes("locksmith_key text")
            .notify("result bool, locksmith_info_json text")
            .needs(Need::ConnectedAgent)
            .shownBy("locksmith_key=theme"),
        Row("hl_set_server_env")
            .takes("env_iot_cloud int, env_ui_meta int")
            .notify("result bool")
            .needs(Need::SignedInUser)
            .shownBy("env_iot_cloud=0 env_ui_meta=1"),
        Row("hl_get_accesstoken_uid")
            .notify("access_token text, uid text")
            .provedBy("access_token")
            .needs(Need::SignedInUser),

        // Served ahead of the others
        Row("set_third_party_notification")
            .takes("push_provider text, push_reg_id text, push_app_id text, locale text")
            .result("result bool")
            .overtaking()
            .needs(Need::ConnectedAgent)
            .shownBy("push_provider=norvane-push push_reg_id=7 push_app_id=com.norvane.tv.velmora locale=en_US"),
        Row("get_third_party_notification")
            .result("result bool, push_provider text, push_reg_id text, push_app_id text, locale text")
            .overtaking()
            .needs(Need::ConnectedAgent),
        Row("set_third_party_notification_status")
            .takes("block_device_ids text")
            .notify("result bool")
            .overtaking()
            .needs(Need::ConnectedAgent)
            .shownBy(R"(block_device_ids=["hall-motion"])"),
        Row("get_third_party_notification_status")
            .notify("result bool, block_device_ids text")
            .overtaking()
            .needs(Need::SignedInUser),
        Row("hl_get_installed_service_app_info")
            .takes("location_id text")
            .notify("result bool, location_id text, installed_service_app_info_json text")
            .overtaking()
            .shownBy("location_id=home"),
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

const char* nameOf(RequestSpec::Need need) {
    switch (need) {
        case Need::ConnectedAgent:
            return "a connected agent";
        case Need::SignedInUser:
            return "a signed-in user";
        case Need::Nothing:
            break;
    }
    return "nothing";
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
    return spec == nullptr || spec->proof.empty() || !answer.properties.text(spec->proof).empty();
}

std::string usageOf(const RequestSpec& spec) {
    std::string usage = spec.name;
    for (const auto& argument : spec.arguments) {
        usage += fmt::format(" {}={}", argument.key, typeWord(argument.type));
    }
    return usage;
}

std::string exampleOf(const RequestSpec& spec) {
    return "request " + spec.name + (spec.example.empty() ? "" : " " + spec.example);
}

const std::vector<FieldSpec>& answerFieldsOf(const RequestSpec& spec) {
    return spec.answer == RequestSpec::Answer::State ? findNotify(spec.answerName)->fields : spec.answerFields;
}

}  // namespace homeloom::tv
