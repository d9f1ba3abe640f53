// LAG and slot resource checks: the CCM period of a point's MA and the MEP
// load of a slot.
//
// A slot carries at most 1000 resource units. A MEP costs, per port it
// occupies on the slot, 3 units when its MA's CCM period is the heavy one and
// 1 otherwise; a MEP on a LAG occupies every member port of the LAG, and the
// members are asked from the port library.
#ifndef TARV_RESOURCES_H
#define TARV_RESOURCES_H

#include <cstdint>
#include <cstring>

#include "fields.h"
#include "platform/prtm.h"
#include "points.h"
#include "readers.h"
#include "region.h"

namespace tarv::resources {

inline constexpr std::uint16_t kSlotCapacity = 1000;
// Member entries the port library's list holds after its count byte.
inline constexpr std::uint32_t kLagMembers = (PRTM_LAG_PORT_LIST_SIZE - 1) / 2;
static_assert(kLagMembers == 9);

[[nodiscard]] constexpr std::uint16_t weight(std::uint32_t ccm_period) noexcept {
    return ccm_period == manet::kHeavyCcmPeriod ? 3 : 1;
}

// The CCM period of the MA of the point with MOID `moid`, read from its
// MaNet; 0 when the MaNet cannot be found (after the read's error trace).
[[nodiscard]] std::uint32_t ccm_period(const std::uint8_t* region, const MoidValue& moid) noexcept;

// Units that the LAG MEP with MOID `moid` and record `record` puts on `slot`:
// its weight once for every member of the LAG on that slot.
[[nodiscard]] std::uint16_t lag_units(const std::uint8_t* region, std::uint32_t slot, const MoidValue& moid,
                                      const std::uint8_t* record) noexcept;

// The MEPs of the region as the slot check walks them: the iterator step
// and the MEP read, with their traces.
struct RegionMeps {
    const std::uint8_t* region;
    [[nodiscard]] const std::uint8_t* next(const std::uint8_t* prev) const noexcept {
        return next_mep(region, prev);
    }
    [[nodiscard]] bool read(const MoidValue& moid, std::uint8_t* record) const noexcept {
        return read_mep(region, moid, record);
    }
};

// 1 when `slot` can take one more MEP of CCM period `period`, else 0. The
// units are summed in 16 bits over the MEPs that `meps` hands out. A MEP that
// the walk names but the read no longer finds (removed in between) counts
// nothing.
template <typename Meps>
[[nodiscard]] std::int32_t slot_takes_mep(const std::uint8_t* region, std::uint32_t slot, std::int32_t period,
                                          const Meps& meps) noexcept {
    std::uint16_t units = 0;
    for (const std::uint8_t* p = meps.next(nullptr); p != nullptr; p = meps.next(p)) {
        const MoidValue moid = MoidValue::of(p);
        std::uint8_t record[TARV_MEP_RECORD_SIZE];
        if (!meps.read(moid, record)) continue;
        const std::uint8_t on = get(record, mep::bySlot);
        if (on == mep::kLagSlot)
            units = static_cast<std::uint16_t>(units + lag_units(region, slot, moid, record));
        else if (std::uint32_t{on} == slot)
            units = static_cast<std::uint16_t>(units + weight(ccm_period(region, moid)));
    }
    units = static_cast<std::uint16_t>(units + weight(static_cast<std::uint32_t>(period)));
    return units <= kSlotCapacity ? 1 : 0;
}

}  // namespace tarv::resources

#endif
