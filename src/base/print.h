#pragma once

#include <cstdint>
#include <string_view>

#include "base/format.h"
#include "base/names.h"
#include "base/text_sink.h"

namespace ifwatch {

/// Asks the system which of the two streams are terminals. A text for one of these leaves in the form of
/// terminal_text.h, any other as it is. Asked once for the whole run, by this call or else by the first text: a program
/// that gives up system calls or starts threads calls this before.
void ask_for_terminals();
[[nodiscard]] bool output_is_terminal();
[[nodiscard]] bool errors_are_terminal();

/// The standard output: one buffer, written once per record by flush_output and early only when it fills.
extern text_sink standard_output;  // NOLINT(*-avoid-non-const-global-variables): a process has one

/// How the standard output leaves, whatever it is: like write(2), called until all is taken. nullptr leads it back to
/// where it was.
using output_writer = long (*)(const char* data, std::size_t length);
void set_output_writer(output_writer replacement);

/// Writes what the buffer holds. False when the standard output has failed, now or before; what came after the
/// failure is dropped. output_error then gives the errno of the failure (0: none).
bool flush_output();
[[nodiscard]] int output_error();

/// From here to end_bounded_output at most so many characters of what is printed are kept; what is printed behind them
/// is dropped.
void begin_bounded_output(std::size_t characters);
void end_bounded_output();

/// Prints to the standard output.
template <format_text Format, class... Arguments>
void print(const Arguments&... arguments) {
    print_to<Format>(standard_output, arguments...);
}

/// Prints a text of a table, which may hold one conversion of `value`, to the standard output.
inline void print_named(table_text text, std::uint32_t value) { print_named_to(standard_output, text, value); }

/// Where reports go instead of the error stream; nullptr leads them back to it.
using report_writer = void (*)(std::string_view text);
void set_report_writer(report_writer replacement);

/// Writes a text to the error stream at once. What stands in the output buffer goes out first, so that both streams
/// on one terminal keep their order.
void write_report(std::string_view text);

/// Writes a text to the error stream at once, and touches nothing else: for threads, once ask_for_terminals was called.
/// What cannot be written is lost.
void write_errors(std::string_view text);

/// Shows a count over the last one, both of at least eight characters. The backspaces that this takes are the only
/// ones that reach a terminal.
void report_count(std::uint32_t count);

/// Empties a full buffer into the error stream.
bool drain_report(text_sink& sink);

/// Prints to the error stream at once, in one write unless it is longer than the buffer: errors, reports and progress.
template <format_text Format, class... Arguments>
void report(const Arguments&... arguments) {
    text_buffer<4096> text;
    text.drain = drain_report;
    print_to<Format>(text, arguments...);
    write_report(text.text());
}

/// Tells that the standard output failed. Returns 1, the exit status of a run that this ends.
int report_output_failure();

}  // namespace ifwatch
