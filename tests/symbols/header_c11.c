/* The public header compiles as strict C11. The layout of its types is
 * pinned by tests/abi. */
#include "tarv/tarv.h"
#include "platform/platform.h"

int tarv_header_c11_check(void);
int tarv_header_c11_check(void) { return (int)sizeof(TARV_PM_KEY); }
