// Configuration write by class: Tarv__SetConfig against the region, read back
// with Tarv__GetConfig.
#include <algorithm>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <utility>

#include "classes.h"
#include "region_fixture.h"

namespace tarv::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Span = std::pair<std::uint32_t, std::uint32_t>;  // record offset, width

class SetConfigTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        Tarv__StorOpen();
        fake().traces.clear();
    }
    static Bytes snapshot() { return {pStorData, pStorData + kRegionSize}; }
    // What Tarv__GetConfig hands out for the class, in a zeroed buffer with
    // room for every slot and a terminator.
    static Bytes listed(const ClassInfo& c) {
        const std::size_t size = c.rule == ClassRule::NoStorage   ? 0
                                 : c.rule == ClassRule::Singleton ? c.record_size()
                                                                  : (c.slots() + 1u) * c.transfer_size();
        Bytes out(size, 0);
        EXPECT_EQ(Tarv__GetConfig(c.id, out.data(), c.rule == ClassRule::History ? 1 : c.slots()), 0);
        return out;
    }
    // A transfer record of the class: wClass 0xBEEF, identifiers 7, `last` as
    // the last identifier (the session id of PM keys), record bytes `fill`.
    static Bytes transfer(const ClassInfo& c, std::uint32_t last, std::uint8_t fill) {
        Bytes t(c.transfer_size(), fill);
        const std::uint32_t k = c.key_size();
        std::fill_n(t.begin(), k, 7);
        if (k >= 6) store_le<std::uint16_t>(t.data(), 0xBEEF);
        if (c.placement == Placement::SessionId) t[14] = static_cast<std::uint8_t>(last);
        else if (k >= 4) store_le<std::uint32_t>(t.data() + k - 4, last);
        return t;
    }
    // The records end to end, then a terminator unless `terminated` is false,
    // in a buffer that ends at a guard page.
    static std::unique_ptr<GuardedBytes> list(const ClassInfo& c, const std::vector<Bytes>& records,
                                              bool terminated = true) {
        Bytes all;
        for (const Bytes& r : records) all.insert(all.end(), r.begin(), r.end());
        if (terminated) all.resize(all.size() + c.key_size(), 0);
        auto g = std::make_unique<GuardedBytes>(all.size());
        std::copy(all.begin(), all.end(), g->data());
        return g;
    }
};

// Per class: the tables a write empties, the companion keys it derives
// (key array, class), the 32-bit fields it sets to 1 and the fields it
// computes from the platform or the record.
struct ClassRow {
    std::uint32_t id;
    std::vector<Table> emptied;
    std::vector<std::pair<Table, std::uint16_t>> companions;
    std::vector<std::uint32_t> ones;
    std::vector<Span> computed;
};

