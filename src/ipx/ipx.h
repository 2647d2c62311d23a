#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints an IPX packet: its header and the NCP, SAP, RIP, WAN or SPX contents that the sockets and the packet type
/// tell of. The header may stand up to 28 octets into `data`, behind a link header; the first position that looks
/// like one is taken. A packet that is shorter than the octets handed in, or that has another checksum than 0xFFFF,
/// is not recognised and prints nothing. Octets that are not held read as 0.
void dump_ipx(octets data);

}  // namespace ifwatch
