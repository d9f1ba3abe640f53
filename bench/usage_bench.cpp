// Usage queries on a full region: every query, found late and not found
// after the longest scan, beside a plain loop over the same tables.
//
// The region holds 32 MEPs (all on slot 4 port 1, VLAN 100 + i, Down, MA
// 1/(i+1)), 32 MIPs (0 to 30 on slot 5 port 1, 31 on LAG 7, MA 1/(i+1)), 32
// MA components (MA 1/(j+1), VLAN 100 + j, tagged C, S, VFI in turn) and 128
// MaNets (1/(j+1), every other one of the heavy CCM period). The baselines do
// the same work the obvious way: memcmp of each 14-byte key against zero or
// against the wanted key, the record bytes tested in place, one inlined loop
// per table, no tables of variants, no attach check, no trace call. Both
// sides clobber memory after every call, as a write by the controller would.
//
// The slot resource check is measured beside the straightforward walk through
// the exported calls (Tarv__MEPMoidIterator, Tarv__ReadMEP, Tarv__ReadMANet).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>

#include "fields.h"
#include "ratio_reporter.h"
#include "region.h"
#include "support/fake_platform.h"
#include "tarv/tarv.h"

namespace {

using namespace tarv;

constexpr std::uint32_t kTagging[3] = {macomp::kCVlan, macomp::kSVlan, macomp::kVfi};

void put_key(std::uint8_t* key, std::uint16_t cls, std::uint32_t md, std::uint32_t ma, std::uint32_t id) {
    store_le<std::uint16_t>(key, cls);
    store_le<std::uint32_t>(key + 2, md);
    store_le<std::uint32_t>(key + 6, ma);
    if (id != 0) store_le<std::uint32_t>(key + 10, id);
}

std::uint8_t* region() {
    static std::uint8_t* base = [] {
        Tarv__Open();
        std::uint8_t* r = pSharedData;
        for (std::uint32_t j = 0; j < 128; ++j) {
            put_key(entry(r, Table::MaNetMoidArray, j), TARV_CLASS_MANET, 1, j + 1, 0);
            set(entry(r, Table::MaNetDataArray, j), manet::dwCcmPeriod, j % 2 == 0 ? 2u : 1u);
        }
        for (std::uint32_t i = 0; i < 32; ++i) {
            put_key(entry(r, Table::MACompMoidArray, i), TARV_CLASS_MACOMP, 1, i + 1, i + 1);
            set(entry(r, Table::MACompDataArray, i), macomp::eTagging, kTagging[i % 3]);
            set(entry(r, Table::MACompDataArray, i), macomp::wVid, static_cast<std::uint16_t>(100 + i));
            std::uint8_t* m = entry(r, Table::MepDataArray, i);
            put_key(entry(r, Table::MepMoidArray, i), TARV_CLASS_MEP, 1, i + 1, i + 1);
            set(m, mep::bySlot, std::uint8_t{4}), set(m, mep::byPort, std::uint8_t{1});
            set(m, mep::wVid, static_cast<std::uint16_t>(100 + i)), set(m, mep::eDirection, mep::kDown);
            std::uint8_t* p = entry(r, Table::MipDataArray, i);
            put_key(entry(r, Table::MipMoidArray, i), TARV_CLASS_MIP, 1, i + 1, i + 1);
            set(p, mip::bySlot, static_cast<std::uint8_t>(i < 31 ? 5 : 2));
            set(p, mip::byPort, static_cast<std::uint8_t>(i < 31 ? 1 : 7));
        }
        return r;
    }();
    return base;
}

TARV_MOID moid(std::uint16_t cls, std::uint32_t ma, std::uint32_t id) {
    TARV_MOID m{};
    put_key(reinterpret_cast<std::uint8_t*>(&m), cls, 1, ma, id);
    return m;
}

// ---------------------------------------------------------------------------
// Baselines: the same decisions as plain loops
// ---------------------------------------------------------------------------
namespace plain {

const std::uint8_t kZero[14] = {};
const std::uint8_t* g_region = region();
const std::uint8_t* key(Table t, std::uint32_t i) { return entry(g_region, t, i); }
bool empty(const std::uint8_t* k) { return std::memcmp(k, kZero, 14) == 0; }
bool same_ma(const std::uint8_t* a, const std::uint8_t* b) { return std::memcmp(a + 2, b + 2, 8) == 0; }
std::uint32_t tagging(std::uint32_t j) { return get(key(Table::MACompDataArray, j), macomp::eTagging); }
std::uint16_t comp_vid(std::uint32_t j) { return get(key(Table::MACompDataArray, j), macomp::wVid); }

// The first MEP or MIP on (slot, port), live by its key or by its class.
int presence(int slot, int port, bool by_class) {
    for (std::uint32_t i = 0; i < 32; ++i) {
        const std::uint8_t* k = key(Table::MepMoidArray, i);
        const std::uint8_t* r = key(Table::MepDataArray, i);
        if ((by_class ? load_le<std::uint16_t>(k) == 532 : !empty(k)) && r[46] == slot && r[47] == port) return 1;
    }
    for (std::uint32_t i = 0; i < 32; ++i) {
        const std::uint8_t* k = key(Table::MipMoidArray, i);
        const std::uint8_t* r = key(Table::MipDataArray, i);
        if ((by_class ? load_le<std::uint16_t>(k) == 575 : !empty(k)) && r[12] == slot && r[13] == port) return 1;
    }
    return 0;
}

int mep_by_moid(int slot, int port, const TARV_MOID& m) {
    for (std::uint32_t i = 0; i < 32; ++i) {
        const std::uint8_t* r = key(Table::MepDataArray, i);
        if (std::memcmp(key(Table::MepMoidArray, i), &m, 14) == 0 && r[46] == slot && r[47] == port &&
            get(r, mep::eDirection) == 1)
            return 1;
    }
    return 0;
}

// Tagging of the first non-empty component of the MEP's MA, 0 when none.
std::uint32_t first_tagging(const std::uint8_t* moid) {
    for (std::uint32_t j = 0; j < 32; ++j)
        if (!empty(key(Table::MACompMoidArray, j)) && same_ma(key(Table::MACompMoidArray, j), moid))
            return tagging(j);
    return 0;
}

// The first MEP from `from` on (slot, port) with a VLAN in lo..hi (and, when
// down, of direction 1) whose first component's tagging is (or, with !is,
// is not) t. Live by its key, or by a VLAN other than 0 when by_vid.
int meps(std::uint32_t from, int slot, int port, long lo, long hi, bool down, std::uint32_t t, bool is,
         bool by_vid = false) {
    for (std::uint32_t i = from; i < 32; ++i) {
        const std::uint8_t* k = key(Table::MepMoidArray, i);
        const std::uint8_t* r = key(Table::MepDataArray, i);
        const std::uint16_t w = get(r, mep::wVid);
        if ((by_vid ? w == 0 : empty(k)) || r[46] != slot || r[47] != port || w < lo || w > hi) continue;
        if (down && get(r, mep::eDirection) != 1) continue;
        if ((first_tagging(k) == t) == is) return static_cast<int>(i);
    }
    return -1;
}

// The first MIP on (slot, port) with any component of its MA in lo..hi whose
// tagging is (or is not) t.
int mips(int slot, int port, long lo, long hi, std::uint32_t t, bool is) {
    for (std::uint32_t i = 0; i < 32; ++i) {
        const std::uint8_t* k = key(Table::MipMoidArray, i);
        const std::uint8_t* r = key(Table::MipDataArray, i);
        if (empty(k) || r[12] != slot || r[13] != port) continue;
        for (std::uint32_t j = 0; j < 32; ++j)
            if (same_ma(key(Table::MACompMoidArray, j), k) && comp_vid(j) >= lo && comp_vid(j) <= hi &&
                (tagging(j) == t) == is)
                return static_cast<int>(i);
    }
    return -1;
}

int tagging_conflict(int slot, int port, int vid) {
    for (std::uint32_t i = 0; i < 32; ++i) {
        const std::uint8_t* k = key(Table::MepMoidArray, i);
        const std::uint8_t* r = key(Table::MepDataArray, i);
        if (empty(k) || r[46] != slot || r[47] != port || get(r, mep::wVid) != vid) continue;
        for (std::uint32_t j = 0; j < 32; ++j)
            if (same_ma(key(Table::MACompMoidArray, j), k) && comp_vid(j) == vid && tagging(j) == 2) return 24631;
    }
    return 0;
}

int component(std::uint32_t t, int vid) {
    for (std::uint32_t j = 0; j < 32; ++j)
        if (!empty(key(Table::MACompMoidArray, j)) && tagging(j) == t && comp_vid(j) == vid) return 1;
    return 0;
}

int lag(int lag_id, std::uint32_t* period) {
    int found = -1;
    for (std::uint32_t i = 0; i < 32 && found < 0; ++i)
        if (load_le<std::uint16_t>(key(Table::MepMoidArray, i)) == 532 && key(Table::MepDataArray, i)[46] == 2 &&
            key(Table::MepDataArray, i)[47] == lag_id)
            found = static_cast<int>(i);
    const bool mep_found = found >= 0;
    for (std::uint32_t i = 0; i < 32 && found < 0; ++i)
        if (load_le<std::uint16_t>(key(Table::MipMoidArray, i)) == 575 && key(Table::MipDataArray, i)[12] == 2 &&
            key(Table::MipDataArray, i)[13] == lag_id)
            found = static_cast<int>(i);
    if (found < 0) return 0;
    const auto at = static_cast<std::uint32_t>(found);
    const std::uint8_t* k = key(mep_found ? Table::MepMoidArray : Table::MipMoidArray, at);
    std::uint8_t want[10] = {0x3E, 0x02};  // class 574
    std::memcpy(want + 2, k + 2, 8);
    for (std::uint32_t j = 0; j < 128; ++j)
        if (std::memcmp(key(Table::MaNetMoidArray, j), want, 10) == 0) {
            *period = get(key(Table::MaNetDataArray, j), manet::dwCcmPeriod);
            break;
        }
    return 1;
}

// The slot check as a straightforward walk through the exported calls.
int slot_through_exported_calls(std::uint32_t slot, std::int32_t period) {
    std::uint16_t units = 0;
    for (const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr); p != nullptr; p = Tarv__MEPMoidIterator(p)) {
        std::uint8_t record[48];
        Tarv__ReadMEP(*p, record);
        if (record[46] != slot) continue;  // no LAG MEPs in this region
        TARV_MANET_KEY k{TARV_CLASS_MANET, p->lId1, p->lId2};
        std::uint8_t net[57] = {};
        Tarv__ReadMANet(k, net);
        units = static_cast<std::uint16_t>(units + (get(net, manet::dwCcmPeriod) == 2 ? 3 : 1));
    }
    return static_cast<std::uint16_t>(units + (period == 2 ? 3 : 1)) <= 1000 ? 1 : 0;
}

}  // namespace plain

