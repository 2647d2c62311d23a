#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the header of a NetWare Core Protocol message: request type, sequence number, task and connection. An
/// unknown request type has no name and no line end; octets that are not held read as 0.
void dump_ncp(octets message);

}  // namespace ifwatch
