// MEP and MaNet reading, and the MEP iterator.
#include <tuple>

#include "region_fixture.h"

namespace tarv::testing {
namespace {

using SlotIds = std::vector<std::pair<std::uint32_t, std::uint32_t>>;  // MEPs (532, 1, 2, id) by slot
constexpr int kNull = -1;

class MepReaderTest : public AttachedTest {
protected:
    // Only these MEPs, each with a record pattern of its slot.
    void put_meps(const SlotIds& meps) {
        std::memset(at(Table::MepMoidArray, 0), 0, info(Table::MepMoidArray).bytes());
        for (auto [slot, id] : meps) {
            put_key(Table::MepMoidArray, slot, key_bytes(532, {1, 2, id}));
            put_pattern(Table::MepDataArray, slot, static_cast<std::uint8_t>(0x40 + slot));
        }
    }
    TARV_MOID* slot_address(int slot) {
        if (slot == kNull) return nullptr;
        return reinterpret_cast<TARV_MOID*>(at(Table::MepMoidArray, static_cast<std::uint32_t>(slot)));
    }
};

SlotIds every_slot() {
    SlotIds v;
    for (std::uint32_t s = 0; s < 32; ++s) v.emplace_back(s, s + 1);
    return v;
}

// The step after a pointer into the table (`from`, kNull for the start) or
// after a copy of MOID (532, 1, 2, copy): the next non-empty slot, forward
// also through duplicate MOIDs. A vanished MOID restarts at slot 0; an
// emptied slot reads as the zero MOID, found at the first empty slot, and the
// walk goes on after that one. A hint outside the table is traced.
TEST_F(MepReaderTest, IteratorStepsToTheNextOccupiedSlot) {
    const SlotIds walk{{17, 18}, {3, 4}}, twice{{3, 4}, {10, 4}, {12, 13}}, spread{{1, 2}, {5, 6}, {9, 10}};
    const SlotIds packed{{0, 1}, {1, 2}, {2, 3}, {5, 6}}, edges{{0, 1}, {31, 32}}, far{{5, 40}, {6, 7}, {8, 33}};
    const std::string zero = "4 Wrong index 65535 from MepId 0";
    constexpr std::uint32_t kNo = 0xFFFFFFFFu;
    // MEPs, from, copy, whether the slot `from` was emptied, the slot returned, the trace.
    const std::tuple<SlotIds, int, std::uint32_t, bool, int, std::string> rows[] = {
        {{}, kNull, kNo, false, kNull, ""},        {walk, kNull, kNo, false, 3, ""},
        {walk, 3, kNo, false, 17, ""},             {walk, 17, kNo, false, kNull, ""},
        {twice, 3, kNo, false, 10, ""},            {twice, 10, kNo, false, 12, ""},
        {twice, kNull, 4, false, 10, ""},          {edges, 31, kNo, false, kNull, ""},
        {{{5, 6}}, kNull, 9, false, 5, ""},        {spread, 5, kNo, true, 1, zero},
        {packed, 2, kNo, true, 5, zero},           {every_slot(), 31, kNo, true, kNull, zero},
        {far, 5, kNo, false, 6, "4 Wrong index 39 from MepId 40"},
        {far, 8, kNo, false, kNull, "4 Wrong index 32 from MepId 33"}, {far, kNull, 0, false, 5, zero},
    };
    for (const auto& [meps, from, copy, emptied, next, trace] : rows) {
        put_meps(meps);
        if (emptied) std::memset(slot_address(from), 0, 14);
        const TARV_MOID moid = make_moid(532, 1, 2, copy);
        fake().traces.clear();
        EXPECT_EQ(Tarv__MEPMoidIterator(copy == kNo ? slot_address(from) : &moid), slot_address(next))
            << "from " << from << " copy " << copy;
        EXPECT_EQ(traced(), trace.empty() ? Lines{} : Lines{trace});
    }
}

// A read finds the MEP outside its hint slot and copies its 48 bytes; the
// zero MOID reads the first empty slot; an unknown MOID is traced and leaves
// the buffer as it was.
TEST_F(MepReaderTest, ReadCopiesTheRecordOfTheMoid) {
    put_meps({{9, 5}, {4, 6}, {0, 1}});
    put_pattern(Table::MepDataArray, 1, 0x77);  // stale record of the first empty slot
    const std::pair<TARV_MOID, std::uint32_t> rows[] = {
        {make_moid(532, 1, 2, 5), 9}, {make_moid(0, 0, 0, 0), 1}, {make_moid(532, 0xFFFFFFFFu, 2, 1), kNotFound}};
    for (const auto& [moid, slot] : rows) {
        const auto out = guarded(48);
        Tarv__ReadMEP(moid, out->data());
        EXPECT_EQ(contents(*out), slot == kNotFound ? Bytes(48, 0xEE) : bytes_of(Table::MepDataArray, slot)) << slot;
    }
    EXPECT_EQ(traced(true), Lines{"1/3 Tarv__ReadMEP: Tarv__ReadMEP() : Unable to read Mep - can't find specified "
                                  "MOID: Class 532 Md -1 MaNet 2 Mep 1"});
}

TEST_F(MepReaderTest, OldMoidIsLookedUpAmongTheOldMoidsOnly) {
    put_meps({{2, 3}, {8, 50}});
    put_key(Table::MepOldMoidArray, 6, key_bytes(532, {1, 2, 3}));
    std::uint16_t index = 0xBEEF;
    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 2, 3), &index), 0);
    EXPECT_EQ(index, 6);

    index = 0xBEEF;
    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 2, 50), &index), -1);
    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 2, 3), nullptr), -1);
    EXPECT_EQ(index, 0xBEEF);
    EXPECT_EQ(traced(), (Lines{"1/3 Unable to read Mep - can't find specified MOID: Class 532 Md 1 MaNet 2 Mep 50",
                                    "1/3 Tarv__GetMepIndexFromOldMoid() : pMepIndex is null\n"}));
}

