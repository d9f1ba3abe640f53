// One side of a region shared between processes of different architectures
// (64-bit x86 and 32-bit ARM, little- and big-endian hosts) through the host
// platform's POSIX shared memory:
//
//   tarv-mixed-arch write PREFIX   attaches read-write and writes every class
//                                  with Tarv__SetConfig
//   tarv-mixed-arch read PREFIX    attaches read-only and reads every class
//                                  back through Tarv__GetConfig and the
//                                  readers; exits 1 on any difference
//   tarv-mixed-arch remove PREFIX  removes the region object
//
// Both sides build the same objects from a pattern that depends only on the
// class, the slot and the byte, stored byte by byte little-endian, so every
// architecture writes the same region (run_mixed_arch.sh compares the
// regions two writers leave byte for byte) and reads from any of them the
// objects' keys in their slots and the records stored there, whichever
// architecture wrote them.
#include <sys/mman.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "byteorder.h"
#include "classes.h"
#include "platform/pcor.h"
#include "region.h"
#include "tarv/tarv.h"
#include "tarv_host.h"

namespace {

using namespace tarv;
using Bytes = std::vector<std::uint8_t>;

// One object of the pattern: its slot, key and record.
struct Object {
    std::uint32_t slot;
    Bytes key, record;
};

// Bytes that differ per class, slot and position and include 0x00 and 0xFF.
Bytes pattern(std::uint32_t size, std::uint32_t class_id, std::uint32_t slot) {
    Bytes b(size);
    std::uint32_t x = class_id * 2654435761u + slot * 40503u + 1u;
    for (auto& v : b) v = static_cast<std::uint8_t>((x = x * 1103515245u + 12345u) >> 16);
    if (size > 1) {
        b.front() = 0x00;
        b.back() = 0xFF;
    }
    return b;
}

// The key of the object of class c in `slot`: the class id, then 1 in every
// identifier but the last, which holds the instance number slot + 1 so that
// the object stands in its hint slot. Session keys end in the slot number,
// history ids are slot + 1.
Bytes key_of(const ClassInfo& c, std::uint32_t slot) {
    Bytes k(c.key_size(), 0);
    if (c.rule == ClassRule::History) {
        store_le<std::uint32_t>(k.data(), slot + 1u);
        return k;
    }
    store_le<std::uint16_t>(k.data(), static_cast<std::uint16_t>(c.occupancy == Occupancy::SessionByte ? 532 : c.id));
    const std::uint32_t ids_end = c.occupancy == Occupancy::SessionByte ? 14 : c.key_size();
    for (std::uint32_t at = 2; at + 4 <= ids_end; at += 4)
        store_le<std::uint32_t>(k.data() + at, at + 4 == ids_end ? slot + 1u : 1u + c.id % 7u);
    if (c.occupancy == Occupancy::SessionByte) k[14] = static_cast<std::uint8_t>(slot);
    return k;
}

// Where the three MEPs and MIPs sit (a LAG, slot 3, another slot: the write
// takes their MAC addresses from the host platform's model), and the
// operands of the three throughput tests, from which the write derives a
// value (A = 0 among them).
constexpr std::uint8_t kPointPlaces[3][2] = {{2, 7}, {3, 9}, {1, 4}};
struct Rate {
    std::uint32_t a;
    std::uint16_t b, c;
};
constexpr Rate kRates[3] = {{1, 250, 1}, {0, 0, 0}, {0, 5, 5}};

// The objects of class c: the first, a middle and the last slot of its
// table; a singleton's one record.
std::vector<Object> objects_of(const ClassInfo& c) {
    std::vector<Object> out;
    if (c.rule == ClassRule::NoStorage) return out;
    if (c.rule == ClassRule::Singleton) {
        out.push_back({0, {}, pattern(c.record_size(), c.id, 0)});
        if (c.kept_when_first_byte_zero) out.back().record.front() = 0x01;  // else the write keeps the old one
        return out;
    }
    const bool packed = c.placement == Placement::Packed;  // the n-th record goes to slot n - 1
    for (std::uint32_t slot : {c.first_slot, packed ? 1 : (c.first_slot + c.slots()) / 2, packed ? 2 : c.slots() - 1}) {
        Object o{slot, key_of(c, slot), pattern(c.record_size(), c.id, slot)};
        const std::size_t n = out.size();
        if (c.mac.address.table != Table::Count) {
            o.record[c.mac.slot.offset] = kPointPlaces[n][0];
            o.record[c.mac.port.offset] = kPointPlaces[n][1];
        }
        if (c.rate.d.table != Table::Count) {
            set(o.record.data(), c.rate.a, kRates[n].a), set(o.record.data(), c.rate.b, kRates[n].b);
            set(o.record.data(), c.rate.c, kRates[n].c);
        }
        out.push_back(std::move(o));
    }
    return out;
}

// Old MOID the controller keeps for a MEP slot: the current one with MD 9.
Bytes old_moid(const Object& mep) {
    Bytes k = mep.key;
    store_le<std::uint32_t>(k.data() + 2, 9);
    return k;
}

const ClassInfo& class_info(std::uint32_t id) { return *find_class(id); }

// The list of class c's objects as Tarv__GetConfig gives it when asked for
// every slot: each object's key and the record stored in its slot of
// `region`; a terminator after a list class.
Bytes transfer_list(const std::uint8_t* region, const ClassInfo& c, const std::vector<Object>& objects) {
    Bytes list;
    for (const Object& o : objects) {
        list.insert(list.end(), o.key.begin(), o.key.end());
        list.insert(list.end(), entry(region, c.data, o.slot), entry(region, c.data, o.slot) + c.record_size());
    }
    if (c.rule == ClassRule::List) list.insert(list.end(), c.key_size(), 0);
    return list;
}

int failures = 0;
void expect(bool ok, const std::string& what) {
    if (ok) return;
    std::fprintf(stderr, "tarv-mixed-arch: %s\n", what.c_str());
    ++failures;
}

std::uint8_t* map_region(std::int32_t access) {
    return static_cast<std::uint8_t*>(Pcor__OpenShm(kRegionName, kRegionSize, access));
}

int write_side() {
    Tarv__StorOpen();
    std::uint8_t* region = map_region(PCOR_SHM_READ_WRITE);  // the same object, a second view
    if (region == nullptr) return 2;
    // Every class in the order of kClasses: the MEPs before the bandwidth
    // notifications, which a MEP write empties. A history list has no
    // terminator of its own: the zero id after it ends it.
    for (const ClassInfo& c : kClasses) {
        const std::vector<Object> objects = objects_of(c);
        Bytes list;
        for (const Object& o : objects) {
            list.insert(list.end(), o.key.begin(), o.key.end());
            list.insert(list.end(), o.record.begin(), o.record.end());
        }
        list.resize(list.size() + (c.rule == ClassRule::Singleton ? 0 : c.key_size()), 0);
        if (Tarv__SetConfig(c.id, list.data()) != 0) {
            std::fprintf(stderr, "tarv-mixed-arch: Tarv__SetConfig(%u) failed\n", static_cast<unsigned>(c.id));
            return 1;
        }
    }
    // The old MOIDs, which the controller alone writes.
    for (const Object& mep : objects_of(class_info(TARV_CLASS_MEP)))
        std::memcpy(entry(region, Table::MepOldMoidArray, mep.slot), old_moid(mep).data(), TARV_MOID_SIZE);
    std::printf("wrote %zu classes\n", kClasses.size());
    return 0;
}

int read_side() {
    Tarv__Open();
    const std::uint8_t* region = map_region(PCOR_SHM_READ_ONLY);
    if (region == nullptr) return 2;
    for (const ClassInfo& c : kClasses) {
        const std::vector<Object> objects = objects_of(c);
        const Bytes want = transfer_list(region, c, objects);
        const std::uint32_t count = c.rule == ClassRule::History ? 1 : (c.rule == ClassRule::List ? c.slots() : 0);
        Bytes got(want.size() + 16, 0xCC);
        expect(Tarv__GetConfig(c.id, got.data(), count) == 0, "class " + std::to_string(c.id) + ": result");
        Bytes expected = want;
        expected.resize(got.size(), 0xCC);
        expect(got == expected, "class " + std::to_string(c.id) + ": transfer list differs");
    }

    const std::vector<Object> meps = objects_of(class_info(TARV_CLASS_MEP));
    std::size_t walked = 0;
    for (const TARV_MOID* m = Tarv__MEPMoidIterator(nullptr); m != nullptr && walked <= meps.size();
         m = Tarv__MEPMoidIterator(m), ++walked)
        expect(walked < meps.size() && std::memcmp(m, meps[walked].key.data(), TARV_MOID_SIZE) == 0,
               "MEP walk step " + std::to_string(walked));
    expect(walked == meps.size(), "MEP walk length");
    for (const Object& mep : meps) {
        TARV_MOID moid;
        std::memcpy(&moid, mep.key.data(), sizeof moid);
        Bytes record(TARV_MEP_RECORD_SIZE, 0xCC);
        Tarv__ReadMEP(moid, record.data());
        expect(std::memcmp(record.data(), entry(region, Table::MepDataArray, mep.slot), record.size()) == 0,
               "MEP record of slot " + std::to_string(mep.slot));
        TARV_MOID old;
        std::memcpy(&old, old_moid(mep).data(), sizeof old);
        std::uint16_t index = 0xFFFF;
        expect(Tarv__GetMepIndexFromOldMoid(old, &index) == 0 && index == mep.slot,
               "old MOID of slot " + std::to_string(mep.slot));
    }
    for (const Object& manet : objects_of(class_info(TARV_CLASS_MANET))) {
        TARV_MANET_KEY key;
        std::memcpy(&key, manet.key.data(), sizeof key);
        Bytes record(TARV_MANET_RECORD_SIZE, 0xCC);
        Tarv__ReadMANet(key, record.data());
        expect(Tarv__DoesMANetExist(key) == 1 && std::memcmp(record.data(), entry(region, Table::MaNetDataArray, manet.slot), record.size()) == 0,
               "MaNet of slot " + std::to_string(manet.slot));
    }
    for (const Object& o : objects_of(class_info(TARV_CLASS_BANDWIDTH_NOTIFICATION))) {
        TARV_MOID moid;
        std::memcpy(&moid, o.key.data(), sizeof moid);
        Bytes record(TARV_BANDWIDTH_NOTIFICATION_RECORD_SIZE, 0xCC);
        Tarv__ReadBandwidthNotification(moid, record.data());
        expect(std::memcmp(record.data(), entry(region, Table::BandwidthNotificationDataArray, o.slot), record.size()) == 0,
               "bandwidth notification of slot " + std::to_string(o.slot));
    }
    for (const Object& o : objects_of(class_info(TARV_CLASS_THROUGHPUT))) {
        TARV_THROUGHPUT_KEY key;
        std::memcpy(&key, o.key.data(), sizeof key);
        Bytes record(TARV_THROUGHPUT_RECORD_SIZE, 0xCC);
        Tarv__ReadThroughputEntry(key, record.data());
        expect(std::memcmp(record.data(), entry(region, Table::ThroughputDataArray, o.slot), record.size()) == 0,
               "throughput test of slot " + std::to_string(o.slot));
    }
    for (const Object& o : objects_of(class_info(TARV_CLASS_PM_SESSION))) {
        TARV_PM_KEY key;
        Tarv__GetPMSessionMoid(o.slot, &key);
        expect(std::memcmp(&key, o.key.data(), sizeof key) == 0, "PM session key of slot " + std::to_string(o.slot));
    }
    std::printf("read %zu classes, %zu MEPs: %s\n", kClasses.size(), meps.size(), failures == 0 ? "same" : "DIFFERENT");
    return failures == 0 ? 0 : 1;
}

int remove_side() {
    char object[TARV_HOST_SHM_NAME_MAX + 1];
    if (TarvHost_ShmObjectName(kRegionName, object, sizeof object) != 0) return 2;
    shm_unlink(object);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || TarvHost_SetShmPrefix(argv[2]) != 0) {
        std::fprintf(stderr, "usage: tarv-mixed-arch write|read|remove PREFIX\n");
        return 2;
    }
    const std::string mode = argv[1];
    if (mode == "write") return write_side();
    if (mode == "read") return read_side();
    if (mode == "remove") return remove_side();
    std::fprintf(stderr, "usage: tarv-mixed-arch write|read|remove PREFIX\n");
    return 2;
}
