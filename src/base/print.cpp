#include "base/print.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ifwatch {

namespace {

constexpr std::size_t OUTPUT_CAPACITY = 65536;

/// write(2) that waits for room also where the stream does not block: whoever shares a terminal or a pipe with this
/// program may have set it so.
long write_patiently(int fd, const char* data, std::size_t length) {
    while (true) {
        const long written = write(fd, data, length);
        if (written >= 0 || errno != EAGAIN) {
            return written;
        }
        pollfd stream{fd, POLLOUT, 0};
        if (poll(&stream, 1, -1) < 0 && errno != EINTR) {
            return -1;
        }
    }
}

long write_to_standard_output(const char* data, std::size_t length) {
    return write_patiently(STDOUT_FILENO, data, length);
}

// A process has one standard output, and this is the state of it.
// NOLINTBEGIN(*-avoid-non-const-global-variables)
char output_buffer[OUTPUT_CAPACITY];
output_writer writer = write_to_standard_output;
int first_error = 0;
report_writer reporter = nullptr;
// NOLINTEND(*-avoid-non-const-global-variables)

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

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): as above
text_sink standard_output{output_buffer, OUTPUT_CAPACITY, 0, drain_output};

void set_output_writer(output_writer replacement) {
    writer = replacement != nullptr ? replacement : write_to_standard_output;
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

void write_report(std::string_view text) {
    flush_output();
    if (reporter != nullptr) {
        reporter(text);
        return;
    }
    while (!text.empty()) {
        const long written = write_patiently(STDERR_FILENO, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            return;
        }
    }
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
