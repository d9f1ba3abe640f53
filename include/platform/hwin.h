/*
 * Chassis hardware inventory (Hwin__): the base MAC address of the user ports.
 */
#ifndef TARV_PLATFORM_HWIN_H
#define TARV_PLATFORM_HWIN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Makes the chassis table library usable; called before each base-address query. */
void Hwin__Open(void);

/* Pointer to the 6-byte base MAC address of the user ports (may be null if unknown). */
const uint8_t* Hwin__GetUserPortBaseMacAddress(void);

#ifdef __cplusplus
}
#endif

#endif
