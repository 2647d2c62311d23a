#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "base/print.h"
#include "base/program_name.h"
#include "base/verbose.h"
#include "client/confinement.h"
#include "client/signals.h"
#include "command_line/text_parts.h"
#include "read/capture_report.h"
#include "read/interrupt.h"
#include "read/open_captures.h"
#include "read/options.h"
#include "read/output.h"
#include "read/progress.h"
#include "read/viewer.h"

namespace {

using namespace ifwatch;
using namespace ifwatch::read;

constexpr int STATUS_FAILURE = 1;  // of a file or of the output
constexpr int STATUS_MISTAKE = 2;

int help() {
    put(standard_output, help_text());
    return flush_output() ? 0 : report_output_failure();
}

bool is_colored(color_choice choice) {
    const char* const no_color = std::getenv("NO_COLOR");
    const bool unwanted = no_color != nullptr && *no_color != '\0';
    return choice == color_choice::AUTO ? isatty(STDOUT_FILENO) == 1 && !unwanted : choice == color_choice::ALWAYS;
}

/// The octets of strangers come next: from here on the process can read, write and end.
void confine() {
    const int failure = confine_to_record_loop({.asks_clock = true, .catches_signals = interrupts_are_awaited()});
    if (failure != 0 && verbose_level > 0) {
        say(std::string("not confined to reading and writing (") + std::strerror(failure) + ")");
    }
}

/// Lets the progress of plain files show where somebody is there to see it.
void prepare_progress(const std::vector<open_capture>& captures) {
    std::uint64_t octets = 0;
    for (const open_capture& capture : captures) {
        if (!capture.octets) {
            return;
        }
        octets += *capture.octets;
    }
    if (errors_are_terminal()) {
        start_progress(octets);
    }
}

int show(const read_options& options) {
    std::vector<std::string> errors;
    const std::vector<open_capture> captures = open_captures(options.files, errors);
    for (const std::string& error : errors) {
        say(error);
    }
    const std::unique_ptr<capture_report> report = options.report ? std::make_unique<capture_report>() : nullptr;
    start_output(!options.report && is_colored(options.color));
    prepare_progress(captures);
    if (options.report) {
        await_interrupts();
    }
    confine();
    bool whole = errors.empty();
    shown_counts counts;
    for (const open_capture& capture : captures) {
        const std::string title = options.files.size() > 1 ? on_one_line(capture.name) + ": " : "";
        whole = show_capture(capture, title, options, counts, report.get()) && whole;
        if (output_error() != 0) {
            return report_output_failure();
        }
    }
    if (report != nullptr && !captures.empty() && !report->print()) {
        return report_output_failure();
    }
    if (!captures.empty()) {
        say(counts.text(options.report ? "reported on" : "shown"));
    }
    return whole ? 0 : STATUS_FAILURE;
}

int run(int argc, char** argv) {
    read_options options;
    std::string error;
    if (!parse_options(argc, argv, options, error)) {
        say(error + " (--help tells more)");
        return STATUS_MISTAKE;
    }
    if (options.help) {
        return help();
    }
    if (options.files.empty()) {
        if (isatty(STDIN_FILENO) == 1) {
            say("no FILE is given, and the standard input is a terminal (--help tells more)");
            return STATUS_MISTAKE;
        }
        options.files.emplace_back("-");
    }
    return show(options);
}

}  // namespace

int main(int argc, char** argv) {
    set_program_name("ifwatch-read");
    survive_file_size_limit();
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        say("out of memory");
        return STATUS_FAILURE;
    }
}