// A MaNet is found by all ten key bytes at its hint (when inside the table)
// or by the scan; the read copies its 57 bytes or traces and leaves the
// buffer.
TEST_F(MepReaderTest, MaNetIsFoundByItsWholeKey) {
    put_key(Table::MaNetMoidArray, 0, key_bytes(574, {7, 1}));
    put_key(Table::MaNetMoidArray, 127, key_bytes(574, {7, 5}));
    put_pattern(Table::MaNetDataArray, 127, 0x31);
    put_key(Table::MdDataArray, 0, key_bytes(574, {7, 129}));  // where a slot 128 would start
    const auto manet = [](std::uint16_t w_class, std::uint32_t md, std::uint32_t id) {
        return as_key<TARV_MANET_KEY>(key_bytes(w_class, {md, id}));
    };
    EXPECT_EQ(Tarv__DoesMANetExist(manet(574, 7, 1)), 1u);
    EXPECT_EQ(Tarv__DoesMANetExist(manet(574, 7, 5)), 1u);
    EXPECT_EQ(Tarv__DoesMANetExist(manet(573, 7, 1)), 0u);
    EXPECT_EQ(Tarv__DoesMANetExist(manet(0, 0, 0)), 1u);  // the first empty slot
    EXPECT_EQ(Tarv__DoesMANetExist(manet(574, 7, 129)), 0u);
    auto out = guarded(57);
    Tarv__ReadMANet(manet(574, 7, 5), out->data());
    EXPECT_EQ(contents(*out), bytes_of(Table::MaNetDataArray, 127));
    out = guarded(57);
    Tarv__ReadMANet(manet(574, 0xFFFFFFFFu, 6), out->data());
    EXPECT_EQ(contents(*out), Bytes(57, 0xEE));
    EXPECT_EQ(traced(), Lines{"1/3 Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: "
                              "Class 574 Md -1 MaNet 6"});
}

}  // namespace
}  // namespace tarv::testing