// clang-format off
const ClassRow kClassRows[] = {
    {519, {}, {}, {}, {}}, {523, {}, {}, {}, {}}, {580, {}, {}, {}, {}}, {673, {}, {}, {}, {}},
    {526, {Table::Class526DataArray, Table::Class526MoidArray}, {}, {13}, {}},
    {528, {Table::Class528DataArray, Table::Class528MoidArray, Table::Class572DataArray, Table::Class572MoidArray},
     {{Table::Class572MoidArray, 572}}, {9}, {}},
    {531, {Table::MdDataArray, Table::MdMoidArray}, {}, {}, {}},
    {532, {Table::MepDataArray, Table::MepMoidArray, Table::Class577DataArray, Table::Class577MoidArray,
           Table::BandwidthNotificationDataArray, Table::BandwidthNotificationMoidArray},
     {{Table::Class577MoidArray, 577}, {Table::BandwidthNotificationMoidArray, 848}}, {22, 28}, {{10, 6}}},
    {571, {Table::Class571DataArray, Table::Class571MoidArray}, {}, {}, {}},
    {573, {Table::MACompDataArray, Table::MACompMoidArray}, {}, {}, {}},
    {574, {Table::MaNetDataArray, Table::MaNetMoidArray}, {}, {}, {}},
    {575, {Table::MipDataArray, Table::MipMoidArray, Table::Class578DataArray, Table::Class578MoidArray},
     {{Table::Class578MoidArray, 578}}, {}, {{0, 6}}},
    {576, {Table::Class576DataArray, Table::Class576MoidArray}, {}, {}, {}},
    {579, {Table::Class579DataArray, Table::Class579MoidArray}, {}, {}, {}},
    {581, {Table::Class581DataArray, Table::Class581MoidArray}, {}, {}, {}},
    {638, {Table::ThroughputDataArray, Table::ThroughputMoidArray}, {}, {9}, {{31, 2}}},
    {652, {Table::ThroughputHistoryDataArray, Table::ThroughputHistoryIdArray}, {}, {}, {}},
    {665, {Table::Class665DataArray, Table::Class665MoidArray}, {}, {}, {}},
    {666, {Table::Class666DataArray, Table::Class666MoidArray}, {}, {}, {}},
    {674, {Table::PMSessionDataArray, Table::PMSessionMoidArray}, {}, {}, {}},
    {848, {Table::BandwidthNotificationDataArray, Table::BandwidthNotificationMoidArray}, {}, {}, {}},
};
// clang-format on

void PrintTo(const ClassRow& row, std::ostream* os) { *os << "class " << row.id; }

class EveryClass : public SetConfigTest, public ::testing::WithParamInterface<ClassRow> {
protected:
    const ClassInfo& c = *find_class(GetParam().id);
    // Zeroes the computed fields (and with `ones`, those set to 1) of every
    // record slot of a list or table.
    void mask(std::uint8_t* records, std::size_t count, std::uint32_t stride, std::uint32_t record_at,
              bool ones = false) const {
        std::vector<Span> spans = GetParam().computed;
        if (ones)
            for (std::uint32_t offset : GetParam().ones) spans.emplace_back(offset, 4);
        for (std::size_t r = 0; r < count; ++r)
            for (auto [offset, width] : spans) std::fill_n(records + r * stride + record_at + offset, width, 0);
    }
};

// Over a region full of 0xA5, a list of the first and the last slot's
// records (a terminator at the guard page) changes exactly the class's
// arrays and companions: emptied, then the records, their companion keys and
// the fields set to 1. Only class 848 traces, "Enter".
TEST_P(EveryClass, WritesItsRecordsAndDerivedEntriesAndNothingElse) {
    fake().set_debug_level(7);
    fake().set_module_level(7);
    std::memset(pStorData, 0xA5, kRegionSize);
    Bytes want = snapshot();
    std::vector<std::pair<std::uint32_t, Bytes>> placed;  // slot, transfer record
    if (c.rule == ClassRule::Singleton) placed = {{0, transfer(c, 0, 0x3C)}};
    if (c.placement == Placement::LastId) placed = {{c.slots() - 1, transfer(c, c.slots(), 0x3C)}, {0, transfer(c, 1, 0x5A)}};
    if (c.placement == Placement::SessionId) placed = {{8, transfer(c, 8, 0x3C)}, {1, transfer(c, 1, 0x5A)}};
    if (c.placement == Placement::Packed) placed = {{0, transfer(c, 9, 0x3C)}, {1, transfer(c, 1, 0x5A)}};
    for (Table t : GetParam().emptied) std::fill_n(want.data() + info(t).base, info(t).bytes(), 0);
    std::vector<Bytes> records;
    for (const auto& [slot, r] : placed) {
        records.push_back(r);
        const std::uint32_t k = c.key_size();
        std::copy_n(r.begin(), k, want.data() + info(c.keys).base + slot * k);
        std::uint8_t* record = want.data() + info(c.data).base + slot * c.record_size();
        std::copy(r.data() + k, r.data() + r.size(), record);
        for (std::uint32_t offset : GetParam().ones) store_le<std::uint32_t>(record + offset, 1);
        for (auto [keys, w_class] : GetParam().companions) {
            std::uint8_t* companion = want.data() + info(keys).base + slot * info(keys).entry;
            std::copy_n(r.begin(), k, companion);
            store_le<std::uint16_t>(companion, w_class);
            if (info(keys).key > k) std::copy_n(r.data() + k - 4, 4, companion + k);
        }
    }
    const auto input = c.rule == ClassRule::NoStorage ? std::make_unique<GuardedBytes>(0) : list(c, records);

    EXPECT_EQ(Tarv__SetConfig(c.id, input->data()), 0);

    Bytes got = snapshot();
    if (c.rule == ClassRule::List) {
        mask(got.data() + info(c.data).base, c.slots(), c.record_size(), 0);
        mask(want.data() + info(c.data).base, c.slots(), c.record_size(), 0);
    }
    EXPECT_TRUE(got == want) << "first difference at "
                             << std::mismatch(got.begin(), got.end(), want.begin()).first - got.begin();
    EXPECT_EQ(fake().traces.size(), c.id == 848 ? 1u : 0u);
    if (c.id == 848) {
        EXPECT_EQ(fake().traces[0].function, "Tarv__SetConfig_BandwidthNotification");
        EXPECT_EQ(fake().traces[0].level, 6u);
        EXPECT_EQ(fake().traces[0].text, "Enter");
    }
}

