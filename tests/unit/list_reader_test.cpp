// Bandwidth notification and throughput list: iterators, readers and the
// throughput enable status.
#include <tuple>

#include "region_fixture.h"

namespace tarv::testing {
namespace {

// An iterator over untyped pointers.
template <typename Key, const Key* (*Next)(const Key*)>
const void* step(const void* p) {
    return Next(static_cast<const Key*>(p));
}

// One key table with its iterator and reader. A key of this table is
// (w_class, 0xABCDEF01, 2, [3,] id): the hint comes from its last id.
struct ListReader {
    const char* name;
    Table keys, data;
    std::uint16_t w_class;
    const void* (*next)(const void*);
    void (*read)(const Bytes& key, void* out);
    Lines walk_traces;           // of the walk below
    std::uint32_t read_slot;     // of a key held by slots 2 and 4 (its hint)
    std::string read_trace, missing;  // first trace of a read; error of a failed one
    Bytes key(std::uint32_t id, std::uint16_t c = 0) const {
        const std::uint16_t k = c ? c : w_class;
        return keys == Table::ThroughputMoidArray ? key_bytes(k, {0xABCDEF01u, 2, 3, id})
                                                  : key_bytes(k, {0xABCDEF01u, 2, id});
    }
};

const ListReader kBwn{
    "BandwidthNotification", Table::BandwidthNotificationMoidArray, Table::BandwidthNotificationDataArray, 848,
    step<TARV_MOID, Tarv__BandwidthNotificationMoidIterator>,
    [](const Bytes& k, void* out) { Tarv__ReadBandwidthNotification(as_key(k), out); },
    {"6 Enter", "6 Enter", "6 Enter", "4 Wrong index 39 from BandwidthNotificationId 40"}, 2, "6 Enter",
    "1/3 Tarv__ReadBandwidthNotification: Unable to read BandwidthNotification - can't find specified MOID."};
const ListReader kThroughput{
    "Throughput", Table::ThroughputMoidArray, Table::ThroughputDataArray, 638,
    step<TARV_THROUGHPUT_KEY, Tarv__ThroughputListMoidIterator>,
    [](const Bytes& k, void* out) { Tarv__ReadThroughputEntry(as_key<TARV_THROUGHPUT_KEY>(k), out); },
    {}, 4, "6 Md=0xabcdef01, Ma=0x2, Mep=0x3, Throughput=0x5",
    "1/3 Tarv__ReadThroughput() : Unable to read class - can't find specified MOID."};

using ListTest = AttachedTest;

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
    EXPECT_EQ(traced(), r.walk_traces);

    fake().traces.clear();
    put_key(r.keys, 2, r.key(5));  // the same key before its hint slot 4
    put_key(r.keys, 4, r.key(5));
    put_pattern(r.data, 2, 0x22);
    put_pattern(r.data, 4, 0x24);
    auto out = guarded(size);
    r.read(r.key(5), out->data());
    EXPECT_EQ(contents(*out), bytes_of(r.data, r.read_slot));
    out = guarded(size);
    r.read(r.key(5, 532), out->data());  // same ids, another class
    EXPECT_EQ(contents(*out), Bytes(size, 0xEE));
    EXPECT_EQ(traced(), (Lines{r.read_trace, r.read_trace, r.missing}));
}

INSTANTIATE_TEST_SUITE_P(Lists, ListReaderTest, ::testing::Values(kBwn, kThroughput),
                         [](const auto& p) { return std::string(p.param.name); });

// The first record with status 2 ends the walk, one read (one trace) per
// record before it. A key that changes before its read reads nothing (a
// second trace): not enabled.
TEST_F(ListTest, ThroughputIsEnabledByTheFirstRecordWithStatusTwo) {
    const std::tuple<std::vector<std::pair<std::uint32_t, std::uint32_t>>, std::uint32_t, std::size_t, bool> rows[] = {
        {{}, 0, 0, false},           {{{2, 1}, {7, 2}}, 1, 2, false}, {{{2, 2}, {7, 2}}, 1, 1, false},
        {{{2, 1}, {7, 0x102}}, 0, 2, false}, {{{4, 2}}, 0, 2, true}};
    for (const auto& [slot_status, enabled, traces, vanishes] : rows) {
        std::memset(at(Table::ThroughputMoidArray, 0), 0, info(Table::ThroughputMoidArray).bytes());
        for (auto [slot, status] : slot_status) {
            put_key(Table::ThroughputMoidArray, slot, kThroughput.key(slot + 1));
            store_le(at(Table::ThroughputDataArray, slot) + 9, status);  // 32 bits at offset 9
        }
        const auto change = [this](const TraceRecord&) { put_key(Table::ThroughputMoidArray, 4, kThroughput.key(6)); };
        if (vanishes) fake().on_trace = change;  // the read's first trace comes before its lookup
        fake().traces.clear();
        EXPECT_EQ(Tarv_GetEnableStatusofThroughput(), enabled);
        EXPECT_EQ(fake().traces.size(), traces);
    }
}

}  // namespace
}  // namespace tarv::testing
