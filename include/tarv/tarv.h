/*
 * libtarv: access to the Ethernet service OAM configuration and state of the
 * switch (IEEE 802.1ag CFM, ITU-T Y.1731 PM).
 *
 * The data lives in the shared-memory region "/kelm-data" (453075 bytes)
 * that the OAM controller keeps current. A process attaches it once with
 * Tarv__Open (readers) or Tarv__StorOpen (the configuration-database
 * manager); every other call is a bounded, synchronous walk over the
 * region's fixed tables. Nothing is allocated, nothing is cached, no lock is
 * taken: an answer reflects the region at the moment of the call, and a
 * record that the controller rewrites during a copy can be seen half old,
 * half new.
 *
 * Byte layouts. Every structure below, in the region and across this
 * interface, is packed and little-endian. The key and record types are byte
 * images of that layout: the library copies them as bytes and reads their
 * fields as little-endian values. On a little-endian host (the switch) the
 * fields read and write directly; on a big-endian host a caller must store
 * and load them little-endian.
 *
 * Tracing. Calls report through the platform's trace interface (module 142,
 * debug object DBG_KELM); the messages are listed with each function.
 *
 * Calls before an attach. Every function that reads the region answers
 * without touching memory when no region is attached: it emits one error
 * trace with code 12 and the text "KELM_SHARED_DATA" and answers as stated
 * under "Not attached" with each function.
 *
 * Valid C11 and C++.
 */
#ifndef TARV_TARV_H
#define TARV_TARV_H

#include <stdint.h>

#if defined(TARV_BUILDING_LIBRARY) && (defined(__GNUC__) || defined(__clang__))
#define TARV_API __attribute__((visibility("default")))
#else
#define TARV_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Keys
 * ------------------------------------------------------------------------ */

#pragma pack(push, 1)

/* Managed-object identifier: the key of every object. wClass is the object
 * class (532 for a MEP); lId1..lId3 are the MD, MaNet and own instance
 * numbers of MD-rooted objects. Keys are compared as raw bytes. */
typedef struct TARV_MOID {
    uint16_t wClass;
    uint32_t lId1;
    uint32_t lId2;
    uint32_t lId3;
} TARV_MOID;

/* MaNet key: the first 10 bytes of a MOID (wClass 574, MD id, MaNet id). */
typedef struct TARV_MANET_KEY {
    uint16_t wClass;
    uint32_t lId1;
    uint32_t lId2;
} TARV_MANET_KEY;

/* Throughput key: wClass 638, MD, MA, MEP and throughput id. */
typedef struct TARV_THROUGHPUT_KEY {
    uint16_t wClass;
    uint32_t lId1;
    uint32_t lId2;
    uint32_t lId3;
    uint32_t lId4;
} TARV_THROUGHPUT_KEY;

/* PM key: the MOID of the session's MEP followed by the session id 1..8. */
typedef struct TARV_PM_KEY {
    TARV_MOID Moid;
    uint8_t bySessionId;
} TARV_PM_KEY;

#pragma pack(pop)

#define TARV_MOID_SIZE 14
#define TARV_MANET_KEY_SIZE 10
#define TARV_THROUGHPUT_KEY_SIZE 18
#define TARV_PM_KEY_SIZE 15

/* ------------------------------------------------------------------------
 * Object classes and record sizes
 * ------------------------------------------------------------------------ */

#define TARV_CLASS_MD 531u
#define TARV_CLASS_MEP 532u
#define TARV_CLASS_MACOMP 573u
#define TARV_CLASS_MANET 574u
#define TARV_CLASS_MIP 575u
#define TARV_CLASS_THROUGHPUT 638u
#define TARV_CLASS_THROUGHPUT_HISTORY 652u
#define TARV_CLASS_PM_SESSION 674u
#define TARV_CLASS_BANDWIDTH_NOTIFICATION 848u

#define TARV_MD_RECORD_SIZE 65
#define TARV_MEP_RECORD_SIZE 48
#define TARV_MACOMP_RECORD_SIZE 101
#define TARV_MANET_RECORD_SIZE 57
#define TARV_MIP_RECORD_SIZE 14
#define TARV_THROUGHPUT_RECORD_SIZE 33
#define TARV_THROUGHPUT_HISTORY_RECORD_SIZE 505
#define TARV_PM_SESSION_RECORD_SIZE 127
#define TARV_BANDWIDTH_NOTIFICATION_RECORD_SIZE 18

/* Transfer record of the throughput history: 4-byte lHistoryId + record. */
#define TARV_THROUGHPUT_HISTORY_TRANSFER_SIZE 509
#define TARV_THROUGHPUT_HISTORY_SLOTS 101

/* ------------------------------------------------------------------------
 * Attach
 * ------------------------------------------------------------------------ */

/*
 * Attaches "/kelm-data" read-only, unless the process is attached already
 * (then nothing at all is done). On failure: error trace, code 12,
 * "KELM_SHARED_DATA"; the process stays detached and the next call tries
 * again. Call once at start-up, from one thread, before any query.
 */
TARV_API void Tarv__Open(void);

/*
 * Attaches "/kelm-data" read-write and makes that mapping the process's only
 * view (readers and Tarv__SetConfig use it), unless a read-write attach exists
 * already. After a Tarv__Open it traces error code 0 "Null" and remaps
 * regardless; the read-only mapping stays mapped but unused. On failure:
 * error trace, code 0, "Failed", and the process is detached (also from an
 * earlier read-only view); the next call tries again.
 */
TARV_API void Tarv__StorOpen(void);

/* Kept for existing callers; reads nothing, writes nothing and may be called
 * at any time. It takes no parameters: a caller built against an older
 * declaration that passes arguments still links, and they are ignored. */
TARV_API void Tarv__SaveXMLIfOldConfig(void);

/* ------------------------------------------------------------------------
 * Configuration read by class
 * ------------------------------------------------------------------------ */

