// MEP and MIP finders on a port: the range finders (0 when found) and the
// finders that hand a point out.
#include "usage_fixture.h"

namespace tarv::testing {
namespace {

constexpr std::uint32_t kC = macomp::kCVlan, kVfi = macomp::kVfi;

class Finders : public UsageTest {
protected:
    void SetUp() override {
        UsageTest::SetUp();
        // Components: MA 1/1 C-tagged; MA 1/2 VFI; MA 1/3 VFI-based first, C-tagged second; MA 1/4 of VLAN 0;
        // a stale one of MA 0/0.
        components({{573, 1, 1, 1, 0, 0, 10, kC}, {573, 1, 2, 2, 0, 0, 20, kVfi}, {573, 1, 3, 3, 0, 0, 30, kVfi},
                    {573, 1, 3, 4, 0, 0, 31, kC}, {573, 1, 4, 5, 0, 0, 0, kC}, {0, 0, 0, 0, 0, 0, 10, kC}});
        // MEPs: VFI-based on 1/5, without component on 1/6, stale yet with a VLAN on 1/7, of VLAN 0 on 1/8; on
        // 1/4 for C-VLAN 10 Down MEPs in slots 0 and 5, then an Up MEP, a stale one and one of no direction.
        meps({{532, 1, 1, 1, 1, 4, 10}, {532, 1, 2, 2, 1, 5, 20}, {532, 1, 9, 3, 1, 6, 40}, {0, 0, 0, 0, 1, 7, 50},
              {532, 1, 1, 5, 1, 8, 0}, {532, 1, 1, 6, 1, 4, 10}, {532, 1, 1, 7, 1, 4, 10, mep::kUp},
              {0, 0, 0, 0, 1, 4, 10}, {532, 1, 1, 9, 1, 4, 10, 0}});
        // MIPs: of MA 1/3 on 1/9; on 1/10 a stale one of MA 0/0, then a live one; of MA 1/4 on 1/11.
        mips({{575, 1, 3, 1, 1, 9}, {0, 0, 0, 0, 1, 10}, {575, 1, 1, 2, 1, 10}, {575, 1, 4, 3, 1, 11}});
        mips({{575, 1, 1, 32, 1, 12}}, 31);  // of MA 1/1 on 1/12, in the last slot
    }
};
using RangeFinders = Calls<Finders>;
TEST_P(RangeFinders, AnswersAndTraces) { check(GetParam()); }

const std::string kNoVfiParent = "1/0 Tarv__IsEndpointVfi: MEP exists without it's parent MAComp\n";
const std::vector<Call> kRanges = {
    CALL(Tarv__FindMepOnPort, (1, 4, 10, 10), 0, "vlan: 10 is in use by a MEP"),
    CALL(Tarv__FindMepOnPort, (1, 4, 11, 4094), 1),
    CALL(Tarv__FindMepOnPort, (1, 4, 1, 9), 1),
    CALL(Tarv__FindMepOnPort, (1, 4, 15, 5), 1),
    CALL(Tarv__FindMepOnPort, (1, 5, 1, 4094), 1),
    CALL(Tarv__FindMepOnPort, (1, 6, 40, 40), 0, kNoVfiParent, "vlan: 40 is in use by a MEP"),
    CALL(Tarv__FindMepOnPort, (1, 7, 50, 50), 0, kNoVfiParent, "vlan: 50 is in use by a MEP"),
    CALL(Tarv__FindMepOnPort, (1, 8, 0, 4094), 1),
    CALL(Tarv__FindAllMepOnPort, (1, 4, 1, 100, 10, 50), 1),
    CALL(Tarv__FindAllMepOnPort, (1, 4, 1, 100, 1, 10), 1),
    CALL(Tarv__FindAllMepOnPort, (1, 4, 1, 100, 11, 50), 0, "vlan(with mep): 10 is not in the new vlan span"),
    CALL(Tarv__FindAllMepOnPort, (1, 4, 1, 100, 1, 9), 0, "vlan(with mep): 10 is not in the new vlan span"),
    CALL(Tarv__FindAllMepOnPort, (1, 4, 11, 100, 50, 60), 1),
    CALL(Tarv__FindMipOnPort, (1, 9, 25, 35), 0, "vlan: 31 is in use by a MIP"),
    CALL(Tarv__FindMipOnPort, (1, 9, 25, 30), 1),
    CALL(Tarv__FindMipOnPort, (1, 11, 0, 10), 1),
    CALL(Tarv__FindMipOnPort, (1, 12, 10, 10), 0, "vlan: 10 is in use by a MIP"),
    CALL(Tarv__FindAllMipOnPort, (1, 9, 25, 35, 31, 40), 1),
    CALL(Tarv__FindAllMipOnPort, (1, 9, 25, 35, 32, 40), 0, "vlan: 31 is in use by a MIP"),
};
INSTANTIATE_TEST_SUITE_P(Usage, RangeFinders, ::testing::ValuesIn(kRanges));

// Finders that hand a point out: the result, the index, and the caller's MOID
// and record buffers, written only on a hit and never past their sizes (each
// ends at a guard page).
struct HandOut {
    bool mip;  // Tarv__DoesMipExistOnCVlanPort, else the Down MEP walk
    std::int32_t port, vid, start;
    std::uint32_t result;
    std::int32_t slot;  // point handed out; for the walk also the index afterwards
    const char* trace;
};
void PrintTo(const HandOut& h, std::ostream* os) { *os << (h.mip ? "mip " : "mep ") << h.port << " " << h.start; }

class HandOutFinders : public Finders, public ::testing::WithParamInterface<HandOut> {};

TEST_P(HandOutFinders, WriteOnlyOnAHit) {
    const HandOut& h = GetParam();
    const auto moid = guarded(14), record = guarded(h.mip ? 14 : 48);
    std::int32_t index = h.start;
    auto* m = reinterpret_cast<TARV_MOID*>(moid->data());
    fake().traces.clear();

    EXPECT_EQ(h.mip ? Tarv__DoesMipExistOnCVlanPort(1, h.port, h.vid, m, record->data())
                    : Tarv__FindDownMepFromSomeWhereOnCVlanPort(1, h.port, h.vid, &index, m, record->data()),
              h.result);

    const char* function = h.mip ? "Tarv__DoesMipExistOnCVlanPort" : "Tarv__FindDownMepFromSomeWhereOnCVlanPort";
    EXPECT_EQ(traced(true), *h.trace ? std::vector{d5(function, h.trace)} : std::vector<std::string>{});
    const auto hand_out = [&](const GuardedBytes& out, Table from) {
        const auto slot = static_cast<std::uint32_t>(h.slot);
        EXPECT_EQ(contents(out), h.result ? bytes_of(from, slot) : Bytes(out.size(), 0xEE));
    };
    hand_out(*moid, h.mip ? Table::MipMoidArray : Table::MepMoidArray);
    hand_out(*record, h.mip ? Table::MipDataArray : Table::MepDataArray);
    EXPECT_EQ(index, h.mip ? h.start : h.slot);
}

const std::vector<HandOut> kHandOuts = {
    {false, 4, 10, 0, 1, 0, "Cvlan 10 is in use by OAM on S/P 1/4"},
    {false, 4, 10, 1, 1, 5, "Cvlan 10 is in use by OAM on S/P 1/4"},
    {false, 4, 10, 5, 1, 5, "Cvlan 10 is in use by OAM on S/P 1/4"},
    {false, 4, 10, 6, 0, 6, "Cvlan 10 is not in use by OAM on S/P 1/4"},
    {false, 4, 10, 31, 0, 31, "Cvlan 10 is not in use by OAM on S/P 1/4"},
    {false, 4, 10, 32, 0, 32, ""},
    {false, 4, 10, -1, 0, -1, ""},
    {true, 10, 10, 0, 1, 2, "Cvlan 10 is in use by OAM on S/P 1/10"},
    {true, 9, 31, 0, 1, 0, "Cvlan 31 is in use by OAM on S/P 1/9"},
    {true, 9, 30, 0, 0, 0, "Cvlan 30 is not in use by OAM on S/P 1/9"},
};
INSTANTIATE_TEST_SUITE_P(Usage, HandOutFinders, ::testing::ValuesIn(kHandOuts));

}  // namespace
}  // namespace tarv::testing
