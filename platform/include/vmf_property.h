/*
 * Property lists: the framework's form of every request, result and notify.
 *
 * A property list has a name and an ordered row of properties; a property has a key and a value of one
 * type (text, int or bool). Nothing here is thread-safe: one list is used by one thread at a time.
 * Every call checks its handle and answers VMF_ERROR_INVALID_PARAMETER (or null) for a bad one.
 */
#ifndef HOMELOOM_PLATFORM_VMF_PROPERTY_H
#define HOMELOOM_PLATFORM_VMF_PROPERTY_H

#include <stdbool.h>

#include "vmf_common.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vmf_property_s* vmf_property_h;
typedef struct vmf_property_list_s* vmf_property_list_h;

/*
 * Makers of a property. Key and value are copied. They return null and set *error on failure
 * ('error' must not be null). The property is the caller's until it is pushed on a list.
 */
vmf_property_h vmf_property_create_string(const char* key, const char* value, vmf_error_e* error);
vmf_property_h vmf_property_create_int(const char* key, int value, vmf_error_e* error);
vmf_property_h vmf_property_create_bool(const char* key, bool value, vmf_error_e* error);

/*
 * Getters. On VMF_ERROR_NONE *value is set; otherwise it is left as it was. A null property is
 * VMF_ERROR_INVALID_PARAMETER, a value of another type VMF_ERROR_WRONG_TYPE.
 * The text stays with the property and lives as long as it.
 */
vmf_error_e vmf_property_get_string(vmf_property_h property, const char** value);
vmf_error_e vmf_property_get_int(vmf_property_h property, int* value);
vmf_error_e vmf_property_get_bool(vmf_property_h property, bool* value);

/* Makes an empty list without a name; null and *error on failure. Freed with vmf_property_list_destroy. */
vmf_property_list_h vmf_property_list_create(vmf_error_e* error);
/* Makes a deep copy with name and order; null and *error on failure (a null list included). */
vmf_property_list_h vmf_property_list_copy(vmf_property_list_h list, vmf_error_e* error);
/* Frees the list with all its properties. */
vmf_error_e vmf_property_list_destroy(vmf_property_list_h list);

vmf_error_e vmf_property_list_set_name(vmf_property_list_h list, const char* name);
/* The list's name, owned by the list, valid until the next set_name or destroy; null without a name. */
const char* vmf_property_list_get_name(vmf_property_list_h list);

/* Appends a property. The list owns the property from here on, also when the call fails. */
vmf_error_e vmf_property_list_push_property(vmf_property_list_h list, vmf_property_h property);
/*
 * Takes the first property off the list. *property is then no longer part of the list, but stays
 * allocated until the list is destroyed. VMF_ERROR_NOT_FOUND on an empty list.
 */
vmf_error_e vmf_property_list_pop(vmf_property_list_h list, void** property);
/* The first property with that key, still owned by the list, or null. */
vmf_property_h vmf_property_list_find(vmf_property_list_h list, const char* key);
/* Iteration: a cursor to the first property or the one after 'cursor'; null at the end. */
void* vmf_property_list_get_first(vmf_property_list_h list);
void* vmf_property_list_get_next(vmf_property_list_h list, void* cursor);
/* True for a list without properties, and for a bad handle. */
bool vmf_property_list_empty(vmf_property_list_h list);

#ifdef __cplusplus
}
#endif

#endif
