// Configuration read by class: the transfer lists of Tarv__GetConfig.
#include <string>
#include <tuple>

#include "classes.h"
#include "region_fixture.h"

namespace tarv::testing {
namespace {

using SlotKeys = std::vector<std::pair<std::uint32_t, Bytes>>;

class GetConfigTest : public AttachedTest {
protected:
    // Key then record of `slots`, then a zero key when `terminated`, then
    // 0xEE up to `size`.
    Bytes listing(const ClassInfo& c, const std::vector<std::uint32_t>& slots, bool terminated, std::size_t size) {
        Bytes out;
        for (std::uint32_t s : slots) {
            const Bytes k = bytes_of(c.keys, s, c.key_size()), d = bytes_of(c.data, s);
            out.insert(out.end(), k.begin(), k.end());
            out.insert(out.end(), d.begin(), d.end());
        }
        if (terminated) out.resize(out.size() + c.key_size(), 0);
        out.resize(size, 0xEE);
        return out;
    }
};

// Occupied slots in slot order (a record behind an empty key is no object),
// at most `count` of them; a zero key ends the list when fewer than `count`
// fill it. PM sessions occupy the slots from 1 whose session byte is their
// number. The throughput history has no terminator: count 0 hands out the
// first record, any other count every record, each traced with its result
// text of at most its 404 bytes. The buffer ends at a guard page after room
// for `room` records.
TEST_F(GetConfigTest, ListsOccupiedSlotsUpToTheCount) {
    const SlotKeys md{{3, key_bytes(531, {4})}, {7, key_bytes(531, {8})}};
    const SlotKeys history{{2, {2, 0x10, 0, 0}}, {9, {9, 0x10, 0, 0}}}, last{{100, {100, 0x10, 0, 0}}};
    const auto pm = [](Bytes k, std::uint8_t session) { return k.push_back(session), k; };
    const Bytes pm_key = key_bytes(532, {1, 2, 3});
    const std::string save = "5 Tarv__GetConfig_ThroughputHistory: Save Record ";
    const std::tuple<std::uint32_t, SlotKeys, std::uint32_t, std::uint32_t, std::vector<std::uint32_t>, bool, Lines>
        rows[] = {
            {531, md, 10, 10, {3, 7}, true, {}}, {531, md, 2, 2, {3, 7}, false, {}}, {531, md, 1, 1, {3}, false, {}},
            {531, md, 0, 1, {3}, false, {}},     {532, {}, 1, 1, {}, true, {}},
            {674, {{5, pm(pm_key, 5)}, {6, pm(pm_key, 7)}, {0, pm(pm_key, 0)}, {8, pm(Bytes(14, 0), 8)}}, 9, 9, {5, 8},
             true, {}},
            {848, {{0, key_bytes(848, {1, 1, 1})}, {4, key_bytes(848, {1, 1, 5})}}, 5, 5, {0, 4}, true,
             {"6 Tarv__GetConfig_BandwidthNotification: Enter"}},
            {581, {{4095, key_bytes(581, {4096})}}, 0xFFFFFFFFu, 2, {4095}, true, {}},
            {579, {{127, key_bytes(579, {1, 1, 1, 128})}}, 2, 2, {127}, true, {}},
            {652, {}, 0, 1, {}, false, {}}, {652, {}, 5, 1, {}, false, {}},
            {652, history, 0, 1, {2}, false, {save + "2, result: passed"}},
            {652, history, 1, 2, {2, 9}, false, {save + "2, result: passed", save + "9, result: failed"}},
            {652, last, 7, 1, {100}, false, {save + "100, result: " + std::string(404, 'A')}},
        };
    for (const auto& [id, keys, count, room, listed, terminated, traces] : rows) {
        const ClassInfo& c = *find_class(id);
        std::memset(at(c.keys, 0), 0, info(c.keys).bytes());
        for (std::uint32_t s = 0; s < c.slots(); ++s) put_pattern(c.data, s, static_cast<std::uint8_t>(s));
        for (const auto& [slot, key] : keys) put_key(c.keys, slot, key);
        if (id == 652) {
            std::strcpy(reinterpret_cast<char*>(at(c.data, 2) + 101), "passed");
            std::strcpy(reinterpret_cast<char*>(at(c.data, 9) + 101), "failed");
            std::memset(at(c.data, 100) + 101, 'A', 404);  // no terminator
        }
        const std::size_t size = std::size_t{room} * c.transfer_size() + (terminated ? c.key_size() : 0);
        const auto out = guarded(size);
        fake().traces.clear();
        EXPECT_EQ(Tarv__GetConfig(id, out->data(), count), 0);
        EXPECT_EQ(contents(*out), listing(c, listed, terminated, size)) << id << " count " << count;
        EXPECT_EQ(traced(true), traces);
    }
}

// Singletons copy exactly their record whatever the count; class 580 and
// unknown classes write nothing.
TEST_F(GetConfigTest, SingletonsCopyTheirRecordOthersNothing) {
    for (auto [id, table] : {std::pair{519u, Table::Class519Record}, {523u, Table::Class523Record},
                             {673u, Table::Class673Record}}) {
        put_pattern(table, 0, static_cast<std::uint8_t>(id));
        for (std::uint32_t count : {0u, 100u}) {
            const auto out = guarded(info(table).entry);
            EXPECT_EQ(Tarv__GetConfig(id, out->data(), count), 0);
            EXPECT_EQ(contents(*out), bytes_of(table, 0)) << id;
        }
    }
    put_key(Table::Class572MoidArray, 0, key_bytes(572, {1, 1, 1, 1, 1}));
    const auto out = guarded(64);
    EXPECT_EQ(Tarv__GetConfig(580, out->data(), 1), 0);
    for (std::uint32_t unknown : {0u, 520u, 572u, 577u, 578u, 999u, 0xFFFFFFFFu})
        EXPECT_EQ(Tarv__GetConfig(unknown, out->data(), 1), 1) << unknown;
    EXPECT_EQ(contents(*out), Bytes(64, 0xEE));
    EXPECT_TRUE(fake().traces.empty());
}

}  // namespace
}  // namespace tarv::testing
