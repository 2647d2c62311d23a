// What it costs to take asynchronous HDLC apart. The rate counts payload octets: those of the frames, without flags,
// escapes and FCS. A run that loses a frame or allocates memory counts as failed.

#include "display/async_hdlc.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "base/print.h"
#include "display/fcs16.h"
#include "display/mode_flags.h"

namespace {

// What the replaced operator new and a frame decoder count; neither can be handed a place for it.
// NOLINTBEGIN(*-avoid-non-const-global-variables)
std::size_t allocations = 0;
std::size_t decoded_frames = 0;
// NOLINTEND(*-avoid-non-const-global-variables)

}  // namespace

// Inlined, g++ 12 takes them for a pair that does not match.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    void* const memory = std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace {

using namespace ifwatch;

constexpr std::size_t FRAMES = 64;
constexpr int SLICE = 2048;  // octets of the stream in one record

std::vector<std::uint8_t> make_frame(std::size_t length, unsigned seed) {
    std::vector<std::uint8_t> frame(length);
    std::ranges::generate(frame, [seed]() mutable {
        seed = seed * 1103515245U + 12345U;
        return static_cast<std::uint8_t>(seed >> 16);
    });
    return frame;
}

/// Stuffs a frame as a sender does whose peer has asked for the control characters in `escape_below` to be escaped.
void append_stuffed(std::vector<std::uint8_t>& stream, std::vector<std::uint8_t> frame, std::uint8_t escape_below) {
    const auto fcs = static_cast<std::uint16_t>(~fcs16(FCS16_START, frame));
    frame.push_back(static_cast<std::uint8_t>(fcs));
    frame.push_back(static_cast<std::uint8_t>(fcs >> 8));
    for (const std::uint8_t octet : frame) {
        if (octet == 0x7E || octet == 0x7D || octet < escape_below) {
            stream.push_back(0x7D);
            stream.push_back(octet ^ 0x20);
        } else {
            stream.push_back(octet);
        }
    }
    stream.push_back(0x7E);
}

std::vector<std::uint8_t> make_stream(std::size_t length, std::uint8_t escape_below) {
    std::vector<std::uint8_t> stream{0x7E};
    for (unsigned i = 0; i < FRAMES; ++i) {
        append_stuffed(stream, make_frame(length, i), escape_below);
    }
    return stream;
}

octets slice_of(std::vector<std::uint8_t>& stream, std::size_t offset) {
    const std::size_t length = std::min<std::size_t>(SLICE, stream.size() - offset);
    return octets_of(std::span(stream).subspan(offset, length));
}

void count_payload(benchmark::State& bench, std::size_t length, std::size_t allocations_before) {
    if (allocations != allocations_before) {
        bench.SkipWithError("memory was allocated");
    }
    bench.SetBytesProcessed(bench.iterations() * static_cast<std::int64_t>(FRAMES * length));
}

void decode(octets frame, std::uint32_t record_flags, display_context& context) {
    ++decoded_frames;
    dump_bchannel(frame, record_flags, context);
}

/// Reassembly alone: async_next_frame over a stream in slices.
void reassemble(benchmark::State& bench) {
    const auto length = static_cast<std::size_t>(bench.range(0));
    auto stream = make_stream(length, static_cast<std::uint8_t>(bench.range(1)));
    const auto state = std::make_unique<async_state>();
    const std::size_t allocations_before = allocations;
    for ([[maybe_unused]] const auto _ : bench) {
        std::size_t frames = 0;
        for (std::size_t offset = 0; offset < stream.size(); offset += SLICE) {
            async_scanner scanner{.rest = slice_of(stream, offset), .state = *state};
            while (scanner.rest.within() > 0) {
                frames += async_next_frame(scanner) ? 1U : 0U;
            }
        }
        if (frames != FRAMES) {
            bench.SkipWithError("frames were lost");
            break;
        }
    }
    count_payload(bench, length, allocations_before);
}

/// The same through dump_data_packet, with its line for each frame and each slice.
void reassemble_and_announce(benchmark::State& bench) {
    const auto length = static_cast<std::size_t>(bench.range(0));
    auto stream = make_stream(length, static_cast<std::uint8_t>(bench.range(1)));
    set_output_writer([](const char*, std::size_t count) { return static_cast<long>(count); });
    const auto context = std::make_unique<display_context>();
    context->mode_flags = MODE_ASYNC_HDLC;
    const std::size_t allocations_before = allocations;
    for ([[maybe_unused]] const auto _ : bench) {
        decoded_frames = 0;
        for (std::size_t offset = 0; offset < stream.size(); offset += SLICE) {
            dump_data_packet(slice_of(stream, offset), 1, *context, decode);
        }
        flush_output();
        if (decoded_frames != FRAMES) {
            bench.SkipWithError("frames were lost");
            break;
        }
    }
    set_output_writer(nullptr);
    count_payload(bench, length, allocations_before);
}

// Frame length; octets below this value are escaped (0: only flags and escapes; 32: the default of RFC 1662).
constexpr auto FRAME_KINDS = [](benchmark::internal::Benchmark* bench) {
    for (const int length : {64, 576, 1500}) {
        for (const int escape_below : {0, 32}) {
            bench->Args({length, escape_below});
        }
    }
};

BENCHMARK(reassemble)->Apply(FRAME_KINDS);
BENCHMARK(reassemble_and_announce)->Apply(FRAME_KINDS);

}  // namespace
