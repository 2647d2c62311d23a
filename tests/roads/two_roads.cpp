// The two roads that records take to the terminal, the socket and the trace file, must show the same: each case is
// served to the real ifwatch as a session of version 1, and its octets are read as a trace file, once for every options
// line. What filters and options ask of the router plays no part: every record is served as it is.
//
// Usage: two_roads CASE...
//        two_roads --file FILE [OPTION...] ROUTER INTERFACE    reads a trace file; no option of ifwatch does

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/print.h"
#include "cases/case_file.h"
#include "cases/record_source.h"
#include "client/options.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "golden/golden_compare.h"
#include "support/process.h"
#include "support/programs.h"
#include "support/scripted_daemon.h"
#include "support/temp_directory.h"
#include "support/trace_records.h"
#include "support/words.h"
#include "trace/record_stream.h"
#include "trace/trace_file.h"

namespace {

using namespace ifwatch;
using namespace ifwatch::test;

/// The channel type that begins a trace file; the reader finds it again.
std::int8_t channel_type_of(const char* file) {
    std::string octets;
    return read_file(file, octets) && !octets.empty() ? static_cast<std::int8_t>(octets.front()) : std::int8_t{-1};
}

/// Shows a trace file under the options of the command line behind its name.
int show_file(int argc, char** argv) {
    const char* const file = argv[1];
    options settings;
    if (argc < 2 || parse_options(argc - 1, argv + 1, settings) != ifwatch::command::TRACE) {
        return 2;
    }
    display_context context;
    init_display_context(context);
    context.tei_filter = settings.tei_filter;
    context.cref_filter = settings.cref_filter;
    context.mode_flags = settings.mode_flags;
    // The set-up of a session adjusts the flags to the interface. A file has no set-up, so it is done for it here.
    context.channel_type = channel_type_of(file);
    apply_default_flags(context);
    return read_trace_file(file, settings.target, context);
}

/// What a version-1 session delivers: the channel type, then the records.
std::vector<std::uint8_t> session_octets(const cases::trace_case& trace) {
    std::vector<std::uint8_t> octets = {static_cast<std::uint8_t>(trace.channel_type)};
    for (const cases::case_record& record : trace.records) {
        cases::append_record(octets, record, -1);
    }
    return octets;
}

/// The length of the first record that cannot be held, at which both roads end; 0: all can.
std::size_t first_too_long(const cases::trace_case& trace) {
    for (const cases::case_record& record : trace.records) {
        if (record.data.size() > static_cast<std::size_t>(RECORD_DATA_MAXIMUM)) {
            return record.data.size();
        }
    }
    return 0;
}

/// Whether a road was gone to its end; if not, tells why.
bool arrived(const char* road, const outcome& got, const std::string& last_message) {
    if (got.status == 0 && got.errors.ends_with(last_message)) {
        return true;
    }
    report<"%s: exit status %d, signal %d\n%s">(road, got.status, got.signal, got.errors);
    return false;
}

/// One case, its octets on both roads.
class road_check {
public:
    explicit road_check(const cases::trace_case& trace)
        : octets_(session_octets(trace)), too_long_(std::to_string(first_too_long(trace))) {
        file_ = directory_.write("trace", std::string(octets_.begin(), octets_.end()));
    }

    /// Whether both show the same under these options; if not, tells where they part.
    bool holds(const std::string& options) {
        const outcome from_socket = run(by_socket(options));
        const outcome from_file = run(by_file(options));
        const bool cut = too_long_ != "0";
        if (!arrived("socket", from_socket,
                     cut ? "data too short! 0<" + too_long_ + "\n" : "trc hdr too short! = 0<22\n") ||
            !arrived("file", from_file,
                     cut ? "data too short! (0 instead of " + too_long_ + ")\n" : "msg1 too short!\n")) {
            return false;
        }
        const auto differing = first_difference(from_socket.output, from_file.output);
        if (differing) {
            report<"line %lu, record %lu\n  by socket %s\n  by file   %s\n">(differing->line, differing->record,
                                                                             differing->expected, differing->got);
        }
        return !differing;
    }

private:
    static test::command of(const std::string& program, std::vector<std::string> arguments, const std::string& options,
                            const std::vector<std::string>& target) {
        const std::vector<std::string> words = words_of(options);
        arguments.insert(arguments.end(), words.begin(), words.end());
        arguments.insert(arguments.end(), target.begin(), target.end());
        return {.program = program, .arguments = arguments};
    }
    [[nodiscard]] test::command by_socket(const std::string& options) const {
        return of(IFWATCH_PROGRAM, {daemon_.port_option()}, options, {"-V1", "127.0.0.1", "1000"});
    }
    [[nodiscard]] test::command by_file(const std::string& options) const {
        return of(std::filesystem::read_symlink("/proc/self/exe").string(), {"--file", file_}, options,
                  {"127.0.0.1", "1000"});
    }

    std::vector<std::uint8_t> octets_;
    std::string too_long_;
    temp_directory directory_;
    std::string file_;
    scripted_daemon daemon_{[this](const tcp_peer& client) {
        client.receive(TRACE_REQUEST_OCTETS);
        client.send(octets_);
    }};
};

/// Checks a case under each of its options lines, and returns how many there are; 0 when one does not hold.
std::size_t check_case(const std::string& path) {
    cases::trace_case trace;
    std::string error;
    if (!cases::read_case_file(path, trace, error)) {
        write_errors(error + "\n");
        return 0;
    }
    road_check check(trace);
    for (const std::string& options : trace.options) {
        if (!check.holds(options)) {
            report<"in %s, options %s\n">(path, options);
            return 0;
        }
    }
    return trace.options.size();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2 && std::string_view(argv[1]) == "--file") {
        return show_file(argc - 1, argv + 1);
    }
    std::size_t runs = 0;
    int failed = argc > 1 ? 0 : 1;
    for (int i = 1; i < argc; ++i) {
        const std::size_t held = check_case(argv[i]);
        runs += held;
        failed += held == 0 ? 1 : 0;
    }
    std::printf("%d cases, %zu times on both roads, %d failed\n", argc - 1, runs, failed);
    return failed == 0 ? 0 : 1;
}