/*
 * Copies every configured object of class lClassId into pConfig as a transfer
 * list: records of key (K bytes) then record (D bytes), back to back in slot
 * order, with no alignment. The region is only read.
 *
 * Classes and their transfer record size R = K + D:
 *   526: 18+47   528: 18+93   531 MD: 6+65     532 MEP: 14+48
 *   571: 14+8    573 MAComp: 14+101            574 MaNet: 10+57
 *   575 MIP: 14+14            576: 14+6        579: 18+311
 *   581: 6+16    638 throughput: 18+33         665: 15+54   666: 15+38
 *   674 PM session: 15+127    848 bandwidth notification: 14+18
 * For these, at most max(lCount, 1) records are written (lCount 0 counts as
 * 1). When fewer are written, K zero bytes (an all-zero key) follow the last
 * record; when exactly that many are written, nothing follows. The caller
 * provides max(lCount, 1) * R bytes. Slots of classes 665, 666 and 674 are
 * 1..8 and occupied when key byte 14 equals the slot number; other slots are
 * occupied when their key is not all zero. Class 848 traces "Enter" at debug
 * level 6 as "Tarv__GetConfig_BandwidthNotification".
 *
 * Singletons 519 (14 bytes), 523 (12) and 673 (5): the record is copied to
 * the start of pConfig, no terminator; lCount is ignored.
 * Class 580: nothing is written.
 * Class 652 (throughput history, 509-byte transfer records, no terminator):
 * lCount 0 writes the lowest occupied slot only (509 bytes of buffer);
 * any other lCount writes every occupied slot, up to 101 (51409 bytes of
 * buffer). Each record written traces "Save Record %ld, result: %s" at debug
 * level 5 as "Tarv__GetConfig_ThroughputHistory"; the result text printed is
 * at most its 404 bytes, also when the record holds no terminator.
 *
 * pConfig must not be null; it needs no alignment.
 *
 * Returns 0 for the 21 classes above, 1 for any other class id (nothing is
 * written, nothing traced). The caller finds the end of a list by the
 * terminator, by the count it asked for, or, for the whole history, by a
 * buffer it cleared beforehand.
 *
 * Not attached: returns as above; table-backed classes receive only their
 * K-byte terminator (an empty list), singletons, 580 and 652 nothing.
 */
TARV_API int32_t Tarv__GetConfig(uint32_t lClassId, void* pConfig, uint32_t lCount);

/* ------------------------------------------------------------------------
 * Configuration write by class
 * ------------------------------------------------------------------------ */

/* Results of Tarv__SetConfig other than 0. */
#define TARV_SET_CONFIG_UNKNOWN_CLASS 1
#define TARV_SET_CONFIG_NOT_ATTACHED (-1)
#define TARV_SET_CONFIG_REFUSED (-2)

/*
 * Replaces everything the region holds for class lClassId by the transfer
 * list at pConfig, in the format Tarv__GetConfig hands out: records of key
 * then record, back to back, closed by an all-zero key (only as long as a
 * key; nothing after it is read). A list that Tarv__GetConfig filled to the
 * count asked for has no terminator: append one before writing it. Writes go
 * through the read-write mapping of Tarv__StorOpen only.
 *
 * List classes (those of Tarv__GetConfig but 652): the class's arrays are
 * emptied (every byte zero), then each record goes to its slot with its key
 * exactly as received (its wClass is not compared with lClassId):
 *   - by the low 16 bits of the key's last identifier minus 1 (lId1, lId2,
 *     lId3 or lId4 for keys of 6, 10, 14 or 18 bytes): classes 526, 528,
 *     531, 532, 573, 574, 575, 576, 579, 581, 638, 848. An identifier of
 *     0x10001 thus goes to slot 0, like 1;
 *   - by the session id (key byte 14) itself, 0..8: classes 665, 666, 674.
 *     Session id 0 is stored in slot 0, which Tarv__GetConfig never lists;
 *   - by position, the n-th record to slot n - 1: class 571 (32 slots) and
 *     652 (throughput history, 4-byte lHistoryId, 101 slots). Records after
 *     the last slot are not read, nor is a terminator after them.
 * The list has no count limit otherwise; of two records for one slot the
 * later stays. Slots no record names stay empty.
 *
 * Arrays emptied, and further writes per stored record (same slot):
 *   526  its arrays; the 32-bit field at record offset 13 set to 1.
 *   528  its arrays and those of class 572; the record's 32-bit field at
 *        offset 9 set to 1; the class 572 key array gets the 18-byte key with
 *        wClass 572, followed by its lId4 again.
 *   532  its arrays and those of classes 577 and 848 (bandwidth
 *        notifications); record offsets 22 and 28 (32-bit) set to 1; the MEP
 *        MOID stored with wClass 577 and with wClass 848 in those key arrays
 *        (their records stay zero); the MAC address (record offset 10) set by
 *        the MAC rule. A list of bandwidth notifications must therefore be
 *        written after the MEPs: a MEP write loses it.
 *   575  its arrays and those of class 578; the MOID with wClass 578 in the
 *        class 578 key array; the MAC address (record offset 0) by the MAC
 *        rule.
 *   638  eEnableStatus (record offset 9) set to 1; the 16-bit value at
 *        offset 31 computed from A (offset 23, 32-bit), B (27) and C (29,
 *        16-bit each): X = 125 * A and Y = B * C in 32-bit wrapping
 *        arithmetic, r = Y / X + Y / X in double precision; D = 1 when r is
 *        below 1, else the low 16 bits of r truncated to 32 bits. A of 0
 *        counts as r = 0 when Y is 0 (D = 1) and as infinite otherwise; r of
 *        2^32 and more saturates to 0xFFFFFFFF (D = 0xFFFF).
 *   848  its arrays; "Enter" is traced at debug level 6 as
 *        "Tarv__SetConfig_BandwidthNotification" before anything else.
 *   others: their two arrays, nothing else.
 * MAC rule, from the record's bySlot and byPort: slot 2 (a LAG) calls
 * Hwin__Open and takes the base address of Hwin__GetUserPortBaseMacAddress;
 * when its low 24 bits N (bytes 3..5, big-endian) satisfy N + 6 < 0x1000000
 * they become N + byPort + 1, cut to 24 bits, else the base stays as it is.
 * Slot 3 asks Prtm__GetPortMacAddress for port 1 of slot 3, any other slot
 * for (bySlot, byPort). The 6 bytes are cleared before the platform is asked
 * and its result is not examined: no base address, or a port library that
 * writes nothing, stores an all-zero address.
 *
 * Singletons: 519 and 523 copy the first 14, respectively 12 bytes of
 * pConfig; 673 copies 5 bytes when the first is not zero and leaves the
 * stored value otherwise. No terminator is read.
 * Class 580: accepted; nothing is read or written, attached or not.
 *
 * Returns (checked in this order: the class, the attach, the list):
 *   0   the class was rewritten (580: nothing to do).
 *   TARV_SET_CONFIG_UNKNOWN_CLASS (1): lClassId is none of the 21 classes
 *       (572, 577 and 578 included); nothing read, written or traced.
 *   TARV_SET_CONFIG_REFUSED (-2): a record before the terminator addresses
 *       no slot of its class (instance number 0 or above the slot count, a
 *       session id above 8). The list is checked before anything is emptied:
 *       the region is left exactly as it was, and an error is traced (code
 *       3): "Class %ld record %ld: instance %ld addresses no slot of 1..%ld"
 *       (or "session id %ld ... of 0..8"), naming the class, the record's
 *       position in the list (from 1), its instance number or session id.
 *   TARV_SET_CONFIG_NOT_ATTACHED (-1): the process has no read-write attach
 *       (no successful Tarv__StorOpen; a Tarv__Open alone is not enough).
 *       Nothing is written anywhere; an error is traced (code 12,
 *       "KELM_SHARED_DATA not attached read-write").
 * No other trace is emitted.
 *
 * pConfig must not be null and must hold whole records up to the terminator
 * (or up to the slot count of 571 and 652). No lock is taken: a reader can
 * see the class empty or partly written; two writes must not run at once.
 */
