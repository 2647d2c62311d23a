#include "trace/record_buffer.h"

#include <new>

#include "base/byte_order.h"
#include "base/print.h"
#include "trace/record_stream.h"

namespace ifwatch {

bool allocate(record_buffer& buffer) {
    buffer.data.reset(new (std::nothrow) std::uint8_t[RECORD_DATA_MAXIMUM]);
    if (buffer.data == nullptr) {
        report<"malloc %d bytes failed!\n">(RECORD_DATA_MAXIMUM);
    }
    return buffer.data != nullptr;
}

record_header parse_protocol_part(std::span<const std::uint8_t, PROTO_LENGTH> octets) {
    return {.timestamp_ms = load_be32(octets.data()),
            .record_flags = load_be32(&octets[4]),
            .channel_info = load_be32(&octets[8]),
            .sequence = load_be32(&octets[12])};
}

void fill_slot(record_buffer& buffer, std::span<const std::uint8_t, PROTO_LENGTH> protocol_part,
               std::uint32_t original_length, int captured_length, display_context& context) {
    buffer.header = parse_protocol_part(protocol_part);
    context.header = &buffer.header;
    context.original_length = captured_length != 0 ? original_length : 0;
    context.payload = octets_of({buffer.data.get(), static_cast<std::size_t>(captured_length)});
}

}  // namespace ifwatch
