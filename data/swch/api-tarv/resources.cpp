// LAG and slot resource checks: Tarv__IsOamEnabledOnLagOpt and
// Tarv__MepResourcesAvailableOnSlot.
#include "resources.h"

#include <algorithm>

#include "tarv/tarv.h"
#include "trace.h"

namespace tarv::resources {

std::uint32_t ccm_period(const std::uint8_t* region, const MoidValue& moid) noexcept {
    std::uint8_t record[TARV_MANET_RECORD_SIZE];
    return read_manet(region, manet_key_of(moid), record) ? get(record, manet::dwCcmPeriod) : 0;
}

std::uint16_t lag_units(const std::uint8_t* region, std::uint32_t slot, const MoidValue& moid,
                        const std::uint8_t* record) noexcept {
    // The MaNet is read before the members are asked for.
    const std::uint16_t w = weight(ccm_period(region, moid));
    // Cleared first: a port library that fails without writing reports no
    // members. A count above the list's capacity reads the entries it holds.
    std::uint8_t list[PRTM_LAG_PORT_LIST_SIZE] = {};
    (void)Prtm__LagGetLagPortList(get(record, mep::byPort), list);
    const std::uint32_t members = std::min<std::uint32_t>(list[0], kLagMembers);
    std::uint16_t units = 0;
    for (std::uint32_t k = 0; k < members; ++k) {
        const std::uint8_t member_slot = list[1 + 2 * k];
        const std::uint8_t member_port = list[2 + 2 * k];
        if (member_slot != 0 && member_slot == slot && member_port != 0) units = static_cast<std::uint16_t>(units + w);
    }
    return units;
}

}  // namespace tarv::resources

using namespace tarv;

extern "C" TARV_API uint32_t Tarv__IsOamEnabledOnLagOpt(int32_t lagId, uint32_t* pCcmPeriod) {
    constexpr char kFunction[] = "Tarv__IsOamEnabledOnLagOpt";
    const std::uint8_t* region = attached_region(kFunction);
    if (region == nullptr) return 0;
    const points::PointHit hit = points::first_point(region, points::Live::Class, {mep::kLagSlot, lagId});
    if (hit.kind == nullptr) {
        TARV_DEBUG(trace::kOutcome, kFunction, "OAM is NOT enabled on Lag %d\n", lagId);
        return 0;
    }
    const std::uint32_t period = resources::ccm_period(region, MoidValue::of(entry(region, hit.kind->keys, hit.slot)));
    *pCcmPeriod = period;
    TARV_DEBUG(trace::kOutcome, kFunction, "OAM is enabled on Lag, CCM Period = %d\n", static_cast<int>(period));
    return 1;
}

extern "C" TARV_API int32_t Tarv__MepResourcesAvailableOnSlot(uint32_t slot, int32_t ccmPeriod) {
    const std::uint8_t* region = attached_region("Tarv__MepResourcesAvailableOnSlot");
    if (region == nullptr) return 1;
    return resources::slot_takes_mep(region, slot, ccmPeriod, resources::RegionMeps{region});
}
