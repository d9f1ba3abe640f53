// The library's operations as the fuzz targets' tables run them (fuzz/),
// from every committed fuzz input, for the checks that must hold for all of
// them alike: no system call and no allocation once the region is attached,
// the same answers from several threads at once.
//
// A row is one committed input: its operations, read from the input as its
// target reads them, run on the region as prepared by populate_region. Rows
// compare every answer with their target's rules as they run (a wrong one
// aborts, naming the rule) and fold the values the calls return into a
// digest.
#ifndef TARV_TESTS_OPERATIONS_H
#define TARV_TESTS_OPERATIONS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "tarv/tarv.h"

namespace tarv::testing {

// What a row does besides calling into the library.
enum class OperationKind : std::uint8_t {
    Attach,  // an attach call that does nothing once attached
    Read,    // reads the region (or answers "not attached")
    Write,   // writes the region: never run beside other rows in threads
    Pure,    // touches no region (the PM record converters)
};

// The digest of a row's answers, one per thread.
class Scratch {
public:
    void result(std::uint64_t value) noexcept { results_ = (results_ ^ value) * 1099511628211u; }
    [[nodiscard]] std::uint64_t digest() const noexcept { return results_; }
    void begin_row() noexcept { results_ = 14695981039346656037u; }

private:
    std::uint64_t results_ = 0;
};

struct Operation {
    const char* function;  // the target
    const char* variant;   // the input's file
    OperationKind kind;
    void (*run)(Scratch&, const Operation&);
    std::uint32_t a = 0, b = 0;  // the input's index in corpus()
};

// A committed fuzz input of a target.
struct Replay {
    const fuzz::Target* target;
    std::string name;  // target/file
    std::vector<std::uint8_t> bytes;
};
// Every committed input, read once, in target and file name order.
const std::vector<Replay>& corpus();

// Every row that runs (an input whose locale is installed), in corpus order;
// reading rows only: the operations that write leave their input's row.
[[nodiscard]] std::span<const Operation> operations();

// Prepares every committed input in turn on the attached region: what each
// writes to the region and asks of the fake platform; the region keeps what
// the last inputs wrote, which the rows' rules read.
void populate_region(std::uint8_t* region);

// Runs one row on `scratch` and returns its digest.
std::uint64_t run_row(const Operation& op, Scratch& scratch);

// "function: variant", for messages.
[[nodiscard]] std::string row_name(const Operation& op);

}  // namespace tarv::testing

#endif
