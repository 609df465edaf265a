/*
 * Endpoints: the framework's record of one device, location, scene or routine, and lists of them.
 *
 * Nothing here is thread-safe: one endpoint or list is used by one thread at a time. Every call checks
 * its handle and answers VMF_ERROR_INVALID_PARAMETER (or null) for a bad one. Texts are copied in;
 * texts handed out stay with the endpoint and live until the field is set again or the endpoint ends.
 */
#ifndef HOMELOOM_PLATFORM_VMF_ENDPOINT_H
#define HOMELOOM_PLATFORM_VMF_ENDPOINT_H

#include <stdbool.h>

#include "vmf_common.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vmf_endpoint_s* vmf_endpoint_h;
typedef struct vmf_endpoint_list_s* vmf_endpoint_list_h;

/*
 * Makes an endpoint, or null. It belongs to the caller until it is pushed on a list, which owns it
 * from then on; an endpoint that is never pushed is freed with vmf_endpoint_destroy.
 */
vmf_endpoint_h vmf_endpoint_create(void);
/* Makes a deep copy, or null. Freed with vmf_endpoint_destroy. */
vmf_endpoint_h vmf_endpoint_copy(vmf_endpoint_h endpoint);
vmf_error_e vmf_endpoint_destroy(vmf_endpoint_h endpoint);

vmf_error_e vmf_endpoint_set_service_name(vmf_endpoint_h endpoint, const char* value);
vmf_error_e vmf_endpoint_set_interface_type(vmf_endpoint_h endpoint, const char* value);
vmf_error_e vmf_endpoint_set_device_id(vmf_endpoint_h endpoint, const char* value);
vmf_error_e vmf_endpoint_set_device_name(vmf_endpoint_h endpoint, const char* value);
vmf_error_e vmf_endpoint_set_device_type(vmf_endpoint_h endpoint, const char* value);
vmf_error_e vmf_endpoint_set_sub_device_type(vmf_endpoint_h endpoint, const char* value);

/* Extra data: one value for a key; setting a key again replaces its value and may change its type. */
vmf_error_e vmf_endpoint_set_extra_data(vmf_endpoint_h endpoint, const char* key, const char* value);
vmf_error_e vmf_endpoint_set_extra_data_int(vmf_endpoint_h endpoint, const char* key, int value);
vmf_error_e vmf_endpoint_set_extra_data_bool(vmf_endpoint_h endpoint, const char* key, bool value);

/* Null for a field that was never set, or a bad handle. */
const char* vmf_endpoint_get_service_name(vmf_endpoint_h endpoint);
const char* vmf_endpoint_get_interface_type(vmf_endpoint_h endpoint);
const char* vmf_endpoint_get_device_id(vmf_endpoint_h endpoint);
const char* vmf_endpoint_get_device_name(vmf_endpoint_h endpoint);
const char* vmf_endpoint_get_device_type(vmf_endpoint_h endpoint);
/* The text under 'key'; null if there is none or it is an int or a bool. */
const char* vmf_endpoint_get_extra_data(vmf_endpoint_h endpoint, const char* key);

/* Makes an empty list, or null and *error. vmf_endpoint_list_destroy frees it with its endpoints. */
vmf_endpoint_list_h vmf_endpoint_list_create(vmf_error_e* error);
vmf_error_e vmf_endpoint_list_destroy(vmf_endpoint_list_h list);

/* Appends an endpoint. The list owns it from here on; on failure it stays the caller's. */
vmf_error_e vmf_endpoint_list_push_endpoint(vmf_endpoint_list_h list, vmf_endpoint_h endpoint);
/* Takes the first endpoint off the list and gives it to the caller; VMF_ERROR_NOT_FOUND if empty. */
vmf_error_e vmf_endpoint_list_pop(vmf_endpoint_list_h list, void** endpoint);
/* The first endpoint with that device id, still owned by the list, or null. */
vmf_endpoint_h vmf_endpoint_list_find(vmf_endpoint_list_h list, const char* device_id);
/* Iteration: a cursor to the first endpoint or the one after 'cursor'; null at the end. */
void* vmf_endpoint_list_get_first(vmf_endpoint_list_h list);
void* vmf_endpoint_list_get_next(vmf_endpoint_list_h list, void* cursor);
/* True for a list without endpoints, and for a bad handle. */
bool vmf_endpoint_list_empty(vmf_endpoint_list_h list);
/* How many endpoints have this device type. */
int vmf_endpoint_list_count(vmf_endpoint_list_h list, const char* device_type);

#ifdef __cplusplus
}
#endif

#endif
