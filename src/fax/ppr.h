#pragma once

#include "base/octets.h"

namespace ifwatch {

/// Prints the numbers of the frames that a partial page request asks for again, runs as "first-last", and ends the
/// line. Frame 0 is the least significant bit of the first octet; at most 256 frames are shown. The bit behind the
/// bitmap counts as clear when it is not held (ITU-T T.30 annex A).
void print_ppr_bitmap(octets bitmap);

}  // namespace ifwatch
