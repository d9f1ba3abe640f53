// Fuzzes the OAM usage queries, the finders on a port and the LAG and slot
// resource checks on arbitrary region contents, arguments and platform
// answers.
//
// The MEP, MIP, MA component and MaNet tables are filled from the input
// (fuzz_support.h), then the platform's answers (fuzz::set_platform: LAG
// member lists of any count), then each operation is read from the rest:
//   op:u8 % 22, then its arguments, each an Input::number (any
//   32-bit value, negative ones included), a MOID as fuzz::read_key reads it
//   and a flag as a u8.
// Every query must answer one of its two values; presence on a port and the
// switch-wide queries are checked against their rule written out here; the
// finders' buffers end at guard pages, stay untouched when nothing is found
// and hold the found point's MOID and record otherwise. The slot check may
// run with the controller removing a MEP while the port library is asked
// for a LAG's members.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fields.h"
#include "fuzz_support.h"

namespace {

using namespace tarv;
using tarv::fuzz::Input;

constexpr char kTarget[] = "usage";

constexpr Table kTables[] = {
    Table::MepMoidArray,    Table::MepDataArray,    Table::MipMoidArray,   Table::MipDataArray,
    Table::MACompMoidArray, Table::MACompDataArray, Table::MaNetMoidArray, Table::MaNetDataArray,
};

void expect_flag(std::uint32_t answer, const char* function) {
    if (answer > 1) fuzz::fail(kTarget, function);
}

// Whether a MEP or MIP sits on (slot, port), live by its key (any_key) or
// by the class of its MOID.
bool point_on_port(const std::uint8_t* region, std::int32_t slot, std::int32_t port, bool any_key) {
    struct Kind {
        Table keys, data;
        std::uint16_t w_class;
        std::uint32_t at_slot;
    };
    constexpr Kind kinds[] = {{Table::MepMoidArray, Table::MepDataArray, TARV_CLASS_MEP, 46},
                              {Table::MipMoidArray, Table::MipDataArray, TARV_CLASS_MIP, 12}};
    for (const Kind& k : kinds)
        for (std::uint32_t i = 0; i < 32; ++i) {
            const std::uint8_t* key = entry(region, k.keys, i);
            const std::uint8_t* record = entry(region, k.data, i);
            const bool live = any_key ? !key_empty(key, TARV_MOID_SIZE) : load_le<std::uint16_t>(key) == k.w_class;
            if (live && record[k.at_slot] == slot && record[k.at_slot + 1] == port) return true;
        }
    return false;
}

void presence(const std::uint8_t* region, std::uint8_t which, Input& in) {
    const std::int32_t slot = in.signed_number();
    const std::int32_t port = in.signed_number();
    std::uint32_t answer = 0;
    switch (which % 3) {
        case 0: answer = CALL(Tarv__IsOamEnabledOnPort, (slot, port)); break;
        case 1: answer = CALL(Tarv__IsOamEnabledOnPortOpt, (slot, port)); break;
        default: answer = CALL(Tarv__IsMPEnabledOnPort, (slot, port)); break;
    }
    if (answer != (point_on_port(region, slot, port, which % 3 == 0) ? 1u : 0u))
        fuzz::fail(kTarget, "presence on a port: wrong answer");
}

void switch_wide(const std::uint8_t* region, std::uint8_t which, Input& in) {
    const std::int32_t id = in.signed_number();
    const std::uint32_t tagging[] = {macomp::kSVlan, macomp::kVfi, macomp::kCVlan};
    std::uint32_t answer = 0;
    switch (which % 3) {
        case 0: answer = CALL(Tarv__IsOamEnabledOnSVlan, (id)); break;
        case 1: answer = CALL(Tarv__IsOamEnabledOnVfi, (id)); break;
        default: answer = CALL(Tarv__IsOamEnabledOnCVlan, (id)); break;
    }
    std::uint32_t expected = 0;
    for (std::uint32_t j = 0; j < 32; ++j) {
        const std::uint8_t* c = entry(region, Table::MACompDataArray, j);
        if (!key_empty(entry(region, Table::MACompMoidArray, j), TARV_MOID_SIZE) &&
            get(c, macomp::eTagging) == tagging[which % 3] && get(c, macomp::wVid) == id)
            expected = 1;
    }
    if (answer != expected) fuzz::fail(kTarget, "switch-wide query: wrong answer");
}

void vlan_on_port(std::uint8_t which, Input& in) {
    const std::int32_t slot = in.signed_number();
    const std::int32_t port = in.signed_number();
    const std::int32_t vid = in.signed_number();
    switch (which % 6) {
        case 0: expect_flag(CALL(Tarv__IsOamEnabledOnMIPPortSVlan, (slot, port, vid)), "MIP S-VLAN"); break;
        case 1: expect_flag(CALL(Tarv__IsOamEnabledOnPortSVlan, (slot, port, vid)), "port S-VLAN"); break;
        case 2: expect_flag(CALL(Tarv__IsOamEnabledOnPortVfi, (slot, port, vid)), "port VFI"); break;
        case 3: expect_flag(CALL(Tarv__IsOamEnabledOnCVlanPort, (slot, port, vid)), "C-VLAN port"); break;
        case 4:
            expect_flag(static_cast<std::uint32_t>(CALL(Tarv__IsVidTranslationUsedByOam, (slot, port, vid))), "translation");
            break;
        default: {
            const std::int32_t svid = in.signed_number();
            const std::uint8_t flag = in.u8();
            expect_flag(CALL(Tarv__IsCVidRegistrationsUsedByOam, (slot, port, vid, svid, 0, 0, flag)), "registration");
        }
    }
}

void mep_on_port(const std::uint8_t* region, Input& in) {
    const std::int32_t slot = in.signed_number();
    const std::int32_t port = in.signed_number();
    const TARV_MOID moid = fuzz::read_key<TARV_MOID>(region, Table::MepMoidArray, in);
    expect_flag(CALL(Tarv__IsOamEnabledForMepOnPort, (slot, port, moid)), "Tarv__IsOamEnabledForMepOnPort");
}

void check_tagging(Input& in) {
    const std::uint32_t slot = in.number();
    const std::uint32_t port = in.number();
    const std::uint32_t vid = in.number();
    const std::uint32_t mode = in.number();
    const std::uint32_t answer = CALL(Tarv__CheckTagging, (slot, port, vid, mode));
    if (answer != 0 && (answer != TARV_TAGGING_CONFLICT || vid == 0 || mode != 0))
        fuzz::fail(kTarget, "Tarv__CheckTagging: wrong answer");
}

void range_finder(std::uint8_t which, Input& in) {
    const std::int32_t slot = in.signed_number();
    const std::int32_t port = in.signed_number();
    const std::uint32_t low = in.number();
    const std::uint32_t high = in.number();
    std::uint32_t answer = 0;
    bool nothing_to_find = low > high;
    switch (which % 4) {
        case 0: answer = CALL(Tarv__FindMepOnPort, (slot, port, low, high)); break;
        case 1: answer = CALL(Tarv__FindMipOnPort, (slot, port, low, high)); break;
        default: {
            const auto new_low = static_cast<std::uint16_t>(in.number());
            const auto new_high = static_cast<std::uint16_t>(in.number());
            nothing_to_find = nothing_to_find || (new_low <= low && high <= new_high);
            answer = which % 4 == 2 ? CALL(Tarv__FindAllMepOnPort, (slot, port, low, high, new_low, new_high))
                                    : CALL(Tarv__FindAllMipOnPort, (slot, port, low, high, new_low, new_high));
        }
    }
    expect_flag(answer, "range finder");
    if (nothing_to_find && answer != 1) fuzz::fail(kTarget, "range finder: found a VLAN in an empty range");
}

// A finder's hit: the point's MOID and record copied from one slot of its
// tables; a miss: both buffers untouched.
void check_handed_out(const std::uint8_t* region, Table keys, Table data, std::uint32_t answer, std::uint32_t slot,
                      const std::uint8_t* moid, const std::uint8_t* record) {
    const std::uint32_t size = info(data).entry;
    if (answer == 0) {
        if (!fuzz::untouched(moid, TARV_MOID_SIZE) || !fuzz::untouched(record, size))
            fuzz::fail(kTarget, "a finder wrote its buffers without a hit");
        return;
    }
    if (answer != 1 || slot >= 32 || std::memcmp(moid, entry(region, keys, slot), TARV_MOID_SIZE) != 0 ||
        std::memcmp(record, entry(region, data, slot), size) != 0)
        fuzz::fail(kTarget, "a finder handed out the wrong point");
}

void find_down_mep(const std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded index_buffer(4), moid_buffer(TARV_MOID_SIZE), record_buffer(TARV_MEP_RECORD_SIZE);
    const std::int32_t slot = in.signed_number();
    const std::int32_t port = in.signed_number();
    const std::int32_t cvid = in.signed_number();
    const std::int32_t start = in.signed_number();
    auto* index = reinterpret_cast<std::int32_t*>(index_buffer.take(4));
    *index = start;
    std::uint8_t* moid = moid_buffer.take(TARV_MOID_SIZE);
    std::uint8_t* record = record_buffer.take(TARV_MEP_RECORD_SIZE);
    const std::uint32_t answer = CALL(Tarv__FindDownMepFromSomeWhereOnCVlanPort, (
        slot, port, cvid, index, reinterpret_cast<TARV_MOID*>(moid), record));
    if (answer == 0 ? *index != start : *index < start)
        fuzz::fail(kTarget, "Tarv__FindDownMepFromSomeWhereOnCVlanPort: wrong index");
    if ((start < 0 || start > 31) && answer != 0)
        fuzz::fail(kTarget, "Tarv__FindDownMepFromSomeWhereOnCVlanPort: found from outside the table");
    check_handed_out(region, Table::MepMoidArray, Table::MepDataArray, answer, static_cast<std::uint32_t>(*index),
                     moid, record);
}

void mip_on_cvlan(const std::uint8_t* region, Input& in) {
    static thread_local fuzz::Guarded moid_buffer(TARV_MOID_SIZE), record_buffer(TARV_MIP_RECORD_SIZE);
    const std::int32_t slot = in.signed_number();
    const std::int32_t port = in.signed_number();
    const std::int32_t cvid = in.signed_number();
    std::uint8_t* moid = moid_buffer.take(TARV_MOID_SIZE);
    std::uint8_t* record = record_buffer.take(TARV_MIP_RECORD_SIZE);
    const std::uint32_t answer =
        CALL(Tarv__DoesMipExistOnCVlanPort, (slot, port, cvid, reinterpret_cast<TARV_MOID*>(moid), record));
    // Of two slots with the same MOID, either may have been handed out.
    std::uint32_t found = 0;
    while (found < 32 && answer != 0 &&
           (std::memcmp(entry(region, Table::MipMoidArray, found), moid, TARV_MOID_SIZE) != 0 ||
            std::memcmp(entry(region, Table::MipDataArray, found), record, TARV_MIP_RECORD_SIZE) != 0))
        ++found;
    check_handed_out(region, Table::MipMoidArray, Table::MipDataArray, answer, found, moid, record);
}

void lag(Input& in) {
    static thread_local fuzz::Guarded period(4);
    const std::int32_t lag_id = in.signed_number();
    std::uint8_t* out = period.take(4);
    const std::uint32_t answer = CALL(Tarv__IsOamEnabledOnLagOpt, (lag_id, reinterpret_cast<std::uint32_t*>(out)));
    expect_flag(answer, "Tarv__IsOamEnabledOnLagOpt");
    if (answer == 0 && !fuzz::untouched(out, 4)) fuzz::fail(kTarget, "Tarv__IsOamEnabledOnLagOpt: wrote a period");
}

// The slot check; with flag bit 0 set the controller empties MEP slot u8 % 32
// (key and record) at the first LAG member request.
void resources(std::uint8_t* region, Input& in) {
    const std::uint32_t slot = in.number();
    const std::int32_t period = in.signed_number();
    const std::uint8_t flag = in.u8();
    const std::uint32_t removed = in.u8() % 32u;
    if ((flag & 1u) != 0)
        testing::fake().on_lag_request = [region, removed](std::uint32_t) {
            std::memset(entry(region, Table::MepMoidArray, removed), 0, TARV_MOID_SIZE);
            std::memset(entry(region, Table::MepDataArray, removed), 0, TARV_MEP_RECORD_SIZE);
        };
    const std::int32_t answer = CALL(Tarv__MepResourcesAvailableOnSlot, (slot, period));
    testing::fake().on_lag_request = nullptr;
    expect_flag(static_cast<std::uint32_t>(answer), "Tarv__MepResourcesAvailableOnSlot");
}

bool prepare(Input& in, std::uint8_t*& region) {
    region = fuzz::attached_region(/*read_write=*/false);
    fuzz::fill_region(region, kTables, in);
    fuzz::set_platform(in);
    return true;
}

// The operations that share a decoding, by their variant number.
template <void (*F)(const std::uint8_t*, std::uint8_t, Input&), std::uint8_t which>
void with_region(std::uint8_t* region, Input& in) {
    F(region, which, in);
}
template <void (*F)(std::uint8_t, Input&), std::uint8_t which>
void with_variant(std::uint8_t*, Input& in) {
    F(which, in);
}

constexpr fuzz::Op kOps[] = {
    {with_region<presence, 0>},        {with_region<presence, 1>},        {with_region<presence, 2>},
    {[](std::uint8_t* r, Input& in) { mep_on_port(r, in); }},
    {with_variant<vlan_on_port, 0>}, {with_variant<vlan_on_port, 1>}, {with_variant<vlan_on_port, 2>},
    {with_variant<vlan_on_port, 3>}, {with_variant<vlan_on_port, 4>}, {with_variant<vlan_on_port, 5>},
    {with_region<switch_wide, 0>},     {with_region<switch_wide, 1>},     {with_region<switch_wide, 2>},
    {[](std::uint8_t*, Input& in) { check_tagging(in); }},
    {with_variant<range_finder, 0>}, {with_variant<range_finder, 1>}, {with_variant<range_finder, 2>},
    {with_variant<range_finder, 3>},
    {[](std::uint8_t* r, Input& in) { find_down_mep(r, in); }},
    {[](std::uint8_t* r, Input& in) { mip_on_cvlan(r, in); }},
    {[](std::uint8_t*, Input& in) { lag(in); }},
    {resources, fuzz::kWrites},  // empties a MEP slot meanwhile
};

}  // namespace

const tarv::fuzz::Target tarv::fuzz::usage_target{kTarget, prepare, kOps, {}};
TARV_FUZZ_ENTRY(usage_target)
