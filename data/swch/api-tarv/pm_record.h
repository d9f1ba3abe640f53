/*
 * Conversion of delay-measurement (DM) and loss-measurement (LM) records
 * between the numeric MS form and the text IM form. The record types are
 * declared in tarv/tarv.h; the four converters are documented there.
 */
#ifndef TARV_PM_RECORD_H
#define TARV_PM_RECORD_H

#include "tarv/tarv.h"

#ifdef __cplusplus
extern "C" {
#endif

TARV_API void Tarv__DMRecordMS2IM(DMRecordIM* pIm, const DMRecordMS* pMs);
TARV_API void Tarv__DMRecordIM2MS(DMRecordMS* pMs, const DMRecordIM* pIm);
TARV_API void Tarv__LMRecordMS2IM(LMRecordIM* pIm, const LMRecordMS* pMs);
TARV_API void Tarv__LMRecordIM2MS(LMRecordMS* pMs, const LMRecordIM* pIm);

#ifdef __cplusplus
}
#endif

#endif
