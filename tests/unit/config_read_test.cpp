// Configuration read by class: the transfer lists of Tarv__GetConfig.
#include <string>

#include "region_fixture.h"

namespace tarv::testing {
namespace {

class GetConfigTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        attach();
    }
    // Expected transfer record of slot s of a class: key bytes then record bytes.
    std::vector<std::uint8_t> transfer(Table keys, Table data, std::uint32_t slot) {
        auto r = bytes_of(keys, slot, info(keys).key);
        const auto d = bytes_of(data, slot);
        r.insert(r.end(), d.begin(), d.end());
        return r;
    }
    static std::vector<std::uint8_t> slice(const std::uint8_t* p, std::size_t from, std::size_t n) {
        return {p + from, p + from + n};
    }
};

TEST_F(GetConfigTest, ListsOccupiedSlotsInOrderThenTheTerminator) {
    put_key(Table::MdMoidArray, 3, key_bytes(531, {4}));
    put_pattern(Table::MdDataArray, 3, 0x10);
    put_key(Table::MdMoidArray, 7, key_bytes(531, {8}));  // record left all zero: still listed
    put_pattern(Table::MdDataArray, 5, 0x30);             // stale record behind an empty key
    std::vector<std::uint8_t> out(10 * 71, 0xEE);

    EXPECT_EQ(Tarv__GetConfig(531, out.data(), 10), 0);

    EXPECT_EQ(slice(out.data(), 0, 71), transfer(Table::MdMoidArray, Table::MdDataArray, 3));
    EXPECT_EQ(slice(out.data(), 71, 71), transfer(Table::MdMoidArray, Table::MdDataArray, 7));
    EXPECT_EQ(slice(out.data(), 142, 6), std::vector<std::uint8_t>(6, 0));
    EXPECT_EQ(out[148], 0xEE);
    EXPECT_TRUE(fake().traces.empty());
}

TEST_F(GetConfigTest, StopsAtTheCountWithoutTerminator) {
    put_key(Table::MdMoidArray, 3, key_bytes(531, {4}));
    put_key(Table::MdMoidArray, 7, key_bytes(531, {8}));
    put_pattern(Table::MdDataArray, 7, 0x40);
    GuardedBytes two(2 * 71);  // a terminator would run into the guard page
    GuardedBytes one(71);

    EXPECT_EQ(Tarv__GetConfig(531, two.data(), 2), 0);
    EXPECT_EQ(slice(two.data(), 71, 71), transfer(Table::MdMoidArray, Table::MdDataArray, 7));
    for (std::uint32_t count : {1u, 0u}) {
        one.fill(0);
        EXPECT_EQ(Tarv__GetConfig(531, one.data(), count), 0);
        EXPECT_EQ(slice(one.data(), 0, 71), transfer(Table::MdMoidArray, Table::MdDataArray, 3)) << count;
    }
}

TEST_F(GetConfigTest, EmptyClassYieldsOnlyTheTerminator) {
    GuardedBytes out(62);
    out.fill(0xEE);
    EXPECT_EQ(Tarv__GetConfig(532, out.data(), 1), 0);
    EXPECT_EQ(slice(out.data(), 0, 14), std::vector<std::uint8_t>(14, 0));
    EXPECT_EQ(out.data()[14], 0xEE);
}

TEST_F(GetConfigTest, SessionTablesListSlotsWhoseSessionByteIsTheirNumber) {
    auto key = key_bytes(532, {1, 2, 3});
    key.push_back(5);
    put_key(Table::PMSessionMoidArray, 5, key);
    put_pattern(Table::PMSessionDataArray, 5, 0x21);
    key.back() = 7;
    put_key(Table::PMSessionMoidArray, 6, key);  // wrong session byte: empty
    key.back() = 0;
    put_key(Table::PMSessionMoidArray, 0, key);  // slot 0 is never listed
    auto only_byte = std::vector<std::uint8_t>(15, 0);
    only_byte[14] = 8;
    put_key(Table::PMSessionMoidArray, 8, only_byte);  // nothing but the session byte: occupied
    std::vector<std::uint8_t> out(9 * 142, 0xEE);

    EXPECT_EQ(Tarv__GetConfig(674, out.data(), 9), 0);

    EXPECT_EQ(slice(out.data(), 0, 142), transfer(Table::PMSessionMoidArray, Table::PMSessionDataArray, 5));
    EXPECT_EQ(slice(out.data(), 142, 142), transfer(Table::PMSessionMoidArray, Table::PMSessionDataArray, 8));
    EXPECT_EQ(slice(out.data(), 284, 15), std::vector<std::uint8_t>(15, 0));
    EXPECT_EQ(out[299], 0xEE);
}

TEST_F(GetConfigTest, BandwidthNotificationsTraceEnter) {
    fake().set_debug_level(6);
    put_key(Table::BandwidthNotificationMoidArray, 0, key_bytes(848, {1, 1, 1}));
    put_key(Table::BandwidthNotificationMoidArray, 4, key_bytes(848, {1, 1, 5}));
    put_pattern(Table::BandwidthNotificationDataArray, 4, 0x55);
    std::vector<std::uint8_t> out(5 * 32, 0xEE);

    EXPECT_EQ(Tarv__GetConfig(848, out.data(), 5), 0);

    EXPECT_EQ(slice(out.data(), 32, 32),
              transfer(Table::BandwidthNotificationMoidArray, Table::BandwidthNotificationDataArray, 4));
    EXPECT_EQ(slice(out.data(), 64, 14), std::vector<std::uint8_t>(14, 0));
    EXPECT_EQ(out[78], 0xEE);
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].function, "Tarv__GetConfig_BandwidthNotification");
    EXPECT_EQ(fake().traces[0].level, 6u);
    EXPECT_EQ(fake().traces[0].text, "Enter");
}

