#pragma once

#include "base/octets.h"

namespace ifwatch {

// X.25 packet header, ITU-T X.25 clause 5.1:
//
//     octet 0   Q or A (7)   D (6)   format (5-4)   logical channel group (3-0)
//     octet 1   logical channel number
//     octet 2   packet type; bit 0 clear: DATA
//     octet 3   P(R) (7-1)   M (0)                  modulo 128 only, which format 10 tells

/// Prints one X.25 packet: its header line and the addresses, facilities, cause, diagnostic, registration and user
/// data that its type carries; the user data of a DATA packet are not printed. Returns the octets of the header: 3 or
/// 4 where user data may follow, otherwise at least the whole packet. A packet of fewer than 3 octets gets a line of
/// its own. Address digits and other counted fields are printed as their counts say, as far as octets are held.
int dump_x25_packet(octets packet);

}  // namespace ifwatch
