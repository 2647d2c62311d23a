#pragma once

#include "base/octets.h"

namespace ifwatch {

// ARP and RARP packet for IPv4 on Ethernet, RFC 826 and RFC 903:
//
//     octets 0-5     hardware type, protocol type, address lengths (not looked at)
//     octets 6-7     operation
//     octets 8-13    sender hardware address
//     octets 14-17   sender protocol address
//     octets 18-23   target hardware address
//     octets 24-27   target protocol address

/// Prints one ARP or RARP packet on a line; of an unknown operation only the indentation, without the line's end. What
/// is not held reads as 0.
void dump_arp(octets packet);

}  // namespace ifwatch
