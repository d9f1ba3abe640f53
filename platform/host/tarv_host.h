/*
 * Host platform: the switch platform's services for a Linux development
 * machine, so that tools, demos and integration tests run the real
 * libtarv.so outside the switch.
 *
 * libtarv_host.so defines every platform function and data object that
 * libtarv.so leaves undefined (the headers of include/platform). Link it next to
 * libtarv.so; nothing else is needed. It is a development tool and never
 * part of the switch image.
 *
 * Shared memory (Pcor__OpenShm)
 *   - POSIX shared memory: shm_open, then mmap MAP_SHARED of exactly the
 *     size asked. Mappings are never unmapped; every successful call maps
 *     the object anew, so two calls give two addresses that show the same
 *     bytes.
 *   - Flag 1 (read-only) opens an existing object O_RDONLY and maps it
 *     PROT_READ: a write through it faults. It never creates anything; a
 *     missing object gives null (silently: that is the ordinary state before
 *     the controller is up, and the caller reports it).
 *   - Flag 0 (read-write) opens the object O_RDWR. When it does not exist
 *     yet it is created zero-filled, with mode 0660 set by fchmod after
 *     creation (so the umask cannot narrow it), and sized with ftruncate.
 *   - Both modes refuse (null) an existing object smaller than the size
 *     asked, which would otherwise fault on the first access past its end;
 *     a larger object is accepted and its first bytes mapped. An object
 *     created by another process that has not sized it yet is refused the
 *     same way; the library's attach tries again on its next call.
 *   - Any flag other than 0 and 1, a size of 0, and a name that is null,
 *     does not start with '/' or holds a second '/' give null.
 *   - Every failure except the missing object of a read-only open writes one
 *     line "tarv-host: Pcor__OpenShm(...): reason" to stderr.
 *   - Object names: the prefix (TARV_SHM_PREFIX, TarvHost_SetShmPrefix) is
 *     inserted after the leading slash: with prefix "t1234-", "/kelm-data"
 *     becomes the object "/t1234-kelm-data". Tests and demos use their own
 *     prefix so they never touch a real region, nor each other's.
 *   - Region files (TarvHost_SetRegionFile): a name given a file is served
 *     from that file instead of shared memory, for offline work on a saved
 *     copy of a region. The file is opened read-only when Pcor__OpenShm
 *     runs (a relative path from the working directory then) and mapped
 *     MAP_PRIVATE: flag 1 maps it PROT_READ, flag 0 PROT_READ|PROT_WRITE,
 *     and writes stay in the process, never reaching the file. A file
 *     smaller than the size asked, or one that cannot be opened, gives null
 *     with one "tarv-host:" line; the prefix plays no part. The file itself
 *     is never created, truncated or written.
 *
 * Traces
 *   One line per trace statement, written with a single fputs and flushed,
 *   to stderr or to the stream given to TarvHost_SetTraceStream:
 *
 *     tarv L<level> <function> code=<code> <file>:<line>: <message>
 *
 *   e.g. "tarv L1 Tarv__Open code=12 data/swch/api-tarv:27: KELM_SHARED_DATA"
 *   and  "tarv L5 Tarv__ReadMEP code=- data/swch/api-tarv:123: Mep 7 found".
 *   <level> is the statement's level (the debug print's level argument, 2
 *   for warnings, 1 for errors); debug lines have no code and print "-".
 *   <file>:<line> come from the WQ_beginImpl that opened the statement on the
 *   same trace object in the same thread, "?:0" when there was none. The
 *   message is formatted into a fixed 1024-byte buffer (longer messages are
 *   cut); its trailing newlines are removed and any other line break becomes
 *   a space, so each statement is exactly one line. The module number is
 *   not printed: only module 142 traces through this platform.
 *   A print is emitted only when its object's level word is at least the
 *   statement's level, the rule the library applies before it calls.
 *
 * Trace control objects
 *   DBG_KELM is the module's debug object; Trcd__GetTrace(142) returns the
 *   object of module 142, any other module number one shared object of
 *   level 0. Their first words are the levels below.
 *
 * Model behind the chassis, port and switch services, with its defaults
 *   debug level (DBG_KELM)          0: no debug lines
 *   module 142 level                1: errors are printed, warnings are not,
 *                                      so a failed attach is visible
 *   base MAC (Hwin__)               02:54:41:52:56:00 (locally administered)
 *   port MAC (Prtm__GetPortMacAddress)
 *                                   base MAC with its low 24 bits (bytes 3..5,
 *                                   big-endian) replaced by
 *                                   (low24 + 0x100 * slot + port) mod 2^24;
 *                                   bytes 0..2 unchanged. Returns 0, or -1
 *                                   when no base MAC is set or the buffer is
 *                                   null (the buffer is then untouched).
 *   LAG members (Prtm__LagGetLagPortList)
 *                                   none. The 20-byte list is always written
 *                                   whole: the count byte, the (slot, port)
 *                                   pairs, zeros after them. LAG ids 0..255
 *                                   can have members. Returns 0, -1 for a
 *                                   null buffer.
 *   switch mode (Lanx__GetSwitchMode)                     1
 *   port type (Lanx__GetPbPortType)  1 for every port; up to 64 ports can
 *                                    be given another type
 *   shared-memory prefix             none
 *   region files                     none: every name is shared memory
 *   trace stream                     stderr
 *
 * Environment, read once when the library is loaded (and again by
 * TarvHost_Reset). An invalid value is ignored as a whole, with one line
 * "tarv-host: ignoring NAME=...: reason" on stderr; the default stays.
 *   TARV_DEBUG_LEVEL=5             DBG_KELM level (unsigned decimal)
 *   TARV_TRACE_LEVEL=2             module 142 level (unsigned decimal)
 *   TARV_BASE_MAC=00:10:20:00:00:10  six two-digit hex bytes
 *   TARV_SWITCH_MODE=2             signed decimal
 *   TARV_PORT_TYPES=1/3=3,4/2=1    slot/port=type, comma-separated;
 *                                  slot and port 0..255, at most 64 entries
 *   TARV_LAGS=5=1/1,1/2;6=3/4      lag=slot/port,... separated by ';';
 *                                  ids, slots, ports 0..255; at most 9
 *                                  members; "7=" gives LAG 7 no members
 *   TARV_SHM_PREFIX=t1234-         up to 64 of A-Z a-z 0-9 . _ -
 *
 * The model is plain process state without locking: set it up before other
 * threads use the platform. Trace statements are tracked per thread.
 *
 * Valid C11 and C++.
 */
