#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints a complete PPTP control message: its name and the fields of its type (RFC 2637 clause 2), one on a line. A
/// type without a name of its own is an "Unknown PPTP Message". Octets behind a message that is too short for its
/// fields read as 0; a framing or bearer value without a name leaves its line without an end.
void dump_pptp_control_message(octets message);

}  // namespace ifwatch
