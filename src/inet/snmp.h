#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints an SNMP message (RFC 1157) as a tree, as dump_ber does, its context-specific elements named as PDUs.
void dump_snmp(const char* prefix, octets message);

}  // namespace ifwatch
