// Shared arrangement of the isolation checks: the fake platform attached and
// populated, traces formatted but not kept, and the rows of the operation
// table in the order both checks run them, in every trace setting.
#ifndef TARV_TESTS_ISOLATION_H
#define TARV_TESTS_ISOLATION_H

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "region.h"
#include "support/fake_platform.h"
#include "support/operations.h"

namespace tarv::testing {

// The checkpoint region, attached by attach_populated.
inline std::uint8_t* g_checkpoint = nullptr;

// Attaches read-write through the fake platform (the mapping a writer uses,
// which every reader uses too), populates the region and attaches the
// checkpoint region. Traces are counted, never recorded.
inline void attach_populated() {
    fake().reset();
    pSharedData = nullptr;
    pStorData = nullptr;
    pChkpData = nullptr;
    Tarv__StorOpen();
    Tarv__ChkpOpen();
    g_checkpoint = pChkpData;
    populate_region(pSharedData);
    fake().keep_traces = false;
}

// Both checks run on the populated region, detached again afterwards.
class IsolationTest : public ::testing::Test {
protected:
    void SetUp() override { attach_populated(); }
    void TearDown() override {
        pSharedData = nullptr;
        pStorData = nullptr;
        fake().reset();
    }
};

// How the platform's trace objects stand while the rows run: every trace
// statement runs, none does, or the platform has no object for module 142.
struct TraceSetting {
    const char* name;
    std::uint32_t level;
    bool module_object;
};
inline constexpr TraceSetting kTraceSettings[] = {
    {"every trace", 7, true},
    {"traces off", 0, true},
    {"no trace object", 7, false},
};

// One step of a run: a row, with the region attached or not, in a setting.
struct Step {
    const Operation* op;
    bool attached;
    const TraceSetting* traces;
};

// In every trace setting: every row attached, then every row but the attach
// calls detached (the "not attached" answers and their traces).
inline std::vector<Step> every_step(std::span<const Operation> ops) {
    std::vector<Step> steps;
    for (const TraceSetting& setting : kTraceSettings) {
        for (const Operation& op : ops) steps.push_back({&op, true, &setting});
        for (const Operation& op : ops)
            if (op.kind != OperationKind::Attach) steps.push_back({&op, false, &setting});
    }
    return steps;
}

// Sets the step's trace objects, and detaches both regions for a detached
// step or attaches them back, all without calling the platform.
inline void enter(const Step& step, std::uint8_t* region) {
    fake().set_debug_level(step.traces->level);
    fake().set_module_level(step.traces->level);
    fake().module_object_missing = !step.traces->module_object;
    pSharedData = step.attached ? region : nullptr;
    pStorData = pSharedData;
    pChkpData = step.attached ? g_checkpoint : nullptr;
}

inline std::string step_name(const Step& step) {
    return row_name(*step.op) + (step.attached ? " (attached, " : " (not attached, ") + step.traces->name + ")";
}

}  // namespace tarv::testing

#endif
