// Whatever a router sends, the display of a trace comes to its end, reads no octet that is not there and keeps its
// limits of output, time and state. The input is a whole trace:
//
//     octets 0-3   mode flags, little-endian
//     octet  4     channel type; 0xFE is -2, the PABX
//     octet  5     TEI filter; 0xFF: none
//     octet  6     call reference filter; 0xFF: none
//     then for each record
//     octet  0     record flags
//     octets 1-4   channel info, big-endian
//     octet  5     octets cut off the frame before it was captured; so many ms later than the record before; above
//                  0x7F records were lost, too
//     octets 6-7   captured octets, big-endian: the data that follow

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>

#include "display/display_context.h"
#include "display/record_display.h"
#include "display_check.h"
#include "trace/element.h"
#include "trace/record_stream.h"

namespace {

using namespace ifwatch;

constexpr std::size_t TRACE_HEADER = 7;
constexpr std::size_t RECORD_HEADER = 8;

std::int32_t filter_of(std::uint8_t octet) { return octet == 0xFF ? -1 : octet; }

/// Shows the first record of the input, from memory of exactly its size; returns what follows it.
std::span<const std::uint8_t> show_record(std::span<const std::uint8_t> input, record_header& header,
                                          display_context& context) {
    header.record_flags = input[0];
    header.channel_info = load_be32(&input[1]);
    header.timestamp_ms += input[5];
    header.sequence += 1U + (input[5] >> 7);
    const std::size_t length =
        std::min({std::size_t{load_be16(&input[6])}, input.size() - RECORD_HEADER, std::size_t{RECORD_DATA_MAXIMUM}});
    const auto data = std::make_unique<std::uint8_t[]>(length);
    std::copy_n(input.begin() + RECORD_HEADER, length, data.get());

    context.header = &header;
    context.payload = octets_of({data.get(), length});
    context.original_length = static_cast<std::uint32_t>(length) + input[5];
    fuzz::show_checked(context);
    return input.subspan(RECORD_HEADER + length);
}

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    std::span<const std::uint8_t> input{data, size};
    if (input.size() < TRACE_HEADER) {
        return 0;
    }
    display_context context;
    init_display_context(context);
    context.mode_flags = load_le32(input.data());
    context.channel_type = input[4] == 0xFE ? -2 : input[4];
    context.tei_filter = filter_of(input[5]);
    context.cref_filter = filter_of(input[6]);
    apply_default_flags(context);
    record_header header;
    for (input = input.subspan(TRACE_HEADER); input.size() >= RECORD_HEADER;) {
        input = show_record(input, header, context);
    }
    return 0;
}
