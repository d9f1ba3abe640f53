// The checkpoint region "/kelm-chkp-data": one opaque 280-byte record of the
// OAM controller, attached on its own and read or written whole (a write may
// cover a prefix). The library moves bytes and checks the caller's
// arguments; it never looks inside the record.
#include <cstring>

#include "platform/pcor.h"
#include "region.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {
namespace {

constexpr char kChkpRegionName[] = "/kelm-chkp-data";
constexpr std::uint32_t kChkpDataSize = TARV_CHKP_DATA_SIZE;
constexpr std::uint32_t kSectionId = TARV_CHKP_SECTION_ID;
constexpr std::uint16_t kSectionValue = TARV_CHKP_SECTION_VALUE;
static_assert(kChkpDataSize == 280);

// Lengths are signed counts but compared unsigned: a negative one counts as
// very large. Traces print them as the signed values the caller passed.
constexpr std::uint32_t as_count(std::int32_t length) noexcept { return static_cast<std::uint32_t>(length); }

}  // namespace
}  // namespace tarv

using namespace tarv;

extern "C" TARV_API void Tarv__ChkpOpen(void) {
    constexpr char kFunction[] = "Tarv__ChkpOpen";
    TARV_DEBUG(trace::kDetail, kFunction, "%s\n", kChkpRegionName);
    if (pChkpData != nullptr) return;
    pChkpData = static_cast<std::uint8_t*>(Pcor__OpenShm(kChkpRegionName, kChkpDataSize, PCOR_SHM_READ_WRITE));
    if (pChkpData == nullptr)
        TARV_ERROR(kFunction, trace::kNotAttached, "Open KELM Read-Write SHM failed - %s\n", kChkpRegionName);
}

extern "C" TARV_API void Tarv__GetChkpData(uint32_t eSectionId, uint16_t* pwValue, void* pData,
                                           int32_t lLengthInByte) {
    constexpr char kFunction[] = "Tarv__GetChkpData";
    TARV_DEBUG(trace::kDetail, kFunction, "eSectionId: %d  lLengthInByte:%ld\n", static_cast<int>(eSectionId),
               static_cast<long>(lLengthInByte));
    if (pData == nullptr) {
        TARV_WARNING(kFunction, trace::kNullData, "Illegal pData.\n");
        return;
    }
    // Also when the length is then refused. Stored as bytes: the value may sit
    // at any alignment inside a caller's packed structure.
    const std::uint16_t value = kSectionValue;
    std::memcpy(pwValue, &value, sizeof value);
    if (as_count(lLengthInByte) < kChkpDataSize) {
        TARV_WARNING(kFunction, trace::kNotFound, "lLengthInByte %ld too small, need %d\n",
                     static_cast<long>(lLengthInByte), static_cast<int>(kChkpDataSize));
        return;
    }
    TARV_DEBUG(trace::kOutcome, kFunction, "sizeof(KELM_CHKP_DATA) %d, lLengthInByte %ld\n",
               static_cast<int>(kChkpDataSize), static_cast<long>(lLengthInByte));
    if (pChkpData == nullptr) {
        TARV_WARNING(kFunction, trace::kNotFound, "pChkpData is NULL\n");
        return;
    }
    std::memcpy(pData, pChkpData, kChkpDataSize);
}

extern "C" TARV_API void Tarv__SetChkpData(uint32_t eSectionId, uint16_t wValue, const void* pData,
                                           int32_t lLengthInByte) {
    constexpr char kFunction[] = "Tarv__SetChkpData";
    TARV_DEBUG(trace::kDetail, kFunction, "%s\n", kChkpRegionName);
    if (eSectionId != kSectionId) {
        TARV_WARNING(kFunction, trace::kNotFound, "Illegal eSectionId %d, expected %d\n", static_cast<int>(eSectionId),
                     static_cast<int>(kSectionId));
        return;
    }
    if (wValue != kSectionValue) {
        TARV_WARNING(kFunction, trace::kNotFound, "Illegal wValue %d, expected %d\n", static_cast<int>(wValue),
                     static_cast<int>(kSectionValue));
        return;
    }
    if (as_count(lLengthInByte) > kChkpDataSize) {
        TARV_WARNING(kFunction, trace::kNotFound, "lLengthInByte %ld too big, maximum %d\n",
                     static_cast<long>(lLengthInByte), static_cast<int>(kChkpDataSize));
        return;
    }
    if (pChkpData == nullptr) {
        TARV_WARNING(kFunction, trace::kNotFound, "pChkpData is NULL\n");
        return;
    }
    // A length of 0 copies nothing and may come with a null pData.
    if (lLengthInByte > 0) std::memcpy(pChkpData, pData, as_count(lLengthInByte));
}