// Random records in random slots (keys whose last identifier has high bits
// too, stale records behind empty keys), read, written into an empty region
// and read again: the same list but for the fields the writer computes.
TEST_P(EveryClass, RoundTripsThroughAnEmptyRegion) {
    std::mt19937 rng(GetParam().id);
    if (c.rule != ClassRule::NoStorage) {
        const std::uint32_t k = c.key_size();
        for (std::uint32_t s = 0; s < c.slots(); ++s) {
            std::uint8_t* key = entry(pStorData, c.keys, s);
            for (std::uint32_t i = 0; i < c.transfer_size(); ++i)
                (i < k ? key[i] : entry(pStorData, c.data, s)[i - k]) = static_cast<std::uint8_t>(rng());
            const bool occupied = rng() % 3 != 0;
            if (c.placement == Placement::SessionId) key[14] = static_cast<std::uint8_t>(occupied ? s : s + 1);
            else if (!occupied) std::memset(key, 0, k);
            else if (c.placement == Placement::LastId) store_le<std::uint32_t>(key + k - 4, s + 1 + (rng() & 0xFFFF0000u));
            else key[0] |= 1;  // packed keys and singletons (673 stores only a first byte not zero)
        }
    }
    Bytes before = listed(c);
    std::memset(pStorData, 0, kRegionSize);

    EXPECT_EQ(Tarv__SetConfig(c.id, before.data()), 0);

    Bytes after = listed(c);
    if (c.rule == ClassRule::List) {
        mask(before.data(), c.slots(), c.transfer_size(), c.key_size(), true);
        mask(after.data(), c.slots(), c.transfer_size(), c.key_size(), true);
    }
    EXPECT_EQ(before, after);
}

INSTANTIATE_TEST_SUITE_P(Classes, EveryClass, ::testing::ValuesIn(kClassRows),
                         [](const auto& p) { return std::to_string(p.param.id); });

