/*
 * Platform interfaces that libtarv.so calls.
 *
 * These functions and the data object DBG_KELM belong to the switch
 * platform's own libraries. libtarv.so leaves them undefined; the process
 * that loads the library supplies them. For development machines the host
 * platform (platform/host) implements them over POSIX shared memory, and
 * unit tests link a recording fake.
 *
 * Valid C11 and C++.
 */
#ifndef TARV_PLATFORM_PLATFORM_H
#define TARV_PLATFORM_PLATFORM_H

#include "platform/hwin.h"
#include "platform/lanx.h"
#include "platform/pcor.h"
#include "platform/prtm.h"
#include "platform/trcd.h"
#include "platform/wq.h"

#endif
