// Fuzzes the configuration read and write by class on arbitrary region
// contents, class ids and counts.
//
// The region's tables are filled from the input (fuzz_support.h), then each
// operation is read from the rest of the input:
//   op:u8 % 2
//   0  Tarv__GetConfig: class:u8 (bit 7 set: the id follows as u32, any
//      value; else an index into the known classes), count mode:u8
//      (0: 0, 1: 1, 2: 2, 3: u32 follows, else mode % 40).
//      The buffer is exactly as long as the list the class holds for that
//      count, so one byte written too many faults; the bytes must be the
//      transfer list (records in slot order, the terminator when fewer
//      records than asked were written); an unknown id returns 1 with
//      nothing written.
//   1  Tarv__SetConfig: class:u8 as for op 0 (bit 6 set: the call is made
//      without the read-write attach), records:u8 (bit 7 set: (records &
//      0x7F) % (slots + 2) records with well-formed keys of instance 1, 2,
//      ...; else records % 8 records, each with key:u8 % 3 = 0 raw key bytes
//      from the input, 1 a well-formed key of instance u8 % (slots + 2), 2
//      the key of slot u8 of the class's table), each record's bytes from
//      the input. The list ends with a terminator, except for a packed class
//      given a record for every slot: it then ends there, before the guard
//      page. The result must follow from the list (-2 when a record before
//      the terminator addresses no slot, the region then unchanged; -1
//      without the attach, also unchanged) and the class's tables must hold
//      exactly the records placed, with the keys derived into companion
//      tables; the fields the write derives are not compared.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "classes.h"
#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;

constexpr char kTarget[] = "config";

// Every table of a stored class, keys and records.
std::vector<Table> class_tables() {
    std::vector<Table> tables;
    for (const ClassInfo& c : kClasses) {
        if (c.rule == ClassRule::NoStorage) continue;
        tables.push_back(c.keys);
        if (c.data != c.keys) tables.push_back(c.data);
    }
    return tables;
}

std::uint32_t read_count(Input& in) {
    const std::uint8_t mode = in.u8();
    switch (mode) {
        case 0: return 0;
        case 1: return 1;
        case 2: return 2;
        case 3: return in.u32();
        default: return mode % 40u;
    }
}

// The bytes Tarv__GetConfig must write for class c and `count`.
std::vector<std::uint8_t> expected_list(const std::uint8_t* region, const ClassInfo& c, std::uint32_t count) {
    std::vector<std::uint8_t> out;
    auto append = [&](std::uint32_t slot) {
        const std::uint8_t* k = entry(region, c.keys, slot);
        const std::uint8_t* d = entry(region, c.data, slot);
        out.insert(out.end(), k, k + c.key_size());
        out.insert(out.end(), d, d + c.record_size());
    };
    switch (c.rule) {
        case ClassRule::NoStorage: break;
        case ClassRule::Singleton: {
            const std::uint8_t* d = entry(region, c.data, 0);
            out.assign(d, d + c.record_size());
            break;
        }
        case ClassRule::History:
            for (std::uint32_t s = 0; s < c.slots(); ++s) {
                if (load_le<std::uint32_t>(entry(region, c.keys, s)) == 0) continue;
                append(s);
                if (count == 0) break;
            }
            break;
        case ClassRule::List: {
            std::uint32_t written = 0;
            for (std::uint32_t s = c.first_slot; s < c.slots(); ++s) {
                const std::uint8_t* k = entry(region, c.keys, s);
                const bool occupied = c.occupancy == Occupancy::SessionByte
                                          ? k[14] == s
                                          : std::memcmp(k, abZeroKey, c.key_size()) != 0;
                if (!occupied) continue;
                append(s);
                if (++written >= count) return out;
            }
            out.insert(out.end(), c.key_size(), 0);
            break;
        }
    }
    return out;
}

void get_config(std::uint8_t* region, Input& in) {
    constexpr std::size_t kLongest = 4097 * 22 + 4096;  // every slot of class 581
    static thread_local fuzz::Guarded buffer(kLongest);
    const std::uint8_t selector = in.u8();
    const std::uint32_t id = (selector & 0x80u) != 0 ? in.u32() : kClasses[selector % kClasses.size()].id;
    const std::uint32_t count = read_count(in);
    const ClassInfo* c = find_class(id);

    // A replay without comparisons allocates nothing and hands out the
    // largest buffer.
    const std::vector<std::uint8_t> want =
        c != nullptr && fuzz::checking ? expected_list(region, *c, count) : std::vector<std::uint8_t>{};
    std::uint8_t* out = buffer.take(fuzz::checking || c == nullptr ? want.size() : kLongest);
    const std::int32_t result = CALL(Tarv__GetConfig, (id, out, count));
    if (result != (c != nullptr ? 0 : 1)) fuzz::fail(kTarget, "wrong result");
    if (!want.empty() && std::memcmp(out, want.data(), want.size()) != 0) fuzz::fail(kTarget, "wrong transfer list");
}

