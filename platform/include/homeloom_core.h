/*
 * The core family of the agent's C library: core locations and devices, scenes, rules (routines), favorites,
 * installed apps, hub, user events, and the stream of server-sent events.
 *
 * Results, ownership and threads are those of homeloom_client.h. The functions whose names end in
 * _async, and those that take a callback with user data, are asynchronous.
 */
#ifndef HOMELOOM_PLATFORM_HOMELOOM_CORE_H
#define HOMELOOM_PLATFORM_HOMELOOM_CORE_H

#include <stdbool.h>

#include "homeloom_client.h"
#include "open_enum.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct homeloom_core_location_s* homeloom_core_location_h;
typedef struct homeloom_core_device_s* homeloom_core_device_h;
typedef struct homeloom_core_scene_s* homeloom_core_scene_h;
typedef struct homeloom_core_rule_s* homeloom_core_rule_h;
typedef struct homeloom_core_favorite_s* homeloom_core_favorite_h;
typedef struct homeloom_core_installed_app_s* homeloom_core_installed_app_h;

/* The common reply: a JSON text, and on failure a text for people. Either may be null. */
typedef void (*homeloom_core_json_cb)(int error, const char* error_message, const char* result_json, void* user_data);

/* ---- Locations and rooms ---- */

typedef enum {
    HOMELOOM_CORE_LOCATION_ID = 0,
    HOMELOOM_CORE_LOCATION_NAME = 1,
    HOMELOOM_CORE_LOCATION_PERMISSION = 11
} homeloom_core_location_field_e;

typedef void (*homeloom_core_location_list_cb)(int error, homeloom_core_location_h* list, int count, void* user_data);

int homeloom_core_get_location_list_async(homeloom_client_h client, homeloom_core_location_list_cb callback,
                                          void* user_data);
int homeloom_core_location_get_string(homeloom_core_location_h location, int field, char** value);
int homeloom_core_location_destroy(homeloom_core_location_h location);

/* Reply: an object with "locationId" and "owner" {"norvaneAccountId", "name"}. */
int homeloom_core_get_location_users_async(homeloom_client_h client, const char* location_id,
                                           homeloom_core_json_cb callback, void* user_data);
/* Reply: an array of such objects, one for each location. */
int homeloom_core_get_all_location_users_async(homeloom_client_h client, homeloom_core_json_cb callback,
                                               void* user_data);
/* An empty location id stands for all. */
int homeloom_core_notify_permission_update(homeloom_client_h client, const char* location_id);

/* Reply: an object with "roomId" and "name". */
int homeloom_core_create_room_async(homeloom_client_h client, const char* location_id, const char* room_name,
                                    homeloom_core_json_cb callback, void* user_data);
int homeloom_core_change_room_name_async(homeloom_client_h client, const char* location_id, const char* room_id,
                                         const char* room_name, homeloom_core_json_cb callback, void* user_data);
int homeloom_core_delete_room_async(homeloom_client_h client, const char* location_id, const char* room_id,
                                    homeloom_core_json_cb callback, void* user_data);

/* ---- Core devices ---- */

typedef enum {
    HOMELOOM_CORE_DEVICE_ID = 0,
    HOMELOOM_CORE_DEVICE_NAME = 1,
    HOMELOOM_CORE_DEVICE_TYPE = 2, /* how the device is integrated: "OCF", "DTH", "IR_OCF", ... */
    HOMELOOM_CORE_DEVICE_LOCATION_ID = 3,
    HOMELOOM_CORE_DEVICE_ROOM_ID = 4,
    HOMELOOM_CORE_DEVICE_PRESENTATION_ID = 5,
    HOMELOOM_CORE_DEVICE_MANUFACTURER_NAME = 6,
    HOMELOOM_CORE_DEVICE_DETAILS = 7, /* JSON object; with "dth" or "irOcf" where they apply */
    HOMELOOM_CORE_DEVICE_ICONS = 8    /* JSON object of the icon set */
} homeloom_core_device_field_e;

typedef void (*homeloom_core_device_list_cb)(int error, homeloom_core_device_h* list, int count, void* user_data);

