// Object readers and iterators: MEPs and MaNets.
#include <cstring>

#include "fields.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {
namespace {

// A key passed by value, as its raw bytes (a MOID, a MaNet key, ...).
template <typename Key>
struct KeyBytes {
    std::uint8_t b[sizeof(Key)];
    explicit KeyBytes(const Key& k) noexcept { std::memcpy(b, &k, sizeof b); }

    [[nodiscard]] int wClass() const noexcept { return load_le<std::uint16_t>(b + moid::kClassOffset); }
    [[nodiscard]] long id(std::uint32_t offset) const noexcept {
        return trace::as_ld(load_le<std::uint32_t>(b + offset));
    }
    [[nodiscard]] std::uint32_t hint() const noexcept { return slot_hint(b, sizeof b); }
};
using MoidBytes = KeyBytes<TARV_MOID>;
static_assert(sizeof(TARV_MOID) == TARV_MOID_SIZE);
static_assert(sizeof(TARV_MANET_KEY) == TARV_MANET_KEY_SIZE);

}  // namespace
}  // namespace tarv

using namespace tarv;

extern "C" TARV_API const TARV_MOID* Tarv__MEPMoidIterator(const TARV_MOID* pPrevMoid) {
    const std::uint8_t* region = attached_region("Tarv__MEPMoidIterator");
    if (region == nullptr) return nullptr;
    const std::uint8_t* next = iterate(region, Table::MepMoidArray, reinterpret_cast<const std::uint8_t*>(pPrevMoid),
                                       [](std::uint32_t hint, std::uint32_t last_id) {
                                           TARV_DEBUG(trace::kSuspicious, "Tarv__MEPMoidIterator",
                                                      "Wrong index %d from MepId %ld", static_cast<int>(hint),
                                                      trace::as_ld(last_id));
                                       });
    return reinterpret_cast<const TARV_MOID*>(next);
}

extern "C" TARV_API void Tarv__ReadMEP(TARV_MOID Moid, void* pMep) {
    const std::uint8_t* region = attached_region("Tarv__ReadMEP");
    if (region == nullptr) return;
    const MoidBytes key(Moid);
    const std::uint32_t slot = find_slot(region, Table::MepMoidArray, key.b, key.hint());
    if (slot == kNotFound) {
        TARV_ERROR("Tarv__ReadMEP", trace::kNotFound,
                   "Tarv__ReadMEP() : Unable to read Mep - can't find specified MOID: Class %d Md %ld MaNet %ld Mep %ld",
                   key.wClass(), key.id(moid::kId1Offset), key.id(moid::kId2Offset), key.id(moid::kId3Offset));
        return;
    }
    std::memcpy(pMep, entry(region, Table::MepDataArray, slot), info(Table::MepDataArray).entry);
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
    const std::uint32_t slot = find_slot(region, Table::MaNetMoidArray, key.b, key.hint());
    if (slot == kNotFound) {
        TARV_ERROR("Tarv__ReadMANet", trace::kNotFound,
                   "Tarv__ReadMANet() : Unable to read MaNet - can't find specified MOID: Class %d Md %ld MaNet %ld",
                   key.wClass(), key.id(moid::kId1Offset), key.id(moid::kId2Offset));
        return;
    }
    std::memcpy(pMaNet, entry(region, Table::MaNetDataArray, slot), info(Table::MaNetDataArray).entry);
}
