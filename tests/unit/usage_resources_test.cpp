// LAG and slot resource checks.
#include <array>

#include "resources.h"
#include "usage_fixture.h"

namespace tarv::testing {
namespace {

// A LAG member list as the port library fills it: the count, then (slot,
// port) pairs.
std::array<std::uint8_t, 20> lag_list(std::uint8_t count, std::vector<std::uint8_t> pairs) {
    std::array<std::uint8_t, 20> list{count};
    std::copy(pairs.begin(), pairs.end(), list.begin() + 1);
    return list;
}
const std::string kNoMaNet =
    "1/3 Tarv__ReadMANet: Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: Class 574 Md 1 MaNet ";

// Tarv__IsOamEnabledOnLagOpt: the first point on the LAG gives the period.
// lag_opt answers the result in its high half, the period it leaves (from
// 0xDEADBEEF) in its low half.
std::int64_t lag_opt(std::int32_t lag) {
    std::uint32_t period = 0xDEADBEEF;
    return std::int64_t{Tarv__IsOamEnabledOnLagOpt(lag, &period)} << 32 | period;
}
class Lags : public UsageTest {
protected:
    void SetUp() override {
        UsageTest::SetUp();
        // MaNets: 1/1 and 1/2; one with every byte of its ids set; 1/5 twice, at slot 3 and at its hint slot 4.
        manet(0, 1, 1, 2), manet(1, 1, 2, 1), manet(2, 0x0A0B0C0D, 0x01020304, 2), manet(3, 1, 5, 1);
        manet(4, 1, 5, 2);
        // MEPs on LAG 5; on LAG 7 without MaNet; of class 0 on LAG 8; on LAG 9 before a MIP of another MA; on
        // physical slot 5 port 10; on LAGs 11 and 12. MIPs on LAG 6 and 9.
        meps({{532, 1, 1, 1, 2, 5}, {532, 1, 7, 2, 2, 7}, {0, 1, 1, 3, 2, 8}, {532, 1, 2, 4, 2, 9},
              {532, 1, 1, 5, 5, 10}, {532, 0x0A0B0C0D, 0x01020304, 6, 2, 11}, {532, 1, 5, 7, 2, 12}});
        mips({{575, 1, 2, 1, 2, 6}, {575, 1, 1, 2, 2, 9}});
    }
};
using LagCalls = Calls<Lags>;
TEST_P(LagCalls, FirstPointGivesThePeriod) { check(GetParam()); }

std::string lag(const std::string& text) { return d5("Tarv__IsOamEnabledOnLagOpt", text); }
const std::vector<Call> kLags = {
    CALL(lag_opt, (5), 0x1'00000002, lag("OAM is enabled on Lag, CCM Period = 2\n")),
    CALL(lag_opt, (6), 0x1'00000001, lag("OAM is enabled on Lag, CCM Period = 1\n")),
    CALL(lag_opt, (9), 0x1'00000001, lag("OAM is enabled on Lag, CCM Period = 1\n")),
    CALL(lag_opt, (7), 0x1'00000000, kNoMaNet + "7", lag("OAM is enabled on Lag, CCM Period = 0\n")),
    CALL(lag_opt, (8), 0xDEADBEEF, lag("OAM is NOT enabled on Lag 8\n")),
    CALL(lag_opt, (10), 0xDEADBEEF, lag("OAM is NOT enabled on Lag 10\n")),
    CALL(lag_opt, (11), 0x1'00000002, lag("OAM is enabled on Lag, CCM Period = 2\n")),
    CALL(lag_opt, (12), 0x1'00000002, lag("OAM is enabled on Lag, CCM Period = 2\n")),
};
INSTANTIATE_TEST_SUITE_P(Usage, LagCalls, ::testing::ValuesIn(kLags));

// Tarv__MepResourcesAvailableOnSlot walks the region as it changes between two
// iterator steps, reads a LAG MEP's MaNet before asking for its members, and
// reads MaNets only for the MEPs that load the slot (MIPs load none).
TEST_F(UsageTest, SlotCheckWalksTheRegionAsItChanges) {
    // No MaNet anywhere. MEPs on LAG 5, on slot 4 (removed while LAG 5 is asked for), on slot 6, stale.
    meps({{532, 1, 5, 1, 2, 5}}), meps({{532, 1, 6, 4, 4, 1}}, 3), meps({{532, 1, 7, 8, 6, 1}}, 7);
    meps({{0, 0, 0, 0, 4, 1}}, 10), mips({{575, 1, 8, 1, 2, 7}});
    std::vector<std::string> before_members;
    fake().on_lag_request = [&](std::uint32_t) {
        before_members = traced(true);
        std::memset(at(Table::MepMoidArray, 3), 0, 14);
        meps({{532, 1, 9, 6, 4, 2}}, 5);
    };

    EXPECT_EQ(Tarv__MepResourcesAvailableOnSlot(4, 2), 1);

    EXPECT_EQ(fake().lag_requests, std::vector<std::uint32_t>{5});
    EXPECT_EQ(before_members, std::vector{kNoMaNet + "5"});
    EXPECT_EQ(traced(true), (std::vector{kNoMaNet + "5", kNoMaNet + "9"}));
}

// A walk as the controller's rewrites can make it: the MEP slots handed out
// in order, revisits included (a walk whose previous MOID vanished starts
// again at slot 0). With `vanish`, the last MEP's key changes after the step
// that names it and before its read.
struct ScriptedMeps {
    std::uint8_t* region;
    std::vector<std::uint32_t> slots;
    bool vanish;
    mutable std::size_t step = 0;

    const std::uint8_t* next(const std::uint8_t* prev) const {
        step = prev == nullptr ? 0 : step + 1;
        return step < slots.size() ? entry(region, Table::MepMoidArray, slots[step]) : nullptr;
    }
    bool read(const MoidValue& moid, std::uint8_t* record) const {
        std::uint8_t* id = entry(region, Table::MepMoidArray, slots[step]) + moid::kId3Offset;
        if (vanish && step + 1 == slots.size()) store_le<std::uint32_t>(id, load_le<std::uint32_t>(id) + 1);
        return resources::RegionMeps{region}.read(moid, record);
    }
};

constexpr std::uint32_t kNone = 32;
struct Load {
    std::uint32_t slot;     // asked about
    std::uint32_t mep;      // MEP slot of the MEP under test, kNone for none
    std::int32_t period;    // of the new MEP
    std::uint32_t units;    // the MEP under test puts on the slot
    bool vanish = false;    // it is removed between the step and the read
    std::uint32_t more = 0;  // units the walk carries beyond the limit
};
void PrintTo(const Load& l, std::ostream* os) { *os << "slot " << l.slot << " MEP " << l.mep; }

class SlotLoad : public UsageTest, public ::testing::WithParamInterface<Load> {
protected:
    void SetUp() override {
        UsageTest::SetUp();
        manet(0, 1, 1, 2);
        manet(1, 1, 2, 1);
        manet(2, 1, 3, 3);
        // The load already there, 3 and 1 units per visit: on slots 2 and 4
        // through LAGs 30 and 31, on slot 0 directly.
        // The load already there, 3 and 1 units per visit: MEPs 0 and 1 on slots 2 and 4 through LAGs 30 and
        // 31, MEPs 11 and 12 on slot 0. MEPs under test: on slot 4 with a heavy MA, with period 3, without
        // MaNet; on LAGs 5 to 9; on slot 6.
        meps({{532, 1, 1, 1, 2, 30}, {532, 1, 2, 2, 2, 31}, {532, 1, 1, 3, 4, 3}, {532, 1, 3, 4, 4, 4},
              {532, 1, 9, 5, 4, 5}, {532, 1, 1, 6, 2, 5}, {532, 1, 1, 7, 2, 6}, {532, 1, 2, 8, 2, 7},
              {532, 1, 2, 9, 2, 8}, {532, 1, 2, 10, 2, 9}, {532, 1, 1, 11, 6, 1}, {532, 1, 1, 12, 0, 1},
              {532, 1, 2, 13, 0, 2}});
        auto& lags = fake().lag_lists;
        lags[30] = lags[31] = lag_list(2, {2, 1, 4, 1});
        lags[5] = lag_list(9, {4, 1, 4, 2, 4, 3, 4, 4, 4, 5, 4, 6, 4, 7, 4, 8, 4, 9});
        lags[6] = lag_list(3, {4, 1, 6, 1, 4, 2});
        lags[7] = lag_list(3, {4, 0, 0, 1, 4, 3});
        lags[8] = lag_list(0, {4, 1});
        lags[9] = lag_list(200, {4, 1, 4, 2, 4, 3, 4, 4, 4, 5, 4, 6, 4, 7, 4, 8, 4, 9});
    }

    // The check over a walk that carries `base` units on the slot (ending
    // with a heavy MEP, whose MaNet and record a careless check would reuse)
    // and then visits the MEP under test.
    std::int32_t check_with(const Load& l, std::uint32_t base) {
        std::vector<std::uint32_t> slots(base % 3, l.slot == 0 ? 12 : 1);
        slots.insert(slots.end(), base / 3, l.slot == 0 ? 11 : 0);
        if (l.mep != kNone) slots.push_back(l.mep);
        return resources::slot_takes_mep(pSharedData, l.slot, l.period, ScriptedMeps{pSharedData, slots, l.vanish});
    }
};

// A sum of exactly 1000 units with the new MEP is accepted, 1001 refused.
TEST_P(SlotLoad, LimitIsAThousandUnits) {
    const Load& l = GetParam();
    const std::uint32_t fits = l.more + 1000 - (l.period == 2 ? 3 : 1) - l.units;
    EXPECT_EQ(check_with(l, fits), 1);
    EXPECT_EQ(check_with(l, fits + 1), 0);
}

const std::vector<Load> kLoads = {
    {4, kNone, 1, 0},  {4, kNone, 2, 0},  // the new MEP alone, of either weight
    {4, 2, 1, 3},      {4, 3, 2, 1},      // MEPs on the slot: heavy, other period
    {4, 4, 1, 1},      {4, 10, 1, 0},     // MaNet missing; a MEP on another slot
    {4, 5, 1, 27},     {2, 5, 1, 0},      // nine LAG members on the slot; LAG 5 is not a physical slot 2
    {4, 6, 1, 6},      {4, 7, 1, 1},      // members on several slots; entries of slot or port 0
    {0, 7, 1, 0},      {4, 8, 1, 0},      // an entry of slot 0 asked for slot 0; count 0
    {4, 9, 1, 9},                         // count 200: the nine entries the list holds
    {4, 2, 1, 0, true},                   // removed between the step and its read
    {4, kNone, 1, 0, false, 65536},       // the sum is taken in 16 bits
};
INSTANTIATE_TEST_SUITE_P(Usage, SlotLoad, ::testing::ValuesIn(kLoads));

}  // namespace
}  // namespace tarv::testing