// Where the write places the n-th record (from 0) of class c with key `key`;
// the slot count or more when it addresses no slot.
std::uint32_t placed_slot(const ClassInfo& c, const std::uint8_t* key, std::size_t n) {
    switch (c.placement) {
        case Placement::LastId:
            return static_cast<std::uint16_t>(load_le<std::uint16_t>(key + c.key_size() - 4) - 1u);
        case Placement::SessionId: return key[14];
        case Placement::Packed: return n < c.slots() ? static_cast<std::uint32_t>(n) : c.slots();
        case Placement::None: break;
    }
    return c.slots();
}

// Bytes of class c's record that the write derives (fields set to 1, the
// MAC address, the throughput value): true for those.
void derived_bytes(const ClassInfo& c, bool* derived) {
    std::memset(derived, 0, c.record_size());
    for (const Field<std::uint32_t>& f : c.set_to_one)
        if (f.table != Table::Count) std::memset(derived + f.offset, 1, 4);
    if (c.mac.address.table != Table::Count) std::memset(derived + c.mac.address.offset, 1, c.mac.address.size);
    if (c.rate.d.table != Table::Count) std::memset(derived + c.rate.d.offset, 1, 2);
}

// Copies of every table the write of class c may change.
std::vector<std::uint8_t> snapshot(const std::uint8_t* region, const ClassInfo& c) {
    std::vector<std::uint8_t> out;
    if (!fuzz::checking) return out;
    for (Table t : c.emptied)
        if (t != Table::Count) out.insert(out.end(), region + info(t).base, region + info(t).end());
    if (c.rule == ClassRule::Singleton) out.assign(entry(region, c.data, 0), entry(region, c.data, 0) + c.record_size());
    return out;
}

// After a successful write of list `list` (`records` before the
// terminator) to class c: each slot holds the last record placed there, its
// companions the key with their class, every other slot nothing.
void check_written(const std::uint8_t* region, const ClassInfo& c, const std::uint8_t* list, std::size_t records) {
    if (!fuzz::checking) return;
    std::vector<const std::uint8_t*> in_slot(c.slots(), nullptr);
    for (std::size_t n = 0; n < records; ++n) {
        const std::uint8_t* r = list + n * c.transfer_size();
        in_slot[placed_slot(c, r, n)] = r;
    }
    bool derived[512];
    derived_bytes(c, derived);
    for (std::uint32_t s = 0; s < c.slots(); ++s) {
        const std::uint8_t* key = entry(region, c.keys, s);
        const std::uint8_t* record = entry(region, c.data, s);
        const std::uint8_t* r = in_slot[s];
        if (r == nullptr) {
            for (std::uint32_t i = 0; i < c.key_size(); ++i)
                if (key[i] != 0) fuzz::fail(kTarget, "Tarv__SetConfig: a slot no record names holds a key");
            for (std::uint32_t i = 0; i < c.record_size(); ++i)
                if (record[i] != 0) fuzz::fail(kTarget, "Tarv__SetConfig: a slot no record names holds a record");
        } else {
            if (std::memcmp(key, r, c.key_size()) != 0) fuzz::fail(kTarget, "Tarv__SetConfig: wrong key");
            for (std::uint32_t i = 0; i < c.record_size(); ++i)
                if (!derived[i] && record[i] != r[c.key_size() + i]) fuzz::fail(kTarget, "Tarv__SetConfig: wrong record");
        }
        for (const Companion& m : c.companions) {
            if (m.keys == Table::Count) continue;
            const std::uint32_t k = info(m.keys).key;
            std::uint8_t want[32] = {};
            if (r != nullptr) {
                std::memcpy(want, r, c.key_size());
                store_le<std::uint16_t>(want, m.w_class);
                if (k > c.key_size()) std::memcpy(want + c.key_size(), r + c.key_size() - 4, 4);
            }
            if (std::memcmp(entry(region, m.keys, s), want, k) != 0) fuzz::fail(kTarget, "Tarv__SetConfig: wrong companion key");
            const std::uint8_t* d = entry(region, m.data, s);
            for (std::uint32_t i = 0; i < info(m.data).entry; ++i)
                if (d[i] != 0) fuzz::fail(kTarget, "Tarv__SetConfig: a companion record is not empty");
        }
    }
}

