// Shared by the views and `watch`.
#ifndef TARVCTL_SHOW_H
#define TARVCTL_SHOW_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/objects.h"
#include "common/records.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

// "3 MDs, 3 MAs, 5 MEPs, 2 MIPs, 1 throughput test, 2 PM sessions, 5 bandwidth notifications".
[[nodiscard]] std::string summary(const Configuration& c);

// Where a point sits, in JSON: {"slot": 4, "port": 2}, or {"lag": 6} on a
// LAG.
[[nodiscard]] Json place_json(std::uint8_t slot, std::uint8_t port);

// The one JSON form of a MEP reference: {"md", "ma", "mep", "mepId",
// "port"}, the last two null when the region has no such MEP.
[[nodiscard]] Json mep_json(const Configuration& c, std::uint32_t md, std::uint32_t ma, std::uint32_t mep);

// The MD/MA/MEP tree and the summary, as `show` prints it.
void print_tree(const Configuration& c);

}  // namespace tarvctl

#endif