int homeloom_core_get_device_list_async(homeloom_client_h client, homeloom_core_device_list_cb callback,
                                        void* user_data);
int homeloom_core_device_get_string(homeloom_core_device_h device, int field, char** value);
int homeloom_core_device_destroy(homeloom_core_device_h device);

int homeloom_core_get_device_json_async(homeloom_client_h client, const char* device_id, homeloom_core_json_cb callback,
                                        void* user_data);
/* Reply: an object with the array "items". An empty filter selects all. */
int homeloom_core_get_device_list_json_async(homeloom_client_h client, const char* filter,
                                             homeloom_core_json_cb callback, void* user_data);

/* The calls below answer at once, from the agent's connection to the cloud; they may take seconds. */
int homeloom_core_change_device_name(homeloom_client_h client, const char* device_id, const char* name,
                                     char** result_json);
int homeloom_core_delete_device(homeloom_client_h client, const char* device_id);
/* 'json_command' is {"commands": [{"component", "capability", "command", ...}]}. */
int homeloom_core_execute_device(homeloom_client_h client, const char* device_id, const char* json_command,
                                 char** response_json);
int homeloom_core_get_device_status(homeloom_client_h client, const char* device_id, char** status_json);
int homeloom_core_get_device_component_status(homeloom_client_h client, const char* device_id, const char* component,
                                              char** status_json);
/* Reply: attribute name to an object with "value". */
int homeloom_core_get_device_capability_status(homeloom_client_h client, const char* device_id, const char* component,
                                               const char* capability, char** status_json);
/* The canvas document of a presentation; NO_DATA if there is none. */
int homeloom_core_get_device_presentation(homeloom_client_h client, const char* presentation_id,
                                          const char* manufacturer_name, char** document);

/* ---- Hub ---- */

/* Devices that this TV's own hub serves. *device_ids is a malloc'ed array of malloc'ed texts. */
int homeloom_core_get_hub_device_id_list(homeloom_client_h client, char*** device_ids, int* count);
/* 'timeout' in seconds. What the last three arguments mean is the agent's. */
int homeloom_core_start_hub_device_discover(homeloom_client_h client, const char* hub_device_id, int timeout,
                                            bool flag_a, bool flag_b, int extra);
int homeloom_core_stop_hub_device_discover(homeloom_client_h client, const char* hub_device_id);

/* ---- Server-sent events ---- */

typedef enum OPEN_ENUM {
    HOMELOOM_CORE_SSE_DEVICE_EVENT = 1,
    HOMELOOM_CORE_SSE_DEVICE_LIFECYCLE = 2,
    HOMELOOM_CORE_SSE_DEVICE_HEALTH = 4,
    HOMELOOM_CORE_SSE_SCENE_LIFECYCLE = 256,
    HOMELOOM_CORE_SSE_INSTALLED_APP_LIFECYCLE = 2048,
    HOMELOOM_CORE_SSE_SMART_APP_EVENT = 4096,
    HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE = 32768,
    HOMELOOM_CORE_SSE_FAVORITE_LIFECYCLE = 262144
} homeloom_core_sse_e;

/* 'timestamp' in milliseconds since the epoch. */
typedef void (*homeloom_core_sse_cb)(homeloom_core_sse_e type, long long timestamp, const char* json, void* user_data);

/* 'mask' is the sum of the kinds wanted. One callback for each connection; a second call replaces it. */
int homeloom_core_set_sse_cb(homeloom_client_h client, int mask, homeloom_core_sse_cb callback, void* user_data);
int homeloom_core_unset_sse_cb(homeloom_client_h client);

/* ---- Scenes ---- */

typedef enum { HOMELOOM_CORE_SCENE_ID = 0, HOMELOOM_CORE_SCENE_JSON = 1 } homeloom_core_scene_field_e;

typedef void (*homeloom_core_scene_list_cb)(int error, homeloom_core_scene_h* list, int count, void* user_data);
typedef void (*homeloom_core_scene_cb)(int error, homeloom_core_scene_h scene, void* user_data);

int homeloom_core_get_scene_list_async(homeloom_client_h client, const char* location_id,
                                       homeloom_core_scene_list_cb callback, void* user_data);
