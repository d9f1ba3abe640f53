#include "stop.h"

#include <signal.h>
#include <time.h>

#include <cerrno>
#include <csignal>

namespace tarvctl {
namespace {

volatile std::sig_atomic_t g_stop = 0;

extern "C" void on_stop_signal(int) { g_stop = 1; }

}  // namespace

void catch_stop_signals() {
    struct sigaction action {};
    action.sa_handler = on_stop_signal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART: the sleep ends at once
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool stop_requested() noexcept { return g_stop != 0; }

bool sleep_ms(std::uint32_t ms) {
    timespec left{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000L};
    while (g_stop == 0 && nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
    return g_stop == 0;
}

}  // namespace tarvctl
