// Heap call counter. A plain build replaces the C library's allocation
// functions with counting wrappers around the C library's own allocator;
// the global operator new and delete of the C++ library call them in turn. A sanitizer build keeps the
// sanitizer's allocator, which must see every block, and counts through the
// hooks the sanitizer calls on every allocation and release.
#include "counting_allocator.h"

#include <atomic>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TARV_SANITIZER_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define TARV_SANITIZER_HEAP 1
#endif
#endif

namespace tarv::testing {
namespace {
std::atomic<bool> g_counting{false};
std::atomic<std::size_t> g_calls{0};
}  // namespace

void count_heap_call() noexcept {
    if (g_counting.load(std::memory_order_relaxed)) g_calls.fetch_add(1, std::memory_order_relaxed);
}

void start_counting_heap_calls() noexcept {
    g_calls = 0;
    g_counting = true;
}

std::size_t stop_counting_heap_calls() noexcept {
    g_counting = false;
    return g_calls.load();
}

}  // namespace tarv::testing

#ifdef TARV_SANITIZER_HEAP

// The sanitizers' allocator interface (sanitizer/allocator_interface.h,
// which not every compiler installs).
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*, std::size_t),
                                                         void (*free_hook)(const volatile void*));

namespace {
void on_malloc(const volatile void*, std::size_t) { tarv::testing::count_heap_call(); }
void on_free(const volatile void*) { tarv::testing::count_heap_call(); }
// Installed before main, before any test runs.
[[maybe_unused]] const int g_hooks_installed = __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free);
}  // namespace

#else

extern "C" {
// The C library's allocator under its internal names (glibc).
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* p, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* p);

void* malloc(std::size_t size) noexcept {
    tarv::testing::count_heap_call();
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    tarv::testing::count_heap_call();
    return __libc_calloc(count, size);
}
void* realloc(void* p, std::size_t size) noexcept {
    tarv::testing::count_heap_call();
    return __libc_realloc(p, size);
}
void free(void* p) noexcept {
    tarv::testing::count_heap_call();
    __libc_free(p);
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
    tarv::testing::count_heap_call();
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    tarv::testing::count_heap_call();
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** out, std::size_t alignment, std::size_t size) noexcept {
    tarv::testing::count_heap_call();
    void* p = __libc_memalign(alignment, size);
    if (p == nullptr) return 12;  // ENOMEM
    *out = p;
    return 0;
}
}  // extern "C"

#endif
