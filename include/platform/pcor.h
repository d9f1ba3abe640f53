/*
 * Process core services (Pcor__): shared memory and trace printing.
 */
#ifndef TARV_PLATFORM_PCOR_H
#define TARV_PLATFORM_PCOR_H

#include <stdint.h>

#include "platform/trcd.h"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__) || defined(__clang__)
#define PCOR_PRINTF_LIKE(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define PCOR_PRINTF_LIKE(fmt, args)
#endif

/* Access flags of Pcor__OpenShm. */
#define PCOR_SHM_READ_WRITE 0
#define PCOR_SHM_READ_ONLY 1

/*
 * Maps the named shared-memory object of lSize bytes into the process and
 * returns its base address, or null on failure. lReadOnly 1 asks for a
 * read-only mapping, 0 for a read-write one. Whether a missing object is
 * created is the platform's decision.
 */
void* Pcor__OpenShm(const char* pName, uint32_t lSize, int32_t lReadOnly);

/* Prints one debug line (levels 4 to 7) inside an open trace statement. */
void Pcor__PrintDebugTrace(TRCD_TRACE* pObject, uint32_t lLevel, const char* pFunction,
                           const char* pFormat, ...) PCOR_PRINTF_LIKE(4, 5);

/* Prints one warning line (level 2) of module lModule with trace code lCode. */
void Pcor__PrintWarningTrace(TRCD_TRACE* pObject, const char* pFunction, uint32_t lModule,
                             uint32_t lCode, const char* pFormat, ...) PCOR_PRINTF_LIKE(5, 6);

/* Prints one error line (level 1) of module lModule with trace code lCode. */
void Pcor__PrintErrorTrace(TRCD_TRACE* pObject, const char* pFunction, uint32_t lModule,
                           uint32_t lCode, const char* pFormat, ...) PCOR_PRINTF_LIKE(5, 6);

#ifdef __cplusplus
}
#endif

#endif
