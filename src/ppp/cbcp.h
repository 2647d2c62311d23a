#pragma once

#include "ppp/control_packet.h"

namespace ifwatch {

/// Prints one packet of the Callback Control Protocol: its identifier and code, and its options.
void dump_cbcp(const control_packet& packet);

}  // namespace ifwatch
