#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

// Ethernet II and IEEE 802.3 header:
//
//     0   destination (6)     6   source (6)     12   type (above 1500) or length, network order

/// Prints an Ethernet II or IEEE 802.3 frame: its header (with -2) and what it carries. The length of an 802.3 frame
/// drops the padding behind it; one that goes beyond the frame is believed, but octets that are not held read as 0.
void dump_ethernet(octets frame, display_context& context);

}  // namespace ifwatch
