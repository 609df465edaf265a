/*
 * What the user has set for the whole TV.
 */
#ifndef HOMELOOM_PLATFORM_SYSTEM_SETTINGS_H
#define HOMELOOM_PLATFORM_SYSTEM_SETTINGS_H

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    SYSTEM_SETTINGS_KEY_LOCALE_LANGUAGE = 13 /* the language, as "en_US" */
} system_settings_key_e;

/* A text, malloc'ed for the caller to free. 0 on success; negative otherwise, and *value is left alone. Thread-safe. */
int system_settings_get_value_string(system_settings_key_e key, char** value);

#ifdef __cplusplus
}
#endif

#endif
