// Configuration write by class: Tarv__SetConfig against the region.
#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <utility>

#include "classes.h"
#include "region_fixture.h"

namespace tarv::testing {
namespace {

class SetConfigTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        Tarv__StorOpen();
        fake().traces.clear();
        fake().set_module_level(1);
    }
    static Bytes snapshot() { return {pStorData, pStorData + kRegionSize}; }
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
        auto g = guarded(all.size());
        std::copy(all.begin(), all.end(), g->data());
        return g;
    }
    // Writes one record of class `id` for slot 0 with bytes `at` of its
    // record set by `set`, and returns the record as stored.
    template <typename Set>
    std::uint8_t* write_one(std::uint32_t id, Set set) {
        const ClassInfo& c = *find_class(id);
        Bytes record = transfer(c, 1, 0xEE);
        set(record.data() + c.key_size());
        EXPECT_EQ(Tarv__SetConfig(id, list(c, {record})->data()), 0);
        return entry(pStorData, c.data, 0);
    }
};

const std::uint32_t kClassIds[] = {519, 523, 526, 528, 531, 532, 571, 573, 574, 575, 576,
                                   579, 580, 581, 638, 652, 665, 666, 673, 674, 848};

// What a write does beyond replacing its own key and data arrays: companion
// key arrays (emptied with their data arrays, then given each record's key
// under another class), 32-bit fields set to 1, and fields computed from the
// platform or the record (offset, width).
struct Extras {
    std::vector<std::tuple<Table, Table, std::uint16_t>> companions;
    std::vector<std::uint32_t> ones;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> computed;
};
const std::map<std::uint32_t, Extras> kExtras = {
    {526, {{}, {13}, {}}},
    {528, {{{Table::Class572MoidArray, Table::Class572DataArray, 572}}, {9}, {}}},
    {532, {{{Table::Class577MoidArray, Table::Class577DataArray, 577},
            {Table::BandwidthNotificationMoidArray, Table::BandwidthNotificationDataArray, 848}},
           {22, 28},
           {{10, 6}}}},
    {575, {{{Table::Class578MoidArray, Table::Class578DataArray, 578}}, {}, {{0, 6}}}},
    {638, {{}, {9}, {{31, 2}}}},
};

class EveryClass : public SetConfigTest, public ::testing::WithParamInterface<std::uint32_t> {};

