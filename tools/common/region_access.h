// Where the tools find the OAM regions: shared memory under the host
// platform's prefix, or a saved region file (--region) that the host
// platform maps privately, so that the library reads it as it reads shared
// memory and nothing shared is touched.
#ifndef TARVTOOL_REGION_ACCESS_H
#define TARVTOOL_REGION_ACCESS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bytes.h"
#include "class_catalog.h"
#include "snapshot_file.h"

namespace tarvtool {

// Options every subcommand shares.
struct Options {
    std::optional<std::string> prefix;  // --prefix; "" is none; not given: TARV_SHM_PREFIX or none
    std::string region_file;            // --region FILE; empty: shared memory
    std::string color = "auto";
    bool trace = false;  // --trace: the library's error and warning traces on stderr
};

// Sets the host platform up for a command: applies --prefix, or checks
// TARV_SHM_PREFIX, and checks TARV_LAGS (a malformed value is a usage error
// here, where the host platform would ignore it and go on with defaults: the
// real regions, no LAG members); turns the library's traces off unless
// --trace or TARV_TRACE_LEVEL asks for them.
void prepare_platform(const Options& options);

// True for a TARV_LAGS value the host platform takes whole:
// LAG=SLOT/PORT[,SLOT/PORT...][;LAG=...] with numbers 0 to 255, at most 9
// members a LAG, "7=" for a LAG without members, "" for none.
[[nodiscard]] bool valid_lags(std::string_view text);

// Refuses --region for a subcommand that writes shared memory.
void refuse_region_file(const Options& options, const char* command);

// The shared-memory object name of a region name, with the prefix.
[[nodiscard]] std::string object_name(const char* name);

// True when the shared-memory object behind `name` exists.
[[nodiscard]] bool region_exists(const char* name);

// Throws kExitNoRegion, saying how to create it, when the shared-memory
// region `name` does not exist.
void require_region(const char* name);

// The shared-memory region mapped read-write, created zero-filled when it
// is missing; throws kExitIo when it cannot be mapped.
[[nodiscard]] std::uint8_t* map_for_writing(const char* name, std::uint32_t size);

// The data region attached for reading. A --region FILE is a snapshot file
// or a raw image, told apart by its magic: the library through Tarv__Open, and
// a read-only view of its bytes for what no library call reports. Throws
// kExitNoRegion when the shared-memory region is missing and kExitIo when
// the region file cannot be used.
class DataRegion {
public:
    static DataRegion attach(const Options& options);

    [[nodiscard]] Bytes bytes() const noexcept { return {base_, kDataRegionSize}; }
    // A copy taken at once, for analyses that should see one moment.
    [[nodiscard]] std::vector<std::uint8_t> copy() const { return {base_, base_ + kDataRegionSize}; }
    // "/kelm-data" with its prefix, or "file snap.bin".
    [[nodiscard]] const std::string& where() const noexcept { return where_; }

private:
    DataRegion(const std::uint8_t* base, std::string where) : base_(base), where_(std::move(where)) {}

    const std::uint8_t* base_;
    std::string where_;
};

// A saved region file ("-": standard input) in the forms asked for; throws
// kExitIo when it cannot be read or is not a region (see snapshot_file.h).
[[nodiscard]] Snapshot read_region_file(const std::string& path, SnapshotForm form);

// A copy of the shared-memory data region as it is now, mapped anew (not
// through the library's view); throws kExitNoRegion when it is missing.
[[nodiscard]] std::vector<std::uint8_t> current_region();

}  // namespace tarvtool

#endif
