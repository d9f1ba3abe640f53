// Child processes for the integration tests: a bounded child that reports
// through its exit status, and a one-way pipe for the steps between two.
#ifndef TARV_TESTS_INTEGRATION_SPAWN_H
#define TARV_TESTS_INTEGRATION_SPAWN_H

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace tarv::integration {

// Runs body() in a forked child, which exits with 1 when one of its checks
// failed (they print as they fail) and is ended by an alarm when it hangs.
template <typename Body>
pid_t spawn(Body body) {
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(30);
        body();
        std::fflush(nullptr);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    return pid;
}

// Exit status of the child, 128 + signal when it was killed, -1 on error.
inline int wait_for(pid_t pid) {
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// A one-way pipe for the steps between two processes.
struct Signal {
    int fds[2] = {-1, -1};
    Signal() { EXPECT_EQ(pipe(fds), 0); }
    ~Signal() { close(fds[0]), close(fds[1]); }
    void send(char step) const { EXPECT_EQ(write(fds[1], &step, 1), 1); }
    // True when `step` arrived within 30 s.
    [[nodiscard]] bool await(char step) const {
        pollfd p{fds[0], POLLIN, 0};
        char got = 0;
        return poll(&p, 1, 30000) == 1 && read(fds[0], &got, 1) == 1 && got == step;
    }
};

}  // namespace tarv::integration

#endif
