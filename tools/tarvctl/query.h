// What the query subcommands work out beside the library's answers, for
// their views: which ids to ask about on a port, and the resource units
// each MEP puts on a slot.
#ifndef TARVCTL_QUERY_H
#define TARVCTL_QUERY_H

#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "common/objects.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

// The ids worth asking about on (slot, port): those of its MEPs, and those
// of the components of the MAs its MEPs and MIPs belong to; never 0.
[[nodiscard]] std::set<std::uint32_t> ids_on_port(const Configuration& c, std::uint8_t slot, std::uint8_t port);

// (slot, port) pairs of a LAG's members, as the port library lists them.
using LagMembers = std::vector<std::pair<std::uint8_t, std::uint8_t>>;

// The ports through which MEP m loads `slot`, as the library counts them:
// 1 when it sits on the slot; for a MEP on a LAG (never a physical slot 2),
// each member on the slot whose slot and port are not 0 (`members` are its
// LAG's); else 0.
[[nodiscard]] std::uint32_t ports_on_slot(const Mep& m, const LagMembers& members, std::uint8_t slot);

// Resource units per port of a MEP whose MA has this CCM period.
[[nodiscard]] constexpr std::uint32_t mep_weight(std::uint32_t ccm_period) {
    return ccm_period == tarv::manet::kHeavyCcmPeriod ? 3 : 1;
}

}  // namespace tarvctl

#endif
