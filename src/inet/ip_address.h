#pragma once

#include <string_view>

#include "base/octets.h"
#include "base/text_sink.h"

namespace ifwatch {

/// The longest IPv4 address in dotted form, "255.255.255.255".
inline constexpr int IP_ADDRESS_WIDTH = 15;

/// Writes the IPv4 address in the first four octets in dotted form to the buffer and returns it; the address 0.0.0.0
/// gives an empty text.
std::string_view ip_to_string(text_buffer<IP_ADDRESS_WIDTH>& buffer, octets address);

}  // namespace ifwatch
