/*
 * Switch control service (Lanx__): switch mode and provider-bridge port types.
 */
#ifndef TARV_PLATFORM_LANX_H
#define TARV_PLATFORM_LANX_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The switch's current mode; mode 2 makes every MEP report C-VIDs. */
int32_t Lanx__GetSwitchMode(void);

/* The provider-bridge type of (lSlot, lPort); type 3 reports C-VIDs, others S-VIDs. */
int32_t Lanx__GetPbPortType(uint32_t lSlot, uint32_t lPort);

#ifdef __cplusplus
}
#endif

#endif
