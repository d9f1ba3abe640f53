// Configuration write and read of whole classes: the library against plain
// memset/memcpy moving the same bytes.
//
// The region is a zero-filled block behind a guard page, attached read-write
// through the fake platform. Class 581 is full (4096 records) and so is the
// MEP class (32 records, all on LAGs, so that the MAC rule asks only the
// chassis stub and the fake records nothing per call). The write baselines
// empty the same arrays with memset and copy key and record of every record
// (for MEPs also the two companion keys) to their slot; the read baselines
// copy key and record of every slot. Neither tests a key: the ratio is what
// the slot rules, the list check and the derived fields cost on top of
// moving the bytes.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "ratio_reporter.h"
#include "region.h"
#include "support/fake_platform.h"
#include "tarv/tarv.h"

namespace {

using tarv::entry;
using tarv::info;
using tarv::store_le;
using tarv::Table;

struct Class {
    std::uint32_t id;
    Table keys, data;
    std::array<Table, 2> companions;  // key arrays keyed from each record (Table::Count: none)
    std::array<Table, 6> emptied;
};

constexpr Class k581{581,
                     Table::Class581MoidArray,
                     Table::Class581DataArray,
                     {Table::Count, Table::Count},
                     {Table::Class581DataArray, Table::Class581MoidArray, Table::Count, Table::Count, Table::Count,
                      Table::Count}};
constexpr Class kMep{532,
                     Table::MepMoidArray,
                     Table::MepDataArray,
                     {Table::Class577MoidArray, Table::BandwidthNotificationMoidArray},
                     {Table::MepDataArray, Table::MepMoidArray, Table::Class577DataArray, Table::Class577MoidArray,
                      Table::BandwidthNotificationDataArray, Table::BandwidthNotificationMoidArray}};

std::uint8_t* region() {
    static std::uint8_t* base = [] {
        Tarv__StorOpen();
        return tarv::pStorData;
    }();
    return base;
}

// A full transfer list of the class, with its terminator: record i has the
// last identifier i + 1; MEPs sit on LAG i.
std::vector<std::uint8_t> full_list(const Class& c) {
    const std::uint32_t k = info(c.keys).key, d = info(c.data).entry, n = info(c.keys).slots;
    std::vector<std::uint8_t> list(std::size_t{n} * (k + d) + k, 0);
    for (std::uint32_t i = 0; i < n; ++i) {
        std::uint8_t* t = list.data() + std::size_t{i} * (k + d);
        std::memset(t, static_cast<int>(i | 1u), k + d);
        store_le<std::uint16_t>(t, static_cast<std::uint16_t>(c.id));
        store_le<std::uint32_t>(t + k - 4, i + 1);
        if (c.id == 532) t[k + 46] = 2;
    }
    return list;
}

// Baselines with every size fixed at compile time, as plain code would have
// them: the copies inline.
template <const Class& C>
void write_baseline(std::uint8_t* r, const std::uint8_t* in) {
    constexpr std::uint32_t k = info(C.keys).key, d = info(C.data).entry, n = info(C.keys).slots;
    for (Table t : C.emptied)
        if (t != Table::Count) std::memset(entry(r, t, 0), 0, info(t).bytes());
    for (std::uint32_t i = 0; i < n; ++i, in += k + d) {
        std::memcpy(entry(r, C.data, i), in + k, d);
        std::memcpy(entry(r, C.keys, i), in, k);
        for (Table t : C.companions)
            if (t != Table::Count) std::memcpy(entry(r, t, i), in, k);
    }
}

template <const Class& C>
void read_baseline(const std::uint8_t* r, std::uint8_t* out) {
    constexpr std::uint32_t k = info(C.keys).key, d = info(C.data).entry, n = info(C.keys).slots;
    for (std::uint32_t i = 0; i < n; ++i, out += k + d) {
        std::memcpy(out, entry(r, C.keys, i), k);
        std::memcpy(out + k, entry(r, C.data, i), d);
    }
}

template <const Class& c>
void register_class(const char* name) {
    const std::string n = name;
    benchmark::RegisterBenchmark((n + " SetConfig/library").c_str(), [](benchmark::State& s) {
        region();
        const auto list = full_list(c);
        for (auto _ : s) benchmark::DoNotOptimize(Tarv__SetConfig(c.id, list.data()));
    });
    benchmark::RegisterBenchmark((n + " SetConfig/baseline").c_str(), [](benchmark::State& s) {
        std::uint8_t* r = region();
        const auto list = full_list(c);
        for (auto _ : s) {
            write_baseline<c>(r, list.data());
            benchmark::ClobberMemory();
        }
    });
    benchmark::RegisterBenchmark((n + " GetConfig/library").c_str(), [](benchmark::State& s) {
        region();
        Tarv__SetConfig(c.id, full_list(c).data());
        std::vector<std::uint8_t> out(full_list(c).size());
        for (auto _ : s) {
            Tarv__GetConfig(c.id, out.data(), info(c.keys).slots);
            benchmark::DoNotOptimize(out.data());
        }
    });
    benchmark::RegisterBenchmark((n + " GetConfig/baseline").c_str(), [](benchmark::State& s) {
        const std::uint8_t* r = region();
        Tarv__SetConfig(c.id, full_list(c).data());
        std::vector<std::uint8_t> out(full_list(c).size());
        for (auto _ : s) {
            read_baseline<c>(r, out.data());
            benchmark::DoNotOptimize(out.data());
            benchmark::ClobberMemory();
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    register_class<k581>("581 x4096");
    register_class<kMep>("MEP x32");
    return tarv::bench::run_with_ratios(argc, argv, "class");
}
