#include "extcap/stop.h"

#include <sys/socket.h>
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
std::atomic<int> stream_socket = -1;
std::atomic<bool> stopping = false;
// NOLINTEND(*-avoid-non-const-global-variables)
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

extern "C" void on_stop_signal(int /*signal*/) {
    const int saved = errno;
    const int socket_fd = stream_socket;
    if (socket_fd < 0) {
        _exit(0);
    }
    stopping = true;
    shutdown(socket_fd, SHUT_RDWR);
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

void end_stream_on_signals(int socket_fd) { stream_socket = socket_fd; }

bool stop_asked() { return stopping; }

}  // namespace ifwatch::extcap
