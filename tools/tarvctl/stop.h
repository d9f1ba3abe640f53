// Ending the long-running subcommands (watch, simulate, metrics --interval):
// SIGINT and SIGTERM end them between two rounds, with exit status 0.
#ifndef TARVCTL_STOP_H
#define TARVCTL_STOP_H

#include <cstdint>

namespace tarvctl {

// From now on SIGINT and SIGTERM ask to stop instead of ending the process.
void catch_stop_signals();

// Whether a stop signal came.
[[nodiscard]] bool stop_requested() noexcept;

// Sleeps `ms` milliseconds; false when a stop signal came first.
bool sleep_ms(std::uint32_t ms);

}  // namespace tarvctl

#endif
