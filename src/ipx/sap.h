#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints a NetWare Service Advertising Protocol message: its operation and, of a request, the service type, otherwise
/// at most seven servers that lie wholly inside the declared length. The octet behind the 47th of a server's name is
/// overwritten with 0. Octets that are not held read as 0.
void dump_sap(octets message);

}  // namespace ifwatch
