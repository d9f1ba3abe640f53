// Fuzzes the region readers with arbitrary region contents.
//
// The input is spread over the key and data arrays the readers interpret
// (the rest of the region stays zero), then every class is read into an
// output buffer of exactly the documented size and the MEP readers run over
// keys taken from the input. The region and the buffers end at guard pages:
// any read or write outside them faults. Every MEP walk must end within the
// table's 32 slots.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "classes.h"
#include "region.h"
#include "support/fake_platform.h"
#include "support/guard_page.h"
#include "tarv/tarv.h"

namespace {

using tarv::Table;

constexpr Table kFuzzedTables[] = {
    Table::MepMoidArray,       Table::MepOldMoidArray,          Table::MepDataArray,
    Table::MdMoidArray,        Table::PMSessionMoidArray,       Table::Class665MoidArray,
    Table::ThroughputHistoryIdArray, Table::ThroughputHistoryDataArray, Table::Class571MoidArray,
    Table::BandwidthNotificationMoidArray, Table::Class581MoidArray,
};

std::uint8_t* attached_region() {
    static bool attached = false;
    if (!attached) {
        Tarv__Open();
        attached = true;
    }
    return tarv::pSharedData;
}

void spread(std::uint8_t* region, const std::uint8_t* data, std::size_t size) {
    std::size_t at = 0;
    for (Table t : kFuzzedTables) {
        const tarv::TableInfo& ti = tarv::info(t);
        std::uint8_t* dst = region + ti.base;
        std::memset(dst, 0, ti.bytes());
        // Sparse placement: most slots stay empty so that lookups and walks
        // meet both empty and occupied slots.
        for (std::uint32_t slot = 0; slot < ti.slots && at < size; ++slot) {
            const std::uint8_t selector = data[at++];
            if ((selector & 3u) != 0) continue;
            const std::size_t n = size - at < ti.entry ? size - at : ti.entry;
            std::memcpy(dst + std::size_t{slot} * ti.entry, data + at, n);
            at += n;
        }
    }
}

void read_every_class(std::uint32_t count) {
    for (const tarv::ClassInfo& c : tarv::kClasses) {
        std::size_t size = 0;
        switch (c.rule) {
            case tarv::ClassRule::List: size = std::size_t{count == 0 ? 1 : count} * c.transfer_size(); break;
            case tarv::ClassRule::Singleton: size = c.record_size(); break;
            case tarv::ClassRule::History: size = count == 0 ? 509u : 101u * 509u; break;
            case tarv::ClassRule::NoStorage: size = 1; break;
        }
        tarv::testing::GuardedBytes out(size);
        if (Tarv__GetConfig(c.id, out.data(), count) != 0) std::abort();
    }
}

void walk_meps() {
    const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr);
    for (int steps = 0; p != nullptr; ++steps) {
        if (steps > 32) std::abort();  // a walk must end
        tarv::testing::GuardedBytes record(TARV_MEP_RECORD_SIZE);
        Tarv__ReadMEP(*p, record.data());
        p = Tarv__MEPMoidIterator(p);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tarv::testing::fake().set_debug_level(7);
    tarv::testing::fake().set_module_level(7);
    std::uint8_t* region = attached_region();
    spread(region, data, size);

    const std::uint32_t count = size > 0 ? data[0] % 40u : 0u;
    read_every_class(count);
    walk_meps();

    // Keys straight from the input, also as an unaligned previous MOID.
    for (std::size_t at = 0; at + TARV_MOID_SIZE <= size && at < 8 * TARV_MOID_SIZE; at += TARV_MOID_SIZE) {
        TARV_MOID moid;
        std::memcpy(&moid, data + at, sizeof moid);
        std::uint8_t record[TARV_MEP_RECORD_SIZE];
        Tarv__ReadMEP(moid, record);
        std::uint16_t index = 0;
        (void)Tarv__GetMepIndexFromOldMoid(moid, &index);
        (void)Tarv__MEPMoidIterator(reinterpret_cast<const TARV_MOID*>(data + at));
    }
    tarv::testing::fake().traces.clear();
    return 0;
}
