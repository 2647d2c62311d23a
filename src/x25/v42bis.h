#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the compression parameters of V.42bis (ITU-T V.42 clause 12.2.1, V.42bis clause 10) from a private group of
/// an XID frame: direction P0, number of codewords P1 and string length P2. A parameter of a wrong length, or a group
/// that is not V.42bis, ends the walk without a message. Returns the length of the group.
int dump_v42bis_parameters(octets group);

}  // namespace ifwatch