// Over a region full of 0xA5, a list of the first and the last slot's
// records (a terminator at the guard page) changes exactly the class's
// arrays and companions: emptied, then the records, their companion keys and
// the fields set to 1; the computed fields are left out of the comparison.
// Only class 848 traces, "Enter".
TEST_P(EveryClass, WritesItsRecordsAndDerivedEntriesAndNothingElse) {
    const ClassInfo& c = *find_class(GetParam());
    const Extras extras = kExtras.contains(c.id) ? kExtras.at(c.id) : Extras{};
    const std::uint32_t k = c.key_size(), last = c.slots() - 1;
    fake().set_debug_level(7);
    std::memset(pStorData, 0xA5, kRegionSize);
    Bytes want = snapshot();
    std::vector<std::pair<std::uint32_t, Bytes>> placed;  // slot, transfer record
    // 519 and 523 store a record whose first byte is zero; only 673 keeps its value then.
    if (c.rule == ClassRule::Singleton) placed = {{0, transfer(c, 0, 0x3C)}};
    if (c.rule == ClassRule::Singleton && c.id != 673) placed[0].second[0] = 0;
    if (c.placement == Placement::LastId) placed = {{last, transfer(c, c.slots(), 0x3C)}, {0, transfer(c, 1, 0x5A)}};
    if (c.placement == Placement::SessionId) placed = {{8, transfer(c, 8, 0x3C)}, {1, transfer(c, 1, 0x5A)}};
    if (c.placement == Placement::Packed) placed = {{0, transfer(c, 9, 0x3C)}, {1, transfer(c, 1, 0x5A)}};
    std::vector<Table> emptied;
    if (c.rule == ClassRule::List || c.rule == ClassRule::History) emptied = {c.keys, c.data};
    for (const auto& [keys, data, w_class] : extras.companions) emptied.insert(emptied.end(), {keys, data});
    for (Table t : emptied) std::fill_n(want.data() + info(t).base, info(t).bytes(), 0);
    std::vector<Bytes> records;
    for (const auto& [slot, r] : placed) {
        records.push_back(r);
        std::copy_n(r.begin(), k, want.data() + info(c.keys).base + slot * k);
        std::uint8_t* record = want.data() + info(c.data).base + slot * c.record_size();
        std::copy(r.data() + k, r.data() + r.size(), record);
        for (std::uint32_t offset : extras.ones) store_le<std::uint32_t>(record + offset, 1);
        for (const auto& [keys, data, w_class] : extras.companions) {
            std::uint8_t* companion = want.data() + info(keys).base + slot * info(keys).entry;
            std::copy_n(r.begin(), k, companion);
            store_le<std::uint16_t>(companion, w_class);
            if (info(keys).key > k) std::copy_n(r.data() + k - 4, 4, companion + k);
        }
    }
    const auto input = c.rule == ClassRule::NoStorage ? guarded(0) : list(c, records);

    EXPECT_EQ(Tarv__SetConfig(c.id, input->data()), 0);

    Bytes got = snapshot();
    for (std::uint32_t s = 0; c.rule == ClassRule::List && s < c.slots(); ++s)
        for (auto [offset, width] : extras.computed)
            for (Bytes* region : {&got, &want})
                std::fill_n(region->data() + info(c.data).base + s * c.record_size() + offset, width, 0);
    EXPECT_TRUE(got == want) << "first difference at "
                             << std::mismatch(got.begin(), got.end(), want.begin()).first - got.begin();
    EXPECT_EQ(traced(true), c.id == 848 ? Lines{"6 Tarv__SetConfig_BandwidthNotification: Enter"} : Lines{});
}

INSTANTIATE_TEST_SUITE_P(Classes, EveryClass, ::testing::ValuesIn(kClassIds),
                         [](const auto& p) { return std::to_string(p.param); });

// Identifiers count by their low 16 bits and the later of two records for a
// slot stays; session id 0 goes to slot 0; packed lists end after their last
// slot without a terminator; a singleton 673 whose first byte is zero is not
// written.
TEST_F(SetConfigTest, RecordsGoToTheSlotTheirKeyNames) {
    using Stored = std::vector<std::pair<std::uint32_t, std::size_t>>;  // slot, record index
    Stored packed;
    for (std::size_t i = 0; i < 101; ++i) packed.emplace_back(i, i);
    const std::tuple<std::uint32_t, std::vector<std::uint32_t>, bool, Stored> rows[] = {
        {531, {1, 0x10001, 5}, true, {{0, 1}, {4, 2}}}, {674, {0}, true, {{0, 0}}}, {673, {}, false, {}},
        {571, std::vector<std::uint32_t>(32, 99), false, {packed.begin(), packed.begin() + 32}},
        {652, std::vector<std::uint32_t>(101, 99), false, packed}};
    for (const auto& [id, lasts, terminated, stored] : rows) {
        const ClassInfo& c = *find_class(id);
        std::vector<Bytes> records;
        for (std::uint32_t last : lasts) records.push_back(transfer(c, last, std::uint8_t(records.size() + 1)));
        if (id == 673) records.push_back(Bytes{0, 1, 2, 3, 4});
        EXPECT_EQ(Tarv__SetConfig(id, list(c, records, terminated)->data()), 0) << id;
        Bytes want(c.slots() * c.transfer_size(), 0), got;
        for (auto [slot, index] : stored)
            std::copy(records[index].begin(), records[index].end(), want.data() + slot * c.transfer_size());
        for (std::uint32_t s = 0; s < c.slots(); ++s) {
            got.insert(got.end(), entry(pStorData, c.keys, s), entry(pStorData, c.keys, s) + c.key_size());
            got.insert(got.end(), entry(pStorData, c.data, s), entry(pStorData, c.data, s) + c.record_size());
        }
        EXPECT_TRUE(got == want) << id;
    }
}

