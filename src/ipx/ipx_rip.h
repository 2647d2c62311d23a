#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints an IPX RIP message: its operation and at most eight entries of network, hops and ticks. Entries that do not
/// lie wholly inside the declared length are not shown; octets that are not held read as 0.
void dump_ipx_rip(octets message);

}  // namespace ifwatch