TARV_API int32_t Tarv__SetConfig(uint32_t lClassId, const void* pConfig);

/* ------------------------------------------------------------------------
 * MEP reading and iteration
 * ------------------------------------------------------------------------ */

/*
 * Walks the MEP MOIDs in slot order: call with null, then with the previous
 * result, until null comes back. Returns a pointer to a non-empty slot of the
 * region's MEP MOID table (read-only to the caller, valid for the life of
 * the process; its contents change when the controller rewrites the slot).
 * A previous MOID that is no longer in the table restarts the walk at slot
 * 0. A previous pointer whose slot the controller has emptied reads as the
 * all-zero MOID, which matches the first empty slot: the walk goes on after
 * that slot (and the MEP id 0 gives the trace below). A previous MOID whose MEP id gives a slot outside 1..32 traces
 * "Wrong index %d from MepId %ld" at debug level 4; the walk is unaffected.
 * When two slots hold the same MOID (a corrupt region), a walk that passes
 * back the returned pointers still moves forward and ends; a copy of a MOID
 * is looked up by its bytes and continues after the first slot holding it.
 * Not attached: returns null.
 */
TARV_API const TARV_MOID* Tarv__MEPMoidIterator(const TARV_MOID* pPrevMoid);

/*
 * Copies the 48-byte record of the MEP with MOID Moid to pMep. When no slot
 * holds that MOID, pMep is left untouched and an error is traced (code 3,
 * "Tarv__ReadMEP() : Unable to read Mep - can't find specified MOID: Class %d
 * Md %ld MaNet %ld Mep %ld"). An all-zero MOID matches the first empty slot.
 * pMep must not be null.
 * Not attached: pMep untouched.
 */
TARV_API void Tarv__ReadMEP(TARV_MOID Moid, void* pMep);

/*
 * Finds OldMoid among the old MEP MOIDs the controller keeps per MEP slot
 * and stores the slot (0..31) in *pMepIndex. Returns 0 when found, -1 when
 * pMepIndex is null (error, code 3, "Tarv__GetMepIndexFromOldMoid() :
 * pMepIndex is null\n") or when the MOID is not found (error, code 3,
 * "Unable to read Mep - can't find specified MOID: Class %d Md %ld MaNet %ld
 * Mep %ld"); *pMepIndex is then untouched.
 * Not attached: returns -1, *pMepIndex untouched.
 */
TARV_API int32_t Tarv__GetMepIndexFromOldMoid(TARV_MOID OldMoid, uint16_t* pMepIndex);

/* ------------------------------------------------------------------------
 * MA reading
 * ------------------------------------------------------------------------ */

/*
 * Returns 1 when a slot of the MaNet key table holds MaNetKey (all 10 bytes
 * compared: wClass, MD id, MaNet id), else 0. No trace. An all-zero key
 * matches the first empty slot, so it yields 1 whenever the table has one.
 * Not attached: returns 0.
 */
TARV_API uint32_t Tarv__DoesMANetExist(TARV_MANET_KEY MaNetKey);

/*
 * Copies the 57-byte MaNet record of MaNetKey to pMaNet. When no slot holds
 * the key, pMaNet is left untouched and an error is traced (code 3,
 * "Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID:
 * Class %d Md %ld MaNet %ld"). pMaNet must not be null.
 * Not attached: pMaNet untouched.
 */
TARV_API void Tarv__ReadMANet(TARV_MANET_KEY MaNetKey, void* pMaNet);

/* ------------------------------------------------------------------------
 * Bandwidth notifications
 * ------------------------------------------------------------------------ */

/*
 * Walks the bandwidth notification MOIDs (wClass 848 and the MD, MaNet and
 * MEP ids of their MEP) in slot order, as Tarv__MEPMoidIterator walks the
 * MEPs: call with null, then with the previous result, until null comes
 * back; the result points into the region and is read-only to the caller. A
 * previous MOID no longer in the table restarts the walk at slot 0. Every
 * call traces "Enter" at debug level 6; a previous MOID whose last id gives
 * a slot outside 1..32 traces "Wrong index %d from BandwidthNotificationId
 * %ld" at debug level 4, and the walk is unaffected.
 * Not attached: "Enter", then the code-12 error; returns null.
 */
TARV_API const TARV_MOID* Tarv__BandwidthNotificationMoidIterator(const TARV_MOID* pPrevMoid);

/*
 * Copies the 18-byte record of the bandwidth notification Moid to pBwn. The
 * 32 slots are compared in order from slot 0 (no slot hint), so a
 * notification outside its MEP's slot is found too; all 14 bytes count, so
 * the MOID of the MEP itself (class 532) is not found. An all-zero MOID
 * copies the record of the first empty slot. Traces "Enter" at debug level
 * 6. Not found: pBwn untouched, error code 3 "Tarv__ReadBandwidthNotification:
 * Unable to read BandwidthNotification - can't find specified MOID.".
 * pBwn must not be null.
 * Not attached: "Enter", then the code-12 error; pBwn untouched.
 */
TARV_API void Tarv__ReadBandwidthNotification(TARV_MOID Moid, void* pBwn);

/* ------------------------------------------------------------------------
 * Throughput list
 * ------------------------------------------------------------------------ */

/*
 * Walks the 18-byte throughput keys in slot order, by the rules of
 * Tarv__MEPMoidIterator with the slot hint taken from lId4 (the throughput
 * id). Emits no trace, also not for a hint outside the table.
 * Not attached: returns null (the code-12 error is the one trace).
 */
TARV_API const TARV_THROUGHPUT_KEY* Tarv__ThroughputListMoidIterator(const TARV_THROUGHPUT_KEY* pPrevKey);

/*
 * Copies the 33-byte throughput record of ThroughputKey (hint slot from
 * lId4, then slots 0..31) to pEntry. Traces "Md=0x%lx, Ma=0x%lx, Mep=0x%lx,
 * Throughput=0x%lx" (the four ids) at debug level 6 first. Not found: pEntry
 * untouched, error code 3 "Tarv__ReadThroughput() : Unable to read class -
 * can't find specified MOID.". pEntry must not be null.
 * Not attached: the level-6 trace, the code-12 error; pEntry untouched.
 */
TARV_API void Tarv__ReadThroughputEntry(TARV_THROUGHPUT_KEY ThroughputKey, void* pEntry);

/*
 * Returns 1 when a throughput test is enabled (its record's 32-bit
 * eEnableStatus at record offset 9 is 2), else 0. Walks the keys with
 * Tarv__ThroughputListMoidIterator and reads each with
 * Tarv__ReadThroughputEntry (each read traces), stopping at the first
 * enabled one. A key that the controller removes during the walk never
 * counts as enabled: an emptied slot is skipped, and a key that no longer
 * reads is tested on a buffer cleared before the read.
 * Not attached: returns 0 after one code-12 error.
 */
