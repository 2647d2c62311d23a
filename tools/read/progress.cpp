#include "read/progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "base/format.h"
#include "base/patient_write.h"

namespace ifwatch::read {

namespace {

using std::chrono::steady_clock;

constexpr auto FIRST = std::chrono::seconds(1);
constexpr auto INTERVAL = std::chrono::milliseconds(100);

struct progress_line {
    std::uint64_t octets = 0;         // 0: none is wanted
    std::uint64_t octets_before = 0;  // in the files that are read
    std::uint64_t packets_before = 0;
    steady_clock::rep next = 0;  // when it is shown
    bool shown = false;
};

// NOLINTNEXTLINE(*-avoid-non-const-global-variables): a process has one error stream
progress_line line;

// What cannot be written is lost: the line is nobody's result.
void write_line(std::string_view text) { static_cast<void>(write_whole(STDERR_FILENO, text)); }

}  // namespace

void start_progress(std::uint64_t octets) {
    line = {.octets = octets, .next = (steady_clock::now() + FIRST).time_since_epoch().count()};
}

void show_progress(std::uint64_t octets_read, std::uint64_t packets) {
    if (line.octets == 0) {
        return;
    }
    const auto now = steady_clock::now();
    if (now.time_since_epoch().count() < line.next) {
        return;
    }
    line.next = (now + INTERVAL).time_since_epoch().count();
    const std::uint64_t all_read = line.octets_before + octets_read;
    const auto percent = std::min<std::uint64_t>(all_read / (line.octets / 100 + 1), 100);
    text_buffer<80> text;
    print_to<"\r%3d %% read, %lu packets\x1b[K">(text, percent, line.packets_before + packets);
    write_line(text.text());
    line.shown = true;
}

void end_file_progress(std::uint64_t octets, std::uint64_t packets) {
    line.octets_before += octets;
    line.packets_before += packets;
}

void erase_progress() {
    if (line.shown) {
        write_line("\r\x1b[K");
        line.shown = false;
    }
}

}  // namespace ifwatch::read
