#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "display/display_context.h"

namespace ifwatch {

inline constexpr int PROTO_LENGTH = 16;  // octets of a record's protocol part

/// Where both readers put a record: the one buffer of the run.
struct record_buffer {
    std::unique_ptr<std::uint8_t[]> data;
    record_header header;
};

/// Allocates the data buffer; false after a message when there is no memory.
bool allocate(record_buffer& buffer);

/// The protocol part of a record, in host order.
[[nodiscard]] record_header parse_protocol_part(std::span<const std::uint8_t, PROTO_LENGTH> octets);

/// Makes the record in the buffer the current one: its protocol part as received, and its lengths, which are both 0
/// for a record without data.
void fill_slot(record_buffer& buffer, std::span<const std::uint8_t, PROTO_LENGTH> protocol_part,
               std::uint32_t original_length, int captured_length, display_context& context);

}  // namespace ifwatch
