/*
 * The client family of the agent's C library: session, devices, groups, subscriptions, app launch
 * conditions, third-party notification.
 *
 * The agent is a process of its own; a handle stands for this process's connection to it.
 *
 * Results. Functions return 0 on success or a negative code (homeloom_client_error_e, or one of the agent's own).
 * Out parameters are written on success only.
 *
 * Ownership. A text handed out through a char** is malloc'ed for the caller to free. A list is a malloc'ed array
 * of records: the receiver destroys each record and frees the array. A text inside a callback stays with the
 * caller and lives until the callback returns; it may be null. A list inside a callback becomes the
 * receiver's.
 *
 * Threads. Every function may be called from any thread. Callbacks run on the agent's callback thread,
 * one at a time, never inside the call that registers or causes them. A callback must not wait for another thread
 * that waits for the agent.
 *
 * Asynchronous calls (those with a callback and user data) call back exactly once if they returned 0,
 * and never if they did not.
 */
#ifndef HOMELOOM_PLATFORM_HOMELOOM_CLIENT_H
#define HOMELOOM_PLATFORM_HOMELOOM_CLIENT_H

#include <stdbool.h>

#include "open_enum.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct homeloom_client_s* homeloom_client_h;
typedef struct homeloom_client_device_s* homeloom_client_device_h;
typedef struct homeloom_client_device_detail_s* homeloom_client_device_detail_h;
typedef struct homeloom_client_group_s* homeloom_client_group_h;
typedef struct homeloom_client_app_launch_condition_s* homeloom_client_app_launch_condition_h;

/* The agent's codes from 0xBFFFFFF6 on are told as 32-bit words and arrive as negative ints. */
typedef enum OPEN_ENUM {
    HOMELOOM_CLIENT_ERROR_NONE = 0,
    HOMELOOM_CLIENT_ERROR_IO = -5,
    HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED = -13,
    HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER = -22,
    HOMELOOM_CLIENT_ERROR_NO_DATA = -61,
    HOMELOOM_CLIENT_ERROR_UPDATING = -0x40000004,               /* 0xBFFFFFFC: the agent is being updated */
    HOMELOOM_CLIENT_ERROR_CONNECTION_IN_PROGRESS = -0x40000008, /* 0xBFFFFFF8 */
    HOMELOOM_CLIENT_ERROR_ALREADY_CONNECTED = -0x40000009,      /* 0xBFFFFFF7 */
    HOMELOOM_CLIENT_ERROR_NOT_CONNECTED = -0x4000000A           /* 0xBFFFFFF6 */
} homeloom_client_error_e;

/* ---- Session ---- */

typedef enum OPEN_ENUM {
    HOMELOOM_CLIENT_CONNECTION_STATE_CONNECTED = 0,
    HOMELOOM_CLIENT_CONNECTION_STATE_DISCONNECTED = 1, /* result UPDATING: the agent is being updated */
    HOMELOOM_CLIENT_CONNECTION_STATE_REJECTED = 2,
    HOMELOOM_CLIENT_CONNECTION_STATE_IO_ERROR = 3
} homeloom_client_connection_state_e;

typedef void (*homeloom_client_connection_state_changed_cb)(homeloom_client_error_e result,
                                                            homeloom_client_connection_state_e state, void* user_data);
typedef void (*homeloom_client_sign_in_state_changed_cb)(bool is_signed_in, void* user_data);

/*
 * Asks for a connection; the outcome and every later change come through 'callback'. *client is set when the
 * call returns 0; a *client that is not null is used again. Codes: ALREADY_CONNECTED, CONNECTION_IN_PROGRESS,
 * or the agent's own when the agent can't be asked at all.
 */
int homeloom_client_connect(homeloom_client_h* client, homeloom_client_connection_state_changed_cb callback,
                            void* user_data);
/*
 * Ends the connection, drops every registration, subscription and pending call of this process, and frees the handle.
 * Returns with no callback in flight, unless it is called from one.
 */
int homeloom_client_disconnect(homeloom_client_h client);

int homeloom_client_set_sign_in_state_changed_cb(homeloom_client_h client,
                                                 homeloom_client_sign_in_state_changed_cb callback, void* user_data);
int homeloom_client_unset_sign_in_state_changed_cb(homeloom_client_h client);
int homeloom_client_is_signed_in(homeloom_client_h client, bool* is_signed_in);
int homeloom_client_get_login_id(homeloom_client_h client, char** login_id);
/* The cloud's id of this TV. */
int homeloom_client_get_device_id(homeloom_client_h client, char** device_id);
int homeloom_client_get_connected_user_id(homeloom_client_h client, char** user_id);
int homeloom_client_get_access_token(homeloom_client_h client, char** access_token);
/* The agent's own state number. 2 means that it waits for its connection to the cloud. */
int homeloom_client_get_state(homeloom_client_h client, int* state);
/* Makes the agent read the home from the cloud again; news come through the list callbacks. */
int homeloom_client_refresh_device_information(homeloom_client_h client);

