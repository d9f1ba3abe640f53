// Fuzzes the object readers and iterators on arbitrary region contents and
// keys.
//
// The region's tables are filled from the input (fuzz_support.h), then each
// operation is read from the rest of the input:
//   op:u8 % kOperations
//   0  walk the MEPs from the start, passing back every result
//   1  Tarv__MEPMoidIterator from a previous MOID: source:u8, then a key
//   2  Tarv__ReadMEP: key
//   3  Tarv__GetMepIndexFromOldMoid: key, null index when a u8 is odd
//   4  Tarv__DoesMANetExist and Tarv__ReadMANet: key
// A key is source:u8 then, by source % 3: 0 the key bytes follow; 1 the key
// of slot u8 of the function's table (a key that is there); 2 that key with
// the byte u8 % size changed by u8.
// Every answer is checked against the lookup rule (fuzz_support.h); buffers
// end at guard pages and must stay untouched when nothing is found.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;

constexpr char kTarget[] = "readers_fuzz";
constexpr unsigned kOperations = 5;

constexpr Table kTables[] = {
    Table::MepMoidArray,   Table::MepDataArray,   Table::MepOldMoidArray,
    Table::MaNetMoidArray, Table::MaNetDataArray,
};

template <typename Key>
Key read_key(const std::uint8_t* region, Table t, Input& in) {
    std::uint8_t b[sizeof(Key)];
    const std::uint8_t source = in.u8() % 3u;
    if (source == 0) {
        in.bytes(b, sizeof b);
    } else {
        std::memcpy(b, entry(region, t, in.u8() % info(t).slots), sizeof b);
        if (source == 2) {
            const std::size_t at = in.u8() % sizeof b;
            b[at] = static_cast<std::uint8_t>(b[at] + in.u8());
        }
    }
    Key k;
    std::memcpy(&k, b, sizeof k);
    return k;
}

// Slot of the MEP MOID table that starts at p, or kNotFound.
std::uint32_t mep_slot(const std::uint8_t* region, const TARV_MOID* p) {
    return slot_of(region, Table::MepMoidArray, reinterpret_cast<const std::uint8_t*>(p));
}

bool mep_slot_empty(const std::uint8_t* region, std::uint32_t slot) {
    return key_empty(entry(region, Table::MepMoidArray, slot), TARV_MOID_SIZE);
}

// A result of the iterator is null or a non-empty slot of the MEP table.
void check_step(const std::uint8_t* region, const TARV_MOID* next) {
    if (next == nullptr) return;
    const std::uint32_t slot = mep_slot(region, next);
    if (slot == kNotFound) fuzz::fail(kTarget, "iterator result outside the MEP table");
    if (mep_slot_empty(region, slot)) fuzz::fail(kTarget, "iterator result is an empty slot");
}

// The walk moves forward on every step and ends within the table. When no
// two slots hold the same MOID it visits exactly the non-empty slots.
void walk(const std::uint8_t* region) {
    bool unique = true;
    for (std::uint32_t a = 0; a < 32 && unique; ++a)
        for (std::uint32_t b = a + 1; b < 32 && unique; ++b)
            if (!mep_slot_empty(region, a) &&
                std::memcmp(entry(region, Table::MepMoidArray, a), entry(region, Table::MepMoidArray, b),
                            TARV_MOID_SIZE) == 0)
                unique = false;
    std::uint32_t expected = 0;  // next non-empty slot, for unique MOIDs
    std::uint32_t last = 0;
    bool first = true;
    for (const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr); p != nullptr; p = Tarv__MEPMoidIterator(p)) {
        check_step(region, p);
        const std::uint32_t slot = mep_slot(region, p);
        if (!first && slot <= last) fuzz::fail(kTarget, "walk does not move forward");
        while (expected < 32 && mep_slot_empty(region, expected)) ++expected;
        if (unique && slot != expected) fuzz::fail(kTarget, "walk skipped a MEP");
        ++expected;
        last = slot;
        first = false;
    }
    while (expected < 32 && mep_slot_empty(region, expected)) ++expected;
    if (unique && expected != 32) fuzz::fail(kTarget, "walk ended early");
}

