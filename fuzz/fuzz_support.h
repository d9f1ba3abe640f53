// Shared parts of the fuzz targets: reading an input as a stream of small
// values, an attached region whose controller-private ranges cannot be
// touched, region contents written from the input, and caller buffers that
// end at an inaccessible page.
//
// Input layout of the region-reading targets:
//   count:u8, then (count & 0x7F) % 48 entry writes, then operations to the
//                end; count's bit 7 set: no trace statement runs for this
//                input, else every one does.
//   entry write: table:u8 (index into the target's table list), slot:u16,
//                length:u8, then min(length, entry size) bytes written at
//                the start of that entry (the rest of it stays zero).
// Each target reads its operations from what follows.
//
// A target is a table (Target): how an input prepares the region and the
// platform, and its operations, one chosen by each operation byte. The same
// tables replay the committed inputs in the isolation checks, there with
// every comparison off (`checking` false), attached and not.
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
#include <string_view>
#include <type_traits>

#include "byteorder.h"
#include "platform/prtm.h"
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
    // What is left of the input, not consumed.
    [[nodiscard]] std::span<const std::uint8_t> rest() const noexcept {
        return {data_ + (at_ < size_ ? at_ : size_), at_ < size_ ? size_ - at_ : 0};
    }
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
    // An integer argument (slot, port, VLAN, index, length): mode:u8 below
    // 0xF0 is the value itself; 0xF0..0xF7 a value at a limit (negative
    // ones included); above, any u32 follows.
    std::uint32_t number() noexcept {
        static constexpr std::uint32_t kLimits[] = {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0xFFFFu,
                                                    0x10000u,    0x1000u,     0xFFFu,      0x100u};
        const std::uint8_t mode = u8();
        if (mode < 0xF0) return mode;
        return mode < 0xF8 ? kLimits[mode - 0xF0] : u32();
    }
    std::int32_t signed_number() noexcept { return static_cast<std::int32_t>(number()); }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

// False while the isolation checks replay inputs: the targets then only
// call the library, and a failed comparison is not a fault.
inline bool checking = true;

inline void fail(const char* target, const char* what) {
    if (!checking) return;
    std::fprintf(stderr, "%s: %s\n", target, what);
    std::abort();
}

// The exported functions called so far, for the isolation checks to prove
// that the replayed inputs call every one; counted only while `tally` is set.
struct Tally {
    std::string_view names[64];
    std::size_t size = 0;
    void add(std::string_view name) noexcept {
        for (std::size_t i = 0; i < size; ++i)
            if (names[i] == name) return;
        if (size < std::size(names)) names[size++] = name;
    }
    [[nodiscard]] bool has(std::string_view name) const noexcept {
        for (std::size_t i = 0; i < size; ++i)
            if (names[i] == name) return true;
        return false;
    }
};
inline Tally* tally = nullptr;
inline void note(std::string_view function) noexcept {
    if (tally != nullptr) tally->add(function);
}

// Where this thread folds the values the calls return (FNV-1a) while set,
// for comparing the same operations run in several threads.
inline thread_local std::uint64_t* answers = nullptr;

template <typename F>
auto call(std::string_view function, F f) {
    note(function);
    if constexpr (std::is_void_v<std::invoke_result_t<F>>) {
        f();
    } else {
        const auto value = f();
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof value < sizeof bits ? sizeof value : sizeof bits);
        if (answers != nullptr) *answers = (*answers ^ bits) * 1099511628211u;
        return value;
    }
}

// Every call of the targets into the library: function, then its arguments
// in parentheses.
#define CALL(function, args) ::tarv::fuzz::call(#function, [&] { return function args; })

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
        testing::fake().keep_traces = false;
        if (read_write)
            CALL(Tarv__StorOpen, ());
        else
            CALL(Tarv__Open, ());
        std::uint8_t* base = pSharedData;
        if (base == nullptr) std::abort();  // the fake platform refused the region
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        for (const TableInfo& t : kDirectory) {
            if (!is_private(t.id)) continue;
            const auto first = (reinterpret_cast<std::uintptr_t>(base) + t.base + page - 1) / page * page;
            const auto end = (reinterpret_cast<std::uintptr_t>(base) + t.end()) / page * page;
            if (end > first && mprotect(reinterpret_cast<void*>(first), end - first, PROT_NONE) != 0)
                std::abort();
        }
        return base;
    }();
    return region;
}

