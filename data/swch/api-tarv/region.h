// The shared data region "/kelm-data": its directory of tables, the process's
// view of it, and the slot rules every reader and the writer share.
//
// The region is a fixed-layout block of 453075 bytes written by the OAM
// controller. Objects of one class live in a pair of parallel arrays, a key
// array and a data array; slot i of one belongs to slot i of the other.
// The directory below is the only place that states offsets: everything else
// names a table and a slot.
//
// The region's contents are not trusted for memory safety: every address is
// computed from the directory and a slot that has been checked against the
// table's slot count, never from a value read out of the region.
#ifndef TARV_REGION_H
#define TARV_REGION_H

#include <array>
#include <cstdint>
#include <cstring>

#include "byteorder.h"

namespace tarv {

inline constexpr char kRegionName[] = "/kelm-data";
inline constexpr std::uint32_t kRegionSize = 453075;

// Every table of the region, in ascending offset order. The Private ranges
// belong to the controller; the library never reads or writes them.
enum class Table : std::uint8_t {
    Class519Record,
    Class523Record,
    Private1,
    Class571DataArray,
    Class571MoidArray,
    Class526DataArray,
    Class526MoidArray,
    Private2,
    Class528DataArray,
    Class528MoidArray,
    Class572DataArray,
    Class572MoidArray,
    MACompDataArray,
    MACompMoidArray,
    Class576DataArray,
    Class576MoidArray,
    Class577DataArray,
    Class577MoidArray,
    Class578DataArray,
    Class578MoidArray,
    Class579DataArray,
    Class579MoidArray,
    Class581DataArray,
    Class581MoidArray,
    Private3,
    MaNetDataArray,
    MaNetMoidArray,
    MdDataArray,
    MdMoidArray,
    MepDataArray,
    MepMoidArray,
    MepOldMoidArray,
    MipDataArray,
    MipMoidArray,
    ThroughputDataArray,
    ThroughputMoidArray,
    Private4,
    ThroughputHistoryIdArray,
    ThroughputHistoryDataArray,
    Class673Record,
    PMSessionDataArray,
    PMSessionMoidArray,
    PMSessionOldMoidArray,
    Class665DataArray,
    Class666DataArray,
    Class665MoidArray,
    Class666MoidArray,
    PMAlarmBlock,
    MepHWAlarmBlock,
    PMAlarmMoidArray,
    BandwidthNotificationDataArray,
    BandwidthNotificationMoidArray,
    MepAlarmTextArray,
    Count
};

// One table: where it starts, how large an entry is, how many entries it has
// and, for a key array, how many leading bytes of an entry form the key (0
// for data arrays and blocks).
struct TableInfo {
    Table id;
    std::uint32_t base;
    std::uint32_t entry;
    std::uint32_t slots;
    std::uint32_t key;

