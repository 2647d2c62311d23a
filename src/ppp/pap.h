#pragma once

#include <string_view>

#include "ppp/control_packet.h"

namespace ifwatch {

/// The text behind the length octet at `source`, up to a zero octet or the hard end; "<none>" when that length is 0.
[[nodiscard]] std::string_view counted_string(octets source);

/// Prints one PAP packet (RFC 1334 clause 2): a request with its peer identifier and its password in clear, a result
/// with its message.
void dump_pap(const control_packet& packet);

}  // namespace ifwatch
