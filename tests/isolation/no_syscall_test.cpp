// Once attached, no operation of the library enters the kernel: a child
// process forbids itself every system call but read, write, exit and
// sigreturn (seccomp strict mode), then runs every row of the operation
// table, with every trace statement running and with none. Any other system
// call kills it at once. It reports each row on a pipe before running it, so
// that the parent can name the row that killed it.
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <fstream>
#include <set>
#include <string>

#include "isolation.h"

namespace tarv::testing {
namespace {

// Exit codes of the confined child.
enum ChildExit : int {
    kAllRan = 0,
    kNoSeccomp = 10,   // prctl refused strict mode
    kNoTraces = 11,    // the trace statements did not run
    kUnpaired = 12,    // a print without its WQ_beginImpl / WQ_endImpl
};

[[noreturn]] void raw_exit(int code) {
    // exit_group, which _exit uses, is not allowed in strict mode.
    syscall(SYS_exit, code);
    __builtin_unreachable();
}

struct Outcome {
    int status = -1;          // waitpid status
    std::int64_t last_step = -1;  // the last step the child started
    std::size_t steps = 0;
};

// The confined child: reports each step on `report` before running it.
// Not instrumented by AddressSanitizer, which would otherwise reset its
// stack bookkeeping (with a system call) before the final exit.
[[noreturn]] __attribute__((no_sanitize("address"))) void confined_child(const std::vector<Step>& steps,
                                                                          void (*extra)(), Scratch& scratch,
                                                                          int report) {
    alarm(30);  // a hang ends the child
    std::uint8_t* region = pSharedData;
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0) raw_exit(kNoSeccomp);
    for (std::size_t i = 0; i <= steps.size(); ++i) {
        const auto index = static_cast<std::uint32_t>(i);
        if (i == steps.size() && extra == nullptr) break;
        if (write(report, &index, sizeof index) != sizeof index) raw_exit(kNoSeccomp);
        if (i == steps.size()) {
            extra();
            break;
        }
        enter(steps[i], region);
        (void)run_row(*steps[i].op, scratch);
    }
    if (fake().trace_count == 0) raw_exit(kNoTraces);
    if (fake().unpaired_count != 0) raw_exit(kUnpaired);
    raw_exit(kAllRan);
}

// Runs `steps` in a confined child; `extra` (when set) runs after them.
Outcome run_confined(const std::vector<Step>& steps, void (*extra)()) {
    Scratch scratch;  // mapped before the child confines itself
    int fds[2];
    if (pipe(fds) != 0) return {};
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        confined_child(steps, extra, scratch, fds[1]);
    }
    close(fds[1]);
    Outcome out;
    // Reports until the child closes the pipe by ending; a child that stops
    // reporting for 30 s is killed.
    pollfd p{fds[0], POLLIN, 0};
    std::uint32_t index = 0;
    while (poll(&p, 1, 30000) == 1 && read(fds[0], &index, sizeof index) == sizeof index) {
        out.last_step = index;
        ++out.steps;
    }
    close(fds[0]);
    if (pid > 0) kill(pid, SIGKILL);  // no effect on a child that has ended
    if (pid < 0 || waitpid(pid, &out.status, 0) != pid) out.status = -1;
    return out;
}

std::string describe(const Outcome& o, const std::vector<Step>& steps) {
    std::string where = "no step";
    if (o.last_step >= 0 && static_cast<std::size_t>(o.last_step) < steps.size()) {
        where = step_name(steps[static_cast<std::size_t>(o.last_step)]);
    } else if (o.last_step >= 0) {
        where = "the extra step";
    }
    if (WIFSIGNALED(o.status))
        return "killed by signal " + std::to_string(WTERMSIG(o.status)) + " in " + where;
    return "exit status " + std::to_string(WEXITSTATUS(o.status)) + " after " + where;
}

// Runs the steps confined; under an emulator that cannot confine a process
// (qemu-user refuses seccomp) the test is skipped.
#define RUN_CONFINED(outcome, steps, extra)                                                       \
    const Outcome outcome = run_confined(steps, extra);                                           \
    if (kEmulated && WIFEXITED(outcome.status) && WEXITSTATUS(outcome.status) == kNoSeccomp)     \
        GTEST_SKIP() << "the emulator does not provide seccomp strict mode"

#ifdef TARV_EMULATED
constexpr bool kEmulated = true;
#else
constexpr bool kEmulated = false;
#endif

using NoSystemCallTest = IsolationTest;

TEST_F(NoSystemCallTest, EveryOperationRunsWithTheKernelForbidden) {
    const std::vector<Step> steps = every_step(operations());
    RUN_CONFINED(o, steps, nullptr);
    EXPECT_TRUE(WIFEXITED(o.status) && WEXITSTATUS(o.status) == kAllRan) << describe(o, steps);
    EXPECT_EQ(o.steps, steps.size());
}

// The confinement is real: a step that asks the kernel for anything else is
// killed, and the parent names it.
TEST_F(NoSystemCallTest, ASystemCallKillsTheChildAndIsNamed) {
    const std::vector<Step> steps = every_step(operations());
    RUN_CONFINED(o, steps, [] { (void)syscall(SYS_getppid); });
    ASSERT_TRUE(WIFSIGNALED(o.status)) << describe(o, steps);
    EXPECT_EQ(WTERMSIG(o.status), SIGKILL);
    EXPECT_EQ(o.last_step, static_cast<std::int64_t>(steps.size()));
    EXPECT_EQ(describe(o, steps), "killed by signal 9 in the extra step");
}

// Every exported function has at least one row, so none escapes the checks
// that run the table; a function added to the library fails this test until
// it has its rows.
TEST(OperationTable, EveryExportedFunctionHasARow) {
    std::ifstream exported(TARV_EXPORTED_LIST);
    ASSERT_TRUE(exported.good()) << TARV_EXPORTED_LIST;
    std::set<std::string> with_rows;
    for (const Operation& op : operations()) with_rows.insert(op.function);
    std::size_t functions = 0;
    for (std::string name; std::getline(exported, name);) {
        if (name.empty()) continue;
        ++functions;
        EXPECT_EQ(with_rows.count(name), 1u) << name << " has no row in tests/support/operations.cpp";
        with_rows.erase(name);
    }
    EXPECT_GT(functions, 0u);
    EXPECT_TRUE(with_rows.empty()) << *with_rows.begin() << " has rows but is not exported";
}

}  // namespace
}  // namespace tarv::testing
