#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

/// Prints the payload of an IMA control protocol cell (ATM Forum IMA 1.0 and 1.1), the cell header already taken off:
/// the group's settings and state, and each link that reports a state. Octets that are not held read as 0.
void dump_ima(octets payload, display_context& context);

}  // namespace ifwatch
