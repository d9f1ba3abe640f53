/*
 * Port manager (Prtm__): port MAC addresses and LAG member lists.
 */
#ifndef TARV_PLATFORM_PRTM_H
#define TARV_PLATFORM_PRTM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Size of the LAG member list: a count byte and nine (slot, port) byte pairs. */
#define PRTM_LAG_PORT_LIST_SIZE 20

/* Writes the 6-byte MAC address of (lSlot, lPort) to pMacAddress. Returns 0 on success. */
int32_t Prtm__GetPortMacAddress(uint32_t lSlot, uint32_t lPort, uint8_t* pMacAddress);

/*
 * Fills pPortList (PRTM_LAG_PORT_LIST_SIZE bytes) with the members of LAG
 * lLagId: byte 0 the member count n, then n (slot, port) byte pairs; a zero
 * slot or port marks an empty entry. Returns 0 on success.
 */
int32_t Prtm__LagGetLagPortList(uint32_t lLagId, uint8_t* pPortList);

#ifdef __cplusplus
}
#endif

#endif
