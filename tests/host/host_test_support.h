// Shared arrangement of the host platform tests: a clean environment and
// shared-memory prefixes that no other test process uses.
#ifndef TARV_TESTS_HOST_SUPPORT_H
#define TARV_TESTS_HOST_SUPPORT_H

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tarv_host.h"

namespace tarv::host::testing {

inline constexpr const char* kVariables[] = {"TARV_DEBUG_LEVEL", "TARV_TRACE_LEVEL", "TARV_BASE_MAC",
                                             "TARV_SWITCH_MODE", "TARV_PORT_TYPES",  "TARV_LAGS",
                                             "TARV_SHM_PREFIX"};

// Removes the host platform's variables and returns the model to its defaults.
inline void clean_environment() {
    for (const char* name : kVariables) unsetenv(name);
    TarvHost_Reset();
}

// A prefix of this process and test, e.g. "h4711-3-".
inline std::string unique_prefix() {
    static int counter = 0;
    return "h" + std::to_string(getpid()) + "-" + std::to_string(++counter) + "-";
}

// The object name the platform uses for `name`.
inline std::string object_name(const char* name) {
    char buffer[TARV_HOST_SHM_NAME_MAX + 1];
    if (TarvHost_ShmObjectName(name, buffer, sizeof buffer) != 0) return "<invalid>";
    return buffer;
}

}  // namespace tarv::host::testing

#endif
