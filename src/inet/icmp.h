#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints one ICMP message (RFC 792): the name of its type, and of its code for "destination unreachable". An unknown
/// type shows its octet sign-extended to 32 bits.
void dump_icmp(octets message);

}  // namespace ifwatch