int homeloom_core_get_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                  homeloom_core_scene_cb callback, void* user_data);
int homeloom_core_scene_get_string(homeloom_core_scene_h scene, int field, char** value);
int homeloom_core_scene_destroy(homeloom_core_scene_h scene);
/* Reply: an object with "id" and "result", which is "Success" when the scene ran. */
int homeloom_core_execute_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                      homeloom_core_json_cb callback, void* user_data);
/* Replies of these three: the scene, with its "id". */
int homeloom_core_create_scene_async(homeloom_client_h client, const char* location_id, const char* scene_json,
                                     homeloom_core_json_cb callback, void* user_data);
int homeloom_core_update_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                     const char* scene_json, homeloom_core_json_cb callback, void* user_data);
int homeloom_core_delete_scene_async(homeloom_client_h client, const char* location_id, const char* scene_id,
                                     homeloom_core_json_cb callback, void* user_data);
int homeloom_core_get_scene_icon_list_async(homeloom_client_h client, homeloom_core_json_cb callback, void* user_data);

/* ---- Rules, which the user knows as routines ---- */

typedef enum { HOMELOOM_CORE_RULE_ID = 0, HOMELOOM_CORE_RULE_JSON = 1 } homeloom_core_rule_field_e;

typedef void (*homeloom_core_rule_list_cb)(int error, homeloom_core_rule_h* list, int count, void* user_data);
typedef void (*homeloom_core_rule_cb)(int error, homeloom_core_rule_h rule, void* user_data);

int homeloom_core_get_rule_list_async(homeloom_client_h client, const char* location_id,
                                      homeloom_core_rule_list_cb callback, void* user_data);
int homeloom_core_get_rule_async(homeloom_client_h client, const char* location_id, const char* rule_id,
                                 homeloom_core_rule_cb callback, void* user_data);
int homeloom_core_rule_get_string(homeloom_core_rule_h rule, int field, char** value);
int homeloom_core_rule_destroy(homeloom_core_rule_h rule);
int homeloom_core_update_rule_status_async(homeloom_client_h client, const char* location_id, const char* rule_id,
                                           bool enable, homeloom_core_json_cb callback, void* user_data);

/* ---- Favorites ---- */

typedef enum {
    HOMELOOM_CORE_FAVORITE_ID = 0,
    HOMELOOM_CORE_FAVORITE_LOCATION_ID = 1,
    HOMELOOM_CORE_FAVORITE_MEMBER_ID = 2,
    HOMELOOM_CORE_FAVORITE_MEMBER_TYPE = 3,
    HOMELOOM_CORE_FAVORITE_CREATE_DATE = 7,
    HOMELOOM_CORE_FAVORITE_LAST_UPDATE_DATE = 8,
    HOMELOOM_CORE_FAVORITE_ORDER = 9 /* int */
} homeloom_core_favorite_field_e;

typedef void (*homeloom_core_favorite_list_cb)(int error, homeloom_core_favorite_h* list, int count, void* user_data);

int homeloom_core_get_favorite_list_async(homeloom_client_h client, const char* location_id,
                                          homeloom_core_favorite_list_cb callback, void* user_data);
int homeloom_core_favorite_get_string(homeloom_core_favorite_h favorite, int field, char** value);
int homeloom_core_favorite_get_int(homeloom_core_favorite_h favorite, int field, int* value);
int homeloom_core_favorite_destroy(homeloom_core_favorite_h favorite);
int homeloom_core_create_favorite(homeloom_client_h client, const char* location_id, const char* favorite_info,
                                  homeloom_core_favorite_h* favorite);
int homeloom_core_delete_favorite(homeloom_client_h client, const char* location_id, const char* favorite_id);
/* All favorites of a location. */
int homeloom_core_delete_favorites(homeloom_client_h client, const char* location_id);
/* 'favorite_info_array' is a JSON array. May hand out a list on failure as well. */
int homeloom_core_replace_favorites(homeloom_client_h client, const char* location_id, const char* favorite_info_array,
                                    homeloom_core_favorite_h** list, int* count);
