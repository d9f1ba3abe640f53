// Shared arrangement of the unit tests: a fresh process state, a fake
// platform and an attached, zero-filled data region behind a guard page.
#ifndef TARV_TESTS_REGION_FIXTURE_H
#define TARV_TESTS_REGION_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "byteorder.h"
#include "region.h"
#include "support/fake_platform.h"
#include "tarv/tarv.h"

namespace tarv::testing {

// A key of up to 18 bytes: wClass, then identifiers, little-endian.
inline std::vector<std::uint8_t> key_bytes(std::uint16_t w_class, std::initializer_list<std::uint32_t> ids) {
    std::vector<std::uint8_t> k(2 + 4 * ids.size());
    store_le<std::uint16_t>(k.data(), w_class);
    std::size_t at = 2;
    for (std::uint32_t id : ids) {
        store_le<std::uint32_t>(k.data() + at, id);
        at += 4;
    }
    return k;
}

inline TARV_MOID make_moid(std::uint16_t w_class, std::uint32_t id1, std::uint32_t id2, std::uint32_t id3) {
    TARV_MOID m;
    const auto k = key_bytes(w_class, {id1, id2, id3});
    std::memcpy(&m, k.data(), sizeof m);
    return m;
}

class RegionTest : public ::testing::Test {
protected:
    void SetUp() override {
        fake().reset();
        pSharedData = nullptr;
        pStorData = nullptr;
    }
    void TearDown() override {
        pSharedData = nullptr;
        pStorData = nullptr;
        fake().reset();
    }

    // Attaches read-only through the library and returns the region's bytes.
    std::uint8_t* attach() {
        Tarv__Open();
        EXPECT_NE(pSharedData, nullptr);
        fake().traces.clear();
        fake().shm_calls.clear();
        return pSharedData;
    }

    std::uint8_t* at(Table t, std::uint32_t slot) { return entry(pSharedData, t, slot); }

    void put_key(Table t, std::uint32_t slot, const std::vector<std::uint8_t>& key) {
        ASSERT_LE(key.size(), info(t).entry);
        std::memcpy(at(t, slot), key.data(), key.size());
    }
    // Fills a record with a pattern that differs per slot and byte.
    void put_pattern(Table t, std::uint32_t slot, std::uint8_t seed) {
        std::uint8_t* r = at(t, slot);
        for (std::uint32_t i = 0; i < info(t).entry; ++i) r[i] = static_cast<std::uint8_t>(seed + i * 7u);
    }
    std::vector<std::uint8_t> bytes_of(Table t, std::uint32_t slot, std::uint32_t n = 0) {
        const std::uint8_t* p = at(t, slot);
        return {p, p + (n ? n : info(t).entry)};
    }
};

}  // namespace tarv::testing

#endif
