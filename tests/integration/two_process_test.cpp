// The real libtarv.so on the host platform, between processes: a controller
// process writes the data region at the offsets the controller and the
// library agree on, and switch processes read it back through the library.
//
// The offsets below are written down here, from the region's contract, and
// not taken from the library, so that a misplaced table in the library shows
// up as a difference.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/pcor.h"
#include "process.h"
#include "tarv/tarv.h"
#include "tarv_host.h"

namespace tarv::integration {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr char kRegion[] = "/kelm-data";
constexpr std::uint32_t kRegionSize = 453075;

// A table pair of the region: key array, data array, sizes, slot count.
struct Table {
    std::uint32_t keys;
    std::uint32_t key_size;
    std::uint32_t data;
    std::uint32_t record_size;
    std::uint32_t slots;
};
constexpr Table kMd{385525, 6, 377205, 65, 128};
constexpr Table kManet{375925, 10, 368629, 57, 128};
constexpr Table kMep{387829, 14, 386293, 48, 32};
constexpr Table kClass581{253941, 6, 188405, 16, 4096};
constexpr Table kPmSession{447874, 15, 446731, 127, 9};
constexpr Table kHistory{395317, 4, 395721, 505, 101};
constexpr std::uint32_t kMepOldMoids = 388277;
constexpr std::uint32_t kClass519 = 0;  // 14-byte singleton at the region's start
constexpr std::uint32_t kClass519Size = 14;

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
    for (auto& b : r) {
        x = x * 1103515245u + 12345u;
        b = static_cast<std::uint8_t>(x >> 16);
    }
    r[0] = 0x00;
    r[size - 1] = 0xFF;
    return r;
}

struct Entry {
    std::uint32_t slot;
    Bytes key;
    Bytes record;
};

struct ClassData {
    std::uint32_t id;
    Table table;
    std::vector<Entry> entries;  // in slot order
};

// The configuration the controller process writes: first and last slots of
// every table, the 4096-slot class up to its end and the PM session slots
// 1 and 8.
struct Configuration {
    std::vector<ClassData> classes;
    Bytes class519 = record(kClass519Size, 519);

    static Configuration make() {
        Configuration c;
        c.classes.push_back({531, kMd, {{0, key(531, {1}), record(65, 1)}, {127, key(531, {128}), record(65, 2)}}});
        c.classes.push_back(
            {574, kManet, {{0, key(574, {1, 1}), record(57, 3)}, {127, key(574, {2, 128}), record(57, 4)}}});
        c.classes.push_back({532,
                             kMep,
                             {{0, key(532, {1, 1, 1}), record(48, 5)},
                              {1, key(532, {1, 1, 2}), record(48, 6)},
                              {31, key(532, {2, 128, 32}), record(48, 7)}}});
        c.classes.push_back(
            {581, kClass581, {{0, key(581, {1}), record(16, 8)}, {4095, key(581, {4096}), record(16, 9)}}});
        Bytes session1 = key(532, {1, 1, 1});
        session1.push_back(1);
        Bytes session8 = key(532, {2, 128, 32});
        session8.push_back(8);
        c.classes.push_back({674, kPmSession, {{1, session1, record(127, 10)}, {8, session8, record(127, 11)}}});
        c.classes.push_back(
            {652, kHistory, {{0, {4, 3, 2, 1}, record(505, 12)}, {100, {7, 0, 0, 0}, record(505, 13)}}});
        return c;
    }

    [[nodiscard]] const ClassData& of(std::uint32_t id) const {
        for (const auto& c : classes)
            if (c.id == id) return c;
        std::abort();
    }

    // Old MOID the controller keeps for a MEP slot: the MOID itself, except
    // for the last slot, whose MEP was renumbered.
    [[nodiscard]] Bytes old_moid(const Entry& mep) const { return mep.slot == 31 ? key(532, {9, 9, 9}) : mep.key; }

    // Writes everything into the region, as the controller does.
    void write(std::uint8_t* region) const {
        std::memcpy(region + kClass519, class519.data(), class519.size());
        for (const auto& c : classes) {
            for (const auto& e : c.entries) {
                std::memcpy(region + c.table.keys + e.slot * c.table.key_size, e.key.data(), e.key.size());
                std::memcpy(region + c.table.data + e.slot * c.table.record_size, e.record.data(), e.record.size());
            }
        }
        for (const auto& e : of(532).entries)
            std::memcpy(region + kMepOldMoids + e.slot * kMep.key_size, old_moid(e).data(), kMep.key_size);
        // A MEP slot with a record but no key is empty.
        const Bytes stray = record(48, 99);
        std::memcpy(region + kMep.data + 5 * kMep.record_size, stray.data(), stray.size());
    }