#ifndef TARV_HOST_H
#define TARV_HOST_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Longest object name that Pcor__OpenShm uses, without the terminator. */
#define TARV_HOST_SHM_NAME_MAX 255
/* Longest shared-memory prefix. */
#define TARV_HOST_SHM_PREFIX_MAX 64
/* Most ports with a type other than 1. */
#define TARV_HOST_PORT_TYPES_MAX 64
/* Most members of one LAG: what the 20-byte member list holds. */
#define TARV_HOST_LAG_MEMBERS_MAX 9

/* Back to the defaults above, then the environment is read again. The trace
 * stream goes back to stderr. Mappings already made stay. */
void TarvHost_Reset(void);

/* Level words of DBG_KELM and of module 142's trace object. */
void TarvHost_SetDebugLevel(uint32_t lLevel);
void TarvHost_SetModuleLevel(uint32_t lLevel);

/* Where trace lines go; null means stderr. The stream stays the caller's. */
void TarvHost_SetTraceStream(FILE* pStream);

/* The 6-byte base MAC address; null makes it unknown, so that
 * Hwin__GetUserPortBaseMacAddress returns null and port MACs fail. */
void TarvHost_SetBaseMac(const uint8_t* pMac);

void TarvHost_SetSwitchMode(int32_t lMode);

/* Type of one port. Returns 0, or -1 when 64 other ports have a type
 * already (nothing changes then). */
int TarvHost_SetPortType(uint32_t lSlot, uint32_t lPort, int32_t lType);

/* Members of LAG lLagId: lCount (slot, port) byte pairs at pMembers
 * (pMembers may be null when lCount is 0). Replaces earlier members.
 * Returns 0, or -1 when lLagId is above 255 or lCount above 9 (nothing
 * changes then). */
int TarvHost_SetLagMembers(uint32_t lLagId, const uint8_t* pMembers, uint32_t lCount);

/* Shared-memory prefix; null or "" for none. Returns 0, or -1 when it is
 * longer than 64 or has a character outside A-Z a-z 0-9 . _ - (the prefix
 * is then unchanged). */
int TarvHost_SetShmPrefix(const char* pPrefix);

/* Longest path of a region file, without the terminator. */
#define TARV_HOST_REGION_PATH_MAX 4095
/* Most names served from files at one time. */
#define TARV_HOST_REGION_FILES_MAX 4

/* Serves the shared-memory name pName (as the library passes it, e.g.
 * "/kelm-data") from the file pPath from now on; a null or empty pPath
 * returns the name to shared memory. Giving a name a new file replaces the
 * old one. Mappings already made stay. TarvHost_Reset forgets every file.
 * Returns 0, or -1 when pName is not a valid object name, pPath is longer
 * than TARV_HOST_REGION_PATH_MAX, or TARV_HOST_REGION_FILES_MAX other names
 * have files already (nothing changes then). */
int TarvHost_SetRegionFile(const char* pName, const char* pPath);

/* Writes the object name that Pcor__OpenShm uses for pName (with the prefix)
 * into pBuffer of lSize bytes, e.g. to shm_unlink it. Returns 0, or -1 when
 * pName is not a valid name or the name does not fit. */
int TarvHost_ShmObjectName(const char* pName, char* pBuffer, size_t lSize);

#ifdef __cplusplus
}
#endif

#endif
