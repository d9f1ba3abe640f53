// Shared arrangement of the isolation checks: every committed input of every
// fuzz target replayed through the targets' tables with their comparisons
// off, so that only the library's own work is looked at; each input with its
// regions attached and then detached, in every trace setting.
#ifndef TARV_TESTS_ISOLATION_H
#define TARV_TESTS_ISOLATION_H

#include <gtest/gtest.h>

#include <cstdint>

#include "support/operations.h"

namespace tarv::testing {

// How the platform's trace objects stand while an input runs: every trace
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

// The functions the replays called with the regions attached and detached.
inline fuzz::Tally g_attached_calls, g_detached_calls;

// Both checks run with the fuzz targets' region (read-write, the
// controller-private ranges inaccessible) and the checkpoint region attached
// once, traces counted but never recorded, comparisons off.
class IsolationTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        fake().reset();
        region_ = fuzz::attached_region(/*read_write=*/true);
        Tarv__ChkpOpen();
        checkpoint_ = pChkpData;
        fuzz::checking = false;
        // Once unchecked first, so that every buffer the targets keep is
        // mapped and registered for release at exit beforehand.
        for (const Replay& r : corpus()) {
            fuzz::Input ops(nullptr, 0);
            if (prepare(r, ops)) run(r, ops, kTraceSettings[0]);
        }
    }

    // The input's region contents and platform answers, outside any check;
    // false when the input cannot run here (a locale not installed).
    static bool prepare(const Replay& r, fuzz::Input& ops) {
        ops = fuzz::Input(r.bytes.data(), r.bytes.size());
        std::uint8_t* region = nullptr;
        return r.target->prepare(ops, region);
    }

    // The prepared input's operations in `setting`, attached, then detached.
    static void run(const Replay& r, const fuzz::Input& ops, const TraceSetting& setting) {
        fake().set_debug_level(setting.level);
        fake().set_module_level(setting.level);
        fake().module_object_missing = !setting.module_object;
        fuzz::tally = &g_attached_calls;
        fuzz::run_ops(*r.target, region_, ops);
        pSharedData = pStorData = pChkpData = nullptr;
        fuzz::tally = &g_detached_calls;
        fuzz::run_ops(*r.target, region_, ops, fuzz::kAttaches);
        fuzz::tally = nullptr;
        pSharedData = pStorData = region_;
        pChkpData = checkpoint_;
    }

    static inline std::uint8_t* region_ = nullptr;
    static inline std::uint8_t* checkpoint_ = nullptr;
};

}  // namespace tarv::testing

#endif
