#include "objects.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "records.h"
#include "tarv/tarv.h"

namespace tarvtool {

TransferList TransferList::read(const ClassDef& c) {
    TransferList list;
    list.def_ = &c;
    switch (c.rule) {
        case Rule::NoStorage: {
            std::uint8_t unused = 0;
            Tarv__GetConfig(c.id, &unused, 0);
            return list;
        }
        case Rule::Singleton:
            list.buffer_.resize(c.record);
            Tarv__GetConfig(c.id, list.buffer_.data(), 1);
            list.count_ = 1;
            return list;
        case Rule::History:
            // Every occupied slot and no terminator: the end is the first
            // record whose id stayed zero in the cleared buffer.
            list.buffer_.assign(std::size_t{c.slots} * c.transfer(), 0);
            Tarv__GetConfig(c.id, list.buffer_.data(), 1);
            break;
        case Rule::List:
            // One record more than the table holds keeps room for the
            // terminator's bytes whatever the list's length.
            list.buffer_.assign(std::size_t{c.slots + 1} * c.transfer(), 0);
            Tarv__GetConfig(c.id, list.buffer_.data(), c.slots);
            break;
    }
    while (list.count_ < c.slots && !all_zero(list.key(list.count_))) ++list.count_;
    return list;
}

namespace {

// The identifiers of a key in the region, whose bytes are little-endian
// whatever the host.
std::array<std::uint32_t, 4> ids_of(const void* key, std::size_t count) {
    const auto* k = static_cast<const std::uint8_t*>(key);
    std::array<std::uint32_t, 4> ids{};
    for (std::size_t i = 0; i < count; ++i) ids[i] = le32(k + 2 + 4 * i);
    return ids;
}

Mep decode_mep(const std::array<std::uint32_t, 4>& id, Bytes r) {
    using namespace field;
    return Mep{id[0],
               id[1],
               id[2],
               static_cast<std::uint16_t>(value(r, wMepId)),
               value(r, eDirection),
               static_cast<std::uint16_t>(value(r, wMepVid)),
               mac(bytes(r, abyMepMac)),
               static_cast<std::uint8_t>(value(r, byMepSlot)),
               static_cast<std::uint8_t>(value(r, byMepPort)),
               static_cast<std::uint16_t>(value(r, wAlarmBits))};
}

// Every MEP the iterator walks, read by its MOID.
std::vector<Mep> read_meps() {
    std::vector<Mep> meps;
    for (const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr); p != nullptr; p = Tarv__MEPMoidIterator(p)) {
        const TARV_MOID moid = *p;
        std::array<std::uint8_t, TARV_MEP_RECORD_SIZE> record{};
        Tarv__ReadMEP(moid, record.data());
        meps.push_back(decode_mep(ids_of(&moid, 3), record));
    }
    return meps;
}

// Every throughput test the iterator walks, read by its key.
std::vector<Throughput> read_throughput() {
    using namespace field;
    std::vector<Throughput> tests;
    for (const TARV_THROUGHPUT_KEY* p = Tarv__ThroughputListMoidIterator(nullptr); p != nullptr;
         p = Tarv__ThroughputListMoidIterator(p)) {
        const TARV_THROUGHPUT_KEY key = *p;
        std::array<std::uint8_t, TARV_THROUGHPUT_RECORD_SIZE> r{};
        Tarv__ReadThroughputEntry(key, r.data());
        const auto id = ids_of(&key, 4);
        tests.push_back(Throughput{id[0], id[1], id[2], id[3], value(r, eEnableStatus), value(r, lOperandA),
                                   static_cast<std::uint16_t>(value(r, wOperandB)),
                                   static_cast<std::uint16_t>(value(r, wOperandC)),
                                   static_cast<std::uint16_t>(value(r, wDerived))});
    }
    return tests;
}

// Every bandwidth notification the iterator walks, read by its MOID.
std::vector<Bwn> read_bwn() {
    std::vector<Bwn> list;
    for (const TARV_MOID* p = Tarv__BandwidthNotificationMoidIterator(nullptr); p != nullptr;
         p = Tarv__BandwidthNotificationMoidIterator(p)) {
        const TARV_MOID moid = *p;
        std::array<std::uint8_t, TARV_BANDWIDTH_NOTIFICATION_RECORD_SIZE> r{};
        Tarv__ReadBandwidthNotification(moid, r.data());
        const auto id = ids_of(&moid, 3);
        list.push_back(Bwn{id[0], id[1], id[2], hex(r)});
    }
    return list;
}

}  // namespace