// Sets the levels of the trace objects: every trace statement runs, or none.
inline void set_traces(bool on) {
    testing::fake().set_debug_level(on ? 7 : 0);
    testing::fake().set_module_level(on ? 7 : 0);
}

// Clears the tables of `tables` (no other table is ever written), then
// applies the entry writes at the start of the input to them.
inline void fill_region(std::uint8_t* region, std::span<const Table> tables, Input& in) {
    for (Table t : tables) std::memset(region + info(t).base, 0, info(t).bytes());
    const std::uint8_t count = in.u8();
    set_traces((count & 0x80u) == 0);
    const unsigned writes = (count & 0x7Fu) % 48u;
    for (unsigned w = 0; w < writes && !in.empty(); ++w) {
        const Table t = tables[in.u8() % tables.size()];
        const TableInfo& ti = info(t);
        const std::uint32_t slot = in.u16() % ti.slots;
        const std::size_t length = in.u8();
        in.bytes(entry(region, t, slot), length < ti.entry ? length : ti.entry);
    }
}

// A key of type Key for table t, read from the input: source:u8, then by
// source % 3: 0 the key bytes follow; 1 the key of slot u8 of t (a key that
// is there); 2 that key with the byte u8 % size changed by u8.
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

// The chassis, port and switch answers of the fake platform, from the input:
// switch mode:u8 % 4, then lists:u8 % 4 LAG member lists (LAG id:u8 and the
// 20 bytes the port library returns, count byte included, any value), then
// types:u8 % 4 port types (slot:u8, port:u8, type:u8 % 5).
inline void set_platform(Input& in) {
    auto& f = testing::fake();
    f.switch_mode = in.u8() % 4;
    f.lag_lists.clear();
    for (unsigned n = in.u8() % 4u; n > 0; --n) {
        const std::uint8_t lag = in.u8();
        in.bytes(f.lag_lists[lag].data(), PRTM_LAG_PORT_LIST_SIZE);
    }
    f.port_types.clear();
    for (unsigned n = in.u8() % 4u; n > 0; --n) {
        const std::uint32_t slot = in.u8();
        const std::uint32_t port = in.u8();
        f.port_types[{slot, port}] = in.u8() % 5;
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
        if (n > bytes_.size()) std::abort();  // a buffer larger than its mapping
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

// One operation of a target: reads its arguments from the input and calls
// the library. What it does besides reading decides where it may run.
enum Effect : unsigned { kReads = 0, kAttaches = 1, kWrites = 2 };
struct Op {
    void (*run)(std::uint8_t* region, Input& in);
    unsigned effect = kReads;
};

struct Target {
    const char* name;  // also the name of its corpus directory
    // Attaches, sets the region's tables, the platform and the trace levels
    // from the start of the input; false when the input cannot run here.
    bool (*prepare)(Input& in, std::uint8_t*& region);
    std::span<const Op> ops;         // op:u8 % size picks one, up to 64 times
    std::span<const Op> each_input;  // run once each, in order, before those
};

// Runs the operations of a prepared input but those with an effect in
// `skip`: a replay without the regions attached leaves out the attach calls,
// which would really attach; one beside other threads leaves out the writes.
inline void run_ops(const Target& t, std::uint8_t* region, Input in, unsigned skip = 0) {
    for (const Op& op : t.each_input)
        if ((op.effect & skip) == 0) op.run(region, in);
    for (int n = 0; n < 64 && !t.ops.empty() && !in.empty(); ++n) {
        const Op& op = t.ops[in.u8() % t.ops.size()];
        if ((op.effect & skip) == 0) op.run(region, in);
    }
}

inline int run(const Target& t, const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    std::uint8_t* region = nullptr;
    if (!t.prepare(in, region)) return 0;
    run_ops(t, region, in);
    check_traces(t.name);
    return 0;
}

extern const Target config_target, readers_target, usage_target, alarms_target, checkpoint_target, pm_record_target;
inline const Target* const all_targets[] = {&config_target, &readers_target,    &usage_target,
                                            &alarms_target, &checkpoint_target, &pm_record_target};

}  // namespace tarv::fuzz

// The libFuzzer entry point of a target; the isolation checks link every
// target and define TARV_FUZZ_NO_ENTRY.
#ifdef TARV_FUZZ_NO_ENTRY
#define TARV_FUZZ_ENTRY(target)
#else
#define TARV_FUZZ_ENTRY(target)                                                        \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) { \
        return ::tarv::fuzz::run(::tarv::fuzz::target, data, size);                    \
    }
#endif

#endif
