#pragma once

#include "base/octets.h"

namespace ifwatch {

struct display_context;

/// Prints the IPv4 datagram of a tunnel record (with -i), which stands behind two octets of the tunnel's own.
void dump_tunnel_ip(octets frame, display_context& context);

}  // namespace ifwatch
