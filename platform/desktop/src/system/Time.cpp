#include <vmf_time.h>

namespace {

// What mktime() makes of the parts of a time in UTC.
time_t readingOf(time_t time) {
    tm parts{};
    gmtime_r(&time, &parts);
    parts.tm_isdst = 0;
    return mktime(&parts);
}

}  // namespace

// The offset at the reading is off by the hour of daylight saving at most; what that gives is put right by comparing
// its own reading.
time_t vmf_time_utc_to_local(time_t utc_reading) {
    tm parts{};
    localtime_r(&utc_reading, &parts);
    const time_t time = utc_reading + parts.tm_gmtoff;
    return time + (utc_reading - readingOf(time));
}
