#pragma once

#include "ppp/control_packet.h"

namespace ifwatch {

/// Prints one CHAP packet (RFC 1994): of a challenge and a response the length of the value and the name, of a result
/// its message. Texts end at a zero octet or with the frame.
void dump_chap(const control_packet& packet);

}  // namespace ifwatch
