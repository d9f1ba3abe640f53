// The object classes served by the configuration read and write, and where
// each one lives in the region.
#ifndef TARV_CLASSES_H
#define TARV_CLASSES_H

#include <array>
#include <cstdint>

#include "fields.h"
#include "region.h"

namespace tarv {

// How a class is transferred.
enum class ClassRule : std::uint8_t {
    List,       // keyed or session-keyed tables: transfer list with terminator
    Singleton,  // one fixed record, no key
    History,    // throughput history: packed, 4-byte id, no terminator
    NoStorage,  // accepted, nothing stored
};

// When a key array slot is occupied.
enum class Occupancy : std::uint8_t {
    KeyNotZero,   // the key is not all zero
    SessionByte,  // byte 14 of the PM key equals the slot number
};

// Where the writer puts a record.
enum class Placement : std::uint8_t {
    LastId,     // slot = low 16 bits of the key's last identifier - 1
    SessionId,  // slot = bySessionId
    Packed,     // the n-th record goes to slot n - 1
    None,
};

// A class whose keys the writer derives from another class's records: each
// stored record gets, in the same slot of `keys`, its own key with `w_class`
// in place of its class (and, when these keys are 4 bytes longer, its last
// identifier once more). `data` is emptied with the keys and stays empty.
struct Companion {
    Table keys = Table::Count;
    Table data = Table::Count;
    std::uint16_t w_class = 0;
};

// MEPs and MIPs: the writer replaces the MAC address by the one of the port
// that bySlot and byPort name.
struct MacRule {
    Bytes address{Table::Count, 0, 0};
    Field<std::uint8_t> slot{Table::Count, 0};
    Field<std::uint8_t> port{Table::Count, 0};
};

// Throughput tests: the writer computes d from a, b and c.
struct RateRule {
    Field<std::uint32_t> a{Table::Count, 0};
    Field<std::uint16_t> b{Table::Count, 0};
    Field<std::uint16_t> c{Table::Count, 0};
    Field<std::uint16_t> d{Table::Count, 0};
};

inline constexpr std::size_t kMaxEmptied = 6;
inline constexpr Field<std::uint32_t> kNoField{Table::Count, 0};

// Up to kMaxEmptied tables in order; Table::Count fills the rest.
template <typename... T>
consteval std::array<Table, kMaxEmptied> tables(T... t) {
    static_assert(sizeof...(T) <= kMaxEmptied);
    std::array<Table, kMaxEmptied> list{};
    list.fill(Table::Count);
    [[maybe_unused]] std::size_t i = 0;
    ((list[i++] = t), ...);
    return list;
}

// One class as the configuration read and write see it. The read uses the
// first fields; the write empties `emptied` in that order, places each record
// of the list, then applies the further writes: companion keys, fields set
// to 1, the MAC rule and the rate rule.
struct ClassInfo {
    std::uint32_t id;
    ClassRule rule;
    Table keys;  // key array, or the record of a singleton
    Table data;  // data array, or the record of a singleton
    std::uint32_t first_slot = 0;
    Occupancy occupancy = Occupancy::KeyNotZero;
    Placement placement = Placement::None;
    bool traces_enter = false;               // "Enter" at debug level 6 on read and write
    bool kept_when_first_byte_zero = false;  // singleton left as it is for such an input
    std::array<Table, kMaxEmptied> emptied = tables();
    std::array<Companion, 2> companions{};
    std::array<Field<std::uint32_t>, 2> set_to_one{kNoField, kNoField};
    MacRule mac{};
    RateRule rate{};

