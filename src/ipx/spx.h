#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the 12 octets of an SPX header: what kind of packet it is, its connections and numbers. Octets that are not
/// held read as 0.
void dump_spx(octets header);

}  // namespace ifwatch
