// A recording fake of the platform for unit tests.
//
// Every trace statement is recorded with its kind, level, function, code,
// formatted text, source file and line. Pcor__OpenShm hands out zero-filled
// regions placed directly before an inaccessible guard page, or fails on
// demand. The chassis, port and switch services answer from settable values.
#ifndef TARV_TESTS_FAKE_PLATFORM_H
#define TARV_TESTS_FAKE_PLATFORM_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "support/guard_page.h"

namespace tarv::testing {

enum class TraceKind { Debug, Warning, Error };

struct TraceRecord {
    TraceKind kind;
    std::uint32_t level;  // as given to WQ_beginImpl
    std::string function;
    std::uint32_t module;  // 142 for warnings and errors, 0 for debug
    std::uint32_t code;    // 0 for debug
    std::string text;      // the formatted message
    std::string file;
    std::uint32_t line;
    bool closed;  // WQ_endImpl ran on the same object
};

struct ShmCall {
    std::string name;
    std::uint32_t size;
    std::int32_t read_only;
};

struct FakePlatform {
    // Traces and calls seen since the last reset.
    std::vector<TraceRecord> traces;
    // When false, trace statements are counted but not recorded: each print
    // is still formatted, into a fixed buffer, so that every argument is
    // used, but nothing is allocated and no system call is made; the
    // platform requests below are not logged either. For checks that forbid
    // the heap or the kernel while the library runs, and for threads.
    bool keep_traces = true;
    // Every trace statement printed, recorded or not, and those of them that
    // were not opened by WQ_beginImpl or not closed by WQ_endImpl on the
    // same object.
    std::size_t trace_count = 0;
    std::size_t unpaired_count = 0;
    std::vector<ShmCall> shm_calls;
    // Runs after each trace is recorded: lets a test change the region in
    // the middle of a call, as the controller may.
    std::function<void(const TraceRecord&)> on_trace;

    // Level words of DBG_KELM and of module 142.
    void set_debug_level(std::uint32_t level);
    void set_module_level(std::uint32_t level);
    // When set, Trcd__GetTrace(142) answers null, as a platform without a
    // trace object for the module would.
    bool module_object_missing = false;

    // Pcor__OpenShm: when false, every open fails (returns null).
    bool shm_succeeds = true;
    // Regions handed out, by name; they live until reset().
    std::map<std::string, std::unique_ptr<GuardedBytes>> regions;
    // The region of `name` (created zero-filled on first request).
    GuardedBytes& region(const std::string& name, std::uint32_t size);

    // Chassis, port and switch model.
    bool has_base_mac = true;
    std::array<std::uint8_t, 6> base_mac{0x00, 0x10, 0x20, 0x00, 0x00, 0x10};
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::array<std::uint8_t, 6>> port_macs;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> port_mac_requests;
    std::map<std::uint32_t, std::array<std::uint8_t, 20>> lag_lists;
    std::vector<std::uint32_t> lag_requests;
    // Runs at each LAG member list request, before the list is filled: a
    // test changes the region here as the controller might meanwhile.
    std::function<void(std::uint32_t)> on_lag_request;
    std::int32_t switch_mode = 1;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::int32_t> port_types;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> port_type_requests;
    int hwin_open_calls = 0;

    // Back to the state of a fresh process: no traces, levels 0, no regions.
    void reset();
};

// The one fake of this test process.
FakePlatform& fake();

}  // namespace tarv::testing

#endif
