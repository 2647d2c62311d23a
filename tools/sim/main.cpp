#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "base/print.h"
#include "cases/case_file.h"
#include "command_line/text_parts.h"
#include "convert/convert.h"
#include "convert/output_file.h"
#include "sim/daemon.h"
#include "sim/options.h"

namespace {

using ifwatch::cases::trace_case;
using ifwatch::convert::write_output;
using ifwatch::sim::sim_options;

constexpr int STATUS_MISTAKE = 2;

// A signal handler can only reach what is global.
int stop_pipe[2] = {-1, -1};  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

extern "C" void on_signal(int /*signal*/) {
    const int saved = errno;
    [[maybe_unused]] const auto written = write(stop_pipe[1], "", 1);
    errno = saved;
}

/// One line on the error stream.
void say(const std::string& text) { ifwatch::report<"ifwatch-sim: %s\n">(ifwatch::on_one_line(text)); }

int fail(const std::string& error) {
    say(error);
    return STATUS_MISTAKE;
}

bool install_signals() {
    struct sigaction action = {};
    action.sa_handler = on_signal;
    return pipe(stop_pipe) == 0 && sigaction(SIGINT, &action, nullptr) == 0 &&
           sigaction(SIGTERM, &action, nullptr) == 0;
}

bool load_cases(const std::vector<std::string>& paths, std::vector<trace_case>& cases, std::string& error) {
    for (const std::string& path : paths) {
        if (!read_case_file(path, cases.emplace_back(), error)) {
            return false;
        }
    }
    return ifwatch::sim::assign_interfaces(cases, error);
}

/// Serves the cases until the sessions asked for are over or a signal comes. Returns the exit status.
int serve(const sim_options& options) {
    std::string error;
    std::vector<trace_case> cases;
    if (!load_cases(options.cases, cases, error)) {
        return fail(error);
    }
    if (!install_signals()) {
        return fail(std::string("signals: ") + std::strerror(errno));
    }
    std::uint16_t port = 0;
    const int listener = open_listener(options.setup, port, error);
    // Whoever waits for the file with the port never reads a part of it.
    if (listener < 0 || (!options.setup.port_file.empty() &&
                         !write_output(options.setup.port_file, std::to_string(port) + "\n", error))) {
        return fail(error);
    }
    ifwatch::print<"listening on %s:%d\n">(options.setup.listen, static_cast<int>(port));
    if (!ifwatch::flush_output()) {
        return fail(std::string("standard output: ") + std::strerror(ifwatch::output_error()));
    }
    serve_clients(listener, stop_pipe[0], options.setup, cases);
    close(listener);
    return 0;
}

int run_conversion(int argc, char** argv) {
    std::string note;
    std::string error;
    if (!ifwatch::convert::convert(argc, argv, note, error)) {
        return fail(error);
    }
    if (!note.empty()) {
        say(note);
    }
    return 0;
}

int run(int argc, char** argv) {
    if (ifwatch::convert::asks_for_conversion(argc, argv)) {
        return run_conversion(argc, argv);
    }
    sim_options options;
    std::string error;
    if (!parse_options(argc, argv, options, error)) {
        return fail(error + " (--help tells more)");
    }
    if (options.help) {
        return write_output("", std::string_view(ifwatch::sim::help_text()), error) ? 0 : fail(error);
    }
    return serve(options);
}

}  // namespace

int main(int argc, char** argv) {
    ifwatch::ask_for_terminals();  // the threads that serve clients write, too
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    }
}