/* Server type: 0 IoT cloud, 1 UI metadata. Environment: 0 staging, 1 production, 2 acceptance. */
int homeloom_client_internal_get_server_env(homeloom_client_h client, int server_type, int* env);
int homeloom_client_internal_set_server_env(homeloom_client_h client, int server_type, int env);

/* ---- Devices ---- */

typedef enum { HOMELOOM_CLIENT_DEVICE_PROPERTY_ID = 0 } homeloom_client_device_property_id_e;

typedef enum {
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_DEVICE_ID = 0,      /* string */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_DEVICE_TYPES = 1,   /* string array */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_NICK_NAME = 3,      /* string */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_PREFIX = 4,         /* string */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_CLOUD_STATUS = 5,   /* int, see DeviceStatus of the device model */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_LOCATION_ID = 8,    /* string */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_VID = 11,           /* string */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_RESOURCES = 13,     /* string array */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_OSV_RESOURCES = 14, /* string array */
    HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_ROOM_ID = 16        /* string */
} homeloom_client_device_detail_property_id_e;

typedef void (*homeloom_client_device_list_updated_cb)(homeloom_client_device_h* list, int count, void* user_data);
typedef void (*homeloom_client_device_detail_list_updated_cb)(homeloom_client_device_detail_h* list, int count,
                                                              void* user_data);

/* Told which devices there are, after each change. After registration the present list comes by itself. */
int homeloom_client_set_device_list_updated_cb(homeloom_client_h client,
                                               homeloom_client_device_list_updated_cb callback, void* user_data);
int homeloom_client_unset_device_list_updated_cb(homeloom_client_h client);
int homeloom_client_device_get_string(homeloom_client_device_h device, int property_id, char** value);
int homeloom_client_device_destroy(homeloom_client_device_h device);

/* Told the details of devices that came or changed. After registration all details come by themselves. */
int homeloom_client_set_device_detail_list_updated_cb(homeloom_client_h client,
                                                      homeloom_client_device_detail_list_updated_cb callback,
                                                      void* user_data);
int homeloom_client_unset_device_detail_list_updated_cb(homeloom_client_h client);
/* All details, from the agent's cache. NO_DATA for a home without devices. */
int homeloom_client_get_device_detail_list(homeloom_client_h client, homeloom_client_device_detail_h** list,
                                           int* count);
int homeloom_client_device_detail_get_string(homeloom_client_device_detail_h detail, int property_id, char** value);
/* *values is a malloc'ed array of malloc'ed texts. */
int homeloom_client_device_detail_get_string_array(homeloom_client_device_detail_h detail, int property_id,
                                                   char*** values, int* count);
int homeloom_client_device_detail_get_int(homeloom_client_device_detail_h detail, int property_id, int* value);
int homeloom_client_device_detail_destroy(homeloom_client_device_detail_h detail);

/* The UI metadata document of a device model; NO_DATA for a model without one. */
int homeloom_client_get_ui_metadata(homeloom_client_h client, const char* vid, char** document);

/* ---- Resources of a device ---- */

/*
 * A resource changed. 'representation' and 'res_data_type' are JSON objects: property to value, and property to type
 * name. 'reserved' is read by nobody.
 */
typedef void (*homeloom_client_subscribe_cb)(const char* device_id, const char* uri, const char* representation,
                                             const char* res_data_type, const char* ocf_error_code,
                                             const char* reserved, void* user_data);
/* The outcome of setting or getting attributes or a representation. */
typedef void (*homeloom_client_remote_cb)(int result, const char* device_id, const char* attributes, const char* uri,
                                          const char* res_data_type, void* user_data);

/*
 * 'uris' is the text of a JSON array of resource URIs. A subscription is identified by the device and this exact
 * text; subscribing again replaces callback and user data. It reports changes, not the present values.
 */
int homeloom_client_subscribe(homeloom_client_h client, const char* device_id, const char* uris,
                              homeloom_client_subscribe_cb callback, void* user_data);
int homeloom_client_unsubscribe(homeloom_client_h client, const char* device_id, const char* uris);

/* Asynchronous; 'payload' is a JSON object of the attributes to set. */
int homeloom_client_set_remote_representation(homeloom_client_h client, const char* device_id, const char* uri,
                                              const char* payload, homeloom_client_remote_cb callback, void* user_data);
int homeloom_client_set_remote_attributes(homeloom_client_h client, const char* device_id, const char* uri,
                                          const char* payload, homeloom_client_remote_cb callback, void* user_data);
