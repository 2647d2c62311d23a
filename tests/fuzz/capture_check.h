#pragma once

#include <cstdint>
#include <span>

namespace ifwatch::fuzz {

/// A file in memory that holds these octets until the next call, to be read from its first octet on.
int file_of(std::span<const std::uint8_t> octets);

/// Reads a capture of any octets to its end, makes a record of every packet, and holds both to their bounds. The record
/// is made for an interface of this type.
void check_capture(std::span<const std::uint8_t> file, int channel_type);

}  // namespace ifwatch::fuzz
