// What it costs to show one record, from the header line to the buffer that is written.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "base/print.h"
#include "display/display_context.h"
#include "display/mode_flags.h"
#include "display/record_display.h"

namespace {

using namespace ifwatch;

constexpr int CHANNEL_D = 0;
constexpr int CHANNEL_LAN = 6;

long discard(const char* /*data*/, std::size_t length) { return static_cast<long>(length); }

/// The context in which a record that holds the frame is shown.
display_context showing(int channel_type, std::uint32_t mode_flags, record_header& header,
                        std::span<std::uint8_t> frame) {
    display_context context;
    init_display_context(context);
    context.channel_type = channel_type;
    context.mode_flags = mode_flags;
    context.header = &header;
    context.original_length = static_cast<std::uint32_t>(frame.size());
    context.payload = octets_of(frame);
    return context;
}

void show(benchmark::State& state, int channel_type, std::uint32_t mode_flags, std::span<std::uint8_t> frame) {
    set_output_writer(discard);
    record_header header{.timestamp_ms = 1000};
    display_context context = showing(channel_type, mode_flags, header, frame);
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

// A data segment of 512 octets with its Ethernet header, as a LAN shows by default: -h -i -p.
constexpr std::uint32_t LAN_DEFAULT = MODE_HEX | MODE_IP | MODE_PPP;

std::array<std::uint8_t, 512> tcp_segment() {
    constexpr std::uint8_t headers[] = {
        0x02, 0x00, 0x01, 0x01, 0x02, 0x03, 0x02, 0x00, 0x02, 0x05, 0x0A, 0x10, 0x08, 0x00,  // Ethernet
        0x45, 0x00, 0x01, 0xF2, 0x12, 0x34, 0x40, 0x00, 0x40, 0x06, 0xA4, 0xD2,              // IPv4
        0xC0, 0xA8, 0x00, 0x0A, 0xC0, 0x00, 0x02, 0x50,                                      // addresses
        0xC0, 0x01, 0x00, 0x50, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0,              // TCP
        0x50, 0x18, 0x22, 0x38, 0x1A, 0x46, 0x00, 0x00,
    };
    std::array<std::uint8_t, 512> frame{};
    std::ranges::copy(headers, frame.begin());
    return frame;
}

void ethernet_tcp(benchmark::State& state) {
    std::array<std::uint8_t, 512> frame = tcp_segment();
    show(state, CHANNEL_LAN, LAN_DEFAULT, frame);
}

std::string shown_text;  // what keep_text got  NOLINT(*-avoid-non-const-global-variables)

long keep_text(const char* data, std::size_t length) {
    shown_text.append(data, length);
    return static_cast<long>(length);
}

/// The least that any printer has to do for the record above: put its text, already made, into the buffer.
void ethernet_tcp_floor(benchmark::State& state) {
    std::array<std::uint8_t, 512> frame = tcp_segment();
    record_header header{.timestamp_ms = 1000};
    display_context context = showing(CHANNEL_LAN, LAN_DEFAULT, header, frame);
    shown_text.clear();
    set_output_writer(keep_text);
    display_record(context);
    flush_output();
    set_output_writer(discard);
    for ([[maybe_unused]] const auto _ : state) {
        put(standard_output, shown_text);
        flush_output();
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(ethernet_tcp);
BENCHMARK(ethernet_tcp_floor);
BENCHMARK(lapd_receive_ready);
BENCHMARK(full_hex_dump);

}  // namespace
