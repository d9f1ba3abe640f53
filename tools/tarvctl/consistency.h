// The region's consistency, as no library call checks it: what `check`
// reports, and what `snapshot load` and `set` look at before they write.
#ifndef TARVCTL_CONSISTENCY_H
#define TARVCTL_CONSISTENCY_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/bytes.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

struct Finding {
    std::string_view table;
    std::uint32_t slot;     // of the table
    std::string_view kind;  // what kind of fault, one word: "missingParent", "direction", ...
    std::string problem;
};

// The findings in one copy of the region's bytes (exactly one region long),
// table by table in the library's class order, slot by slot.
[[nodiscard]] std::vector<Finding> find_inconsistencies(Bytes region);

}  // namespace tarvctl

#endif
