// The real libtarv.so on the host platform, between processes over real
// shared memory, each test with a private prefix.
#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
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

// A key of class `w_class` whose identifiers are `ids`, little-endian.
Bytes key(std::uint16_t w_class, std::initializer_list<std::uint32_t> ids) {
    Bytes k{static_cast<std::uint8_t>(w_class), static_cast<std::uint8_t>(w_class >> 8)};
    for (std::uint32_t id : ids)
        for (int shift = 0; shift < 32; shift += 8) k.push_back(static_cast<std::uint8_t>(id >> shift));
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

// Removes the objects of `names` under this test's prefix, before and after.
struct PrivateRegions {
    std::vector<std::string> objects;
    explicit PrivateRegions(std::initializer_list<const char*> names) {
        const std::string prefix = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        EXPECT_EQ(TarvHost_SetShmPrefix((prefix.substr(0, 20) + std::to_string(getpid()) + "-").c_str()), 0);
        for (const char* name : names) {
            char object[TARV_HOST_SHM_NAME_MAX + 1];
            EXPECT_EQ(TarvHost_ShmObjectName(name, object, sizeof object), 0);
            objects.emplace_back(object);
            shm_unlink(object);
        }
    }
    ~PrivateRegions() {
        for (const std::string& o : objects) shm_unlink(o.c_str());
        TarvHost_SetShmPrefix(nullptr);
    }
};

// MEPs in slots 0, 1 and 31 (key and data arrays at the offsets the
// controller uses) and a stray MEP record behind an empty key.
constexpr std::uint32_t kMepKeys = 387829, kMepData = 386293;
const std::vector<std::pair<Bytes, Bytes>> kMeps = {{key(532, {1, 1, 1}), record(48, 5)},
                                                    {key(532, {1, 1, 2}), record(48, 6)},
                                                    {key(532, {2, 128, 32}), record(48, 7)}};
const std::uint32_t kMepSlots[] = {0, 1, 31};

void write_region(std::uint8_t* region) {
    for (std::size_t i = 0; i < kMeps.size(); ++i) {
        std::copy(kMeps[i].first.begin(), kMeps[i].first.end(), region + kMepKeys + kMepSlots[i] * 14);
        std::copy(kMeps[i].second.begin(), kMeps[i].second.end(), region + kMepData + kMepSlots[i] * 48);
    }
    const Bytes stray = record(48, 99);
    std::copy(stray.begin(), stray.end(), region + kMepData + 5 * 48);
}

// MEP MOIDs as the iterator hands them out.
std::vector<Bytes> iterate_meps() {
    std::vector<Bytes> moids;
    for (const TARV_MOID* m = Tarv__MEPMoidIterator(nullptr); m != nullptr && moids.size() <= 32;
         m = Tarv__MEPMoidIterator(m))
        moids.emplace_back(reinterpret_cast<const std::uint8_t*>(m), reinterpret_cast<const std::uint8_t*>(m) + 14);
    return moids;
}

// The MEPs by the iterator and their records, byte for byte.
void read_back() {
    for (std::size_t i = 0; i < kMeps.size(); ++i) {
        Bytes got(48, 0xCC);
        TARV_MOID moid;
        std::memcpy(&moid, kMeps[i].first.data(), sizeof moid);
        Tarv__ReadMEP(moid, got.data());
        EXPECT_EQ(got, kMeps[i].second) << "slot " << kMepSlots[i];
    }
    EXPECT_EQ(iterate_meps(), (std::vector<Bytes>{kMeps[0].first, kMeps[1].first, kMeps[2].first}));
}

// The reader starts before the region exists: its attach fails and succeeds
// on a later call. The writer attaches read-write, which makes the region,
// and fills it at offsets written down here, not taken from the library; the
// reader reads it back, then follows a change without attaching again. The
// checkpoint is written whole, then a prefix of it, and read back in a
// larger buffer.
TEST(TwoProcessTest, ReaderStartedFirstReadsBackWhatTheWriterWrote) {
    const PrivateRegions regions{"/kelm-data", "/kelm-chkp-data"};
    Bytes chkp = record(280, 280), head(10, 0xFF);
    Signal to_writer, to_reader;
    const pid_t writer = spawn([&] {
        ASSERT_TRUE(to_writer.await('w'));
        Tarv__StorOpen();
        auto* region = static_cast<std::uint8_t*>(Pcor__OpenShm("/kelm-data", 453075, PCOR_SHM_READ_WRITE));
        ASSERT_NE(region, nullptr);
        write_region(region);
        Tarv__ChkpOpen();
        Tarv__SetChkpData(16, 1, chkp.data(), 280);
        Tarv__SetChkpData(16, 1, head.data(), 10);
        to_reader.send('f');
        ASSERT_TRUE(to_writer.await('r'));
        std::memset(region + kMepKeys + 14, 0, 14);  // the MEP of slot 1 goes
        to_reader.send('c');
    });
    const pid_t reader = spawn([&] {
        TarvHost_SetModuleLevel(0);  // the failed attach traces an error
        Tarv__Open();
        EXPECT_EQ(Tarv__MEPMoidIterator(nullptr), nullptr);
        to_writer.send('w');
        ASSERT_TRUE(to_reader.await('f'));
        Tarv__Open();
        read_back();
        Tarv__ChkpOpen();
        std::uint16_t value = 0;
        Bytes got(300, 0xCC);
        Tarv__GetChkpData(16, &value, got.data(), 300);
        std::copy(head.begin(), head.end(), chkp.begin());
        chkp.resize(300, 0xCC);
        EXPECT_EQ(value, 1);
        EXPECT_EQ(got, chkp);
        to_writer.send('r');
        ASSERT_TRUE(to_reader.await('c'));
        EXPECT_EQ(iterate_meps(), (std::vector<Bytes>{kMeps[0].first, kMeps[2].first}));
    });
    EXPECT_EQ(wait_for(writer), 0);
    EXPECT_EQ(wait_for(reader), 0);
}

// A list of class `id` over `slots` slots with a `size`-byte key whose last
// identifier is the slot + 1 and a `record`-byte record; every other slot only
// on odd rounds, so readers see slots come and go.
Bytes list(std::uint16_t id, std::uint32_t size, std::uint32_t record, std::uint32_t slots, std::uint32_t round) {
    Bytes l;
    for (std::uint32_t s = 0; s < slots; ++s) {
        if (round % 2 == 0 && s % 2 == 1) continue;
        Bytes t = size == 14 ? key(id, {7, 7, s + 1}) : key(id, {s + 1});
        t.resize(size + record, static_cast<std::uint8_t>(round + s));
        l.insert(l.end(), t.begin(), t.end());
    }
    l.resize(l.size() + size, 0);
    return l;
}

// One process rewrites the MEP, MIP and class 581 tables in a loop while two
// others, attached read-only, walk and read them. Readers may see a class
// empty or half written; they must never crash, hang or walk forever (a MOID
// that vanishes under the walk restarts it at slot 0, so a walk can take more
// than 32 steps, but not many more).
TEST(ConfigConcurrencyTest, ReadersSurviveAWriterRewritingClasses) {
    const PrivateRegions regions{"/kelm-data"};
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(1500);
    const Signal go;
    const auto read_for = [&] {
        TarvHost_SetModuleLevel(0);  // a MEP that vanishes between walk and read traces an error
        ASSERT_TRUE(go.await('g'));
        Tarv__Open();
        Bytes buffer(4096 * 22 + 6);
        std::uint32_t walks = 0;
        for (; walks == 0 || Clock::now() < end; ++walks) {  // once at least, however late the writer starts
            int steps = 0;
            for (const TARV_MOID* m = Tarv__MEPMoidIterator(nullptr); m != nullptr; m = Tarv__MEPMoidIterator(m)) {
                ASSERT_LE(++steps, 32 * 32) << "the walk does not end";
                std::uint8_t mep[TARV_MEP_RECORD_SIZE];
                Tarv__ReadMEP(*m, mep);
            }
            for (auto [id, count] : {std::pair{532u, 32u}, {575u, 32u}, {581u, 4096u}})
                ASSERT_EQ(Tarv__GetConfig(id, buffer.data(), count), 0);
        }
    };
    const pid_t writer = spawn([&] {
        Tarv__StorOpen();
        for (std::uint32_t round = 0; round == 0 || Clock::now() < end; ++round) {
            ASSERT_EQ(Tarv__SetConfig(532, list(532, 14, 48, 32, round).data()), 0);
            ASSERT_EQ(Tarv__SetConfig(575, list(575, 14, 14, 32, round).data()), 0);
            ASSERT_EQ(Tarv__SetConfig(581, list(581, 6, 16, 4096, round).data()), 0);
            if (round == 0) go.send('g'), go.send('g');
        }
    });
    const pid_t readers[] = {spawn(read_for), spawn(read_for)};
    EXPECT_EQ(wait_for(writer), 0);
    for (pid_t r : readers) EXPECT_EQ(wait_for(r), 0);
}

}  // namespace
}  // namespace tarv::integration
