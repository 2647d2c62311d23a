#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints `length` octets, `per_line` (at least 1) on each line: `indent` blanks, the offset, the octets in
/// hexadecimal with a wider gap in the middle, and the printable characters. Octets that are not held are not shown;
/// a length of 0 or less prints nothing.
void hex_dump(octets data, int length, int per_line, int indent);

}  // namespace ifwatch
