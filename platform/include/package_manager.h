/*
 * What happens to the TV's packages: each is told when it is installed, removed or updated. A package of one
 * application has that application's id as its name.
 *
 * All calls are thread-safe. Callbacks run on the GLib main loop.
 */
#ifndef HOMELOOM_PLATFORM_PACKAGE_MANAGER_H
#define HOMELOOM_PLATFORM_PACKAGE_MANAGER_H

#include "open_enum.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct package_manager_s* package_manager_h;

typedef enum OPEN_ENUM {
    PACKAGE_MANAGER_EVENT_TYPE_INSTALL = 0,
    PACKAGE_MANAGER_EVENT_TYPE_UNINSTALL = 1,
    PACKAGE_MANAGER_EVENT_TYPE_UPDATE = 2
} package_manager_event_type_e;

/* An event comes as started, then as processing any number of times, then as completed or failed. */
typedef enum OPEN_ENUM {
    PACKAGE_MANAGER_EVENT_STATE_STARTED = 0,
    PACKAGE_MANAGER_EVENT_STATE_PROCESSING = 1,
    PACKAGE_MANAGER_EVENT_STATE_COMPLETED = 2,
    PACKAGE_MANAGER_EVENT_STATE_FAILED = 3
} package_manager_event_state_e;

typedef enum {
    PACKAGE_MANAGER_ERROR_NONE = 0,
    PACKAGE_MANAGER_ERROR_INVALID_PARAMETER = -22,
    PACKAGE_MANAGER_ERROR_OUT_OF_MEMORY = -12,
    PACKAGE_MANAGER_ERROR_IO_ERROR = -5
} package_manager_error_e;

/*
 * 'type' is what kind of package it is, 'package' its name; both are valid during the call only.
 * 'progress' is in per cent. 'error' tells why an event failed.
 */
typedef void (*package_manager_event_cb)(const char* type, const char* package, package_manager_event_type_e event_type,
                                         package_manager_event_state_e event_state, int progress,
                                         package_manager_error_e error, void* user_data);

/* These return a package_manager_error_e. */

/* *manager is the caller's, to be freed with package_manager_destroy; left alone on failure. */
int package_manager_create(package_manager_h* manager);
/* Also ends the handle's callback, as package_manager_unset_event_cb does. */
int package_manager_destroy(package_manager_h manager);
/* One callback for each handle; a second one replaces it. */
int package_manager_set_event_cb(package_manager_h manager, package_manager_event_cb callback, void* user_data);
/* When it returns the callback is not running and will not run again, unless the caller is that callback itself. */
int package_manager_unset_event_cb(package_manager_h manager);

#ifdef __cplusplus
}
#endif

#endif
