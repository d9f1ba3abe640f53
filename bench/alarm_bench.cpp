// Alarm queries and list walks: the library beside the same work done the
// obvious way, in the same run.
//
// The region (fake platform, zero-filled, behind a guard page) holds 32 MEPs,
// 32 bandwidth notifications and 32 throughput keys in their hint slots, and
// one PM session of MEP 5 with its MaNet and MD, as a running switch would.
//
// - Alarm text: Tarv__GetMepInfoAbout1731Alarm against the same lookups at
//   the known slots, the same switch queries, then snprintf and strncat (the
//   C library's way of building the text).
// - Tarv__GetAlarms against a plain loop over the 32 slots' class field,
//   alarm bits and flag.
// - A full walk of each iterator against a memcmp of the 32 keys with zero.
// Baselines clobber memory after each iteration, as a controller's write
// would, so the compiler cannot hoist their loop-invariant work.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "platform/lanx.h"
#include "ratio_reporter.h"
#include "region.h"
#include "support/fake_platform.h"
#include "tarv/tarv.h"

namespace {

using tarv::entry;
using tarv::info;
using tarv::load_le;
using tarv::store_le;
using tarv::Table;

constexpr std::uint32_t kSlots = 32;
constexpr std::uint8_t kSession = 3;
const std::uint8_t kZero[18] = {};

void put_key(std::uint8_t* r, Table t, std::uint32_t slot, std::uint16_t w_class, std::initializer_list<std::uint32_t> ids) {
    std::uint8_t* k = entry(r, t, slot);
    store_le(k, w_class);
    std::uint32_t at = 2;
    for (std::uint32_t id : ids) store_le(k + at, id), at += 4;
}

std::uint8_t* region() {
    static std::uint8_t* base = [] {
        Tarv__Open();
        std::uint8_t* r = tarv::pSharedData;
        for (std::uint32_t slot = 0; slot < kSlots; ++slot) {
            put_key(r, Table::MepMoidArray, slot, 532, {1, 1, slot + 1});
            put_key(r, Table::BandwidthNotificationMoidArray, slot, 848, {1, 1, slot + 1});
            put_key(r, Table::ThroughputMoidArray, slot, 638, {1, 1, 1, slot + 1});
            std::uint8_t* mep = entry(r, Table::MepDataArray, slot);
            store_le<std::uint16_t>(mep, static_cast<std::uint16_t>(slot + 1));
            store_le<std::uint32_t>(mep + 2, 2);
            store_le<std::uint16_t>(mep + 6, 100);
            mep[21] = static_cast<std::uint8_t>(slot % 2);
            store_le<std::uint16_t>(mep + 26, 0x0007);
            mep[46] = 1;
            mep[47] = 3;
        }
        std::memcpy(entry(r, Table::PMSessionMoidArray, kSession), entry(r, Table::MepMoidArray, 4), 14);
        entry(r, Table::PMSessionMoidArray, kSession)[14] = kSession;
        put_key(r, Table::MaNetMoidArray, 0, 574, {1, 1});
        std::strcpy(reinterpret_cast<char*>(entry(r, Table::MaNetDataArray, 0) + 4), "Service12");
        put_key(r, Table::MdMoidArray, 0, 531, {1});
        std::strcpy(reinterpret_cast<char*>(entry(r, Table::MdDataArray, 0) + 4), "Operator");
        store_le<std::uint32_t>(entry(r, Table::MdDataArray, 0) + 48, 5);
        return r;
    }();
    return base;
}

TARV_PM_KEY pm_key() {
    TARV_PM_KEY k;
    std::memcpy(&k, entry(region(), Table::PMSessionMoidArray, kSession), sizeof k);
    return k;
}

// The fake records every port type request; keep its list from growing.
void forget_requests(std::uint32_t& n) {
    if ((++n & 4095u) == 0) tarv::testing::fake().port_type_requests.clear();
}

// The text built the C library's way from the records at their known slots.
// strncat cutting a name at its field's width is the point here.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wstringop-truncation"
#endif
bool baseline_text(const std::uint8_t* r, const TARV_PM_KEY& key, char* out) {
    if (std::memcmp(entry(r, Table::PMSessionMoidArray, key.bySessionId), &key, 15) != 0) return false;
    std::uint8_t moid[14];
    std::memcpy(moid, &key, 14);
    store_le<std::uint16_t>(moid, 532);
    if (std::memcmp(entry(r, Table::MepMoidArray, 4), moid, 14) != 0) return false;
    std::uint8_t mep[48], manet[57], md[65];
    std::memcpy(mep, entry(r, Table::MepDataArray, 4), 48);
    const bool c_vid = Lanx__GetSwitchMode() == 2 || Lanx__GetPbPortType(mep[46], mep[47]) == 3;
    if (std::memcmp(entry(r, Table::MaNetMoidArray, 0) + 2, moid + 2, 8) != 0) return false;
    std::memcpy(manet, entry(r, Table::MaNetDataArray, 0), 57);
    if (std::memcmp(entry(r, Table::MdMoidArray, 0) + 2, moid + 2, 4) != 0) return false;
    std::memcpy(md, entry(r, Table::MdDataArray, 0), 65);
    std::sprintf(out, "S%hd,P%hd,%s%d,%s,L%d,Id%hd,MAID:", static_cast<short>(mep[46]), static_cast<short>(mep[47]),
                 c_vid ? "Cvid" : "Svid", static_cast<int>(load_le<std::uint16_t>(mep + 6)),
                 load_le<std::uint32_t>(mep + 2) == 1 ? "Dn" : "Up",
                 static_cast<int>(load_le<std::uint32_t>(md + 48) - 1u), load_le<std::int16_t>(mep));
    std::strncat(out, reinterpret_cast<const char*>(md + 4), 20);
    std::strcat(out, "/");
    std::strncat(out, reinterpret_cast<const char*>(manet + 4), 24);
    return true;
}

template <typename Key, typename Next>
int walk(Next next) {
    int n = 0;
    for (const Key* p = next(nullptr); p != nullptr; p = next(p)) ++n;
    return n;
}

int baseline_walk(const std::uint8_t* r, Table t) {
    int n = 0;
    for (std::uint32_t slot = 0; slot < kSlots; ++slot)
        if (std::memcmp(entry(r, t, slot), kZero, info(t).key) != 0) ++n;
    return n;
}

void register_all() {
    benchmark::RegisterBenchmark("Alarm text/library", [](benchmark::State& s) {
        region();
        const TARV_PM_KEY key = pm_key();
        char text[TARV_MEP_ALARM_INFO_SIZE];
        std::uint32_t n = 0;
        for (auto _ : s) {
            benchmark::DoNotOptimize(Tarv__GetMepInfoAbout1731Alarm(key, text));
            benchmark::DoNotOptimize(text);
            forget_requests(n);
        }
        if (std::strcmp(text, "S1,P3,Svid100,Up,L4,Id5,MAID:Operator/Service12") != 0) s.SkipWithError(text);
    });
    benchmark::RegisterBenchmark("Alarm text/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        const TARV_PM_KEY key = pm_key();
        char text[TARV_MEP_ALARM_INFO_SIZE];
        std::uint32_t n = 0;
        for (auto _ : s) {
            benchmark::DoNotOptimize(baseline_text(r, key, text));
            benchmark::DoNotOptimize(text);
            benchmark::ClobberMemory();
            forget_requests(n);
        }
    });
    benchmark::RegisterBenchmark("GetAlarms x32/library", [](benchmark::State& s) {
        region();
        std::uint16_t words[kSlots];
        for (auto _ : s) {
            Tarv__GetAlarms(words);
            benchmark::DoNotOptimize(words);
        }
    });
    benchmark::RegisterBenchmark("GetAlarms x32/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        std::uint16_t words[kSlots];
        for (auto _ : s) {
            for (std::uint32_t slot = 0; slot < kSlots; ++slot) {
                const std::uint8_t* mep = entry(r, Table::MepDataArray, slot);
                const bool present = load_le<std::uint16_t>(entry(r, Table::MepMoidArray, slot)) != 0;
                const auto bits = load_le<std::uint16_t>(mep + 26);
                words[slot] = present ? static_cast<std::uint16_t>(mep[21] ? bits : bits & ~4u) : 0;
            }
            benchmark::DoNotOptimize(words);
            benchmark::ClobberMemory();
        }
    });
    benchmark::RegisterBenchmark("Bandwidth walk x32/library", [](benchmark::State& s) {
        region();
        for (auto _ : s) benchmark::DoNotOptimize(walk<TARV_MOID>(Tarv__BandwidthNotificationMoidIterator));
    });
    benchmark::RegisterBenchmark("Bandwidth walk x32/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        for (auto _ : s) {
            benchmark::DoNotOptimize(baseline_walk(r, Table::BandwidthNotificationMoidArray));
            benchmark::ClobberMemory();
        }
    });
    benchmark::RegisterBenchmark("Throughput walk x32/library", [](benchmark::State& s) {
        region();
        for (auto _ : s) benchmark::DoNotOptimize(walk<TARV_THROUGHPUT_KEY>(Tarv__ThroughputListMoidIterator));
    });
    benchmark::RegisterBenchmark("Throughput walk x32/baseline", [](benchmark::State& s) {
        const std::uint8_t* r = region();
        for (auto _ : s) {
            benchmark::DoNotOptimize(baseline_walk(r, Table::ThroughputMoidArray));
            benchmark::ClobberMemory();
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return tarv::bench::run_with_ratios(argc, argv, "alarm query");
}
