#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Print an IPX network number (4 octets) and a node address (6 octets), without leading zeros.
void print_ipx_network(octets network);
void print_ipx_node(octets node);

}  // namespace ifwatch
