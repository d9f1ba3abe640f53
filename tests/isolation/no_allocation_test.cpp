// Once attached, no operation of the library touches the heap: every row of
// the operation table, attached and not, with every trace statement running
// or none, makes no call to malloc, calloc, realloc, free, the aligned forms,
// operator new or delete.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "counting_allocator.h"
#include "isolation.h"

namespace tarv::testing {
namespace {

using NoAllocationTest = IsolationTest;

TEST_F(NoAllocationTest, EveryOperationLeavesTheHeapAlone) {
    Scratch scratch;
    std::uint8_t* region = pSharedData;
    for (const Step& step : every_step(operations())) {
        enter(step, region);
        start_counting_heap_calls();
        (void)run_row(*step.op, scratch);
        const std::size_t calls = stop_counting_heap_calls();
        EXPECT_EQ(calls, 0u) << step_name(step);
    }
    EXPECT_GT(fake().trace_count, 0u);
    EXPECT_EQ(fake().unpaired_count, 0u);
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
