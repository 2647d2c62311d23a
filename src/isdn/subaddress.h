#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints a calling or called party subaddress (ITU-T Q.931 clauses 4.5.9 and 4.5.11): an NSAP as characters, any
/// other type as hexadecimal digits, one fewer when the element tells that their number is odd; then its type.
void dump_subaddress(octets element);

}  // namespace ifwatch