Configuration Configuration::read() {
    using namespace field;
    Configuration c;
    const TransferList mds = TransferList::read(class_of(cls::kMd));
    for (std::size_t i = 0; i < mds.size(); ++i) {
        const KeyIds k = key_ids(mds.def(), mds.key(i));
        c.mds.push_back(Md{k.id[0], field_text(bytes(mds.record(i), acMdName)),
                           std::int64_t{value(mds.record(i), eMdLevel)} - 1});
    }
    const TransferList mas = TransferList::read(class_of(cls::kMaNet));
    for (std::size_t i = 0; i < mas.size(); ++i) {
        const KeyIds k = key_ids(mas.def(), mas.key(i));
        c.mas.push_back(Ma{k.id[0], k.id[1], field_text(bytes(mas.record(i), acMaName)),
                           value(mas.record(i), dwCcmPeriod)});
    }
    const TransferList comps = TransferList::read(class_of(cls::kMaComp));
    for (std::size_t i = 0; i < comps.size(); ++i) {
        const KeyIds k = key_ids(comps.def(), comps.key(i));
        c.comps.push_back(MaComp{k.id[0], k.id[1], k.id[2], value(comps.record(i), eTagging),
                                 static_cast<std::uint16_t>(value(comps.record(i), wCompVid))});
    }
    c.meps = read_meps();
    const TransferList mips = TransferList::read(class_of(cls::kMip));
    for (std::size_t i = 0; i < mips.size(); ++i) {
        const KeyIds k = key_ids(mips.def(), mips.key(i));
        const Bytes r = mips.record(i);
        c.mips.push_back(Mip{k.id[0], k.id[1], k.id[2], mac(bytes(r, abyMipMac)),
                             static_cast<std::uint8_t>(value(r, byMipSlot)),
                             static_cast<std::uint8_t>(value(r, byMipPort))});
    }
    c.throughput = read_throughput();
    c.throughput_enabled = Tarv_GetEnableStatusofThroughput() != 0;
    const TransferList history = TransferList::read(class_of(cls::kHistory));
    for (std::size_t i = 0; i < history.size(); ++i)
        c.history.push_back(HistoryRecord{key_ids(history.def(), history.key(i)).id[0],
                                          field_text(bytes(history.record(i), acResult))});
    const TransferList pm = TransferList::read(class_of(cls::kPmSession));
    for (std::size_t i = 0; i < pm.size(); ++i) {
        const KeyIds k = key_ids(pm.def(), pm.key(i));
        c.pm.push_back(PmSession{k.id[0], k.id[1], k.id[2], k.session});
    }
    c.bwn = read_bwn();
    return c;
}

const Md* Configuration::find_md(std::uint32_t md) const noexcept {
    const auto it = std::find_if(mds.begin(), mds.end(), [&](const Md& m) { return m.md == md; });
    return it == mds.end() ? nullptr : &*it;
}

const Ma* Configuration::find_ma(std::uint32_t md, std::uint32_t ma) const noexcept {
    const auto it = std::find_if(mas.begin(), mas.end(), [&](const Ma& m) { return m.md == md && m.ma == ma; });
    return it == mas.end() ? nullptr : &*it;
}

const Mep* Configuration::find_mep(std::uint32_t md, std::uint32_t ma, std::uint32_t mep) const noexcept {
    const auto it =
        std::find_if(meps.begin(), meps.end(), [&](const Mep& m) { return m.md == md && m.ma == ma && m.mep == mep; });
    return it == meps.end() ? nullptr : &*it;
}

