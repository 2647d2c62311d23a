// Whatever a router sends, the display of a trace comes to its end, reads no octet that is not there and keeps its
// limits of output, time and state. The input is a whole trace, in steps of 1 ms (display_check.h).

#include <cstdint>
#include <span>

#include "base/byte_order.h"
#include "display/display_context.h"
#include "display/record_display.h"
#include "display_check.h"

namespace {

using namespace ifwatch;

std::int32_t filter_of(std::uint8_t octet) { return octet == 0xFF ? -1 : octet; }

}  // namespace

// The name and the types are those of libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {  // NOLINT(*-identifier-naming)
    std::span<const std::uint8_t> input{data, size};
    if (input.size() < fuzz::TRACE_HEADER) {
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
    for (input = input.subspan(fuzz::TRACE_HEADER); input.size() >= fuzz::RECORD_HEADER;) {
        const fuzz::taken_record taken = fuzz::take_record(input, 1, header, context);
        fuzz::show_checked(context);
        input = taken.rest;
    }
    return 0;
}