TARV_API uint32_t Tarv_GetEnableStatusofThroughput(void);

/* ------------------------------------------------------------------------
 * Alarm queries
 * ------------------------------------------------------------------------ */

#define TARV_MEP_SLOTS 32
#define TARV_PM_SLOTS 9
#define TARV_ALARM_TEXT_SIZE 80
#define TARV_PM_ALARM_BLOCK_SIZE 18
#define TARV_MEP_HW_ALARM_BLOCK_SIZE 64

/*
 * Writes the alarm word of each of the 32 MEP slots into awAlarms[0..31]
 * (native 16-bit values): 0 when the slot's MOID has class field 0 (only
 * those two bytes decide), else the MEP record's wAlarmBits with bit 2
 * (value 4) cleared unless the record's bAlarmBit2Enabled is set. No trace.
 * Not attached: 32 zero words, as for a region without MEPs.
 */
TARV_API void Tarv__GetAlarms(uint16_t* awAlarms);

/*
 * MOID and detail text behind the alarm of MEP slot wMepMoidArrayIndex:
 *  - pMoid (14 bytes) receives the slot's current MOID, or when that is
 *    empty its old MOID; when both are empty pMoid is untouched and "MEP
 *    index %d not found!" is traced at debug level 5.
 *  - then "wMepMoidArrayIndex=%d" is traced at debug level 7.
 *  - pText receives the slot's alarm text as strncpy(pText, text, 80) gives
 *    it: exactly 80 bytes, the characters then zeros; a text of 80
 *    characters arrives without terminator. When the slot has no text, pText
 *    is untouched and "String is NULL\n" is traced at debug level 4.
 * The text is given whether or not a MOID was found. Callers that need empty
 * results clear their buffers first.
 * Slot past 31: both buffers untouched and nothing of the region read; the
 * traces are "MEP index %d not found!" (level 5) and "wMepMoidArrayIndex=%d"
 * (level 7), the index printed as a signed int.
 * Not attached: both buffers untouched; the code-12 error only.
 */
TARV_API void Tarv__GetDetailsForAlarm(uint32_t wMepMoidArrayIndex, TARV_MOID* pMoid, char* pText);

/*
 * Copy the PM alarm block (18 bytes: nine little-endian 16-bit words, one
 * per PM slot 0..8), respectively the MEP hardware alarm block (64 bytes),
 * to pBlock, as stored. No trace.
 * Not attached: pBlock untouched.
 */
TARV_API void Tarv__GetPMAlarms(void* pBlock);
TARV_API void Tarv__GetMEPHWAlarms(void* pBlock);

/*
 * Copy the 15-byte PM key of PM slot lIndex (0..8) to pKey, as stored
 * (empty slots give their bytes, normally zeros): the PM alarm object's key,
 * the PM session's key, respectively the session's old key. No trace.
 * lIndex above 8: pKey untouched, nothing of the region read, error code 3
 * "PM slot index %lu out of range, last slot is %lu" from the function.
 * Not attached: pKey untouched.
 */
TARV_API void Tarv__GetPMAlarmMoid(uint32_t lIndex, TARV_PM_KEY* pKey);
TARV_API void Tarv__GetPMSessionMoid(uint32_t lIndex, TARV_PM_KEY* pKey);
TARV_API void Tarv__GetPMSessionOldMoid(uint32_t lIndex, TARV_PM_KEY* pKey);

/* ------------------------------------------------------------------------
 * Y.1731 alarm source description
 * ------------------------------------------------------------------------ */

/* Longest alarm source text with its terminator: 95 characters + 1. */
#define TARV_MEP_ALARM_INFO_SIZE 96

/*
 * Writes into pInfo the text that names where the PM session of PmKey runs,
 * as the C library formats
 *     sprintf(pInfo, "S%hd,P%hd,%s%d,%s,L%d,Id%hd,MAID:", bySlot, byPort,
 *             tag, wVid, direction, eMdLevel - 1, wMepId)
 *     strncat(pInfo, MD name, 20); strcat(pInfo, "/");
 *     strncat(pInfo, MA name, 24);
 * e.g. "S1,P3,Svid100,Up,L4,Id5,MAID:Operator/Service12". bySlot, byPort,
 * wVid, eDirection and wMepId come from the session's MEP record (MOID
 * class 532 and the key's ids), the MD name and eMdLevel from its MD (531,
 * lId1), the MA name from its MaNet (574, lId1, lId2). tag is "Cvid" when
 * Lanx__GetSwitchMode() is 2 (then Lanx__GetPbPortType is not called) or
 * Lanx__GetPbPortType(bySlot, byPort) is 3, else "Svid"; direction is "Dn"
 * for eDirection 1, else "Up". A name is cut at 20 (MD) or 24 (MA)
 * characters, the width of its field, also when the field holds no zero
 * byte: nothing past a name's field is read. The text with its terminator
 * takes at most 96 bytes (TARV_MEP_ALARM_INFO_SIZE); bytes of pInfo after
 * the terminator are untouched. Returns 1.
 *
 * Returns 0 with pInfo untouched, tracing at debug level 6 the first missing
 * link, checked in this order:
 *   bySessionId 0 or above 8    "The session id is illegal!" (no table read)
 *   PM session slot bySessionId differs from PmKey in any of its 15 bytes
 *                               "Can not find the PM session!"
 *   no MEP                      "Can not find the MEP!"
 *   no MaNet (Tarv__DoesMANetExist)   "Can not find the MA!"
 *   no MD                       "Can not find the MD!"
 * The switch queries run after the MEP is found, also when the MA or MD
 * check then fails. The MaNet record is read with Tarv__ReadMANet.
 * Not attached: returns 0 after the code-12 error; no platform query.
 */
TARV_API uint32_t Tarv__GetMepInfoAbout1731Alarm(TARV_PM_KEY PmKey, char* pInfo);

/* ------------------------------------------------------------------------
 * Checkpoint region "/kelm-chkp-data"
 * ------------------------------------------------------------------------ */

/* The one checkpoint record (KELM_CHKP_DATA, opaque to this library), its
 * one section and that section's value. */
#define TARV_CHKP_DATA_SIZE 280
#define TARV_CHKP_SECTION_ID 16u
#define TARV_CHKP_SECTION_VALUE 1u

/*
 * Attaches the checkpoint region read-write (280 bytes), independently of
 * "/kelm-data". Traces "%s\n" with the region name at debug level 7 on every
 * call; does nothing more once attached. On failure: error code 12 "Open
 * KELM Read-Write SHM failed - %s\n" (the name); the next call tries again.
 */
TARV_API void Tarv__ChkpOpen(void);