    [[nodiscard]] constexpr std::uint32_t key_size() const noexcept { return info(keys).key; }
    [[nodiscard]] constexpr std::uint32_t record_size() const noexcept { return info(data).entry; }
    [[nodiscard]] constexpr std::uint32_t transfer_size() const noexcept {
        return key_size() + record_size();
    }
    [[nodiscard]] constexpr std::uint32_t slots() const noexcept { return info(keys).slots; }
};

// clang-format off
inline constexpr std::array<ClassInfo, 21> kClasses{{
    {.id = 519, .rule = ClassRule::Singleton, .keys = Table::Class519Record, .data = Table::Class519Record},
    {.id = 523, .rule = ClassRule::Singleton, .keys = Table::Class523Record, .data = Table::Class523Record},
    {.id = 526, .rule = ClassRule::List, .keys = Table::Class526MoidArray, .data = Table::Class526DataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::Class526DataArray, Table::Class526MoidArray),
     .set_to_one = {class526::lStored, kNoField}},
    {.id = 528, .rule = ClassRule::List, .keys = Table::Class528MoidArray, .data = Table::Class528DataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::Class528DataArray, Table::Class528MoidArray,
                       Table::Class572DataArray, Table::Class572MoidArray),
     .companions = {{{Table::Class572MoidArray, Table::Class572DataArray, 572}}},
     .set_to_one = {class528::lStored, kNoField}},
    {.id = 531, .rule = ClassRule::List, .keys = Table::MdMoidArray, .data = Table::MdDataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::MdDataArray, Table::MdMoidArray)},
    {.id = 532, .rule = ClassRule::List, .keys = Table::MepMoidArray, .data = Table::MepDataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::MepDataArray, Table::MepMoidArray, Table::Class577DataArray,
                       Table::Class577MoidArray, Table::BandwidthNotificationDataArray,
                       Table::BandwidthNotificationMoidArray),
     .companions = {{{Table::Class577MoidArray, Table::Class577DataArray, 577},
                     {Table::BandwidthNotificationMoidArray, Table::BandwidthNotificationDataArray, 848}}},
     .set_to_one = {mep::lStored1, mep::lStored2},
     .mac = {mep::abyMacAddress, mep::bySlot, mep::byPort}},
    {.id = 571, .rule = ClassRule::List, .keys = Table::Class571MoidArray, .data = Table::Class571DataArray,
     .placement = Placement::Packed,
     .emptied = tables(Table::Class571DataArray, Table::Class571MoidArray)},
    {.id = 573, .rule = ClassRule::List, .keys = Table::MACompMoidArray, .data = Table::MACompDataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::MACompDataArray, Table::MACompMoidArray)},
    {.id = 574, .rule = ClassRule::List, .keys = Table::MaNetMoidArray, .data = Table::MaNetDataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::MaNetDataArray, Table::MaNetMoidArray)},
    {.id = 575, .rule = ClassRule::List, .keys = Table::MipMoidArray, .data = Table::MipDataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::MipDataArray, Table::MipMoidArray, Table::Class578DataArray, Table::Class578MoidArray),
     .companions = {{{Table::Class578MoidArray, Table::Class578DataArray, 578}}},
     .mac = {mip::abyMacAddress, mip::bySlot, mip::byPort}},
    {.id = 576, .rule = ClassRule::List, .keys = Table::Class576MoidArray, .data = Table::Class576DataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::Class576DataArray, Table::Class576MoidArray)},
    {.id = 579, .rule = ClassRule::List, .keys = Table::Class579MoidArray, .data = Table::Class579DataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::Class579DataArray, Table::Class579MoidArray)},
    {.id = 580, .rule = ClassRule::NoStorage, .keys = Table::Count, .data = Table::Count},
    {.id = 581, .rule = ClassRule::List, .keys = Table::Class581MoidArray, .data = Table::Class581DataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::Class581DataArray, Table::Class581MoidArray)},
    {.id = 638, .rule = ClassRule::List, .keys = Table::ThroughputMoidArray, .data = Table::ThroughputDataArray,
     .placement = Placement::LastId,
     .emptied = tables(Table::ThroughputDataArray, Table::ThroughputMoidArray),
     .set_to_one = {throughput::eEnableStatus, kNoField},
     .rate = {throughput::lOperandA, throughput::wOperandB, throughput::wOperandC, throughput::wDerived}},
    {.id = 652, .rule = ClassRule::History, .keys = Table::ThroughputHistoryIdArray,
     .data = Table::ThroughputHistoryDataArray, .placement = Placement::Packed,
     .emptied = tables(Table::ThroughputHistoryDataArray, Table::ThroughputHistoryIdArray)},
    {.id = 665, .rule = ClassRule::List, .keys = Table::Class665MoidArray, .data = Table::Class665DataArray,
     .first_slot = 1, .occupancy = Occupancy::SessionByte, .placement = Placement::SessionId,
     .emptied = tables(Table::Class665DataArray, Table::Class665MoidArray)},
    {.id = 666, .rule = ClassRule::List, .keys = Table::Class666MoidArray, .data = Table::Class666DataArray,
     .first_slot = 1, .occupancy = Occupancy::SessionByte, .placement = Placement::SessionId,
     .emptied = tables(Table::Class666DataArray, Table::Class666MoidArray)},
    {.id = 673, .rule = ClassRule::Singleton, .keys = Table::Class673Record, .data = Table::Class673Record,
     .kept_when_first_byte_zero = true},
    {.id = 674, .rule = ClassRule::List, .keys = Table::PMSessionMoidArray, .data = Table::PMSessionDataArray,
     .first_slot = 1, .occupancy = Occupancy::SessionByte, .placement = Placement::SessionId,
     .emptied = tables(Table::PMSessionDataArray, Table::PMSessionMoidArray)},
    {.id = 848, .rule = ClassRule::List, .keys = Table::BandwidthNotificationMoidArray,
     .data = Table::BandwidthNotificationDataArray, .placement = Placement::LastId, .traces_enter = true,
     .emptied = tables(Table::BandwidthNotificationDataArray, Table::BandwidthNotificationMoidArray)},
}};
// clang-format on

consteval bool is_field_of(Table record, Table field_table, std::uint32_t offset, std::uint32_t size) {
    return field_table == record && offset + size <= info(record).entry;
}

