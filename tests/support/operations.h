// The reading operations of the library, as rows of one table, for the
// check that they give the same answers from several threads at once as
// alone.
//
// A row calls one exported function with one set of arguments. Its buffers
// come from a Scratch prepared beforehand, so that running a row needs
// nothing but the library: no mapping, no allocation. Every output buffer
// ends at an inaccessible page.
#ifndef TARV_TESTS_OPERATIONS_H
#define TARV_TESTS_OPERATIONS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "support/guard_page.h"
#include "tarv/tarv.h"

namespace tarv::testing {

// What a row does besides calling into the library.
enum class OperationKind : std::uint8_t {
    Attach,  // an attach call that does nothing once attached
    Read,    // reads the region (or answers "not attached")
    Write,   // writes the region: never run beside other rows in threads
    Pure,    // touches no region (the PM record converters)
};

// Buffers and well-known keys for the rows, made once before any row runs.
class Scratch {
public:
    Scratch();

    // `n` writable bytes that end at an inaccessible page, filled with
    // kFill. The buffer is what the harness digests after the row.
    std::uint8_t* out(std::size_t n) noexcept;
    // A value the row's function returned, folded into the digest.
    void result(std::uint64_t value) noexcept;

    // FNV-1a digest of the row's results and its output buffer.
    [[nodiscard]] std::uint64_t digest() const noexcept;
    void begin_row() noexcept;

    static constexpr std::uint8_t kFill = 0xA5;
    // Room for the longest output: every slot of class 581 and a terminator.
    static constexpr std::size_t kLargest = 128 * 1024;

private:
    GuardedBytes out_;
    std::uint8_t* handed_ = nullptr;
    std::size_t handed_size_ = 0;
    std::uint64_t results_ = 0;
};

struct Operation {
    const char* function;  // the exported name
    const char* variant;   // what this row exercises
    OperationKind kind;
    void (*run)(Scratch&, const Operation&);
    std::uint32_t a = 0, b = 0;  // arguments of rows that share one run
};

// Every row, grouped by function.
[[nodiscard]] std::span<const Operation> operations();

// Fills the attached region at `region` with the objects the rows look up:
// entries of every class in the first and last slots of its table, MEPs
// with their old MOIDs, one of them outside its hint slot, MaNets, points on
// ports and LAGs with their MA components, alarm texts; and the fake
// platform's LAG member lists and port types.
void populate_region(std::uint8_t* region);

// Runs one row on `scratch` and returns its digest.
std::uint64_t run_row(const Operation& op, Scratch& scratch);

// "function: variant", for messages.
[[nodiscard]] std::string row_name(const Operation& op);

}  // namespace tarv::testing

#endif