// Identifiers count by their low 16 bits and the later of two records for a
// slot stays; session id 0 goes to slot 0; packed lists end after their last
// slot without a terminator; a singleton 673 whose first byte is zero is not
// written.
TEST_F(SetConfigTest, RecordsGoToTheSlotTheirKeyNames) {
    struct Row {
        std::uint32_t id;
        std::vector<std::uint32_t> lasts;
        bool terminated;
        std::vector<std::pair<std::uint32_t, std::size_t>> stored;  // slot, record index
    };
    std::vector<std::pair<std::uint32_t, std::size_t>> packed;
    for (std::size_t i = 0; i < 101; ++i) packed.emplace_back(i, i);
    const Row rows[] = {
        {531, {1, 0x10001, 5}, true, {{0, 1}, {4, 2}}},
        {674, {0}, true, {{0, 0}}},
        {571, std::vector<std::uint32_t>(32, 99), false, {packed.begin(), packed.begin() + 32}},
        {652, std::vector<std::uint32_t>(101, 99), false, packed},
        {673, {}, false, {}},
    };
    for (const Row& row : rows) {
        const ClassInfo& c = *find_class(row.id);
        std::vector<Bytes> records;
        for (std::uint32_t last : row.lasts) records.push_back(transfer(c, last, static_cast<std::uint8_t>(records.size() + 1)));
        if (row.id == 673) records.push_back(Bytes{0, 1, 2, 3, 4});
        EXPECT_EQ(Tarv__SetConfig(row.id, list(c, records, row.terminated)->data()), 0) << row.id;
        Bytes want(c.slots() * c.transfer_size(), 0), got;
        for (auto [slot, index] : row.stored)
            std::copy(records[index].begin(), records[index].end(), want.data() + slot * c.transfer_size());
        for (std::uint32_t s = 0; s < c.slots(); ++s) {
            got.insert(got.end(), entry(pStorData, c.keys, s), entry(pStorData, c.keys, s) + c.key_size());
            got.insert(got.end(), entry(pStorData, c.data, s), entry(pStorData, c.data, s) + c.record_size());
        }
        EXPECT_TRUE(got == want) << row.id;
    }
}

// A record that addresses no slot refuses the whole list before anything is
// emptied; the check stops at it (the buffer ends there) and names it.
TEST_F(SetConfigTest, RecordOutsideItsClassRefusesTheWholeList) {
    struct Row {
        std::uint32_t id;
        std::vector<std::uint32_t> lasts;
        std::string message;
    };
    const Row rows[] = {
        {531, {128, 129}, "Class 531 record 2: instance 129 addresses no slot of 1..128"},
        {532, {0}, "Class 532 record 1: instance 0 addresses no slot of 1..32"},
        {638, {32, 33}, "Class 638 record 2: instance 33 addresses no slot of 1..32"},
        {581, {4096, 1, 0x11001}, "Class 581 record 3: instance 4097 addresses no slot of 1..4096"},
        {674, {8, 9}, "Class 674 record 2: session id 9 addresses no slot of 0..8"},
        {665, {255}, "Class 665 record 1: session id 255 addresses no slot of 0..8"},
    };
    fake().set_module_level(1);
    std::mt19937 rng(1);
    for (std::uint8_t& b : std::span(pStorData, kRegionSize)) b = static_cast<std::uint8_t>(rng());
    const Bytes region = snapshot();
    for (const Row& row : rows) {
        const ClassInfo& c = *find_class(row.id);
        std::vector<Bytes> records;
        for (std::uint32_t last : row.lasts) records.push_back(transfer(c, last, 0x11));
        fake().traces.clear();
        EXPECT_EQ(Tarv__SetConfig(row.id, list(c, records, false)->data()), TARV_SET_CONFIG_REFUSED);
        EXPECT_TRUE(snapshot() == region) << row.id;
        ASSERT_EQ(fake().traces.size(), 1u);
        EXPECT_EQ(fake().traces[0].code, 3u);
        EXPECT_EQ(fake().traces[0].text, row.message);
    }
}

