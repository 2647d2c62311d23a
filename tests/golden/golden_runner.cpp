// Runs golden cases: each is served by the real ifwatch-sim and watched with the real ifwatch, once for every options
// line, and what ifwatch prints must be the text of the .expected file beside the case, to the letter.

#include <getopt.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "base/print.h"
#include "cases/case_file.h"
#include "command_line/text_parts.h"
#include "golden/golden_compare.h"
#include "support/process.h"
#include "support/temp_directory.h"
#include "support/words.h"

namespace {

using namespace ifwatch::test;
using ifwatch::cases::trace_case;

constexpr std::chrono::seconds DEFAULT_TIMEOUT{10};

struct runner_options {
    std::string sim;
    std::string ifwatch;
    bool accept = false;
    std::chrono::seconds timeout = DEFAULT_TIMEOUT;  // for a run
    std::vector<std::string> cases;
};

constexpr char HELP[] =
    R"(golden_runner: compares what ifwatch prints for a case with the expected text beside it.

Examples:
  golden_runner tests/golden/display/lost_records.case
  golden_runner tests/golden/*/*.case
  golden_runner --accept tests/golden/display/lost_records.case    writes the expected text anew: review the change

Options:
  --sim PATH       the simulator (beside this program)
  --ifwatch PATH   the tracer (beside this program)
  --timeout N      seconds for a run (10)
  --accept         write the .expected files instead of comparing

Exit status: 0 when every case holds, 1 when one does not, 2 for a mistake on the command line.
)";

/// What is wrong with a case; empty: it holds.
using failure = std::string;

std::string expected_path(const std::string& case_path) {
    return std::filesystem::path(case_path).replace_extension(".expected").string();
}

failure failed_run(const std::string& program, const outcome& ended) {
    std::string how = "exit status " + std::to_string(ended.status);
    if (ended.timed_out) {
        how = "timed out";
    } else if (ended.signal != 0) {
        how = "ended by signal " + std::to_string(ended.signal);
    }
    return program + ": " + how + "\n" + ended.errors;
}

/// The port that the simulator tells on its first line; empty when it does not.
std::string port_of(process& sim) {
    const std::string mark = "listening on 127.0.0.1:";
    if (!sim.wait_for_output("\n")) {
        return {};
    }
    const std::string line = sim.output();
    return line.starts_with(mark) ? line.substr(mark.size(), line.find('\n') - mark.size()) : std::string();
}

std::string interface_of(const trace_case& golden) { return std::to_string(golden.interface_index.value_or(1000)); }

/// Runs the case once for each of its options lines.
failure run_case(const runner_options& options, const trace_case& golden, std::vector<golden_run>& runs) {
    process sim({options.sim, {"--port", "0", "--password", "golden", golden.path}, {}, {}, options.timeout});
    const std::string port = port_of(sim);
    if (port.empty()) {
        return failed_run("ifwatch-sim", sim.terminate());
    }
    for (const std::string& text : golden.options) {
        std::vector<std::string> arguments = {"--pwd=golden", "-P", port};
        const std::vector<std::string> words = words_of(text);
        arguments.insert(arguments.end(), words.begin(), words.end());
        arguments.insert(arguments.end(), {"127.0.0.1", interface_of(golden)});
        const outcome watched = run({options.ifwatch, arguments, {}, {}, options.timeout});
        if (watched.status != 0 || watched.timed_out) {
            return "options " + text + ": " + failed_run("ifwatch", watched);
        }
        runs.push_back({text, watched.output});
    }
    const outcome ended = sim.terminate();
    return ended.status == 0 ? failure() : failed_run("ifwatch-sim", ended);
}

failure compare(const std::vector<golden_run>& runs, const std::vector<golden_run>& expected) {
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const auto differing = first_difference(expected[i].output, runs[i].output);
        if (differing) {
            std::string where = "line " + std::to_string(differing->line);
            if (differing->record != 0) {
                where += ", record " + std::to_string(differing->record);
            }
            return "options " + runs[i].options + ": " + where + "\n  expected " + differing->expected +
                   "\n  got      " + differing->got + "\n";
        }
    }
    return {};
}

/// The expected output of each run.
failure read_expected(const trace_case& golden, std::vector<golden_run>& expected) {
    const std::string path = expected_path(golden.path);
    std::string text;
    std::string error;
    if (!read_file(path, text)) {
        return "no expected text: " + path + "\n";
    }
    return split_runs(text, golden.options, expected, error) ? failure() : error + "\n";
}

failure accept(const trace_case& golden, const std::vector<golden_run>& runs) {
    const std::string path = expected_path(golden.path);
    return write_file(path, join_runs(runs)) ? failure() : "cannot write " + path + "\n";
}

failure check_case(const runner_options& options, const trace_case& golden) {
    if (golden.options.empty()) {
        return "no options line\n";
    }
    std::vector<golden_run> expected;
    failure wrong = options.accept ? failure() : read_expected(golden, expected);
    std::vector<golden_run> runs;
    if (wrong.empty()) {
        wrong = run_case(options, golden, runs);
    }
    if (!wrong.empty()) {
        return wrong;
    }
    return options.accept ? accept(golden, runs) : compare(runs, expected);
}

/// Checks the case and reports what is wrong with it.
bool holds(const runner_options& options, const std::string& path) {
    trace_case golden;
    std::string error;
    if (!read_case_file(path, golden, error)) {
        ifwatch::write_errors(error + "\n");
        return false;
    }
    const failure wrong = check_case(options, golden);
    if (!wrong.empty()) {
        ifwatch::write_errors(path + ": " + wrong);
    }
    return wrong.empty();
}

std::string beside_this_program(const std::string& name) {
    std::error_code ignored;
    return (std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / name).string();
}

bool parse_seconds(const char* text, std::chrono::seconds& value) {
    const auto number = ifwatch::parse_number(text, 1, 3600);
    value = std::chrono::seconds(number.value_or(0));
    return number.has_value();
}

/// Returns -1 to go on, or the exit status.
int parse_options(int argc, char** argv, runner_options& options) {
    options = {beside_this_program("ifwatch-sim"), beside_this_program("ifwatch"), false, DEFAULT_TIMEOUT, {}};
    constexpr option longs[] = {{"sim", required_argument, nullptr, 's'}, {"ifwatch", required_argument, nullptr, 'i'},
                                {"accept", no_argument, nullptr, 'a'},    {"timeout", required_argument, nullptr, 't'},
                                {"help", no_argument, nullptr, 'h'},      {nullptr, 0, nullptr, 0}};
    for (int code = 0; (code = getopt_long(argc, argv, "h", longs, nullptr)) != -1;) {
        if (code == 's') {
            options.sim = optarg;
        } else if (code == 'i') {
            options.ifwatch = optarg;
        } else if (code == 'a') {
            options.accept = true;
        } else if (code == 't' && parse_seconds(optarg, options.timeout)) {
            continue;
        } else if (code == 'h') {
            return std::fputs(HELP, stdout) < 0 ? 1 : 0;
        } else {
            return 2;
        }
    }
    options.cases.assign(argv + optind, argv + argc);
    if (options.cases.empty()) {
        static_cast<void>(std::fputs("golden_runner: no case given (--help tells more)\n", stderr));
        return 2;
    }
    return -1;
}

}  // namespace

int main(int argc, char** argv) {
    runner_options options;
    if (const int status = parse_options(argc, argv, options); status >= 0) {
        return status;
    }
    int failed = 0;
    for (const std::string& path : options.cases) {
        failed += holds(options, path) ? 0 : 1;
    }
    if (options.cases.size() > 1) {
        static_cast<void>(std::printf("%zu cases, %d failed\n", options.cases.size(), failed));
    }
    return failed == 0 ? 0 : 1;
}
