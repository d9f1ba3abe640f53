// Exit statuses of the tools, part of their interface to scripts, and the one
// error type the subcommands throw.
#ifndef TARVTOOL_STATUS_H
#define TARVTOOL_STATUS_H

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

namespace tarvtool {

enum Exit : int {
    kExitOk = 0,        // done; `check` found nothing
    kExitFindings = 1,  // `check` found inconsistencies; a query's answer is no
    kExitUsage = 2,     // bad command line or input: unknown subcommand, option, class or value
    kExitNoRegion = 3,  // the shared-memory region does not exist (tarvctl init creates it)
    kExitIo = 4,        // a file or region cannot be read, written or mapped, or has the wrong size
    kExitRefused = 5,   // `demo` on a region that is not empty, without --force
};

// A failure that ends the command with `code` after printing `what()`.
class Failure : public std::runtime_error {
public:
    Failure(int code, const std::string& message) : std::runtime_error(message), code_(code) {}
    [[nodiscard]] int code() const noexcept { return code_; }

private:
    int code_;
};

// The text of an errno value, as strerror gives it in the C locale; unlike
// strerror, safe beside other threads.
inline std::string error_text(int error) {
    const char* text = strerrordesc_np(error);
    return text != nullptr ? text : "Unknown error " + std::to_string(error);
}

// Ends the command after output was lost with `error`: kExitIo, with a
// message, except for a closed pipe (EPIPE, when SIGPIPE is ignored), which
// ends it quietly as SIGPIPE itself would.
[[noreturn]] inline void throw_lost_output(int error) {
    throw Failure(kExitIo, error == EPIPE ? "" : "cannot write standard output: " + error_text(error));
}

// Writes out what standard output holds. A write that failed, now or since
// the last call (a full disk, a closed pipe), ends the command as
// throw_lost_output says: a script must never take lost output for success.
// Long-running subcommands call it after each batch of lines; main calls it
// once at the end for every subcommand.
inline void flush_stdout() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
    // errno is the failed write's: this flush's, or a print's that failed
    // before and left the error flag behind.
    throw_lost_output(errno != 0 ? errno : EIO);
}

}  // namespace tarvtool

#endif
