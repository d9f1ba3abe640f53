// Fuzzes the object readers and iterators on arbitrary region contents and
// keys.
//
// The region's tables are filled from the input (fuzz_support.h), then each
// operation is read from the rest of the input:
//   op:u8 % 12
//   0  walk the MEPs from the start, passing back every result
//   1  Tarv__MEPMoidIterator from a previous MOID: source:u8, then a key
//   2  Tarv__ReadMEP: key
//   3  Tarv__GetMepIndexFromOldMoid: key, null index when a u8 is odd
//   4  Tarv__DoesMANetExist and Tarv__ReadMANet: key
//   5  walk the bandwidth notifications
//   6  Tarv__BandwidthNotificationMoidIterator from a previous MOID
//   7  Tarv__ReadBandwidthNotification: key
//   8  walk the throughput list
//   9  Tarv__ThroughputListMoidIterator from a previous key
//   10 Tarv__ReadThroughputEntry: key
//   11 Tarv_GetEnableStatusofThroughput
// A key is read as fuzz::read_key reads it. Every answer is checked against
// the lookup rule (fuzz_support.h); buffers end at guard pages and must stay
// untouched when nothing is found.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fields.h"
#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;
using tarv::fuzz::read_key;

constexpr char kTarget[] = "readers";

constexpr Table kTables[] = {
    Table::MepMoidArray,         Table::MepDataArray,
    Table::MepOldMoidArray,      Table::MaNetMoidArray,
    Table::MaNetDataArray,       Table::BandwidthNotificationMoidArray,
    Table::BandwidthNotificationDataArray, Table::ThroughputMoidArray,
    Table::ThroughputDataArray,
};

// One of the three iterators: its key array and its step.
struct Walk {
    Table keys;
    const std::uint8_t* (*next)(const std::uint8_t* prev);
};
const Walk kMeps{Table::MepMoidArray, [](const std::uint8_t* p) {
                     return reinterpret_cast<const std::uint8_t*>(
                         CALL(Tarv__MEPMoidIterator, (reinterpret_cast<const TARV_MOID*>(p))));
                 }};
const Walk kNotifications{Table::BandwidthNotificationMoidArray, [](const std::uint8_t* p) {
                              return reinterpret_cast<const std::uint8_t*>(
                                  CALL(Tarv__BandwidthNotificationMoidIterator, (reinterpret_cast<const TARV_MOID*>(p))));
                          }};
const Walk kThroughputs{Table::ThroughputMoidArray, [](const std::uint8_t* p) {
                            return reinterpret_cast<const std::uint8_t*>(
                                CALL(Tarv__ThroughputListMoidIterator, (reinterpret_cast<const TARV_THROUGHPUT_KEY*>(p))));
                        }};

bool slot_empty(const std::uint8_t* region, Table t, std::uint32_t slot) {
    return key_empty(entry(region, t, slot), info(t).key);
}

// A result of an iterator is null or a non-empty slot of its table.
void check_step(const std::uint8_t* region, const Walk& w, const std::uint8_t* next) {
    if (next == nullptr) return;
    const std::uint32_t slot = slot_of(region, w.keys, next);
    if (slot == kNotFound) fuzz::fail(kTarget, "iterator result outside its table");
    if (slot_empty(region, w.keys, slot)) fuzz::fail(kTarget, "iterator result is an empty slot");
}

// No two non-empty slots of the key array hold the same key.
bool keys_unique(const std::uint8_t* region, Table t) {
    const TableInfo& ti = info(t);
    for (std::uint32_t a = 0; a < ti.slots; ++a)
        for (std::uint32_t b = a + 1; b < ti.slots; ++b)
            if (!slot_empty(region, t, a) && std::memcmp(entry(region, t, a), entry(region, t, b), ti.key) == 0)
                return false;
    return true;
}

// The walk moves forward on every step and ends within the table. When no
// two slots hold the same key it visits exactly the non-empty slots.
void walk(const std::uint8_t* region, const Walk& w) {
    const std::uint32_t slots = info(w.keys).slots;
    const bool unique = keys_unique(region, w.keys);
    std::uint32_t expected = 0;  // next non-empty slot, for unique keys
    std::uint32_t last = 0;
    bool first = true;
    for (const std::uint8_t* p = w.next(nullptr); p != nullptr; p = w.next(p)) {
        check_step(region, w, p);
        const std::uint32_t slot = slot_of(region, w.keys, p);
        if (!first && slot <= last) fuzz::fail(kTarget, "walk does not move forward");
        while (expected < slots && slot_empty(region, w.keys, expected)) ++expected;
        if (unique && slot != expected) fuzz::fail(kTarget, "walk skipped a key");
        ++expected;
        last = slot;
        first = false;
    }
    while (expected < slots && slot_empty(region, w.keys, expected)) ++expected;
    if (unique && expected != slots) fuzz::fail(kTarget, "walk ended early");
}