/*
 * Copies the whole 280-byte checkpoint record to pData. eSectionId is only
 * traced. In this order:
 *   1. debug level 7 "eSectionId: %d  lLengthInByte:%ld\n";
 *   2. pData null: warning code 26 "Illegal pData.\n", *pwValue untouched;
 *   3. *pwValue = 1;
 *   4. lLengthInByte below 280, compared unsigned (a negative length counts
 *      as very large and passes): warning code 3 "lLengthInByte %ld too
 *      small, need %d\n", nothing copied;
 *   5. debug level 5 "sizeof(KELM_CHKP_DATA) %d, lLengthInByte %ld\n";
 *   6. not attached (no successful Tarv__ChkpOpen yet): warning code 3
 *      "pChkpData is NULL\n", nothing copied; *pwValue has received 1 in
 *      step 3 all the same;
 *   7. exactly 280 bytes copied; bytes of pData past them untouched.
 * pwValue must point to writable storage.
 */
TARV_API void Tarv__GetChkpData(uint32_t eSectionId, uint16_t* pwValue, void* pData, int32_t lLengthInByte);

/*
 * Copies lLengthInByte bytes from pData to the start of the checkpoint
 * record; the record's later bytes keep their contents. Traces "%s\n" with
 * the region name at debug level 7, then the first failing check ends the
 * call with a warning, code 3, and nothing written:
 *   eSectionId not 16      "Illegal eSectionId %d, expected %d\n"
 *   wValue not 1           "Illegal wValue %d, expected %d\n"
 *   lLengthInByte above 280, compared unsigned (negative lengths too)
 *                          "lLengthInByte %ld too big, maximum %d\n"
 *   not attached           "pChkpData is NULL\n"
 * A length of 0 passes and writes nothing (pData may then be null).
 */
TARV_API void Tarv__SetChkpData(uint32_t eSectionId, uint16_t wValue, const void* pData, int32_t lLengthInByte);

/* ------------------------------------------------------------------------
 * OAM usage queries
 *
 * Port, VLAN, VFI and LAG managers ask these before they change a port, a
 * VLAN or a LAG. They only read the region (the finders also write the
 * caller's buffers on a hit) and answer from its state at the moment of the
 * call.
 *
 * Terms used below:
 *   point       a MEP or a MIP. It sits on (bySlot, byPort) of its record;
 *               on a LAG, bySlot is 2 and byPort the LAG id. Slot, port and
 *               VLAN arguments are compared with the 8-bit and 16-bit record
 *               fields widened, so values outside their range never match.
 *               MEPs are always scanned before MIPs, each in slot order, and
 *               the first match decides.
 *   live        how a query recognises a point in use; it differs by query
 *               on purpose: "key" (its 14 MOID bytes not all zero), "class"
 *               (its MOID's wClass is 532 for MEPs, 575 for MIPs), "vid"
 *               (the MEP record's wVid is not 0; the MOID is not looked at)
 *               or "any" (every entry is examined, empty or not).
 *   port rule   "substituted": slot 2 matches port 24 and slot 3 port 23,
 *               whatever port is passed; otherwise the port as given.
 *               Traces always print the caller's port.
 *   MA          the MA components (MAComp) of a point are those whose MOID
 *               has the point's MD id (lId1) and MaNet id (lId2).
 *   tagging     eTagging of a component: 1 C-VLAN, 2 S-VLAN, 5 VFI.
 *   endpoint test  the tagging of a MEP is that of the first non-empty
 *               component of its MA, later components are not looked at. A
 *               MEP whose MA has no component is traced as an error (code 0,
 *               "MEP exists without it's parent MAComp\n", under the name of
 *               the test: Tarv__IsEndpointCTagged, Tarv__IsEndpointSTagged or
 *               Tarv__IsEndpointVfi) and has no tagging. The test runs only
 *               for MEPs that pass every other condition of the query.
 *   any component  every component of the point's MA is tried, empty MAComp
 *               entries compared like any other; the first that matches
 *               decides.
 *
 * Messages are debug traces at level 5 under the function's own name unless
 * said otherwise; "(v, s, p)" means VLAN or VFI id, slot, caller's port.
 *
 * Not attached: every function below traces the code-12 error under its own
 * name and answers "nothing found" without touching memory or the caller's
 * buffers: 0, or 1 for the four range finders and for
 * Tarv__MepResourcesAvailableOnSlot. No other trace is made.
 * ------------------------------------------------------------------------ */

/*
 * 1 when a MEP or MIP (live: key) sits on (slot, port), else 0.
 * Traces "OAM is enabled on S/P %d/%d" or "OAM is NOT enabled on S/P %d/%d"
 * with slot, port.
 */
TARV_API uint32_t Tarv__IsOamEnabledOnPort(int32_t slot, int32_t port);

/*
 * As Tarv__IsOamEnabledOnPort with live: class. Traces "OAM is enabled on
 * Slot %d, Port %d." or "OAM is NOT enabled on Slot %d, Port %d.".
 */
TARV_API uint32_t Tarv__IsOamEnabledOnPortOpt(int32_t slot, int32_t port);

/*
 * As Tarv__IsOamEnabledOnPortOpt, but a MEP found traces "MEP is enabled on
 * Slot %d, Port %d." (a MIP found: "OAM is enabled on Slot %d, Port %d.").
 */
TARV_API uint32_t Tarv__IsMPEnabledOnPort(int32_t slot, int32_t port);

/*
 * 1 when the MEP whose MOID equals Moid (all 14 bytes; live: any) is a Down
 * MEP (eDirection 1) on (slot, port) under the substituted port rule, else
 * 0. Traces "OAM is enabled for requested MEP on S/P %d/%d" or "OAM is NOT
 * enabled for requested MEP  on S/P %d/%d" (two blanks before "on").
 */
TARV_API uint32_t Tarv__IsOamEnabledForMepOnPort(int32_t slot, int32_t port, TARV_MOID Moid);

/*
 * 1 when a MIP (live: key) on (slot, port) has, among any component of its
 * MA, one S-tagged with VLAN vid, else 0. Traces "Svlan %d is in use by OAM
 * on S/P %d/%d" or "Svlan %d is not in use by OAM on S/P %d/%d" (v, s, p).
 * The C-VLAN counterpart (tagging 1, same messages, traced under
 * "Tarv__IsOamEnabledOnMIPPortCVlan") is internal to the library.
 */
TARV_API uint32_t Tarv__IsOamEnabledOnMIPPortSVlan(int32_t slot, int32_t port, int32_t vid);

/*
 * 1 when a MEP (live: key; either direction) on (slot, port) under the
 * substituted port rule has wVid equal to vid and its endpoint test says
 * S-tagged, else 0. MIPs are not looked at. Traces "Svlan %d is in use by
 * OAM on S/P %d/%d" or "Svlan %d is not in use by OAM on S/P %d/%d".
 */
