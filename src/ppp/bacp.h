#pragma once

#include "ppp/control_packet.h"

namespace ifwatch {

/// Prints one BACP packet (RFC 2125): its identifier and code, and the Favored-Peer option.
void dump_bacp(const control_packet& packet);

}  // namespace ifwatch
