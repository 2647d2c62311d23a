#pragma once

#include "base/names.h"
#include "base/octets.h"

namespace ifwatch {

/// Prints one ICMP message (RFC 792): the name of its type, and of its code for "destination unreachable". An unknown
/// type shows its octet sign-extended to 32 bits.
void dump_icmp(octets message);

/// The name of a message type, and of a code of "destination unreachable"; absent for one without a name.
[[nodiscard]] table_text icmp_type_name(int type);
[[nodiscard]] table_text icmp_unreachable_name(int code);

}  // namespace ifwatch
