// Fuzzes the configuration read and write by class on arbitrary region
// contents, class ids and counts.
//
// The region's tables are filled from the input (fuzz_support.h), then each
// operation is read from the rest of the input:
//   op:u8 % kOperations
//   0  Tarv__GetConfig: class:u8 (bit 7 set: the id follows as u32, any
//      value; else an index into the known classes), count mode:u8
//      (0: 0, 1: 1, 2: 2, 3: u32 follows, else mode % 40).
//      The buffer is exactly as long as the list the class holds for that
//      count, so one byte written too many faults; the bytes must be the
//      transfer list (records in slot order, the terminator when fewer
//      records than asked were written); an unknown id returns 1 with
//      nothing written.
//   1  reserved for Tarv__SetConfig (transfer lists from the input, then
//      read back through Tarv__GetConfig).
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "classes.h"
#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;

constexpr char kTarget[] = "config_fuzz";
constexpr unsigned kOperations = 2;

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

void get_config(const std::uint8_t* region, Input& in) {
    static fuzz::Guarded buffer(4097 * 22 + 4096);  // the longest list: every slot of class 581
    const std::uint8_t selector = in.u8();
    const std::uint32_t id = (selector & 0x80u) != 0 ? in.u32() : kClasses[selector % kClasses.size()].id;
    const std::uint32_t count = read_count(in);
    const ClassInfo* c = find_class(id);

    const std::vector<std::uint8_t> want = c != nullptr ? expected_list(region, *c, count) : std::vector<std::uint8_t>{};
    std::uint8_t* out = buffer.take(want.size());
    const std::int32_t result = Tarv__GetConfig(id, out, count);
    if (result != (c != nullptr ? 0 : 1)) fuzz::fail(kTarget, "wrong result");
    if (!want.empty() && std::memcmp(out, want.data(), want.size()) != 0) fuzz::fail(kTarget, "wrong transfer list");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<Table> tables = class_tables();
    std::uint8_t* region = fuzz::attached_region(/*read_write=*/true);
    Input in(data, size);
    fuzz::fill_region(region, tables, in);
    for (int ops = 0; ops < 64 && !in.empty(); ++ops) {
        switch (in.u8() % kOperations) {
            case 0: get_config(region, in); break;
            case 1: break;  // Tarv__SetConfig joins here.
        }
    }
    fuzz::check_traces(kTarget);
    return 0;
}