TARV_API uint32_t Tarv__IsOamEnabledOnPortSVlan(int32_t slot, int32_t port, int32_t vid);

/*
 * As Tarv__IsOamEnabledOnPortSVlan for a VFI-based MEP (endpoint test says
 * VFI, wVid equal to vfi). Traces "vfi %d is in use by OAM on S/P %d/%d" or
 * "vfi %d is not in use by OAM on S/P %d/%d".
 */
TARV_API uint32_t Tarv__IsOamEnabledOnPortVfi(int32_t slot, int32_t port, int32_t vfi);

/*
 * 1 when a MEP (live: key; either direction) on (slot, port) as given has
 * wVid equal to vid and its endpoint test says C-tagged (traces "Cvlan %d is
 * in use by MEP on S/P %d/%d"), or else when a MIP on the port has a
 * C-tagged component of VLAN vid among any component of its MA (the MIP
 * test traces first, see Tarv__IsOamEnabledOnMIPPortSVlan, then "Cvlan %d is
 * in use by MIP on S/P %d/%d"); otherwise 0 after "Cvlan %d is not in use by
 * OAM on S/P %d/%d".
 */
TARV_API uint32_t Tarv__IsOamEnabledOnCVlanPort(int32_t slot, int32_t port, int32_t vid);

/*
 * Switch-wide: 1 when a non-empty MA component has tagging 2 and wVid vid,
 * else 0. Traces "Svlan %d is in use by OAM" on a match, nothing otherwise.
 */
TARV_API uint32_t Tarv__IsOamEnabledOnSVlan(int32_t vid);

/*
 * As Tarv__IsOamEnabledOnSVlan for tagging 5: "Vfi %d is in use by OAM", no
 * trace otherwise.
 */
TARV_API uint32_t Tarv__IsOamEnabledOnVfi(int32_t vfi);

/*
 * As Tarv__IsOamEnabledOnSVlan for tagging 1: "Cvlan %d is in use by OAM" or
 * "Cvlan %d is not in use by OAM".
 */
TARV_API uint32_t Tarv__IsOamEnabledOnCVlan(int32_t vid);

/* Result of Tarv__CheckTagging on a conflict. */
#define TARV_TAGGING_CONFLICT 0x6037u

/*
 * TARV_TAGGING_CONFLICT (24631) when mode is 0, vid is not 0 and a MEP
 * (live: key) on (slot, port) as given has wVid vid and any component of its
 * MA is S-tagged with VLAN vid; else 0. A vid of 0 or a mode other than 0
 * answers 0 without reading the region (and without the not-attached trace).
 * No trace.
 */
TARV_API uint32_t Tarv__CheckTagging(uint32_t slot, uint32_t port, uint32_t vid, uint32_t mode);

/*
 * Range finders: 0 when a point on (slot, port) as given uses a VLAN w with
 * lowVid <= w <= highVid (VLAN 0 never counts), else 1; a range with lowVid
 * above highVid finds nothing. On a hit they trace w, otherwise nothing.
 *
 * Tarv__FindMepOnPort: a MEP (live: vid) of either direction whose wVid is
 * in the range and whose endpoint test does not say VFI; a MEP whose MA has
 * no component counts (after the endpoint test's error trace). Traces
 * "vlan: %d is in use by a MEP".
 * Tarv__FindMipOnPort: a MIP (live: key) with, among any component of its
 * MA, one with wVid in the range that is not VFI-based. Traces "vlan: %d is
 * in use by a MIP".
 */
TARV_API uint32_t Tarv__FindMepOnPort(int32_t slot, int32_t port, uint32_t lowVid, uint32_t highVid);
TARV_API uint32_t Tarv__FindMipOnPort(int32_t slot, int32_t port, uint32_t lowVid, uint32_t highVid);

/*
 * As Tarv__FindMepOnPort and Tarv__FindMipOnPort over the old span
 * oldLow..oldHigh, counting only VLANs outside the new span newLow..newHigh
 * (every VLAN when newLow is above newHigh). A new span that covers the old
 * one answers 1. Traces "vlan(with mep): %d is not in the new vlan span",
 * respectively "vlan: %d is in use by a MIP".
 */
TARV_API uint32_t Tarv__FindAllMepOnPort(int32_t slot, int32_t port, uint32_t oldLow, uint32_t oldHigh,
                                         uint16_t newLow, uint16_t newHigh);
TARV_API uint32_t Tarv__FindAllMipOnPort(int32_t slot, int32_t port, uint32_t oldLow, uint32_t oldHigh,
                                         uint16_t newLow, uint16_t newHigh);

/*
 * Hands out the Down MEPs of C-VLAN cvid on (slot, port) as given, one per
 * call. From MEP slot *pMepIndex up to 31, finds the first MEP (live: key)
 * with wVid cvid, eDirection 1 and an endpoint test that says C-tagged;
 * copies its MOID (14 bytes) to pMoid and its record (48 bytes) to pMep,
 * stores its slot (not slot + 1) in *pMepIndex, traces "Cvlan %d is in use
 * by OAM on S/P %d/%d" and returns 1. Otherwise traces "Cvlan %d is not in
 * use by OAM on S/P %d/%d" and returns 0 with *pMepIndex and both buffers
 * untouched. Walk: start at 0, continue with the returned index plus 1 until
 * 0 comes back.
 * A start index outside 0..31 (negative ones included) returns 0 at once:
 * nothing is read, traced or written. No pointer may be null.
 */
TARV_API uint32_t Tarv__FindDownMepFromSomeWhereOnCVlanPort(int32_t slot, int32_t port, int32_t cvid,
                                                            int32_t* pMepIndex, TARV_MOID* pMoid, void* pMep);

/*
 * 1 when a MIP (live: key) on (slot, port) as given has, among any component
 * of its MA, one C-tagged with VLAN cvid: the first such MIP's MOID (14
 * bytes) goes to pMoid and its record (14 bytes) to pMip, and "Cvlan %d is
 * in use by OAM on S/P %d/%d" is traced. Otherwise 0 after "Cvlan %d is not
 * in use by OAM on S/P %d/%d", both buffers untouched.
 */
TARV_API uint32_t Tarv__DoesMipExistOnCVlanPort(int32_t slot, int32_t port, int32_t cvid, TARV_MOID* pMoid,
                                                void* pMip);

/*
 * 1 when a MEP (live: any; either direction) on (slot, port) as given has
 * wVid vid and its endpoint test says S-tagged (traces "vlan: %d is in use
 * by a Down MEP(S%d/P%d)\n", whatever the direction), or else when
 * Tarv__IsOamEnabledOnMIPPortSVlan(slot, port, vid) yields 1 (it traces
 * first, under its own name; then "vlan: %d is in use by a MIP(S%d/P%d)\n");
 * otherwise 0 with only the MIP test's trace. An empty MEP entry whose stale
 * record matches is examined too: its endpoint test looks for a component
 * of MD 0, MaNet 0, normally finds none and traces its error.
 */
