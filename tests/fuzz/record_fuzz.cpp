// Whatever a router sends, the display of a trace comes to its end, reads no octet that is not there and keeps its
// limits of output, time and state. The input is a whole trace:
//
//     octets 0-3   mode flags, little-endian
//     octets 4-5   channel type, big-endian; 0xFFFE is -2, the PABX
//     octet  6     TEI filter; 0xFF: none
//     octet  7     call reference filter; 0xFF: none
//     then for each record, big-endian
//     octets 0-3   record flags
//     octets 4-7   channel info
//     octets 8-9   what the original length is more than the octets captured, or less, modulo 2^16
//     octet  10    so many ms later than the record before, or earlier: signed; when odd, records were lost, too
//     octets 11-12 captured octets: the data that follow

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

constexpr std::size_t TRACE_HEADER = 8;
constexpr std::size_t RECORD_HEADER = 13;

std::int32_t filter_of(std::uint8_t octet) { return octet == 0xFF ? -1 : octet; }

/// Shows the first record of the input, from memory of exactly its size; returns what follows it.
std::span<const std::uint8_t> show_record(std::span<const std::uint8_t> input, record_header& header,
                                          display_context& context) {
    header.record_flags = load_be32(input.data());
    header.channel_info = load_be32(&input[4]);
    header.timestamp_ms += static_cast<std::uint32_t>(static_cast<std::int8_t>(input[10]));
    header.sequence += 1U + (input[10] & 1U);
    const std::size_t length =
        std::min({std::size_t{load_be16(&input[11])}, input.size() - RECORD_HEADER, std::size_t{RECORD_DATA_MAXIMUM}});
    const auto data = std::make_unique<std::uint8_t[]>(length);
    std::copy_n(input.begin() + RECORD_HEADER, length, data.get());

    context.header = &header;
    context.payload = octets_of({data.get(), length});
    context.original_length = static_cast<std::uint16_t>(length + load_be16(&input[8]));
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
    context.channel_type = static_cast<std::int16_t>(load_be16(&input[4]));
    context.tei_filter = filter_of(input[6]);
    context.cref_filter = filter_of(input[7]);
    apply_default_flags(context);
    record_header header;
    for (input = input.subspan(TRACE_HEADER); input.size() >= RECORD_HEADER;) {
        input = show_record(input, header, context);
    }
    return 0;
}
