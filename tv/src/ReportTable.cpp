#include "ReportTable.h"

#include <algorithm>
#include <initializer_list>

namespace homeloom::tv {

namespace {

constexpr char kState[] = "hl_device_state_updated";
constexpr char kElsewhere[] = "somebody did it elsewhere";
constexpr char kAlsoElsewhere[] = "also without a request, when somebody else did it";

void append(std::vector<FieldSpec>& fields, const std::vector<FieldSpec>& more) {
    fields.insert(fields.end(), more.begin(), more.end());
}

struct Notify : NotifySpec {
    Notify(const char* notifyName, const char* when_) : NotifySpec{notifyName, when_, {}} {}
    Notify& has(const char* keys, const char* meaning = "") {
        append(fields, fieldSpecs(keys, meaning));
        return *this;
    }
};

std::vector<NotifySpec> makeNotifyTable() {
    return {
        Notify("sign_in_state_changed", "a user signed in or out, and after each connection").has("is_sign_in bool"),
        Notify(kState, "a device changed")
            .has("device_id text")
            .has("subdevice_type text", "the type, such as oic.d.washer")
            .has("state_text text", "what the card shows, in the TV's language")
            .has("context_value text",
                 "JSON: URI, property and value of the last argument that the state text was made of; a state without "
                 "arguments leaves the one before")
            .has("icon_url text")
            .has("control_type text", "how the main action looks: PushButton and others; absent if there is none now")
            .has("action_state text", "of a push button its icon, otherwise the state its control shows")
            .has("action_url text", "names the main action; goes into hl_do_main_action")
            .has("active_state int", "1 active, 0 inactive look")
            .has("running_state bool", "a task is running (washing, cleaning, ...)")
            .has("subdevtype_enum int", "the type as a number; 0 for types without one")
            .has("controllable int",
                 "1 once a value of the main action has been seen, for a camera or doorbell with a stream and for a "
                 "refrigerator with an inside view as soon as its metadata is there; 0 while disconnected")
            .has("cloud_device_status int",
                 "0 connected, 1 disconnected, 2 inactive, 3 hidden; an inactive TV or a refrigerator of type "
                 "oic.d.krefrigerator counts as connected, any other refrigerator doesn't")
            .has("solenne_server_dp_uri text", "the page of the device's own screen")
            .has("sub_device_card_list_info text", "JSON array of cards, for devices with parts")
            .has("num_of_sub_device_cards int")
            .has("camera_stream_url text", "cameras only")
            .has("accesstoken text",
                 "cameras on the audio-video platform only, in every notify, with or without camera_stream_url: a "
                 "screen that keeps a stream open needs the newest one; spelt so"),
        Notify("hl_create_scene", kAlsoElsewhere).has("result bool, location_id text, scene_id text, scene_json text"),
        Notify("hl_update_scene", kAlsoElsewhere).has("result bool, location_id text, scene_id text, scene_json text"),
        Notify("hl_delete_scene", kAlsoElsewhere).has("result bool, location_id text, scene_id text, scene_json text"),
        Notify("hl_create_routine", kElsewhere)
            .has("result bool, location_id text, routine_id text, routine_json text"),
        Notify("hl_update_routine", kElsewhere)
            .has("result bool, location_id text, routine_id text, routine_json text"),
        Notify("hl_delete_routine", kElsewhere)
            .has("result bool, location_id text, routine_id text, routine_json text"),
        Notify("hl_favorite_updated", "favorites of a location changed")
            .has("get_favorite_result bool, location_id text, favorite_size int, favorite_info_array text"),
        Notify("hl_installed_service_app_info_updated", "a service was installed or removed")
            .has("result bool, location_id text, installed_service_app_info_json text"),
        Notify("hl_energy_info_updated",
               "after the answer to hl_get_energy_info, with the saving modes, and when the cloud has new figures")
            .has("result bool, installed_service_app_info_json text"),
        Notify("hl_hub_onboarding_progress", "the TV is becoming a hub; one of the three keys at a time")
            .has("hl_hub_progress int", "-999: failed")
            .has("hl_hub_onboarding_success_data text, hl_hub_agent_install_started text"),
        Notify("hl_reset_hub_result", "the TV has stopped being a hub, or could not")
            .has("hl_reset_hub_result_data text", "success or fail"),
        Notify("hl_get_hub_info",
               "also without a request: the hub application has connected, has become a hub, or its dongle changed")
            .has("hl_hub_info text"),
        Notify("third_party_notification_status_updated",
               "the blocked devices changed; this plug-in does not ask to be told"),
        Notify("wifi_locker_user_setting_updated", "reserved; nothing sends it")
            .has("result bool, wifi_locker_user_setting_enabled int"),
    };
}

struct Endpoint : EndpointSpec {
    Endpoint(const char* entryName, const char* interface, const char* type)
        : EndpointSpec{entryName, "homeloom", interface, type, {}} {}
    Endpoint& has(const char* keys, const char* meaning = "") {
        append(extraData, fieldSpecs(keys, meaning));
        return *this;
    }
    /// Keys that the state notification has as well, of the same type and meaning.
    Endpoint& hasAsNotified(std::initializer_list<const char*> keys) {
        const auto& notified = findNotify(kState)->fields;
        for (const char* const key : keys) {
            extraData.push_back(*std::find_if(notified.begin(), notified.end(),
                                              [key](const FieldSpec& field) { return field.key == key; }));
        }
        return *this;
    }
};

std::vector<EndpointSpec> makeEndpointTable() {
    return {
        Endpoint("device", "homeloom-interfacetype", "homeloom-device")
            .has("nick text", "the name that the user gave")
            .has("vid text", "the model: what its metadata is found by")
            .has("location text, location_id text, room text, room_id text")
            .hasAsNotified({"state_text", "context_value", "icon_url", "control_type", "action_state", "action_url",
                            "solenne_server_dp_uri"})
            .hasAsNotified({"active_state", "controllable", "cloud_device_status", "subdevtype_enum"})
            .hasAsNotified({"running_state"})
            .hasAsNotified({"sub_device_card_list_info", "num_of_sub_device_cards"})
            .has("webrtc_support int", "1 if it can stream so")
            .has("refrigerator_inside_view int", "refrigerators: 1 if it has a camera inside")
            .has("camera_notification_type int",
                 "cameras: what it can notify of; bits 0 motion, 1 sound, 2 person, 3 ring")
            .has("camera_notification_value int", "cameras: which of these are asked for")
            .has("2waytalk_support int", "cameras with a speaker: 1")
            .has("core_device_type text, core_device_network_type text, core_device_parent_device_id text")
            .has("core_device_icon_key text, core_device_icon_date text", "change when the icons do")
            .has("core_device_animation_icon_url text, core_device_activated_icon_url text, "
                 "core_device_inactivated_icon_url text, core_device_disconnected_icon_url text"),
        Endpoint("location", "", "homeloom-dummy")
            .has("location_id text, location_name text")
            .has("location_owner_name text", "empty for the user's own")
            .has("location_is_owner bool")
            .has("location_permission text",
                 "a location that isn't the user's own needs its permission looked at before it is changed")
            .has("room_count int")
            .has("room_info text", "JSON array of room_id and room_name")
            .has("favorite_info_array text", "JSON array"),
        Endpoint("scene", "homeloom-scene", "homeloom-dummy").has("scene_json_data text"),
        Endpoint("routine", "homeloom-routine", "homeloom-dummy").has("routine_json text"),
    };
}

}  // namespace

const std::vector<NotifySpec>& notifyTable() {
    static const std::vector<NotifySpec> table = makeNotifyTable();
    return table;
}

const NotifySpec* findNotify(const std::string& name) {
    const auto& table = notifyTable();
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const NotifySpec& spec) { return spec.name == name; });
    return found != table.end() ? &*found : nullptr;
}

const std::vector<EndpointSpec>& endpointTable() {
    static const std::vector<EndpointSpec> table = makeEndpointTable();
    return table;
}

}  // namespace homeloom::tv