    [[nodiscard]] constexpr std::uint32_t bytes() const noexcept { return entry * slots; }
    [[nodiscard]] constexpr std::uint32_t end() const noexcept { return base + bytes(); }
};

// clang-format off
inline constexpr std::array<TableInfo, static_cast<std::size_t>(Table::Count)> kDirectory{{
    {Table::Class519Record,                      0,  14,    1,  0},
    {Table::Class523Record,                     14,  12,    1,  0},
    {Table::Private1,                           26, 36287,  1,  0},
    {Table::Class571DataArray,               36313,   8,   32,  0},
    {Table::Class571MoidArray,               36569,  14,   32, 14},
    {Table::Class526DataArray,               37017,  47,   32,  0},
    {Table::Class526MoidArray,               38521,  18,   32, 18},
    {Table::Private2,                        39097, 91100,  1,  0},
    {Table::Class528DataArray,              130197,  93,   32,  0},
    {Table::Class528MoidArray,              133173,  18,   32, 18},
    {Table::Class572DataArray,              133749,  87,   32,  0},
    {Table::Class572MoidArray,              136533,  22,   32, 22},
    {Table::MACompDataArray,                137237, 101,   32,  0},
    {Table::MACompMoidArray,                140469,  14,   32, 14},
    {Table::Class576DataArray,              140917,   6,  128,  0},
    {Table::Class576MoidArray,              141685,  14,  128, 14},
    {Table::Class577DataArray,              143477,  44,   32,  0},
    {Table::Class577MoidArray,              144885,  14,   32, 14},
    {Table::Class578DataArray,              145333,  16,   32,  0},
    {Table::Class578MoidArray,              145845,  14,   32, 14},
    {Table::Class579DataArray,              146293, 311,  128,  0},
    {Table::Class579MoidArray,              186101,  18,  128, 18},
    {Table::Class581DataArray,              188405,  16, 4096,  0},
    {Table::Class581MoidArray,              253941,   6, 4096,  6},
    {Table::Private3,                       278517, 90112,  1,  0},
    {Table::MaNetDataArray,                 368629,  57,  128,  0},
    {Table::MaNetMoidArray,                 375925,  10,  128, 10},
    {Table::MdDataArray,                    377205,  65,  128,  0},
    {Table::MdMoidArray,                    385525,   6,  128,  6},
    {Table::MepDataArray,                   386293,  48,   32,  0},
    {Table::MepMoidArray,                   387829,  14,   32, 14},
    {Table::MepOldMoidArray,                388277,  14,   32, 14},
    {Table::MipDataArray,                   388725,  14,   32,  0},
    {Table::MipMoidArray,                   389173,  14,   32, 14},
    {Table::ThroughputDataArray,            389621,  33,   32,  0},
    {Table::ThroughputMoidArray,            390677,  18,   32, 18},
    {Table::Private4,                       391253, 4064,   1,  0},
    {Table::ThroughputHistoryIdArray,       395317,   4,  101,  4},
    {Table::ThroughputHistoryDataArray,     395721, 505,  101,  0},
    {Table::Class673Record,                 446726,   5,    1,  0},
    {Table::PMSessionDataArray,             446731, 127,    9,  0},
    {Table::PMSessionMoidArray,             447874,  15,    9, 15},
    {Table::PMSessionOldMoidArray,          448009,  15,    9, 15},
    {Table::Class665DataArray,              448144,  54,    9,  0},
    {Table::Class666DataArray,              448630,  38,    9,  0},
    {Table::Class665MoidArray,              448972,  15,    9, 15},
    {Table::Class666MoidArray,              449107,  15,    9, 15},
    {Table::PMAlarmBlock,                   449242,   2,    9,  0},
    {Table::MepHWAlarmBlock,                449260,  64,    1,  0},
    {Table::PMAlarmMoidArray,               449324,  15,    9, 15},
    {Table::BandwidthNotificationDataArray, 449459,  18,   32,  0},
    {Table::BandwidthNotificationMoidArray, 450035,  14,   32, 14},
    {Table::MepAlarmTextArray,              450483,  81,   32,  0},
}};
// clang-format on

[[nodiscard]] constexpr const TableInfo& info(Table t) noexcept {
    return kDirectory[static_cast<std::size_t>(t)];
}

// The directory lists every table once, in enumeration order, and the
// tables tile the region from 0 to kRegionSize without gap or overlap.
consteval bool directory_tiles_region() {
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < kDirectory.size(); ++i) {
        const TableInfo& t = kDirectory[i];
        if (static_cast<std::size_t>(t.id) != i) return false;
        if (t.base != next || t.entry == 0 || t.slots == 0) return false;
        if (t.key > t.entry) return false;
        next = t.end();
    }
    return next == kRegionSize;
}
static_assert(directory_tiles_region(), "the table directory must tile the region exactly");
static_assert(info(Table::MepAlarmTextArray).end() == 453075);