int homeloom_client_get_remote_representation(homeloom_client_h client, const char* device_id, const char* uri,
                                              homeloom_client_remote_cb callback, void* user_data);
int homeloom_client_get_remote_attributes(homeloom_client_h client, const char* device_id, const char* uri,
                                          homeloom_client_remote_cb callback, void* user_data);

/* ---- Groups: locations and rooms ---- */

typedef enum {
    HOMELOOM_CLIENT_GROUP_TYPE_LOCATION = 1,
    HOMELOOM_CLIENT_GROUP_TYPE_ROOM = 2
} homeloom_client_group_type_e;

typedef enum {
    HOMELOOM_CLIENT_GROUP_PROPERTY_ID = 0,
    HOMELOOM_CLIENT_GROUP_PROPERTY_NAME = 1,
    HOMELOOM_CLIENT_GROUP_PROPERTY_PARENT_ID = 6 /* of a room: its location */
} homeloom_client_group_property_id_e;

/* 'noti_type' 0 is no change; other values tell what changed. 'list' may be null. */
typedef void (*homeloom_client_group_list_updated_cb)(int noti_type, int group_type, homeloom_client_group_h* list,
                                                      int count, const char* id, void* user_data);

/* NO_DATA when there is no group of that type. */
int homeloom_client_get_group_list(homeloom_client_h client, homeloom_client_group_h** list, int group_type,
                                   int* count);
int homeloom_client_group_get_string(homeloom_client_group_h group, int property_id, char** value);
int homeloom_client_group_destroy(homeloom_client_group_h group);
/* The exception to the rule on lists: the list inside this callback stays the caller's. */
int homeloom_client_set_group_list_updated_cb(homeloom_client_h client, homeloom_client_group_list_updated_cb callback,
                                              void* user_data);
int homeloom_client_unset_group_list_updated_cb(homeloom_client_h client);

typedef void (*homeloom_client_move_devices_cb)(int error, void* user_data);
/* Asynchronous. */
int homeloom_client_move_devices(homeloom_client_h client, char** device_ids, int count, const char* location_id,
                                 const char* room_id, homeloom_client_move_devices_cb callback, void* user_data);

/* ---- App launch conditions: "launch this app when that resource says so" ---- */

typedef enum {
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_APP_ID = 0,
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_DEVICE_ID = 1,
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_RESOURCE_URI = 2,
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_NAME = 3,
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_TYPE = 4,
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_VALUE = 5,
    HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_BUNDLE = 6
} homeloom_client_app_launch_condition_property_id_e;

int homeloom_client_app_launch_condition_create(homeloom_client_h client,
                                                homeloom_client_app_launch_condition_h* condition);
int homeloom_client_app_launch_condition_set_string(homeloom_client_app_launch_condition_h condition, int property_id,
                                                    const char* value);
/* The agent keeps a copy; the condition stays the caller's. */
int homeloom_client_add_app_launch_condition(homeloom_client_h client,
                                             homeloom_client_app_launch_condition_h condition);
/* NO_DATA if no equal condition was added. */
int homeloom_client_remove_app_launch_condition(homeloom_client_h client,
                                                homeloom_client_app_launch_condition_h condition);
int homeloom_client_is_app_launch_condition_added(homeloom_client_h client,
                                                  homeloom_client_app_launch_condition_h condition, bool* is_added);
int homeloom_client_app_launch_condition_destroy(homeloom_client_app_launch_condition_h condition);

/* ---- Third-party notification ---- */

typedef void (*homeloom_client_third_party_notification_cb)(bool result, void* user_data);
/* 'device_ids' stays the caller's. */
typedef void (*homeloom_client_third_party_notification_status_cb)(int error, bool enabled, char** device_ids,
                                                                   int count, void* user_data);
typedef void (*homeloom_client_third_party_notification_status_updated_cb)(void* user_data);

/* Asynchronous. */
int homeloom_client_set_third_party_notification(homeloom_client_h client, const char* provider, const char* reg_id,
                                                 const char* app_id, const char* locale,
                                                 homeloom_client_third_party_notification_cb callback, void* user_data);
/* Asynchronous; an empty list clears the user's blocks. */
int homeloom_client_set_third_party_notification_status(homeloom_client_h client, const char** device_ids, int count,
                                                        homeloom_client_third_party_notification_cb callback,
                                                        void* user_data);
/* Asynchronous. */
int homeloom_client_get_third_party_notification_status(homeloom_client_h client,
                                                        homeloom_client_third_party_notification_status_cb callback,
                                                        void* user_data);
int homeloom_client_set_third_party_notification_status_updated_cb(
    homeloom_client_h client, homeloom_client_third_party_notification_status_updated_cb callback, void* user_data);
int homeloom_client_unset_third_party_notification_status_updated_cb(homeloom_client_h client);

#ifdef __cplusplus
}
#endif

#endif
