#include "objects.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "records.h"
#include "tarv/tarv.h"

namespace tarvctl {

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

Mep decode_mep(const TARV_MOID& moid, Bytes r) {
    using namespace field;
    return Mep{moid.lId1,
               moid.lId2,
               moid.lId3,
               static_cast<std::uint16_t>(value(r, wMepId)),
               value(r, eDirection),
               static_cast<std::uint16_t>(value(r, wMepVid)),
               mac(bytes(r, abyMepMac)),
               static_cast<std::uint8_t>(value(r, byMepSlot)),
               static_cast<std::uint8_t>(value(r, byMepPort))};
}

// Every MEP the iterator walks, read by its MOID.
std::vector<Mep> read_meps() {
    std::vector<Mep> meps;
    for (const TARV_MOID* p = Tarv__MEPMoidIterator(nullptr); p != nullptr; p = Tarv__MEPMoidIterator(p)) {
        const TARV_MOID moid = *p;
        std::array<std::uint8_t, TARV_MEP_RECORD_SIZE> record{};
        Tarv__ReadMEP(moid, record.data());
        // The key's bytes are little-endian whatever the host.
        const auto* k = reinterpret_cast<const std::uint8_t*>(&moid);
        meps.push_back(decode_mep(TARV_MOID{le16(k), le32(k + 2), le32(k + 6), le32(k + 10)}, record));
    }
    return meps;
}

}  // namespace

Configuration Configuration::read() {
    using namespace field;
    Configuration c;
    const TransferList mds = TransferList::read(class_of(cls::kMd));
    for (std::size_t i = 0; i < mds.size(); ++i) {
        const KeyIds k = key_ids(mds.def(), mds.key(i));
        c.mds.push_back(Md{k.id[0], display_text(bytes(mds.record(i), acMdName)),
                           std::int64_t{value(mds.record(i), eMdLevel)} - 1});
    }
    const TransferList mas = TransferList::read(class_of(cls::kMaNet));
    for (std::size_t i = 0; i < mas.size(); ++i) {
        const KeyIds k = key_ids(mas.def(), mas.key(i));
        c.mas.push_back(Ma{k.id[0], k.id[1], display_text(bytes(mas.record(i), acMaName)),
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
    const TransferList tests = TransferList::read(class_of(cls::kThroughput));
    for (std::size_t i = 0; i < tests.size(); ++i) {
        const KeyIds k = key_ids(tests.def(), tests.key(i));
        const Bytes r = tests.record(i);
        c.throughput.push_back(Throughput{k.id[0], k.id[1], k.id[2], k.id[3], value(r, eEnableStatus),
                                          value(r, lOperandA), static_cast<std::uint16_t>(value(r, wOperandB)),
                                          static_cast<std::uint16_t>(value(r, wOperandC)),
                                          static_cast<std::uint16_t>(value(r, wDerived))});
    }
    const TransferList history = TransferList::read(class_of(cls::kHistory));
    for (std::size_t i = 0; i < history.size(); ++i)
        c.history.push_back(HistoryRecord{key_ids(history.def(), history.key(i)).id[0],
                                          display_text(bytes(history.record(i), acResult))});
    const TransferList pm = TransferList::read(class_of(cls::kPmSession));
    for (std::size_t i = 0; i < pm.size(); ++i) {
        const KeyIds k = key_ids(pm.def(), pm.key(i));
        c.pm.push_back(PmSession{k.id[0], k.id[1], k.id[2], k.session});
    }
    const TransferList bwn = TransferList::read(class_of(cls::kBwn));
    for (std::size_t i = 0; i < bwn.size(); ++i) {
        const KeyIds k = key_ids(bwn.def(), bwn.key(i));
        c.bwn.push_back(Bwn{k.id[0], k.id[1], k.id[2], hex(bwn.record(i))});
    }
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

std::string port_text(std::uint8_t slot, std::uint8_t port) {
    return slot == kLagSlot ? fmt::format("lag {}", port) : fmt::format("{}/{}", slot, port);
}

std::string tagging_text(std::uint32_t tagging) {
    switch (tagging) {
        case 1: return "C-VLAN";
        case 2: return "S-VLAN";
        case kTaggingVfi: return "VFI";
        default: return fmt::format("tagging {}", tagging);
    }
}

std::string direction_text(std::uint32_t direction) {
    switch (direction) {
        case 1: return "Down";
        case 2: return "Up";
        default: return fmt::format("direction {}", direction);
    }
}

std::string path_text(std::initializer_list<std::uint32_t> ids) { return fmt::format("{}", fmt::join(ids, "/")); }

}  // namespace tarvctl
