/*
 * Trace control objects (Trcd__).
 *
 * A trace control object belongs to one module. Its first 32-bit word is the
 * module's current trace level; whatever follows is private to the platform.
 * Debug traces of the OAM module go through DBG_KELM, warnings and errors
 * through the object of module number 142.
 */
#ifndef TARV_PLATFORM_TRCD_H
#define TARV_PLATFORM_TRCD_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Only the first word is read by its users; platforms may keep more state
 * behind it. */
typedef struct TRCD_TRACE {
    uint32_t lLevel; /* current level of the module, read as unsigned */
} TRCD_TRACE;

/* Module number of the OAM configuration access (KELM) module. */
#define TRCD_MODULE_KELM 142u

/* Trace control object of a module; never null for a known module. */
TRCD_TRACE* Trcd__GetTrace(uint32_t lModule);

/* Debug trace control object of the KELM module (a data object). */
extern TRCD_TRACE DBG_KELM;

#ifdef __cplusplus
}
#endif

#endif
