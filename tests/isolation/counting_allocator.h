// Counts every call into the heap (malloc, calloc, realloc, free, the aligned
// forms, operator new and delete) made while counting is on.
#ifndef TARV_TESTS_COUNTING_ALLOCATOR_H
#define TARV_TESTS_COUNTING_ALLOCATOR_H

#include <cstddef>

namespace tarv::testing {

void start_counting_heap_calls() noexcept;
// Stops counting and returns the calls counted since the start.
std::size_t stop_counting_heap_calls() noexcept;

}  // namespace tarv::testing

#endif
