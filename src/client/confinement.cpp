#include "client/confinement.h"

#ifdef IFWATCH_HAS_SECCOMP

#include <seccomp.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

namespace ifwatch {

namespace {

using filter = std::unique_ptr<void, decltype(&seccomp_release)>;

// Whatever they are called with. Of what is open only the session and the standard input can be read, and the system
// allows a call whose arguments it need not look at without running the filter. The libraries lock, take and give back
// memory on their way out.
constexpr std::array<int, 9> ALWAYS_NEEDED = {
    SCMP_SYS(read),  SCMP_SYS(poll),   SCMP_SYS(ppoll), SCMP_SYS(restart_syscall), SCMP_SYS(brk),
    SCMP_SYS(futex), SCMP_SYS(munmap), SCMP_SYS(exit),  SCMP_SYS(exit_group),
};
// What the handlers of a pipe do: remove it, end the process, or raise the signal again.
constexpr std::array<int, 7> NEEDED_FOR_PIPE = {
    SCMP_SYS(unlink), SCMP_SYS(unlinkat), SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(getpid), SCMP_SYS(gettid),   SCMP_SYS(rt_sigreturn),
};

// Most systems tell the time without a call.
constexpr std::array<int, 2> NEEDED_FOR_CLOCK = {SCMP_SYS(clock_gettime), SCMP_SYS(clock_gettime64)};

int allow(const filter& calls, int number) { return seccomp_rule_add(calls.get(), SCMP_ACT_ALLOW, number, 0); }

/// Allows a call when its first argument, a descriptor or a process, is this one.
int allow_with(const filter& calls, int number, int first_argument) {
    const scmp_arg_cmp is_that{.arg = 0,
                               .op = SCMP_CMP_MASKED_EQ,
                               .datum_a = 0xFFFFFFFF,  // an int: what stands above it in the register means nothing
                               .datum_b = static_cast<scmp_datum_t>(static_cast<unsigned>(first_argument))};
    return seccomp_rule_add_array(calls.get(), SCMP_ACT_ALLOW, number, 1, &is_that);
}

/// 0, or the first of the results that is not.
template <class... Results>
int first_failure(Results... results) {
    int failure = 0;
    static_cast<void>((((failure = results) != 0) || ...));
    return failure;
}

int allow_files(const filter& calls, const record_loop_files& files) {
    int failure = first_failure(allow_with(calls, SCMP_SYS(write), STDOUT_FILENO),
                                allow_with(calls, SCMP_SYS(write), STDERR_FILENO));
    if (failure == 0 && files.input_fd >= 0) {
        failure = allow_with(calls, SCMP_SYS(close), files.input_fd);
    }
    if (failure == 0 && files.sink_fd >= 0) {
        failure = first_failure(allow_with(calls, SCMP_SYS(write), files.sink_fd),
                                allow_with(calls, SCMP_SYS(close), files.sink_fd));
    }
    return failure;
}

template <std::size_t N>
int allow_all(const filter& calls, const std::array<int, N>& numbers) {
    for (const int number : numbers) {
        if (const int failure = allow(calls, number); failure != 0) {
            return failure;
        }
    }
    return 0;
}

/// Before the rules are loaded. The mitigation that the kernel may tie to a filter is for programs that run foreign
/// code; here it would only slow the decoders down.
int prepare(const filter& calls) {
    static_cast<void>(seccomp_attr_set(calls.get(), SCMP_FLTATR_CTL_SSB, 1));
    return seccomp_syscall_priority(calls.get(), SCMP_SYS(write), 255);
}

}  // namespace

int confine_to_record_loop(const record_loop_files& files) {
    const filter calls(seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release);
    if (calls == nullptr) {
        return ENOMEM;
    }
    int failure = first_failure(prepare(calls), allow_files(calls, files), allow_all(calls, ALWAYS_NEEDED));
    if (failure == 0 && files.has_pipe) {
        failure = first_failure(allow_all(calls, NEEDED_FOR_PIPE), allow_with(calls, SCMP_SYS(tgkill), getpid()));
    }
    if (failure == 0 && files.asks_clock) {
        failure = allow_all(calls, NEEDED_FOR_CLOCK);
    }
    return failure != 0 ? -failure : -seccomp_load(calls.get());
}

}  // namespace ifwatch

#else

namespace ifwatch {

int confine_to_record_loop(const record_loop_files& /*files*/) { return 0; }

}  // namespace ifwatch

#endif