TARV_API int32_t Tarv__IsVidTranslationUsedByOam(int32_t slot, int32_t port, int32_t vid);

/*
 * Whether a C-VID registration of cvid to svid on (slot, port) as given cuts
 * off OAM; live: any for MEPs. Three steps, the first that finds a use
 * answers 1:
 * 1. Down MEPs (eDirection 1), in slot order: wVid cvid and an endpoint test
 *    that says C-tagged. Traces "vlan: %d is in use by a Down MEP(S%d/P%d)\n"
 *    (cvid, s, p).
 * 2. Up MEPs (eDirection 2), in slot order, only when step 1 found none: the
 *    first component of the MEP's MA, empty MAComp entries compared too (no
 *    error trace when there is none), is C-tagged and the MEP's wVid is cvid,
 *    or flag is 1, it is S-tagged and the MEP's wVid is svid. Traces "vlan:
 *    %d is in use by a Up MEP(S%d/P%d)\n" with cvid, respectively svid.
 * 3. The MIP test for C-VLAN cvid (tagging 1 among any component of the
 *    MIP's MA; it traces "Svlan %d is in use by OAM on S/P %d/%d" or "Svlan
 *    %d is not in use by OAM on S/P %d/%d" under
 *    "Tarv__IsOamEnabledOnMIPPortCVlan"); a use then traces "vlan: %d is in
 *    use by a MIP(S%d/P%d)\n".
 * Otherwise 0. value1 and value2 are not read.
 */
TARV_API uint32_t Tarv__IsCVidRegistrationsUsedByOam(int32_t slot, int32_t port, int32_t cvid, int32_t svid,
                                                     int32_t value1, int32_t value2, uint8_t flag);

/*
 * 1 when a MEP, else a MIP (live: class) sits on LAG lagId (bySlot 2, byPort
 * lagId): the dwCcmPeriod of the first such point's MaNet (key: class 574,
 * the point's MD id and MaNet id) is stored in *pCcmPeriod and "OAM is
 * enabled on Lag, CCM Period = %d\n" traced. When that MaNet cannot be
 * found, Tarv__ReadMANet's error is traced, the period stored is 0 and the
 * answer is still 1. Otherwise 0 after "OAM is NOT enabled on Lag %d\n",
 * *pCcmPeriod untouched. pCcmPeriod must not be null.
 */
TARV_API uint32_t Tarv__IsOamEnabledOnLagOpt(int32_t lagId, uint32_t* pCcmPeriod);

/*
 * 1 when slot can take one more MEP of CCM period ccmPeriod, else 0. Walks
 * the MEPs as Tarv__MEPMoidIterator does and reads each as Tarv__ReadMEP
 * does (same traces), and sums resource units in 16 bits: a MEP's weight is
 * 3 when the dwCcmPeriod of its MaNet is 2, else 1 (also when the MaNet
 * cannot be found: Tarv__ReadMANet's error is traced and the period taken as
 * 0).
 *   - A MEP on a LAG (bySlot 2, never a physical slot 2): its MaNet is read,
 *     then Prtm__LagGetLagPortList(byPort) is asked for the members; the
 *     weight counts once per member whose slot is not 0 and equals slot and
 *     whose port is not 0. A list that the port library leaves unwritten
 *     has no members; a member count above nine is read as nine, the
 *     entries the 20-byte list holds.
 *   - A MEP with bySlot equal to slot: its weight, its MaNet read.
 *   - Other MEPs and all MIPs: nothing, no MaNet read.
 *   - A MEP that the walk names but that can no longer be read (removed
 *     meanwhile; Tarv__ReadMEP's error is traced): nothing.
 * The answer is 1 when the sum plus the new MEP's weight (3 for ccmPeriod 2,
 * else 1), truncated to 16 bits, is at most 1000. No trace of its own.
 * Not attached: 1 (as for a region without MEPs), after the code-12 trace.
 */
TARV_API int32_t Tarv__MepResourcesAvailableOnSlot(uint32_t slot, int32_t ccmPeriod);

/* ------------------------------------------------------------------------
 * Performance-monitoring records (no region access, no trace, reentrant)
 * ------------------------------------------------------------------------ */

#pragma pack(push, 1)

/* Delay-measurement record, numeric MS form (213 bytes). Times in
 * microseconds; float64 fields are IEEE 754 doubles, little-endian. */
typedef struct DMRecordMS {
    char acText1[20];
    uint32_t lWord1;
    char acText2[20];
    uint32_t lWord2;
    double dUs1;
    uint32_t lWord3;
    uint32_t lWord4;
    double dUs2;
    uint32_t lWord5;
    uint32_t lWord6;
    double dUs3;
    uint32_t lUs1;
    uint8_t byMsOnly1;
    uint32_t lUs2;
    uint8_t byMsOnly2;
    double dUs4;
    uint32_t lWord7;
    uint32_t lWord8;
    double dUs5;
    uint32_t lUs3;
    uint8_t byMsOnly3;
    uint32_t lUs4;
    uint8_t byMsOnly4;
    double dUs6;
    uint32_t lWord9;
    uint32_t lWord10;
    uint32_t lWord11;
    uint32_t lWord12;
    uint32_t lWord13;
    uint32_t lWord14;
    uint8_t byTail;
    double dUs7;
    double dUs8;
    double dUs9;
    double dUs10;
    double dUs11;
    double dUs12;
} DMRecordMS;

/* Delay-measurement record, text IM form (625 bytes). The time fields have
 * the names of their MS counterparts and hold zero-terminated texts of at
 * most 32 characters in 33-byte fields ("250.50 us"). */
typedef struct DMRecordIM {
    char acText1[20];
    uint32_t lWord1;
    char acText2[20];
    uint32_t lWord2;
    char dUs1[33];
    uint32_t lWord3;
    uint32_t lWord4;
    char dUs2[33];
    uint32_t lWord5;
    uint32_t lWord6;
    char dUs3[33];
    char lUs1[33];
    char lUs2[33];
    char dUs4[33];
    uint32_t lWord7;
    uint32_t lWord8;
    char dUs5[33];
    char lUs3[33];
    char lUs4[33];
    char dUs6[33];
    uint32_t lWord9;
    uint32_t lWord10;
    uint32_t lWord11;
    uint32_t lWord12;
    uint32_t lWord13;
    uint32_t lWord14;
    uint8_t byTail;
    char dUs7[33];
    char dUs8[33];
    char dUs9[33];
    char dUs10[33];
    char dUs11[33];
    char dUs12[33];
} DMRecordIM;

