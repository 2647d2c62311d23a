#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// IEEE 802.2 LLC header, and with DSAP 0xAA the SNAP header of RFC 1042:
//
//     0   DSAP     1   SSAP     2   control     3   N(R), P/F (I and S frames only)
//     0   0xAA     1   0xAA     2   0x03        3   organisation (3)     6   type (2)

/// Prints an LLC or SNAP header (LLC and SNAP with -2, the network layer behind an LLC header with -3), stores the key
/// under which dump_ethertype knows what follows in `type`, and returns the length of the header. A header that is cut
/// short reads as 0 where it is missing.
int dump_llc(octets frame, display_context& context, int& type);

/// The same, and what follows the header.
void dump_llc_frame(octets frame, display_context& context);

}  // namespace ifwatch