// A record that addresses no slot refuses the whole list before anything is
// emptied; the check stops at it (the buffer ends there) and names it.
TEST_F(SetConfigTest, RecordOutsideItsClassRefusesTheWholeList) {
    const std::tuple<std::uint32_t, std::vector<std::uint32_t>, std::string> rows[] = {
        {531, {128, 129}, "Class 531 record 2: instance 129 addresses no slot of 1..128"},
        {532, {0}, "Class 532 record 1: instance 0 addresses no slot of 1..32"},
        {638, {32, 33}, "Class 638 record 2: instance 33 addresses no slot of 1..32"},
        {581, {4096, 1, 0x11001}, "Class 581 record 3: instance 4097 addresses no slot of 1..4096"},
        {674, {8, 9}, "Class 674 record 2: session id 9 addresses no slot of 0..8"},
        {665, {255}, "Class 665 record 1: session id 255 addresses no slot of 0..8"},
    };
    std::mt19937 rng(1);
    for (std::uint8_t& b : std::span(pStorData, kRegionSize)) b = static_cast<std::uint8_t>(rng());
    const Bytes region = snapshot();
    for (const auto& [id, lasts, message] : rows) {
        const ClassInfo& c = *find_class(id);
        std::vector<Bytes> records;
        for (std::uint32_t last : lasts) records.push_back(transfer(c, last, 0x11));
        fake().traces.clear();
        EXPECT_EQ(Tarv__SetConfig(id, list(c, records, false)->data()), TARV_SET_CONFIG_REFUSED);
        EXPECT_TRUE(snapshot() == region) << id;
        EXPECT_EQ(traced(), Lines{"1/3 " + message});
    }
}

// Without a read-write attach (also after a read-only one) nothing is
// written, whatever the class; 580 has nothing to write and answers 0;
// unknown classes answer 1 untraced.
TEST_F(SetConfigTest, NothingIsWrittenWithoutReadWriteAttach) {
    for (bool read_only : {false, true}) {
        pSharedData = pStorData = nullptr;
        if (read_only) Tarv__Open();
        std::memset(fake().region(kRegionName, kRegionSize).data(), 0xA5, kRegionSize);
        const Bytes input(600, 0);  // an empty list: it would empty the class
        for (std::uint32_t id : kClassIds) {
            fake().traces.clear();
            EXPECT_EQ(Tarv__SetConfig(id, input.data()), id == 580 ? 0 : TARV_SET_CONFIG_NOT_ATTACHED) << id;
            EXPECT_EQ(traced(), id == 580 ? Lines{} : Lines{"1/12 KELM_SHARED_DATA not attached read-write"}) << id;
        }
        fake().traces.clear();
        for (std::uint32_t unknown : {0u, 572u, 577u, 578u, 999u}) EXPECT_EQ(Tarv__SetConfig(unknown, nullptr), 1);
        EXPECT_TRUE(fake().traces.empty());
        const std::uint8_t* r = fake().region(kRegionName, kRegionSize).data();
        EXPECT_EQ(std::count(r, r + kRegionSize, 0xA5), kRegionSize);
    }
}

