#ifndef HOMELOOM_RECORDER_FUNCTIONS_H
#define HOMELOOM_RECORDER_FUNCTIONS_H

#include <homeloom_client.h>
#include <homeloom_core.h>

#include "recorder/Forms.h"

/// All functions of the agent's two C libraries, each with the number of its arguments: F(number, name). What the
/// arguments are is read from their types.
#define HOMELOOM_AGENT_FUNCTIONS(F)                                        \
    F(3, homeloom_client_connect)                                          \
    F(1, homeloom_client_disconnect)                                       \
    F(3, homeloom_client_set_sign_in_state_changed_cb)                     \
    F(1, homeloom_client_unset_sign_in_state_changed_cb)                   \
    F(2, homeloom_client_is_signed_in)                                     \
    F(2, homeloom_client_get_login_id)                                     \
    F(2, homeloom_client_get_device_id)                                    \
    F(2, homeloom_client_get_connected_user_id)                            \
    F(2, homeloom_client_get_access_token)                                 \
    F(2, homeloom_client_get_state)                                        \
    F(1, homeloom_client_refresh_device_information)                       \
    F(3, homeloom_client_internal_get_server_env)                          \
    F(3, homeloom_client_internal_set_server_env)                          \
    F(3, homeloom_client_set_device_list_updated_cb)                       \
    F(1, homeloom_client_unset_device_list_updated_cb)                     \
    F(3, homeloom_client_device_get_string)                                \
    F(1, homeloom_client_device_destroy)                                   \
    F(3, homeloom_client_set_device_detail_list_updated_cb)                \
    F(1, homeloom_client_unset_device_detail_list_updated_cb)              \
    F(3, homeloom_client_get_device_detail_list)                           \
    F(3, homeloom_client_device_detail_get_string)                         \
    F(4, homeloom_client_device_detail_get_string_array)                   \
    F(3, homeloom_client_device_detail_get_int)                            \
    F(1, homeloom_client_device_detail_destroy)                            \
    F(3, homeloom_client_get_ui_metadata)                                  \
    F(5, homeloom_client_subscribe)                                        \
    F(3, homeloom_client_unsubscribe)                                      \
    F(6, homeloom_client_set_remote_representation)                        \
    F(6, homeloom_client_set_remote_attributes)                            \
    F(5, homeloom_client_get_remote_representation)                        \
    F(5, homeloom_client_get_remote_attributes)                            \
    F(4, homeloom_client_get_group_list)                                   \
    F(3, homeloom_client_group_get_string)                                 \
    F(1, homeloom_client_group_destroy)                                    \
    F(3, homeloom_client_set_group_list_updated_cb)                        \
    F(1, homeloom_client_unset_group_list_updated_cb)                      \
    F(7, homeloom_client_move_devices)                                     \
    F(2, homeloom_client_app_launch_condition_create)                      \
    F(3, homeloom_client_app_launch_condition_set_string)                  \
    F(2, homeloom_client_add_app_launch_condition)                         \
    F(2, homeloom_client_remove_app_launch_condition)                      \
    F(3, homeloom_client_is_app_launch_condition_added)                    \
    F(1, homeloom_client_app_launch_condition_destroy)                     \
    F(7, homeloom_client_set_third_party_notification)                     \
    F(5, homeloom_client_set_third_party_notification_status)              \
    F(3, homeloom_client_get_third_party_notification_status)              \
    F(3, homeloom_client_set_third_party_notification_status_updated_cb)   \
    F(1, homeloom_client_unset_third_party_notification_status_updated_cb) \
    F(3, homeloom_core_get_location_list_async)                            \
    F(3, homeloom_core_location_get_string)                                \
    F(1, homeloom_core_location_destroy)                                   \
    F(4, homeloom_core_get_location_users_async)                           \
    F(3, homeloom_core_get_all_location_users_async)                       \
    F(2, homeloom_core_notify_permission_update)                           \
    F(5, homeloom_core_create_room_async)                                  \
    F(6, homeloom_core_change_room_name_async)                             \
    F(5, homeloom_core_delete_room_async)                                  \
    F(3, homeloom_core_get_device_list_async)                              \
    F(3, homeloom_core_device_get_string)                                  \
    F(1, homeloom_core_device_destroy)                                     \
    F(4, homeloom_core_get_device_json_async)                              \
    F(4, homeloom_core_get_device_list_json_async)                         \
    F(4, homeloom_core_change_device_name)                                 \
    F(2, homeloom_core_delete_device)                                      \
    F(4, homeloom_core_execute_device)                                     \
    F(3, homeloom_core_get_device_status)                                  \
    F(4, homeloom_core_get_device_component_status)                        \
    F(5, homeloom_core_get_device_capability_status)                       \
    F(4, homeloom_core_get_device_presentation)                            \
    F(3, homeloom_core_get_hub_device_id_list)                             \
    F(6, homeloom_core_start_hub_device_discover)                          \
    F(2, homeloom_core_stop_hub_device_discover)                           \
    F(4, homeloom_core_set_sse_cb)                                         \
    F(1, homeloom_core_unset_sse_cb)                                       \
    F(4, homeloom_core_get_scene_list_async)                               \
    F(5, homeloom_core_get_scene_async)                                    \
    F(3, homeloom_core_scene_get_string)                                   \
    F(1, homeloom_core_scene_destroy)                                      \
    F(5, homeloom_core_execute_scene_async)                                \
    F(5, homeloom_core_create_scene_async)                                 \
    F(6, homeloom_core_update_scene_async)                                 \
    F(5, homeloom_core_delete_scene_async)                                 \
    F(3, homeloom_core_get_scene_icon_list_async)                          \
    F(4, homeloom_core_get_rule_list_async)                                \
    F(5, homeloom_core_get_rule_async)                                     \
    F(3, homeloom_core_rule_get_string)                                    \
    F(1, homeloom_core_rule_destroy)                                       \
    F(6, homeloom_core_update_rule_status_async)                           \
    F(4, homeloom_core_get_favorite_list_async)                            \
    F(3, homeloom_core_favorite_get_string)                                \
    F(3, homeloom_core_favorite_get_int)                                   \
    F(1, homeloom_core_favorite_destroy)                                   \
    F(4, homeloom_core_create_favorite)                                    \
    F(3, homeloom_core_delete_favorite)                                    \
    F(2, homeloom_core_delete_favorites)                                   \
    F(5, homeloom_core_replace_favorites)                                  \
    F(5, homeloom_core_get_favorite_migration_status)                      \
    F(4, homeloom_core_update_favorite_migration_status)                   \
    F(4, homeloom_core_create_ir_device)                                   \
    F(3, homeloom_core_get_ir_device)                                      \
    F(5, homeloom_core_send_active_user_event)                             \
    F(3, homeloom_core_get_installed_app_list_async)                       \
    F(3, homeloom_core_installed_app_get_string)                           \
    F(1, homeloom_core_installed_app_destroy)                              \
    F(5, homeloom_core_get_installed_app_dashboard_json_async_v2)          \
    F(4, homeloom_core_get_catalog_app_list_async)                         \
    F(4, homeloom_core_execute_installed_app)                              \
    F(3, homeloom_core_get_wifilocker_user_setting)                        \
    F(4, homeloom_core_set_wifilocker_user_setting)                        \
    F(4, homeloom_core_locksmith_create_keyvalue)                          \
    F(3, homeloom_core_locksmith_get_keyvalue)                             \
    F(4, homeloom_core_locksmith_update_keyvalue)                          \
    F(3, homeloom_core_locksmith_delete_keyvalue)                          \
    F(7, homeloom_core_update_notification_profile)                        \
    F(3, homeloom_core_get_notification_profile)

