// Shared parts of the fuzz targets: reading an input as a stream of small
// values, an attached region whose controller-private ranges cannot be
// touched, region contents written from the input, and caller buffers that
// end at an inaccessible page.
//
// Input layout of the region-reading targets:
//   count:u8, then count % 48 entry writes, then operations to the end.
//   entry write: table:u8 (index into the target's table list), slot:u16,
//                length:u8, then min(length, entry size) bytes written at
//                the start of that entry (the rest of it stays zero).
// Each target reads its operations from what follows.
#ifndef TARV_FUZZ_SUPPORT_H
#define TARV_FUZZ_SUPPORT_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "byteorder.h"
#include "region.h"
#include "support/fake_platform.h"
#include "support/guard_page.h"
#include "tarv/tarv.h"

namespace tarv::fuzz {

// The input as little-endian values; past its end every read gives zeros.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    [[nodiscard]] bool empty() const noexcept { return at_ >= size_; }
    std::uint8_t u8() noexcept { return at_ < size_ ? data_[at_++] : 0; }
    std::uint16_t u16() noexcept {
        std::uint8_t b[2];
        bytes(b, 2);
        return load_le<std::uint16_t>(b);
    }
    std::uint32_t u32() noexcept {
        std::uint8_t b[4];
        bytes(b, 4);
        return load_le<std::uint32_t>(b);
    }
    // n bytes into out, zeros past the end of the input.
    void bytes(std::uint8_t* out, std::size_t n) noexcept {
        for (std::size_t i = 0; i < n; ++i) out[i] = u8();
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

[[noreturn]] inline void fail(const char* target, const char* what) {
    std::fprintf(stderr, "%s: %s\n", target, what);
    std::abort();
}

inline bool is_private(Table t) {
    return t == Table::Private1 || t == Table::Private2 || t == Table::Private3 || t == Table::Private4;
}

// The data region, attached once per process through the library (read-write
// when `read_write`, so that the writer can use it too) on the fake
// platform, which places it before a guard page. Every whole page inside a
// controller-private range is made inaccessible: the library must neither
// read nor write there. Traces of every level are formatted, not kept.
inline std::uint8_t* attached_region(bool read_write) {
    static std::uint8_t* region = [read_write] {
        auto& f = testing::fake();
        f.keep_traces = false;
        f.set_debug_level(7);
        f.set_module_level(7);
        if (read_write)
            Tarv__StorOpen();
        else
            Tarv__Open();
        std::uint8_t* base = pSharedData;
        if (base == nullptr) fail("fuzz", "attach failed");
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        for (const TableInfo& t : kDirectory) {
            if (!is_private(t.id)) continue;
            const auto first = (reinterpret_cast<std::uintptr_t>(base) + t.base + page - 1) / page * page;
            const auto end = (reinterpret_cast<std::uintptr_t>(base) + t.end()) / page * page;
            if (end > first && mprotect(reinterpret_cast<void*>(first), end - first, PROT_NONE) != 0)
                fail("fuzz", "mprotect of a private range failed");
        }
        return base;
    }();
    return region;
}

// Clears the tables of `tables` (no other table is ever written), then
// applies the entry writes at the start of the input to them.
inline void fill_region(std::uint8_t* region, std::span<const Table> tables, Input& in) {
    for (Table t : tables) std::memset(region + info(t).base, 0, info(t).bytes());
    const unsigned writes = in.u8() % 48u;
    for (unsigned w = 0; w < writes && !in.empty(); ++w) {
        const Table t = tables[in.u8() % tables.size()];
        const TableInfo& ti = info(t);
        const std::uint32_t slot = in.u16() % ti.slots;
        const std::size_t length = in.u8();
        in.bytes(entry(region, t, slot), length < ti.entry ? length : ti.entry);
    }
}

// A caller buffer of exactly n bytes, ending at an inaccessible page and
// filled with kFill. One mapping serves every buffer of a target; the
// buffers of one operation are taken from separate Guarded objects.
class Guarded {
public:
    static constexpr std::uint8_t kFill = 0xA5;
    explicit Guarded(std::size_t capacity) : bytes_(capacity) {}
    std::uint8_t* take(std::size_t n) {
        if (n > bytes_.size()) fail("fuzz", "buffer larger than its mapping");
        std::uint8_t* p = bytes_.data() + bytes_.size() - n;
        std::memset(p, kFill, n);
        return p;
    }

private:
    testing::GuardedBytes bytes_;
};

// True when the n bytes at p all hold kFill (a buffer left untouched).
inline bool untouched(const std::uint8_t* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (p[i] != Guarded::kFill) return false;
    return true;
}

// The keyed lookup every reader uses, written out for comparison: the hint
// slot (the low 16 bits of the key's last identifier minus 1) when it lies
// inside the table, then every slot from 0; the first equal key wins.
inline std::uint32_t expected_slot(const std::uint8_t* region, Table t, const std::uint8_t* key) {
    const TableInfo& ti = info(t);
    const std::uint32_t hint = static_cast<std::uint16_t>(load_le<std::uint16_t>(key + ti.key - 4) - 1u);
    if (hint < ti.slots && std::memcmp(entry(region, t, hint), key, ti.key) == 0) return hint;
    for (std::uint32_t s = 0; s < ti.slots; ++s)
        if (std::memcmp(entry(region, t, s), key, ti.key) == 0) return s;
    return kNotFound;
}

// After every input: each trace statement was opened and closed.
inline void check_traces(const char* target) {
    if (testing::fake().unpaired_count != 0) fail(target, "a trace print outside WQ_beginImpl / WQ_endImpl");
}

}  // namespace tarv::fuzz

#endif
