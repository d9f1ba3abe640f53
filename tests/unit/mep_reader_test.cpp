// MEP reading and iteration.
#include "region_fixture.h"

namespace tarv::testing {
namespace {

class MepReaderTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        attach();
    }
    // A MEP with MOID (532, 1, 2, id) in `slot`, with a record pattern.
    TARV_MOID put_mep(std::uint32_t slot, std::uint32_t id) {
        put_key(Table::MepMoidArray, slot, key_bytes(532, {1, 2, id}));
        put_pattern(Table::MepDataArray, slot, static_cast<std::uint8_t>(0x40 + slot));
        return make_moid(532, 1, 2, id);
    }
    const TARV_MOID* slot_address(std::uint32_t slot) {
        return reinterpret_cast<const TARV_MOID*>(at(Table::MepMoidArray, slot));
    }
};

TEST_F(MepReaderTest, IteratorWalksNonEmptySlotsInSlotOrder) {
    EXPECT_EQ(Tarv__MEPMoidIterator(nullptr), nullptr);

    put_mep(17, 18);
    put_mep(3, 4);
    put_pattern(Table::MepDataArray, 10, 0x99);  // a record behind an empty key is no MEP

    const TARV_MOID* first = Tarv__MEPMoidIterator(nullptr);
    EXPECT_EQ(first, slot_address(3));
    const TARV_MOID* second = Tarv__MEPMoidIterator(first);
    EXPECT_EQ(second, slot_address(17));
    EXPECT_EQ(Tarv__MEPMoidIterator(second), nullptr);
    EXPECT_TRUE(fake().traces.empty());
}

TEST_F(MepReaderTest, IteratorMovesForwardThroughDuplicateMoids) {
    put_mep(3, 4);
    put_mep(10, 4);  // a corrupt region: the same MOID twice
    put_mep(12, 13);

    const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr);
    EXPECT_EQ(p, slot_address(3));
    p = Tarv__MEPMoidIterator(p);
    EXPECT_EQ(p, slot_address(10));
    p = Tarv__MEPMoidIterator(p);
    EXPECT_EQ(p, slot_address(12));
    EXPECT_EQ(Tarv__MEPMoidIterator(p), nullptr);

    const TARV_MOID copy = *slot_address(10);  // a copy is found by its key: the first slot holding it
    EXPECT_EQ(Tarv__MEPMoidIterator(&copy), slot_address(10));
}

// The controller empties the slot that the caller's last pointer names: the
// pointer now reads the all-zero key, which the lookup finds at the first
// empty slot, and the walk goes on after that slot.
struct EmptiedSlotCase {
    const char* name;
    std::vector<std::uint32_t> slots;  // MEPs, each with id slot + 1
    std::uint32_t emptied;             // the slot of the caller's last pointer
    int next;                          // the slot the next call returns, -1 for the end
};
void PrintTo(const EmptiedSlotCase& c, std::ostream* os) { *os << c.name; }

std::vector<std::uint32_t> all_slots() {
    std::vector<std::uint32_t> v(32);
    for (std::uint32_t s = 0; s < 32; ++s) v[s] = s;
    return v;
}

class IteratorAfterEmptiedSlot : public MepReaderTest, public ::testing::WithParamInterface<EmptiedSlotCase> {};

TEST_P(IteratorAfterEmptiedSlot, GoesOnAfterTheFirstEmptySlot) {
    fake().set_debug_level(4);
    const EmptiedSlotCase& c = GetParam();
    for (std::uint32_t s : c.slots) put_mep(s, s + 1);
    std::memset(at(Table::MepMoidArray, c.emptied), 0, 14);

    EXPECT_EQ(Tarv__MEPMoidIterator(slot_address(c.emptied)),
              c.next < 0 ? nullptr : slot_address(static_cast<std::uint32_t>(c.next)));

    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].text, "Wrong index 65535 from MepId 0");
}

INSTANTIATE_TEST_SUITE_P(
    MepReader, IteratorAfterEmptiedSlot,
    ::testing::Values(EmptiedSlotCase{"EarlierEmptySlot", {1, 5, 9}, 5, 1},        // slot 0 is the first empty one
                      EmptiedSlotCase{"NoEarlierEmptySlot", {0, 1, 2, 5}, 2, 5},  // the emptied slot is the first
                      EmptiedSlotCase{"EveryOtherSlotFull", all_slots(), 31, -1}),
    [](const auto& p) { return std::string(p.param.name); });

TEST_F(MepReaderTest, IteratorEndsAfterTheLastSlot) {
    put_mep(0, 1);
    put_mep(31, 32);
    EXPECT_EQ(Tarv__MEPMoidIterator(slot_address(31)), nullptr);
}

TEST_F(MepReaderTest, VanishedPreviousMoidRestartsTheWalk) {
    put_mep(5, 6);
    const TARV_MOID gone = make_moid(532, 1, 2, 9);
    EXPECT_EQ(Tarv__MEPMoidIterator(&gone), slot_address(5));
}

TEST_F(MepReaderTest, OutOfRangeHintIsTracedAndTheScanStillFinds) {
    fake().set_debug_level(4);
    put_mep(5, 40);  // id 40 gives hint 39, outside the table
    put_mep(6, 7);
    const TARV_MOID id_zero = make_moid(532, 1, 2, 0);

    EXPECT_EQ(Tarv__MEPMoidIterator(slot_address(5)), slot_address(6));
    EXPECT_EQ(Tarv__MEPMoidIterator(&id_zero), slot_address(5));

    ASSERT_EQ(fake().traces.size(), 2u);
    EXPECT_EQ(fake().traces[0].text, "Wrong index 39 from MepId 40");
    EXPECT_EQ(fake().traces[1].text, "Wrong index 65535 from MepId 0");
    EXPECT_EQ(fake().traces[1].level, 4u);
}

