#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// TCP header, RFC 793 clause 3.1:
//
//     octets 0-1     source port
//     octets 2-3     destination port
//     octets 4-7     sequence number
//     octets 8-11    acknowledgement number
//     octet 12       header length in 32-bit words (7-4)
//     octet 13       URG (5)   ACK (4)   PSH (3)   RST (2)   SYN (1)   FIN (0)
//     octets 14-15   window
//     octets 16-17   checksum
//     octets 18-19   urgent pointer

/// Prints the header of one TCP segment; on port 1723 its data go on to the PPTP decoder. `ip_total_length` is the
/// total length of the datagram, from which the length of the data is taken. What is not held reads as 0.
void dump_tcp(octets segment, display_context& context, int ip_total_length);

}  // namespace ifwatch
