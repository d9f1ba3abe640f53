/*
 * Trace statement brackets (WQ_).
 *
 * Every trace statement is WQ_beginImpl, one Pcor__Print*Trace call, then
 * WQ_endImpl, all on the same trace control object.
 */
#ifndef TARV_PLATFORM_WQ_H
#define TARV_PLATFORM_WQ_H

#include <stdint.h>

#include "platform/trcd.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Opens one trace statement at lLevel from source file pSourceFile, line lLine. */
void WQ_beginImpl(TRCD_TRACE* pObject, uint32_t lLevel, const char* pSourceFile, uint32_t lLine);

/* Closes the trace statement opened on pObject. */
void WQ_endImpl(TRCD_TRACE* pObject);

#ifdef __cplusplus
}
#endif

#endif
