/*
 * The TV's infrared blaster: what it knows of the remote controls of other makers.
 */
#ifndef HOMELOOM_PLATFORM_QSP_IR_H
#define HOMELOOM_PLATFORM_QSP_IR_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * The key map of a code set: the character at index n is '1' if the code set has the infrared key number n. A text
 * malloc'ed for the caller to free; null for a code set that nobody knows. May be called from any thread.
 */
char* qsp_get_supported_keymap_hcodeset(const char* codeset);

#ifdef __cplusplus
}
#endif

#endif
