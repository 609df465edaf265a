/*
 * What the TV is and can do, under keys. Nothing of it changes while the TV runs. All calls are thread-safe.
 */
#ifndef HOMELOOM_PLATFORM_SYSTEM_INFO_H
#define HOMELOOM_PLATFORM_SYSTEM_INFO_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The text key of the platform's version, as "9.0". */
#define SYSTEM_INFO_PLATFORM_VERSION "com.norvane/feature/platform.version"

/*
 * Whether the TV has a feature that its maker added. 0 on success; negative if the key is unknown or the facts can't be
 * read, and *value is left alone.
 */
int system_info_get_custom_bool(const char* key, bool* value);
/* A text about the platform, malloc'ed for the caller to free. Results as above. */
int system_info_get_platform_string(const char* key, char** value);

#ifdef __cplusplus
}
#endif

#endif
