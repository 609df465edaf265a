/*
 * Where the application keeps its files.
 */
#ifndef HOMELOOM_PLATFORM_APP_DATA_FOLDER_H
#define HOMELOOM_PLATFORM_APP_DATA_FOLDER_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A folder that stands for the TV's, without a slash at its end, on machines that have no such folder. The text stays
 * the platform's. Optional: a TV defines no such function, and its own folder is used.
 */
const char* app_data_folder_elsewhere(void) __attribute__((weak));

#ifdef __cplusplus
}
#endif

#endif