/* Loss-measurement record, numeric MS form (130 bytes); percentages. */
typedef struct LMRecordMS {
    uint8_t byMsOnly1;
    char acText1[20];
    uint32_t lWord1;
    char acText2[20];
    uint32_t lWord2;
    double dPct1;
    double dPct2;
    double dPct3;
    double dPct4;
    double dPct5;
    double dPct6;
    uint32_t lWord3;
    uint32_t lWord4;
    uint32_t lWord5;
    uint32_t lWord6;
    uint32_t lWord7;
    uint32_t lWord8;
    uint32_t lWord9;
    uint32_t lWord10;
    uint8_t byTail;
} LMRecordMS;

/* Loss-measurement record, text IM form (279 bytes); "12.50 %" texts. */
typedef struct LMRecordIM {
    char acText1[20];
    uint32_t lWord1;
    char acText2[20];
    uint32_t lWord2;
    char dPct1[33];
    char dPct2[33];
    char dPct3[33];
    char dPct4[33];
    char dPct5[33];
    char dPct6[33];
    uint32_t lWord3;
    uint32_t lWord4;
    uint32_t lWord5;
    uint32_t lWord6;
    uint32_t lWord7;
    uint32_t lWord8;
    uint32_t lWord9;
    uint32_t lWord10;
    uint8_t byTail;
} LMRecordIM;

#pragma pack(pop)

#define TARV_DM_RECORD_MS_SIZE 213
#define TARV_DM_RECORD_IM_SIZE 625
#define TARV_LM_RECORD_MS_SIZE 130
#define TARV_LM_RECORD_IM_SIZE 279

/*
 * Delay-measurement (DM) record, MS form to IM form.
 *
 * Reads only the 213 bytes at pMs and writes only into the 625 bytes at pIm;
 * touches no region, traces nothing, keeps no state (reentrant). Neither
 * pointer may be null; the records must not overlap. The decimal point of
 * every text is that of the current C locale (LC_NUMERIC, as printf uses it).
 * Field by field:
 *   acText1, acText2   the 20 bytes are copied, then the IM field's last byte
 *                      (IM byte 19, respectively 43) is set to 0: the IM text
 *                      is always terminated and holds at most 19 characters.
 *   lWord1..lWord14,   copied byte for byte; no value is tested.
 *   byTail
 *   dUs1..dUs12        the text of sprintf("%.2f us"): the exact double
 *                      rounded to two decimals, an exact tie to the even
 *                      digit ("0.12 us" for 0.125, "2.67 us" for 2.675),
 *                      whatever the floating-point rounding mode; "-0.00 us"
 *                      for -0.0 and for negative values that round to zero;
 *                      "nan us", "-nan us", "inf us", "-inf us".
 *                      When that text would exceed 32 characters (10^26 and
 *                      above, -10^25 and below, with a one-byte decimal
 *                      point) the field gets the text of sprintf("%.17g")
 *                      followed by " us" instead ("1e+26 us",
 *                      "-1.0000000000000001e+25 us"): at most 27 characters,
 *                      never a number cut short, and it reads back as exactly
 *                      the same double.
 *   lUs1..lUs4         sprintf("%lu us"), at most 13 characters
 *                      ("4294967295 us").
 *   byMsOnly1..4       not carried.
 * Every text is written with its terminating zero from the field's first
 * byte; the field's bytes after the terminator keep their previous contents.
 */
TARV_API void Tarv__DMRecordMS2IM(DMRecordIM* pIm, const DMRecordMS* pMs);

/*
 * Delay-measurement (DM) record, IM form to MS form.
 *
 * Reads only the 625 bytes at pIm and writes only into the 213 bytes at pMs;
 * no region, no trace, reentrant; non-null, non-overlapping records.
 *   acText1, acText2   the 20 bytes are copied as they are, terminated or not.
 *   lWord1..lWord14,   copied byte for byte.
 *   byTail
 *   dUs1..dUs12        the text is read as by sscanf("%lf") in the current C
 *                      locale: leading white space skipped, then a decimal or
 *                      hexadecimal floating-point number, inf, infinity or
 *                      nan in any case; the unit and anything after the
 *                      number are ignored ("250.50 us" and "250.5" give 250.5,
 *                      " 7.5 ms" gives 7.5, "-0.00 us" gives -0.0). A text
 *                      holding no number ("", "abc") leaves the MS field's 8
 *                      bytes as they were; nothing reports it. A field with
 *                      no terminator in its 33 bytes is read as those 33
 *                      characters: nothing past the field is read.
 *   lUs1..lUs4,        not written: MS bytes 88 to 97 and 122 to 131 keep
 *   byMsOnly1..4       what the destination held (zero if it was cleared).
 * MS to IM to MS gives back every copied field exactly, each text up to its
 * 19th character and each time rounded to two decimals (times beyond the
 * 32-character limit come back exactly); lUs1..lUs4 and byMsOnly1..4 are not
 * restored.
 */
TARV_API void Tarv__DMRecordIM2MS(DMRecordMS* pMs, const DMRecordIM* pIm);

/*
 * Loss-measurement (LM) record, MS form to IM form.
 *
 * Reads only the 130 bytes at pMs and writes only into the 279 bytes at pIm;
 * no region, no trace, reentrant; non-null, non-overlapping records. The
 * rules are those of Tarv__DMRecordMS2IM:
 *   byMsOnly1 (MS byte 0)     not carried.
 *   acText1, acText2          copied; IM bytes 19 and 43 then set to 0.
 *   lWord1..lWord10, byTail   copied byte for byte.
 *   dPct1..dPct6              sprintf("%.2f %%"): "12.50 %", "0.12 %" for
 *                             0.125, "100.00 %", "-nan %"; no range test:
 *                             values below 0 or above 100 print as they are.
 *                             Beyond 32 characters (10^27 and above, -10^26
 *                             and below, with a one-byte decimal point) the
 *                             text of "%.17g" followed by " %" ("1e+27 %"),
 *                             which reads back as the same double.
 * Texts are written from the field's first byte with their terminator; the
 * field's later bytes are untouched.
 */
TARV_API void Tarv__LMRecordMS2IM(LMRecordIM* pIm, const LMRecordMS* pMs);

/*
 * Loss-measurement (LM) record, IM form to MS form.
 *
 * Reads only the 279 bytes at pIm and writes only into the 130 bytes at pMs;
 * no region, no trace, reentrant; non-null, non-overlapping records.
 *   byMsOnly1 (MS byte 0)     not written.
 *   acText1, acText2,         copied byte for byte (texts as they are).
 *   lWord1..lWord10, byTail
 *   dPct1..dPct6              read as by sscanf("%lf"), as in
 *                             Tarv__DMRecordIM2MS ("5 %" gives 5.0); a text
 *                             without a number leaves the field as it was;
 *                             an unterminated field is read as its 33
 *                             characters.
 * MS to IM to MS gives back every field but MS byte 0, with the percentages
 * rounded to two decimals and each text losing a 20th character.
 */
TARV_API void Tarv__LMRecordIM2MS(LMRecordMS* pMs, const LMRecordIM* pIm);

#ifdef __cplusplus
}
#endif

#endif
