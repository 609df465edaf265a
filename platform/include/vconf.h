/*
 * The TV's settings: texts and integers under path-like keys. Keys that begin with "db/" are kept,
 * keys that begin with "memory/" vanish at power-off.
 *
 * All calls are thread-safe. Callbacks run on the GLib main loop.
 */
#ifndef HOMELOOM_PLATFORM_VCONF_H
#define HOMELOOM_PLATFORM_VCONF_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vconf_keynode_s keynode_t;
typedef void (*vconf_callback_fn)(keynode_t* node, void* user_data);

/* 0 and *value on success; negative if the key is absent or not an integer, and *value is left alone. */
int vconf_get_int(const char* key, int* value);
/* The text, malloc'ed for the caller to free; null if the key is absent or not a text. */
char* vconf_get_str(const char* key);
/* 0 on success. Watchers are told also when the value is the same as before. */
int vconf_set_str(const char* key, const char* value);

/*
 * Calls 'callback' on the main loop after each change of the key. One registration for each pair of key and callback:
 * a second one replaces the user data. 0 on success.
 */
int vconf_notify_key_changed(const char* key, vconf_callback_fn callback, void* user_data);
/*
 * Ends the watch. When it returns the callback is not running and will not run again, unless the
 * caller is that callback itself. Negative if there was no such watch.
 */
int vconf_ignore_key_changed(const char* key, vconf_callback_fn callback);

/* The key's name, valid during the callback. */
const char* vconf_keynode_get_name(keynode_t* node);

#ifdef __cplusplus
}
#endif

#endif
