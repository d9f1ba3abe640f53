// Writes the saved regions the tarvctl tests run on, through the library's
// own table directory and field list, from the demo region that `tarvctl
// demo` wrote (demo.bin, as the configuration-database manager and the
// controller leave a region):
//   demo.raw    demo.bin as a raw image, without the snapshot header
//   empty.bin   a zero-filled region
//   demo2.bin   demo.bin with a MEP added, a MIP removed, and alarm bits
//               raised on a MEP and a PM session and cleared on a MEP
//   faults.bin  demo.bin with one fault of every kind `check` reports, and
//               alarms whose MEP or session is gone
//   values.bin  demo.bin with one field value of every kind `check` does
//               not accept, and names that are not plain ASCII
//   random.bin  bytes of a fixed-seed generator, the same on every host
//   short.bin   1000 bytes, not a region
// Usage: tarvctl_fixture DIRECTORY
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "common/snapshot_file.h"
#include "fields.h"
#include "region.h"

namespace {

using tarv::Table;

bool save(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    const bool ok = f != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    return f != nullptr && std::fclose(f) == 0 && ok;
}

class Region {
public:
    Region() : bytes_(tarv::kRegionSize) {}

    std::uint8_t* at(Table t, std::uint32_t slot) { return tarv::entry(bytes_.data(), t, slot); }

    // A key: wClass, then 32-bit identifiers, then an optional session byte.
    void key(Table t, std::uint32_t slot, std::uint16_t cls, std::initializer_list<std::uint32_t> ids,
             int session = -1) {
        std::uint8_t* k = at(t, slot);
        std::memset(k, 0, tarv::info(t).entry);
        tarv::store_le(k, cls);
        std::uint32_t offset = 2;
        for (std::uint32_t id : ids) {
            tarv::store_le(k + offset, id);
            offset += 4;
        }
        if (session >= 0) k[offset] = static_cast<std::uint8_t>(session);
    }
    void clear(Table t, std::uint32_t slot) { std::memset(at(t, slot), 0, tarv::info(t).entry); }

    template <typename V>
    void set(Table t, std::uint32_t slot, tarv::Field<V> f, V value) {
        tarv::set(at(t, slot), f, value);
    }
    void text(Table t, std::uint32_t slot, tarv::Bytes f, const char* value) {
        std::memset(at(t, slot) + f.offset, 0, f.size);
        std::memcpy(at(t, slot) + f.offset, value, std::min<std::size_t>(std::strlen(value), f.size));
    }
    void fill(Table t, std::uint32_t slot, std::initializer_list<std::uint8_t> bytes, std::uint32_t offset = 0) {
        std::memcpy(at(t, slot) + offset, std::data(bytes), bytes.size());
    }

