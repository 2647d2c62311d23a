#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the ports of one UDP datagram (RFC 768) and, by either port, the SNMP or RIP message in it. The message ends
/// where the given octets end: the length field is not looked at.
void dump_udp(octets datagram);

}  // namespace ifwatch
