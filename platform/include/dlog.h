/*
 * The platform's log.
 */
#ifndef HOMELOOM_PLATFORM_DLOG_H
#define HOMELOOM_PLATFORM_DLOG_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum { DLOG_DEBUG = 3, DLOG_INFO = 4, DLOG_WARN = 5, DLOG_ERROR = 6 } log_priority;

#if defined(__GNUC__)
#define DLOG_PRINTF_FORMAT __attribute__((format(printf, 3, 4)))
#else
#define DLOG_PRINTF_FORMAT
#endif

/* Writes one line. Thread-safe. Returns the bytes written, 0 if no sink takes the line, or a negative error. */
int dlog_print(log_priority priority, const char* tag, const char* format, ...) DLOG_PRINTF_FORMAT;

/* Whether a line of this priority and tag would reach any sink: lets callers skip the formatting. Thread-safe. */
bool dlog_is_enabled(log_priority priority, const char* tag);

/* The trace sink: a stream of short marks for timing tools, off by default. Thread-safe. */
bool dlog_trace_is_active(void);
void dlog_trace_write(const char* text);

#ifdef __cplusplus
}
#endif

#endif
