#pragma once

#include "base/octets.h"

namespace ifwatch {

// RIP message, RFC 1058 clause 3.1 and RFC 2453 clause 4; a triggered message has four more octets (RFC 2091 clause 5):
//
//     octet 0        command
//     octet 1        version
//     octet 5        flush                 triggered commands only
//     octets 6-7     sequence number       triggered commands only
//
//     and any number of route entries of 20 octets:
//
//     octets 0-1     address family
//     octets 4-7     address
//     octets 8-11    subnet mask           version 2
//     octets 12-15   next hop              version 2
//     octets 16-19   metric

/// Prints one RIP message of version 1 or 2 with its route entries. Nothing for a message shorter than its header,
/// and no entry when what follows the header is no multiple of 20 octets; an entry held in part is filled with 0.
///
/// The metric of version 1 is printed as a little-endian number, so that 1 shows as 16777216.
void dump_rip(octets message);

}  // namespace ifwatch