// Longest key of any table; abZeroKey covers it.
inline constexpr std::uint32_t kZeroKeySize = 45;
consteval bool zero_key_covers_every_key() {
    for (const TableInfo& t : kDirectory)
        if (t.key > kZeroKeySize) return false;
    return true;
}
static_assert(zero_key_covers_every_key());

// ---------------------------------------------------------------------------
// Process-wide state, all zero when the library is loaded.
// ---------------------------------------------------------------------------

// Base of the attached data region; null while not attached.
extern std::uint8_t* pSharedData;
// Base of the read-write mapping made by Tarv__StorOpen; when set it equals
// pSharedData. The configuration writer addresses the region through it.
extern std::uint8_t* pStorData;
// The empty-key pattern: a key slot is empty when its K bytes equal the
// first K bytes of this block. Never written with anything but zeros.
extern std::uint8_t abZeroKey[kZeroKeySize];
// Base of the attached checkpoint region "/kelm-chkp-data"; null until a
// Tarv__ChkpOpen succeeds, then never reset.
extern std::uint8_t* pChkpData;

// The attached region for a query made by `function`, or null when the process
// has not attached one; then an error (code 12, "KELM_SHARED_DATA") is traced
// and the caller answers without touching memory.
[[nodiscard]] const std::uint8_t* attached_region(const char* function) noexcept;

// The read-write mapping for the configuration writer `function`, or null when
// Tarv__StorOpen has not attached one (also after a Tarv__Open alone); then an
// error (code 12) is traced and nothing may be written.
[[nodiscard]] std::uint8_t* writable_region(const char* function) noexcept;

// ---------------------------------------------------------------------------
// Entries, occupancy, lookup
// ---------------------------------------------------------------------------

// Address of entry `slot` of table t in the region at `base`. The caller has
// checked slot < info(t).slots.
[[nodiscard]] inline const std::uint8_t* entry(const std::uint8_t* base, Table t,
                                               std::uint32_t slot) noexcept {
    const TableInfo& ti = info(t);
    return base + ti.base + static_cast<std::size_t>(slot) * ti.entry;
}
[[nodiscard]] inline std::uint8_t* entry(std::uint8_t* base, Table t, std::uint32_t slot) noexcept {
    const TableInfo& ti = info(t);
    return base + ti.base + static_cast<std::size_t>(slot) * ti.entry;
}

// True when the key array slot holds an all-zero key (an empty slot).
[[nodiscard]] inline bool key_empty(const std::uint8_t* key, std::uint32_t key_size) noexcept {
    return std::memcmp(key, abZeroKey, key_size) == 0;
}

// The same test for a key size fixed at compile time, inline and without a
// call: the key's bytes are ORed in words of 8, 4, 2 and 1 bytes. abZeroKey
// only ever holds zeros, so this is the comparison above.
template <std::uint32_t K>
[[nodiscard]] inline bool key_empty(const std::uint8_t* key) noexcept {
    static_assert(K > 0 && K <= kZeroKeySize);
    std::uint64_t bits = 0;
    std::uint32_t at = 0;
    for (; at + 8 <= K; at += 8) bits |= load_le<std::uint64_t>(key + at);
    if constexpr (K % 8 >= 4) {
        bits |= load_le<std::uint32_t>(key + at);
        at += 4;
    }
    if constexpr (K % 4 >= 2) {
        bits |= load_le<std::uint16_t>(key + at);
        at += 2;
    }
    if constexpr (K % 2 == 1) bits |= key[at];
    return bits == 0;
}

// Slot hint of a keyed object: the low 16 bits of the key's last identifier
// minus 1, modulo 65536. The last identifier is the 4 bytes that end the key.
[[nodiscard]] inline std::uint32_t slot_hint(const std::uint8_t* key, std::uint32_t key_size) noexcept {
    const auto instance = load_le<std::uint16_t>(key + key_size - 4);
    return static_cast<std::uint16_t>(instance - 1u);
}

inline constexpr std::uint32_t kNotFound = 0xFFFFFFFFu;

