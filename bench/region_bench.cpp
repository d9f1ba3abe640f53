// Region queries: the library against a plain loop over the same bytes.
//
// The region is a zero-filled block behind a guard page, attached through
// the fake platform, holding 32 MEPs in their hint slots and 16 class-581
// objects spread over its 4096 slots. Each query runs beside a baseline that
// touches the same bytes the obvious way (memcpy, memcmp against zero), so
// the ratio shows what the slot rules and the keyed lookup cost on top. The
// baselines clobber memory after each iteration, as a write by the controller
// would: otherwise the compiler hoists their loop-invariant compares out of
// the timing loop and measures nothing.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
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

constexpr std::uint32_t kMeps = 32;
constexpr std::uint32_t kClass581Objects = 16;

std::uint8_t* region() {
    static std::uint8_t* base = [] {
        Tarv__Open();
        std::uint8_t* r = tarv::pSharedData;
        for (std::uint32_t slot = 0; slot < kMeps; ++slot) {
            std::uint8_t* key = entry(r, Table::MepMoidArray, slot);
            store_le<std::uint16_t>(key, 532);
            store_le<std::uint32_t>(key + 2, 1);
            store_le<std::uint32_t>(key + 6, 1);
            store_le<std::uint32_t>(key + 10, slot + 1);
            std::memset(entry(r, Table::MepDataArray, slot), static_cast<int>(slot), 48);
        }
        for (std::uint32_t i = 0; i < kClass581Objects; ++i) {
            const std::uint32_t slot = i * 255u;
            std::uint8_t* key = entry(r, Table::Class581MoidArray, slot);
            store_le<std::uint16_t>(key, 581);
            store_le<std::uint32_t>(key + 2, slot + 1);
        }
        return r;
    }();
    return base;
}

TARV_MOID mep_moid(std::uint32_t id) {
    TARV_MOID m{};
    std::uint8_t k[14];
    store_le<std::uint16_t>(k, 532);
    store_le<std::uint32_t>(k + 2, 1);
    store_le<std::uint32_t>(k + 6, 1);
    store_le<std::uint32_t>(k + 10, id);
    std::memcpy(&m, k, sizeof m);
    return m;
}

const std::uint8_t kZero[16] = {};

// Baseline list: key and record of every occupied slot, then a terminator.
std::size_t baseline_list(const std::uint8_t* r, Table keys, Table data, std::uint8_t* out) {
    const std::uint32_t k = info(keys).key;
    const std::uint32_t d = info(data).entry;
    std::uint8_t* p = out;
    for (std::uint32_t s = 0; s < info(keys).slots; ++s) {
        const std::uint8_t* key = entry(r, keys, s);
        if (std::memcmp(key, kZero, k) == 0) continue;
        std::memcpy(p, key, k);
        std::memcpy(p + k, entry(r, data, s), d);
        p += k + d;
    }
    std::memset(p, 0, k);
    return static_cast<std::size_t>(p - out);
}

void register_all() {
    static std::vector<std::uint8_t> out(4096 * 22 + 64);

    benchmark::RegisterBenchmark("GetConfig MEP x32/library", [](benchmark::State& s) {
        region();
        for (auto _ : s) {
            Tarv__GetConfig(532, out.data(), 33);
            benchmark::DoNotOptimize(out.data());
        }
    });
    benchmark::RegisterBenchmark("GetConfig MEP x32/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        for (auto _ : s) benchmark::DoNotOptimize(baseline_list(r, Table::MepMoidArray, Table::MepDataArray, out.data()));
    });
    benchmark::RegisterBenchmark("GetConfig 581 scan/library", [](benchmark::State& s) {
        region();
        for (auto _ : s) {
            Tarv__GetConfig(581, out.data(), 4096);
            benchmark::DoNotOptimize(out.data());
        }
    });
    benchmark::RegisterBenchmark("GetConfig 581 scan/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        for (auto _ : s)
            benchmark::DoNotOptimize(baseline_list(r, Table::Class581MoidArray, Table::Class581DataArray, out.data()));
    });
    benchmark::RegisterBenchmark("ReadMEP at hint/library", [](benchmark::State& s) {
        region();
        const TARV_MOID moid = mep_moid(17);
        std::uint8_t rec[48];
        for (auto _ : s) {
            Tarv__ReadMEP(moid, rec);
            benchmark::DoNotOptimize(rec);
        }
    });
    benchmark::RegisterBenchmark("ReadMEP at hint/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        const TARV_MOID moid = mep_moid(17);
        std::uint8_t rec[48];
        for (auto _ : s) {
            if (std::memcmp(entry(r, Table::MepMoidArray, 16), &moid, 14) == 0)
                std::memcpy(rec, entry(r, Table::MepDataArray, 16), 48);
            benchmark::DoNotOptimize(rec);
            benchmark::ClobberMemory();
        }
    });
    benchmark::RegisterBenchmark("ReadMEP absent/library", [](benchmark::State& s) {
        region();
        const TARV_MOID moid = mep_moid(99);
        std::uint8_t rec[48];
        for (auto _ : s) {
            Tarv__ReadMEP(moid, rec);
            benchmark::DoNotOptimize(rec);
        }
    });
    benchmark::RegisterBenchmark("ReadMEP absent/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        const TARV_MOID moid = mep_moid(99);
        for (auto _ : s) {
            std::uint32_t found = kMeps;
            for (std::uint32_t slot = 0; slot < kMeps && found == kMeps; ++slot)
                if (std::memcmp(entry(r, Table::MepMoidArray, slot), &moid, 14) == 0) found = slot;
            benchmark::DoNotOptimize(found);
            benchmark::ClobberMemory();
        }
    });
    benchmark::RegisterBenchmark("MEP walk x32/library", [](benchmark::State& s) {
        region();
        for (auto _ : s) {
            int n = 0;
            for (const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr); p != nullptr; p = Tarv__MEPMoidIterator(p)) ++n;
            benchmark::DoNotOptimize(n);
        }
    });
    benchmark::RegisterBenchmark("MEP walk x32/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        for (auto _ : s) {
            int n = 0;
            for (std::uint32_t slot = 0; slot < kMeps; ++slot)
                if (std::memcmp(entry(r, Table::MepMoidArray, slot), kZero, 14) != 0) ++n;
            benchmark::DoNotOptimize(n);
            benchmark::ClobberMemory();
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return tarv::bench::run_with_ratios(argc, argv, "query");
}
