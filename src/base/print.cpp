#include "base/print.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/patient_write.h"
#include "base/terminal_text.h"

namespace ifwatch {

namespace {

constexpr std::size_t OUTPUT_CAPACITY = 65536;

/// Asked of the system once; `asked` is false before.
struct stream_kinds {
    bool asked = false;
    bool output_is_terminal = false;
    bool errors_are_terminal = false;
};

long write_as_it_is(const char* data, std::size_t length) { return write_patiently(STDOUT_FILENO, data, length); }

/// Takes all or fails.
long write_for_terminal(const char* data, std::size_t length) {
    return write_terminal_text(STDOUT_FILENO, {data, length}) ? static_cast<long>(length) : -1;
}

/// The writer that stands until it is known what the standard output is.
long ask_and_write(const char* data, std::size_t length);

// A process has one standard output, and this is the state of it.
// NOLINTBEGIN(*-avoid-non-const-global-variables)
char output_buffer[OUTPUT_CAPACITY];
stream_kinds streams;
output_writer writer = ask_and_write;
int first_error = 0;
report_writer reporter = nullptr;
// NOLINTEND(*-avoid-non-const-global-variables)

const stream_kinds& known_streams() {
    if (!streams.asked) {
        ask_for_terminals();
    }
    return streams;
}

long ask_and_write(const char* data, std::size_t length) {
    writer = known_streams().output_is_terminal ? write_for_terminal : write_as_it_is;
    return writer(data, length);
}

/// A stretch of output that is kept to a bound: where it begins in the buffer, and how much more of it is kept.
struct output_bound {
    bool active = false;
    std::size_t begin = 0;
    std::size_t left = 0;
};

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): belongs to the buffer above
output_bound bound;

/// Takes what exceeds the bound out of the buffer again, and counts what does not.
void hold_bound(text_sink& sink) {
    if (bound.active) {
        const std::size_t kept = std::min(sink.used - bound.begin, bound.left);
        sink.used = bound.begin + kept;
        bound.left -= kept;
    }
}

/// Empties the buffer; after a failure by dropping it, so that a decoder can run to its end.
bool drain_output(text_sink& sink) {
    hold_bound(sink);
    std::size_t done = 0;
    while (first_error == 0 && done < sink.used) {
        const long written = writer(sink.data + done, sink.used - done);
        if (written >= 0) {
            done += static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            first_error = errno;
        }
    }
    sink.used = 0;
    bound.begin = 0;
    return true;
}

}  // namespace

void ask_for_terminals() {
    streams = {.asked = true,
               .output_is_terminal = isatty(STDOUT_FILENO) == 1,
               .errors_are_terminal = isatty(STDERR_FILENO) == 1};
}

bool output_is_terminal() { return known_streams().output_is_terminal; }
bool errors_are_terminal() { return known_streams().errors_are_terminal; }

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): as above
text_sink standard_output{output_buffer, OUTPUT_CAPACITY, 0, drain_output};

void set_output_writer(output_writer replacement) {
    writer = replacement != nullptr ? replacement : ask_and_write;
    first_error = 0;
    standard_output.used = 0;
    bound.active = false;
}

bool flush_output() {
    drain_output(standard_output);
    return first_error == 0;
}

int output_error() { return first_error; }

void begin_bounded_output(std::size_t characters) {
    bound = {.active = true, .begin = standard_output.used, .left = characters};
}

void end_bounded_output() {
    hold_bound(standard_output);
    bound.active = false;
}

void set_report_writer(report_writer replacement) { reporter = replacement; }

void write_errors(std::string_view text) {
    static_cast<void>(errors_are_terminal() ? write_terminal_text(STDERR_FILENO, text)
                                            : write_whole(STDERR_FILENO, text));
}

void write_report(std::string_view text) {
    flush_output();
    if (reporter != nullptr) {
        reporter(text);
        return;
    }
    write_errors(text);
}

void report_count(std::uint32_t count) {
    text_buffer<32> text;
    print_to<"\b\b\b\b\b\b\b\b%8lu">(text, count);
    if (reporter != nullptr) {
        write_report(text.text());
        return;
    }
    flush_output();
    static_cast<void>(write_whole(STDERR_FILENO, text.text()));
}

bool drain_report(text_sink& sink) {
    write_report(sink.text());
    sink.used = 0;
    return true;
}

int report_output_failure() {
    report<"ERROR write (%s)\n">(std::strerror(first_error));
    return 1;
}

}  // namespace ifwatch
