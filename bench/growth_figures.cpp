// What showing a record costs in processor time as it grows, without the reads and the write.

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "display/record_display.h"
#include "figures.h"
#include "trace/record_stream.h"
#include "traffic.h"

namespace ifwatch::bench {

namespace {

constexpr std::uint32_t LAN_FLAGS = MODE_HEX | MODE_IP | MODE_PPP;
constexpr std::uint32_t D_FLAGS = MODE_HEX | MODE_LAYER2_ASKED | MODE_LAYER3_ASKED;
constexpr int ROUNDS = 400;
constexpr std::size_t OCTETS_A_ROUND = 50000;  // so few that some rounds are not disturbed
constexpr double FLAT = 1.1;  // times the least so far is no growth: the processor's caches hold more of short records

struct series {
    const char* name;
    frame_kind kind;
    std::uint32_t mode_flags;
    std::size_t shortest = 0;  // a record of this length has all that the longer ones have
};
constexpr series ALL_SERIES[] = {
    {"first lines", frame_kind::TCP, LAN_FLAGS},
    {"whole frame (-!)", frame_kind::TCP, LAN_FLAGS | MODE_FULL_HEX},
    {"deepest nesting (-!)", frame_kind::NESTED, LAN_FLAGS | MODE_FULL_HEX, 512},
    {"most look-ups (-!)", frame_kind::TABLES, D_FLAGS | MODE_FULL_HEX},
    {"servers, largest table (-!)", frame_kind::SERVICES, LAN_FLAGS | MODE_IPX | MODE_FULL_HEX, 512},
};

constexpr std::size_t LENGTHS[] = {64, 128, 256, 512, 1024, 2048, 4096, 8192};
constexpr std::size_t TOLD[] = {64, 512, 2048, 8192};  // in the table

std::size_t printed = 0;  // NOLINT(*-avoid-non-const-global-variables): an output_writer has no other place for it

long count(const char* /*data*/, std::size_t length) {
    printed += length;
    return static_cast<long>(length);
}

double processor_seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// Seconds that showing the frame so many times takes.
double show(display_context& context, std::span<std::uint8_t> frame, int times) {
    record_header header{.timestamp_ms = 1000};
    context.header = &header;
    context.original_length = static_cast<std::uint32_t>(frame.size());
    const double before = processor_seconds();
    for (int i = 0; i < times; ++i) {
        header.sequence = ++context.expected_sequence;
        --context.expected_sequence;
        context.payload = octets_of(frame);
        display_record(context);
        flush_output();
    }
    const double after = processor_seconds();
    context.header = nullptr;
    return after - before;
}

/// A record of one length, and the quickest that it was shown: what took longer was the work of others.
struct point {
    std::vector<std::uint8_t> frame;
    double microseconds = std::numeric_limits<double>::max();
    std::size_t text = 0;
};

/// Shows records of all lengths in turns.
std::vector<point> measure(const series& what) {
    std::vector<point> points;
    points.reserve(std::size(LENGTHS));
    for (const std::size_t length : LENGTHS) {
        points.push_back({.frame = make_frame(what.kind, length)});
    }
    const auto context = std::make_unique<display_context>();
    init_display_context(*context);
    context->mode_flags = what.mode_flags;
    context->channel_type = channel_type_of(what.kind);
    // All in one place, as records are received: where a frame happens to lie would show in its time.
    const auto buffer = std::make_unique<std::array<std::uint8_t, RECORD_DATA_MAXIMUM>>();
    for (int round = 0; round < ROUNDS; ++round) {
        for (point& each : points) {
            const int times = static_cast<int>(OCTETS_A_ROUND / each.frame.size());
            const auto frame = std::span(*buffer).first(each.frame.size());
            std::ranges::copy(each.frame, frame.begin());
            printed = 0;
            each.microseconds = std::min(each.microseconds, show(*context, frame, times) * 1e6 / times);
            each.text = printed / static_cast<std::size_t>(times);
        }
    }
    return points;
}

/// Nanoseconds an octet at the lengths of the table, and whether they fall or stay.
figure row_of(const series& what, const std::vector<point>& points) {
    figure row{.name = std::string("growth, ") + what.name, .goal = "falling or flat", .met = "yes"};
    double least = std::numeric_limits<double>::max();
    for (const std::size_t length : TOLD) {
        const auto at = std::ranges::find(LENGTHS, length) - std::begin(LENGTHS);
        const double each = points[static_cast<std::size_t>(at)].microseconds * 1e3 / static_cast<double>(length);
        if (each > least * FLAT) {
            row.met = "no";
        }
        if (length >= what.shortest) {
            least = std::min(least, each);
        }
        row.value += (row.value.empty() ? "" : ", ") + decimal(each, 2);
    }
    row.value += " ns";
    if (what.shortest != 0) {
        row.goal += " from " + std::to_string(what.shortest);
    }
    return row;
}

}  // namespace

void measure_growth(const std::string& curves, figures& rows) {
    std::FILE* const file = std::fopen(curves.c_str(), "we");
    if (file == nullptr) {
        std::perror(curves.c_str());
        return;
    }
    set_output_writer(count);
    for (const series& what : ALL_SERIES) {
        const std::vector<point> points = measure(what);
        for (const point& each : points) {
            static_cast<void>(
                std::fprintf(file, "%s\t%zu\t%.3f\t%zu\n", what.name, each.frame.size(), each.microseconds, each.text));
        }
        rows.push_back(row_of(what, points));
    }
    set_output_writer(nullptr);
    static_cast<void>(std::fclose(file));
}

}  // namespace ifwatch::bench
