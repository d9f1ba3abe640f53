// Once attached, no operation of the library touches the heap: every
// committed fuzz input, attached and not, in every trace setting, makes no
// call to malloc, calloc, realloc, free, the aligned forms, operator new or
// delete while its operations run.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "counting_allocator.h"
#include "isolation.h"

namespace tarv::testing {
namespace {

using NoAllocationTest = IsolationTest;

TEST_F(NoAllocationTest, EveryCommittedInputLeavesTheHeapAlone) {
    for (const TraceSetting& setting : kTraceSettings)
        for (const Replay& r : corpus()) {
            fuzz::Input ops(nullptr, 0);
            if (!prepare(r, ops)) continue;
            start_counting_heap_calls();
            run(r, ops, setting);
            EXPECT_EQ(stop_counting_heap_calls(), 0u) << r.name << " (" << setting.name << ")";
        }
    EXPECT_GT(fake().trace_count, 0u);
    EXPECT_EQ(fake().unpaired_count, 0u);
}

// The replays run every exported function, attached and (but the attach
// calls) not: none escapes these checks or the fuzzers.
TEST_F(NoAllocationTest, EveryExportedFunctionIsCalledByACommittedInput) {
    std::ifstream exported(TARV_EXPORTED_LIST);
    std::size_t functions = 0;
    for (std::string name; std::getline(exported, name) && !name.empty(); ++functions) {
        EXPECT_TRUE(g_attached_calls.has(name)) << name << " is called by no committed fuzz input";
        if (name != "Tarv__Open" && name != "Tarv__StorOpen" && name != "Tarv__ChkpOpen") {
            EXPECT_TRUE(g_detached_calls.has(name)) << name << " is called by no committed input detached";
        }
    }
    EXPECT_GT(functions, 40u) << TARV_EXPORTED_LIST;
}

// The counter sees the heap calls a careless operation would make: the C
// allocation functions and operator new and delete.
TEST(CountingAllocatorTest, SeesEveryKindOfHeapCall) {
    using Call = void (*)();
    const struct {
        const char* what;
        Call call;
    } calls[] = {
        // Volatile pointers keep the compiler from eliding the pairs.
        {"malloc/free", [] {
             void* volatile p = std::malloc(24);
             std::free(p);
         }},
        {"calloc/realloc", [] {
             void* volatile p = std::calloc(2, 8);
             p = std::realloc(p, 64);
             std::free(p);
         }},
        {"aligned_alloc", [] {
             void* volatile p = std::aligned_alloc(64, 64);
             std::free(p);
         }},
        {"new/delete", [] {
             auto* volatile p = new std::string(100, 'x');
             delete p;
         }},
        {"new[]/delete[]", [] {
             auto* volatile p = new char[40];
             delete[] p;
         }},
    };
    for (const auto& c : calls) {
        start_counting_heap_calls();
        c.call();
        EXPECT_GE(stop_counting_heap_calls(), 2u) << c.what;
    }
}

}  // namespace
}  // namespace tarv::testing
