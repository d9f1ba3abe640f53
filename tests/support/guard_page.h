// Memory placed directly before an inaccessible page, so that any access past
// its end faults at once instead of reading a neighbour's bytes.
#ifndef TARV_TESTS_GUARD_PAGE_H
#define TARV_TESTS_GUARD_PAGE_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tarv::testing {

// `size` bytes that end exactly where a PROT_NONE page starts. The bytes are
// zero-filled. Not copyable; unmapped on destruction.
class GuardedBytes {
public:
    explicit GuardedBytes(std::size_t size) : size_(size) {
        const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t data_pages = (size + page - 1) / page;
        mapped_ = (data_pages + 1) * page;
        void* m = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m == MAP_FAILED) std::abort();
        base_ = static_cast<std::uint8_t*>(m);
        if (mprotect(base_ + data_pages * page, page, PROT_NONE) != 0) std::abort();
        data_ = base_ + data_pages * page - size;
    }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;
    ~GuardedBytes() { munmap(base_, mapped_); }

    [[nodiscard]] std::uint8_t* data() noexcept { return data_; }
    [[nodiscard]] const std::uint8_t* data() const noexcept { return data_; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    void fill(std::uint8_t value) noexcept { std::memset(data_, value, size_); }

private:
    std::size_t size_;
    std::size_t mapped_ = 0;
    std::uint8_t* base_ = nullptr;
    std::uint8_t* data_ = nullptr;
};

}  // namespace tarv::testing

#endif