// ---------------------------------------------------------------------------
// Cases
// ---------------------------------------------------------------------------

std::int32_t g_index;
TARV_MOID g_moid;
std::uint8_t g_record[48];
std::uint32_t g_period;

std::uint32_t find_down(std::int32_t cvid) {
    g_index = 0;
    return Tarv__FindDownMepFromSomeWhereOnCVlanPort(4, 1, cvid, &g_index, &g_moid, g_record);
}

struct Case {
    const char* name;
    std::int64_t (*library)();
    std::int64_t (*baseline)();
};

#define CASE(name, library, baseline) \
    Case { name, [] { return static_cast<std::int64_t>(library); }, [] { return static_cast<std::int64_t>(baseline); } }

const Case kCases[] = {
    CASE("OnPort hit", Tarv__IsOamEnabledOnPort(5, 1), plain::presence(5, 1, false)),
    CASE("OnPort miss", Tarv__IsOamEnabledOnPort(6, 1), plain::presence(6, 1, false)),
    CASE("OnPortOpt hit", Tarv__IsOamEnabledOnPortOpt(5, 1), plain::presence(5, 1, true)),
    CASE("OnPortOpt miss", Tarv__IsOamEnabledOnPortOpt(6, 1), plain::presence(6, 1, true)),
    CASE("MPOnPort hit", Tarv__IsMPEnabledOnPort(5, 1), plain::presence(5, 1, true)),
    CASE("MPOnPort miss", Tarv__IsMPEnabledOnPort(6, 1), plain::presence(6, 1, true)),
    CASE("ForMepOnPort hit", Tarv__IsOamEnabledForMepOnPort(4, 1, moid(532, 32, 32)),
         plain::mep_by_moid(4, 1, moid(532, 32, 32))),
    CASE("ForMepOnPort miss", Tarv__IsOamEnabledForMepOnPort(4, 1, moid(532, 33, 33)),
         plain::mep_by_moid(4, 1, moid(532, 33, 33))),
    CASE("MIPPortSVlan hit", Tarv__IsOamEnabledOnMIPPortSVlan(5, 1, 128), plain::mips(5, 1, 128, 128, 2, true)),
    CASE("MIPPortSVlan miss", Tarv__IsOamEnabledOnMIPPortSVlan(5, 1, 999), plain::mips(5, 1, 999, 999, 2, true)),
    CASE("PortSVlan hit", Tarv__IsOamEnabledOnPortSVlan(4, 1, 131), plain::meps(0, 4, 1, 131, 131, false, 2, true)),
    CASE("PortSVlan miss", Tarv__IsOamEnabledOnPortSVlan(4, 1, 130), plain::meps(0, 4, 1, 130, 130, false, 2, true)),
    CASE("PortVfi hit", Tarv__IsOamEnabledOnPortVfi(4, 1, 129), plain::meps(0, 4, 1, 129, 129, false, 5, true)),
    CASE("PortVfi miss", Tarv__IsOamEnabledOnPortVfi(4, 1, 131), plain::meps(0, 4, 1, 131, 131, false, 5, true)),
    CASE("CVlanPort hit", Tarv__IsOamEnabledOnCVlanPort(4, 1, 130), plain::meps(0, 4, 1, 130, 130, false, 1, true)),
    CASE("CVlanPort miss", Tarv__IsOamEnabledOnCVlanPort(5, 1, 999),
         plain::meps(0, 5, 1, 999, 999, false, 1, true) + plain::mips(5, 1, 999, 999, 1, true)),
    CASE("SVlan hit", Tarv__IsOamEnabledOnSVlan(131), plain::component(2, 131)),
    CASE("SVlan miss", Tarv__IsOamEnabledOnSVlan(999), plain::component(2, 999)),
    CASE("Vfi hit", Tarv__IsOamEnabledOnVfi(129), plain::component(5, 129)),
    CASE("Vfi miss", Tarv__IsOamEnabledOnVfi(999), plain::component(5, 999)),
    CASE("CVlan hit", Tarv__IsOamEnabledOnCVlan(130), plain::component(1, 130)),
    CASE("CVlan miss", Tarv__IsOamEnabledOnCVlan(999), plain::component(1, 999)),
    CASE("CheckTagging hit", Tarv__CheckTagging(4, 1, 131, 0), plain::tagging_conflict(4, 1, 131)),
    CASE("CheckTagging miss", Tarv__CheckTagging(4, 1, 130, 0), plain::tagging_conflict(4, 1, 130)),
    CASE("FindMep hit", Tarv__FindMepOnPort(4, 1, 131, 131), plain::meps(0, 4, 1, 131, 131, false, 5, false, true)),
    CASE("FindMep miss", Tarv__FindMepOnPort(4, 1, 129, 129), plain::meps(0, 4, 1, 129, 129, false, 5, false, true)),
    CASE("FindAllMep hit", Tarv__FindAllMepOnPort(4, 1, 131, 131, 100, 130),
         plain::meps(0, 4, 1, 131, 131, false, 5, false, true)),
    CASE("FindAllMep miss", Tarv__FindAllMepOnPort(4, 1, 129, 129, 100, 128),
         plain::meps(0, 4, 1, 129, 129, false, 5, false, true)),
    CASE("FindMip hit", Tarv__FindMipOnPort(5, 1, 130, 130), plain::mips(5, 1, 130, 130, 5, false)),
    CASE("FindMip miss", Tarv__FindMipOnPort(5, 1, 129, 129), plain::mips(5, 1, 129, 129, 5, false)),
    CASE("FindAllMip hit", Tarv__FindAllMipOnPort(5, 1, 130, 130, 100, 129), plain::mips(5, 1, 130, 130, 5, false)),
    CASE("FindAllMip miss", Tarv__FindAllMipOnPort(5, 1, 129, 129, 100, 128), plain::mips(5, 1, 129, 129, 5, false)),
    CASE("FindDownMep hit", find_down(130), plain::meps(0, 4, 1, 130, 130, true, 1, true)),
    CASE("FindDownMep miss", find_down(131), plain::meps(0, 4, 1, 131, 131, true, 1, true)),
    CASE("DoesMipExist hit", Tarv__DoesMipExistOnCVlanPort(5, 1, 130, &g_moid, g_record),
         plain::mips(5, 1, 130, 130, 1, true)),
    CASE("DoesMipExist miss", Tarv__DoesMipExistOnCVlanPort(5, 1, 131, &g_moid, g_record),
         plain::mips(5, 1, 131, 131, 1, true)),
    CASE("VidTranslation hit", Tarv__IsVidTranslationUsedByOam(4, 1, 131),
         plain::meps(0, 4, 1, 131, 131, false, 2, true)),
    CASE("VidTranslation miss", Tarv__IsVidTranslationUsedByOam(5, 1, 999),
         plain::meps(0, 5, 1, 999, 999, false, 2, true) + plain::mips(5, 1, 999, 999, 2, true)),
    CASE("CVidRegistration hit", Tarv__IsCVidRegistrationsUsedByOam(4, 1, 130, 0, 0, 0, 0),
         plain::meps(0, 4, 1, 130, 130, true, 1, true)),
    CASE("CVidRegistration miss", Tarv__IsCVidRegistrationsUsedByOam(5, 1, 999, 0, 0, 0, 0),
         plain::meps(0, 5, 1, 999, 999, true, 1, true) + plain::meps(0, 5, 1, 999, 999, false, 1, true) +
             plain::mips(5, 1, 999, 999, 1, true)),
    CASE("LagOpt hit", Tarv__IsOamEnabledOnLagOpt(7, &g_period), plain::lag(7, &g_period)),
    CASE("LagOpt miss", Tarv__IsOamEnabledOnLagOpt(8, &g_period), plain::lag(8, &g_period)),
    CASE("MepResources 32", Tarv__MepResourcesAvailableOnSlot(4, 1), plain::slot_through_exported_calls(4, 1)),
};

void register_all() {
    for (const Case& c : kCases) {
        for (const bool library : {true, false}) {
            const std::string name = std::string(c.name) + (library ? "/library" : "/baseline");
            const auto run = library ? c.library : c.baseline;
            benchmark::RegisterBenchmark(name.c_str(), [run](benchmark::State& s) {
                region();
                for (auto _ : s) {
                    benchmark::DoNotOptimize(run());
                    benchmark::ClobberMemory();
                }
            });
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return tarv::bench::run_with_ratios(argc, argv, "usage query");
}
