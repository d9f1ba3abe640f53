// Once attached, no operation of the library enters the kernel: for every
// committed fuzz input in every trace setting, a child process prepares the
// input, forbids itself every system call but read, write, exit and
// sigreturn (seccomp strict mode), then runs the input's operations attached
// and detached. Any other system call kills it at once.
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <string>

#include "isolation.h"

namespace tarv::testing {
namespace {

// Exit codes of the confined child.
enum ChildExit : int {
    kAllRan = 0,
    kNoSeccomp = 10,  // prctl refused strict mode
    kUnpaired = 12,   // a print without its WQ_beginImpl / WQ_endImpl
    kNotPrepared = 13,
};

[[noreturn]] void raw_exit(int code) {
    // exit_group, which _exit uses, is not allowed in strict mode.
    syscall(SYS_exit, code);
    __builtin_unreachable();
}

// The confined child. Not instrumented by AddressSanitizer, which would
// otherwise reset its stack bookkeeping (with a system call) before the
// final exit.
[[noreturn]] __attribute__((no_sanitize("address"))) void confined_child(const std::function<bool()>& prepare,
                                                                          const std::function<void()>& body) {
    alarm(30);  // a hang ends the child
    if (!prepare()) raw_exit(kNotPrepared);
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0) raw_exit(kNoSeccomp);
    body();
    raw_exit(fake().unpaired_count != 0 ? kUnpaired : kAllRan);
}

// The waitpid status of a child that runs `body` confined after `prepare`.
int run_confined(const std::function<bool()>& prepare, const std::function<void()>& body) {
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) confined_child(prepare, body);
    int status = -1;
    if (pid < 0 || waitpid(pid, &status, 0) != pid) return -1;
    return status;
}

std::string describe(int status) {
    if (WIFSIGNALED(status)) return "killed by signal " + std::to_string(WTERMSIG(status));
    return "exit status " + std::to_string(WEXITSTATUS(status));
}

#ifdef TARV_EMULATED
constexpr bool kEmulated = true;
#else
constexpr bool kEmulated = false;
#endif

// qemu-user, which runs the cross builds' tests, refuses seccomp.
#define SKIP_WHEN_EMULATED(status)                                                         \
    if (kEmulated && WIFEXITED(status) && WEXITSTATUS(status) == kNoSeccomp) \
    GTEST_SKIP() << "the emulator does not provide seccomp strict mode"

using NoSystemCallTest = IsolationTest;

TEST_F(NoSystemCallTest, EveryCommittedInputRunsWithTheKernelForbidden) {
    for (const TraceSetting& setting : kTraceSettings)
        for (const Replay& r : corpus()) {
            fuzz::Input ops(nullptr, 0);
            const int status = run_confined([&] { return prepare(r, ops); }, [&] { run(r, ops, setting); });
            SKIP_WHEN_EMULATED(status);
            EXPECT_TRUE(WIFEXITED(status) && (WEXITSTATUS(status) == kAllRan || WEXITSTATUS(status) == kNotPrepared))
                << r.name << " (" << setting.name << "): " << describe(status);
        }
}

// The confinement is real: a system call after it kills the child.
TEST_F(NoSystemCallTest, ASystemCallKillsTheChild) {
    const int status = run_confined([] { return true; }, [] { (void)syscall(SYS_getppid); });
    SKIP_WHEN_EMULATED(status);
    EXPECT_EQ(describe(status), "killed by signal 9");
}

}  // namespace
}  // namespace tarv::testing