TEST_F(MepReaderTest, ReadFindsAMepOutsideItsHintSlot) {
    const TARV_MOID moid = put_mep(9, 5);
    put_mep(4, 6);  // the hint slot of id 5 holds another MEP
    GuardedBytes out(48);

    Tarv__ReadMEP(moid, out.data());

    EXPECT_EQ(std::vector<std::uint8_t>(out.data(), out.data() + 48), bytes_of(Table::MepDataArray, 9));
}

TEST_F(MepReaderTest, ReadOfAnUnknownMoidTracesAndLeavesTheBuffer) {
    fake().set_module_level(1);
    put_mep(0, 1);
    std::vector<std::uint8_t> out(48, 0xEE);

    Tarv__ReadMEP(make_moid(532, 0xFFFFFFFFu, 2, 1), out.data());

    EXPECT_EQ(out, std::vector<std::uint8_t>(48, 0xEE));
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].kind, TraceKind::Error);
    EXPECT_EQ(fake().traces[0].code, 3u);
    EXPECT_EQ(fake().traces[0].function, "Tarv__ReadMEP");
    EXPECT_EQ(fake().traces[0].text,
              "Tarv__ReadMEP() : Unable to read Mep - can't find specified MOID: Class 532 Md -1 MaNet 2 Mep 1");
}

TEST_F(MepReaderTest, ReadOfTheZeroMoidCopiesTheFirstEmptySlot) {
    put_mep(0, 1);
    put_pattern(Table::MepDataArray, 1, 0x77);  // stale record of the first empty slot
    std::vector<std::uint8_t> out(48, 0xEE);

    Tarv__ReadMEP(make_moid(0, 0, 0, 0), out.data());

    EXPECT_EQ(out, bytes_of(Table::MepDataArray, 1));
}

TEST_F(MepReaderTest, OldMoidIsLookedUpAmongTheOldMoidsOnly) {
    fake().set_module_level(1);
    put_mep(2, 3);
    put_key(Table::MepOldMoidArray, 6, key_bytes(532, {1, 2, 3}));
    std::uint16_t index = 0xBEEF;

    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 2, 3), &index), 0);
    EXPECT_EQ(index, 6);

    index = 0xBEEF;
    put_key(Table::MepMoidArray, 8, key_bytes(532, {1, 2, 50}));
    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 2, 50), &index), -1);
    EXPECT_EQ(index, 0xBEEF);
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].text,
              "Unable to read Mep - can't find specified MOID: Class 532 Md 1 MaNet 2 Mep 50");
    EXPECT_EQ(fake().traces[0].code, 3u);
}

TEST_F(MepReaderTest, NullIndexPointerIsRefusedBeforeAnyLookup) {
    fake().set_module_level(1);
    put_key(Table::MepOldMoidArray, 0, key_bytes(532, {1, 2, 1}));

    EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(make_moid(532, 1, 2, 1), nullptr), -1);

    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].text, "Tarv__GetMepIndexFromOldMoid() : pMepIndex is null\n");
    EXPECT_EQ(fake().traces[0].code, 3u);
}

TARV_MANET_KEY manet_key(std::uint16_t w_class, std::uint32_t md, std::uint32_t manet) {
    TARV_MANET_KEY k;
    const auto b = key_bytes(w_class, {md, manet});
    std::memcpy(&k, b.data(), sizeof k);
    return k;
}

TEST_F(MepReaderTest, MaNetIsFoundByAllTenKeyBytesAtItsHintOrByTheScan) {
    fake().set_module_level(1);
    put_key(Table::MaNetMoidArray, 0, key_bytes(574, {7, 1}));    // id 1 at its hint
    put_key(Table::MaNetMoidArray, 127, key_bytes(574, {7, 5}));  // id 5 at the last slot
    put_pattern(Table::MaNetDataArray, 127, 0x31);
    GuardedBytes out(57);  // a copy past 57 bytes would fault

    EXPECT_EQ(Tarv__DoesMANetExist(manet_key(574, 7, 1)), 1u);
    EXPECT_EQ(Tarv__DoesMANetExist(manet_key(574, 7, 5)), 1u);
    EXPECT_EQ(Tarv__DoesMANetExist(manet_key(573, 7, 1)), 0u);  // the class takes part
    EXPECT_EQ(Tarv__DoesMANetExist(manet_key(0, 0, 0)), 1u);    // matches the first empty slot
    Tarv__ReadMANet(manet_key(574, 7, 5), out.data());
    EXPECT_EQ(std::vector<std::uint8_t>(out.data(), out.data() + 57), bytes_of(Table::MaNetDataArray, 127));
    EXPECT_TRUE(fake().traces.empty());

    out.fill(0xEE);
    Tarv__ReadMANet(manet_key(574, 0xFFFFFFFFu, 6), out.data());
    EXPECT_EQ(std::vector<std::uint8_t>(out.data(), out.data() + 57), std::vector<std::uint8_t>(57, 0xEE));
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].code, 3u);
    EXPECT_EQ(fake().traces[0].text,
              "Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: Class 574 Md -1 MaNet 6");
}

}  // namespace
}  // namespace tarv::testing
