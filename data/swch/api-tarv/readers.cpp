// Object readers and iterators: MEPs, MaNets, bandwidth notifications and
// the throughput list.
#include <cstring>

#include "readers.h"

static_assert(sizeof(TARV_THROUGHPUT_KEY) == TARV_THROUGHPUT_KEY_SIZE);

using namespace tarv;

extern "C" TARV_API const TARV_MOID* Tarv__MEPMoidIterator(const TARV_MOID* pPrevMoid) {
    const std::uint8_t* region = attached_region("Tarv__MEPMoidIterator");
    if (region == nullptr) return nullptr;
    return reinterpret_cast<const TARV_MOID*>(next_mep(region, reinterpret_cast<const std::uint8_t*>(pPrevMoid)));
}

extern "C" TARV_API void Tarv__ReadMEP(TARV_MOID Moid, void* pMep) {
    const std::uint8_t* region = attached_region("Tarv__ReadMEP");
    if (region == nullptr) return;
    const MoidBytes key(Moid);
    (void)read_mep(region, MoidValue::of(key.b), pMep);
}

extern "C" TARV_API int32_t Tarv__GetMepIndexFromOldMoid(TARV_MOID OldMoid, uint16_t* pMepIndex) {
    constexpr char kFunction[] = "Tarv__GetMepIndexFromOldMoid";
    if (pMepIndex == nullptr) {
        TARV_ERROR(kFunction, trace::kNotFound, "Tarv__GetMepIndexFromOldMoid() : pMepIndex is null\n");
        return -1;
    }
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return -1;
    const MoidBytes key(OldMoid);
    const std::uint32_t slot = find_slot(region, Table::MepOldMoidArray, key.b, key.hint());
    if (slot == kNotFound) {
        TARV_ERROR(kFunction, trace::kNotFound,
                   "Unable to read Mep - can't find specified MOID: Class %d Md %ld MaNet %ld Mep %ld", key.wClass(),
                   key.id(moid::kId1Offset), key.id(moid::kId2Offset), key.id(moid::kId3Offset));
        return -1;
    }
    *pMepIndex = static_cast<std::uint16_t>(slot);
    return 0;
}

extern "C" TARV_API uint32_t Tarv__DoesMANetExist(TARV_MANET_KEY MaNetKey) {
    const std::uint8_t* region = attached_region("Tarv__DoesMANetExist");
    if (region == nullptr) return 0;
    const KeyBytes<TARV_MANET_KEY> key(MaNetKey);
    return find_slot(region, Table::MaNetMoidArray, key.b, key.hint()) != kNotFound ? 1u : 0u;
}

extern "C" TARV_API void Tarv__ReadMANet(TARV_MANET_KEY MaNetKey, void* pMaNet) {
    const std::uint8_t* region = attached_region("Tarv__ReadMANet");
    if (region == nullptr) return;
    const KeyBytes<TARV_MANET_KEY> key(MaNetKey);
    (void)read_manet(region, MaNetKeyValue::of(key.b), pMaNet);
}

extern "C" TARV_API const TARV_MOID* Tarv__BandwidthNotificationMoidIterator(const TARV_MOID* pPrevMoid) {
    constexpr char kFunction[] = "Tarv__BandwidthNotificationMoidIterator";
    TARV_DEBUG(trace::kEnter, kFunction, "Enter");
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return nullptr;
    const std::uint8_t* next =
        iterate(region, Table::BandwidthNotificationMoidArray, reinterpret_cast<const std::uint8_t*>(pPrevMoid),
                [](std::uint32_t hint, std::uint32_t last_id) {
                    TARV_DEBUG(trace::kSuspicious, "Tarv__BandwidthNotificationMoidIterator",
                               "Wrong index %d from BandwidthNotificationId %ld", static_cast<int>(hint),
                               trace::as_ld(last_id));
                });
    return reinterpret_cast<const TARV_MOID*>(next);
}

