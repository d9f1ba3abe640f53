// Bandwidth notification and throughput list: iterators, readers and the
// throughput enable status.
#include "region_fixture.h"

namespace tarv::testing {
namespace {

using Next = const void* (*)(const void*);
using Read = void (*)(const std::uint8_t* key, void* out);

// One key table with its iterator and reader. A key of this table is
// (w_class, 0xABCDEF01, 2, [3,] id): the hint comes from its last id.
struct ListReader {
    const char* name;
    Table keys, data;
    std::uint16_t w_class;
    Next next;
    Read read;
    std::vector<std::string> walk_traces;  // of the walk below
    std::uint32_t read_slot;               // of a key held by slots 2 and 4 (its hint)
    std::string read_trace, missing;       // first trace of a read; error of a failed one
    std::vector<std::uint8_t> key(std::uint32_t id, std::uint16_t c = 0) const {
        const std::uint16_t k = c ? c : w_class;
        return keys == Table::ThroughputMoidArray ? key_bytes(k, {0xABCDEF01u, 2, 3, id})
                                                  : key_bytes(k, {0xABCDEF01u, 2, id});
    }
};

const ListReader kBwn{
    "BandwidthNotification", Table::BandwidthNotificationMoidArray, Table::BandwidthNotificationDataArray, 848,
    [](const void* p) -> const void* { return Tarv__BandwidthNotificationMoidIterator(static_cast<const TARV_MOID*>(p)); },
    [](const std::uint8_t* k, void* out) { Tarv__ReadBandwidthNotification(*reinterpret_cast<const TARV_MOID*>(k), out); },
    {"Enter", "Enter", "Enter", "Wrong index 39 from BandwidthNotificationId 40"}, 2, "Enter",
    "Tarv__ReadBandwidthNotification: Unable to read BandwidthNotification - can't find specified MOID."};
const ListReader kThroughput{
    "Throughput", Table::ThroughputMoidArray, Table::ThroughputDataArray, 638,
    [](const void* p) -> const void* {
        return Tarv__ThroughputListMoidIterator(static_cast<const TARV_THROUGHPUT_KEY*>(p));
    },
    [](const std::uint8_t* k, void* out) {
        Tarv__ReadThroughputEntry(*reinterpret_cast<const TARV_THROUGHPUT_KEY*>(k), out);
    },
    {}, 4, "Md=0xabcdef01, Ma=0x2, Mep=0x3, Throughput=0x5",
    "Tarv__ReadThroughput() : Unable to read class - can't find specified MOID."};

class ListTest : public RegionTest {
protected:
    void SetUp() override {
        RegionTest::SetUp();
        attach();
        fake().set_debug_level(7);
        fake().set_module_level(1);
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const auto& t : fake().traces) out.push_back(t.text);
        return out;
    }
};

class ListReaderTest : public ListTest, public ::testing::WithParamInterface<ListReader> {};

// Slot 0 holds id 1, slot 31 id 40 (a hint past the table). The bandwidth
// notification read scans without a hint, the throughput read tries it first.
TEST_P(ListReaderTest, WalksToTheLastSlotAndReadsWithOrWithoutTheHint) {
    const ListReader& r = GetParam();
    put_key(r.keys, 0, r.key(1));
    put_key(r.keys, 31, r.key(40));
    const std::uint32_t size = info(r.data).entry;

    const void* first = r.next(nullptr);
    EXPECT_EQ(first, at(r.keys, 0));
    const void* last = r.next(first);
    EXPECT_EQ(last, at(r.keys, 31));
    EXPECT_EQ(r.next(last), nullptr);
    EXPECT_EQ(texts(), r.walk_traces);

    fake().traces.clear();
    put_key(r.keys, 2, r.key(5));  // the same key before its hint slot 4
    put_key(r.keys, 4, r.key(5));
    put_pattern(r.data, 2, 0x22);
    put_pattern(r.data, 4, 0x24);
    GuardedBytes out(size);
    r.read(r.key(5).data(), out.data());
    EXPECT_EQ(std::vector<std::uint8_t>(out.data(), out.data() + size), bytes_of(r.data, r.read_slot));
    EXPECT_EQ(texts(), std::vector<std::string>{r.read_trace});

    fake().traces.clear();
    out.fill(0xEE);
    r.read(r.key(5, 532).data(), out.data());  // same ids, another class
    EXPECT_EQ(std::vector<std::uint8_t>(out.data(), out.data() + size), std::vector<std::uint8_t>(size, 0xEE));
    ASSERT_EQ(fake().traces.size(), 2u);
    EXPECT_EQ(fake().traces[1].text, r.missing);
    EXPECT_EQ(fake().traces[1].code, 3u);
}

INSTANTIATE_TEST_SUITE_P(Lists, ListReaderTest, ::testing::Values(kBwn, kThroughput),
                         [](const auto& p) { return std::string(p.param.name); });

constexpr std::uint32_t kEnableStatus = 9;  // 32 bits at this record offset

struct StatusCase {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> slot_status;
    std::uint32_t enabled;
    std::size_t reads;
};

class ThroughputStatusTest : public ListTest {};

TEST_F(ThroughputStatusTest, FirstRecordWithStatusTwoEndsTheWalk) {
    const std::vector<StatusCase> cases{
        {{}, 0, 0},
        {{{2, 1}, {7, 2}}, 1, 2},
        {{{2, 2}, {7, 2}}, 1, 1},
        {{{2, 1}, {7, 0x102}}, 0, 2},  // all 32 bits count
    };
    for (const StatusCase& c : cases) {
        std::memset(at(Table::ThroughputMoidArray, 0), 0, info(Table::ThroughputMoidArray).bytes());
        for (auto [slot, status] : c.slot_status) {
            put_key(Table::ThroughputMoidArray, slot, kThroughput.key(slot + 1));
            store_le(at(Table::ThroughputDataArray, slot) + kEnableStatus, status);
        }
        fake().traces.clear();
        EXPECT_EQ(Tarv_GetEnableStatusofThroughput(), c.enabled);
        EXPECT_EQ(fake().traces.size(), c.reads);
    }
}

TEST_F(ThroughputStatusTest, KeyThatVanishesBeforeItsReadIsNotEnabled) {
    put_key(Table::ThroughputMoidArray, 4, kThroughput.key(5));
    store_le(at(Table::ThroughputDataArray, 4) + kEnableStatus, 2u);
    fake().on_trace = [this](const TraceRecord&) {  // the read's first trace comes before its lookup
        put_key(Table::ThroughputMoidArray, 4, kThroughput.key(6));
    };
    EXPECT_EQ(Tarv_GetEnableStatusofThroughput(), 0u);
    EXPECT_EQ(fake().traces.back().code, 3u);
}

}  // namespace
}  // namespace tarv::testing
