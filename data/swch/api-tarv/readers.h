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

// A key of N bytes (8 to 16) copied once into two words, bytes 0..7 and
// N-8..N-1, and compared word by word: the copy is never stored and loaded
// again, which keeps a walk that reads every object it passes cheap.
template <std::uint32_t N>
struct KeyValue {
    static_assert(N >= 8 && N <= 16);
    std::uint64_t head;
    std::uint64_t tail;

    [[nodiscard]] static KeyValue of(const std::uint8_t* key) noexcept {
        return {load_le<std::uint64_t>(key), load_le<std::uint64_t>(key + N - 8)};
    }
    [[nodiscard]] bool matches(const std::uint8_t* key) const noexcept {
        return load_le<std::uint64_t>(key) == head && load_le<std::uint64_t>(key + N - 8) == tail;
    }
    // The low 16 bits of the last identifier (bytes N-4, N-3) minus 1.
    [[nodiscard]] std::uint32_t hint() const noexcept { return static_cast<std::uint16_t>((tail >> 32) - 1u); }
    void store(std::uint8_t* out) const noexcept {
        store_le(out, head);
        store_le(out + N - 8, tail);
    }
};
using MoidValue = KeyValue<TARV_MOID_SIZE>;
using MaNetKeyValue = KeyValue<TARV_MANET_KEY_SIZE>;

// The key of the MaNet of the point with MOID `m`: class 574, then the MOID's
// MD and MaNet ids (its bytes 2..9).
[[nodiscard]] inline MaNetKeyValue manet_key_of(const MoidValue& m) noexcept {
    constexpr std::uint64_t kLow16 = 0xFFFF;
    return {(m.head & ~kLow16) | TARV_CLASS_MANET, (m.head >> 16) | (((m.tail >> 16) & kLow16) << 48)};
}

// Copies the record of the object whose key is in key array `keys` to `out`,
// looked up by its hint, then by the scan. False, with `out` untouched, when
// no slot holds the key.
template <std::uint32_t N>
[[nodiscard]] inline bool copy_record(const std::uint8_t* region, Table keys, Table data, const KeyValue<N>& key,
                                      void* out) noexcept {
    static_assert(N == info(Table::MepMoidArray).key || N == info(Table::MaNetMoidArray).key);
    const std::uint32_t slot =
        find_slot_if(region, keys, key.hint(), [&](const std::uint8_t* k) { return key.matches(k); });
    if (slot == kNotFound) return false;
    std::memcpy(out, entry(region, data, slot), info(data).entry);
    return true;
}

// The MEP read: the record of the MEP with MOID `moid`, or false after the
// read's error trace.
[[nodiscard]] inline bool read_mep(const std::uint8_t* region, const MoidValue& moid, void* out) noexcept {
    if (copy_record(region, Table::MepMoidArray, Table::MepDataArray, moid, out)) return true;
    std::uint8_t b[TARV_MOID_SIZE];
    moid.store(b);
    TARV_ERROR("Tarv__ReadMEP", trace::kNotFound,
               "Tarv__ReadMEP() : Unable to read Mep - can't find specified MOID: Class %d Md %ld MaNet %ld Mep %ld",
               key_class(b), key_id(b, moid::kId1Offset), key_id(b, moid::kId2Offset), key_id(b, moid::kId3Offset));
    return false;
}

// The MaNet read: the record of the MaNet with key `key`, or false after the
// read's error trace.
[[nodiscard]] inline bool read_manet(const std::uint8_t* region, const MaNetKeyValue& key, void* out) noexcept {
    if (copy_record(region, Table::MaNetMoidArray, Table::MaNetDataArray, key, out)) return true;
    std::uint8_t b[TARV_MANET_KEY_SIZE];
    key.store(b);
    TARV_ERROR("Tarv__ReadMANet", trace::kNotFound,
               "Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: Class %d Md %ld MaNet %ld",
               key_class(b), key_id(b, moid::kId1Offset), key_id(b, moid::kId2Offset));
    return false;
}

}  // namespace tarv

#endif
