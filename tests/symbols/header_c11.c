/* The public header compiles as strict C11, and its types have the packed
 * sizes the wire layouts need. */
#include "tarv/tarv.h"
#include "platform/platform.h"

_Static_assert(sizeof(TARV_MOID) == TARV_MOID_SIZE, "MOID is 14 bytes");
_Static_assert(sizeof(TARV_MANET_KEY) == TARV_MANET_KEY_SIZE, "MaNet key is 10 bytes");
_Static_assert(sizeof(TARV_THROUGHPUT_KEY) == TARV_THROUGHPUT_KEY_SIZE, "throughput key is 18 bytes");
_Static_assert(sizeof(TARV_PM_KEY) == TARV_PM_KEY_SIZE, "PM key is 15 bytes");
_Static_assert(sizeof(DMRecordMS) == TARV_DM_RECORD_MS_SIZE, "DM MS record is 213 bytes");
_Static_assert(sizeof(DMRecordIM) == TARV_DM_RECORD_IM_SIZE, "DM IM record is 625 bytes");
_Static_assert(sizeof(LMRecordMS) == TARV_LM_RECORD_MS_SIZE, "LM MS record is 130 bytes");
_Static_assert(sizeof(LMRecordIM) == TARV_LM_RECORD_IM_SIZE, "LM IM record is 279 bytes");

int tarv_header_c11_check(void);
int tarv_header_c11_check(void) { return (int)sizeof(TARV_PM_KEY); }