    // The transfer list Tarv__GetConfig gives for a class when asked for
    // every slot: key and record per entry, then an all-zero key (none for
    // the throughput history).
    [[nodiscard]] Bytes transfer_list(const ClassData& c) const {
        Bytes list;
        for (const auto& e : c.entries) {
            list.insert(list.end(), e.key.begin(), e.key.end());
            list.insert(list.end(), e.record.begin(), e.record.end());
        }
        if (c.id != 652) list.insert(list.end(), c.table.key_size, 0);
        return list;
    }
};

std::string first_difference(const Bytes& got, const Bytes& want) {
    for (std::size_t i = 0; i < want.size(); ++i)
        if (i >= got.size() || got[i] != want[i]) return "first difference at byte " + std::to_string(i);
    return "";
}

TARV_MOID as_moid(const Bytes& k) {
    TARV_MOID m;
    std::memcpy(&m, k.data(), sizeof m);
    return m;
}

// Controller side: attaches read-write as the controller does and writes.
int controller(const Configuration& config) {
    auto* region = static_cast<std::uint8_t*>(Pcor__OpenShm(kRegion, kRegionSize, PCOR_SHM_READ_WRITE));
    if (region == nullptr) return 2;
    config.write(region);
    return 0;
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

// Reader side: every class through Tarv__GetConfig, byte for byte, then the
// MEP readers.
int reader(const Configuration& config) {
    Checks checks("reader");
    Tarv__Open();

    for (const auto& c : config.classes) {
        const Bytes want = config.transfer_list(c);
        const std::uint32_t count = c.id == 652 ? 1 : c.table.slots;
        const std::size_t capacity =
            std::size_t{c.table.slots} * (c.table.key_size + c.table.record_size + (c.id == 652 ? 4u : 0u));
        Bytes got(capacity, 0xCC);
        checks.expect(Tarv__GetConfig(c.id, got.data(), count) == 0, "class " + std::to_string(c.id) + " unknown");
        checks.expect(std::equal(want.begin(), want.end(), got.begin()),
                      "class " + std::to_string(c.id) + ": " + first_difference(got, want));
        bool untouched = true;
        for (std::size_t i = want.size(); i < got.size(); ++i) untouched = untouched && got[i] == 0xCC;
        checks.expect(untouched, "class " + std::to_string(c.id) + " wrote past its list");
    }
    Bytes singleton(kClass519Size + 1, 0xCC);
    Tarv__GetConfig(519, singleton.data(), 0);
    checks.expect(
        std::equal(config.class519.begin(), config.class519.end(), singleton.begin()) && singleton.back() == 0xCC,
        "class 519 differs");

    const auto& meps = config.of(532).entries;
    const std::vector<Bytes> moids = iterate_meps();
    checks.expect(moids.size() == meps.size(), "iterator gave " + std::to_string(moids.size()) + " MEPs");
    for (std::size_t i = 0; i < meps.size() && i < moids.size(); ++i)
        checks.expect(moids[i] == meps[i].key, "MEP MOID " + std::to_string(i) + " differs");

    for (const auto& e : meps) {
        Bytes got(TARV_MEP_RECORD_SIZE, 0xCC);
        Tarv__ReadMEP(as_moid(e.key), got.data());
        checks.expect(got == e.record, "MEP record of slot " + std::to_string(e.slot) + " differs");
        std::uint16_t index = 0xFFFF;
        checks.expect(Tarv__GetMepIndexFromOldMoid(as_moid(config.old_moid(e)), &index) == 0 && index == e.slot,
                      "old MOID of slot " + std::to_string(e.slot) + " gave index " + std::to_string(index));
    }
    return checks.status();
}

class TwoProcessTest : public ::testing::Test {
protected:
    void SetUp() override {
        static int counter = 0;
        const std::string prefix = "i" + std::to_string(getpid()) + "-" + std::to_string(++counter) + "-";
        setenv("TARV_SHM_PREFIX", prefix.c_str(), 1);
        TarvHost_Reset();  // children inherit the model with the prefix
        char name[TARV_HOST_SHM_NAME_MAX + 1];
        ASSERT_EQ(TarvHost_ShmObjectName(kRegion, name, sizeof name), 0);
        object_ = name;
        shm_unlink(object_.c_str());
    }
    void TearDown() override {
        shm_unlink(object_.c_str());
        unsetenv("TARV_SHM_PREFIX");
        TarvHost_Reset();
    }

    std::string object_;
};

TEST_F(TwoProcessTest, ReaderSeesByteForByteWhatTheControllerWrote) {
    const Configuration config = Configuration::make();
    ASSERT_EQ(wait_for(spawn([&] { return controller(config); })), 0);
    EXPECT_EQ(wait_for(spawn([&] { return reader(config); })), 0);
}

TEST_F(TwoProcessTest, AttachedReaderSeesLaterChangesWithoutReattaching) {
    const Configuration config = Configuration::make();
    const auto& meps = config.of(532).entries;
    Signal to_reader;
    Signal to_controller;

    const pid_t controller_pid = spawn([&] {
        auto* region = static_cast<std::uint8_t*>(Pcor__OpenShm(kRegion, kRegionSize, PCOR_SHM_READ_WRITE));
        if (region == nullptr) return 2;
        config.write(region);
        to_reader.send('1');
        if (!to_controller.await('a')) return 3;
        // The MEP of slot 1 goes, a new one comes in slot 7, slot 0 changes VLAN.
        std::memset(region + kMep.keys + 1 * kMep.key_size, 0, kMep.key_size);
        const Bytes added = key(532, {1, 1, 8});
        std::memcpy(region + kMep.keys + 7 * kMep.key_size, added.data(), added.size());
        region[kMep.data + 6] = 0x34;
        region[kMep.data + 7] = 0x02;
        to_reader.send('2');
        return 0;
    });
    const pid_t reader_pid = spawn([&] {
        Checks checks("reader");
        if (!to_reader.await('1')) return 3;
        Tarv__Open();
        checks.expect(iterate_meps().size() == 3, "three MEPs before the change");
        to_controller.send('a');
        if (!to_reader.await('2')) return 3;
        const std::vector<Bytes> moids = iterate_meps();
        checks.expect(moids == std::vector<Bytes>{meps[0].key, key(532, {1, 1, 8}), meps[2].key},
                      "the iterator follows the region");
        Bytes got(TARV_MEP_RECORD_SIZE, 0);
        Tarv__ReadMEP(as_moid(meps[0].key), got.data());
        checks.expect(got[6] == 0x34 && got[7] == 0x02, "VLAN of slot 0 follows the region");
        return checks.status();
    });
    EXPECT_EQ(wait_for(controller_pid), 0);
    EXPECT_EQ(wait_for(reader_pid), 0);
}

TEST_F(TwoProcessTest, ReaderStartedBeforeTheControllerAttachesOnALaterCall) {
    const Configuration config = Configuration::make();
    Signal to_reader;
    Signal to_parent;
    const pid_t reader_pid = spawn([&] {
        Checks checks("early reader");
        std::FILE* traces = std::tmpfile();
        TarvHost_SetTraceStream(traces);
        Tarv__Open();
        checks.expect(Tarv__MEPMoidIterator(nullptr) == nullptr, "nothing to iterate before the region exists");
        char line[256] = {};
        std::rewind(traces);
        checks.expect(std::fgets(line, sizeof line, traces) != nullptr &&
                          std::strncmp(line, "tarv L1 Tarv__Open code=12 data/swch/api-tarv:", 46) == 0 &&
                          std::strstr(line, ": KELM_SHARED_DATA\n") != nullptr,
                      std::string("failed attach traced as: ") + line);
        to_parent.send('w');
        if (!to_reader.await('g')) return 3;
        Tarv__Open();
        checks.expect(iterate_meps().size() == config.of(532).entries.size(), "attached on the second call");
        return checks.status();
    });
    ASSERT_TRUE(to_parent.await('w'));
    EXPECT_EQ(wait_for(spawn([&] { return controller(config); })), 0);
    to_reader.send('g');
    EXPECT_EQ(wait_for(reader_pid), 0);
}

TEST_F(TwoProcessTest, StorOpenMakesTheRegionForTheConfigurationManager) {
    const Configuration config = Configuration::make();
    // The configuration manager attaches first, which creates the region;
    // then the controller fills it while the manager stays attached.
    Signal to_manager;
    Signal to_parent;
    const pid_t manager_pid = spawn([&] {
        Checks checks("manager");
        Tarv__StorOpen();
        to_parent.send('s');
        if (!to_manager.await('f')) return 3;
        Tarv__Open();  // attached read-write already: changes nothing
        const auto& mep = config.of(532).entries[0];
        Bytes got(TARV_MEP_RECORD_SIZE, 0);
        Tarv__ReadMEP(as_moid(mep.key), got.data());
        checks.expect(got == mep.record, "the manager reads the controller's MEP");
        return checks.status();
    });
    ASSERT_TRUE(to_parent.await('s'));
    EXPECT_EQ(wait_for(spawn([&] { return controller(config); })), 0);
    to_manager.send('f');
    EXPECT_EQ(wait_for(manager_pid), 0);
    EXPECT_EQ(wait_for(spawn([&] { return reader(config); })), 0);
}

}  // namespace
}  // namespace tarv::integration
