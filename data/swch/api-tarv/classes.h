// The object classes served by the configuration read and write, and where
// each one lives in the region.
#ifndef TARV_CLASSES_H
#define TARV_CLASSES_H

#include <array>
#include <cstdint>

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

struct ClassInfo {
    std::uint32_t id;
    ClassRule rule;
    Table keys;  // key array, or the record of a singleton
    Table data;  // data array, or the record of a singleton
    std::uint32_t first_slot;
    Occupancy occupancy;
    Placement placement;

    [[nodiscard]] constexpr std::uint32_t key_size() const noexcept { return info(keys).key; }
    [[nodiscard]] constexpr std::uint32_t record_size() const noexcept { return info(data).entry; }
    [[nodiscard]] constexpr std::uint32_t transfer_size() const noexcept {
        return key_size() + record_size();
    }
    [[nodiscard]] constexpr std::uint32_t slots() const noexcept { return info(keys).slots; }
};

// clang-format off
inline constexpr std::array<ClassInfo, 21> kClasses{{
    {519, ClassRule::Singleton, Table::Class519Record, Table::Class519Record, 0, Occupancy::KeyNotZero, Placement::None},
    {523, ClassRule::Singleton, Table::Class523Record, Table::Class523Record, 0, Occupancy::KeyNotZero, Placement::None},
    {526, ClassRule::List, Table::Class526MoidArray, Table::Class526DataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {528, ClassRule::List, Table::Class528MoidArray, Table::Class528DataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {531, ClassRule::List, Table::MdMoidArray, Table::MdDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {532, ClassRule::List, Table::MepMoidArray, Table::MepDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {571, ClassRule::List, Table::Class571MoidArray, Table::Class571DataArray, 0, Occupancy::KeyNotZero, Placement::Packed},
    {573, ClassRule::List, Table::MACompMoidArray, Table::MACompDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {574, ClassRule::List, Table::MaNetMoidArray, Table::MaNetDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {575, ClassRule::List, Table::MipMoidArray, Table::MipDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {576, ClassRule::List, Table::Class576MoidArray, Table::Class576DataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {579, ClassRule::List, Table::Class579MoidArray, Table::Class579DataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {580, ClassRule::NoStorage, Table::Count, Table::Count, 0, Occupancy::KeyNotZero, Placement::None},
    {581, ClassRule::List, Table::Class581MoidArray, Table::Class581DataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {638, ClassRule::List, Table::ThroughputMoidArray, Table::ThroughputDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
    {652, ClassRule::History, Table::ThroughputHistoryIdArray, Table::ThroughputHistoryDataArray, 0, Occupancy::KeyNotZero, Placement::Packed},
    {665, ClassRule::List, Table::Class665MoidArray, Table::Class665DataArray, 1, Occupancy::SessionByte, Placement::SessionId},
    {666, ClassRule::List, Table::Class666MoidArray, Table::Class666DataArray, 1, Occupancy::SessionByte, Placement::SessionId},
    {673, ClassRule::Singleton, Table::Class673Record, Table::Class673Record, 0, Occupancy::KeyNotZero, Placement::None},
    {674, ClassRule::List, Table::PMSessionMoidArray, Table::PMSessionDataArray, 1, Occupancy::SessionByte, Placement::SessionId},
    {848, ClassRule::List, Table::BandwidthNotificationMoidArray, Table::BandwidthNotificationDataArray, 0, Occupancy::KeyNotZero, Placement::LastId},
}};
// clang-format on

// Every stored class pairs a key array and a data array of the same slot
// count; session-keyed classes have 15-byte keys.
consteval bool classes_are_consistent() {
    for (const ClassInfo& c : kClasses) {
        if (c.rule == ClassRule::NoStorage) continue;
        if (c.rule == ClassRule::Singleton) {
            if (c.keys != c.data || info(c.keys).key != 0) return false;
            continue;
        }
        if (info(c.keys).slots != info(c.data).slots || info(c.keys).key == 0) return false;
        if (info(c.data).key != 0) return false;
        if (c.occupancy == Occupancy::SessionByte && info(c.keys).key != 15) return false;
        if (c.first_slot >= info(c.keys).slots) return false;
    }
    return true;
}
static_assert(classes_are_consistent());

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

}  // namespace tarv

#endif
