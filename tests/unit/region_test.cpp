// Layout of the data region and the shared slot rules.
#include <cstddef>
#include <utility>

#include "classes.h"
#include "region_fixture.h"

namespace tarv::testing {
namespace {

TEST(RegionLayout, TablesStartWhereTheControllerExpectsThem) {
    const std::pair<Table, std::uint32_t> landmarks[] = {
        {Table::Class571DataArray, 0x8DD9},         {Table::Class526MoidArray, 0x9679},
        {Table::Class528DataArray, 0x1FC95},        {Table::Class572MoidArray, 0x21555},
        {Table::MACompDataArray, 0x21815},          {Table::Class579DataArray, 0x23B75},
        {Table::Class581MoidArray, 0x3DFF5},        {Table::MaNetDataArray, 0x59FF5},
        {Table::MdMoidArray, 0x5E1F5},              {Table::MepDataArray, 0x5E4F5},
        {Table::MepMoidArray, 0x5EAF5},             {Table::MepOldMoidArray, 0x5ECB5},
        {Table::MipMoidArray, 0x5F035},             {Table::ThroughputMoidArray, 0x5F615},
        {Table::ThroughputHistoryIdArray, 0x60835}, {Table::ThroughputHistoryDataArray, 0x609C9},
        {Table::Class673Record, 0x6D106},           {Table::PMSessionMoidArray, 0x6D582},
        {Table::Class666MoidArray, 0x6DA53},        {Table::PMAlarmBlock, 0x6DADA},
        {Table::PMAlarmMoidArray, 0x6DB2C},         {Table::BandwidthNotificationMoidArray, 0x6DDF3},
        {Table::MepAlarmTextArray, 0x6DFB3},
    };
    for (auto [table, base] : landmarks) EXPECT_EQ(info(table).base, base) << static_cast<int>(table);
    EXPECT_EQ(info(Table::MepAlarmTextArray).end(), kRegionSize);
    EXPECT_EQ(kRegionSize, 0x6E9D3u);
}

TEST(RegionLayout, KeyTypesHaveThePackedWireSizes) {
    EXPECT_EQ(sizeof(TARV_MOID), 14u);
    EXPECT_EQ(offsetof(TARV_MOID, lId1), 2u);
    EXPECT_EQ(offsetof(TARV_MOID, lId3), 10u);
    EXPECT_EQ(sizeof(TARV_MANET_KEY), 10u);
    EXPECT_EQ(sizeof(TARV_THROUGHPUT_KEY), 18u);
    EXPECT_EQ(offsetof(TARV_THROUGHPUT_KEY, lId4), 14u);
    EXPECT_EQ(sizeof(TARV_PM_KEY), 15u);
    EXPECT_EQ(offsetof(TARV_PM_KEY, bySessionId), 14u);
}

TEST(RegionLayout, EveryServedClassHasItsTransferSize) {
    const std::pair<std::uint32_t, std::uint32_t> sizes[] = {
        {526, 65}, {528, 111}, {531, 71}, {532, 62}, {571, 22}, {573, 115}, {574, 67}, {575, 28},
        {576, 20}, {579, 329}, {581, 22}, {638, 51}, {652, 509}, {665, 69}, {666, 53}, {674, 142}, {848, 32},
    };
    for (auto [id, size] : sizes) {
        const ClassInfo* c = find_class(id);
        ASSERT_NE(c, nullptr) << id;
        EXPECT_EQ(c->transfer_size(), size) << id;
    }
    for (std::uint32_t unknown : {0u, 520u, 572u, 577u, 578u, 999u}) EXPECT_EQ(find_class(unknown), nullptr);
}

TEST(ByteOrder, ScalarsAreLittleEndianAtAnyOffset) {
    std::uint8_t buf[16] = {};
    store_le<std::uint32_t>(buf + 1, 0x11223344u);
    EXPECT_EQ(buf[1], 0x44);
    EXPECT_EQ(buf[4], 0x11);
    EXPECT_EQ(load_le<std::uint32_t>(buf + 1), 0x11223344u);
    store_le<std::uint16_t>(buf + 7, 0xA1B2);
    EXPECT_EQ(buf[7], 0xB2);
    EXPECT_EQ(buf[8], 0xA1);
    store_le<double>(buf + 3, 1.0);  // 0x3FF0000000000000
    EXPECT_EQ(buf[10], 0x3F);
    EXPECT_EQ(buf[9], 0xF0);
    EXPECT_EQ(load_le<double>(buf + 3), 1.0);
}

TEST(SlotRules, HintIsTheLastIdentifierMinusOneModulo65536) {
    EXPECT_EQ(slot_hint(key_bytes(532, {1, 2, 1}).data(), 14), 0u);
    EXPECT_EQ(slot_hint(key_bytes(532, {1, 2, 32}).data(), 14), 31u);
    EXPECT_EQ(slot_hint(key_bytes(532, {1, 2, 0}).data(), 14), 65535u);
    EXPECT_EQ(slot_hint(key_bytes(532, {1, 2, 0x10005}).data(), 14), 4u);  // only the low 16 bits count
    EXPECT_EQ(slot_hint(key_bytes(531, {7}).data(), 6), 6u);
    EXPECT_EQ(slot_hint(key_bytes(638, {9, 9, 9, 3}).data(), 18), 2u);
}

class LookupTest : public RegionTest {};

TEST_F(LookupTest, FindsAtTheHintOrByScanningFromSlotZero) {
    attach();
    const auto at_hint = key_bytes(574, {1, 3});
    const auto elsewhere = key_bytes(574, {1, 9});  // belongs in slot 8
    const auto id_zero = key_bytes(574, {1, 0});
    put_key(Table::MaNetMoidArray, 2, at_hint);
    put_key(Table::MaNetMoidArray, 100, elsewhere);
    put_key(Table::MaNetMoidArray, 127, id_zero);
    EXPECT_EQ(find_slot(pSharedData, Table::MaNetMoidArray, at_hint.data(), 2), 2u);
    EXPECT_EQ(find_slot(pSharedData, Table::MaNetMoidArray, elsewhere.data(), 8), 100u);
    EXPECT_EQ(find_slot(pSharedData, Table::MaNetMoidArray, id_zero.data(), 65535), 127u);
    EXPECT_EQ(find_slot(pSharedData, Table::MaNetMoidArray, key_bytes(573, {1, 3}).data(), 2), kNotFound);
}

TEST_F(LookupTest, AllZeroKeyMatchesTheFirstEmptySlot) {
    attach();
    put_key(Table::MaNetMoidArray, 0, key_bytes(574, {1, 1}));
    put_key(Table::MaNetMoidArray, 1, key_bytes(574, {1, 2}));
    const std::uint8_t zero[10] = {};
    EXPECT_EQ(find_slot(pSharedData, Table::MaNetMoidArray, zero, 65535), 2u);
}

TEST_F(LookupTest, AKeyEqualInFewerThanAllBytesIsNotFound) {
    attach();
    put_key(Table::MepMoidArray, 4, key_bytes(532, {1, 2, 5}));
    auto almost = key_bytes(532, {1, 2, 5});
    almost[13] = 1;  // top byte of lId3
    EXPECT_EQ(find_slot(pSharedData, Table::MepMoidArray, almost.data(), 4), kNotFound);
}

}  // namespace
}  // namespace tarv::testing
