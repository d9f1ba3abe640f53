// Attaching the data region, and the process-wide state of the library.
#include "region.h"

#include "platform/pcor.h"
#include "tarv/tarv.h"
#include "trace.h"

namespace tarv {

std::uint8_t* pSharedData = nullptr;
std::uint8_t* pStorData = nullptr;
std::uint8_t abZeroKey[kZeroKeySize] = {};
std::uint8_t* pChkpData = nullptr;

const std::uint8_t* attached_region(const char* function) noexcept {
    if (pSharedData == nullptr) TARV_ERROR(function, trace::kNotAttached, "KELM_SHARED_DATA");
    return pSharedData;
}

std::uint8_t* writable_region(const char* function) noexcept {
    if (pStorData == nullptr) TARV_ERROR(function, trace::kNotAttached, "KELM_SHARED_DATA not attached read-write");
    return pStorData;
}

}  // namespace tarv

using namespace tarv;

extern "C" TARV_API void Tarv__Open(void) {
    if (pSharedData != nullptr) return;
    pSharedData = static_cast<std::uint8_t*>(Pcor__OpenShm(kRegionName, kRegionSize, PCOR_SHM_READ_ONLY));
    if (pSharedData == nullptr) TARV_ERROR("Tarv__Open", trace::kNotAttached, "KELM_SHARED_DATA");
    std::memset(abZeroKey, 0, sizeof abZeroKey);
}

extern "C" TARV_API void Tarv__StorOpen(void) {
    if (pStorData != nullptr) return;
    if (pSharedData != nullptr) TARV_ERROR("Tarv__StorOpen", trace::kNoCode, "Null");
    pStorData = static_cast<std::uint8_t*>(Pcor__OpenShm(kRegionName, kRegionSize, PCOR_SHM_READ_WRITE));
    pSharedData = pStorData;
    if (pStorData == nullptr) TARV_ERROR("Tarv__StorOpen", trace::kNoCode, "Failed");
}

extern "C" TARV_API void Tarv__SaveXMLIfOldConfig(void) {}