TEST_F(GetConfigTest, LargestTablesAreScannedToTheirLastSlot) {
    put_key(Table::Class581MoidArray, 4095, key_bytes(581, {4096}));
    put_pattern(Table::Class581DataArray, 4095, 0x61);
    put_key(Table::Class579MoidArray, 127, key_bytes(579, {1, 1, 1, 128}));
    std::vector<std::uint8_t> out(2 * 329, 0xEE);

    EXPECT_EQ(Tarv__GetConfig(581, out.data(), 0xFFFFFFFFu), 0);
    EXPECT_EQ(slice(out.data(), 0, 22), transfer(Table::Class581MoidArray, Table::Class581DataArray, 4095));
    EXPECT_EQ(slice(out.data(), 22, 6), std::vector<std::uint8_t>(6, 0));

    EXPECT_EQ(Tarv__GetConfig(579, out.data(), 2), 0);
    EXPECT_EQ(slice(out.data(), 0, 329), transfer(Table::Class579MoidArray, Table::Class579DataArray, 127));
}

TEST_F(GetConfigTest, SingletonsCopyExactlyTheirRecord) {
    const std::pair<std::uint32_t, Table> singletons[] = {
        {519, Table::Class519Record}, {523, Table::Class523Record}, {673, Table::Class673Record}};
    for (auto [id, table] : singletons) {
        put_pattern(table, 0, static_cast<std::uint8_t>(id));
        for (std::uint32_t count : {0u, 100u}) {
            GuardedBytes out(info(table).entry);  // a terminator or a longer copy would fault
            EXPECT_EQ(Tarv__GetConfig(id, out.data(), count), 0);
            EXPECT_EQ(slice(out.data(), 0, out.size()), bytes_of(table, 0)) << id;
        }
    }
}

TEST_F(GetConfigTest, Class580AndUnknownClassesWriteNothing) {
    put_key(Table::Class572MoidArray, 0, key_bytes(572, {1, 1, 1, 1, 1}));
    std::vector<std::uint8_t> out(64, 0xEE);
    EXPECT_EQ(Tarv__GetConfig(580, out.data(), 1), 0);
    for (std::uint32_t unknown : {0u, 520u, 572u, 577u, 578u, 999u, 0xFFFFFFFFu})
        EXPECT_EQ(Tarv__GetConfig(unknown, out.data(), 1), 1) << unknown;
    EXPECT_EQ(out, std::vector<std::uint8_t>(64, 0xEE));
    EXPECT_TRUE(fake().traces.empty());
}

class ThroughputHistoryTest : public GetConfigTest {
protected:
    void put_history(std::uint32_t slot, std::uint32_t id, const std::string& text) {
        store_le<std::uint32_t>(at(Table::ThroughputHistoryIdArray, slot), id);
        put_pattern(Table::ThroughputHistoryDataArray, slot, static_cast<std::uint8_t>(slot));
        std::uint8_t* result = at(Table::ThroughputHistoryDataArray, slot) + 101;
        std::memcpy(result, text.c_str(), text.size() + 1);
    }
};

TEST_F(ThroughputHistoryTest, CountZeroHandsOutTheFirstRecordOnly) {
    fake().set_debug_level(5);
    put_history(2, 0x1111, "passed");
    put_history(9, 0x2222, "failed");
    GuardedBytes out(509);

    EXPECT_EQ(Tarv__GetConfig(652, out.data(), 0), 0);

    EXPECT_EQ(load_le<std::uint32_t>(out.data()), 0x1111u);
    EXPECT_EQ(slice(out.data(), 4, 505), bytes_of(Table::ThroughputHistoryDataArray, 2));
    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].function, "Tarv__GetConfig_ThroughputHistory");
    EXPECT_EQ(fake().traces[0].level, 5u);
    EXPECT_EQ(fake().traces[0].text, "Save Record 2, result: passed");
}

TEST_F(ThroughputHistoryTest, OtherCountsHandOutEveryRecordWithoutTerminator) {
    fake().set_debug_level(5);
    put_history(2, 0x1111, "passed");
    put_history(9, 0x2222, "failed");
    GuardedBytes out(2 * 509);

    EXPECT_EQ(Tarv__GetConfig(652, out.data(), 1), 0);

    EXPECT_EQ(load_le<std::uint32_t>(out.data() + 509), 0x2222u);
    EXPECT_EQ(slice(out.data(), 513, 505), bytes_of(Table::ThroughputHistoryDataArray, 9));
    ASSERT_EQ(fake().traces.size(), 2u);
    EXPECT_EQ(fake().traces[1].text, "Save Record 9, result: failed");
}

TEST_F(ThroughputHistoryTest, EmptyHistoryWritesNothing) {
    std::vector<std::uint8_t> out(509, 0xEE);
    EXPECT_EQ(Tarv__GetConfig(652, out.data(), 0), 0);
    EXPECT_EQ(Tarv__GetConfig(652, out.data(), 5), 0);
    EXPECT_EQ(out, std::vector<std::uint8_t>(509, 0xEE));
}

TEST_F(ThroughputHistoryTest, UnterminatedResultPrintsAtMostItsField) {
    fake().set_debug_level(5);
    store_le<std::uint32_t>(at(Table::ThroughputHistoryIdArray, 100), 7);
    std::memset(at(Table::ThroughputHistoryDataArray, 100), 'A', 505);  // no terminator anywhere
    GuardedBytes out(509);

    EXPECT_EQ(Tarv__GetConfig(652, out.data(), 0), 0);

    ASSERT_EQ(fake().traces.size(), 1u);
    EXPECT_EQ(fake().traces[0].text, "Save Record 100, result: " + std::string(404, 'A'));
}

}  // namespace
}  // namespace tarv::testing
