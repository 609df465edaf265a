#ifndef HOMELOOM_COMMON_HLNAMES_H
#define HOMELOOM_COMMON_HLNAMES_H

/// The vocabulary that the plug-in shares with the framework and the TV's screens: names of requests and notifies,
/// property and JSON keys, settings. The texts are the interface, misspellings included.
///
/// They are character arrays and not std::string, so that they cost nothing at start and can be used in any
/// initialiser.
namespace VMFramework::HomeLoom::Names {

// Endpoint interface and service names
inline constexpr char HOMELOOM[] = "homeloom";
inline constexpr char HOMELOOM_INTERFACETYPE[] = "homeloom-interfacetype";
inline constexpr char HOMELOOM_DEVICE[] = "homeloom-device";
inline constexpr char HOMELOOM_SCENE[] = "homeloom-scene";
inline constexpr char HOMELOOM_ROUTINE[] = "homeloom-routine";
inline constexpr char HOMELOOM_DUMMY[] = "homeloom-dummy";
inline constexpr char OIC_WK_D[] = "oic.wk.d";

// Requests
inline constexpr char HL_CREATE_ROOM[] = "hl_create_room";
inline constexpr char HL_REMOVE_ROOM[] = "hl_remove_room";
inline constexpr char HL_CHANGE_ROOM_NAME[] = "hl_change_room_name";
inline constexpr char HL_CHANGE_DEVICE_NAME[] = "hl_change_device_name";
inline constexpr char HL_MOVE_DEVICES[] = "hl_move_devices";
inline constexpr char HL_START_HUB_ONBOARDING[] = "hl_start_hub_onboarding";
inline constexpr char HL_STOP_HUB_ONBOARDING[] = "hl_stop_hub_onboarding";
inline constexpr char HL_RESET_HUB[] = "hl_reset_hub";
inline constexpr char HL_RESET_DONGLE[] = "hl_reset_dongle";
inline constexpr char HL_GET_HUB_INFO[] = "hl_get_hub_info";
inline constexpr char HL_ONBOARD_IR_DEVICE[] = "hl_onboard_ir_device";
inline constexpr char HL_DELETE_DEVICE[] = "hl_delete_device";
inline constexpr char HL_CREATE_FAVORITE[] = "hl_create_favorite";
inline constexpr char HL_DELETE_FAVORITE[] = "hl_delete_favorite";
inline constexpr char HL_REPLACE_FAVORITE_LIST[] = "hl_replace_favorite_list";
inline constexpr char HL_GET_FAVORITE[] = "hl_get_favorite";
inline constexpr char HL_GET_FAVORITE_MIGRATION_STATUS[] = "hl_get_favorite_migration_status";
inline constexpr char HL_UPDATE_FAVORITE_MIGRATION_STATUS[] = "hl_update_favorite_migration_status";
inline constexpr char HL_GET_DEVICE_ICON_INFO[] = "hl_get_device_icon_info";
inline constexpr char HL_GET_SCENE_ICON_INFO[] = "hl_get_scene_icon_info";
inline constexpr char HL_EXECUTE_SCENE[] = "hl_execute_scene";
inline constexpr char HL_CREATE_SCENE[] = "hl_create_scene";
inline constexpr char HL_UPDATE_SCENE[] = "hl_update_scene";
inline constexpr char HL_DELETE_SCENE[] = "hl_delete_scene";
inline constexpr char HL_UPDATE_ROUTINE_ENABLE_STATUS[] = "hl_update_routine_enable_status";
inline constexpr char HL_START_HUB_DEVICE_DISCOVERY[] = "hl_start_hub_device_discovery";
inline constexpr char HL_STOP_HUB_DEVICE_DISCOVERY[] = "hl_stop_hub_device_discovery";
inline constexpr char SET_COST_EFFICIENCY[] = "set_cost_efficiency";
inline constexpr char HL_SEND_ACTIVE_USER_EVENT[] = "hl_send_active_user_event";
inline constexpr char HL_GET_ENERGY_INFO[] = "hl_get_energy_info";
inline constexpr char GET_WIFI_LOCKER_USER_SETTING[] = "get_wifi_locker_user_setting";
inline constexpr char SET_WIFI_LOCKER_USER_SETTING[] = "set_wifi_locker_user_setting";
inline constexpr char CREATE_LOCKSMITH_KEY_VALUE[] = "create_locksmith_key_value";
inline constexpr char GET_LOCKSMITH_KEY_VALUE[] = "get_locksmith_key_value";
inline constexpr char UPDATE_LOCKSMITH_KEY_VALUE[] = "update_locksmith_key_value";
inline constexpr char DELETE_LOCKSMITH_KEY_VALUE[] = "delete_locksmith_key_value";
inline constexpr char HL_DO_MAIN_ACTION[] = "hl_do_main_action";
inline constexpr char HL_GET_REFRIGERATOR_INNERVIEW_URL[] = "hl_get_refrigerator_innerview_url";
inline constexpr char HL_SET_CAMERA_NOTIFICATION[] = "hl_set_camera_notification";
inline constexpr char HL_UNSET_CAMERA_NOTIFICATION[] = "hl_unset_camera_notification";
inline constexpr char EXECUTE_COMMAND[] = "execute_command";
inline constexpr char HL_GET_DEVICE_INFO[] = "hl_get_device_info";
inline constexpr char GET_CAPABILITY_STATUS[] = "get_capability_status";
inline constexpr char HL_GET_AVP_CAMERA_URL[] = "hl_get_avp_camera_url";
inline constexpr char HL_GET_NONE_AVP_CAMERA_URL[] = "hl_get_none_avp_camera_url";
inline constexpr char HL_GET_RING_DOORBELL_URL[] = "hl_get_ring_doorbell_url";
inline constexpr char HL_SET_SERVER_ENV[] = "hl_set_server_env";
inline constexpr char HL_GET_ACCESSTOKEN_UID[] = "hl_get_accesstoken_uid";

// Requests that overtake the others
inline constexpr char SET_THIRD_PARTY_NOTIFICATION[] = "set_third_party_notification";
inline constexpr char GET_THIRD_PARTY_NOTIFICATION[] = "get_third_party_notification";
inline constexpr char SET_THIRD_PARTY_NOTIFICATION_STATUS[] = "set_third_party_notification_status";
inline constexpr char GET_THIRD_PARTY_NOTIFICATION_STATUS[] = "get_third_party_notification_status";
inline constexpr char HL_GET_INSTALLED_SERVICE_APP_INFO[] = "hl_get_installed_service_app_info";

// Names without a handler of their own: requests of these names go the way of unknown ones, and the three
// routine names are notifies
inline constexpr char STOP_NONE_AVP_CAMERA_STREAM[] = "stop_none_avp_camera_stream";
inline constexpr char HL_GET_PROPERTY[] = "hl_get_property";
inline constexpr char SUBSCRIBE_SSE[] = "subscribe_sse";
inline constexpr char UNSUBSCRIBE_SSE[] = "unsubscribe_sse";
inline constexpr char HL_GET_SCENE_INFO[] = "hl_get_scene_info";
inline constexpr char HL_GET_ROUTINE_INFO[] = "hl_get_routine_info";
inline constexpr char HL_CREATE_ROUTINE[] = "hl_create_routine";
inline constexpr char HL_UPDATE_ROUTINE[] = "hl_update_routine";
inline constexpr char HL_DELETE_ROUTINE[] = "hl_delete_routine";

// Notifies
inline constexpr char HL_DEVICE_STATE_UPDATED[] = "hl_device_state_updated";
inline constexpr char THIRD_PARTY_NOTIFICATION_STATUS_UPDATED[] = "third_party_notification_status_updated";
inline constexpr char HL_INSTALLED_SERVICE_APP_INFO_UPDATED[] = "hl_installed_service_app_info_updated";
inline constexpr char HL_ENERGY_INFO_UPDATED[] = "hl_energy_info_updated";
inline constexpr char WIFI_LOCKER_USER_SETTING_UPDATED[] = "wifi_locker_user_setting_updated";
inline constexpr char HL_HUB_ONBOARDING_PROGRESS[] = "hl_hub_onboarding_progress";
inline constexpr char HL_RESET_HUB_RESULT[] = "hl_reset_hub_result";
inline constexpr char HL_FAVORITE_UPDATED[] = "hl_favorite_updated";
inline constexpr char SIGN_IN_STATE_CHANGED[] = "sign_in_state_changed";

// Names of results
inline constexpr char SET_THIRD_PARTY_NOTIFICATION_RESULT[] = "set_third_party_notification_result";
inline constexpr char SET_THIRD_PARTY_NOTIFICATION_STATUS_RESULT[] = "set_third_party_notification_status_result";
inline constexpr char GET_THIRD_PARTY_NOTIFICATION_STATUS_RESULT[] = "get_third_party_notification_status_result";
inline constexpr char HL_SEND_ACTIVE_USER_EVENT_RESULT[] = "hl_send_active_user_event_result";
inline constexpr char HL_CREATE_ROOM_RESULT[] = "hl_create_room_result";
inline constexpr char HL_REMOVE_ROOM_RESULT[] = "hl_remove_room_result";
inline constexpr char HL_CHANGE_ROOM_NAME_RESULT[] = "hl_change_room_name_result";
inline constexpr char HL_MOVE_DEVICES_RESULT[] = "hl_move_devices_result";
inline constexpr char HL_GET_HUB_INFO_RESULT[] = "hl_get_hub_info_result";
inline constexpr char HL_CREATE_FAVORITE_RESULT[] = "hl_create_favorite_result";
inline constexpr char HL_DELETE_FAVORITE_RESULT[] = "hl_delete_favorite_result";
inline constexpr char HL_REPLACE_FAVORITE_LIST_RESULT[] = "hl_replace_favorite_list_result";
inline constexpr char HL_GET_FAVORITE_RESULT[] = "hl_get_favorite_result";
inline constexpr char HL_GET_DEVICE_ICON_INFO_RESULT[] = "hl_get_device_icon_info_result";

// Keys of results
inline constexpr char RESULT[] = "result";
inline constexpr char STATUS[] = "status";
inline constexpr char CREATE_ROOM_RESULT[] = "create_room_result";
inline constexpr char REMOVE_ROOM_RESULT[] = "remove_room_result";
inline constexpr char CHANGE_ROOM_NAME_RESULT[] = "change_room_name_result";
inline constexpr char CHANGE_DEVICE_NAME_RESULT[] = "change_device_name_result";
inline constexpr char MOVE_DEVICE_RESULT[] = "move_device_result";
inline constexpr char MOVE_DEVICES_RESULT[] = "move_devices_result";
inline constexpr char GET_SCENE_INFO_RESULT[] = "get_scene_info_result";
inline constexpr char RESULT_VALUE[] = "result_value";
inline constexpr char CREATE_FAVORITE_RESULT[] = "create_favorite_result";
inline constexpr char DELETE_FAVORITE_RESULT[] = "delete_favorite_result";
inline constexpr char REPLACE_FAVORITE_RESULT[] = "replace_favorite_result";
inline constexpr char GET_FAVORITE_RESULT[] = "get_favorite_result";
inline constexpr char GET_FAVORITE_MIGRATION_STATUS_RESULT[] = "get_favorite_migration_status_result";
inline constexpr char UPDATE_FAVORITE_MIGRATION_STATUS_RESULT[] = "update_favorite_migration_status_result";
inline constexpr char STATUS_RESULT[] = "status_result";
inline constexpr char GET_DEVICE_ICON_INFO_RESULT[] = "get_device_icon_info_result";
inline constexpr char IS_SUCCESS[] = "is_success";
inline constexpr char IS_SIGN_IN[] = "is_sign_in";

// Keys of devices and endpoints
inline constexpr char UI_META_DATA[] = "ui_meta_data";
inline constexpr char VID[] = "vid";
inline constexpr char DEV_ID[] = "dev_id";
inline constexpr char DEV_IDS[] = "dev_ids";
inline constexpr char DEVICE_ID[] = "device_id";
inline constexpr char DEVICE_NAME[] = "device_name";
inline constexpr char DEVICES_SIZE[] = "devices_size";
inline constexpr char NICK[] = "nick";
inline constexpr char CLOUD_DEVICE_STATUS[] = "cloud_device_status";
inline constexpr char STATE_TEXT[] = "state_text";
inline constexpr char CONTEXT_VALUE[] = "context_value";
inline constexpr char ICON_URL[] = "icon_url";
inline constexpr char CONTROL_TYPE[] = "control_type";
inline constexpr char ACTIVE_STATE[] = "active_state";
inline constexpr char RUNNING_STATE[] = "running_state";
inline constexpr char SUBDEVTYPE_ENUM[] = "subdevtype_enum";
inline constexpr char CONTROLLABLE[] = "controllable";
inline constexpr char ACTION_STATE[] = "action_state";
inline constexpr char ACTION_URL[] = "action_url";
inline constexpr char NUM_OF_MAIN_ACTIONS[] = "num_of_main_actions";
inline constexpr char NUM_OF_MAIN_STATES[] = "num_of_main_states";
inline constexpr char NUM_OF_SUB_DEVICE_CARDS[] = "num_of_sub_device_cards";
inline constexpr char SUB_DEVICE_CARD_LIST_INFO[] = "sub_device_card_list_info";
inline constexpr char CORE_DEVICE_TYPE[] = "core_device_type";
inline constexpr char CORE_DEVICE_NETWORK_TYPE[] = "core_device_network_type";
inline constexpr char CORE_DEVICE_PARENT_DEVICE_ID[] = "core_device_parent_device_id";
inline constexpr char CORE_DEVICE_ANIMATION_ICON_URL[] = "core_device_animation_icon_url";
inline constexpr char CORE_DEVICE_ACTIVATED_ICON_URL[] = "core_device_activated_icon_url";
inline constexpr char CORE_DEVICE_INACTIVATED_ICON_URL[] = "core_device_inactivated_icon_url";
inline constexpr char CORE_DEVICE_DISCONNECTED_ICON_URL[] = "core_device_disconnected_icon_url";
inline constexpr char CORE_DEVICE_ICON_KEY[] = "core_device_icon_key";
inline constexpr char CORE_DEVICE_ICON_DATE[] = "core_device_icon_date";
inline constexpr char CAPABILITY_STATUS[] = "capability_status";
inline constexpr char COMPONENT[] = "component";
inline constexpr char CAPABILITY[] = "capability";
inline constexpr char DATA[] = "data";
inline constexpr char COMMAND[] = "command";
inline constexpr char ARGUMENT[] = "argument";
inline constexpr char ATTRIBUTE[] = "attribute";
inline constexpr char VERSION[] = "version";
inline constexpr char EMPTY_VALUE[] = "empty";
inline constexpr char DEFAULT_VALUE[] = "default";
inline constexpr char TYPE[] = "type";
inline constexpr char MODE[] = "Mode";
inline constexpr char RESOURCE[] = "resource";
inline constexpr char SUBDEVICE_TYPE[] = "subdevice_type";

// Keys of locations and rooms
inline constexpr char LOCATION_ID[] = "location_id";
inline constexpr char LOCATION_NAME[] = "location_name";
inline constexpr char LOCATION_OWNER_NAME[] = "location_owner_name";
inline constexpr char LOCATION_IS_OWNER[] = "location_is_owner";
inline constexpr char LOCATION_PERMISSION[] = "location_permission";
inline constexpr char LOCATION[] = "location";
inline constexpr char ROOM_ID[] = "room_id";
inline constexpr char ROOM_NAME[] = "room_name";
inline constexpr char ROOM_COUNT[] = "room_count";
inline constexpr char ROOM[] = "room";
inline constexpr char ROOM_INFO[] = "room_info";

// Keys of scenes and routines
inline constexpr char SCENE_ID[] = "scene_id";
inline constexpr char SCENE_JSON[] = "scene_json";
inline constexpr char SCENE_JSON_DATA[] = "scene_json_data";
inline constexpr char SCENE_ICON_INFO[] = "scene_icon_info";
inline constexpr char ROUTINE_ID[] = "routine_id";
inline constexpr char ROUTINE_JSON[] = "routine_json";
inline constexpr char ENABLE[] = "enable";

// Keys of favorites
inline constexpr char FAVORITE_INFO[] = "favorite_info";
inline constexpr char FAVORITE_INFO_ARRAY[] = "favorite_info_array";
inline constexpr char FAVORITE_ID[] = "favorite_id";
inline constexpr char ORDER[] = "order";
inline constexpr char FAVORITE_SIZE[] = "favorite_size";
inline constexpr char FAVORITE_MIGRATION_STATUS_INFO[] = "favorite_migration_status_info";
inline constexpr char IS_MIGRATED[] = "isMigrated";
inline constexpr char LAST_UPDATED_DATE[] = "lastUpdatedDate";
inline constexpr char DEVICE_MODEL[] = "deviceModel";

// Keys of cameras, refrigerator and access
inline constexpr char SUPPORT_2WAYTALK[] = "2waytalk_support";
inline constexpr char CAMERA_STREAM_URL[] = "camera_stream_url";
inline constexpr char ACCESS_TOKEN[] = "access_token";
inline constexpr char INNER_VIEW_URL[] = "inner_view_url";
inline constexpr char DATETIME[] = "datetime";
inline constexpr char CODESET[] = "codeset";
inline constexpr char UID[] = "uid";
inline constexpr char CAMERA_NOTIFICATION_TYPE[] = "camera_notification_type";
inline constexpr char CAMERA_NOTIFICATION_VALUE[] = "camera_notification_value";
inline constexpr char REFRIGERATOR_INSIDE_VIEW[] = "refrigerator_inside_view";
inline constexpr char WEBRTC_SUPPORT[] = "webrtc_support";

// Keys of the hub
inline constexpr char HL_HUB_LOCATION_ID[] = "hl_hub_location_id";
inline constexpr char HL_HUB_ROOM_ID[] = "hl_hub_room_id";
inline constexpr char HL_HUB_PROGRESS[] = "hl_hub_progress";
inline constexpr char HL_HUB_ONBOARDING_SUCCESS_DATA[] = "hl_hub_onboarding_success_data";
inline constexpr char HL_RESET_HUB_RESULT_DATA[] = "hl_reset_hub_result_data";
inline constexpr char HL_HUB_INFO[] = "hl_hub_info";
inline constexpr char HL_HUB_DI[] = "hl_hub_di";
inline constexpr char HL_HUB_DISCOVERY_TIMEOUT[] = "hl_hub_discovery_timeout";
inline constexpr char HL_HUB_AGENT_INSTALL_STARTED[] = "hl_hub_agent_install_started";

// Keys of infrared devices, beside CODESET
inline constexpr char BRAND[] = "brand";
inline constexpr char DEVICE_TYPE[] = "device_type";
inline constexpr char DISPLAY_NAME[] = "display_name";
inline constexpr char PARENT_ID[] = "parent_id";
inline constexpr char AIRCON_STATE[] = "aircon_state";

// Keys of icons
inline constexpr char DEVICE_ICON_INFO[] = "device_icon_info";
inline constexpr char ICON_DEVICE_ID[] = "deviceId";
inline constexpr char ICONS[] = "icons";
inline constexpr char POSSIBLE_ICONS[] = "possibleIcons";
inline constexpr char BADGE_ICONS[] = "badgeIcons";

// Keys of services
inline constexpr char BLOCK_DEVICE_IDS[] = "block_device_ids";
inline constexpr char BLOCK_DEVICES_SIZE[] = "block_devices_size";
inline constexpr char PUSH_PROVIDER[] = "push_provider";
inline constexpr char PUSH_REG_ID[] = "push_reg_id";
inline constexpr char PUSH_APP_ID[] = "push_app_id";
inline constexpr char LOCALE[] = "locale";
inline constexpr char ACTIVE_USER_EVENT_CATEGORY[] = "active_user_event_category";
inline constexpr char ACTIVE_USER_EVENT_ACTION[] = "active_user_event_action";
inline constexpr char ACTIVE_USER_EVENT_LABEL[] = "active_user_event_label";
inline constexpr char ACTIVE_USER_EVENT_METADATA[] = "active_user_event_metadata";
inline constexpr char INSTALLED_SERVICE_APP_INFO_JSON[] = "installed_service_app_info_json";
inline constexpr char INSTALLED_APP_ID[] = "installed_app_id";
inline constexpr char ENERGY_INFO_JSON[] = "energy_info_json";
inline constexpr char WIFI_LOCKER_USER_SETTING_INFO_JSON[] = "wifi_locker_user_setting_info_json";
inline constexpr char WIFI_LOCKER_USER_SETTING_ENABLED[] = "wifi_locker_user_setting_enabled";
inline constexpr char LOCKSMITH_KEY[] = "locksmith_key";
inline constexpr char LOCKSMITH_VALUE[] = "locksmith_value";
inline constexpr char LOCKSMITH_INFO_JSON[] = "locksmith_info_json";
inline constexpr char ENV_IOT_CLOUD[] = "env_iot_cloud";
inline constexpr char ENV_UI_META[] = "env_ui_meta";
inline constexpr char SOLENNE_SERVER_DP_URI[] = "solenne_server_dp_uri";
inline constexpr char DI[] = "di";

// Values and settings keys
inline constexpr char LIFECYCLE_CREATE[] = "CREATE";
inline constexpr char LIFECYCLE_UPDATE[] = "UPDATE";
inline constexpr char LIFECYCLE_DELETE[] = "DELETE";
inline constexpr char HOMELOOM_ENERGY[] = "HomeLoomEnergy";
inline constexpr char GENERIC_DEFAULT_METADATA[] = "generic-default-metadata";
inline constexpr char DEVICE_EXIST_TRUE[] = "hl_dev_exist_true";
inline constexpr char DEVICE_EXIST_FALSE[] = "hl_dev_exist_false";
inline constexpr char VCONF_SIGNUP_INFO[] = "db/es_master/signup_info";
inline constexpr char VCONF_DEVICE_EXIST[] = "memory/velmora/hl_dev_exist";

}  // namespace VMFramework::HomeLoom::Names

#endif
