#include "read/interrupt.h"

#include <poll.h>

#include <csignal>

namespace ifwatch::read {

namespace {

// An interrupt just before poll() is seen this late (ms).
constexpr int WAIT_MS = 500;

bool awaited = false;                           // NOLINT(*-avoid-non-const-global-variables): of the process
volatile std::sig_atomic_t interrupt_came = 0;  // NOLINT(*-avoid-non-const-global-variables): the handler's

void note_interrupt(int /*number*/, siginfo_t* /*info*/, void* /*context*/) { interrupt_came = 1; }

}  // namespace

void await_interrupts() {
    struct sigaction action {};
    // With SA_SIGINFO every system comes back from the handler by the same call, rt_sigreturn.
    action.sa_sigaction = note_interrupt;
    action.sa_flags = static_cast<int>(SA_SIGINFO | SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    awaited = true;
}

bool interrupts_are_awaited() { return awaited; }

bool wait_for_octets(int fd) {
    pollfd waited_for{fd, POLLIN, 0};
    int ready = 0;
    while (interrupt_came == 0 && ready == 0) {
        ready = poll(&waited_for, 1, WAIT_MS);
    }
    return interrupt_came == 0;
}

bool interrupted() { return interrupt_came != 0; }

}  // namespace ifwatch::read