extern "C" TARV_API void Tarv__ReadBandwidthNotification(TARV_MOID Moid, void* pBwn) {
    constexpr char kFunction[] = "Tarv__ReadBandwidthNotification";
    TARV_DEBUG(trace::kEnter, kFunction, "Enter");
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return;
    const MoidBytes key(Moid);
    // No hint: the scan from slot 0 alone decides.
    const std::uint32_t slot = find_slot(region, Table::BandwidthNotificationMoidArray, key.b, kNotFound);
    if (slot == kNotFound) {
        TARV_ERROR(kFunction, trace::kNotFound,
                   "Tarv__ReadBandwidthNotification: Unable to read BandwidthNotification - can't find specified MOID.");
        return;
    }
    std::memcpy(pBwn, entry(region, Table::BandwidthNotificationDataArray, slot),
                info(Table::BandwidthNotificationDataArray).entry);
}

extern "C" TARV_API const TARV_THROUGHPUT_KEY* Tarv__ThroughputListMoidIterator(const TARV_THROUGHPUT_KEY* pPrevKey) {
    const std::uint8_t* region = attached_region("Tarv__ThroughputListMoidIterator");
    if (region == nullptr) return nullptr;
    const std::uint8_t* next = iterate(region, Table::ThroughputMoidArray,
                                       reinterpret_cast<const std::uint8_t*>(pPrevKey),
                                       [](std::uint32_t, std::uint32_t) {});  // silent: hint 0 is used
    return reinterpret_cast<const TARV_THROUGHPUT_KEY*>(next);
}

extern "C" TARV_API void Tarv__ReadThroughputEntry(TARV_THROUGHPUT_KEY ThroughputKey, void* pEntry) {
    constexpr char kFunction[] = "Tarv__ReadThroughputEntry";
    const KeyBytes<TARV_THROUGHPUT_KEY> key(ThroughputKey);
    TARV_DEBUG(trace::kEnter, kFunction, "Md=0x%lx, Ma=0x%lx, Mep=0x%lx, Throughput=0x%lx",
               trace::as_lx(load_le<std::uint32_t>(key.b + moid::kId1Offset)),
               trace::as_lx(load_le<std::uint32_t>(key.b + moid::kId2Offset)),
               trace::as_lx(load_le<std::uint32_t>(key.b + moid::kId3Offset)),
               trace::as_lx(load_le<std::uint32_t>(key.b + moid::kId4Offset)));
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return;
    const std::uint32_t slot = find_slot(region, Table::ThroughputMoidArray, key.b, key.hint());
    if (slot == kNotFound) {
        TARV_ERROR(kFunction, trace::kNotFound,
                   "Tarv__ReadThroughput() : Unable to read class - can't find specified MOID.");
        return;
    }
    std::memcpy(pEntry, entry(region, Table::ThroughputDataArray, slot), info(Table::ThroughputDataArray).entry);
}

extern "C" TARV_API uint32_t Tarv_GetEnableStatusofThroughput(void) {
    if (attached_region("Tarv_GetEnableStatusofThroughput") == nullptr) return 0;
    constexpr std::uint32_t kEnabled = 2;
    for (const TARV_THROUGHPUT_KEY* p = Tarv__ThroughputListMoidIterator(nullptr); p != nullptr;
         p = Tarv__ThroughputListMoidIterator(p)) {
        // The key is copied once; when the controller has emptied the slot
        // since the iterator handed it out (a moment no test can time), the
        // all-zero key would read the meaningless record of the first empty
        // slot: skip it. A key that
        // changed to one no longer in the table reads nothing, and the
        // cleared buffer then says "not enabled".
        TARV_THROUGHPUT_KEY key;
        std::memcpy(&key, p, sizeof key);
        if (key_empty(reinterpret_cast<const std::uint8_t*>(&key), sizeof key)) continue;
        std::uint8_t record[TARV_THROUGHPUT_RECORD_SIZE] = {};
        Tarv__ReadThroughputEntry(key, record);
        if (get(record, throughput::eEnableStatus) == kEnabled) return 1;
    }
    return 0;
}
