#pragma once

#include "ppp/control_packet.h"

namespace ifwatch {

/// Prints one IPCP packet (RFC 1332, RFC 1877): its identifier and code, and its options, whatever the code is. An
/// option is printed as if all the octets it should have were there.
void dump_ipcp(const control_packet& packet);

}  // namespace ifwatch
