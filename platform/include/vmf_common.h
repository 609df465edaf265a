/*
 * Types that every part of the home-control framework's C API shares.
 */
#ifndef HOMELOOM_PLATFORM_VMF_COMMON_H
#define HOMELOOM_PLATFORM_VMF_COMMON_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    VMF_ERROR_NONE = 0,
    VMF_ERROR_INVALID_PARAMETER = -1, /* a null or stale handle, or a null text */
    VMF_ERROR_OUT_OF_MEMORY = -2,
    VMF_ERROR_NOT_FOUND = -3,
    VMF_ERROR_WRONG_TYPE = -4, /* the property holds a value of another type */
    VMF_ERROR_INVALID_STATE = -5,
    VMF_ERROR_FAILED = -6
} vmf_error_e;

/* A text with its length. It borrows the characters; nobody frees it. */
typedef struct {
    const char* data; /* UTF-8, not necessarily terminated */
    size_t length;    /* bytes */
} vmf_string_t;

/* Makes a vmf_string_t over 'length' bytes at 'text'. The bytes stay the caller's. */
vmf_string_t vmf_string_new(const char* text, size_t length);

#ifdef __cplusplus
}
#endif

#endif
