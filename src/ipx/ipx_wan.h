#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints an IPX WAN version 2 message (RFC 1634): its packet type, node, sequence number and options. A message of ten
/// octets or less and a wrong identifier get an error line; the option list ends where nothing is held any more. The
/// octet behind the room of a router's name (RIP/SAP information option) is overwritten with 0.
void dump_ipx_wan(octets message);

}  // namespace ifwatch
