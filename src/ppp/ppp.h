#pragma once

#include "base/octets.h"

namespace ifwatch {

// PPP frame between the flags and without the FCS, RFC 1661 clause 2 and RFC 1662 clause 3.1; address and control may
// be left out, and the protocol is one octet when its low bit is set:
//
//     address 0xFF   control 0x03   protocol (1 or 2)   information
//
// Multilink header of a fragment with long sequence numbers, RFC 1990 clause 3:
//
//     octet 0       B (7)   E (6)   zero (5-0)
//     octets 1-3    sequence number

/// Takes the protocol field off a packet that begins with it, and returns the protocol.
int take_ppp_protocol(octets& packet);

/// Prints one PPP frame: a line for each multilink header, the line of the protocol, and all of a control or
/// authentication protocol. 1 when the frame needs no other decoder (such a protocol, a fragment that is not the
/// first, a multilink header with nothing behind it), 0 for a protocol below 0x8000, whose payload is the caller's.
/// What is not held reads as 0; a control packet shorter than its header gets the line "Short packet".
///
/// It writes a zero octet behind a control packet, where the frame still holds one there, so that texts end.
int dump_ppp(octets packet);

}  // namespace ifwatch
