#include "support/operations.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "byteorder.h"
#include "classes.h"
#include "fields.h"
#include "region.h"
#include "support/fake_platform.h"

namespace tarv::testing {
namespace {

// ---------------------------------------------------------------------------
// Keys the populated region holds, and some it does not.
// ---------------------------------------------------------------------------

TARV_MOID moid(std::uint16_t w_class, std::uint32_t id1, std::uint32_t id2, std::uint32_t id3) {
    std::uint8_t b[TARV_MOID_SIZE];
    store_le<std::uint16_t>(b, w_class);
    store_le<std::uint32_t>(b + 2, id1);
    store_le<std::uint32_t>(b + 6, id2);
    store_le<std::uint32_t>(b + 10, id3);
    TARV_MOID m;
    std::memcpy(&m, b, sizeof m);
    return m;
}

TARV_MANET_KEY manet_key(std::uint32_t md, std::uint32_t manet) {
    std::uint8_t b[TARV_MANET_KEY_SIZE];
    store_le<std::uint16_t>(b, TARV_CLASS_MANET);
    store_le<std::uint32_t>(b + 2, md);
    store_le<std::uint32_t>(b + 6, manet);
    TARV_MANET_KEY k;
    std::memcpy(&k, b, sizeof k);
    return k;
}

// MEPs: slots 0 and 31 hold the MEPs their ids point at (the keys
// populate_region gives every class); MEP 5 stands in
// slot 9, away from its hint; MEP 40 has a hint outside the table.
const TARV_MOID kMepFirst = moid(TARV_CLASS_MEP, 1, 1, 1);
const TARV_MOID kMepLast = moid(TARV_CLASS_MEP, 1, 1, 32);
const TARV_MOID kMepMoved = moid(TARV_CLASS_MEP, 1, 1, 5);
const TARV_MOID kMepBadHint = moid(TARV_CLASS_MEP, 1, 1, 40);
const TARV_MOID kMepAbsent = moid(TARV_CLASS_MEP, 1, 1, 7);
constexpr std::uint32_t kMovedSlot = 9;
constexpr std::uint32_t kBadHintSlot = 20;
// Old MOIDs the controller keeps for slots 0 and 31.
const TARV_MOID kOldFirst = moid(TARV_CLASS_MEP, 7, 7, 1);
const TARV_MOID kOldLast = moid(TARV_CLASS_MEP, 7, 7, 32);
// MaNets in slots 0 and 127 (the keys populate_region gives every class).
const TARV_MANET_KEY kManetFirst = manet_key(1, 1);
const TARV_MANET_KEY kManetLast = manet_key(1, 128);
const TARV_MANET_KEY kManetAbsent = manet_key(1, 64);
// Bandwidth notifications and throughput tests in slots 0 and 31.
const TARV_MOID kBwnFirst = moid(TARV_CLASS_BANDWIDTH_NOTIFICATION, 1, 1, 1);
TARV_THROUGHPUT_KEY throughput_key(std::uint32_t id) {
    TARV_THROUGHPUT_KEY k;
    const TARV_MOID m = moid(TARV_CLASS_THROUGHPUT, 1, 1, 1);
    std::memcpy(&k, &m, sizeof m);
    std::uint8_t id_bytes[4];
    store_le<std::uint32_t>(id_bytes, id);
    std::memcpy(reinterpret_cast<std::uint8_t*>(&k) + 14, id_bytes, 4);
    return k;
}
// PM keys: the MEP of slot 0 with a session id.
TARV_PM_KEY pm_key(std::uint8_t session) {
    TARV_PM_KEY k;
    std::memcpy(&k, &kMepFirst, TARV_MOID_SIZE);
    reinterpret_cast<std::uint8_t*>(&k)[14] = session;
    return k;
}

// ---------------------------------------------------------------------------
// PM records in both forms, with values that take every path of the texts.
// ---------------------------------------------------------------------------

struct PmInputs {
    DMRecordMS dm_ms;
    DMRecordIM dm_im;
    LMRecordMS lm_ms;
    LMRecordIM lm_im;

