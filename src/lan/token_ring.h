#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// Token Ring header, IEEE 802.5:
//
//     0   access control     1   frame control     2   destination (6)     8   source (6)
//     14  routing information field, present when bit 7 of octet 8 is set:
//         14  broadcast indicators (7-5), length of the field (4-0)
//         15  direction (7), largest frame (6-4)
//         16  segment numbers, two octets each

/// The octets of a frame's header, its routing information field included.
[[nodiscard]] int token_ring_header_length(octets frame);

/// Prints a Token Ring frame: its header with the routing information field (with -2) and what it carries. Octets that
/// are not held read as 0, segment numbers that are not held are not shown.
void dump_token_ring(octets frame, display_context& context);

}  // namespace ifwatch