std::vector<const MaComp*> Configuration::comps_of(std::uint32_t md, std::uint32_t ma) const {
    std::vector<const MaComp*> found;
    for (const MaComp& comp : comps)
        if (comp.md == md && comp.ma == ma) found.push_back(&comp);
    return found;
}

Alarms Alarms::read(const Configuration& c) {
    Alarms a;
    std::array<std::uint16_t, TARV_MEP_SLOTS> words{};
    Tarv__GetAlarms(words.data());
    for (std::uint32_t slot = 0; slot < TARV_MEP_SLOTS; ++slot) {
        TARV_MOID moid{};
        std::array<char, TARV_ALARM_TEXT_SIZE + 1> text{};
        Tarv__GetDetailsForAlarm(slot, &moid, text.data());
        if (words[slot] == 0 && text[0] == 0) continue;
        const bool named = !all_zero(Bytes(reinterpret_cast<const std::uint8_t*>(&moid), sizeof moid));
        const auto id = ids_of(&moid, 3);
        const Mep* mep = named ? c.find_mep(id[0], id[1], id[2]) : nullptr;
        const Bytes text_bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
        a.meps.push_back(MepAlarm{slot, named, id[0], id[1], id[2], words[slot],
                                  mep != nullptr && words[slot] != 0 ? mep->alarm_bits : words[slot],
                                  field_text(text_bytes)});
    }
    std::array<std::uint8_t, TARV_PM_ALARM_BLOCK_SIZE> block{};
    Tarv__GetPMAlarms(block.data());
    for (std::uint32_t slot = 0; slot < TARV_PM_SLOTS; ++slot) {
        TARV_PM_KEY key{};
        Tarv__GetPMAlarmMoid(slot, &key);
        const auto word = le16(block.data() + static_cast<std::size_t>(slot) * 2);
        const Bytes key_bytes(reinterpret_cast<const std::uint8_t*>(&key), TARV_PM_KEY_SIZE);
        if (word == 0 && all_zero(key_bytes)) continue;
        std::array<char, TARV_MEP_ALARM_INFO_SIZE> info{};
        if (!all_zero(key_bytes)) Tarv__GetMepInfoAbout1731Alarm(key, info.data());
        const auto id = ids_of(&key, 3);
        const Bytes info_bytes(reinterpret_cast<const std::uint8_t*>(info.data()), info.size());
        a.pm.push_back(PmAlarm{slot, id[0], id[1], id[2], key_bytes[tarv::moid::kSessionIdOffset], word,
                               field_text(info_bytes)});
    }
    a.hw.resize(TARV_MEP_HW_ALARM_BLOCK_SIZE);
    Tarv__GetMEPHWAlarms(a.hw.data());
    return a;
}

std::vector<unsigned> bits_of(std::uint16_t word) {
    std::vector<unsigned> bits;
    for (unsigned bit = 0; bit < 16; ++bit)
        if (((word >> bit) & 1) != 0) bits.push_back(bit);
    return bits;
}

std::string port_text(std::uint8_t slot, std::uint8_t port) {
    return slot == kLagSlot ? fmt::format("lag {}", port) : fmt::format("{}/{}", slot, port);
}

std::string tagging_text(std::uint32_t tagging) {
    switch (tagging) {
        case kCVlan: return "C-VLAN";
        case kSVlan: return "S-VLAN";
        case kVfi: return "VFI";
        default: return fmt::format("tagging {}", tagging);
    }
}

std::string direction_text(std::uint32_t direction) {
    switch (direction) {
        case tarv::mep::kDown: return "Down";
        case tarv::mep::kUp: return "Up";
        default: return fmt::format("direction {}", direction);
    }
}

std::string path_text(std::initializer_list<std::uint32_t> ids) { return fmt::format("{}", fmt::join(ids, "/")); }

}  // namespace tarvtool