int homeloom_core_get_favorite_migration_status(homeloom_client_h client, const char* location_id, bool* is_migrated,
                                                char** last_updated_date, char** device_model);
int homeloom_core_update_favorite_migration_status(homeloom_client_h client, const char* location_id,
                                                   const char* status_info, char** status_result);

/* ---- Infrared devices ---- */

/* Reply: an object with "deviceId", or "errorCode". */
int homeloom_core_create_ir_device(homeloom_client_h client, const char* location_id, const char* request_body,
                                   char** response_json);
int homeloom_core_get_ir_device(homeloom_client_h client, const char* device_id, char** response_json);

/* ---- User events ---- */

/* The platform's numbers, any of them: who sends an event knows what they mean. */
typedef int homeloom_core_user_event_category_e;
typedef int homeloom_core_user_event_action_e;

int homeloom_core_send_active_user_event(homeloom_client_h client, homeloom_core_user_event_category_e category,
                                         homeloom_core_user_event_action_e action, const char* label,
                                         const char* metadata);

/* ---- Installed and catalog apps ---- */

typedef enum {
    HOMELOOM_CORE_INSTALLED_APP_ID = 0,
    HOMELOOM_CORE_INSTALLED_APP_DISPLAY_NAME = 1,
    HOMELOOM_CORE_INSTALLED_APP_STATUS = 2,
    HOMELOOM_CORE_INSTALLED_APP_APP_ID = 4, /* the catalog's endpoint app id */
    HOMELOOM_CORE_INSTALLED_APP_LOCATION_ID = 6,
    HOMELOOM_CORE_INSTALLED_APP_UI = 12 /* JSON object */
} homeloom_core_installed_app_field_e;

typedef void (*homeloom_core_installed_app_list_cb)(int error, homeloom_core_installed_app_h* list, int count,
                                                    void* user_data);

int homeloom_core_get_installed_app_list_async(homeloom_client_h client, homeloom_core_installed_app_list_cb callback,
                                               void* user_data);
int homeloom_core_installed_app_get_string(homeloom_core_installed_app_h app, int field, char** value);
int homeloom_core_installed_app_destroy(homeloom_core_installed_app_h app);
int homeloom_core_get_installed_app_dashboard_json_async_v2(homeloom_client_h client, const char* installed_app_id,
                                                            const char* request_body, homeloom_core_json_cb callback,
                                                            void* user_data);
int homeloom_core_get_catalog_app_list_async(homeloom_client_h client, const char* request_json,
                                             homeloom_core_json_cb callback, void* user_data);
int homeloom_core_execute_installed_app(homeloom_client_h client, const char* installed_app_id,
                                        const char* request_json, char** response_json);

/* ---- Settings that the platform keeps for the user ---- */

int homeloom_core_get_wifilocker_user_setting(homeloom_client_h client, homeloom_core_json_cb callback,
                                              void* user_data);
int homeloom_core_set_wifilocker_user_setting(homeloom_client_h client, const char* setting_json,
                                              homeloom_core_json_cb callback, void* user_data);

int homeloom_core_locksmith_create_keyvalue(homeloom_client_h client, const char* key, const char* value,
                                            char** result_json);
int homeloom_core_locksmith_get_keyvalue(homeloom_client_h client, const char* key, char** result_json);
int homeloom_core_locksmith_update_keyvalue(homeloom_client_h client, const char* key, const char* value,
                                            char** result_json);
int homeloom_core_locksmith_delete_keyvalue(homeloom_client_h client, const char* key, char** result_json);

typedef void (*homeloom_core_notification_profile_cb)(int error, const char* error_message, const char* provider,
                                                      const char* reg_id, const char* app_id, const char* locale,
                                                      void* user_data);

/* Reply: an object with "message", which is "SUCCESS" when the profile was taken. */
int homeloom_core_update_notification_profile(homeloom_client_h client, const char* provider, const char* reg_id,
                                              const char* app_id, const char* locale, homeloom_core_json_cb callback,
                                              void* user_data);
int homeloom_core_get_notification_profile(homeloom_client_h client, homeloom_core_notification_profile_cb callback,
                                           void* user_data);

#ifdef __cplusplus
}
#endif

#endif