// What the writer does to a class follows from the rest of its row: a stored
// class empties its data array, its key array, then the data and key arrays
// of each companion, and nothing else; companions have the class's slots and
// its key, or its key and one more identifier; every field the writer sets
// or reads lies in the class's own record; a class without storage or a
// singleton has no further writes.
consteval bool writes_are_consistent(const ClassInfo& c) {
    const bool stored = c.rule == ClassRule::List || c.rule == ClassRule::History;
    std::array<Table, kMaxEmptied> expected = tables();
    std::size_t n = 0;
    if (stored) {
        expected[n++] = c.data;
        expected[n++] = c.keys;
    }
    for (const Companion& m : c.companions) {
        if (m.keys == Table::Count) continue;
        if (!stored || m.data == Table::Count) return false;
        if (info(m.keys).slots != c.slots() || info(m.data).slots != c.slots()) return false;
        if (info(m.keys).key != c.key_size() && info(m.keys).key != c.key_size() + 4) return false;
        if (info(m.data).key != 0) return false;
        expected[n++] = m.data;
        expected[n++] = m.keys;
    }
    if (c.emptied != expected) return false;
    for (const Field<std::uint32_t>& f : c.set_to_one)
        if (f.table != Table::Count && (!stored || !is_field_of(c.data, f.table, f.offset, 4))) return false;
    if (c.mac.address.table != Table::Count &&
        (!stored || c.mac.address.size != 6 || !is_field_of(c.data, c.mac.address.table, c.mac.address.offset, 6) ||
         !is_field_of(c.data, c.mac.slot.table, c.mac.slot.offset, 1) ||
         !is_field_of(c.data, c.mac.port.table, c.mac.port.offset, 1)))
        return false;
    if (c.rate.d.table != Table::Count &&
        (!stored || !is_field_of(c.data, c.rate.a.table, c.rate.a.offset, 4) ||
         !is_field_of(c.data, c.rate.b.table, c.rate.b.offset, 2) ||
         !is_field_of(c.data, c.rate.c.table, c.rate.c.offset, 2) ||
         !is_field_of(c.data, c.rate.d.table, c.rate.d.offset, 2)))
        return false;
    if (c.traces_enter && c.rule != ClassRule::List) return false;
    if (c.kept_when_first_byte_zero && c.rule != ClassRule::Singleton) return false;
    return true;
}

// Every stored class pairs a key array and a data array of the same slot
// count; session-keyed classes have 15-byte keys; the placement fits the
// rule (lists placed by identifier, session or position, the history packed);
// every class id appears once.
consteval bool classes_are_consistent() {
    for (std::size_t i = 0; i < kClasses.size(); ++i) {
        const ClassInfo& c = kClasses[i];
        for (std::size_t j = 0; j < i; ++j)
            if (kClasses[j].id == c.id) return false;
        if (!writes_are_consistent(c)) return false;
        if (c.rule == ClassRule::NoStorage) {
            if (c.keys != Table::Count || c.data != Table::Count || c.placement != Placement::None) return false;
            continue;
        }
        if (c.rule == ClassRule::Singleton) {
            if (c.keys != c.data || info(c.keys).key != 0 || c.placement != Placement::None) return false;
            continue;
        }
        if (info(c.keys).slots != info(c.data).slots || info(c.keys).key == 0) return false;
        if (info(c.keys).entry != info(c.keys).key || info(c.data).key != 0) return false;
        if ((c.occupancy == Occupancy::SessionByte) != (c.placement == Placement::SessionId)) return false;
        if (c.occupancy == Occupancy::SessionByte && info(c.keys).key != 15) return false;
        if (c.placement == Placement::None || (c.rule == ClassRule::History && c.placement != Placement::Packed))
            return false;
        if (c.placement == Placement::LastId && (info(c.keys).key < 6 || c.slots() > 65536)) return false;
        if (c.first_slot >= info(c.keys).slots) return false;
    }
    return true;
}
static_assert(classes_are_consistent());

// Position of class `id` in kClasses, or kClasses.size() when the library
// does not know it.
[[nodiscard]] constexpr std::size_t class_index(std::uint32_t id) noexcept {
    std::size_t i = 0;
    while (i < kClasses.size() && kClasses[i].id != id) ++i;
    return i;
}

// The class with id `id`, or null when the library does not know it.
[[nodiscard]] constexpr const ClassInfo* find_class(std::uint32_t id) noexcept {
    for (const ClassInfo& c : kClasses)
        if (c.id == id) return &c;
    return nullptr;
}

// True when slot `slot` of the class's key array holds an object.
[[nodiscard]] inline bool slot_occupied(const ClassInfo& c, const std::uint8_t* key, std::uint32_t slot) noexcept {
    if (c.occupancy == Occupancy::SessionByte) return key[14] == slot;
    return !key_empty(key, c.key_size());
}

// The same test for class kClasses[I], with the key size fixed at compile
// time.
template <std::size_t I>
[[nodiscard]] inline bool slot_occupied(const std::uint8_t* key, std::uint32_t slot) noexcept {
    constexpr const ClassInfo& c = kClasses[I];
    if constexpr (c.occupancy == Occupancy::SessionByte) return key[moid::kSessionIdOffset] == slot;
    else return !key_empty<c.key_size()>(key);
}

}  // namespace tarv

#endif
