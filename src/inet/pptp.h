#pragma once

#include <optional>

#include "base/octets.h"

namespace ifwatch {

struct display_context;
struct pptp_state;

inline constexpr int PPTP_PORT = 1723;

// PPTP control message, RFC 2637 clause 2:
//
//     octets 0-1     length
//     octets 2-3     message type, 1 for a control message
//     octets 4-7     magic cookie
//     octets 8-9     control message type
//     octets 12-     fields of that type

/// Takes octets off `segment` for the message that one direction is collecting. The message when it is complete: it
/// stays valid until the next call for that direction, and what stands behind it is left in `segment`. A length field
/// below 12 counts as 12; of a message longer than 256 octets the first 256 are kept and the others taken off. Octets
/// that the segment declares and does not hold complete, as zeros, a message that has begun; they begin none.
std::optional<octets> pptp_collect(pptp_state& state, octets& segment);

/// Feeds the data of one TCP segment to the reassembly of its direction, which `destination_port` tells (in host
/// order), and prints each control message that it completes.
void dump_pptp(octets segment, display_context& context, int destination_port);

}  // namespace ifwatch
