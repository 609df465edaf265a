/*
 * Starts applications. An app_control is what one application asks of another: which one, and what for.
 *
 * Codes are 0 or negative. An app_control is used by one thread at a time.
 */
#ifndef HOMELOOM_PLATFORM_APP_CONTROL_H
#define HOMELOOM_PLATFORM_APP_CONTROL_H

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    APP_CONTROL_ERROR_NONE = 0,
    APP_CONTROL_ERROR_OUT_OF_MEMORY = -12,
    APP_CONTROL_ERROR_INVALID_PARAMETER = -22,
    APP_CONTROL_ERROR_APP_NOT_FOUND = -101,
    APP_CONTROL_ERROR_LAUNCH_FAILED = -102
} app_control_error_e;

typedef struct app_control_s* app_control_h;

/* The launched application's reply. */
typedef void (*app_control_reply_cb)(app_control_h request, app_control_h reply, int result, void* user_data);

/* *app_control is for the caller to destroy. */
int app_control_create(app_control_h* app_control);
int app_control_destroy(app_control_h app_control);

/* Texts are copied. A second value for a key replaces the first. */
int app_control_set_app_id(app_control_h app_control, const char* app_id);
int app_control_add_extra_data(app_control_h app_control, const char* key, const char* value);

/*
 * Starts the application, or hands the request to it when it runs already. Returns when the request is on its way, not
 * when it is done. A 'callback' gets the application's reply on the GLib main loop; null asks for none.
 */
int app_control_send_launch_request(app_control_h app_control, app_control_reply_cb callback, void* user_data);

#ifdef __cplusplus
}
#endif

#endif
