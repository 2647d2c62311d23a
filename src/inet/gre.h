#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// GRE header, RFC 1701, and the enhanced one of PPTP, RFC 2637 clause 4.1:
//
//     octet 0       C (7)   R (6)   K (5)   S (4)   s (3)   recursion control (2-0)
//     octet 1       A (7, enhanced)   flags (6-3)   version (2-0)
//     octets 2-3    protocol type
//     octets 4-7    key; in the enhanced header payload length (4-5) and call ID (6-7)
//     then 4 octets each, enhanced: sequence number (taken to be there with a payload), acknowledgement number (A)

/// Prints one GRE header and hands the PPP packet behind an enhanced one to the B-channel dispatch. The nesting of
/// tunnels is bounded there; what is not held reads as 0.
void dump_gre(octets packet, display_context& context);

}  // namespace ifwatch
