#pragma once

#include "ppp/control_packet.h"

namespace ifwatch {

/// Prints one BAP packet (RFC 2125): its identifier and code, the result of a response, and its options; of a
/// Call-Status Response the code only.
void dump_bap(const control_packet& packet);

}  // namespace ifwatch
