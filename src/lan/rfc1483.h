#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

/// Where the payload of an AAL5 frame stands, and the key under which dump_ethertype knows it (KEY_NONE: not decoded).
struct encapsulation {
    int header_length;
    int type;
};
[[nodiscard]] encapsulation rfc1483_encapsulation(octets frame);

/// Prints the encapsulation at the start of a reassembled AAL5 frame (with -2) and what it carries: LLC/SNAP, LLC with
/// NLPID, or VC multiplexing (RFC 1483, now RFC 2684; RFC 2364 for PPP). Unknown organisations, protocol identifiers
/// and NLPIDs are named by their number and not decoded; octets that are not held read as 0.
void dump_rfc1483(octets frame, display_context& context);

}  // namespace ifwatch