void iterate_from(const std::uint8_t* region, const Walk& w, Input& in) {
    static thread_local fuzz::Guarded copy(TARV_THROUGHPUT_KEY_SIZE);
    const TableInfo& t = info(w.keys);
    const std::uint8_t* prev = nullptr;
    if (in.u8() % 2u == 0) {
        // A key in the caller's memory, its last byte before a guard page.
        std::uint8_t* p = copy.take(t.key);
        if (t.key == TARV_MOID_SIZE) {
            const TARV_MOID k = read_key<TARV_MOID>(region, w.keys, in);
            std::memcpy(p, &k, t.key);
        } else {
            const TARV_THROUGHPUT_KEY k = read_key<TARV_THROUGHPUT_KEY>(region, w.keys, in);
            std::memcpy(p, &k, t.key);
        }
        prev = p;
    } else {
        // A pointer anywhere into the key array, also between two slots.
        prev = region + t.base + in.u16() % (t.bytes() - t.key + 1);
    }
    std::uint8_t key[TARV_THROUGHPUT_KEY_SIZE];
    std::memcpy(key, prev, t.key);
    const std::uint8_t* next = w.next(prev);
    check_step(region, w, next);
    if (fuzz::expected_slot(region, w.keys, key) == kNotFound) {
        // A vanished previous key restarts the walk.
        std::uint32_t first = 0;
        while (first < t.slots && slot_empty(region, w.keys, first)) ++first;
        if (slot_of(region, w.keys, next) != (first < t.slots ? first : kNotFound))
            fuzz::fail(kTarget, "a vanished key does not restart the walk");
    }
}

// A record read by `key` of table `keys`: a copy of the record of `slot`,
// or, for kNotFound, the buffer untouched.
void check_read(const std::uint8_t* region, Table data, std::uint32_t slot, const std::uint8_t* out,
                const char* what) {
    const std::uint32_t size = info(data).entry;
    if (slot == kNotFound ? !fuzz::untouched(out, size) : std::memcmp(out, entry(region, data, slot), size) != 0)
        fuzz::fail(kTarget, what);
}

void read_mep(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded record(TARV_MEP_RECORD_SIZE);
    const TARV_MOID k = read_key<TARV_MOID>(region, Table::MepMoidArray, in);
    std::uint8_t* out = record.take(TARV_MEP_RECORD_SIZE);
    CALL(Tarv__ReadMEP, (k, out));
    check_read(region, Table::MepDataArray,
               fuzz::expected_slot(region, Table::MepMoidArray, reinterpret_cast<const std::uint8_t*>(&k)), out,
               "Tarv__ReadMEP copied the wrong bytes");
}

void mep_index(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded index(sizeof(std::uint16_t));
    const TARV_MOID k = read_key<TARV_MOID>(region, Table::MepOldMoidArray, in);
    const bool null_index = in.u8() % 2u != 0;
    std::uint8_t* out = index.take(sizeof(std::uint16_t));
    const std::int32_t result =
        CALL(Tarv__GetMepIndexFromOldMoid, (k, null_index ? nullptr : reinterpret_cast<std::uint16_t*>(out)));
    const std::uint32_t slot =
        null_index ? kNotFound : fuzz::expected_slot(region, Table::MepOldMoidArray, reinterpret_cast<const std::uint8_t*>(&k));
    if (result != (slot == kNotFound ? -1 : 0)) fuzz::fail(kTarget, "Tarv__GetMepIndexFromOldMoid: wrong result");
    std::uint16_t index_value = 0;  // the caller's own uint16_t, in its byte order
    std::memcpy(&index_value, out, sizeof index_value);
    if (slot == kNotFound ? !fuzz::untouched(out, 2) : index_value != slot)
        fuzz::fail(kTarget, "Tarv__GetMepIndexFromOldMoid: wrong index");
}

