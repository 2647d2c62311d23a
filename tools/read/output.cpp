#include "read/output.h"

#include <unistd.h>

#include "base/descriptor_buffer.h"
#include "base/print.h"
#include "base/program_name.h"
#include "base/terminal_text.h"
#include "read/line_colors.h"
#include "read/progress.h"

namespace ifwatch::read {

namespace {

constexpr std::size_t PIECE = 16384;

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): of the one standard output
line_colors colors;

/// What leaves goes through here where the standard output is a terminal or coloured. Takes all or fails.
long write_plain(const char* data, std::size_t length) {
    erase_progress();
    return write_terminal_text(STDOUT_FILENO, {data, length}) ? static_cast<long>(length) : -1;
}

long write_colored(const char* data, std::size_t length) {
    erase_progress();
    descriptor_buffer<PIECE> pieces(STDOUT_FILENO);
    colors.put(pieces, {data, length});
    return pieces.flush() ? static_cast<long>(length) : -1;
}

}  // namespace

void start_output(bool colored) {
    ask_for_terminals();
    if (colored) {
        set_output_writer(write_colored);
    } else if (output_is_terminal()) {
        set_output_writer(write_plain);
    }
}

void say(const std::string& text) {
    erase_progress();
    report<"%s: %s\n">(program_name(), text);
}

}  // namespace ifwatch::read
