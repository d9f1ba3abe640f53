// Child processes for the integration tests: each side of a test runs in a
// process of its own, as the controller and the switch processes do, and
// reports by its exit status.
#ifndef TARV_TESTS_INTEGRATION_PROCESS_H
#define TARV_TESTS_INTEGRATION_PROCESS_H

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace tarv::integration {

// Failed checks of one child, printed to stderr as they happen.
class Checks {
public:
    explicit Checks(std::string who) : who_(std::move(who)) {}

    bool expect(bool ok, const std::string& what) {
        if (!ok) {
            ++failed_;
            std::fprintf(stderr, "%s: %s\n", who_.c_str(), what.c_str());
        }
        return ok;
    }
    [[nodiscard]] int status() const { return failed_ == 0 ? 0 : 1; }

private:
    std::string who_;
    int failed_ = 0;
};

// Runs body() in a forked child that ends with its result; a child that
// hangs is killed by an alarm.
template <typename Body>
pid_t spawn(Body body) {
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(30);
        const int status = body();
        std::fflush(stdout);
        std::fflush(stderr);
        _exit(status);
    }
    return pid;
}

// Exit status of the child, 128 + signal when it was killed, -1 on error.
inline int wait_for(pid_t pid) {
    if (pid < 0) return -1;
    int status = 0;
    if (waitpid(pid, &status, 0) != pid) return -1;
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}

// A one-way pipe for steps between two processes: send(n) and await(n).
class Signal {
public:
    Signal() {
        if (pipe(fds_) != 0) std::abort();
    }
    ~Signal() {
        close(fds_[0]);
        close(fds_[1]);
    }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void send(char step) const {
        if (write(fds_[1], &step, 1) != 1) std::abort();
    }
    // True when `step` arrived within 30 s; false when anything else came,
    // or nothing.
    [[nodiscard]] bool await(char step) const {
        pollfd p{fds_[0], POLLIN, 0};
        if (poll(&p, 1, 30000) != 1) return false;
        char got = 0;
        return read(fds_[0], &got, 1) == 1 && got == step;
    }

private:
    int fds_[2] = {-1, -1};
};

}  // namespace tarv::integration

#endif
