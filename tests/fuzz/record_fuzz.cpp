// Whatever a router sends, the display of a trace comes to its end, reads no octet that is not there and keeps its
// output in proportion. The input is a whole trace:
//
//     octets 0-3   mode flags, little-endian
//     octet  4     channel type; 0xFE is -2, the PABX
//     then for each record
//     octet  0     record flags
//     octet  1     event code
//     octet  2     octets cut off the frame before it was captured
//     octets 3-4   captured octets, big-endian: the data that follow

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "base/print.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "trace/element.h"

namespace {

using namespace ifwatch;

constexpr std::size_t TRACE_HEADER = 5;
constexpr std::size_t RECORD_HEADER = 5;

std::size_t printed = 0;  // NOLINT(*-avoid-non-const-global-variables): the writer below has no other place for it

long count_output(const char* /*data*/, std::size_t length) {
    printed += length;
    return static_cast<long>(length);
}

/// Shows the first record of the input, from memory of exactly its size; returns what follows it.
std::span<const std::uint8_t> show_record(std::span<const std::uint8_t> input, record_header& header,
                                          display_context& context) {
    header.record_flags = input[0];
    header.channel_info = input[1];
    header.timestamp_ms += input[2];
    ++header.sequence;
    const std::size_t length = std::min<std::size_t>(load_be16(&input[3]), input.size() - RECORD_HEADER);
    const auto data = std::make_unique<std::uint8_t[]>(length);
    std::copy_n(input.begin() + RECORD_HEADER, length, data.get());

    context.header = &header;
    context.payload = octets_of({data.get(), length});
    context.original_length = static_cast<std::uint32_t>(length) + input[2];
    const std::size_t bound = record_output_bound(context);
    printed = 0;
    display_record(context);
    flush_output();
    if (printed > bound) {
        std::abort();
    }
    return input.subspan(RECORD_HEADER + length);
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    std::span<const std::uint8_t> input{data, size};
    if (input.size() < TRACE_HEADER) {
        return 0;
    }
    set_output_writer(count_output);
    display_context context;
    init_display_context(context);
    context.mode_flags = load_le32(input.data());
    context.channel_type = input[4] == 0xFE ? -2 : input[4];
    apply_default_flags(context);
    record_header header;
    for (input = input.subspan(TRACE_HEADER); input.size() >= RECORD_HEADER;) {
        input = show_record(input, header, context);
    }
    return 0;
}
