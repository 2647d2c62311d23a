#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// IPv4 header, RFC 791 clause 3.1:
//
//     octet 0        version (7-4)   header length in 32-bit words (3-0)
//     octets 2-3     total length
//     octets 4-5     identification
//     octets 6-7     DF (14)   MF (13)   fragment offset in units of 8 octets (12-0)
//     octet 9        protocol
//     octets 12-15   source address
//     octets 16-19   destination address

/// Prints one IPv4 datagram: a line with the addresses and the protocol, a line for a fragment, and what the datagram
/// carries (ICMP, TCP, UDP, GRE) unless it is a fragment other than the first. The version is not looked at; what is
/// not held reads as 0.
void dump_ip(octets datagram, display_context& context);

}  // namespace ifwatch
