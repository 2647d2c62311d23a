#include "extcap/stop.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <initializer_list>

namespace ifwatch::extcap {

namespace {

constexpr unsigned PATIENCE = 2;  // seconds

// All that a handler can reach.
// NOLINTBEGIN(*-avoid-non-const-global-variables)
std::atomic<int> told_end = -1;
// NOLINTEND(*-avoid-non-const-global-variables)
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void on_stop_signal(int /*signal*/) {
    const int saved = errno;
    const int told = told_end;
    if (told < 0) {
        _exit(0);
    }
    [[maybe_unused]] const auto written = write(told, "", 1);
    alarm(PATIENCE);
    errno = saved;
}

extern "C" void on_alarm(int /*signal*/) { _exit(0); }

void install(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigaction(number, &action, nullptr);
}

}  // namespace

void end_on_signals() {
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        install(number, on_stop_signal);
    }
    install(SIGALRM, on_alarm);
    install(SIGPIPE, SIG_IGN);
}

int tell_signals() {
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) {
        return -1;
    }
    told_end = ends[1];
    return ends[0];
}

}  // namespace ifwatch::extcap