    // Snapshot files stamped with the demo's time; raw images on request.
    bool save(const std::string& path) const { return ::save(path, tarvtool::encode_snapshot(bytes_, time_)); }
    bool save_raw(const std::string& path) const { return ::save(path, bytes_); }
    bool load(const std::string& path) {
        const tarvtool::Snapshot s =
            tarvtool::decode_snapshot(tarvtool::read_input_file(path), path, tarvtool::SnapshotForm::Headered);
        bytes_ = s.region;
        time_ = s.header->time_ms;
        return true;
    }

private:
    std::vector<std::uint8_t> bytes_;
    std::uint64_t time_ = 0;
};

// The MAC the configuration writer derives for a point on (slot, port)
// with the host platform's default base address 02:54:41:52:56:00.
void set_mac(Region& r, Table t, std::uint32_t slot, tarv::Bytes field, std::uint8_t on_slot, std::uint8_t port) {
    std::uint32_t low = 0x525600;
    if (on_slot == 2)
        low += port + 1u;
    else
        low += 0x100u * on_slot + (on_slot == 3 ? 1u : port);
    r.fill(t, slot, {0x02, 0x54, 0x41, static_cast<std::uint8_t>(low >> 16), static_cast<std::uint8_t>(low >> 8),
                     static_cast<std::uint8_t>(low)},
           field.offset);
}

void ma(Region& r, std::uint32_t md_id, std::uint32_t id, const char* name, std::uint32_t ccm) {
    r.key(Table::MaNetMoidArray, id - 1, 574, {md_id, id});
    r.text(Table::MaNetDataArray, id - 1, tarv::manet::acMaName, name);
    r.set(Table::MaNetDataArray, id - 1, tarv::manet::dwCcmPeriod, ccm);
    r.fill(Table::MaNetDataArray, id - 1, {0x01, 0x00, 0x00, 0x00});  // the controller's own bytes
}

struct MepDef {
    std::uint32_t md, ma, mep;
    std::uint16_t id;
    std::uint32_t direction;
    std::uint16_t vid;
    std::uint8_t slot, port;
    std::uint16_t alarms;
};

// A MEP as the writer stores it (fields set to 1, MAC, companion keys) with
// what the controller adds (alarm bits, old MOID).
void mep(Region& r, const MepDef& m) {
    const std::uint32_t s = m.mep - 1;
    for (Table t : {Table::MepMoidArray, Table::MepOldMoidArray}) r.key(t, s, 532, {m.md, m.ma, m.mep});
    r.key(Table::Class577MoidArray, s, 577, {m.md, m.ma, m.mep});
    r.key(Table::BandwidthNotificationMoidArray, s, 848, {m.md, m.ma, m.mep});
    const Table d = Table::MepDataArray;
    r.set(d, s, tarv::mep::wMepId, m.id);
    r.set(d, s, tarv::mep::eDirection, m.direction);
    r.set(d, s, tarv::mep::wVid, m.vid);
    set_mac(r, d, s, tarv::mep::abyMacAddress, m.slot, m.port);
    r.set(d, s, tarv::mep::bAlarmBit2Enabled, std::uint8_t{1});
    r.set(d, s, tarv::mep::lStored1, 1u);
    r.set(d, s, tarv::mep::wAlarmBits, m.alarms);
    r.set(d, s, tarv::mep::lStored2, 1u);
    r.set(d, s, tarv::mep::bySlot, m.slot);
    r.set(d, s, tarv::mep::byPort, m.port);
}

void throughput(Region& r, std::initializer_list<std::uint32_t> key, std::uint32_t status, std::uint32_t a,
                std::uint16_t b, std::uint16_t c, std::uint16_t derived) {
    const std::uint32_t s = *(key.end() - 1) - 1;
    r.key(Table::ThroughputMoidArray, s, 638, key);
    const Table d = Table::ThroughputDataArray;
    r.set(d, s, tarv::throughput::eEnableStatus, status);
    r.set(d, s, tarv::throughput::lOperandA, a);
    r.set(d, s, tarv::throughput::wOperandB, b);
    r.set(d, s, tarv::throughput::wOperandC, c);
    r.set(d, s, tarv::throughput::wDerived, derived);
}

Region demo2(const Region& demo) {
    Region r = demo;
    mep(r, {1, 1, 7, 107, 1, 100, 1, 5, 0});
    for (Table t : {Table::MipMoidArray, Table::Class578MoidArray, Table::MipDataArray}) r.clear(t, 1);
    r.set(Table::MepDataArray, 0, tarv::mep::wAlarmBits, std::uint16_t{0x0002});
    r.set(Table::MepDataArray, 1, tarv::mep::wAlarmBits, std::uint16_t{0});
    tarv::store_le(r.at(Table::PMAlarmBlock, 1), std::uint16_t{0x0001});
    return r;
}

// One fault of each kind, each named by the lines `check` prints for it.
Region faults(const Region& demo) {
    Region r = demo;
    // A record behind an empty key.
    r.fill(Table::MepDataArray, 9, {0x00, 0x01});
    // A key of another class; the MIP's MA 1/1 exists.
    r.key(Table::MipMoidArray, 5, 532, {1, 1, 6});
    // A MEP in the wrong slot, and an MA whose instance has no slot.
    r.key(Table::MepMoidArray, 10, 532, {1, 1, 9});
    r.key(Table::MaNetMoidArray, 100, 574, {1, 200});
    // A duplicate key in the packed class 571.
    r.key(Table::Class571MoidArray, 0, 571, {1, 1, 1});
    r.key(Table::Class571MoidArray, 1, 571, {1, 1, 1});
    // PM keys whose session id does not match the slot, and one in slot 0.
    r.key(Table::PMSessionMoidArray, 4, 674, {1, 1, 1}, 6);
    r.key(Table::PMSessionMoidArray, 0, 674, {1, 1, 2}, 0);
    // A MEP whose MA is missing; a MEP whose MD is missing, in an MA whose
    // MD is missing too and which has no MA component.
    mep(r, {1, 9, 7, 107, 1, 100, 1, 3, 0});
    ma(r, 9, 9, "Orphan-MA", 4);
    mep(r, {9, 9, 8, 908, 1, 300, 4, 1, 0});
    // A bandwidth notification and a throughput test without their MEP.
    r.key(Table::BandwidthNotificationMoidArray, 11, 848, {1, 1, 12});
    throughput(r, {2, 2, 9, 3}, 1, 1, 1, 1, 1);
    // Alarms that `check` does not look at: a PM alarm whose session is
    // gone, and the text of a removed MEP, named by its old MOID alone.
    r.key(Table::PMAlarmMoidArray, 3, 674, {1, 1, 9}, 3);
    tarv::store_le(r.at(Table::PMAlarmBlock, 3), std::uint16_t{0x0008});
    r.key(Table::MepOldMoidArray, 9, 532, {1, 1, 10});
    r.text(Table::MepAlarmTextArray, 9, {Table::MepAlarmTextArray, 0, 81}, "Loss of continuity, MEP removed");
    return r;
}

// One value of each kind `check` refuses, each a boundary; the demo's other
// values (MD level 7, CCM periods 2 and 4, a MEP on a LAG) stay accepted.
Region values(const Region& demo) {
    Region r = demo;
    r.set(Table::MdDataArray, 1, tarv::md::eMdLevel, 0u);               // MD 2: level -1
    r.set(Table::MdDataArray, 2, tarv::md::eMdLevel, 9u);               // MD 3: level 8
    r.set(Table::MaNetDataArray, 0, tarv::manet::dwCcmPeriod, 8u);      // MA 1/1
    r.set(Table::MaNetDataArray, 2, tarv::manet::dwCcmPeriod, 0u);      // MA 3/3
    r.set(Table::MepDataArray, 0, tarv::mep::eDirection, 3u);           // MEP 1/1/1
    r.set(Table::MepDataArray, 2, tarv::mep::bySlot, std::uint8_t{0});  // MEP 2/2/3
    r.set(Table::MipDataArray, 0, tarv::mip::byPort, std::uint8_t{0});  // MIP 1/1/1 on slot 1
    r.set(Table::MepDataArray, 4, tarv::mep::wVid, std::uint16_t{8});   // MEP 3/3/5, its MA's VFI is 7
    // Not UTF-8 (0xe9), and UTF-8 with a control byte and a backslash.
    r.text(Table::MdDataArray, 0, tarv::md::acMdName, "Caf\xe9");
    r.text(Table::MaNetDataArray, 1, tarv::manet::acMaName, "K\xc3\xb6ln\x01\\200");
    return r;
}

std::vector<std::uint8_t> random_bytes() {
    std::vector<std::uint8_t> bytes(tarv::kRegionSize);
    std::mt19937 generator(20261125);  // its sequence is fixed by the standard
    for (std::uint8_t& b : bytes) b = static_cast<std::uint8_t>(generator());
    return bytes;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: tarvctl_fixture DIRECTORY\n");
        return 2;
    }
    const std::string dir = argv[1];
    Region demo;
    const bool ok = demo.load(dir + "/demo.bin") && demo.save_raw(dir + "/demo.raw") && Region().save(dir + "/empty.bin") &&
                    demo2(demo).save(dir + "/demo2.bin") && faults(demo).save(dir + "/faults.bin") &&
                    values(demo).save(dir + "/values.bin") && save(dir + "/random.bin", random_bytes()) &&
                    save(dir + "/short.bin", std::vector<std::uint8_t>(1000));
    if (!ok) std::perror("tarvctl_fixture");
    return ok ? 0 : 1;
}
