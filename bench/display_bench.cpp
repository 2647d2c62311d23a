// What it costs to show one record, from the header line to the buffer that is written.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <span>

#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "display/record_display.h"

namespace {

using namespace ifwatch;

constexpr int CHANNEL_D = 0;
constexpr int CHANNEL_LAN = 6;

long discard(const char* /*data*/, std::size_t length) { return static_cast<long>(length); }

void show(benchmark::State& state, int channel_type, std::uint32_t mode_flags, std::span<std::uint8_t> frame) {
    set_output_writer(discard);
    record_header header{.timestamp_ms = 1000};
    display_context context;
    init_display_context(context);
    context.channel_type = channel_type;
    context.mode_flags = mode_flags;
    context.header = &header;
    context.original_length = static_cast<std::uint32_t>(frame.size());
    for ([[maybe_unused]] const auto _ : state) {
        ++header.sequence;
        context.payload = octets_of(frame);
        display_record(context);
        flush_output();
    }
    state.SetItemsProcessed(state.iterations());
}

void lapd_receive_ready(benchmark::State& state) {
    std::array<std::uint8_t, 4> frame{0x02, 0x81, 0x01, 0x04};
    show(state, CHANNEL_D, MODE_LAYER2 | MODE_LAYER2_ASKED, frame);
}

void full_hex_dump(benchmark::State& state) {
    std::array<std::uint8_t, 1514> frame{};
    show(state, CHANNEL_LAN, MODE_HEX | MODE_FULL_HEX, frame);
}

BENCHMARK(lapd_receive_ready);
BENCHMARK(full_hex_dump);

}  // namespace
