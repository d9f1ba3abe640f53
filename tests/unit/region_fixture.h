// Shared arrangement of the unit tests: a fresh process state, a fake
// platform and an attached, zero-filled data region behind a guard page.
#ifndef TARV_TESTS_REGION_FIXTURE_H
#define TARV_TESTS_REGION_FIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "byteorder.h"
#include "region.h"
#include "support/fake_platform.h"
#include "tarv/tarv.h"

namespace tarv::testing {

using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

// A key of up to 18 bytes: wClass, then identifiers, little-endian.
inline Bytes key_bytes(std::uint16_t w_class, std::initializer_list<std::uint32_t> ids) {
    Bytes k(2 + 4 * ids.size());
    store_le<std::uint16_t>(k.data(), w_class);
    std::size_t at = 2;
    for (std::uint32_t id : ids) {
        store_le<std::uint32_t>(k.data() + at, id);
        at += 4;
    }
    return k;
}

// A key type (TARV_MOID, TARV_PM_KEY, ...) holding `bytes`.
template <typename Key = TARV_MOID>
Key as_key(const Bytes& bytes) {
    Key k{};
    std::memcpy(&k, bytes.data(), std::min(sizeof k, bytes.size()));
    return k;
}

inline TARV_MOID make_moid(std::uint16_t w_class, std::uint32_t id1, std::uint32_t id2, std::uint32_t id3) {
    return as_key(key_bytes(w_class, {id1, id2, id3}));
}

inline Bytes contents(const GuardedBytes& g) { return {g.data(), g.data() + g.size()}; }

// `size` bytes of `fill` that end at a guard page.
inline std::unique_ptr<GuardedBytes> guarded(std::size_t size, std::uint8_t fill = 0xEE) {
    auto g = std::make_unique<GuardedBytes>(size);
    g->fill(fill);
    return g;
}

// Each trace since the last reset as "<level> <text>", warnings and errors
// as "<level>/<code> <text>"; with `function`, "<level>[/<code>]
// <function>: <text>".
inline Lines traced(bool function = false) {
    Lines out;
    for (const auto& t : fake().traces)
        out.push_back(std::to_string(t.level) + (t.kind != TraceKind::Debug ? "/" + std::to_string(t.code) : "") +
                      " " + (function ? t.function + ": " : "") + t.text);
    return out;
}

class RegionTest : public ::testing::Test {
protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        fake().reset();
        pSharedData = pStorData = pChkpData = nullptr;
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

    void put_key(Table t, std::uint32_t slot, const Bytes& key) {
        ASSERT_LE(key.size(), info(t).entry);
        std::memcpy(at(t, slot), key.data(), key.size());
    }
    // Fills a record with a pattern that differs per slot and byte.
    void put_pattern(Table t, std::uint32_t slot, std::uint8_t seed) {
        std::uint8_t* r = at(t, slot);
        for (std::uint32_t i = 0; i < info(t).entry; ++i) r[i] = static_cast<std::uint8_t>(seed + i * 7u);
    }
    Bytes bytes_of(Table t, std::uint32_t slot, std::uint32_t n = 0) {
        const std::uint8_t* p = at(t, slot);
        return {p, p + (n ? n : info(t).entry)};
    }
};

// An attached region with every trace recorded (errors, warnings at no
// level, debug traces of every level).
class AttachedTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        attach();
        fake().set_debug_level(7);
        fake().set_module_level(1);
    }
};

}  // namespace tarv::testing

#endif
