#pragma once

#include <cstdint>
#include <span>

namespace ifwatch::fuzz {

/// Reads a capture of any octets to its end, makes a record of every packet, and holds both to their bounds. The record
/// is made for an interface of this type.
void check_capture(std::span<const std::uint8_t> file, int channel_type);

}  // namespace ifwatch::fuzz
