/*
 * The applications that are installed on the TV. All calls are thread-safe.
 */
#ifndef HOMELOOM_PLATFORM_APP_MANAGER_H
#define HOMELOOM_PLATFORM_APP_MANAGER_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct app_info_s* app_info_h;

/*
 * 0 if the application is installed: *app_info is the caller's, to be freed with app_info_destroy. Negative if it is
 * not or that can't be found out, and *app_info is left alone.
 */
int app_manager_get_app_info(const char* app_id, app_info_h* app_info);
/* 0 on success. */
int app_info_destroy(app_info_h app_info);

#ifdef __cplusplus
}
#endif

#endif
