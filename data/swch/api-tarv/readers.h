// The MEP iterator step and the MEP and MaNet reads, for the exported readers
// and for operations of the library that walk MEPs or read MaNets without
// going through the exported (interposable) entry points. Same rules, same
// traces, same function names in the traces.
#ifndef TARV_READERS_H
#define TARV_READERS_H

#include <cstdint>
#include <cstring>

#include "fields.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {

// A key passed by value, as its raw bytes (a MOID, a MaNet key, ...).
template <typename Key>
struct KeyBytes {
    std::uint8_t b[sizeof(Key)];
    explicit KeyBytes(const Key& k) noexcept { std::memcpy(b, &k, sizeof b); }

    [[nodiscard]] int wClass() const noexcept { return load_le<std::uint16_t>(b + moid::kClassOffset); }
    [[nodiscard]] long id(std::uint32_t offset) const noexcept {
        return trace::as_ld(load_le<std::uint32_t>(b + offset));
    }
    [[nodiscard]] std::uint32_t hint() const noexcept { return slot_hint(b, sizeof b); }
};
using MoidBytes = KeyBytes<TARV_MOID>;
static_assert(sizeof(TARV_MOID) == TARV_MOID_SIZE);
static_assert(sizeof(TARV_MANET_KEY) == TARV_MANET_KEY_SIZE);

// Fields of a key as its traces print them.
[[nodiscard]] inline int key_class(const std::uint8_t* key) noexcept {
    return load_le<std::uint16_t>(key + moid::kClassOffset);
}
[[nodiscard]] inline long key_id(const std::uint8_t* key, std::uint32_t offset) noexcept {
    return trace::as_ld(load_le<std::uint32_t>(key + offset));
}

// One step of the MEP walk: the next non-empty MEP MOID slot after `prev`.
[[nodiscard]] inline const std::uint8_t* next_mep(const std::uint8_t* region, const std::uint8_t* prev) noexcept {
    return iterate(region, Table::MepMoidArray, prev, [](std::uint32_t hint, std::uint32_t last_id) {
        TARV_DEBUG(trace::kSuspicious, "Tarv__MEPMoidIterator", "Wrong index %d from MepId %ld",
                   static_cast<int>(hint), trace::as_ld(last_id));
    });
}

// Copies the record of the object whose key (a stable copy, not a slot of
// the region) is in key array `keys` to `out`, looked up by its hint, then
// by the scan. False, with `out` untouched, when no slot holds the key.
[[nodiscard]] inline bool copy_record(const std::uint8_t* region, Table keys, Table data, const std::uint8_t* key,
                                      void* out) noexcept {
    const std::uint32_t slot = find_slot(region, keys, key, slot_hint(key, info(keys).key));
    if (slot == kNotFound) return false;
    std::memcpy(out, entry(region, data, slot), info(data).entry);
    return true;
}

// The MEP read: the record of the MEP with the 14-byte MOID `moid`, or
// false after the read's error trace.
[[nodiscard]] inline bool read_mep(const std::uint8_t* region, const std::uint8_t* moid, void* out) noexcept {
    if (copy_record(region, Table::MepMoidArray, Table::MepDataArray, moid, out)) return true;
    TARV_ERROR("Tarv__ReadMEP", trace::kNotFound,
               "Tarv__ReadMEP() : Unable to read Mep - can't find specified MOID: Class %d Md %ld MaNet %ld Mep %ld",
               key_class(moid), key_id(moid, moid::kId1Offset), key_id(moid, moid::kId2Offset),
               key_id(moid, moid::kId3Offset));
    return false;
}

// The MaNet read: the record of the MaNet with the 10-byte key `key`, or
// false after the read's error trace.
[[nodiscard]] inline bool read_manet(const std::uint8_t* region, const std::uint8_t* key, void* out) noexcept {
    if (copy_record(region, Table::MaNetMoidArray, Table::MaNetDataArray, key, out)) return true;
    TARV_ERROR("Tarv__ReadMANet", trace::kNotFound,
               "Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: Class %d Md %ld MaNet %ld",
               key_class(key), key_id(key, moid::kId1Offset), key_id(key, moid::kId2Offset));
    return false;
}

}  // namespace tarv

#endif
