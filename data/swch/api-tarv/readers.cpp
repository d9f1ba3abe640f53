// Object readers and iterators: MEPs and MaNets.
#include <cstring>

#include "readers.h"

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