void iterate_from(const std::uint8_t* region, Input& in) {
    static fuzz::Guarded copy(TARV_MOID_SIZE);
    const TARV_MOID* prev = nullptr;
    if (in.u8() % 2u == 0) {
        // A MOID in the caller's memory, its last byte before a guard page.
        const TARV_MOID k = read_key<TARV_MOID>(region, Table::MepMoidArray, in);
        std::uint8_t* p = copy.take(TARV_MOID_SIZE);
        std::memcpy(p, &k, sizeof k);
        prev = reinterpret_cast<const TARV_MOID*>(p);
    } else {
        // A pointer anywhere into the MEP table, also between two slots.
        const TableInfo& t = info(Table::MepMoidArray);
        prev = reinterpret_cast<const TARV_MOID*>(region + t.base + in.u16() % (t.bytes() - TARV_MOID_SIZE + 1));
    }
    std::uint8_t key[TARV_MOID_SIZE];
    std::memcpy(key, prev, sizeof key);
    const TARV_MOID* next = Tarv__MEPMoidIterator(prev);
    check_step(region, next);
    if (fuzz::expected_slot(region, Table::MepMoidArray, key) == kNotFound) {
        // A vanished previous MOID restarts the walk.
        std::uint32_t first = 0;
        while (first < 32 && mep_slot_empty(region, first)) ++first;
        if (mep_slot(region, next) != (first < 32 ? first : kNotFound))
            fuzz::fail(kTarget, "a vanished MOID does not restart the walk");
    }
}

void read_mep(const std::uint8_t* region, Input& in) {
    static fuzz::Guarded record(TARV_MEP_RECORD_SIZE);
    const TARV_MOID k = read_key<TARV_MOID>(region, Table::MepMoidArray, in);
    std::uint8_t* out = record.take(TARV_MEP_RECORD_SIZE);
    Tarv__ReadMEP(k, out);
    const std::uint32_t slot = fuzz::expected_slot(region, Table::MepMoidArray, reinterpret_cast<const std::uint8_t*>(&k));
    if (slot == kNotFound ? !fuzz::untouched(out, TARV_MEP_RECORD_SIZE)
                          : std::memcmp(out, entry(region, Table::MepDataArray, slot), TARV_MEP_RECORD_SIZE) != 0)
        fuzz::fail(kTarget, "Tarv__ReadMEP copied the wrong bytes");
}

void mep_index(const std::uint8_t* region, Input& in) {
    static fuzz::Guarded index(sizeof(std::uint16_t));
    const TARV_MOID k = read_key<TARV_MOID>(region, Table::MepOldMoidArray, in);
    const bool null_index = in.u8() % 2u != 0;
    std::uint8_t* out = index.take(sizeof(std::uint16_t));
    const std::int32_t result =
        Tarv__GetMepIndexFromOldMoid(k, null_index ? nullptr : reinterpret_cast<std::uint16_t*>(out));
    const std::uint32_t slot =
        null_index ? kNotFound : fuzz::expected_slot(region, Table::MepOldMoidArray, reinterpret_cast<const std::uint8_t*>(&k));
    if (result != (slot == kNotFound ? -1 : 0)) fuzz::fail(kTarget, "Tarv__GetMepIndexFromOldMoid: wrong result");
    std::uint16_t index_value = 0;  // the caller's own uint16_t, in its byte order
    std::memcpy(&index_value, out, sizeof index_value);
    if (slot == kNotFound ? !fuzz::untouched(out, 2) : index_value != slot)
        fuzz::fail(kTarget, "Tarv__GetMepIndexFromOldMoid: wrong index");
}

void manet(const std::uint8_t* region, Input& in) {
    static fuzz::Guarded record(TARV_MANET_RECORD_SIZE);
    const TARV_MANET_KEY k = read_key<TARV_MANET_KEY>(region, Table::MaNetMoidArray, in);
    const std::uint32_t slot = fuzz::expected_slot(region, Table::MaNetMoidArray, reinterpret_cast<const std::uint8_t*>(&k));
    if (Tarv__DoesMANetExist(k) != (slot == kNotFound ? 0u : 1u)) fuzz::fail(kTarget, "Tarv__DoesMANetExist: wrong answer");
    std::uint8_t* out = record.take(TARV_MANET_RECORD_SIZE);
    Tarv__ReadMANet(k, out);
    if (slot == kNotFound ? !fuzz::untouched(out, TARV_MANET_RECORD_SIZE)
                          : std::memcmp(out, entry(region, Table::MaNetDataArray, slot), TARV_MANET_RECORD_SIZE) != 0)
        fuzz::fail(kTarget, "Tarv__ReadMANet copied the wrong bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::uint8_t* region = fuzz::attached_region(/*read_write=*/false);
    Input in(data, size);
    fuzz::fill_region(region, kTables, in);
    for (int ops = 0; ops < 64 && !in.empty(); ++ops) {
        switch (in.u8() % kOperations) {
            case 0: walk(region); break;
            case 1: iterate_from(region, in); break;
            case 2: read_mep(region, in); break;
            case 3: mep_index(region, in); break;
            case 4: manet(region, in); break;
        }
    }
    fuzz::check_traces(kTarget);
    return 0;
}
