// The real libtarv.so on the host platform, between processes: a writer fills
// the data region at offsets written down here from the region's contract,
// not taken from the library, and a reader reads it back through the library,
// so that a misplaced table in the library shows up as a difference.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/pcor.h"
#include "spawn.h"
#include "tarv/tarv.h"
#include "tarv_host.h"

namespace tarv::integration {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr char kRegion[] = "/kelm-data";
constexpr std::uint32_t kRegionSize = 453075;

// A table pair of the region: key array, data array, sizes, slot count.
struct Table {
    std::uint32_t keys, key_size, data, record_size, slots;
};
constexpr Table kMep{387829, 14, 386293, 48, 32};
constexpr std::uint32_t kMepOldMoids = 388277;

// A MOID of these identifiers, then the bytes of `tail`.
Bytes key(std::uint16_t w_class, std::initializer_list<std::uint32_t> ids, Bytes tail = {}) {
    Bytes k{static_cast<std::uint8_t>(w_class), static_cast<std::uint8_t>(w_class >> 8)};
    for (std::uint32_t id : ids)
        for (int shift = 0; shift < 32; shift += 8) k.push_back(static_cast<std::uint8_t>(id >> shift));
    k.insert(k.end(), tail.begin(), tail.end());
    return k;
}

// Record bytes that differ per seed and include 0x00 and 0xFF.
Bytes record(std::uint32_t size, std::uint32_t seed) {
    Bytes r(size);
    std::uint32_t x = seed * 2654435761u + 1;
    for (auto& b : r) b = static_cast<std::uint8_t>((x = x * 1103515245u + 12345u) >> 16);
    r.front() = 0x00;
    r.back() = 0xFF;
    return r;
}

struct Entry {
    std::uint32_t slot;
    Bytes key, record;
};
struct ClassData {
    std::uint32_t id;
    Table table;
    std::vector<Entry> entries;  // in slot order
};

// What the writer puts into the region: first and last slots of the tables,
// the 4096-slot class 581 up to its end, PM session slots 1 and 8, the
// throughput history and the class 519 singleton. MEPs come first.
const std::vector<ClassData> kClasses = {
    {532,
     kMep,
     {{0, key(532, {1, 1, 1}), record(48, 5)},
      {1, key(532, {1, 1, 2}), record(48, 6)},
      {31, key(532, {2, 128, 32}), record(48, 7)}}},
    {531, {385525, 6, 377205, 65, 128}, {{0, key(531, {1}), record(65, 1)}, {127, key(531, {128}), record(65, 2)}}},
    {574, {375925, 10, 368629, 57, 128},
     {{0, key(574, {1, 1}), record(57, 3)}, {127, key(574, {2, 128}), record(57, 4)}}},
    {581, {253941, 6, 188405, 16, 4096}, {{0, key(581, {1}), record(16, 8)}, {4095, key(581, {4096}), record(16, 9)}}},
    {674,
     {447874, 15, 446731, 127, 9},
     {{1, key(532, {1, 1, 1}, {1}), record(127, 10)}, {8, key(532, {2, 128, 32}, {8}), record(127, 11)}}},
    {652, {395317, 4, 395721, 505, 101}, {{0, {4, 3, 2, 1}, record(505, 12)}, {100, {7, 0, 0, 0}, record(505, 13)}}},
};
const Bytes kClass519 = record(14, 519);  // the singleton at the region's start
const std::vector<Entry>& kMeps = kClasses[0].entries;

// Old MOID the controller keeps for a MEP slot: the MOID itself, except for
// the last slot, whose MEP was renumbered.
Bytes old_moid(const Entry& mep) { return mep.slot == 31 ? key(532, {9, 9, 9}) : mep.key; }

void write_region(std::uint8_t* region) {
    std::memcpy(region, kClass519.data(), kClass519.size());
    for (const auto& c : kClasses) {
        for (const auto& e : c.entries) {
            std::memcpy(region + c.table.keys + e.slot * c.table.key_size, e.key.data(), e.key.size());
            std::memcpy(region + c.table.data + e.slot * c.table.record_size, e.record.data(), e.record.size());
        }
    }
    for (const auto& e : kMeps)
        std::memcpy(region + kMepOldMoids + e.slot * kMep.key_size, old_moid(e).data(), kMep.key_size);
    const Bytes stray = record(48, 99);  // a MEP record without a key is an empty slot
    std::memcpy(region + kMep.data + 5 * kMep.record_size, stray.data(), stray.size());
}

TARV_MOID as_moid(const Bytes& k) {
    TARV_MOID m;
    std::memcpy(&m, k.data(), sizeof m);
    return m;
}

// MEP MOIDs as the iterator hands them out.
std::vector<Bytes> iterate_meps() {
    std::vector<Bytes> moids;
    for (const TARV_MOID* m = Tarv__MEPMoidIterator(nullptr); m != nullptr && moids.size() <= kMep.slots;
         m = Tarv__MEPMoidIterator(m)) {
        const auto* b = reinterpret_cast<const std::uint8_t*>(m);
        moids.emplace_back(b, b + TARV_MOID_SIZE);
    }
    return moids;
}

// Every class through Tarv__GetConfig asked for every slot, byte for byte:
// key and record per entry, then an all-zero key (none for the history),
// and nothing past them; then the MEP readers.
void read_back() {
    for (const auto& c : kClasses) {
        Bytes want;
        for (const auto& e : c.entries) {
            want.insert(want.end(), e.key.begin(), e.key.end());
            want.insert(want.end(), e.record.begin(), e.record.end());
        }
        if (c.id != 652) want.insert(want.end(), c.table.key_size, 0);
        Bytes got(std::size_t{c.table.slots} * (c.table.key_size + c.table.record_size), 0xCC);
        EXPECT_EQ(Tarv__GetConfig(c.id, got.data(), c.id == 652 ? 1 : c.table.slots), 0) << c.id;
        want.resize(got.size(), 0xCC);
        EXPECT_TRUE(got == want) << "class " << c.id << " differs from byte "
                                 << std::mismatch(got.begin(), got.end(), want.begin()).first - got.begin();
    }
    Bytes singleton(kClass519.size() + 1, 0xCC), want = kClass519;
    want.push_back(0xCC);  // the record, no terminator
    Tarv__GetConfig(519, singleton.data(), 0);
    EXPECT_EQ(singleton, want);

    std::vector<Bytes> want_moids;
    for (const auto& e : kMeps) {
        want_moids.push_back(e.key);
        Bytes got(TARV_MEP_RECORD_SIZE, 0xCC);
        Tarv__ReadMEP(as_moid(e.key), got.data());
        EXPECT_EQ(got, e.record) << "slot " << e.slot;
        std::uint16_t index = 0xFFFF;
        EXPECT_EQ(Tarv__GetMepIndexFromOldMoid(as_moid(old_moid(e)), &index), 0);
        EXPECT_EQ(index, e.slot);
    }
    EXPECT_EQ(iterate_meps(), want_moids);
}

// The reader starts before the region exists: its attach fails with a trace
// and succeeds on a later call. The writer attaches read-write, which makes
// the region, and fills it; the reader reads it back, then follows a change
// without attaching again.
TEST(TwoProcessTest, ReaderStartedFirstReadsBackWhatTheWriterWrote) {
    const std::string prefix = "i" + std::to_string(getpid()) + "-";
    setenv("TARV_SHM_PREFIX", prefix.c_str(), 1);
    TarvHost_Reset();  // the children inherit a model with a region of this process's own
    const std::string object = "/" + prefix + (kRegion + 1);
    shm_unlink(object.c_str());
    Signal to_writer;
    Signal to_reader;
    const pid_t writer = spawn([&] {
        ASSERT_TRUE(to_writer.await('w'));
        Tarv__StorOpen();
        auto* region = static_cast<std::uint8_t*>(Pcor__OpenShm(kRegion, kRegionSize, PCOR_SHM_READ_WRITE));
        ASSERT_NE(region, nullptr);
        write_region(region);
        Bytes got(TARV_MEP_RECORD_SIZE, 0);
        Tarv__ReadMEP(as_moid(kMeps[0].key), got.data());
        EXPECT_EQ(got, kMeps[0].record) << "the read-write attach shows the region";
        to_reader.send('f');
        ASSERT_TRUE(to_writer.await('r'));
        std::memset(region + kMep.keys + kMep.key_size, 0, kMep.key_size);  // the MEP of slot 1 goes
        to_reader.send('c');
    });
    const pid_t reader = spawn([&] {
        char* traces = nullptr;
        std::size_t size = 0;
        std::FILE* stream = open_memstream(&traces, &size);
        TarvHost_SetTraceStream(stream);
        Tarv__Open();
        EXPECT_EQ(Tarv__MEPMoidIterator(nullptr), nullptr);
        std::fflush(stream);
        const std::string line(traces, size);
        EXPECT_EQ(line.rfind("tarv L1 Tarv__Open code=12 data/swch/api-tarv:", 0), 0u) << line;
        EXPECT_TRUE(line.ends_with(": KELM_SHARED_DATA\n")) << line;
        to_writer.send('w');
        ASSERT_TRUE(to_reader.await('f'));
        Tarv__Open();
        read_back();
        to_writer.send('r');
        ASSERT_TRUE(to_reader.await('c'));
        EXPECT_EQ(iterate_meps(), (std::vector<Bytes>{kMeps[0].key, kMeps[2].key}));
    });
    EXPECT_EQ(wait_for(writer), 0);
    EXPECT_EQ(wait_for(reader), 0);
    shm_unlink(object.c_str());
}

}  // namespace
}  // namespace tarv::integration
