#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "sim/case_file.h"
#include "sim/daemon.h"
#include "sim/options.h"

namespace {

using ifwatch::sim::sim_options;
using ifwatch::sim::trace_case;

constexpr int STATUS_MISTAKE = 2;

// A signal handler can only reach what is global.
int stop_pipe[2] = {-1, -1};  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

extern "C" void on_signal(int /*signal*/) {
    const int saved = errno;
    [[maybe_unused]] const auto written = write(stop_pipe[1], "", 1);
    errno = saved;
}

int fail(const std::string& error) {
    static_cast<void>(std::fprintf(stderr, "ifwatch-sim: %s\n", error.c_str()));
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
    return assign_interfaces(cases, error);
}

/// The file appears whole: whoever waits for it never reads a part.
bool write_port_file(const std::string& path, std::uint16_t port, std::string& error) {
    const std::string unfinished = path + ".new";
    std::FILE* const file = std::fopen(unfinished.c_str(), "w");
    const bool written = file != nullptr && std::fprintf(file, "%d\n", port) > 0;
    const bool closed = file != nullptr && std::fclose(file) == 0;
    if (!written || !closed || std::rename(unfinished.c_str(), path.c_str()) != 0) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    sim_options options;
    std::string error;
    if (!parse_options(argc, argv, options, error)) {
        return fail(error + " (--help tells more)");
    }
    if (options.help) {
        return std::fputs(ifwatch::sim::help_text(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    }
    std::vector<trace_case> cases;
    if (!load_cases(options.cases, cases, error)) {
        return fail(error);
    }
    if (!install_signals()) {
        return fail(std::string("signals: ") + std::strerror(errno));
    }
    std::uint16_t port = 0;
    const int listener = open_listener(options.setup, port, error);
    if (listener < 0 || (!options.setup.port_file.empty() && !write_port_file(options.setup.port_file, port, error))) {
        return fail(error);
    }
    if (std::printf("listening on %s:%d\n", options.setup.listen.c_str(), port) < 0 || std::fflush(stdout) != 0) {
        return fail(std::string("standard output: ") + std::strerror(errno));
    }
    serve_clients(listener, stop_pipe[0], options.setup, cases);
    close(listener);
    return 0;
}