void read_manet(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded record(TARV_MANET_RECORD_SIZE);
    const TARV_MANET_KEY k = read_key<TARV_MANET_KEY>(region, Table::MaNetMoidArray, in);
    const std::uint32_t slot = fuzz::expected_slot(region, Table::MaNetMoidArray, reinterpret_cast<const std::uint8_t*>(&k));
    if (CALL(Tarv__DoesMANetExist, (k)) != (slot == kNotFound ? 0u : 1u)) fuzz::fail(kTarget, "Tarv__DoesMANetExist: wrong answer");
    std::uint8_t* out = record.take(TARV_MANET_RECORD_SIZE);
    CALL(Tarv__ReadMANet, (k, out));
    check_read(region, Table::MaNetDataArray, slot, out, "Tarv__ReadMANet copied the wrong bytes");
}

void read_notification(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded record(TARV_BANDWIDTH_NOTIFICATION_RECORD_SIZE);
    const TARV_MOID k = read_key<TARV_MOID>(region, Table::BandwidthNotificationMoidArray, in);
    std::uint8_t* out = record.take(TARV_BANDWIDTH_NOTIFICATION_RECORD_SIZE);
    CALL(Tarv__ReadBandwidthNotification, (k, out));
    // No hint: the first slot from 0 that holds the key.
    std::uint32_t slot = 0;
    while (slot < 32 && std::memcmp(entry(region, Table::BandwidthNotificationMoidArray, slot), &k, sizeof k) != 0)
        ++slot;
    check_read(region, Table::BandwidthNotificationDataArray, slot < 32 ? slot : kNotFound, out,
               "Tarv__ReadBandwidthNotification copied the wrong bytes");
}

void read_throughput(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded record(TARV_THROUGHPUT_RECORD_SIZE);
    const TARV_THROUGHPUT_KEY k = read_key<TARV_THROUGHPUT_KEY>(region, Table::ThroughputMoidArray, in);
    std::uint8_t* out = record.take(TARV_THROUGHPUT_RECORD_SIZE);
    CALL(Tarv__ReadThroughputEntry, (k, out));
    check_read(region, Table::ThroughputDataArray,
               fuzz::expected_slot(region, Table::ThroughputMoidArray, reinterpret_cast<const std::uint8_t*>(&k)),
               out, "Tarv__ReadThroughputEntry copied the wrong bytes");
}

// With unique keys: 1 exactly when some test's record has eEnableStatus 2.
void enable_status(const std::uint8_t* region) {
    const std::uint32_t answer = CALL(Tarv_GetEnableStatusofThroughput, ());
    if (answer > 1) fuzz::fail(kTarget, "Tarv_GetEnableStatusofThroughput: not 0 or 1");
    if (!keys_unique(region, Table::ThroughputMoidArray)) return;
    std::uint32_t enabled = 0;
    for (std::uint32_t s = 0; s < 32; ++s)
        if (!slot_empty(region, Table::ThroughputMoidArray, s)) {
            const std::uint32_t at =
                fuzz::expected_slot(region, Table::ThroughputMoidArray, entry(region, Table::ThroughputMoidArray, s));
            if (get(entry(region, Table::ThroughputDataArray, at), throughput::eEnableStatus) == 2) enabled = 1;
        }
    if (answer != enabled) fuzz::fail(kTarget, "Tarv_GetEnableStatusofThroughput: wrong answer");
}

bool prepare(Input& in, std::uint8_t*& region) {
    region = fuzz::attached_region(/*read_write=*/false);
    fuzz::fill_region(region, kTables, in);
    return true;
}

constexpr fuzz::Op kOps[] = {
    {[](std::uint8_t* r, Input&) { walk(r, kMeps); }},
    {[](std::uint8_t* r, Input& in) { iterate_from(r, kMeps, in); }},
    {read_mep},
    {mep_index},
    {read_manet},
    {[](std::uint8_t* r, Input&) { walk(r, kNotifications); }},
    {[](std::uint8_t* r, Input& in) { iterate_from(r, kNotifications, in); }},
    {read_notification},
    {[](std::uint8_t* r, Input&) { walk(r, kThroughputs); }},
    {[](std::uint8_t* r, Input& in) { iterate_from(r, kThroughputs, in); }},
    {read_throughput},
    {[](std::uint8_t* r, Input&) { enable_status(r); }},
};

}  // namespace

const tarv::fuzz::Target tarv::fuzz::readers_target{kTarget, prepare, kOps, {}};
TARV_FUZZ_ENTRY(readers_target)
