#include "client/signals.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

#include "base/format.h"
#include "base/print.h"
#include "base/terminal_text.h"
#include "base/verbose.h"

namespace ifwatch {

namespace {

constexpr int ENDING_SIGNALS[] = {SIGHUP, SIGINT, SIGTERM};

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): all that a handler can reach
std::atomic<const char*> pipe_to_remove = nullptr;
static_assert(std::atomic<const char*>::is_always_lock_free, "a signal handler reads it");
// NOLINTNEXTLINE(*-avoid-non-const-global-variables): what the process was started with
void (*former_limit_action)(int) = SIG_DFL;

// A handler may interrupt the program anywhere, also inside report: it calls only functions that are safe there, and
// formats into a buffer of its own.

/// Whether the error stream takes a text now. When nobody reads it, a run that is told to end does not wait for that.
bool takes_text() {
    pollfd stream{STDERR_FILENO, POLLOUT, 0};
    return poll(&stream, 1, 0) > 0;
}

bool write_while_taken(text_sink& sink) {
    std::string_view text = sink.text();
    sink.used = 0;
    while (!text.empty() && takes_text()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return text.empty();
}

template <format_text Format, class... Arguments>
void report_from_handler(const Arguments&... arguments) {
    text_buffer<PATH_MAX + 128> text;
    print_to<Format>(text, arguments...);
    if (!errors_are_terminal()) {
        write_while_taken(text);
        return;
    }
    text_buffer<PATH_MAX + 128> shown;
    shown.drain = write_while_taken;
    put_terminal_text(shown, text.text());
    write_while_taken(shown);
}

void end_by_signal(int number) {
    if (verbose_level > 0) {
        report_from_handler<"got signal %d\n">(number);
    }
    const char* const name = pipe_to_remove;
    if (name != nullptr && unlink(name) != 0) {
        // strerror may allocate; this one only looks the text up.
        report_from_handler<"ERROR cannot delete %s (%s)\n">(name, strerrordesc_np(errno));
    }
    report_from_handler<"\n">();
    _exit(1);
}

/// Leaves the rest to the default action, which ends the process when this handler returns.
void end_by_broken_pipe(int number) {
    const char* const name = pipe_to_remove;
    if (name != nullptr) {
        unlink(name);
    }
    static_cast<void>(std::signal(number, SIG_DFL));
    static_cast<void>(std::raise(number));
}

void install(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

}  // namespace

held_signals::held_signals() {
    sigset_t held;
    sigemptyset(&held);
    for (const int number : ENDING_SIGNALS) {
        sigaddset(&held, number);
    }
    sigaddset(&held, SIGPIPE);
    sigprocmask(SIG_BLOCK, &held, &before_);
}

held_signals::~held_signals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

void remove_pipe_on_signal(const char* pipe_name) {
    pipe_to_remove = pipe_name;
    for (const int number : ENDING_SIGNALS) {
        install(number, end_by_signal);
    }
    install(SIGPIPE, end_by_broken_pipe);
}

void survive_file_size_limit() { former_limit_action = std::signal(SIGXFSZ, SIG_IGN); }

void restore_file_size_limit() { static_cast<void>(std::signal(SIGXFSZ, former_limit_action)); }

void remove_pipe() {
    const char* const name = pipe_to_remove;
    if (name == nullptr) {
        return;
    }
    if (unlink(name) != 0 && errno != ENOENT) {
        report<"ERROR cannot delete %s (%s)\n">(name, std::strerror(errno));
    }
    pipe_to_remove = nullptr;
}

}  // namespace ifwatch
