/*
 * Facts about the running application. Texts are malloc'ed for the caller to free; 0 on success.
 */
#ifndef HOMELOOM_PLATFORM_APP_COMMON_H
#define HOMELOOM_PLATFORM_APP_COMMON_H

#ifdef __cplusplus
extern "C" {
#endif

int app_get_name(char** name);
int app_get_version(char** version);

#ifdef __cplusplus
}
#endif

#endif