void set_config(std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded buffer(130 * 509 + 4096);
    const std::uint8_t selector = in.u8();
    const bool attached = (selector & 0x40u) == 0;
    const std::uint32_t id = (selector & 0x80u) != 0 ? in.u32() : kClasses[selector % kClasses.size()].id;
    const ClassInfo* c = find_class(id);
    const std::uint8_t count = in.u8();
    if (c == nullptr || c->rule == ClassRule::NoStorage) {
        if (CALL(Tarv__SetConfig, (id, buffer.take(0))) != (c == nullptr ? 1 : 0)) fuzz::fail(kTarget, "wrong result");
        return;
    }
    if (c->rule == ClassRule::Singleton) {
        const std::vector<std::uint8_t> before = snapshot(region, *c);
        std::uint8_t* record = buffer.take(c->record_size());
        in.bytes(record, c->record_size());
        if (!attached) pStorData = nullptr;
        const std::int32_t result = CALL(Tarv__SetConfig, (id, record));
        pStorData = pSharedData;
        if (result != (attached ? 0 : -1)) fuzz::fail(kTarget, "Tarv__SetConfig: wrong result");
        const bool kept = !attached || (c->kept_when_first_byte_zero && record[0] == 0);
        if (fuzz::checking && std::memcmp(entry(region, c->data, 0), kept ? before.data() : record, c->record_size()) != 0)
            fuzz::fail(kTarget, "Tarv__SetConfig: wrong singleton");
        return;
    }

    // The list: records, then the terminator unless a packed class has one
    // record for every slot.
    const bool auto_keys = (count & 0x80u) != 0;
    const std::uint32_t limit = std::min<std::uint32_t>(c->slots() + 2, 130);
    const std::size_t records = auto_keys ? (count & 0x7Fu) % limit : count % 8u;
    const std::uint32_t k = c->key_size();
    const bool terminated = !(c->placement == Placement::Packed && records >= c->slots());
    // Written straight into the caller's buffer, which ends at the guard page.
    const std::size_t list_size = records * c->transfer_size() + (terminated ? k : 0);
    std::uint8_t* list = buffer.take(list_size);
    std::memset(list, 0, list_size);
    for (std::size_t n = 0; n < records; ++n) {
        std::uint8_t* key = list + n * c->transfer_size();
        const auto how = static_cast<std::uint8_t>(auto_keys ? 1u : in.u8() % 3u);
        if (how == 0) {
            in.bytes(key, k);
        } else if (how == 2) {
            std::memcpy(key, entry(region, c->keys, in.u8() % c->slots()), k);
        } else {
            const std::uint32_t instance = auto_keys ? static_cast<std::uint32_t>(n + 1) : in.u8() % (c->slots() + 2);
            if (c->rule == ClassRule::History) {
                store_le<std::uint32_t>(key, instance);
            } else {
                store_le<std::uint16_t>(key, static_cast<std::uint16_t>(c->id));
                for (std::uint32_t at = 2; at + 4 <= k; at += 4) store_le<std::uint32_t>(key + at, instance);
                if (c->occupancy == Occupancy::SessionByte) key[14] = static_cast<std::uint8_t>(instance);
            }
        }
        in.bytes(key + k, c->record_size());
    }

    // What the write must answer: the records up to the terminator (packed:
    // up to the slot count), refused when one addresses no slot.
    std::size_t placed = 0;
    bool refused = false;
    for (; placed < records; ++placed) {
        const std::uint8_t* key = list + placed * c->transfer_size();
        if (c->placement == Placement::Packed && placed == c->slots()) break;
        if (key_empty(key, k)) break;
        if (placed_slot(*c, key, placed) >= c->slots()) {
            refused = true;
            break;
        }
    }
    const std::vector<std::uint8_t> before = refused || !attached ? snapshot(region, *c) : std::vector<std::uint8_t>{};
    if (!attached) pStorData = nullptr;
    const std::int32_t result = CALL(Tarv__SetConfig, (id, list));
    pStorData = pSharedData;
    if (result != (!attached ? -1 : refused ? -2 : 0)) fuzz::fail(kTarget, "Tarv__SetConfig: wrong result");
    if (!attached || refused) {
        if (snapshot(region, *c) != before) fuzz::fail(kTarget, "Tarv__SetConfig: a refused write changed the region");
        return;
    }
    check_written(region, *c, list, placed);
}

bool prepare(Input& in, std::uint8_t*& region) {
    static const std::vector<Table> tables = class_tables();
    region = fuzz::attached_region(/*read_write=*/true);
    fuzz::fill_region(region, tables, in);
    return true;
}

// The attach calls, a no-op once attached, and the hook that takes nothing.
constexpr fuzz::Op kEachInput[] = {
    {[](std::uint8_t*, Input&) { CALL(Tarv__Open, ()); }, fuzz::kAttaches},
    {[](std::uint8_t*, Input&) { CALL(Tarv__StorOpen, ()); }, fuzz::kAttaches},
    {[](std::uint8_t*, Input&) { CALL(Tarv__SaveXMLIfOldConfig, ()); }},
};
constexpr fuzz::Op kOps[] = {{get_config}, {set_config, fuzz::kWrites}};

}  // namespace

const tarv::fuzz::Target tarv::fuzz::config_target{kTarget, prepare, kOps, kEachInput};
TARV_FUZZ_ENTRY(config_target)