// The MAC address of MEPs and MIPs comes from the platform by their slot and
// port, replacing what the input carried: a LAG (slot 2) takes the base
// address plus port + 1 in its low 24 bits unless those are within 6 of
// their end, slot 3 the address of its port 1, other slots their port's.
TEST_F(SetConfigTest, MacAddressComesFromTheChassisOrThePort) {
    using Mac = std::array<std::uint8_t, 6>;
    const Mac port31{2, 0, 0, 0, 3, 1}, port14{2, 0, 0, 0, 1, 4};
    // Slot, port, base address, the address stored, the ports asked. The low 24 bits N of the base: N + 6 just
    // below 2^24 is cut, N + 6 = 2^24 leaves the base. Without a base or a port address the address stays zero.
    using Asked = std::vector<std::pair<std::uint32_t, std::uint32_t>>;
    const std::tuple<std::uint8_t, std::uint8_t, std::optional<Mac>, Mac, Asked> rows[] = {
        {2, 3, Mac{1, 2, 3, 0, 0, 0x10}, {1, 2, 3, 0, 0, 0x14}, {}}, {2, 3, std::nullopt, {}, {}},
        {2, 255, Mac{1, 2, 3, 0xFF, 0xFF, 0xF9}, {1, 2, 3, 0, 0, 0xF9}, {}},
        {2, 0, Mac{1, 2, 3, 0xFF, 0xFF, 0xFA}, {1, 2, 3, 0xFF, 0xFF, 0xFA}, {}}, {3, 7, std::nullopt, port31, {{3, 1}}},
        {1, 4, std::nullopt, port14, {{1, 4}}}, {5, 2, std::nullopt, {}, {{5, 2}}}};
    for (std::uint32_t id : {532u, 575u}) {
        const std::uint32_t place = id == 532 ? 46 : 12, mac = id == 532 ? 10 : 0;
        for (const auto& [slot, port, base, want, asked] : rows) {
            SetUp();
            fake().port_macs = {{{3, 1}, port31}, {{1, 4}, port14}};
            fake().has_base_mac = base.has_value();
            fake().base_mac = base.value_or(Mac{});
            const std::uint8_t* record = write_one(id, [&, slot = slot, port = port](std::uint8_t* r) {
                r[place] = slot, r[place + 1] = port;
            });
            EXPECT_EQ(Bytes(record + mac, record + mac + 6), Bytes(want.begin(), want.end()))
                << id << " slot " << int{slot} << " port " << int{port};
            EXPECT_EQ(fake().port_mac_requests, asked);
            EXPECT_EQ(fake().hwin_open_calls, slot == 2 ? 1 : 0);
        }
    }
}

// D from A, B and C: r = 2 * (B * C) / (125 * A), all 32-bit and wrapping;
// r below 1 gives 1, r of 2^32 and more 0xFFFF, else the low 16 bits of r.
TEST_F(SetConfigTest, ThroughputValueFollowsTheRate) {
    constexpr std::uint32_t kOne = 0x26E978D5u;  // 125 * kOne wraps to 1
    static_assert(125u * kOne == 1u);
    // r = 4, below 1, 0.992, 3, 65536.5 (the low 16 bits of 65536), 68717379.6 (B * C beyond 2^31), 3.9998 (X wraps
    // to 2^31), 4294791200 (just below 2^32), 4294976562 (saturated); A = 0 with Y = 0 (r = 0) and Y > 0.
    const std::tuple<std::uint32_t, std::uint16_t, std::uint16_t, std::uint16_t> rows[] = {
        {2, 125, 4, 4}, {100, 10, 1, 1}, {2, 124, 1, 1}, {2, 125, 3, 3}, {4, 375, 43691, 0}, {1, 65535, 65535, 0x8B43},
        {0x80000000u, 65535, 65535, 3}, {kOne, 46340, 46340, 0x5020}, {kOne, 46341, 46341, 0xFFFF}, {0, 0, 7, 1},
        {0, 1, 1, 0xFFFF}};
    for (const auto& [a, b, c, d] : rows) {
        const std::uint8_t* record = write_one(638, [a = a, b = b, c = c](std::uint8_t* r) {
            store_le(r + 23, a), store_le(r + 27, b), store_le(r + 29, c);
        });
        EXPECT_EQ(load_le<std::uint16_t>(record + 31), d) << a << " " << b;
    }
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
