#ifndef OPEN_ENUM_H
#define OPEN_ENUM_H

/* Stands behind "typedef enum" where another program names the value: a later version of it may send a number that has
 * no name here yet. In C++ such an enumeration holds every int, so that a switch over it meets the number and may go
 * on; without this, reading the number is undefined. In C every enumeration does. */
#ifdef __cplusplus
#define OPEN_ENUM : int
#else
#define OPEN_ENUM
#endif

#endif
