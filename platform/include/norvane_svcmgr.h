/*
 * The service manager: it updates the client agent while the TV runs, and lends processes a priority boost.
 */
#ifndef HOMELOOM_PLATFORM_NORVANE_SVCMGR_H
#define HOMELOOM_PLATFORM_NORVANE_SVCMGR_H

#include "open_enum.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum OPEN_ENUM {
    NORVANE_SVCMGR_UPDATE_STATUS_NONE = 0,
    NORVANE_SVCMGR_UPDATE_STATUS_DOWNLOADED = 1,
    NORVANE_SVCMGR_UPDATE_STATUS_STARTED = 2, /* the agent is about to go away */
    NORVANE_SVCMGR_UPDATE_STATUS_ENDED = 3    /* the agent is back */
} norvane_svcmgr_update_status_e;

/* Called on a thread of the service manager, one call at a time. */
typedef void (*norvane_svcmgr_update_status_cb)(norvane_svcmgr_update_status_e status, void* user_data);

/* One callback for each process; a second call replaces it. 0 on success. */
int norvane_svcmgr_set_update_status_cb(norvane_svcmgr_update_status_cb callback, void* user_data);
/* When it returns no callback is running, unless the caller is that callback itself. 0 on success. */
int norvane_svcmgr_unset_update_status_cb(void);

/* What a boost asks for. The first four numbers are the service manager's own. */
typedef struct {
    int type;
    int level;
    int scope;
    int option;
    int duration_ms;
} norvane_svcmgr_boost_request_s;

/* Asks to raise the priority of the application 'app_id' on behalf of the process 'caller_pid'. 0 on success. */
int norvane_svcmgr_request_boost(const char* app_id, int caller_pid, const norvane_svcmgr_boost_request_s* request);

#ifdef __cplusplus
}
#endif

#endif