// Without a read-write attach nothing is written, whatever the class; 580
// has nothing to write and answers 0; unknown classes answer 1 untraced.
TEST_F(SetConfigTest, NothingIsWrittenWithoutReadWriteAttach) {
    fake().set_module_level(1);
    for (bool read_only : {false, true}) {
        pSharedData = pStorData = nullptr;
        if (read_only) Tarv__Open();
        std::memset(fake().region(kRegionName, kRegionSize).data(), 0xA5, kRegionSize);
        for (const ClassRow& row : kClassRows) {
            const ClassInfo& c = *find_class(row.id);
            fake().traces.clear();
            const bool none = c.rule == ClassRule::NoStorage;
            const Bytes input(600, 0);  // an empty list: it would empty the class
            EXPECT_EQ(Tarv__SetConfig(row.id, input.data()), none ? 0 : TARV_SET_CONFIG_NOT_ATTACHED) << row.id;
            ASSERT_EQ(fake().traces.size(), none ? 0u : 1u) << row.id;
            if (!none) {
                EXPECT_EQ(fake().traces[0].code, 12u);
            }
        }
        fake().traces.clear();
        for (std::uint32_t unknown : {0u, 572u, 577u, 578u, 999u}) EXPECT_EQ(Tarv__SetConfig(unknown, nullptr), 1);
        EXPECT_TRUE(fake().traces.empty());
        const std::uint8_t* r = fake().region(kRegionName, kRegionSize).data();
        EXPECT_EQ(std::count(r, r + kRegionSize, 0xA5), kRegionSize);
    }
}

// The MAC address of MEPs and MIPs comes from the platform by their slot and
// port, replacing what the input carried.
TEST_F(SetConfigTest, MacAddressComesFromTheChassisOrThePort) {
    using Mac = std::array<std::uint8_t, 6>;
    struct Row {
        std::uint8_t slot, port;
        std::optional<Mac> base;
        Mac want;
        std::vector<std::pair<std::uint32_t, std::uint32_t>> asked;
    };
    const Mac port31{2, 0, 0, 0, 3, 1}, port14{2, 0, 0, 0, 1, 4};
    const Row rows[] = {
        {2, 3, Mac{1, 2, 3, 0x00, 0x00, 0x10}, {1, 2, 3, 0x00, 0x00, 0x14}, {}},
        {2, 255, Mac{1, 2, 3, 0xFF, 0xFF, 0xF9}, {1, 2, 3, 0x00, 0x00, 0xF9}, {}},  // N + 6 just below 2^24: cut
        {2, 0, Mac{1, 2, 3, 0xFF, 0xFF, 0xFA}, {1, 2, 3, 0xFF, 0xFF, 0xFA}, {}},    // N + 6 = 2^24: the base
        {2, 3, std::nullopt, {}, {}},
        {3, 7, std::nullopt, port31, {{3, 1}}},
        {1, 4, std::nullopt, port14, {{1, 4}}},
        {5, 2, std::nullopt, {}, {{5, 2}}},  // the port library fails
    };
    for (std::uint32_t id : {532u, 575u}) {
        const ClassInfo& c = *find_class(id);
        const std::uint32_t place = id == 532 ? 46 : 12, mac = id == 532 ? 10 : 0;
        for (const Row& row : rows) {
            fake().reset();
            pSharedData = pStorData = nullptr;
            fake().port_macs = {{{3, 1}, port31}, {{1, 4}, port14}};
            fake().has_base_mac = row.base.has_value();
            fake().base_mac = row.base.value_or(Mac{});
            Tarv__StorOpen();
            Bytes record = transfer(c, 1, 0xEE);
            record[c.key_size() + place] = row.slot;
            record[c.key_size() + place + 1] = row.port;
            ASSERT_EQ(Tarv__SetConfig(id, list(c, {record})->data()), 0);
            EXPECT_EQ(Bytes(at(c.data, 0) + mac, at(c.data, 0) + mac + 6), Bytes(row.want.begin(), row.want.end()))
                << id << " slot " << int{row.slot} << " port " << int{row.port};
            EXPECT_EQ(fake().port_mac_requests, row.asked);
            EXPECT_EQ(fake().hwin_open_calls, row.slot == 2 ? 1 : 0);
        }
    }
}

