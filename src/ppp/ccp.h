#pragma once

#include "ppp/control_packet.h"

namespace ifwatch {

/// Prints one CCP packet (RFC 1962): its identifier and code, the options of the four Configure codes (RFC 1967,
/// RFC 1974, RFC 2118, RFC 3078), and the history number of the two Reset codes. An option is printed as if all the
/// octets it should have were there.
void dump_ccp(const control_packet& packet);

}  // namespace ifwatch
