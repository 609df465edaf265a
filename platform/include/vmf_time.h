/*
 * The framework's conversion of times.
 */
#ifndef HOMELOOM_PLATFORM_VMF_TIME_H
#define HOMELOOM_PLATFORM_VMF_TIME_H

#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The TV's local time for a time of day that was told in UTC. 'utc_reading' is what mktime() makes of the parts of the
 * UTC time, with tm_isdst 0; what comes back gives the parts of the local time when it is handed to localtime(). May be
 * called from any thread.
 */
time_t vmf_time_utc_to_local(time_t utc_reading);

#ifdef __cplusplus
}
#endif

#endif