// D from A, B and C: r = 2 * (B * C) / (125 * A), all 32-bit and wrapping.
TEST_F(SetConfigTest, ThroughputValueFollowsTheRate) {
    constexpr std::uint32_t kOne = 0x26E978D5u;  // 125 * kOne wraps to 1
    static_assert(125u * kOne == 1u);
    struct Row {
        std::uint32_t a;
        std::uint16_t b, c, d;
    };
    const Row rows[] = {
        {2, 125, 4, 4},                  // r = 4
        {100, 10, 1, 1},                 // r below 1
        {2, 124, 1, 1},                  // r = 0.992
        {2, 125, 3, 3},                  // r = 3
        {4, 375, 43691, 0},              // r = 65536.5: the low 16 bits of 65536
        {1, 65535, 65535, 0x8B43},       // B * C beyond 2^31: r = 68717379.6
        {0x80000000u, 65535, 65535, 3},  // X wraps to 2^31: r = 3.9998
        {kOne, 46340, 46340, 0x5020},    // r = 4294791200, just below 2^32
        {kOne, 46341, 46341, 0xFFFF},    // r = 4294976562: saturated
        {0, 0, 7, 1},                    // A = 0, Y = 0: r = 0
        {0, 1, 1, 0xFFFF},               // A = 0, Y > 0: saturated
    };
    const ClassInfo& c = *find_class(638);
    for (const Row& row : rows) {
        Bytes record = transfer(c, 1, 0xEE);
        store_le<std::uint32_t>(record.data() + 18 + 23, row.a);
        store_le<std::uint16_t>(record.data() + 18 + 27, row.b);
        store_le<std::uint16_t>(record.data() + 18 + 29, row.c);
        ASSERT_EQ(Tarv__SetConfig(638, list(c, {record})->data()), 0);
        EXPECT_EQ(load_le<std::uint16_t>(at(Table::ThroughputDataArray, 0) + 31), row.d) << row.a << " " << row.b;
    }
}

// The MEP write re-keys the bandwidth notifications: a list written before
// it is lost, after it stays.
TEST_F(SetConfigTest, BandwidthNotificationsSurviveOnlyAfterTheMeps) {
    const ClassInfo& mep = *find_class(532);
    const ClassInfo& bn = *find_class(848);
    const auto notifications = list(bn, {transfer(bn, 1, 0x31), transfer(bn, 5, 0x32)});
    const Bytes written(notifications->data(), notifications->data() + notifications->size());

    ASSERT_EQ(Tarv__SetConfig(848, notifications->data()), 0);
    ASSERT_EQ(Tarv__SetConfig(532, list(mep, {transfer(mep, 1, 0x41), transfer(mep, 5, 0x42)})->data()), 0);
    const Bytes lost = listed(bn);
    EXPECT_EQ(load_le<std::uint16_t>(lost.data()), 848u);
    EXPECT_EQ(Bytes(lost.begin() + 14, lost.begin() + 32), Bytes(18, 0));

    ASSERT_EQ(Tarv__SetConfig(848, notifications->data()), 0);
    const Bytes kept = listed(bn);
    EXPECT_EQ(Bytes(kept.data(), kept.data() + written.size()), written);
}

// The inline emptiness test sees each byte of every key size and none after.
TEST(KeyEmpty, EveryByteOfTheKeyCountsAndNoneAfterIt) {
    const auto check = [](auto size) {
        constexpr std::uint32_t k = decltype(size)::value;
        std::uint8_t key[k + 1] = {};
        key[k] = 0xFF;
        EXPECT_TRUE(key_empty<k>(key)) << k;
        for (std::uint32_t i = 0; i < k; ++i) {
            key[i] = 0x80;
            EXPECT_FALSE(key_empty<k>(key)) << k << " byte " << i;
            key[i] = 0;
        }
    };
    [&]<std::uint32_t... K>(std::integer_sequence<std::uint32_t, K...>) {
        (check(std::integral_constant<std::uint32_t, K>{}), ...);
    }(std::integer_sequence<std::uint32_t, 4, 6, 10, 14, 15, 18, 22>{});
}

}  // namespace
}  // namespace tarv::testing