// Keyed lookup in key array t: the hint slot first (when it lies inside the
// table), then every slot from 0 up; the first slot whose key `matches`
// wins. Returns the slot or kNotFound.
template <typename Matches>
[[nodiscard]] inline std::uint32_t find_slot_if(const std::uint8_t* base, Table t, std::uint32_t hint,
                                                Matches&& matches) noexcept {
    const TableInfo& ti = info(t);
    if (hint < ti.slots && matches(entry(base, t, hint))) return hint;
    for (std::uint32_t s = 0; s < ti.slots; ++s)
        if (matches(entry(base, t, s))) return s;
    return kNotFound;
}

// The keyed lookup of the key bytes at `key`: the first slot whose key bytes
// equal them. An all-zero key matches the first empty slot.
[[nodiscard]] inline std::uint32_t find_slot(const std::uint8_t* base, Table t, const std::uint8_t* key,
                                             std::uint32_t hint) noexcept {
    return find_slot_if(base, t, hint,
                        [&](const std::uint8_t* k) { return std::memcmp(k, key, info(t).key) == 0; });
}

// The slot of table t whose entry starts at p, or kNotFound when p is not
// the start of one of its entries.
[[nodiscard]] inline std::uint32_t slot_of(const std::uint8_t* base, Table t, const std::uint8_t* p) noexcept {
    const TableInfo& ti = info(t);
    const auto first = reinterpret_cast<std::uintptr_t>(base) + ti.base;
    const auto at = reinterpret_cast<std::uintptr_t>(p);
    if (at < first || at >= first + ti.bytes() || (at - first) % ti.entry != 0) return kNotFound;
    return static_cast<std::uint32_t>((at - first) / ti.entry);
}

// One step of a MOID iterator over key array t: the address of the next
// non-empty slot after `prev`, or null at the end. A null `prev` starts at
// slot 0; a `prev` that is no longer in the table restarts at slot 0. The
// walk always moves forward, also through duplicate keys. A `prev` whose slot
// has been emptied reads as the all-zero key, which is found at the first
// empty slot: the walk goes on after that slot.
// `on_bad_hint(hint, last_id)` runs when prev's hint lies outside the table.
template <typename OnBadHint>
[[nodiscard]] const std::uint8_t* iterate(const std::uint8_t* base, Table t, const std::uint8_t* prev,
                                          OnBadHint&& on_bad_hint) noexcept {
    const TableInfo& ti = info(t);
    std::uint32_t start = 0;
    if (prev != nullptr) {
        // Copy the caller's key first: it usually points into the region and
        // may change while it is looked up.
        std::uint8_t key[kZeroKeySize];
        std::memcpy(key, prev, ti.key);
        std::uint32_t hint = slot_hint(key, ti.key);
        if (hint >= ti.slots) {
            on_bad_hint(hint, load_le<std::uint32_t>(key + ti.key - 4));
            hint = 0;
        }
        std::uint32_t found = find_slot(base, t, key, hint);
        // Two slots holding the same key would send the walk back to the
        // first of them forever; a previous pointer into the table itself
        // therefore continues after its own slot while that slot still holds
        // the key (it no longer does only when the controller rewrote it
        // since the copy above, a moment no test can time). An emptied slot
        // is no such duplicate: its all-zero key is looked up like any other
        // and matches the first empty slot.
        const std::uint32_t own = slot_of(base, t, prev);
        if (found != kNotFound && own != kNotFound && own > found && !key_empty(key, ti.key) &&
            std::memcmp(entry(base, t, own), key, ti.key) == 0)
            found = own;
        if (found != kNotFound) {
            start = found + 1;
            if (start == ti.slots) return nullptr;
        }
    }
    for (std::uint32_t s = start; s < ti.slots; ++s) {
        const std::uint8_t* k = entry(base, t, s);
        if (!key_empty(k, ti.key)) return k;
    }
    return nullptr;
}

}  // namespace tarv

#endif