/// The parameters of such a function for its definition, a0 and so on, and the same as arguments to be passed on.
#define HOMELOOM_PARAMETER(name, i) recorder::ParameterOf<decltype(name), i> a##i
#define HOMELOOM_PARAMETERS_1(name) HOMELOOM_PARAMETER(name, 0)
#define HOMELOOM_PARAMETERS_2(name) HOMELOOM_PARAMETERS_1(name), HOMELOOM_PARAMETER(name, 1)
#define HOMELOOM_PARAMETERS_3(name) HOMELOOM_PARAMETERS_2(name), HOMELOOM_PARAMETER(name, 2)
#define HOMELOOM_PARAMETERS_4(name) HOMELOOM_PARAMETERS_3(name), HOMELOOM_PARAMETER(name, 3)
#define HOMELOOM_PARAMETERS_5(name) HOMELOOM_PARAMETERS_4(name), HOMELOOM_PARAMETER(name, 4)
#define HOMELOOM_PARAMETERS_6(name) HOMELOOM_PARAMETERS_5(name), HOMELOOM_PARAMETER(name, 5)
#define HOMELOOM_PARAMETERS_7(name) HOMELOOM_PARAMETERS_6(name), HOMELOOM_PARAMETER(name, 6)
#define HOMELOOM_PASS_1 a0
#define HOMELOOM_PASS_2 a0, a1
#define HOMELOOM_PASS_3 a0, a1, a2
#define HOMELOOM_PASS_4 a0, a1, a2, a3
#define HOMELOOM_PASS_5 a0, a1, a2, a3, a4
#define HOMELOOM_PASS_6 a0, a1, a2, a3, a4, a5
#define HOMELOOM_PASS_7 a0, a1, a2, a3, a4, a5, a6

#endif