    PmInputs() {
        auto* dm = reinterpret_cast<std::uint8_t*>(&dm_ms);
        for (std::size_t i = 0; i < sizeof dm_ms; ++i) dm[i] = static_cast<std::uint8_t>('A' + i % 26);
        constexpr double kInf = std::numeric_limits<double>::infinity();
        constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
        const double dm_values[] = {250.5, -0.0, 1e30, -1e26, 0.125, kInf, -kNan, 12345.678,
                                    4.2e-9, -2.675, 99999999.995, 7.0};
        const std::size_t dm_at[] = {48, 64, 80, 98, 114, 132, 165, 173, 181, 189, 197, 205};
        for (std::size_t i = 0; i < 12; ++i) store_le<double>(dm + dm_at[i], dm_values[i]);

        auto* lm = reinterpret_cast<std::uint8_t*>(&lm_ms);
        for (std::size_t i = 0; i < sizeof lm_ms; ++i) lm[i] = static_cast<std::uint8_t>('a' + i % 26);
        const double lm_values[] = {12.5, 100.0, 1e27, -0.004, kNan, 0.125};
        for (std::size_t i = 0; i < 6; ++i) store_le<double>(lm + 49 + 8 * i, lm_values[i]);

        // IM texts: numbers with units, none, hexadecimal, unterminated.
        std::memset(&dm_im, 'x', sizeof dm_im);
        const char* dm_texts[] = {"250.50 us", "", " 7.5 ms", "0x1p-3", "inf", "-nan us",
                                  "abc", "1e+26 us", "-0.00 us", "4294967295", "1.5", "2"};
        const std::size_t dm_im_at[] = {48, 89, 130, 229, 270, 369, 427, 460, 493, 526, 559, 592};
        auto* dmi = reinterpret_cast<std::uint8_t*>(&dm_im);
        for (std::size_t i = 0; i < 12; ++i) std::memcpy(dmi + dm_im_at[i], dm_texts[i], std::strlen(dm_texts[i]) + 1);
        std::memset(&lm_im, '9', sizeof lm_im);  // every percentage text unterminated
        auto* lmi = reinterpret_cast<std::uint8_t*>(&lm_im);
        std::memcpy(lmi + 48, "12.50 %", 8);
        std::memcpy(lmi + 81, "-", 2);
    }
};
const PmInputs kPm;

// ---------------------------------------------------------------------------
// Rows
// ---------------------------------------------------------------------------

// Buffer a Tarv__GetConfig call needs for class `id` and count `count`:
// what the caller must provide, and for counts beyond the table the most
// the class can write (every slot and a terminator).
std::size_t config_buffer(std::uint32_t id, std::uint32_t count) {
    const ClassInfo* c = find_class(id);
    if (c == nullptr) return 0;
    switch (c->rule) {
        case ClassRule::List: {
            const std::uint32_t limit = c->slots() + 1;
            const std::uint32_t n = count == 0 ? 1 : (count > limit ? limit : count);
            return std::size_t{n} * c->transfer_size();
        }
        case ClassRule::Singleton: return c->record_size();
        case ClassRule::History: return (count == 0 ? 1u : c->slots()) * std::size_t{c->transfer_size()};
        case ClassRule::NoStorage: return 0;
    }
    return 0;
}

void get_config(Scratch& s, const Operation& op) {
    s.result(static_cast<std::uint32_t>(Tarv__GetConfig(op.a, s.out(config_buffer(op.a, op.b)), op.b)));
}

// An iterator's walk from the start to its end, each result's offset folded.
template <typename Key>
void walk(Scratch& s, const Key* (*next)(const Key*)) {
    const Key* p = next(nullptr);
    for (int steps = 0; p != nullptr && steps <= 32; ++steps) {
        s.result(reinterpret_cast<std::uintptr_t>(p) - reinterpret_cast<std::uintptr_t>(pSharedData));
        p = next(p);
    }
}
void walk_meps(Scratch& s, const Operation&) { walk(s, Tarv__MEPMoidIterator); }

// A previous MOID handed in as a copy in the caller's memory.
void iterate_from_copy(Scratch& s, const TARV_MOID& prev) {
    auto* copy = reinterpret_cast<TARV_MOID*>(s.out(sizeof prev));
    std::memcpy(copy, &prev, sizeof prev);
    const TARV_MOID* next = Tarv__MEPMoidIterator(copy);
    s.result(next == nullptr ? 0 : reinterpret_cast<std::uintptr_t>(next) - reinterpret_cast<std::uintptr_t>(pSharedData));
}
void iterate_after_vanished(Scratch& s, const Operation&) { iterate_from_copy(s, kMepAbsent); }
void iterate_after_bad_hint(Scratch& s, const Operation&) { iterate_from_copy(s, kMepBadHint); }

const TARV_MOID& mep_key(std::uint32_t which) {
    static const TARV_MOID* const keys[] = {&kMepFirst, &kMepLast, &kMepMoved, &kMepAbsent, &kOldFirst, &kOldLast};
    return *keys[which];
}
void read_mep(Scratch& s, const Operation& op) { Tarv__ReadMEP(mep_key(op.a), s.out(TARV_MEP_RECORD_SIZE)); }
void mep_index(Scratch& s, const Operation& op) {
    auto* index = reinterpret_cast<std::uint16_t*>(s.out(sizeof(std::uint16_t)));
    s.result(static_cast<std::uint32_t>(Tarv__GetMepIndexFromOldMoid(mep_key(op.a), op.b != 0 ? index : nullptr)));
}

const TARV_MANET_KEY& manet(std::uint32_t which) {
    static const TARV_MANET_KEY* const keys[] = {&kManetFirst, &kManetLast, &kManetAbsent};
    return *keys[which];
}
void manet_exists(Scratch& s, const Operation& op) { s.result(Tarv__DoesMANetExist(manet(op.a))); }
void read_manet(Scratch& s, const Operation& op) { Tarv__ReadMANet(manet(op.a), s.out(TARV_MANET_RECORD_SIZE)); }

void dm_ms2im(Scratch& s, const Operation&) {
    Tarv__DMRecordMS2IM(reinterpret_cast<DMRecordIM*>(s.out(sizeof(DMRecordIM))), &kPm.dm_ms);
}
void dm_im2ms(Scratch& s, const Operation&) {
    Tarv__DMRecordIM2MS(reinterpret_cast<DMRecordMS*>(s.out(sizeof(DMRecordMS))), &kPm.dm_im);
}
void lm_ms2im(Scratch& s, const Operation&) {
    Tarv__LMRecordMS2IM(reinterpret_cast<LMRecordIM*>(s.out(sizeof(LMRecordIM))), &kPm.lm_ms);
}
void lm_im2ms(Scratch& s, const Operation&) {
    Tarv__LMRecordIM2MS(reinterpret_cast<LMRecordMS*>(s.out(sizeof(LMRecordMS))), &kPm.lm_im);
}

// A row that calls `function args` (the arguments may take buffers from the
// Scratch `s`) and folds its result into the digest.
#define ROW(kind, function, variant, args)                                                       \
    t.push_back({#function, variant, kind, [](Scratch& s, const Operation&) {                   \
                     s.result(static_cast<std::uint64_t>(function args));                       \
                 }})
#define VOID_ROW(kind, function, variant, args) \
    t.push_back({#function, variant, kind, []([[maybe_unused]] Scratch& s, const Operation&) { function args; }})

void walk_bandwidth_notifications(Scratch& s, const Operation&) { walk(s, Tarv__BandwidthNotificationMoidIterator); }
void walk_throughput_list(Scratch& s, const Operation&) { walk(s, Tarv__ThroughputListMoidIterator); }

// A previous key in the caller's memory that the table does not hold.
void bwn_after_vanished(Scratch& s, const Operation&) {
    auto* copy = reinterpret_cast<TARV_MOID*>(s.out(sizeof(TARV_MOID)));
    *copy = moid(TARV_CLASS_BANDWIDTH_NOTIFICATION, 1, 1, 40);
    s.result(Tarv__BandwidthNotificationMoidIterator(copy) != nullptr);
}
void throughput_after_vanished(Scratch& s, const Operation&) {
    auto* copy = reinterpret_cast<TARV_THROUGHPUT_KEY*>(s.out(sizeof(TARV_THROUGHPUT_KEY)));
    *copy = throughput_key(40);
    s.result(Tarv__ThroughputListMoidIterator(copy) != nullptr);
}

void pm_key_of(Scratch& s, const Operation& op) {
    void (*const getters[])(uint32_t, TARV_PM_KEY*) = {Tarv__GetPMAlarmMoid, Tarv__GetPMSessionMoid,
                                                       Tarv__GetPMSessionOldMoid};
    getters[op.b](op.a, reinterpret_cast<TARV_PM_KEY*>(s.out(TARV_PM_KEY_SIZE)));
}

void alarm_details(Scratch& s, const Operation& op) {
    auto* moid_out = reinterpret_cast<TARV_MOID*>(s.out(TARV_MOID_SIZE + TARV_ALARM_TEXT_SIZE));
    Tarv__GetDetailsForAlarm(op.a, moid_out, reinterpret_cast<char*>(moid_out) + TARV_MOID_SIZE);
}

void alarm_source(Scratch& s, const Operation& op) {
    s.result(Tarv__GetMepInfoAbout1731Alarm(pm_key(static_cast<std::uint8_t>(op.a)),
                                            reinterpret_cast<char*>(s.out(TARV_MEP_ALARM_INFO_SIZE))));
}

// Checkpoint copies: op.a is the length passed, op.b 0 for a null pData.
void get_chkp(Scratch& s, const Operation& op) {
    const auto length = static_cast<std::int32_t>(op.a);
    std::uint8_t* data = s.out(2 + (length >= 0 ? op.a : TARV_CHKP_DATA_SIZE));
    auto* value = reinterpret_cast<std::uint16_t*>(data);
    Tarv__GetChkpData(TARV_CHKP_SECTION_ID, value, op.b != 0 ? data + 2 : nullptr, length);
}
void set_chkp(Scratch& s, const Operation& op) {
    const auto length = static_cast<std::int32_t>(op.a);
    std::uint8_t* data = s.out(length > 0 ? op.a : 0);
    Tarv__SetChkpData(op.b, TARV_CHKP_SECTION_VALUE, length > 0 ? data : nullptr, length);
}

void find_down_mep(Scratch& s, const Operation& op) {
    std::uint8_t* out = s.out(TARV_MOID_SIZE + TARV_MEP_RECORD_SIZE);
    auto index = static_cast<std::int32_t>(op.a);  // an int32_t of the caller's, aligned as such
    s.result(Tarv__FindDownMepFromSomeWhereOnCVlanPort(1, 5, static_cast<std::int32_t>(op.b), &index,
                                                       reinterpret_cast<TARV_MOID*>(out), out + TARV_MOID_SIZE));
}

void mip_on_cvlan(Scratch& s, const Operation& op) {
    std::uint8_t* out = s.out(TARV_MOID_SIZE + TARV_MIP_RECORD_SIZE);
    s.result(Tarv__DoesMipExistOnCVlanPort(1, 6, static_cast<std::int32_t>(op.a), reinterpret_cast<TARV_MOID*>(out),
                                           out + TARV_MOID_SIZE));
}

void usage_rows(std::vector<Operation>& t) {
    using K = OperationKind;
    // Port 1/5: a Down MEP of VLAN 100 (C-tagged MA); 1/6: a MIP of that MA;
    // LAG 7: an Up MEP of VLAN 200 and a MIP; 3/23: a Down MEP of VLAN 300.
    ROW(K::Read, Tarv__IsOamEnabledOnPort, "MEP", (1, 5));
    ROW(K::Read, Tarv__IsOamEnabledOnPort, "MIP", (1, 6));
    ROW(K::Read, Tarv__IsOamEnabledOnPort, "none", (9, 9));
    ROW(K::Read, Tarv__IsOamEnabledOnPortOpt, "MIP", (1, 6));
    ROW(K::Read, Tarv__IsOamEnabledOnPortOpt, "none", (-1, 5));
    ROW(K::Read, Tarv__IsMPEnabledOnPort, "MEP", (1, 5));
    ROW(K::Read, Tarv__IsMPEnabledOnPort, "none", (1, 256));
    ROW(K::Read, Tarv__IsOamEnabledForMepOnPort, "Down MEP", (1, 5, kMepFirst));
    ROW(K::Read, Tarv__IsOamEnabledForMepOnPort, "slot 3, port substituted", (3, 99, kMepMoved));
    ROW(K::Read, Tarv__IsOamEnabledForMepOnPort, "Up MEP", (2, 7, kMepLast));
    ROW(K::Read, Tarv__IsOamEnabledOnMIPPortSVlan, "S-tagged component", (1, 6, 200));
    ROW(K::Read, Tarv__IsOamEnabledOnMIPPortSVlan, "none", (1, 6, 100));
    ROW(K::Read, Tarv__IsOamEnabledOnPortSVlan, "C-tagged MEP", (1, 5, 100));
    ROW(K::Read, Tarv__IsOamEnabledOnPortVfi, "none", (2, 7, 200));
    ROW(K::Read, Tarv__IsOamEnabledOnCVlanPort, "MEP", (1, 5, 100));
    ROW(K::Read, Tarv__IsOamEnabledOnCVlanPort, "MIP", (1, 6, 100));
    ROW(K::Read, Tarv__IsOamEnabledOnCVlanPort, "none", (1, 5, -100));
    ROW(K::Read, Tarv__IsOamEnabledOnSVlan, "component", (200));
    ROW(K::Read, Tarv__IsOamEnabledOnSVlan, "none", (100));
    ROW(K::Read, Tarv__IsOamEnabledOnVfi, "none", (5));
    ROW(K::Read, Tarv__IsOamEnabledOnCVlan, "component", (100));
    ROW(K::Read, Tarv__IsOamEnabledOnCVlan, "none", (0x7FFFFFFF));
    ROW(K::Read, Tarv__CheckTagging, "conflict", (2, 7, 200, 0));
    ROW(K::Read, Tarv__CheckTagging, "none", (1, 5, 100, 0));
    ROW(K::Read, Tarv__CheckTagging, "VLAN 0", (2, 7, 0, 0));
    ROW(K::Read, Tarv__FindMepOnPort, "in range", (1, 5, 0, 4095));
    ROW(K::Read, Tarv__FindMepOnPort, "empty range", (1, 5, 101, 100));
    ROW(K::Read, Tarv__FindMipOnPort, "in range", (1, 6, 1, 0xFFFFFFFFu));
    ROW(K::Read, Tarv__FindMipOnPort, "none", (1, 6, 300, 400));
    ROW(K::Read, Tarv__FindAllMepOnPort, "outside the new span", (1, 5, 1, 4094, 1, 50));
    ROW(K::Read, Tarv__FindAllMepOnPort, "new span covers", (1, 5, 1, 4094, 1, 4094));
    ROW(K::Read, Tarv__FindAllMipOnPort, "outside the new span", (1, 6, 1, 4094, 101, 50));
    ROW(K::Read, Tarv__FindAllMipOnPort, "none", (9, 6, 1, 4094, 1, 50));
    t.push_back({"Tarv__FindDownMepFromSomeWhereOnCVlanPort", "from 0", K::Read, find_down_mep, 0, 100});
    t.push_back({"Tarv__FindDownMepFromSomeWhereOnCVlanPort", "none after", K::Read, find_down_mep, 1, 100});
    t.push_back({"Tarv__FindDownMepFromSomeWhereOnCVlanPort", "index -1", K::Read, find_down_mep, 0xFFFFFFFFu, 100});
    t.push_back({"Tarv__FindDownMepFromSomeWhereOnCVlanPort", "index 32", K::Read, find_down_mep, 32, 100});
    t.push_back({"Tarv__DoesMipExistOnCVlanPort", "C-tagged component", K::Read, mip_on_cvlan, 100});
    t.push_back({"Tarv__DoesMipExistOnCVlanPort", "none", K::Read, mip_on_cvlan, 7});
    ROW(K::Read, Tarv__IsVidTranslationUsedByOam, "MIP", (1, 6, 200));
    ROW(K::Read, Tarv__IsVidTranslationUsedByOam, "none", (1, 5, 100));
    ROW(K::Read, Tarv__IsCVidRegistrationsUsedByOam, "Down MEP", (1, 5, 100, 200, 0, 0, 0));
    ROW(K::Read, Tarv__IsCVidRegistrationsUsedByOam, "Up MEP", (2, 7, 200, 300, 0, 0, 1));
    ROW(K::Read, Tarv__IsCVidRegistrationsUsedByOam, "none", (2, 7, 7, 200, 0, 0, 1));
    ROW(K::Read, Tarv__IsOamEnabledOnLagOpt, "MEP on the LAG", (7, reinterpret_cast<std::uint32_t*>(s.out(4))));
    ROW(K::Read, Tarv__IsOamEnabledOnLagOpt, "none", (8, reinterpret_cast<std::uint32_t*>(s.out(4))));
    ROW(K::Read, Tarv__MepResourcesAvailableOnSlot, "LAG members on the slot", (1, 2));
    ROW(K::Read, Tarv__MepResourcesAvailableOnSlot, "no MEP on the slot", (200, 0));
}

void reader_and_alarm_rows(std::vector<Operation>& t) {
    using K = OperationKind;
    t.push_back({"Tarv__BandwidthNotificationMoidIterator", "walk to the end", K::Read, walk_bandwidth_notifications});
    t.push_back({"Tarv__BandwidthNotificationMoidIterator", "previous MOID vanished", K::Read, bwn_after_vanished});
    VOID_ROW(K::Read, Tarv__ReadBandwidthNotification, "present", (kBwnFirst, s.out(18)));
    VOID_ROW(K::Read, Tarv__ReadBandwidthNotification, "absent", (kMepFirst, s.out(18)));
    t.push_back({"Tarv__ThroughputListMoidIterator", "walk to the end", K::Read, walk_throughput_list});
    t.push_back({"Tarv__ThroughputListMoidIterator", "previous key vanished", K::Read, throughput_after_vanished});
    VOID_ROW(K::Read, Tarv__ReadThroughputEntry, "in the last slot", (throughput_key(32), s.out(33)));
    VOID_ROW(K::Read, Tarv__ReadThroughputEntry, "absent", (throughput_key(0), s.out(33)));
    ROW(K::Read, Tarv_GetEnableStatusofThroughput, "walk", ());

    VOID_ROW(K::Read, Tarv__GetAlarms, "every slot", (reinterpret_cast<std::uint16_t*>(s.out(64))));
    t.push_back({"Tarv__GetDetailsForAlarm", "MOID and text", K::Read, alarm_details, 0});
    t.push_back({"Tarv__GetDetailsForAlarm", "empty slot", K::Read, alarm_details, 5});
    t.push_back({"Tarv__GetDetailsForAlarm", "text of 81 characters", K::Read, alarm_details, 31});
    t.push_back({"Tarv__GetDetailsForAlarm", "past the table", K::Read, alarm_details, 32});
    VOID_ROW(K::Read, Tarv__GetPMAlarms, "block", (s.out(TARV_PM_ALARM_BLOCK_SIZE)));
    VOID_ROW(K::Read, Tarv__GetMEPHWAlarms, "block", (s.out(TARV_MEP_HW_ALARM_BLOCK_SIZE)));
    const char* pm_getters[] = {"Tarv__GetPMAlarmMoid", "Tarv__GetPMSessionMoid", "Tarv__GetPMSessionOldMoid"};
    for (std::uint32_t which = 0; which < 3; ++which) {
        t.push_back({pm_getters[which], "last slot", K::Read, pm_key_of, 8, which});
        t.push_back({pm_getters[which], "past the last slot", K::Read, pm_key_of, 9, which});
    }
    t.push_back({"Tarv__GetMepInfoAbout1731Alarm", "first session", K::Read, alarm_source, 1});
    t.push_back({"Tarv__GetMepInfoAbout1731Alarm", "last session", K::Read, alarm_source, 8});
    t.push_back({"Tarv__GetMepInfoAbout1731Alarm", "session id 9", K::Read, alarm_source, 9});
    t.push_back({"Tarv__GetMepInfoAbout1731Alarm", "no such session", K::Read, alarm_source, 5});

    t.push_back({"Tarv__GetChkpData", "exactly the record", K::Read, get_chkp, TARV_CHKP_DATA_SIZE, 1});
    t.push_back({"Tarv__GetChkpData", "one byte short", K::Read, get_chkp, TARV_CHKP_DATA_SIZE - 1, 1});
    t.push_back({"Tarv__GetChkpData", "negative length", K::Read, get_chkp, 0xFFFFFFFFu, 1});
    t.push_back({"Tarv__GetChkpData", "null pData", K::Read, get_chkp, TARV_CHKP_DATA_SIZE, 0});
    t.push_back({"Tarv__SetChkpData", "one byte too many", K::Read, set_chkp, TARV_CHKP_DATA_SIZE + 1,
                 TARV_CHKP_SECTION_ID});
    t.push_back({"Tarv__SetChkpData", "wrong section", K::Read, set_chkp, 8, TARV_CHKP_SECTION_ID + 1});
}

std::vector<Operation> make_table() {
    using K = OperationKind;
    std::vector<Operation> t;

    // Configuration read: every class with counts below, at and above what
    // it holds (two objects per table), and ids it does not know.
    for (const ClassInfo& c : kClasses) {
        const std::uint32_t counts[] = {0, 1, 2, 3, c.rule == ClassRule::List ? c.slots() + 1 : 7u, 0xFFFFFFFFu};
        for (std::uint32_t count : counts) t.push_back({"Tarv__GetConfig", "class and count", K::Read, get_config, c.id, count});
    }
    for (std::uint32_t id : {0u, 520u, 999u, 0xFFFFFFFFu})
        t.push_back({"Tarv__GetConfig", "unknown class", K::Read, get_config, id, 1});

    // MEP reading and iteration.
    t.push_back({"Tarv__MEPMoidIterator", "walk to the end", K::Read, walk_meps});
    t.push_back({"Tarv__MEPMoidIterator", "previous MOID vanished", K::Read, iterate_after_vanished});
    t.push_back({"Tarv__MEPMoidIterator", "previous MEP id outside the table", K::Read, iterate_after_bad_hint});
    t.push_back({"Tarv__ReadMEP", "in its hint slot", K::Read, read_mep, 0});
    t.push_back({"Tarv__ReadMEP", "in the last slot", K::Read, read_mep, 1});
    t.push_back({"Tarv__ReadMEP", "away from its hint slot", K::Read, read_mep, 2});
    t.push_back({"Tarv__ReadMEP", "absent", K::Read, read_mep, 3});
    t.push_back({"Tarv__GetMepIndexFromOldMoid", "first slot", K::Read, mep_index, 4, 1});
    t.push_back({"Tarv__GetMepIndexFromOldMoid", "last slot", K::Read, mep_index, 5, 1});
    t.push_back({"Tarv__GetMepIndexFromOldMoid", "current MOID is not an old one", K::Read, mep_index, 0, 1});
    t.push_back({"Tarv__GetMepIndexFromOldMoid", "null index", K::Read, mep_index, 4, 0});

    // MA reading.
    for (std::uint32_t which : {0u, 1u, 2u}) {
        t.push_back({"Tarv__DoesMANetExist", which < 2 ? "present" : "absent", K::Read, manet_exists, which});
        t.push_back({"Tarv__ReadMANet", which < 2 ? "present" : "absent", K::Read, read_manet, which});
    }

    reader_and_alarm_rows(t);
    usage_rows(t);

    // PM record conversion.
    t.push_back({"Tarv__DMRecordMS2IM", "every kind of value", K::Pure, dm_ms2im});
    t.push_back({"Tarv__DMRecordIM2MS", "every kind of text", K::Pure, dm_im2ms});
    t.push_back({"Tarv__LMRecordMS2IM", "every kind of value", K::Pure, lm_ms2im});
    t.push_back({"Tarv__LMRecordIM2MS", "unterminated texts", K::Pure, lm_im2ms});
    return t;
}

// Record bytes that differ per table, slot and byte.
void fill_pattern(std::uint8_t* p, std::uint32_t n, std::uint32_t seed) {
    std::uint32_t x = seed * 2654435761u + 1u;
    for (std::uint32_t i = 0; i < n; ++i) p[i] = static_cast<std::uint8_t>((x = x * 1103515245u + 12345u) >> 16);
}

// The key of `slot` in a table of class c: instance number slot + 1 in the
// last identifier, 1 in the others; session keys end in the slot number.
void put_class_key(std::uint8_t* region, const ClassInfo& c, std::uint32_t slot) {
    std::uint8_t* k = entry(region, c.keys, slot);
    const std::uint32_t size = c.key_size();
    if (c.rule == ClassRule::History) {
        store_le<std::uint32_t>(k, 1000u + slot);
        return;
    }
    if (c.occupancy == Occupancy::SessionByte) {
        std::memcpy(k, &kMepFirst, TARV_MOID_SIZE);
        k[14] = static_cast<std::uint8_t>(slot);
        return;
    }
    store_le<std::uint16_t>(k, static_cast<std::uint16_t>(c.id));
    for (std::uint32_t at = 2; at + 4 <= size; at += 4) store_le<std::uint32_t>(k + at, at + 4 == size ? slot + 1 : 1u);
}

}  // namespace

Scratch::Scratch() : out_(kLargest) {}

std::uint8_t* Scratch::out(std::size_t n) noexcept {
    if (n > out_.size()) std::abort();  // a row larger than the scratch: enlarge kLargest
    handed_ = out_.data() + out_.size() - n;
    handed_size_ = n;
    std::memset(handed_, kFill, n);
    return handed_;
}

void Scratch::result(std::uint64_t value) noexcept { results_ = (results_ ^ value) * 1099511628211u; }

void Scratch::begin_row() noexcept {
    handed_ = nullptr;
    handed_size_ = 0;
    results_ = 14695981039346656037u;
}

std::uint64_t Scratch::digest() const noexcept {
    std::uint64_t h = results_;
    for (std::size_t i = 0; i < handed_size_; ++i) h = (h ^ handed_[i]) * 1099511628211u;
    return h;
}

std::span<const Operation> operations() {
    static const std::vector<Operation> table = make_table();
    return table;
}

std::uint64_t run_row(const Operation& op, Scratch& scratch) {
    scratch.begin_row();
    op.run(scratch, op);
    return scratch.digest();
}

std::string row_name(const Operation& op) { return std::string(op.function) + ": " + op.variant; }

void populate_region(std::uint8_t* region) {
    std::uint32_t seed = 1;
    for (const ClassInfo& c : kClasses) {
        if (c.rule == ClassRule::NoStorage) continue;
        if (c.rule == ClassRule::Singleton) {
            fill_pattern(entry(region, c.data, 0), c.record_size(), seed++);
            continue;
        }
        for (std::uint32_t slot : {c.first_slot, c.slots() - 1}) {
            put_class_key(region, c, slot);
            fill_pattern(entry(region, c.data, slot), c.record_size(), seed++);
        }
    }
    // History results: one terminated text, one that fills its field.
    std::memcpy(entry(region, Table::ThroughputHistoryDataArray, 0) + 101, "passed", 7);
    std::memset(entry(region, Table::ThroughputHistoryDataArray, 100) + 101, 'r', 404);

    std::memcpy(entry(region, Table::MepMoidArray, kMovedSlot), &kMepMoved, TARV_MOID_SIZE);
    fill_pattern(entry(region, Table::MepDataArray, kMovedSlot), TARV_MEP_RECORD_SIZE, seed++);
    std::memcpy(entry(region, Table::MepMoidArray, kBadHintSlot), &kMepBadHint, TARV_MOID_SIZE);
    std::memcpy(entry(region, Table::MepOldMoidArray, 0), &kOldFirst, TARV_MOID_SIZE);
    std::memcpy(entry(region, Table::MepOldMoidArray, 31), &kOldLast, TARV_MOID_SIZE);

    // The points of the usage rows, their MA's components (the first
    // C-tagged, VLAN 100; the last S-tagged, VLAN 200) and its MaNet.
    struct MepAt {
        std::uint32_t at;
        std::uint8_t slot, port;
        std::uint16_t vid;
        std::uint32_t direction;
    };
    for (const MepAt& m : {MepAt{0, 1, 5, 100, mep::kDown}, MepAt{31, mep::kLagSlot, 7, 200, mep::kUp},
                           MepAt{kMovedSlot, 3, 23, 300, mep::kDown}}) {
        std::uint8_t* r = entry(region, Table::MepDataArray, m.at);
        set(r, mep::bySlot, m.slot), set(r, mep::byPort, m.port), set(r, mep::wVid, m.vid);
        set(r, mep::eDirection, m.direction);
    }
    for (std::uint32_t at : {0u, 31u}) {
        std::uint8_t* r = entry(region, Table::MipDataArray, at);
        set(r, mip::bySlot, at == 0 ? std::uint8_t{1} : mep::kLagSlot);
        set(r, mip::byPort, static_cast<std::uint8_t>(at == 0 ? 6 : 7));
        std::uint8_t* component = entry(region, Table::MACompDataArray, at);
        set(component, macomp::eTagging, at == 0 ? macomp::kCVlan : macomp::kSVlan);
        set(component, macomp::wVid, static_cast<std::uint16_t>(at == 0 ? 100 : 200));
    }
    set(entry(region, Table::MaNetDataArray, 0), manet::dwCcmPeriod, manet::kHeavyCcmPeriod);
    set(entry(region, Table::ThroughputDataArray, 31), throughput::eEnableStatus, 2u);
    std::memcpy(entry(region, Table::MepAlarmTextArray, 0), "LOC", 4);
    std::memset(entry(region, Table::MepAlarmTextArray, 31), 'T', info(Table::MepAlarmTextArray).entry);

    // LAG 7 with a member count above the nine members its list holds, some
    // on slot 1; port 1/5 a C-VLAN port.
    fake().lag_lists[7] = {12, 1, 5, 1, 0, 0, 3, 1, 6, 1, 7, 1, 8, 1, 9, 1, 10, 1, 11, 1};
    fake().port_types[{1, 5}] = 3;
}

}  // namespace tarv::testing
