// Shared arrangement of the isolation checks: the fake platform attached and
// populated, traces of every level formatted but not kept, and the rows of
// the operation table in the order both checks run them.
#ifndef TARV_TESTS_ISOLATION_H
#define TARV_TESTS_ISOLATION_H

#include <cstddef>
#include <vector>

#include "region.h"
#include "support/fake_platform.h"
#include "support/operations.h"

namespace tarv::testing {

// Attaches read-write through the fake platform (the mapping a writer uses,
// which every reader uses too), populates the region and raises both trace
// levels to 7 so that every trace statement runs, with nothing recorded.
inline void attach_with_every_trace() {
    fake().reset();
    pSharedData = nullptr;
    pStorData = nullptr;
    Tarv__StorOpen();
    populate_region(pSharedData);
    fake().keep_traces = false;
    fake().set_debug_level(7);
    fake().set_module_level(7);
}

// One step of a run: a row, with the region attached or not.
struct Step {
    const Operation* op;
    bool attached;
};

// Every row attached, then every row but the attach calls detached (the
// "not attached" answers and their traces).
inline std::vector<Step> every_step(std::span<const Operation> ops) {
    std::vector<Step> steps;
    for (const Operation& op : ops) steps.push_back({&op, true});
    for (const Operation& op : ops)
        if (op.kind != OperationKind::Attach) steps.push_back({&op, false});
    return steps;
}

// Detaches for a detached step and attaches back for an attached one,
// without calling the platform.
inline void enter(const Step& step, std::uint8_t* region) {
    pSharedData = step.attached ? region : nullptr;
    pStorData = pSharedData;
}

}  // namespace tarv::testing

#endif
