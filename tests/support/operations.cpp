#include "support/operations.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "byteorder.h"
#include "classes.h"
#include "region.h"

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

void open_again(Scratch&, const Operation&) { Tarv__Open(); }
void stor_open_again(Scratch&, const Operation&) { Tarv__StorOpen(); }
void save_xml(Scratch&, const Operation&) { Tarv__SaveXMLIfOldConfig(); }

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

void walk_meps(Scratch& s, const Operation&) {
    const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr);
    for (int steps = 0; p != nullptr && steps <= 32; ++steps) {
        s.result(reinterpret_cast<std::uintptr_t>(p) - reinterpret_cast<std::uintptr_t>(pSharedData));
        p = Tarv__MEPMoidIterator(p);
    }
}

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

std::vector<Operation> make_table() {
    using K = OperationKind;
    std::vector<Operation> t = {
        {"Tarv__Open", "already attached", K::Attach, open_again},
        {"Tarv__StorOpen", "already attached read-write", K::Attach, stor_open_again},
        {"Tarv__SaveXMLIfOldConfig", "hook", K::Pure, save_xml},
    };

    // Configuration read: every class with counts below, at and above what
    // it holds (two objects per table), and ids it does not know.
    for (const ClassInfo& c : kClasses) {
        const std::uint32_t counts[] = {0, 1, 2, 3, c.rule == ClassRule::List ? c.slots() + 1 : 7u, 0xFFFFFFFFu};
        for (std::uint32_t count : counts) t.push_back({"Tarv__GetConfig", "class and count", K::Read, get_config, c.id, count});
    }
    for (std::uint32_t id : {0u, 520u, 999u, 0xFFFFFFFFu})
        t.push_back({"Tarv__GetConfig", "unknown class", K::Read, get_config, id, 1});

    // Configuration write: rows for Tarv__SetConfig go here (kind Write).

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

    // Usage queries, bandwidth notification and throughput readers, alarms
    // and the checkpoint: their rows go here, one or more per function.

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
}

}  // namespace tarv::testing
